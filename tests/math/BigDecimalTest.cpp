#include "qn/math/BigDecimal.h"
#include "qn/core/Class.h"
#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace qn;
using qn::math::BigDecimal;
using qn::math::BigInteger;
using qn::math::MathContext;
using qn::math::RoundingMode;

namespace {

std::string narrow(const String& s) {
    return std::string(s.getData(), s.getData() + s.getLength());
}

BigDecimal dec(const char16_t* text) {
    return BigDecimal(text);
}

} // namespace

TEST(BigDecimal, EveryRoundingModeOnTiesAndNearTies) {
    const char16_t* values[] = {u"5.5",  u"2.5",  u"1.6",  u"1.1",  u"1.0",
                                u"-1.0", u"-1.1", u"-1.6", u"-2.5", u"-5.5"};
    struct Row {
        RoundingMode mode;
        int expected[10]; // 99: "Rounding necessary"
    } rows[] = {
        {RoundingMode::UP, {6, 3, 2, 2, 1, -1, -2, -2, -3, -6}},
        {RoundingMode::DOWN, {5, 2, 1, 1, 1, -1, -1, -1, -2, -5}},
        {RoundingMode::CEILING, {6, 3, 2, 2, 1, -1, -1, -1, -2, -5}},
        {RoundingMode::FLOOR, {5, 2, 1, 1, 1, -1, -2, -2, -3, -6}},
        {RoundingMode::HALF_UP, {6, 3, 2, 1, 1, -1, -1, -2, -3, -6}},
        {RoundingMode::HALF_DOWN, {5, 2, 2, 1, 1, -1, -1, -2, -2, -5}},
        {RoundingMode::HALF_EVEN, {6, 2, 2, 1, 1, -1, -1, -2, -2, -6}},
        {RoundingMode::UNNECESSARY, {99, 99, 99, 99, 1, -1, 99, 99, 99, 99}},
    };
    for (const Row& row : rows) {
        for (int i = 0; i < 10; ++i) {
            const BigDecimal x = dec(values[i]);
            SCOPED_TRACE(narrow(String(values[i])) + " mode " +
                         std::to_string(static_cast<int>(row.mode)));
            const BigDecimal ten(10);
            const MathContext one(1, row.mode);
            if (row.expected[i] == 99) {
                EXPECT_THROW(x.setScale(0, row.mode), MathErrorException);
                EXPECT_THROW(x.round(one), MathErrorException);
                EXPECT_THROW(x.multiply(ten).divide(ten, 0, row.mode), MathErrorException);
                EXPECT_THROW(x.multiply(ten).divide(BigDecimal(10), one), MathErrorException);
                continue;
            }
            const BigDecimal expected(row.expected[i]);
            // Four routes to the same rounding: scale, precision, division at a scale and
            // division to a precision.
            EXPECT_TRUE(x.setScale(0, row.mode).equals(expected));
            EXPECT_EQ(x.round(one).compareTo(expected), 0);
            EXPECT_TRUE(x.multiply(ten).divide(ten, 0, row.mode).equals(expected));
            EXPECT_EQ(x.multiply(ten).divide(ten, one).compareTo(expected), 0);
        }
    }
    // A tie far below a long coefficient, and the carry that rounding sends up to a new digit.
    EXPECT_EQ(narrow(dec(u"0.1250000000000000000000000000000000000000001")
                         .setScale(2, RoundingMode::HALF_EVEN)
                         .toString()),
              "0.13");
    EXPECT_EQ(narrow(dec(u"0.125").setScale(2, RoundingMode::HALF_EVEN).toString()), "0.12");
    EXPECT_EQ(narrow(dec(u"9.9999").round(MathContext(3)).toString()), "10.0");
    EXPECT_EQ(narrow(dec(u"-99999").round(MathContext(2, RoundingMode::FLOOR)).toString()),
              "-1.0E+5");
    try {
        dec(u"1.5").setScale(0);
        FAIL();
    } catch (const MathErrorException& e) {
        EXPECT_EQ(narrow(e.getDescription()), "Rounding necessary");
    }
}

