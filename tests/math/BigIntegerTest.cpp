#include "qn/math/BigInteger.h"
#include "qn/core/Class.h"
#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

using namespace qn;
using qn::math::BigInteger;

namespace {

std::string narrow(const String& s) {
    return std::string(s.getData(), s.getData() + s.getLength());
}

BigInteger big(const char16_t* text, int radix = 10) {
    return BigInteger(text, radix);
}

// Random numbers of about the given number of 64-bit limbs, with runs of all-one and all-zero
// limbs so that carries and borrows travel far.
class Numbers {
public:
    explicit Numbers(uint32_t seed) : m_random(seed) {}
    BigInteger next(int limbs, bool allowNegative = true) {
        std::u16string hex;
        for (int i = 0; i < limbs; ++i) {
            const int kind = static_cast<int>(m_random() % 4);
            for (int j = 0; j < 16; ++j) {
                const unsigned digit = kind == 0 ? 15u : kind == 1 ? 0u : m_random() % 16;
                hex += u"0123456789abcdef"[digit];
            }
        }
        if (hex.find_first_not_of(u'0') == std::u16string::npos)
            hex.back() = u'1';
        BigInteger x(String(hex.data(), static_cast<int32_t>(hex.size())), 16);
        return allowNegative && (m_random() & 1) ? x.negate() : x;
    }
    uint32_t below(uint32_t n) { return m_random() % n; }

private:
    std::mt19937 m_random;
};

} // namespace

TEST(BigInteger, CarriesAndBorrowsCrossLimbs) {
    const BigInteger limb = big(u"18446744073709551615"); // 2^64 - 1
    EXPECT_EQ(narrow(limb.add(BigInteger(1)).toString()), "18446744073709551616");
    EXPECT_EQ(narrow(limb.add(BigInteger(1)).subtract(BigInteger(1)).toString(16)),
              "ffffffffffffffff");
    const BigInteger twoLimbs = big(u"ffffffffffffffffffffffffffffffff", 16);
    EXPECT_EQ(narrow(twoLimbs.add(BigInteger(1)).toString(16)),
              "100000000000000000000000000000000");
    EXPECT_EQ(narrow(BigInteger(1).shiftLeft(128).subtract(BigInteger(1)).toString(16)),
              narrow(twoLimbs.toString(16)));
    EXPECT_EQ(narrow(twoLimbs.multiply(twoLimbs).toString(16)),
              "fffffffffffffffffffffffffffffffe00000000000000000000000000000001");
    EXPECT_EQ(narrow(BigInteger(1).shiftLeft(128).toString()),
              "340282366920938463463374607431768211456");
    // All-ones operands of every small shape: each product limb sees the largest carries.
    for (int m = 1; m <= 9; ++m) {
        for (int n = 1; n <= 9; ++n) {
            const BigInteger x = BigInteger(1).shiftLeft(64 * m).subtract(BigInteger(1));
            const BigInteger y = BigInteger(1).shiftLeft(64 * n).subtract(BigInteger(1));
            const BigInteger expected = BigInteger(1)
                                            .shiftLeft(64 * (m + n))
                                            .subtract(BigInteger(1).shiftLeft(64 * m))
                                            .subtract(BigInteger(1).shiftLeft(64 * n))
                                            .add(BigInteger(1));
            EXPECT_EQ(x.multiply(y), expected) << m << "x" << n;
        }
    }
    // Borrowing across a run of zero limbs.
    EXPECT_EQ(BigInteger(1).shiftLeft(256).subtract(BigInteger(1)).bitCount(), 256);
    EXPECT_EQ(narrow(BigInteger(1).shiftLeft(192).subtract(limb).toString(16)),
              "ffffffffffffffffffffffffffffffff0000000000000001");
}

