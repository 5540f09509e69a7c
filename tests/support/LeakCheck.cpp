// Fails the test program when an Object outlives its tests (counted in debug builds).
#include "qn/core/ComObject.h"

#include <gtest/gtest.h>

namespace {

class LeakCheck : public ::testing::Environment {
public:
    void SetUp() override { m_before = qn::ComObject::liveObjects(); }
    void TearDown() override {
        if (m_before >= 0) {
            EXPECT_EQ(qn::ComObject::liveObjects(), m_before) << "Objects left alive";
        }
    }

private:
    long m_before = -1;
};

const ::testing::Environment* const leakCheck =
    ::testing::AddGlobalTestEnvironment(new LeakCheck);

} // namespace
