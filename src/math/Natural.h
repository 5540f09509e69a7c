// Natural numbers as little-endian arrays of 64-bit limbs: the arithmetic under BigInteger and
// BigDecimal. Functions take raw pointers and lengths; a result array may be an operand array
// only where a function says so. Lengths are counts of limbs.
//
// Limbs are 64 bits everywhere. Where the compiler offers a 128-bit integer (g++ and clang on
// 64-bit targets) products and quotients of two limbs use it; elsewhere (32-bit targets, MSVC)
// they are built from 32-bit halves, slower but with the same results.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace qn::math::nat {

using Limb = uint64_t;
constexpr int LIMB_BITS = 64;

#if defined(__SIZEOF_INT128__) && !defined(QNCL_MATH_PORTABLE_LIMBS)
#define QNCL_MATH_INT128 1
__extension__ typedef unsigned __int128 Wide;
#endif

// The high and low limbs of a * b, from 32-bit halves.
inline Limb mulWidePortable(Limb a, Limb b, Limb& high) {
    const Limb a0 = a & 0xFFFFFFFFu, a1 = a >> 32, b0 = b & 0xFFFFFFFFu, b1 = b >> 32;
    const Limb p00 = a0 * b0, p01 = a0 * b1, p10 = a1 * b0, p11 = a1 * b1;
    const Limb middle = (p00 >> 32) + (p01 & 0xFFFFFFFFu) + (p10 & 0xFFFFFFFFu);
    high = p11 + (p01 >> 32) + (p10 >> 32) + (middle >> 32);
    return (middle << 32) | (p00 & 0xFFFFFFFFu);
}

inline Limb mulWide(Limb a, Limb b, Limb& high) {
#ifdef QNCL_MATH_INT128
    const Wide p = static_cast<Wide>(a) * b;
    high = static_cast<Limb>(p >> 64);
    return static_cast<Limb>(p);
#else
    return mulWidePortable(a, b, high);
#endif
}

// (high:low) / d for high < d, bit by bit in halves; the remainder goes to rem.
Limb divWidePortable(Limb high, Limb low, Limb d, Limb& rem);

inline Limb divWide(Limb high, Limb low, Limb d, Limb& rem) {
#ifdef QNCL_MATH_INT128
    const Wide n = (static_cast<Wide>(high) << 64) | low;
    const Limb q = static_cast<Limb>(n / d);
    rem = low - q * d;
    return q;
#else
    return divWidePortable(high, low, d, rem);
#endif
}

inline int leadingZeros(Limb x) {
#if defined(__GNUC__) || defined(__clang__)
    return x ? __builtin_clzll(x) : 64;
#else
    int n = 0;
    if (!x)
        return 64;
    while (!(x & (Limb{1} << 63))) {
        x <<= 1;
        ++n;
    }
    return n;
#endif
}

inline int trailingZeros(Limb x) {
#if defined(__GNUC__) || defined(__clang__)
    return x ? __builtin_ctzll(x) : 64;
#else
    int n = 0;
    if (!x)
        return 64;
    while (!(x & 1)) {
        x >>= 1;
        ++n;
    }
    return n;
#endif
}

inline int popCount(Limb x) {
#if defined(__GNUC__) || defined(__clang__)
    return __builtin_popcountll(x);
#else
    int n = 0;
    for (; x; x &= x - 1)
        ++n;
    return n;
#endif
}

// Division by one normalized limb (top bit set) through its reciprocal: two multiplications
// instead of a hardware division per limb.
struct Reciprocal {
    explicit Reciprocal(Limb divisor);
    // (high:low) / d for high < d.
    Limb divide(Limb high, Limb low, Limb& rem) const {
        Limb q1;
        Limb q0 = mulWide(inverse, high, q1);
        q0 += low;
        q1 += high + 1 + (q0 < low);
        Limb r = low - q1 * d;
        if (r > q0) {
            --q1;
            r += d;
        }
        if (r >= d) {
            ++q1;
            r -= d;
        }
        rem = r;
        return q1;
    }
    Limb d;
    Limb inverse;
};

