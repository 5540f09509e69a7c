#include "qn/core/Library.h"
#include "qn/core/ClassManagerBase.h"
#include "qn/core/Exception.h"
#include "qn/sync/LockObject.h"

#include <gtest/gtest.h>

using namespace qn;

TEST(Library, NestedLoadsOnlyCountAndTheLastUnloadTearsDown) {
    ASSERT_NE(g_pGlobalLock, nullptr);
    const size_t classes = classRegistry().size();
    EXPECT_EQ(QNCLLibInit(), QN_S_OK);
    EXPECT_EQ(classRegistry().size(), classes);
    EXPECT_EQ(QNCLLibUninit(), QN_S_OK);
    ASSERT_NE(g_pGlobalLock, nullptr);

    // The load entry's own load: tearing it down and building it again.
    EXPECT_EQ(QNCLLibUninit(), QN_S_OK);
    EXPECT_EQ(g_pGlobalLock, nullptr);
    EXPECT_EQ(QNCLLibUninit(), QN_E_FAIL);
    EXPECT_EQ(QNCLLibInit(), QN_S_OK);
    ASSERT_NE(g_pGlobalLock, nullptr);
    EXPECT_EQ(classRegistry().size(), classes);
    EXPECT_NO_THROW(Class::forName(u"qn::Exception"));
}
