#include "TestSupport.h"

#include <gtest/gtest.h>

#include <vector>

#ifdef QNCORE_TEST_HAVE_ICU
#include <unicode/uchar.h>
#endif

using namespace qntest;

TEST(WideText, SimpleCaseMapping) {
    // unit, lower, upper: final sigma, dotted and dotless i, Kelvin, capital and small sharp s
    // (no one-unit upper form), micro, title-case Dz, Cyrillic, Georgian in both scripts, full
    // width, no case, surrogates and a noncharacter.
    // clang-format off
    const uint16_t cases[][3] = {
        {'A', 'a', 'A'}, {'z', 'z', 'Z'}, {0x03A3, 0x03C3, 0x03A3}, {0x03C2, 0x03C2, 0x03A3},
        {0x0130, 'i', 0x0130}, {0x0131, 0x0131, 'I'}, {0x212A, 'k', 0x212A}, {0x1E9E, 0xDF, 0x1E9E},
        {0xDF, 0xDF, 0xDF}, {0xB5, 0xB5, 0x039C}, {0x01C5, 0x01C6, 0x01C4}, {0x0401, 0x0451, 0x0401},
        {0x0434, 0x0434, 0x0414}, {0x10A0, 0x2D00, 0x10A0}, {0x10D0, 0x10D0, 0x1C90},
        {0x1C90, 0x10D0, 0x1C90}, {0xFF21, 0xFF41, 0xFF21}, {'1', '1', '1'}, {0x4E00, 0x4E00, 0x4E00},
        {0xD801, 0xD801, 0xD801}, {0xDC28, 0xDC28, 0xDC28}, {0xFFFF, 0xFFFF, 0xFFFF},
    };
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(static_cast<uint16_t>(QNToLowerW(c[0])), c[1]) << std::hex << c[0];
        EXPECT_EQ(static_cast<uint16_t>(QNToUpperW(c[0])), c[2]) << std::hex << c[0];
    }
#ifdef QNCORE_TEST_HAVE_ICU
    std::vector<UChar32> wrong; // every unit whose mapping stays in the BMP
    for (UChar32 c = 0; c <= 0xFFFF; ++c) {
        const bool surrogate = c >= 0xD800 && c <= 0xDFFF;
        const UChar32 lower = surrogate ? c : u_tolower(c), upper = surrogate ? c : u_toupper(c);
        const auto unit = static_cast<QNWCHAR>(c);
        if ((lower <= 0xFFFF && static_cast<uint16_t>(QNToLowerW(unit)) != lower) ||
            (upper <= 0xFFFF && static_cast<uint16_t>(QNToUpperW(unit)) != upper))
            wrong.push_back(c);
    }
    EXPECT_TRUE(wrong.empty()) << wrong.size() << " units differ from ICU, the first U+" << std::hex
                               << (wrong.empty() ? 0 : wrong[0]);
#endif
}

TEST(WideText, Utf8Conversion) {
    const WString wide = W(u"A\u00E9\u4E2D\U0001F600");
    const std::string utf8 = "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80";
    char bytes[24] = "#######################";
    EXPECT_EQ(QNWideToUtf8(wide.c_str(), -1, nullptr, 0), 10);
    EXPECT_EQ(QNWideToUtf8(wide.c_str(), -1, bytes, 3), 10); // too small: tells the need
    EXPECT_EQ(bytes[3], '#');                                // and writes no further
    EXPECT_EQ(QNWideToUtf8(wide.c_str(), -1, bytes, 24), 10);
    EXPECT_EQ(std::string(bytes), utf8);
    QNWCHAR units[8];
    EXPECT_EQ(QNUtf8ToWide(utf8.c_str(), -1, nullptr, 0), 5);
    EXPECT_EQ(QNUtf8ToWide(utf8.c_str(), -1, units, 8), 5);
    EXPECT_EQ(WString(units), wide);
    EXPECT_EQ(QNUtf8ToWide("a\0b", 3, units, 8), 3);
    EXPECT_EQ(WString(units, 3), Units({'a', 0, 'b'}));
    // Unpaired surrogates, either half, anywhere.
    const WString lone = Units({0xD800, 'a', 0xDC00, 0xDC00, 0xD800, 0xDC00, 0xDBFF});
    EXPECT_EQ(QNWideToUtf8(lone.data(), 7, bytes, 24), 17);
    EXPECT_EQ(std::string(bytes), "\xEF\xBF\xBD"
                                  "a\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x90\x80\x80\xEF\xBF\xBD");

    // One U+FFFD for each maximal subpart of an ill-formed sequence.
    const uint16_t R = 0xFFFD;
    // clang-format off
    const std::pair<std::string, WString> toWide[] = {
        {"\xC0\x80", Units({R, R})}, {"\xED\xA0\x80", Units({R, R, R})},
        {"\xF4\x90\x80\x80", Units({R, R, R, R})}, {"\xF4\x8F\xBF\xBF", Units({0xDBFF, 0xDFFF})},
        {"a\xE2\x82", Units({'a', R})}, {"\xF0\x9F\x98", Units({R})}, {"\xFF\x80", Units({R, R})},
        {"a\xF1\x80\x80\xE1\x80\xC2" "b\x80" "c\x80\xBF" "d",
         Units({'a', R, R, R, 'b', R, 'c', R, R, 'd'})},
    };
    // clang-format on
    for (const auto& [in, out] : toWide) {
        QNWCHAR got[32] = {};
        const auto size = static_cast<int32_t>(in.size());
        EXPECT_EQ(QNUtf8ToWide(in.data(), size, nullptr, 0), static_cast<int32_t>(out.size()));
        EXPECT_EQ(QNUtf8ToWide(in.data(), size, got, 32), static_cast<int32_t>(out.size()));
        EXPECT_EQ(WString(got), out) << ::testing::PrintToString(in);
    }
}