// Scratch space: uninitialised limbs.
using Limbs = std::unique_ptr<Limb[]>;
inline Limbs allocate(size_t n) {
    return Limbs(new Limb[n ? n : 1]);
}

// Length without high zero limbs.
inline size_t normalized(const Limb* a, size_t n) {
    while (n && !a[n - 1])
        --n;
    return n;
}

// -1, 0 or 1.
int compare(const Limb* a, const Limb* b, size_t n);
int compare(const Limb* a, size_t an, const Limb* b, size_t bn);

// r = a + b over n limbs; the carry out. r may be a or b.
Limb addN(Limb* r, const Limb* a, const Limb* b, size_t n);
// r = a + b for an >= bn, r of an limbs; the carry out. r may be a.
Limb add(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);
Limb add1(Limb* r, const Limb* a, size_t n, Limb b);
// r = a - b; the borrow out. Same rules as the additions.
Limb subN(Limb* r, const Limb* a, const Limb* b, size_t n);
Limb sub(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);
Limb sub1(Limb* r, const Limb* a, size_t n, Limb b);

// r = a * b; the high limb out. r may be a.
Limb mul1(Limb* r, const Limb* a, size_t n, Limb b);
// r += a * b over n limbs; the limb carried out.
Limb addMul1(Limb* r, const Limb* a, size_t n, Limb b);
// r += a * (b0 + b1 B) over n limbs; the two limbs carried out go to c0 and c1.
void addMul2(Limb* r, const Limb* a, size_t n, Limb b0, Limb b1, Limb& c0, Limb& c1);
// r -= a * b over n limbs; the limb borrowed out.
Limb subMul1(Limb* r, const Limb* a, size_t n, Limb b);

// r = a << s or a >> s for 0 < s < 64; the bits shifted out (at the bottom of the result for a
// left shift, at the top for a right shift). r may be a.
Limb shiftLeft(Limb* r, const Limb* a, size_t n, int s);
Limb shiftRight(Limb* r, const Limb* a, size_t n, int s);

// r = a * b, r of an + bn limbs, not overlapping a or b; an, bn >= 1. a == b with an == bn
// squares.
void mul(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);
// The quadratic methods alone, for small operands of known size: r = a * b for an >= bn >= 1,
// and r = a^2 (2n limbs); r does not overlap the operands.
void mulBasecase(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);
void sqrBasecase(Limb* r, const Limb* a, size_t n);
#ifdef QNCL_MATH_INT128
// Montgomery multiplication by columns: r = a b B^-n mod m for n-limb a and b below the odd m,
// inverse = -m^-1 mod B, u scratch of n limbs. Each column's products are summed in registers,
// so every limb of r is stored once; a == b squares with half the products.
void montgomeryColumns(Limb* r, const Limb* a, const Limb* b, const Limb* m, size_t n, Limb inverse,
                       Limb* u);
#endif
// r = a * b by number-theoretic transforms, for large operands; same rules as mul.
void mulNtt(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);
// Vector forms over normalized operands; zero is the empty vector.
std::vector<Limb> mul(const std::vector<Limb>& a, const std::vector<Limb>& b);

// q = a / d, the remainder returned; q of n limbs, may be a; d != 0.
Limb divRem1(Limb* q, const Limb* a, size_t n, Limb d);
// q = a / b and r = a % b for an >= bn >= 1, b[bn - 1] != 0: q of an - bn + 1 limbs and r of bn
// limbs; neither may overlap the operands.
void divRem(Limb* q, Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);

// Thresholds (in limbs) at which the faster algorithms take over; measured on x86-64.
struct Thresholds {
    size_t karatsuba;
    size_t toom3;
    size_t ntt;
    size_t divideAndConquer;
    size_t radix;
};
extern Thresholds thresholds;

// Text conversion. Digits are values 0 to radix - 1, most significant first.
// The digits of a (an limbs, normalized, non-zero), most significant first, no leading zeros.
std::vector<uint8_t> toDigits(const Limb* a, size_t an, int radix);
// The value of digits (count of them, each below radix), normalized.
std::vector<Limb> fromDigits(const uint8_t* digits, size_t count, int radix);

} // namespace qn::math::nat