TEST(BigInteger, SignsInEveryOperation) {
    const int64_t values[] = {-7, -3, -1, 0, 1, 3, 7, INT64_MIN + 1, INT64_MAX};
    for (int64_t a : values) {
        for (int64_t b : values) {
            const BigInteger x(a), y(b);
            SCOPED_TRACE(std::to_string(a) + " " + std::to_string(b));
            EXPECT_EQ(x.add(y).subtract(y), x);
            EXPECT_EQ(x.multiply(y), BigInteger(b).multiply(x));
            if (a > -1000 && a < 1000 && b > -1000 && b < 1000) {
                EXPECT_EQ(x.add(y).int64Value(), a + b);
                EXPECT_EQ(x.multiply(y).int64Value(), a * b);
                EXPECT_EQ(x.and_(y).int64Value(), a & b);
                EXPECT_EQ(x.or_(y).int64Value(), a | b);
                EXPECT_EQ(x.xor_(y).int64Value(), a ^ b);
                EXPECT_EQ(x.andNot(y).int64Value(), a & ~b);
            }
            if (b != 0 && a > -1000 && a < 1000) {
                // C++ and Java agree: truncating quotient, remainder with the dividend's sign.
                EXPECT_EQ(x.divide(y).int64Value(), a / b);
                EXPECT_EQ(x.remainder(y).int64Value(), a % b);
                if (b > 0) {
                    EXPECT_EQ(x.mod(y).int64Value(), a % b < 0 ? a % b + b : a % b);
                }
            }
            EXPECT_EQ(x.compareTo(y), a < b ? -1 : a > b ? 1 : 0);
        }
        const BigInteger x(a);
        EXPECT_EQ(x.negate().negate(), x);
        EXPECT_EQ(x.abs().signum(), a != 0 ? 1 : 0);
        EXPECT_EQ(x.not_().int64Value(), ~a);
        EXPECT_EQ(x.int64Value(), a);
    }
    EXPECT_EQ(narrow(BigInteger(INT64_MIN).toString()), "-9223372036854775808");
    EXPECT_EQ(BigInteger(INT64_MIN).negate().int64Value(), INT64_MIN);
}

TEST(BigInteger, TwosComplementBitsOfNegatives) {
    const BigInteger minus = big(u"-100000000000000000000000000000000", 16); // -2^128
    EXPECT_EQ(minus.bitLength(), 128);
    EXPECT_EQ(minus.subtract(BigInteger(1)).bitLength(), 129);
    EXPECT_EQ(minus.bitCount(), 128);
    EXPECT_EQ(BigInteger(-1).bitLength(), 0);
    EXPECT_EQ(BigInteger(-1).bitCount(), 0);
    EXPECT_TRUE(minus.testBit(128));
    EXPECT_TRUE(minus.testBit(5000));
    EXPECT_FALSE(minus.testBit(127));
    EXPECT_FALSE(minus.testBit(0));
    // -2^128 >> 1 and rounding toward minus infinity.
    EXPECT_EQ(narrow(minus.shiftRight(1).toString(16)), "-80000000000000000000000000000000");
    EXPECT_EQ(BigInteger(-5).shiftRight(1).int64Value(), -3);
    EXPECT_EQ(BigInteger(-5).shiftRight(300).int64Value(), -1);
    EXPECT_EQ(BigInteger(5).shiftRight(300).signum(), 0);
    EXPECT_EQ(narrow(minus.add(BigInteger(1)).shiftRight(64).toString(16)), "-10000000000000000");
    // A negative operand spreads its sign bits across the other's length.
    const BigInteger wide = BigInteger(1).shiftLeft(200).subtract(BigInteger(1));
    EXPECT_EQ(wide.and_(BigInteger(-256)), wide.subtract(BigInteger(255)));
    EXPECT_EQ(wide.or_(BigInteger(-1)), BigInteger(-1));
    EXPECT_EQ(wide.xor_(BigInteger(-1)), wide.not_());
    EXPECT_EQ(BigInteger(-1).andNot(wide), BigInteger(1).shiftLeft(200).negate());
    EXPECT_EQ(minus.setBit(3).int64Value(), 8);
    EXPECT_EQ(minus.setBit(130), minus);
    EXPECT_EQ(minus.clearBit(130), minus.subtract(BigInteger(1).shiftLeft(130)));
    EXPECT_EQ(minus.flipBit(0), minus.add(BigInteger(1)));
    EXPECT_EQ(minus.getLowestSetBit(), 128);
    EXPECT_EQ(BigInteger().getLowestSetBit(), -1);
    EXPECT_THROW(minus.testBit(-1), RangeErrorException);

    Numbers numbers(7);
    for (int i = 0; i < 200; ++i) {
        const BigInteger a = numbers.next(1 + static_cast<int>(numbers.below(5)));
        const BigInteger b = numbers.next(1 + static_cast<int>(numbers.below(5)));
        // De Morgan and the arithmetic identities of two's complement.
        EXPECT_EQ(a.and_(b).not_(), a.not_().or_(b.not_()));
        EXPECT_EQ(a.xor_(b), a.or_(b).andNot(a.and_(b)));
        EXPECT_EQ(a.add(b), a.xor_(b).add(a.and_(b).shiftLeft(1)));
        EXPECT_EQ(a.not_(), a.negate().subtract(BigInteger(1)));
        const int32_t n = static_cast<int32_t>(numbers.below(400));
        EXPECT_EQ(a.shiftLeft(n).shiftRight(n), a);
        // The floor of a / 2^n.
        const BigInteger floor = a.shiftRight(n), low = a.subtract(floor.shiftLeft(n));
        EXPECT_TRUE(low.signum() >= 0 && low.compareTo(BigInteger(1).shiftLeft(n)) < 0);
        EXPECT_EQ(a.testBit(n), a.shiftRight(n).and_(BigInteger(1)).signum() != 0);
    }
}

