#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#ifdef QNCORE_TEST_HAVE_ICU
#include <unicode/uchar.h>
#endif

using namespace qntest;

TEST(WideText, LengthAndOrdinalComparison) {
    EXPECT_EQ(QNStrLenW(nullptr), 0);
    EXPECT_EQ(QNStrLenW(W(u"a\u00E9\U0001F600").c_str()), 4);
    // Units compare unsigned: U+FFFF after 'a', a high surrogate before U+E000.
    const std::pair<WString, WString> ascending[] = {
        {W(u"ab"), W(u"abc")},           {W(u"B"), W(u"a")}, {W(u"a"), W(u"\uFFFF")},
        {Units({0xD800}), W(u"\uE000")}, {W(u""), W(u"a")},
    };
    for (const auto& [a, b] : ascending) {
        EXPECT_LT(QNStrCmpW(a.c_str(), b.c_str()), 0);
        EXPECT_GT(QNStrCmpW(b.c_str(), a.c_str()), 0);
        EXPECT_EQ(QNStrCmpW(b.c_str(), b.c_str()), 0);
    }
    EXPECT_EQ(QNStrCmpW(nullptr, W(u"").c_str()), 0);
    EXPECT_LT(QNStrCmpW(nullptr, W(u"a").c_str()), 0);
    EXPECT_GT(QNStrCmpW(W(u"a").c_str(), nullptr), 0);

    const WString x = Units({'a', 0, 'b', 0xFFFF}), y = Units({'a', 0, 'c'});
    EXPECT_LT(QNStrCmpNW(x.data(), 3, y.data(), 3), 0); // zeros inside are ordinary units
    EXPECT_EQ(QNStrCmpNW(x.data(), 2, y.data(), 2), 0);
    EXPECT_GT(QNStrCmpNW(x.data(), 2, y.data(), 1), 0); // a prefix sorts first
    EXPECT_LT(QNStrCmpNW(x.data(), 0, y.data(), 1), 0);
    EXPECT_GT(QNStrCmpNW(x.data() + 3, 1, y.data(), 3), 0);
}

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

TEST(WideText, MapsTextInPlace) {
    WString text = Units({'A', 0x03A3, 0, 'B', 'C'});
    EXPECT_EQ(QNStrToLowerW(text.data(), -1), text.data());
    EXPECT_EQ(text, Units({'a', 0x03C3, 0, 'B', 'C'})); // stops at the zero
    QNStrToLowerW(text.data(), 4);
    EXPECT_EQ(text, Units({'a', 0x03C3, 0, 'b', 'C'})); // stops at the length, past the zero
    EXPECT_EQ(QNStrToUpperW(text.data(), 5), text.data());
    EXPECT_EQ(text, Units({'A', 0x03A3, 0, 'B', 'C'}));
}