TEST(BigDecimal, TextInBothNotations) {
    struct Case {
        long long unscaled;
        int32_t scale;
        const char* text;
        const char* plain;
    } cases[] = {
        {123, 0, "123", "123"},
        {-123, 0, "-123", "-123"},
        {123, -1, "1.23E+3", "1230"},
        {123, 3, "0.123", "0.123"},
        {123, 10, "1.23E-8", "0.0000000123"},
        {-123, 12, "-1.23E-10", "-0.000000000123"},
        {0, -2, "0E+2", "0"},
        {0, 2, "0.00", "0.00"},
        {1, 7, "1E-7", "0.0000001"},
        {1, 6, "0.000001", "0.000001"},
        {-5, -3, "-5E+3", "-5000"},
        {20261115163005042, 3, "20261115163005.042", "20261115163005.042"},
    };
    for (const Case& c : cases) {
        const BigDecimal x(BigInteger(c.unscaled), c.scale);
        EXPECT_EQ(narrow(x.toString()), c.text);
        EXPECT_EQ(narrow(x.toPlainString()), c.plain);
    }
    struct Parsed {
        const char16_t* text;
        long long unscaled;
        int32_t scale;
    } parsed[] = {{u"1.23E3", 123, -1}, {u"-1.5e-3", -15, 4}, {u".5", 5, 1},         {u"5.", 5, 0},
                  {u"+0.00", 0, 2},     {u"1e+0", 1, 0},      {u"00012.50", 1250, 2}};
    for (const Parsed& p : parsed) {
        const BigDecimal x(p.text);
        EXPECT_EQ(x.unscaledValue().int64Value(), p.unscaled) << narrow(String(p.text));
        EXPECT_EQ(x.scale(), p.scale) << narrow(String(p.text));
    }
    for (const char16_t* bad : {u"", u"-", u".", u"1.2.3", u"1e", u"e5", u"1 ", u"abc", u"1e+",
                                u"1e5.0", u"--1", u"1e99999999999"})
        EXPECT_THROW(BigDecimal x(bad), CastFailedException) << narrow(String(bad));
    // Large coefficients go through the same layout.
    const BigDecimal big(BigInteger(10).pow(40).add(BigInteger(7)), 20);
    EXPECT_EQ(narrow(big.toString()), "100000000000000000000.00000000000000000007");
}

TEST(BigDecimal, ValueOrderVersusEqualityAndScales) {
    const BigDecimal a = dec(u"2.0"), b = dec(u"2.00");
    EXPECT_EQ(a.compareTo(b), 0);
    EXPECT_FALSE(a.equals(b));
    EXPECT_NE(a.hashCode(), b.hashCode());
    EXPECT_TRUE(a.stripTrailingZeros().equals(b.stripTrailingZeros()));
    EXPECT_EQ(dec(u"-0.001").compareTo(dec(u"-1E-4")), -1);
    EXPECT_EQ(dec(u"1E+5").compareTo(dec(u"99999.999")), 1);
    EXPECT_EQ(dec(u"0E+9").compareTo(dec(u"0.000")), 0);
    EXPECT_EQ(narrow(dec(u"1.2300").stripTrailingZeros().toString()), "1.23");
    EXPECT_EQ(narrow(dec(u"100").stripTrailingZeros().toString()), "1E+2");
    EXPECT_EQ(narrow(dec(u"0.000").stripTrailingZeros().toString()), "0");
    EXPECT_EQ(narrow(BigDecimal(BigInteger(10).pow(500), 0).stripTrailingZeros().toString()),
              "1E+500");

    EXPECT_EQ(narrow(dec(u"1.1").add(dec(u"2.22")).toString()), "3.32");
    EXPECT_EQ(narrow(dec(u"1E+2").add(dec(u"1")).toString()), "101");
    EXPECT_EQ(narrow(dec(u"1.5").multiply(dec(u"2.25")).toString()), "3.375");
    EXPECT_EQ(narrow(dec(u"1.5").subtract(dec(u"1.50")).toString()), "0.00");
    EXPECT_EQ(narrow(dec(u"1.1").pow(2).toString()), "1.21");
    EXPECT_EQ(narrow(dec(u"1.5").setScale(3).toString()), "1.500");
    EXPECT_EQ(narrow(dec(u"12.345").movePointLeft(2).toString()), "0.12345");
    EXPECT_EQ(narrow(dec(u"12.345").movePointRight(4).toString()), "123450");
    EXPECT_EQ(narrow(dec(u"12.345").scaleByPowerOfTen(4).toString()), "1.2345E+5");
    EXPECT_EQ(narrow(dec(u"12.345").ulp().toString()), "0.001");
    EXPECT_EQ(dec(u"-12.345").precision(), 5);
    EXPECT_EQ(dec(u"0.00").precision(), 1);

    // An operand far below the other's last digit still decides the rounding, without
    // building a billion-digit sum.
    const BigDecimal huge = dec(u"1E+1000000000");
    EXPECT_EQ(narrow(huge.add(BigDecimal(1), MathContext(5)).toString()), "1.0000E+1000000000");
    EXPECT_EQ(narrow(huge.add(BigDecimal(1), MathContext(5, RoundingMode::UP)).toString()),
              "1.0001E+1000000000");
    EXPECT_EQ(narrow(huge.subtract(BigDecimal(1), MathContext(5, RoundingMode::DOWN)).toString()),
              "9.9999E+999999999");
    EXPECT_EQ(narrow(dec(u"123.456").add(dec(u"0.0004"), MathContext(5)).toString()), "123.46");
}