TEST(BigInteger, DivisionIdentityAcrossAlgorithms) {
    Numbers numbers(11);
    // Sizes in limbs around the schoolbook, Karatsuba, Toom-3 and recursive division switches.
    const int sizes[] = {1, 2, 3, 7, 20, 31, 33, 59, 61, 100, 199, 201, 250, 400, 700};
    for (int an : sizes) {
        for (int bn : sizes) {
            for (int k = 0; k < 2; ++k) {
                const BigInteger a = numbers.next(an), b = numbers.next(bn);
                const auto qr = a.divideAndRemainder(b);
                SCOPED_TRACE(std::to_string(an) + " by " + std::to_string(bn));
                ASSERT_EQ(qr.first.multiply(b).add(qr.second), a);
                ASSERT_LT(qr.second.abs().compareTo(b.abs()), 0);
                ASSERT_TRUE(qr.second.signum() == 0 || qr.second.signum() == a.signum());
                ASSERT_EQ(a.divide(b), qr.first);
                ASSERT_EQ(a.remainder(b), qr.second);
                // Exact quotients: no remainder, the factor back.
                const BigInteger product = a.multiply(b);
                ASSERT_EQ(product.divide(b), a);
                ASSERT_EQ(product.remainder(a).signum(), 0);
                const BigInteger m = b.abs();
                const BigInteger mod = a.mod(m);
                ASSERT_TRUE(mod.signum() >= 0 && mod.compareTo(m) < 0);
            }
        }
    }
    // The largest quotient digit: a divisor whose top limb equals the dividend's.
    const BigInteger d = big(u"ffffffffffffffff0000000000000001", 16);
    const BigInteger n = d.shiftLeft(64).subtract(BigInteger(1));
    const auto qr = n.divideAndRemainder(d);
    EXPECT_EQ(qr.first.multiply(d).add(qr.second), n);
    EXPECT_EQ(narrow(qr.first.toString(16)), "ffffffffffffffff");
}