TEST(WideText, NumberToText) {
    // clang-format off
    const struct { int32_t value, radix; const char16_t* text; } cases[] = {
        {0, 10, u"0"}, {-123, 10, u"-123"}, {INT32_MIN, 10, u"-2147483648"}, {5, 2, u"101"},
        {-1, 2, u"11111111111111111111111111111111"}, {255, 16, u"ff"}, {-1, 16, u"ffffffff"},
        {INT32_MIN, 16, u"80000000"}, {35, 36, u"z"}, {INT32_MAX, 36, u"zik0zj"}, {-1, 36, u"1z141z3"},
    };
    // clang-format on
    QNWCHAR buffer[40];
    for (const auto& c : cases) {
        EXPECT_EQ(QNLToStrW(c.value, buffer, 40, c.radix), QN_S_OK);
        EXPECT_EQ(WString(buffer), W(c.text)) << c.value << " in radix " << c.radix;
    }
    for (int32_t radix : {-10, 0, 1, 37})
        EXPECT_EQ(QNLToStrW(1, buffer, 12, radix), QN_E_INVALIDARG) << radix;
    EXPECT_EQ(QNLToStrW(1, nullptr, 12, 10), QN_E_INVALIDARG);
    EXPECT_EQ(QNLToStrW(INT32_MIN, buffer, 12, 10), QN_S_OK); // exactly fits with its zero
    EXPECT_EQ(QNLToStrW(INT32_MIN, buffer, 11, 10), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(buffer[0], 0);
    buffer[0] = 'x';
    EXPECT_EQ(QNLToStrW(7, buffer, 0, 10), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(buffer[0], 'x'); // no room even for the empty text
}

TEST(WideText, BoundedCopy) {
    QNWCHAR out[5] = {'#', '#', '#', '#', '#'};
    EXPECT_EQ(QNStrCpyNW(out, 4, W(u"abcdef").c_str(), -1), QN_S_FALSE);
    EXPECT_EQ(WString(out), W(u"abc"));
    EXPECT_EQ(out[4], '#');
    EXPECT_EQ(QNStrCpyNW(out, 4, W(u"xyzw").c_str(), 3), QN_S_OK);
    EXPECT_EQ(QNStrCpyNW(out, 4, W(u"xyzw").c_str(), 2), QN_S_OK);
    EXPECT_EQ(WString(out), W(u"xy"));
    EXPECT_EQ(QNStrCpyNW(out, 1, W(u"a").c_str(), -1), QN_S_FALSE);
    EXPECT_EQ(out[0], 0);
}

namespace {

// A character buffer that counts its locks and can refuse to grow.
struct Buffer final : IQNCharBuffer {
    explicit Buffer(bool writable) : writable(writable) {}
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return queryInterface(this, QN_IID_IQNCharBuffer, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return 2; }
    uint32_t QN_STDCALL Release() override { return 1; }
    QNRESULT QN_STDCALL GetLength(int32_t* n) override { return *n = length, QN_S_OK; }
    QNRESULT QN_STDCALL GetData(const QNWCHAR** d) override { return *d = data.data(), QN_S_OK; }
    QNRESULT QN_STDCALL GetReadLock(const QNWCHAR** d) override { return ++locks, GetData(d); }
    QNRESULT QN_STDCALL ReleaseReadLock() override { return --locks, QN_S_OK; }
    QNRESULT QN_STDCALL IsWritable(int32_t* w) override { return *w = writable, QN_S_OK; }
    QNRESULT QN_STDCALL GetWriteLock(QNWCHAR** d) override {
        return writable ? (++locks, *d = data.data(), QN_S_OK) : QN_E_ACCESSDENIED;
    }
    QNRESULT QN_STDCALL EnsureCapacity(int32_t capacity, QNWCHAR** d) override {
        if (locks <= 0 || refuseGrowth)
            return locks <= 0 ? QN_E_UNEXPECTED : QN_E_OUTOFMEMORY;
        data.resize(std::max<size_t>(data.size(), capacity + 1u));
        return *d = data.data(), QN_S_OK;
    }
    QNRESULT QN_STDCALL ReleaseWriteLock(int32_t n) override {
        return length = n < 0 ? length : n, --locks, QN_S_OK;
    }
    QNRESULT QN_STDCALL FreeExtra() override { return QN_S_OK; }
    WString text() const { return WString(data.data(), length); }

    bool writable, refuseGrowth = false;
    int locks = 0;
    int32_t length = 0;
    std::vector<QNWCHAR> data = std::vector<QNWCHAR>(1);
};

} // namespace

TEST(WideText, CopyIntoCharacterBuffer) {
    Buffer buffer(true);
    for (const WString& text : {Units({'a', 0, 0xE9}), W(u"a longer text"), W(u"xy")}) {
        EXPECT_EQ(QNCopyCharBuffer(&buffer, text.c_str(), static_cast<int32_t>(text.size())),
                  QN_S_OK);
        EXPECT_EQ(buffer.text(), text);
    }
    EXPECT_EQ(QNCopyCharBuffer(&buffer, W(u"abc").c_str(), -1), QN_S_OK);
    EXPECT_EQ(buffer.text(), W(u"abc"));
    EXPECT_EQ(QNCopyCharBuffer(&buffer, nullptr, -1), QN_S_OK);
    EXPECT_EQ(buffer.text(), WString());
    buffer.refuseGrowth = true;
    EXPECT_EQ(QNCopyCharBuffer(&buffer, W(u"longer than anything before").c_str(), -1),
              QN_E_OUTOFMEMORY);
    EXPECT_EQ(buffer.locks, 0) << "a lock is left held";
    Buffer readOnly(false);
    EXPECT_EQ(QNCopyCharBuffer(&readOnly, W(u"abc").c_str(), -1), QN_E_ACCESSDENIED);
    EXPECT_EQ(readOnly.text(), WString());
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
