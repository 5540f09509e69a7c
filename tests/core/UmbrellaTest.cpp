// The umbrella header compiles on its own and brings the library's areas with it.
#include "qn/qncl.h"

#include <gtest/gtest.h>

TEST(Umbrella, BringsEveryArea) {
    qn::String text(u"abc");
    EXPECT_EQ(text.getLength(), 3);
    EXPECT_EQ(qn::math::BigInteger(255).toString(16).getLength(), 2);
    EXPECT_TRUE(qn::text::charset::ByteToCharConverter::getConverter(u"UTF-8"));
}