TEST(BigInteger, MultiplicationAlgorithmsAgree) {
    Numbers numbers(5);
    const int sizes[] = {1, 5, 31, 32, 33, 80, 199, 200, 201, 300, 500, 1200};
    for (int an : sizes) {
        for (int bn : sizes) {
            const BigInteger a = numbers.next(an), b = numbers.next(bn), c = numbers.next(bn);
            SCOPED_TRACE(std::to_string(an) + " x " + std::to_string(bn));
            // Distributivity, and squares against products of distinct copies.
            ASSERT_EQ(a.multiply(b.add(c)), a.multiply(b).add(a.multiply(c)));
            const BigInteger copy(a.toString(16), 16);
            ASSERT_EQ(a.multiply(a), a.multiply(copy));
            ASSERT_EQ(a.add(b).pow(2), a.pow(2).add(a.multiply(b).shiftLeft(1)).add(b.pow(2)));
        }
    }
    // Products by transforms against the same products built from Toom-3 sized pieces.
    for (int n : {3400, 3600, 5100, 7000}) {
        const BigInteger a = numbers.next(n), b = numbers.next(n - 3);
        const BigInteger low = b.and_(BigInteger(1).shiftLeft(64 * 900).subtract(BigInteger(1)));
        const BigInteger high = b.subtract(low);
        ASSERT_EQ(a.multiply(b),
                  a.multiply(low).add(a.multiply(high.shiftRight(64 * 900)).shiftLeft(64 * 900)));
        ASSERT_EQ(a.multiply(a), a.multiply(BigInteger(a.toString(16), 16)));
    }
    // All-ones limbs give the largest convolution coefficients the transforms must carry:
    // (2^m - 1)^2 = 2^2m - 2^(m+1) + 1 and (2^m - 1)(2^k - 1) = 2^(m+k) - 2^m - 2^k + 1.
    for (int limbs : {5000, 6000, 8192}) {
        const int m = 64 * limbs, k = 64 * (limbs - 7);
        const BigInteger one(1), ones = one.shiftLeft(m).subtract(one);
        const BigInteger fewer = one.shiftLeft(k).subtract(one);
        ASSERT_EQ(ones.multiply(ones), one.shiftLeft(2 * m).subtract(one.shiftLeft(m + 1)).add(one));
        ASSERT_EQ(ones.multiply(fewer),
                  one.shiftLeft(m + k).subtract(one.shiftLeft(m)).subtract(one.shiftLeft(k)).add(one));
    }
    // (10^k - 1)^2 = 10^2k - 2 10^k + 1 in decimal digits: 9...980...01.
    const BigInteger nines = BigInteger(10).pow(5000).subtract(BigInteger(1));
    const std::string square = narrow(nines.multiply(nines).toString());
    EXPECT_EQ(square, std::string(4999, '9') + "8" + std::string(4999, '0') + "1");
}

TEST(BigInteger, TextRoundTripsInEveryRadix) {
    Numbers numbers(3);
    // Large enough for the halving conversions, checked against the linear one in base 16.
    for (int limbs : {200, 1500, 6000}) {
        const BigInteger x = numbers.next(limbs);
        const String decimal = x.toString(10);
        EXPECT_EQ(BigInteger(decimal).toString(16), x.toString(16));
        EXPECT_EQ(BigInteger(x.toString(7), 7), x);
    }
    const BigInteger power = BigInteger(10).pow(3000);
    EXPECT_EQ(narrow(power.toString()), "1" + std::string(3000, '0'));
    EXPECT_EQ(narrow(big(u"+0042").toString()), "42");
    EXPECT_EQ(narrow(big(u"-0").toString()), "0");
    EXPECT_EQ(narrow(big(u"-zz", 36).toString()), "-1295");
    EXPECT_EQ(narrow(BigInteger(-255).toString(16)), "-ff");
}

TEST(BigInteger, MalformedTextAndBadArgumentsThrow) {
    for (const char16_t* text : {u"", u"-", u"+", u"12a", u" 1", u"1 ", u"--1", u"0x10", u"1.0"})
        EXPECT_THROW(BigInteger x(text), CastFailedException) << narrow(String(text));
    EXPECT_THROW(BigInteger x(u"2", 2), CastFailedException);
    EXPECT_THROW(BigInteger x(u"1", 37), RangeErrorException);
    EXPECT_THROW(BigInteger(1).toString(1), RangeErrorException);
    try {
        BigInteger x(u"12#4");
        FAIL();
    } catch (const CastFailedException& e) {
        EXPECT_EQ(narrow(e.getDescription()), "BigInteger: not a number: \"12#4\"");
    }
    EXPECT_THROW(BigInteger(1).divide(BigInteger()), MathDivByZeroException);
    EXPECT_THROW(BigInteger(1).divideAndRemainder(BigInteger()), MathDivByZeroException);
    try {
        BigInteger(1).remainder(BigInteger());
        FAIL();
    } catch (const MathDivByZeroException& e) {
        EXPECT_EQ(narrow(e.getDescription()), "BigInteger: division by zero");
    }
    EXPECT_THROW(BigInteger(1).mod(BigInteger(-3)), MathInvalidOpException);
    EXPECT_THROW(BigInteger(2).pow(-1), MathInvalidOpException);
    EXPECT_THROW(BigInteger(2).modInverse(BigInteger(4)), MathInvalidOpException);
    EXPECT_THROW(BigInteger(-4).sqrt(), MathInvalidOpException);
    EXPECT_THROW(BigInteger(2).pow(INT32_MAX), MathOverflowException);
    EXPECT_THROW(BigInteger(1).shiftLeft(INT32_MAX), MathOverflowException);
    EXPECT_THROW(BigInteger(1).shiftLeft(64).int64ValueExact(), MathOverflowException);
    EXPECT_THROW(BigInteger(1).shiftLeft(31).int32ValueExact(), MathOverflowException);
    EXPECT_EQ(BigInteger(1).shiftLeft(31).negate().int32ValueExact(), INT32_MIN);
    EXPECT_THROW(BigInteger(static_cast<const signed char*>(nullptr), 0), CastFailedException);
    EXPECT_THROW(BigInteger(1).compareTo(static_cast<const Object&>(String(u"1"))),
                 CastFailedException);
}

