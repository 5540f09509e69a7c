// BigDecimal: an immutable decimal number of any size, an unscaled BigInteger and a 32-bit
// scale, worth unscaled * 10^-scale, as Java's java.math.BigDecimal is. Arithmetic is exact
// unless a MathContext (a precision in significant digits and a rounding mode) or a scale and a
// rounding mode say how to round.
//
// As in Java:
//  - compareTo compares values (2.0 equals 2.00), equals wants the same value and scale;
//  - add and subtract give the larger scale, multiply the sum of the scales, divide without a
//    context the exact quotient at the smallest scale from this scale - divisor scale up;
//    results rounded to a precision lose trailing zeros only where an exact result allows
//    reaching that preferred scale;
//  - toString writes scientific notation ("1.23E+5", "1E-7") when the scale is negative or the
//    exponent would be below -6, plain digits otherwise; toPlainString never uses an exponent;
//  - parsing takes an optional sign, digits with at most one '.', at least one digit, and an
//    optional exponent ('e' or 'E', an optional sign, digits): "-1.5e3", ".5", "5.".
//
// Failures (messages name the operation and the problem):
//  - MathDivByZeroException: a division by zero (0/0 too);
//  - MathErrorException: "Rounding necessary" under RoundingMode::UNNECESSARY, and an exact
//    division whose quotient has no finite decimal expansion ("Non-terminating decimal
//    expansion");
//  - MathOverflowException: a scale beyond the 32-bit range, an unscaled value beyond
//    BigInteger's, int64ValueExact out of range;
//  - MathInvalidOpException: pow with an exponent outside 0 to 999999999 (-999999999 to
//    999999999 with a context), a negative precision, NaN or an infinity as a double;
//  - CastFailedException: malformed text, quoted in the message, or text whose scale does not
//    fit in 32 bits.
#pragma once

#include "qn/math/BigInteger.h"

namespace qn::math {

// How a result with more digits than wanted is cut.
enum class RoundingMode {
    UP,          // away from zero
    DOWN,        // toward zero
    CEILING,     // toward plus infinity
    FLOOR,       // toward minus infinity
    HALF_UP,     // to nearest, a tie away from zero
    HALF_DOWN,   // to nearest, a tie toward zero
    HALF_EVEN,   // to nearest, a tie to the even neighbour
    UNNECESSARY, // the result must be exact, or MathErrorException
};

// A precision in significant digits (0: unlimited, exact) and a rounding mode.
struct QNCL_API MathContext {
    int32_t precision = 0;
    RoundingMode roundingMode = RoundingMode::HALF_UP;

    MathContext() = default;
    // MathInvalidOpException for a negative precision.
    explicit MathContext(int32_t digits, RoundingMode mode = RoundingMode::HALF_UP);

    // IEEE 754 decimal formats: 7, 16 and 34 digits, half even.
    static MathContext decimal32() { return MathContext(7, RoundingMode::HALF_EVEN); }
    static MathContext decimal64() { return MathContext(16, RoundingMode::HALF_EVEN); }
    static MathContext decimal128() { return MathContext(34, RoundingMode::HALF_EVEN); }
    static MathContext unlimited() { return MathContext(0, RoundingMode::HALF_UP); }
};

class QNCL_API BigDecimal : public CopyObject {
public:
    // Zero with scale 0.
    BigDecimal() noexcept : m_scale(0) {}
    BigDecimal(const BigInteger& unscaled, int32_t scale = 0);
    // Any built-in integer, at scale 0.
    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    BigDecimal(T value) : BigDecimal(BigInteger(value)) {}
    // The exact binary value of a finite double: BigDecimal(0.1) has 55 digits.
    explicit BigDecimal(double value);
    explicit BigDecimal(const String& text);
    explicit BigDecimal(const char16_t* text);
    BigDecimal(const BigDecimal& other) noexcept;
    BigDecimal& operator=(const BigDecimal& other) noexcept;
    BigDecimal(BigDecimal&& other) noexcept;
    BigDecimal& operator=(BigDecimal&& other) noexcept;
    ~BigDecimal() override;

    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    static BigDecimal valueOf(T unscaled, int32_t scale = 0) {
        return BigDecimal(BigInteger(unscaled), scale);
    }
    // Through the shortest text that reads back as value: valueOf(0.1) is 0.1.
    static BigDecimal valueOf(double value);
    // A new heap object, count 0, for code that holds it by reference count.
    static Reference<BigDecimal> create(const BigDecimal& value);