TEST(BigDecimal, DivisionExactRoundedAndIntegral) {
    EXPECT_EQ(narrow(dec(u"1").divide(dec(u"3"), MathContext(5)).toString()), "0.33333");
    EXPECT_EQ(narrow(dec(u"-2").divide(dec(u"3"), MathContext(5)).toString()), "-0.66667");
    EXPECT_EQ(narrow(dec(u"10").divide(dec(u"4"), MathContext(5)).toString()), "2.5");
    EXPECT_EQ(narrow(dec(u"6").divide(dec(u"2"), MathContext(5)).toString()), "3");
    EXPECT_EQ(narrow(dec(u"1.00").divide(dec(u"4")).toString()), "0.25");
    EXPECT_EQ(narrow(dec(u"1").divide(dec(u"8")).toString()), "0.125");
    EXPECT_EQ(narrow(dec(u"100").divide(dec(u"4")).toString()), "25");
    EXPECT_EQ(narrow(dec(u"6.00").divide(dec(u"-2")).toString()), "-3.00");
    EXPECT_EQ(narrow(dec(u"1E+2").divide(dec(u"4")).toString()), "25");
    EXPECT_EQ(narrow(dec(u"7").divide(dec(u"3"), 4, RoundingMode::HALF_UP).toString()), "2.3333");
    EXPECT_EQ(narrow(dec(u"7.50").divide(dec(u"2"), RoundingMode::HALF_EVEN).toString()), "3.75");
    try {
        dec(u"1").divide(dec(u"3"));
        FAIL();
    } catch (const MathErrorException& e) {
        EXPECT_EQ(narrow(e.getDescription()),
                  "Non-terminating decimal expansion; no exact representable decimal result.");
    }
    EXPECT_THROW(dec(u"1").divide(dec(u"0.00")), MathDivByZeroException);
    EXPECT_THROW(dec(u"0").divide(dec(u"0"), MathContext(3)), MathDivByZeroException);
    EXPECT_THROW(dec(u"1").divide(BigDecimal(), 2, RoundingMode::UP), MathDivByZeroException);
    EXPECT_EQ(narrow(dec(u"7.5").divideToIntegralValue(dec(u"2")).toString()), "3.0");
    EXPECT_EQ(narrow(dec(u"7.5").remainder(dec(u"2")).toString()), "1.5");
    EXPECT_EQ(narrow(dec(u"-7.5").remainder(dec(u"2")).toString()), "-1.5");
    EXPECT_EQ(narrow(dec(u"2").pow(-1, MathContext(5)).toString()), "0.5");
    EXPECT_EQ(narrow(dec(u"1.0001").pow(10000, MathContext(10)).toString()), "2.718145927");
    EXPECT_THROW(dec(u"2").pow(-1), MathInvalidOpException);

    // Truncated quotients bracket the dividend, for operands across the division algorithms.
    std::mt19937 random(17);
    for (int digits : {3, 30, 300, 3000, 9000}) {
        for (int precision : {1, 20, 400, 5000}) {
            std::u16string a, b;
            for (int i = 0; i < digits; ++i)
                a += static_cast<char16_t>(u'1' + random() % 9);
            for (int i = 0; i < digits / 2 + 1; ++i)
                b += static_cast<char16_t>(u'1' + random() % 9);
            const BigDecimal x(BigInteger(String(a.data(), static_cast<int32_t>(a.size()))), 7);
            const BigDecimal y(BigInteger(String(b.data(), static_cast<int32_t>(b.size()))), 3);
            const BigDecimal q = x.divide(y, MathContext(precision, RoundingMode::DOWN));
            SCOPED_TRACE(std::to_string(digits) + " digits to " + std::to_string(precision));
            EXPECT_LE(q.precision(), precision);
            EXPECT_LE(q.multiply(y).compareTo(x), 0);
            EXPECT_GT(q.add(q.ulp()).multiply(y).compareTo(x), 0);
            const BigDecimal up = x.divide(y, MathContext(precision, RoundingMode::UP));
            EXPECT_GE(up.multiply(y).compareTo(x), 0);
        }
    }
}