TEST(BigInteger, BytesRoundTripInTwosComplement) {
    struct Case {
        long long value;
        std::vector<int> bytes;
    } cases[] = {{0, {0}},         {1, {1}},        {-1, {-1}},          {127, {127}},
                 {128, {0, -128}}, {-128, {-128}},  {-129, {-1, 127}},   {255, {0, -1}},
                 {256, {1, 0}},    {-256, {-1, 0}}, {65535, {0, -1, -1}}};
    for (const Case& c : cases) {
        const std::vector<signed char> bytes = BigInteger(c.value).toByteArray();
        ASSERT_EQ(bytes.size(), c.bytes.size()) << c.value;
        for (size_t i = 0; i < bytes.size(); ++i)
            EXPECT_EQ(bytes[i], c.bytes[i]) << c.value;
        EXPECT_EQ(BigInteger(bytes.data(), static_cast<int32_t>(bytes.size())).int64Value(),
                  c.value);
    }
    const unsigned char magnitude[] = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
    EXPECT_EQ(BigInteger(-1, magnitude, 9), BigInteger(1).shiftLeft(64).negate());
    EXPECT_THROW(BigInteger(0, magnitude, 9), RangeErrorException);
}

TEST(BigInteger, NumberTheory) {
    EXPECT_EQ(BigInteger(4).modPow(BigInteger(13), BigInteger(497)).int64Value(), 445);
    EXPECT_EQ(BigInteger(3).modPow(BigInteger(-1), BigInteger(11)).int64Value(), 4);
    EXPECT_EQ(BigInteger(-3).modPow(BigInteger(3), BigInteger(10)).int64Value(), 3);
    EXPECT_EQ(BigInteger(5).modPow(BigInteger(0), BigInteger(1)).signum(), 0);
    EXPECT_EQ(BigInteger(3).modInverse(BigInteger(11)).int64Value(), 4);
    EXPECT_EQ(BigInteger(-3).modInverse(BigInteger(11)).int64Value(), 7);
    EXPECT_EQ(BigInteger(12).gcd(BigInteger(-18)).int64Value(), 6);
    EXPECT_EQ(BigInteger().gcd(BigInteger()).signum(), 0);
    Numbers numbers(13);
    for (int limbs : {1, 3, 8, 33}) {
        // Fermat: a^(p-1) = 1 mod p for the Mersenne prime 2^521 - 1, through Montgomery and
        // through the plain path for an even modulus.
        const BigInteger p = BigInteger(1).shiftLeft(521).subtract(BigInteger(1));
        const BigInteger a = numbers.next(limbs, false);
        EXPECT_EQ(a.modPow(p.subtract(BigInteger(1)), p), BigInteger(1));
        const BigInteger m = numbers.next(limbs, false).shiftLeft(1);
        const BigInteger e = numbers.next(2, false);
        EXPECT_EQ(a.modPow(e, m), a.modPow(e, m.shiftLeft(3)).mod(m));
        const BigInteger g = a.gcd(m);
        EXPECT_EQ(a.remainder(g).signum(), 0);
        EXPECT_EQ(m.remainder(g).signum(), 0);
        EXPECT_EQ(a.divide(g).gcd(m.divide(g)), BigInteger(1));
        const BigInteger odd = m.add(BigInteger(1));
        if (a.gcd(odd) == BigInteger(1)) {
            EXPECT_EQ(a.multiply(a.modInverse(odd)).mod(odd), BigInteger(1));
        }
        const BigInteger s = a.sqrt();
        EXPECT_LE(s.multiply(s).compareTo(a), 0);
        EXPECT_GT(s.add(BigInteger(1)).pow(2).compareTo(a), 0);
    }
    EXPECT_EQ(BigInteger(1).shiftLeft(200).sqrt(), BigInteger(1).shiftLeft(100));
    EXPECT_EQ(BigInteger(1).shiftLeft(200).subtract(BigInteger(1)).sqrt(),
              BigInteger(1).shiftLeft(100).subtract(BigInteger(1)));
    // Primes and the composites that fool weaker tests (Carmichael numbers, a strong
    // pseudoprime to bases 2 and 3).
    for (long long prime : {2LL, 3LL, 997LL, 1009LL, 2147483647LL, 1000000007LL})
        EXPECT_TRUE(BigInteger(prime).isProbablePrime(50)) << prime;
    for (long long composite : {0LL, 1LL, 4LL, 561LL, 41041LL, 1373653LL, 25326001LL, 3215031751LL})
        EXPECT_FALSE(BigInteger(composite).isProbablePrime(50)) << composite;
    EXPECT_TRUE(BigInteger(1).shiftLeft(521).subtract(BigInteger(1)).isProbablePrime(100));
    EXPECT_FALSE(BigInteger(1).shiftLeft(523).subtract(BigInteger(1)).isProbablePrime(100));
}