    BigDecimal add(const BigDecimal& other) const;
    BigDecimal add(const BigDecimal& other, const MathContext& mc) const;
    BigDecimal subtract(const BigDecimal& other) const;
    BigDecimal subtract(const BigDecimal& other, const MathContext& mc) const;
    BigDecimal multiply(const BigDecimal& other) const;
    BigDecimal multiply(const BigDecimal& other, const MathContext& mc) const;
    // The exact quotient; MathErrorException when it does not terminate.
    BigDecimal divide(const BigDecimal& divisor) const;
    BigDecimal divide(const BigDecimal& divisor, const MathContext& mc) const;
    // The quotient at the given scale.
    BigDecimal divide(const BigDecimal& divisor, int32_t scale, RoundingMode mode) const;
    // The quotient at this number's scale.
    BigDecimal divide(const BigDecimal& divisor, RoundingMode mode) const;
    // The integer part of the quotient, at the preferred scale this scale - divisor scale where
    // that is exact.
    BigDecimal divideToIntegralValue(const BigDecimal& divisor) const;
    // this - divideToIntegralValue(divisor) * divisor.
    BigDecimal remainder(const BigDecimal& divisor) const;
    std::pair<BigDecimal, BigDecimal> divideAndRemainder(const BigDecimal& divisor) const;
    // Exact, for n in 0 to 999999999.
    BigDecimal pow(int32_t n) const;
    // Rounded to the context, with intermediate results kept to a few more digits; a negative
    // n divides one by the power.
    BigDecimal pow(int32_t n, const MathContext& mc) const;
    BigDecimal abs() const;
    BigDecimal negate() const;
    BigDecimal round(const MathContext& mc) const;
    BigDecimal setScale(int32_t scale, RoundingMode mode) const;
    // Exact: MathErrorException when digits would be lost.
    BigDecimal setScale(int32_t scale) const { return setScale(scale, RoundingMode::UNNECESSARY); }
    BigDecimal movePointLeft(int32_t n) const;
    BigDecimal movePointRight(int32_t n) const;
    // this * 10^n, by changing the scale only.
    BigDecimal scaleByPowerOfTen(int32_t n) const;
    // The same value without trailing zeros in the unscaled value; zero becomes 0 (scale 0).
    BigDecimal stripTrailingZeros() const;
    BigDecimal min(const BigDecimal& other) const;
    BigDecimal max(const BigDecimal& other) const;
    // One unit in the last place: 10^-scale.
    BigDecimal ulp() const;

    int signum() const noexcept { return m_unscaled.signum(); }
    int32_t scale() const noexcept { return m_scale; }
    // Digits of the unscaled value; 1 for zero.
    int32_t precision() const;
    const BigInteger& unscaledValue() const noexcept { return m_unscaled; }

    // The integer part, truncated; the exact form throws MathErrorException for a fraction.
    BigInteger toBigInteger() const;
    BigInteger toBigIntegerExact() const;
    int32_t int32Value() const { return toBigInteger().int32Value(); }
    int64_t int64Value() const { return toBigInteger().int64Value(); }
    int64_t int64ValueExact() const;
    // Rounded to nearest; beyond double's range an infinity, below it a zero.
    double doubleValue() const;

    String toPlainString() const;

    // Object.
    Reference<Object> clone() const override;
    // By value; CastFailedException when other is not a BigDecimal.
    int32_t compareTo(const Object& other) const override;
    // Value and scale.
    bool equals(const Object& other) const override;
    uint32_t hashCode() const override;
    String toString() const override;
    int32_t compareTo(const BigDecimal& other) const;
    bool equals(const BigDecimal& other) const noexcept {
        return m_scale == other.m_scale && m_unscaled.equals(other.m_unscaled);
    }

private:
    BigInteger m_unscaled;
    int32_t m_scale;
};

} // namespace qn::math
