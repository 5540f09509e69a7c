#include "qn/core/Number.h"

#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <type_traits>

using namespace qn;

namespace {

std::u16string chars(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

// For failure messages: the text with anything beyond ASCII as '?'.
std::string ascii(const char16_t* text) {
    std::string out;
    for (; *text; ++text)
        out += *text < 0x80 ? static_cast<char>(*text) : '?';
    return out;
}

// Each integer class's limits in base 10, then the first values beyond them; signed first, by
// width.
const char16_t* const LIMITS[8][4] = {
    {u"-128", u"127", u"-129", u"128"},
    {u"-32768", u"32767", u"-32769", u"32768"},
    {u"-2147483648", u"2147483647", u"-2147483649", u"2147483648"},
    {u"-9223372036854775808", u"9223372036854775807", u"-9223372036854775809",
     u"9223372036854775808"},
    {u"0", u"255", u"-1", u"256"},
    {u"0", u"65535", u"-1", u"65536"},
    {u"0", u"4294967295", u"-1", u"4294967296"},
    {u"0", u"18446744073709551615", u"-1", u"18446744073709551616"}};

template <class T> const char16_t* const* limitTexts() {
    using Value = typename T::ValueType;
    const int width = sizeof(Value) == 1 ? 0 : sizeof(Value) == 2 ? 1 : sizeof(Value) == 4 ? 2 : 3;
    return LIMITS[(std::is_signed_v<Value> ? 0 : 4) + width];
}

template <class T> class IntegerTest : public ::testing::Test {};
using IntegerClasses = ::testing::Types<Integer8, Integer16, Integer32, Integer64, UInteger8,
                                        UInteger16, UInteger32, UInteger64>;
TYPED_TEST_SUITE(IntegerTest, IntegerClasses, );

TYPED_TEST(IntegerTest, LimitsParseAndPrintBack) {
    const char16_t* const* limits = limitTexts<TypeParam>();
    EXPECT_EQ(TypeParam::parse(String(limits[0])), TypeParam::MIN_VALUE);
    EXPECT_EQ(TypeParam::parse(String(limits[1])), TypeParam::MAX_VALUE);
    EXPECT_EQ(chars(TypeParam(TypeParam::MIN_VALUE).toString()), limits[0]);
    EXPECT_EQ(chars(TypeParam(TypeParam::MAX_VALUE).toString()), limits[1]);
    EXPECT_EQ(chars(TypeParam().toString()), u"0");
    EXPECT_THROW(TypeParam::parse(String(limits[2])), RangeErrorException);
    EXPECT_THROW(TypeParam::parse(String(limits[3])), RangeErrorException);
    // Beyond 64 bits either way; text that is malformed further on is still malformed.
    EXPECT_THROW(TypeParam::parse(String(u"99999999999999999999999")), RangeErrorException);
    EXPECT_THROW(TypeParam::parse(String(u"-99999999999999999999999")), RangeErrorException);
    EXPECT_THROW(TypeParam::parse(String(u"99999999999999999999999x")), CastFailedException);
    EXPECT_THROW(TypeParam::valueOf(String(limits[3])), RangeErrorException);
}

TYPED_TEST(IntegerTest, ParseTakesSignsRadixesAndLeadingZeros) {
    using Value = typename TypeParam::ValueType;
    const struct {
        const char16_t* text;
        int radix;
    } sevenBits[] = {
        // clang-format off
        {u"127", 10}, {u"+127", 10}, {u"1111111", 2}, {u"177", 8}, {u"7f", 16}, {u"7F", 16},
        {u"3j", 36}, {u"3J", 36}, {u"00000000000000000000000000000000000127", 10},
        // clang-format on
    };
    for (const auto& c : sevenBits)
        EXPECT_EQ(TypeParam::parse(String(c.text), c.radix), Value(127)) << ascii(c.text);
    // "-0" is zero even for the unsigned types.
    EXPECT_EQ(TypeParam::parse(String(u"-0")), Value(0));
    EXPECT_EQ(TypeParam::valueOf(String(u"Z"), 36)->int32Value(), 35);
    if constexpr (std::is_signed_v<Value>) {
        EXPECT_EQ(TypeParam::valueOf(String(u"-z"), 36)->int32Value(), -35);
    }
}

TYPED_TEST(IntegerTest, ParseRejectsMalformedTextAndRadixes) {
    const struct {
        const char16_t* text;
        int radix;
    } malformed[] = {
        // clang-format off
        {u"", 10}, {u"+", 10}, {u"-", 10}, {u" 1", 10}, {u"1 ", 10}, {u"1.0", 10}, {u"0x1", 16},
        {u"1_0", 10}, {u"--1", 10}, {u"+-1", 10}, {u"2", 2}, {u"8", 8}, {u"g", 16}, {u"12a", 10},
        {u"\u0661", 10}, {u"\uFF11", 10},
        // clang-format on
    };
    for (const auto& c : malformed) {
        EXPECT_THROW(TypeParam::parse(String(c.text), c.radix), CastFailedException)
            << ascii(c.text);
    }
    // The radix is checked before the text.
    for (int radix : {-10, 0, 1, 37}) {
        EXPECT_THROW(TypeParam::parse(String(u"1"), radix), RangeErrorException) << radix;
        EXPECT_THROW(TypeParam::parse(String(u""), radix), RangeErrorException) << radix;
    }
}

} // namespace

TEST(Integer, HashCodesAreJavas) {
    EXPECT_EQ(Integer8(-1).hashCode(), 0xFFFFFFFFu);
    EXPECT_EQ(UInteger8(255).hashCode(), 255u);
    EXPECT_EQ(Integer32(INT32_MIN).hashCode(), 0x80000000u);
    EXPECT_EQ(Integer64(-1).hashCode(), 0u);
    EXPECT_EQ(Integer64(INT64_C(0x100000001)).hashCode(), 0u);
    EXPECT_EQ(Integer64(INT64_MIN).hashCode(), 0x80000000u);
    EXPECT_EQ(UInteger64(UINT64_C(0xFFFFFFFF00000000)).hashCode(), 0xFFFFFFFFu);
}

namespace {

const double inf = Double::POSITIVE_INFINITY;
const double NaN = Double::NaN;

template <class T> class FloatingTest : public ::testing::Test {};
using FloatingClasses = ::testing::Types<Float, Double>;
TYPED_TEST_SUITE(FloatingTest, FloatingClasses, );

} // namespace

TYPED_TEST(FloatingTest, OrderIsTotal) {
    using Value = typename TypeParam::ValueType;
    const Value inf = TypeParam::POSITIVE_INFINITY;
    const Value ordered[] = {
        -inf,          -TypeParam::MAX_VALUE, Value(-1), -TypeParam::MIN_VALUE, Value(-0.0),
        Value(0.0),    TypeParam::MIN_VALUE,  Value(1),  TypeParam::MAX_VALUE,  inf,
        TypeParam::NaN};
    const int count = sizeof ordered / sizeof ordered[0];
    for (int i = 0; i < count; ++i) {
        for (int j = 0; j < count; ++j) {
            const int expected = (i > j) - (i < j);
            EXPECT_EQ(TypeParam::compare(ordered[i], ordered[j]), expected) << i << " " << j;
            EXPECT_EQ(TypeParam(ordered[i]).compareTo(TypeParam(ordered[j])), expected);
            EXPECT_EQ(TypeParam(ordered[i]).equals(TypeParam(ordered[j])), i == j);
        }
    }
    // Java's odd one: MIN_VALUE is the smallest positive value.
    EXPECT_GT(TypeParam::MIN_VALUE, 0);
    EXPECT_EQ(TypeParam::MIN_VALUE, std::numeric_limits<Value>::denorm_min());
    EXPECT_THROW(TypeParam().compareTo(Integer32()), CastFailedException);
}

TEST(Floating, HashAndEqualityUseCanonicalBits) {
    const float quietNaN = Float::intBitsToFloat(static_cast<int32_t>(0xFFC01234u));
    EXPECT_TRUE(Float(quietNaN).equals(Float(Float::NaN)));
    EXPECT_EQ(Float(quietNaN).hashCode(), 0x7FC00000u);
    EXPECT_EQ(Float::floatToRawIntBits(quietNaN), static_cast<int32_t>(0xFFC01234u));
    EXPECT_EQ(Float(-0.0f).hashCode(), 0x80000000u);
    EXPECT_EQ(Float(1.0f).hashCode(), 0x3F800000u);

    const double otherNaN = Double::longBitsToDouble(static_cast<int64_t>(0xFFF8000000001234u));
    EXPECT_TRUE(Double(otherNaN).equals(Double(Double::NaN)));
    EXPECT_EQ(Double::compare(otherNaN, Double::NaN), 0);
    EXPECT_EQ(Double(otherNaN).hashCode(), 0x7FF80000u);
    EXPECT_EQ(Double(-0.0).hashCode(), 0x80000000u);
    EXPECT_EQ(Double(1.0).hashCode(), 0x3FF00000u);
    EXPECT_FALSE(Double(0.0).equals(Double(-0.0)));
    EXPECT_FALSE(Double(1.0).equals(Float(1.0f)));
}

TEST(Floating, ConversionsFollowJava) {
    const Double nan(Double::NaN);
    EXPECT_EQ(nan.int32Value(), 0);
    EXPECT_EQ(nan.uint32Value(), 0u);
    EXPECT_EQ(nan.uint64Value(), 0u);
    EXPECT_EQ(Double(-2.9).int32Value(), -2);
    EXPECT_EQ(Double(1e10).int32Value(), INT32_MAX);
    EXPECT_EQ(Double(-1e10).int32Value(), INT32_MIN);
    // The narrow types go through int32 and wrap: (byte) 1e10 is (byte) INT32_MAX.
    EXPECT_EQ(Double(1e10).int8Value(), -1);
    EXPECT_EQ(Double(-1e10).int16Value(), 0);
    EXPECT_EQ(Double(300.7).int8Value(), 44);
    EXPECT_EQ(Double(-1.0).uint8Value(), 255);
    EXPECT_EQ(Double(70000.0).uint16Value(), 4464);
    EXPECT_EQ(Double(9.3e18).int64Value(), INT64_MAX);
    EXPECT_EQ(Double(Double::NEGATIVE_INFINITY).int64Value(), INT64_MIN);
    EXPECT_EQ(Double(4e9).uint32Value(), 4000000000u);
    EXPECT_EQ(Double(-1.0).uint32Value(), 0xFFFFFFFFu);
    EXPECT_EQ(Double(1.8e19).uint64Value(), UINT64_C(18000000000000000000));
    EXPECT_EQ(Double(1e20).uint64Value(), UINT64_MAX);
    EXPECT_EQ(Double(-1.0).uint64Value(), UINT64_MAX);
    EXPECT_EQ(Double(-0.5).uint64Value(), 0u);
    EXPECT_EQ(Double(1e40).floatValue(), Float::POSITIVE_INFINITY);
    EXPECT_EQ(Float(3e9f).int32Value(), INT32_MAX);
}

TEST(Floating, ToStringIsGUnlessThatLosesTheValue) {
    const struct {
        double value;
        const char16_t* text;
    } doubles[] = {
        // clang-format off
        {0.0, u"0"}, {-0.0, u"-0"}, {100.0, u"100"}, {1e20, u"1e+20"}, {1e-5, u"1e-05"},
        {1234567.0, u"1234567"}, {-inf, u"-inf"}, {-NaN, u"nan"},
        {0.1 + 0.2, u"0.30000000000000004"}, {1.2345678e-7, u"1.2345678e-07"},
        {Double::MIN_VALUE, u"4.94066e-324"}, {1152921504606846976.0, u"1.152921504606847e+18"},
        {Double::MAX_VALUE, u"1.7976931348623157e+308"},
        // clang-format on
    };
    for (const auto& c : doubles)
        EXPECT_EQ(chars(Double(c.value).toString()), c.text);
    EXPECT_EQ(chars(Float(0.1f).toString()), u"0.1");
    EXPECT_EQ(chars(Float(16777216.0f).toString()), u"16777216");
    EXPECT_EQ(chars(Float(Float::MAX_VALUE).toString()), u"3.4028235e+38");
    EXPECT_EQ(chars(Float(Float::MIN_VALUE).toString()), u"1.4013e-45");
}

TEST(Floating, ParseAcceptsJavasFormsAndOurs) {
    const struct {
        const char16_t* text;
        double value;
    } accepted[] = {
        // clang-format off
        {u" 1.5\t\n", 1.5}, {u"+1.5", 1.5}, {u"-0", -0.0}, {u".5", 0.5}, {u"5.", 5.0},
        {u"1E+3", 1000.0}, {u"-Infinity", -inf}, {u"INF", inf}, {u"NaN", NaN}, {u"-nan", NaN},
        {u"1e-400", 0.0}, {u"-1e-400", -0.0}, {u"0e99999999999999", 0.0},
        {u"4.9e-324", Double::MIN_VALUE}, {u"1.7976931348623157e308", Double::MAX_VALUE},
        // clang-format on
    };
    for (const auto& c : accepted) {
        EXPECT_EQ(Double::doubleToLongBits(Double::parse(String(c.text))),
                  Double::doubleToLongBits(c.value))
            << ascii(c.text);
    }
    for (const char16_t* bad :
         {u"", u"  ", u"1e", u"e5", u".", u"-", u"+-1", u"1.5f", u"0x1p3", u"1,5", u"1..2",
          u"nan(1)", u"infinit", u"1e5.0", u"1 2", u"\u0661"}) {
        EXPECT_THROW(Double::parse(String(bad)), CastFailedException) << ascii(bad);
        EXPECT_THROW(Float::parse(String(bad)), CastFailedException) << ascii(bad);
    }
    for (const char16_t* huge : {u"1e309", u"-1.8e308", u"1e99999999999999999999", u"0.001e312"})
        EXPECT_THROW(Double::valueOf(String(huge)), RangeErrorException) << ascii(huge);
}

TEST(Floating, FloatRoundsOnceFromTheText) {
    // Just above halfway between 1 and the next float: through a double it would land on the
    // halfway point and round to even, down to 1.
    EXPECT_EQ(Float::parse(String(u"1.0000000596046447753906251")), 1.00000011920928955078125f);
    EXPECT_EQ(Float::parse(String(u"3.4028235e+38")), Float::MAX_VALUE);
    EXPECT_THROW(Float::parse(String(u"3.4028236e38")), RangeErrorException);
    EXPECT_THROW(Float::parse(String(u"-1e39")), RangeErrorException);
    EXPECT_EQ(Float::floatToIntBits(Float::parse(String(u"-1e-50"))), Float::floatToIntBits(-0.0f));
}
