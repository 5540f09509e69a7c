// BigInteger: an immutable integer of any size, as Java's java.math.BigInteger is, with the
// arithmetic, bit operations, text and byte conversions and number theory users know from it.
// Copies share one counted block of limbs, so passing one by value costs an atomic increment.
//
// Representation: a sign and a magnitude of 64-bit limbs, least significant first. Products and
// quotients of two limbs use the compiler's 128-bit integer on 64-bit targets and 32-bit halves
// elsewhere (the 32-bit Windows build), with the same results. Multiplication goes from the
// schoolbook method to Karatsuba, Toom-3 and number-theoretic transforms, division from Knuth's
// algorithm D to a recursive divide-and-conquer division, and text conversion in a radix that is
// not a power of two splits the number in halves, at measured thresholds. modPow with an odd
// modulus works in Montgomery form with a sliding window.
//
// Semantics are Java's:
//  - divide truncates toward zero and remainder takes the dividend's sign, so
//    a == a.divide(b) * b + a.remainder(b); mod is never negative;
//  - the bit operations, shiftRight, testBit and bitCount see a negative number as an infinite
//    two's-complement string of bits (shiftRight rounds toward minus infinity);
//  - toString writes an optional '-' and lower-case digits; parsing takes an optional '+' or '-'
//    and at least one digit of the radix, either case, nothing else (no blanks, no prefix).
//
// Failures (messages name the operation and the problem):
//  - MathDivByZeroException: divide, remainder and divideAndRemainder by zero;
//  - MathInvalidOpException: an operation undefined on its arguments: a negative exponent in
//    pow, a modulus that is not positive (mod, modPow, modInverse), modInverse of a number with
//    no inverse, sqrt of a negative number, valueOf of NaN or an infinity;
//  - MathOverflowException: a result beyond 2^31 - 1 bits (from pow, shiftLeft, setBit,
//    multiply or parsing), and the exact conversions int32ValueExact and int64ValueExact out
//    of range;
//  - CastFailedException: malformed text (empty, a stray character, a sign alone), quoted in the
//    message; a zero-length byte array;
//  - RangeErrorException: a radix outside 2 to 36, a negative bit index.
//
// Since `and`, `or`, `xor` and `not` are C++'s own words, those operations are named and_, or_,
// xor_ and not_; the operators &, |, ^ and ~ do the same.
#pragma once

#include "qn/core/CopyObject.h"
#include "qn/core/String.h"

#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace qn::math {

class QNCL_API BigInteger : public CopyObject {
public:
    // Zero.
    BigInteger() noexcept : m_block(nullptr), m_signum(0) {}
    // Any built-in integer, signed or unsigned.
    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    BigInteger(T value) : BigInteger(fromIntegral(value)) {}
    BigInteger(const BigInteger& other) noexcept;
    BigInteger(BigInteger&& other) noexcept;
    BigInteger& operator=(const BigInteger& other) noexcept;
    BigInteger& operator=(BigInteger&& other) noexcept;
    ~BigInteger() override;

    // Parses text in radix 2 to 36 as described above.
    explicit BigInteger(const String& text, int radix = 10);
    explicit BigInteger(const char16_t* text, int radix = 10);
    // Big-endian two's complement, as toByteArray writes it; at least one byte.
    BigInteger(const signed char* bytes, int32_t length);
    BigInteger(const char* bytes, int32_t length)
        : BigInteger(reinterpret_cast<const signed char*>(bytes), length) {}
    BigInteger(const unsigned char* bytes, int32_t length)
        : BigInteger(reinterpret_cast<const signed char*>(bytes), length) {}
    // A big-endian magnitude (possibly empty, or all zeros) with a sign of -1, 0 or 1;
    // RangeErrorException for another sign, or a non-zero magnitude with sign 0.
    BigInteger(int signum, const unsigned char* magnitude, int32_t length);

    static BigInteger valueOf(int64_t value);
    // Other integer types by their own signedness, so that valueOf(5) is not ambiguous with
    // valueOf(double).
    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    static BigInteger valueOf(T value) {
        return fromIntegral(value);
    }
    static BigInteger valueOfUnsigned(uint64_t value);
    static BigInteger valueOf(const String& text, int radix = 10) {
        return BigInteger(text, radix);
    }
    // The exact value of a finite double, truncated toward zero; MathInvalidOpException for NaN
    // and the infinities.
    static BigInteger valueOf(double value);
    // A new heap object, count 0, for code that holds it by reference count.
    static Reference<BigInteger> create(const BigInteger& value);