TEST(BigDecimal, ConversionsAndObjectBehaviour) {
    EXPECT_EQ(narrow(BigDecimal(0.1).toString()),
              "0.1000000000000000055511151231257827021181583404541015625");
    EXPECT_EQ(narrow(BigDecimal(-2.5).toString()), "-2.5");
    EXPECT_EQ(narrow(BigDecimal(1e20).toString()), "100000000000000000000");
    EXPECT_EQ(narrow(BigDecimal::valueOf(0.1).toString()), "0.1");
    EXPECT_EQ(narrow(BigDecimal::valueOf(5).toString()), "5");
    EXPECT_EQ(narrow(BigDecimal::valueOf(-5, 3).toString()), "-0.005");
    EXPECT_THROW(BigDecimal x(std::nan("")), MathInvalidOpException);
    EXPECT_EQ(dec(u"0.1").doubleValue(), 0.1);
    EXPECT_EQ(dec(u"-123.456").doubleValue(), -123.456);
    EXPECT_EQ(dec(u"1E-400").doubleValue(), 0.0);
    EXPECT_EQ(dec(u"1E+400").doubleValue(), HUGE_VAL);
    EXPECT_EQ(dec(u"1.7976931348623157E+308").doubleValue(), 1.7976931348623157e308);
    EXPECT_EQ(dec(u"-12.9").int64Value(), -12);
    EXPECT_EQ(dec(u"1.2E+3").toBigInteger().int64Value(), 1200);
    EXPECT_THROW(dec(u"12.5").toBigIntegerExact(), MathErrorException);
    EXPECT_EQ(dec(u"12.000").int64ValueExact(), 12);
    EXPECT_THROW(dec(u"1E+30").int64ValueExact(), MathOverflowException);
    EXPECT_THROW(dec(u"1E-2147483647").multiply(dec(u"1E-10")), MathOverflowException);
    EXPECT_THROW(MathContext(-1), MathInvalidOpException);

    Reference<Object> copy = dec(u"4.50").clone();
    EXPECT_TRUE(copy->equals(dec(u"4.50")));
    EXPECT_FALSE(copy->equals(dec(u"4.5")));
    EXPECT_EQ(copy->compareTo(dec(u"4.5")), 0);
    EXPECT_THROW(copy->compareTo(BigInteger(4)), CastFailedException);
    EXPECT_EQ(dec(u"4.50").hashCode(), 31u * 450u + 2u);
    Reference<Object> made = Class::forName(u"CQNBigDecimal")->createInstance();
    EXPECT_EQ(narrow(made->toString()), "0");
}