TEST(BigInteger, ConversionsAndObjectBehaviour) {
    const BigInteger x = big(u"123456789012345678901234567890");
    EXPECT_EQ(x.int64Value(), static_cast<int64_t>(UINT64_C(0xc373e0ee4e3f0ad2)));
    EXPECT_EQ(x.negate().int32Value(), static_cast<int32_t>(~0x4e3f0ad2u + 1));
    EXPECT_DOUBLE_EQ(x.doubleValue(), 1.2345678901234568e29);
    // Ties to even: 2^53 + 1 lies between two doubles.
    EXPECT_EQ(BigInteger(1).shiftLeft(53).add(BigInteger(1)).doubleValue(), 9007199254740992.0);
    EXPECT_EQ(BigInteger(1).shiftLeft(53).add(BigInteger(3)).doubleValue(), 9007199254740996.0);
    EXPECT_EQ(BigInteger(1)
                  .shiftLeft(53)
                  .add(BigInteger(1))
                  .shiftLeft(100)
                  .add(BigInteger(1))
                  .doubleValue(),
              std::ldexp(9007199254740994.0, 100));
    EXPECT_EQ(BigInteger(1).shiftLeft(1024).doubleValue(), HUGE_VAL);
    EXPECT_EQ(BigInteger::valueOf(-1e20), big(u"-100000000000000000000"));
    EXPECT_EQ(BigInteger::valueOf(2.75), BigInteger(2));
    EXPECT_EQ(BigInteger::valueOf(-7).int64Value(), -7);
    EXPECT_THROW(BigInteger::valueOf(std::nan("")), MathInvalidOpException);
    EXPECT_EQ(BigInteger::valueOfUnsigned(UINT64_MAX), big(u"18446744073709551615"));
    // Every built-in integer type converts by its own signedness.
    EXPECT_EQ(BigInteger(UINT64_MAX), big(u"18446744073709551615"));
    EXPECT_EQ(BigInteger(static_cast<unsigned char>(200)).int64Value(), 200);
    EXPECT_EQ(BigInteger(static_cast<signed char>(-100)).int64Value(), -100);
    EXPECT_EQ(BigInteger(4000000000u).int64Value(), 4000000000);

    // Java's hash codes.
    EXPECT_EQ(BigInteger(1).hashCode(), 1u);
    EXPECT_EQ(BigInteger(-1).hashCode(), static_cast<uint32_t>(-1));
    EXPECT_EQ(BigInteger(1).shiftLeft(32).hashCode(), 31u);
    EXPECT_EQ(x.hashCode(), x.negate().hashCode() * static_cast<uint32_t>(-1));
    Reference<Object> copy = x.clone();
    EXPECT_TRUE(copy->equals(x));
    EXPECT_EQ(copy->compareTo(x.add(BigInteger(1))), -1);
    EXPECT_FALSE(x.equals(static_cast<const Object&>(String(u"1"))));
    EXPECT_EQ(narrow(copy->toString()), "123456789012345678901234567890");
    EXPECT_EQ(narrow(Class::forName(u"CQNBigInteger")->createInstance()->toString()), "0");
}