    // Arithmetic.
    BigInteger add(const BigInteger& other) const;
    BigInteger subtract(const BigInteger& other) const;
    BigInteger multiply(const BigInteger& other) const;
    BigInteger divide(const BigInteger& divisor) const;
    BigInteger remainder(const BigInteger& divisor) const;
    // The quotient, then the remainder.
    std::pair<BigInteger, BigInteger> divideAndRemainder(const BigInteger& divisor) const;
    // The remainder in 0 to m - 1; m must be positive.
    BigInteger mod(const BigInteger& m) const;
    BigInteger pow(int32_t exponent) const;
    // this^exponent mod m; a negative exponent uses the inverse of this.
    BigInteger modPow(const BigInteger& exponent, const BigInteger& m) const;
    BigInteger modInverse(const BigInteger& m) const;
    // Never negative; gcd(0, 0) is 0.
    BigInteger gcd(const BigInteger& other) const;
    // The largest integer whose square is at most this.
    BigInteger sqrt() const;
    BigInteger negate() const;
    BigInteger abs() const;
    int signum() const noexcept { return m_signum; }
    BigInteger min(const BigInteger& other) const;
    BigInteger max(const BigInteger& other) const;

    // Bits, in two's complement.
    BigInteger shiftLeft(int32_t n) const;
    BigInteger shiftRight(int32_t n) const;
    BigInteger and_(const BigInteger& other) const;
    BigInteger or_(const BigInteger& other) const;
    BigInteger xor_(const BigInteger& other) const;
    BigInteger not_() const;
    BigInteger andNot(const BigInteger& other) const;
    bool testBit(int32_t n) const;
    BigInteger setBit(int32_t n) const;
    BigInteger clearBit(int32_t n) const;
    BigInteger flipBit(int32_t n) const;
    // Bits in the shortest two's complement form, sign excluded: 0 for 0 and -1.
    int32_t bitLength() const noexcept;
    // Bits that differ from the sign bit.
    int32_t bitCount() const noexcept;
    // The index of the lowest one bit; -1 for zero.
    int32_t getLowestSetBit() const noexcept;

    // Conversions. The plain ones keep the low bits, as a cast would; the exact ones throw.
    int32_t int32Value() const noexcept;
    int64_t int64Value() const noexcept;
    int32_t int32ValueExact() const;
    int64_t int64ValueExact() const;
    // Rounded to nearest, ties to even; beyond double's range an infinity.
    double doubleValue() const noexcept;
    // Big-endian two's complement in the fewest bytes, at least one.
    std::vector<signed char> toByteArray() const;
    String toString(int radix) const;

    // Probably prime with a chance of error below 2^-certainty (Miller-Rabin after trial
    // division); certainty <= 0 gives true.
    bool isProbablePrime(int32_t certainty) const;

    // Object: value order and equality; Java's hash; the decimal text.
    Reference<Object> clone() const override;
    // CastFailedException when other is not a BigInteger.
    int32_t compareTo(const Object& other) const override;
    bool equals(const Object& other) const override;
    uint32_t hashCode() const override;
    String toString() const override;
    int32_t compareTo(const BigInteger& other) const noexcept;
    bool equals(const BigInteger& other) const noexcept { return compareTo(other) == 0; }

private:
    friend struct BigIntegerAccess;
    struct Block;

    BigInteger(Block* block, int signum) noexcept;
    template <class T> static BigInteger fromIntegral(T value) {
        if constexpr (std::is_signed_v<T>)
            return valueOf(static_cast<int64_t>(value));
        else
            return valueOfUnsigned(static_cast<uint64_t>(value));
    }
    uint32_t size() const noexcept;
    const uint64_t* limbs() const noexcept;

    Block* m_block;
    int m_signum;
};

inline BigInteger operator+(const BigInteger& a, const BigInteger& b) {
    return a.add(b);
}
inline BigInteger operator-(const BigInteger& a, const BigInteger& b) {
    return a.subtract(b);
}
inline BigInteger operator-(const BigInteger& a) {
    return a.negate();
}
inline BigInteger operator*(const BigInteger& a, const BigInteger& b) {
    return a.multiply(b);
}
inline BigInteger operator/(const BigInteger& a, const BigInteger& b) {
    return a.divide(b);
}
inline BigInteger operator%(const BigInteger& a, const BigInteger& b) {
    return a.remainder(b);
}
inline BigInteger operator<<(const BigInteger& a, int32_t n) {
    return a.shiftLeft(n);
}
inline BigInteger operator>>(const BigInteger& a, int32_t n) {
    return a.shiftRight(n);
}
inline BigInteger operator&(const BigInteger& a, const BigInteger& b) {
    return a.and_(b);
}
inline BigInteger operator|(const BigInteger& a, const BigInteger& b) {
    return a.or_(b);
}
inline BigInteger operator^(const BigInteger& a, const BigInteger& b) {
    return a.xor_(b);
}
inline BigInteger operator~(const BigInteger& a) {
    return a.not_();
}
inline bool operator==(const BigInteger& a, const BigInteger& b) {
    return a.compareTo(b) == 0;
}
inline bool operator!=(const BigInteger& a, const BigInteger& b) {
    return a.compareTo(b) != 0;
}
inline bool operator<(const BigInteger& a, const BigInteger& b) {
    return a.compareTo(b) < 0;
}
inline bool operator<=(const BigInteger& a, const BigInteger& b) {
    return a.compareTo(b) <= 0;
}
inline bool operator>(const BigInteger& a, const BigInteger& b) {
    return a.compareTo(b) > 0;
}
inline bool operator>=(const BigInteger& a, const BigInteger& b) {
    return a.compareTo(b) >= 0;
}

} // namespace qn::math
