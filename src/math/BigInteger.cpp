#include "qn/math/BigInteger.h"

#include "math/BigIntegerAccess.h"
#include "math/Failure.h"
#include "math/Natural.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <cstring>
#include <new>
#include <string>

namespace qn::math {

using detail::fail;
using nat::Limb;
using nat::Limbs;

// The limbs follow the header in the same allocation.
struct BigInteger::Block {
    std::atomic<uint32_t> refs;
    uint32_t size;
    Limb* limbs() noexcept { return reinterpret_cast<Limb*>(this + 1); }
};

namespace {

using Block = BigIntegerAccess::Block;

// 2^31 - 1 bits at most, so that every bit index and bitLength fits in an int32_t.
constexpr size_t MAX_LIMBS = (size_t{INT32_MAX} + 63) / 64;

[[noreturn]] void throwTooLarge() {
    fail<MathOverflowException>(u"BigInteger: result beyond 2^31 - 1 bits");
}

} // namespace

Block* BigIntegerAccess::allocate(size_t limbs) {
    if (limbs > MAX_LIMBS + 1)
        throwTooLarge();
    void* memory = ::operator new(sizeof(Block) + limbs * sizeof(Limb));
    Block* block = static_cast<Block*>(memory);
    new (&block->refs) std::atomic<uint32_t>(1);
    block->size = static_cast<uint32_t>(limbs);
    return block;
}

void BigIntegerAccess::release(Block* block) noexcept {
    if (block && block->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        block->refs.~atomic();
        ::operator delete(block);
    }
}

Limb* BigIntegerAccess::limbs(Block* block) noexcept {
    return block->limbs();
}

BigInteger BigIntegerAccess::make(Block* block, size_t used, int signum) {
    const size_t n = nat::normalized(block->limbs(), used);
    if (!n) {
        release(block);
        return BigInteger();
    }
    if (n > MAX_LIMBS || (n == MAX_LIMBS && nat::leadingZeros(block->limbs()[n - 1]) == 0)) {
        release(block);
        throwTooLarge();
    }
    block->size = static_cast<uint32_t>(n);
    return BigInteger(block, signum);
}

BigInteger BigIntegerAccess::fromLimbs(const Limb* limbs, size_t n, int signum) {
    n = nat::normalized(limbs, n);
    if (!n)
        return BigInteger();
    Block* block = allocate(n);
    std::copy(limbs, limbs + n, block->limbs());
    return make(block, n, signum);
}

namespace {

using Access = BigIntegerAccess;

BigInteger fromVector(const std::vector<Limb>& v, int signum) {
    return Access::fromLimbs(v.data(), v.size(), signum);
}

// |a| + |b|.
BigInteger addMagnitudes(const Limb* a, size_t an, const Limb* b, size_t bn, int signum) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    Block* block = Access::allocate(an + 1);
    Limb* r = Access::limbs(block);
    r[an] = nat::add(r, a, an, b, bn);
    return Access::make(block, an + 1, signum);
}

// |a| - |b| for |a| >= |b|.
BigInteger subtractMagnitudes(const Limb* a, size_t an, const Limb* b, size_t bn, int signum) {
    Block* block = Access::allocate(an);
    nat::sub(Access::limbs(block), a, an, b, bn);
    return Access::make(block, an, signum);
}

// The sum of a and b with b's sign given.
BigInteger addSigned(const BigInteger& a, const BigInteger& b, int bSignum) {
    if (!bSignum)
        return a;
    if (!a.signum())
        return bSignum == b.signum() ? b : b.negate();
    const Limb* x = Access::limbs(a);
    const Limb* y = Access::limbs(b);
    const size_t xn = Access::size(a), yn = Access::size(b);
    if (a.signum() == bSignum)
        return addMagnitudes(x, xn, y, yn, bSignum);
    const int order = nat::compare(x, xn, y, yn);
    if (order == 0)
        return BigInteger();
    return order > 0 ? subtractMagnitudes(x, xn, y, yn, a.signum())
                     : subtractMagnitudes(y, yn, x, xn, bSignum);
}

// Quotient and remainder of the magnitudes, with the signs given.
void divideMagnitudes(const BigInteger& a, const BigInteger& b, int quotientSign,
                      BigInteger* quotient, BigInteger* remainder) {
    if (!b.signum())
        fail<MathDivByZeroException>(u"BigInteger: division by zero");
    const size_t an = Access::size(a), bn = Access::size(b);
    if (nat::compare(Access::limbs(a), an, Access::limbs(b), bn) < 0) {
        if (quotient)
            *quotient = BigInteger();
        if (remainder)
            *remainder = a;
        return;
    }
    Block* q = Access::allocate(an - bn + 1);
    Block* r = nullptr;
    try {
        r = Access::allocate(bn);
        nat::divRem(Access::limbs(q), Access::limbs(r), Access::limbs(a), an, Access::limbs(b), bn);
    } catch (...) {
        Access::release(q);
        Access::release(r);
        throw;
    }
    BigInteger qv = Access::make(q, an - bn + 1, quotientSign);
    BigInteger rv = Access::make(r, bn, a.signum());
    if (quotient)
        *quotient = std::move(qv);
    if (remainder)
        *remainder = std::move(rv);
}

// Two's complement of x in n limbs (n above x's size).
std::vector<Limb> twosComplement(const BigInteger& x, size_t n) {
    std::vector<Limb> v(n, 0);
    const size_t xn = Access::size(x);
    std::copy(Access::limbs(x), Access::limbs(x) + xn, v.begin());
    if (x.signum() < 0) {
        for (Limb& limb : v)
            limb = ~limb;
        nat::add1(v.data(), v.data(), n, 1);
    }
    return v;
}

BigInteger fromTwosComplement(std::vector<Limb> v) {
    if (v.empty() || !(v.back() >> 63))
        return fromVector(v, 1);
    for (Limb& limb : v)
        limb = ~limb;
    nat::add1(v.data(), v.data(), v.size(), 1);
    return fromVector(v, -1);
}

template <class Op> BigInteger bitwise(const BigInteger& a, const BigInteger& b, Op op) {
    const size_t n = std::max(Access::size(a), Access::size(b)) + 1;
    std::vector<Limb> x = twosComplement(a, n);
    const std::vector<Limb> y = twosComplement(b, n);
    for (size_t i = 0; i < n; ++i)
        x[i] = op(x[i], y[i]);
    return fromTwosComplement(std::move(x));
}

void checkBitIndex(int32_t n) {
    if (n < 0)
        throw RangeErrorException(String(u"BigInteger: negative bit index"));
}

void checkRadix(int radix) {
    if (radix < 2 || radix > 36)
        throw RangeErrorException(String(u"BigInteger: radix out of range 2 to 36"));
}

[[noreturn]] void throwMalformed(const char16_t* text, int32_t length) {
    String message(u"BigInteger: not a number: \"");
    const int32_t shown = std::min(length, int32_t{40});
    message.append(text, shown);
    message.append(shown < length ? u"...\"" : u"\"");
    throw CastFailedException(message);
}

BigInteger parse(const char16_t* text, int32_t length, int radix) {
    checkRadix(radix);
    int signum = 1;
    int32_t i = 0;
    if (length > 0 && (text[0] == u'-' || text[0] == u'+')) {
        signum = text[0] == u'-' ? -1 : 1;
        i = 1;
    }
    if (i >= length)
        throwMalformed(text, length);
    std::vector<uint8_t> digits(static_cast<size_t>(length - i));
    for (int32_t j = i; j < length; ++j) {
        const char16_t c = text[j];
        int value = 99;
        if (c >= u'0' && c <= u'9')
            value = c - u'0';
        else if (c >= u'a' && c <= u'z')
            value = c - u'a' + 10;
        else if (c >= u'A' && c <= u'Z')
            value = c - u'A' + 10;
        if (value >= radix)
            throwMalformed(text, length);
        digits[static_cast<size_t>(j - i)] = static_cast<uint8_t>(value);
    }
    if (digits.size() > size_t{INT32_MAX} / 2)
        throwTooLarge();
    return fromVector(nat::fromDigits(digits.data(), digits.size(), radix), signum);
}

// Montgomery arithmetic modulo an odd m of n limbs, R = B^n.
class Montgomery {
public:
    explicit Montgomery(const BigInteger& m)
        : m_m(Access::limbs(m)), m_n(Access::size(m)), m_t(nat::allocate(2 * m_n)) {
        // -m^-1 mod B by Newton's iteration, each step doubling the correct low bits.
        const Limb m0 = m_m[0];
        Limb x = m0;
        for (int i = 0; i < 5; ++i)
            x *= 2 - m0 * x;
        m_inverse = ~x + 1;
    }
    size_t size() const { return m_n; }

    // a R mod m, in n limbs.
    std::vector<Limb> enter(const BigInteger& a) const {
        const size_t an = Access::size(a);
        std::vector<Limb> shifted(m_n + an, 0);
        std::copy(Access::limbs(a), Access::limbs(a) + an, shifted.begin() + m_n);
        std::vector<Limb> q(an + 1), r(m_n);
        nat::divRem(q.data(), r.data(), shifted.data(), shifted.size(), m_m, m_n);
        return r;
    }
    // a R^-1 mod m.
    BigInteger leave(const std::vector<Limb>& a) {
        std::vector<Limb> one(m_n, 0), r(m_n);
        one[0] = 1;
        multiply(r.data(), a.data(), one.data());
        return fromVector(r, 1);
    }
    // r = a b R^-1 mod m; r may be a or b. a == b squares.
    void multiply(Limb* r, const Limb* a, const Limb* b) {
        Limb* t = m_t.get();
        const size_t n = m_n;
#ifdef QNCL_MATH_INT128
        if (n <= 2 * nat::thresholds.karatsuba) {
            // r may be a or b, which the columns read to the end: the result goes to t first.
            nat::montgomeryColumns(t, a, b, m_m, n, m_inverse, t + n);
            std::copy(t, t + n, r);
            return;
        }
#endif
        // Up to twice the Karatsuba size (2048-bit and 4096-bit moduli) the quadratic methods
        // are called directly: Karatsuba's one level gains less than its scratch space costs.
        if (n > 2 * nat::thresholds.karatsuba)
            nat::mul(t, a, n, b, n);
        else if (a == b)
            nat::sqrBasecase(t, a, n);
        else
            nat::mulBasecase(t, a, n, b, n);
        // Each row clears one low limb; its carry belongs n limbs up and waits in the cleared
        // limb until all rows are done. Rows go in pairs: the second multiplier is known from
        // what the first row leaves in its limb.
        size_t i = 0;
        for (; i + 1 < n; i += 2) {
            const Limb u0 = t[i] * m_inverse;
            Limb high;
            nat::mulWide(u0, m_m[0], high);
            const Limb next = t[i + 1] + high + u0 * m_m[1] + (t[i] != 0);
            nat::addMul2(t + i, m_m, n, u0, next * m_inverse, t[i], t[i + 1]);
        }
        if (i < n)
            t[i] = nat::addMul1(t + i, m_m, n, t[i] * m_inverse);
        const Limb carry = nat::addN(r, t + n, t, n);
        if (carry || nat::compare(r, m_m, n) >= 0)
            nat::subN(r, r, m_m, n);
    }

private:
    const Limb* m_m;
    size_t m_n;
    Limbs m_t;
    Limb m_inverse;
};

int windowBits(int32_t exponentBits) {
    return exponentBits > 1536 ? 6 : exponentBits > 512 ? 5 : exponentBits > 128 ? 4 : 3;
}

// base^exponent mod m for odd m > 1, base in 0 to m - 1, exponent > 0: left to right with a
// sliding window over odd powers.
BigInteger modPowOdd(const BigInteger& base, const BigInteger& exponent, const BigInteger& m) {
    Montgomery mont(m);
    const size_t n = mont.size();
    const int32_t bits = exponent.bitLength();
    const int k = windowBits(bits);
    std::vector<std::vector<Limb>> odd(size_t{1} << (k - 1));
    odd[0] = mont.enter(base);
    std::vector<Limb> square(n);
    mont.multiply(square.data(), odd[0].data(), odd[0].data());
    for (size_t i = 1; i < odd.size(); ++i) {
        odd[i].resize(n);
        mont.multiply(odd[i].data(), odd[i - 1].data(), square.data());
    }
    std::vector<Limb> result;
    int32_t i = bits - 1;
    while (i >= 0) {
        if (!exponent.testBit(i)) {
            if (!result.empty())
                mont.multiply(result.data(), result.data(), result.data());
            --i;
            continue;
        }
        // The longest window of at most k bits from i that ends in a one bit.
        int32_t low = std::max(i - k + 1, int32_t{0});
        while (!exponent.testBit(low))
            ++low;
        Limb value = 0;
        for (int32_t j = i; j >= low; --j)
            value = (value << 1) | (exponent.testBit(j) ? 1 : 0);
        if (result.empty()) {
            result = odd[value >> 1];
        } else {
            for (int32_t j = i; j >= low; --j)
                mont.multiply(result.data(), result.data(), result.data());
            mont.multiply(result.data(), result.data(), odd[value >> 1].data());
        }
        i = low - 1;
    }
    return mont.leave(result);
}

// The same for any m > 1, reducing by division.
BigInteger modPowPlain(const BigInteger& base, const BigInteger& exponent, const BigInteger& m) {
    BigInteger result(1);
    for (int32_t i = exponent.bitLength() - 1; i >= 0; --i) {
        result = result.multiply(result).mod(m);
        if (exponent.testBit(i))
            result = result.multiply(base).mod(m);
    }
    return result;
}

// The primes below 1000, for trial division.
const uint16_t SMALL_PRIMES[] = {
    2,   3,   5,   7,   11,  13,  17,  19,  23,  29,  31,  37,  41,  43,  47,  53,  59,  61,  67,
    71,  73,  79,  83,  89,  97,  101, 103, 107, 109, 113, 127, 131, 137, 139, 149, 151, 157, 163,
    167, 173, 179, 181, 191, 193, 197, 199, 211, 223, 227, 229, 233, 239, 241, 251, 257, 263, 269,
    271, 277, 281, 283, 293, 307, 311, 313, 317, 331, 337, 347, 349, 353, 359, 367, 373, 379, 383,
    389, 397, 401, 409, 419, 421, 431, 433, 439, 443, 449, 457, 461, 463, 467, 479, 487, 491, 499,
    503, 509, 521, 523, 541, 547, 557, 563, 569, 571, 577, 587, 593, 599, 601, 607, 613, 617, 619,
    631, 641, 643, 647, 653, 659, 661, 673, 677, 683, 691, 701, 709, 719, 727, 733, 739, 743, 751,
    757, 761, 769, 773, 787, 797, 809, 811, 821, 823, 827, 829, 839, 853, 857, 859, 863, 877, 881,
    883, 887, 907, 911, 919, 929, 937, 941, 947, 953, 967, 971, 977, 983, 991, 997};

// One Miller-Rabin round: false when base proves w composite.
bool millerRabinPasses(const BigInteger& w, const BigInteger& wMinusOne, const BigInteger& d,
                       int32_t s, const BigInteger& base) {
    BigInteger x = base.modPow(d, w);
    if (x.equals(BigInteger(1)) || x.equals(wMinusOne))
        return true;
    for (int32_t r = 1; r < s; ++r) {
        x = x.multiply(x).mod(w);
        if (x.equals(wMinusOne))
            return true;
        if (x.equals(BigInteger(1)))
            return false;
    }
    return false;
}

} // namespace

BigInteger::BigInteger(Block* block, int signum) noexcept : m_block(block), m_signum(signum) {}

BigInteger BigInteger::valueOf(int64_t value) {
    const Limb magnitude = value < 0 ? ~static_cast<Limb>(value) + 1 : static_cast<Limb>(value);
    return Access::fromLimbs(&magnitude, 1, value < 0 ? -1 : 1);
}

BigInteger::BigInteger(const BigInteger& other) noexcept
    : CopyObject(other), m_block(other.m_block), m_signum(other.m_signum) {
    if (m_block)
        m_block->refs.fetch_add(1, std::memory_order_relaxed);
}

BigInteger::BigInteger(BigInteger&& other) noexcept
    : CopyObject(other), m_block(other.m_block), m_signum(other.m_signum) {
    other.m_block = nullptr;
    other.m_signum = 0;
}

BigInteger& BigInteger::operator=(const BigInteger& other) noexcept {
    if (other.m_block)
        other.m_block->refs.fetch_add(1, std::memory_order_relaxed);
    Access::release(m_block);
    m_block = other.m_block;
    m_signum = other.m_signum;
    return *this;
}

BigInteger& BigInteger::operator=(BigInteger&& other) noexcept {
    if (this != &other) {
        Access::release(m_block);
        m_block = other.m_block;
        m_signum = other.m_signum;
        other.m_block = nullptr;
        other.m_signum = 0;
    }
    return *this;
}

BigInteger::~BigInteger() {
    Access::release(m_block);
}

BigInteger::BigInteger(const String& text, int radix) : BigInteger() {
    *this = parse(text.getData(), text.getLength(), radix);
}

BigInteger::BigInteger(const char16_t* text, int radix) : BigInteger() {
    int32_t length = 0;
    while (text && text[length])
        ++length;
    *this = parse(text ? text : u"", length, radix);
}

BigInteger::BigInteger(const signed char* bytes, int32_t length) : BigInteger() {
    if (!bytes || length <= 0)
        throw CastFailedException(String(u"BigInteger: zero-length byte array"));
    const size_t n = static_cast<size_t>(length) / 8 + 1;
    std::vector<Limb> v(n, bytes[0] < 0 ? ~Limb{0} : 0);
    for (int32_t i = 0; i < length; ++i) {
        const size_t bit = static_cast<size_t>(length - 1 - i) * 8;
        Limb& limb = v[bit / 64];
        limb &= ~(Limb{0xFF} << (bit % 64));
        limb |= Limb{static_cast<unsigned char>(bytes[i])} << (bit % 64);
    }
    *this = fromTwosComplement(std::move(v));
}

BigInteger::BigInteger(int signum, const unsigned char* magnitude, int32_t length) : BigInteger() {
    if (signum < -1 || signum > 1)
        throw RangeErrorException(String(u"BigInteger: sign must be -1, 0 or 1"));
    if (length < 0 || (length && !magnitude))
        throw RangeErrorException(String(u"BigInteger: bad magnitude length"));
    std::vector<Limb> v(static_cast<size_t>(length) / 8 + 1, 0);
    for (int32_t i = 0; i < length; ++i) {
        const size_t bit = static_cast<size_t>(length - 1 - i) * 8;
        v[bit / 64] |= Limb{magnitude[i]} << (bit % 64);
    }
    if (nat::normalized(v.data(), v.size()) && !signum)
        throw RangeErrorException(String(u"BigInteger: sign 0 with a non-zero magnitude"));
    *this = fromVector(v, signum);
}

BigInteger BigInteger::valueOfUnsigned(uint64_t value) {
    const Limb limb = value;
    return Access::fromLimbs(&limb, 1, 1);
}

BigInteger BigInteger::valueOf(double value) {
    if (!std::isfinite(value))
        fail<MathInvalidOpException>(u"BigInteger: NaN or infinity has no integer value");
    const double truncated = std::trunc(value);
    if (truncated == 0)
        return BigInteger();
    int exponent;
    const double fraction = std::frexp(std::fabs(truncated), &exponent);
    // 53 significant bits as an integer, then shifted into place.
    const auto mantissa = static_cast<int64_t>(std::ldexp(fraction, 53));
    BigInteger r = BigInteger(mantissa);
    r = exponent >= 53 ? r.shiftLeft(exponent - 53) : r.shiftRight(53 - exponent);
    return value < 0 ? r.negate() : r;
}

Reference<BigInteger> BigInteger::create(const BigInteger& value) {
    return Reference<BigInteger>(new BigInteger(value));
}

uint32_t BigInteger::size() const noexcept {
    return m_block ? m_block->size : 0;
}

const uint64_t* BigInteger::limbs() const noexcept {
    return m_block ? m_block->limbs() : nullptr;
}

BigInteger BigInteger::add(const BigInteger& other) const {
    return addSigned(*this, other, other.m_signum);
}

BigInteger BigInteger::subtract(const BigInteger& other) const {
    return addSigned(*this, other, -other.m_signum);
}

BigInteger BigInteger::multiply(const BigInteger& other) const {
    if (!m_signum || !other.m_signum)
        return BigInteger();
    const size_t an = size(), bn = other.size();
    Block* block = Access::allocate(an + bn);
    try {
        // The same block twice is a square.
        nat::mul(block->limbs(), limbs(), an, m_block == other.m_block ? limbs() : other.limbs(),
                 bn);
    } catch (...) {
        Access::release(block);
        throw;
    }
    return Access::make(block, an + bn, m_signum * other.m_signum);
}

BigInteger BigInteger::divide(const BigInteger& divisor) const {
    BigInteger q;
    divideMagnitudes(*this, divisor, m_signum * divisor.m_signum, &q, nullptr);
    return q;
}

BigInteger BigInteger::remainder(const BigInteger& divisor) const {
    BigInteger r;
    divideMagnitudes(*this, divisor, m_signum * divisor.m_signum, nullptr, &r);
    return r;
}

std::pair<BigInteger, BigInteger> BigInteger::divideAndRemainder(const BigInteger& divisor) const {
    std::pair<BigInteger, BigInteger> result;
    divideMagnitudes(*this, divisor, m_signum * divisor.m_signum, &result.first, &result.second);
    return result;
}

BigInteger BigInteger::mod(const BigInteger& m) const {
    if (m.m_signum <= 0)
        fail<MathInvalidOpException>(u"BigInteger: modulus not positive");
    BigInteger r = remainder(m);
    return r.m_signum < 0 ? r.add(m) : r;
}

BigInteger BigInteger::pow(int32_t exponent) const {
    if (exponent < 0)
        fail<MathInvalidOpException>(u"BigInteger: negative exponent");
    if (exponent == 0)
        return BigInteger(1);
    if (!m_signum)
        return BigInteger();
    // Powers of two (and their factor in this) are shifts.
    const int32_t zeros = getLowestSetBit();
    const BigInteger odd = shiftRight(zeros);
    const int64_t shift = int64_t{zeros} * exponent;
    const int64_t oddBits = int64_t{odd.bitLength() - 1} * exponent;
    if (shift + oddBits >= INT32_MAX)
        throwTooLarge();
    BigInteger result(1), base = odd.abs();
    for (int32_t e = exponent;;) {
        if (e & 1)
            result = result.multiply(base);
        e >>= 1;
        if (!e)
            break;
        base = base.multiply(base);
    }
    result = result.shiftLeft(static_cast<int32_t>(shift));
    return m_signum < 0 && (exponent & 1) ? result.negate() : result;
}

BigInteger BigInteger::modPow(const BigInteger& exponent, const BigInteger& m) const {
    if (m.m_signum <= 0)
        fail<MathInvalidOpException>(u"BigInteger: modulus not positive");
    if (m.size() == 1 && m.limbs()[0] == 1)
        return BigInteger();
    if (!exponent.m_signum)
        return BigInteger(1);
    BigInteger base = mod(m);
    BigInteger e = exponent;
    if (e.m_signum < 0) {
        base = base.modInverse(m);
        e = e.negate();
    }
    if (!base.m_signum)
        return BigInteger();
    return m.testBit(0) ? modPowOdd(base, e, m) : modPowPlain(base, e, m);
}

BigInteger BigInteger::modInverse(const BigInteger& m) const {
    if (m.m_signum <= 0)
        fail<MathInvalidOpException>(u"BigInteger: modulus not positive");
    if (m.size() == 1 && m.limbs()[0] == 1)
        return BigInteger();
    // Extended Euclid, keeping only the coefficient of this.
    BigInteger r0 = mod(m), r1 = m, s0(1), s1;
    while (r1.m_signum) {
        const std::pair<BigInteger, BigInteger> qr = r0.divideAndRemainder(r1);
        r0 = r1;
        r1 = qr.second;
        BigInteger s = s0.subtract(qr.first.multiply(s1));
        s0 = s1;
        s1 = s;
    }
    if (!(r0.size() == 1 && r0.limbs()[0] == 1))
        fail<MathInvalidOpException>(u"BigInteger: not invertible");
    return s0.mod(m);
}

BigInteger BigInteger::gcd(const BigInteger& other) const {
    BigInteger a = abs(), b = other.abs();
    while (b.m_signum) {
        if (a.size() == 1 && b.size() == 1) {
            // Binary gcd on single limbs.
            Limb x = a.limbs()[0], y = b.limbs()[0];
            const int shift = nat::trailingZeros(x | y);
            x >>= nat::trailingZeros(x);
            while (y) {
                y >>= nat::trailingZeros(y);
                if (x > y)
                    std::swap(x, y);
                y -= x;
            }
            const Limb g = x << shift;
            return Access::fromLimbs(&g, 1, 1);
        }
        BigInteger r = a.remainder(b);
        a = std::move(b);
        b = std::move(r);
    }
    return a;
}

BigInteger BigInteger::sqrt() const {
    if (m_signum < 0)
        fail<MathInvalidOpException>(u"BigInteger: square root of a negative number");
    const int32_t bits = bitLength();
    if (bits <= 52) {
        auto value = static_cast<uint64_t>(int64Value());
        auto root = static_cast<uint64_t>(std::sqrt(static_cast<double>(value)));
        while (root * root > value)
            --root;
        while ((root + 1) * (root + 1) <= value)
            ++root;
        return valueOfUnsigned(root);
    }
    // The root of the top half, shifted back, is within a few ulps of this one's and above it;
    // Newton's iteration then descends to the floor.
    const int32_t k = (bits - 52) / 2 + 1;
    BigInteger x = shiftRight(2 * k).sqrt().add(BigInteger(1)).shiftLeft(k);
    for (;;) {
        BigInteger y = x.add(divide(x)).shiftRight(1);
        if (y.compareTo(x) >= 0)
            return x;
        x = std::move(y);
    }
}

BigInteger BigInteger::negate() const {
    BigInteger r(*this);
    r.m_signum = -m_signum;
    return r;
}

BigInteger BigInteger::abs() const {
    return m_signum < 0 ? negate() : *this;
}

BigInteger BigInteger::min(const BigInteger& other) const {
    return compareTo(other) <= 0 ? *this : other;
}

BigInteger BigInteger::max(const BigInteger& other) const {
    return compareTo(other) >= 0 ? *this : other;
}

BigInteger BigInteger::shiftLeft(int32_t n) const {
    if (n < 0)
        return shiftRight(n == INT32_MIN ? INT32_MAX : -n);
    if (!m_signum || !n)
        return *this;
    if (int64_t{bitLength()} + n > INT32_MAX)
        throwTooLarge();
    const size_t whole = static_cast<size_t>(n) / 64;
    const int bits = n % 64;
    const size_t an = size(), rn = an + whole + 1;
    Block* block = Access::allocate(rn);
    Limb* r = block->limbs();
    std::fill(r, r + whole, Limb{0});
    if (bits)
        r[rn - 1] = nat::shiftLeft(r + whole, limbs(), an, bits);
    else {
        std::copy(limbs(), limbs() + an, r + whole);
        r[rn - 1] = 0;
    }
    return Access::make(block, rn, m_signum);
}

BigInteger BigInteger::shiftRight(int32_t n) const {
    if (n < 0)
        return shiftLeft(n == INT32_MIN ? INT32_MAX : -n);
    if (!m_signum || !n)
        return *this;
    const size_t whole = static_cast<size_t>(n) / 64;
    const int bits = n % 64;
    const size_t an = size();
    if (whole >= an)
        return m_signum < 0 ? BigInteger(-1) : BigInteger();
    // A negative number rounds toward minus infinity: one more when a one bit falls off.
    bool lost = false;
    for (size_t i = 0; i < whole && !lost; ++i)
        lost = limbs()[i] != 0;
    const size_t rn = an - whole;
    Block* block = Access::allocate(rn + 1);
    Limb* r = block->limbs();
    if (bits)
        lost |= nat::shiftRight(r, limbs() + whole, rn, bits) != 0;
    else
        std::copy(limbs() + whole, limbs() + an, r);
    r[rn] = 0;
    if (m_signum < 0 && lost)
        nat::add1(r, r, rn + 1, 1);
    return Access::make(block, rn + 1, m_signum);
}

BigInteger BigInteger::and_(const BigInteger& other) const {
    return bitwise(*this, other, [](Limb x, Limb y) { return x & y; });
}

BigInteger BigInteger::or_(const BigInteger& other) const {
    return bitwise(*this, other, [](Limb x, Limb y) { return x | y; });
}

BigInteger BigInteger::xor_(const BigInteger& other) const {
    return bitwise(*this, other, [](Limb x, Limb y) { return x ^ y; });
}

BigInteger BigInteger::not_() const {
    // ~x == -x - 1
    return negate().subtract(BigInteger(1));
}

BigInteger BigInteger::andNot(const BigInteger& other) const {
    return bitwise(*this, other, [](Limb x, Limb y) { return x & ~y; });
}

bool BigInteger::testBit(int32_t n) const {
    checkBitIndex(n);
    const size_t limb = static_cast<size_t>(n) / 64;
    const bool bit = limb < size() && ((limbs()[limb] >> (n % 64)) & 1);
    if (m_signum >= 0)
        return bit;
    // Two's complement keeps the bits up to the lowest one and inverts those above.
    return n <= getLowestSetBit() ? bit : !bit;
}

BigInteger BigInteger::setBit(int32_t n) const {
    checkBitIndex(n);
    if (testBit(n))
        return *this;
    if (m_signum >= 0 && n == INT32_MAX)
        throwTooLarge();
    return or_(BigInteger(1).shiftLeft(n));
}

BigInteger BigInteger::clearBit(int32_t n) const {
    checkBitIndex(n);
    if (!testBit(n))
        return *this;
    if (m_signum < 0 && n == INT32_MAX)
        throwTooLarge();
    return andNot(BigInteger(1).shiftLeft(n));
}

BigInteger BigInteger::flipBit(int32_t n) const {
    checkBitIndex(n);
    if (n == INT32_MAX)
        throwTooLarge();
    return xor_(BigInteger(1).shiftLeft(n));
}

int32_t BigInteger::bitLength() const noexcept {
    const size_t n = size();
    if (!n)
        return 0;
    const int64_t bits = static_cast<int64_t>(n) * 64 - nat::leadingZeros(limbs()[n - 1]);
    // -2^k needs one bit less than 2^k.
    if (m_signum < 0 && getLowestSetBit() == bits - 1)
        return static_cast<int32_t>(bits - 1);
    return static_cast<int32_t>(bits);
}

int32_t BigInteger::bitCount() const noexcept {
    int64_t count = 0;
    for (size_t i = 0; i < size(); ++i)
        count += nat::popCount(limbs()[i]);
    // For a negative number, the one bits of |x| - 1: the trailing zeros of |x| become ones
    // and its lowest one a zero.
    if (m_signum < 0)
        count += getLowestSetBit() - 1;
    return static_cast<int32_t>(count);
}

int32_t BigInteger::getLowestSetBit() const noexcept {
    if (!m_signum)
        return -1;
    size_t i = 0;
    while (!limbs()[i])
        ++i;
    return static_cast<int32_t>(i * 64) + nat::trailingZeros(limbs()[i]);
}

int64_t BigInteger::int64Value() const noexcept {
    if (!m_signum)
        return 0;
    const Limb low = limbs()[0];
    return static_cast<int64_t>(m_signum < 0 ? ~low + 1 : low);
}

int32_t BigInteger::int32Value() const noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(int64Value())));
}

int64_t BigInteger::int64ValueExact() const {
    if (bitLength() > 63)
        fail<MathOverflowException>(u"BigInteger: out of int64 range");
    return int64Value();
}

int32_t BigInteger::int32ValueExact() const {
    if (bitLength() > 31)
        fail<MathOverflowException>(u"BigInteger: out of int32 range");
    return int32Value();
}

double BigInteger::doubleValue() const noexcept {
    if (!m_signum)
        return 0.0;
    const int32_t bits = static_cast<int32_t>(size() * 64 - nat::leadingZeros(limbs()[size() - 1]));
    if (bits > 1025)
        return m_signum * HUGE_VAL;
    // The top 64 bits with a sticky bit for everything below: one rounding, to nearest even.
    Limb top;
    int32_t shift = bits - 64;
    if (shift <= 0) {
        top = limbs()[0] << -shift;
    } else {
        const size_t limb = static_cast<size_t>(shift) / 64;
        const int bit = shift % 64;
        top = limbs()[limb] >> bit;
        if (bit)
            top |= limbs()[limb + 1] << (64 - bit);
        bool sticky = bit && (limbs()[limb] << (64 - bit)) != 0;
        for (size_t i = 0; i < limb && !sticky; ++i)
            sticky = limbs()[i] != 0;
        // The sticky bit lands below the 11 bits that the conversion drops.
        top |= sticky ? 1 : 0;
    }
    return m_signum * std::ldexp(static_cast<double>(top), shift);
}

std::vector<signed char> BigInteger::toByteArray() const {
    const size_t count = static_cast<size_t>(bitLength()) / 8 + 1;
    const std::vector<Limb> v = twosComplement(*this, count / 8 + 1);
    std::vector<signed char> bytes(count);
    for (size_t i = 0; i < count; ++i) {
        const size_t bit = (count - 1 - i) * 8;
        bytes[i] = static_cast<signed char>(static_cast<unsigned char>(v[bit / 64] >> (bit % 64)));
    }
    return bytes;
}

String BigInteger::toString(int radix) const {
    checkRadix(radix);
    if (!m_signum)
        return String(u"0");
    const std::vector<uint8_t> digits = nat::toDigits(limbs(), size(), radix);
    const size_t sign = m_signum < 0 ? 1 : 0;
    std::u16string text(digits.size() + sign, u'-');
    for (size_t i = 0; i < digits.size(); ++i)
        text[sign + i] = u"0123456789abcdefghijklmnopqrstuvwxyz"[digits[i]];
    return String(text.data(), static_cast<int32_t>(text.size()));
}

String BigInteger::toString() const {
    return toString(10);
}

bool BigInteger::isProbablePrime(int32_t certainty) const {
    if (certainty <= 0)
        return true;
    const BigInteger w = abs();
    if (w.bitLength() <= 20) {
        const int64_t v = w.int64Value();
        for (int64_t p = 2; p * p <= v; ++p) {
            if (v % p == 0)
                return false;
        }
        return v >= 2;
    }
    const Limbs quotient = nat::allocate(w.size());
    for (uint16_t p : SMALL_PRIMES) {
        if (nat::divRem1(quotient.get(), w.limbs(), w.size(), p) == 0)
            return false;
    }
    // Rounds by size, as the average-case error bounds for random candidates allow, and never
    // more than the certainty asks for (each round at most 1/4).
    const int32_t bits = w.bitLength();
    const int32_t byBits = bits < 100    ? 50
                           : bits < 256  ? 27
                           : bits < 512  ? 15
                           : bits < 768  ? 8
                           : bits < 1024 ? 4
                                         : 2;
    const int32_t rounds = std::min(byBits, (certainty + 1) / 2);
    const BigInteger wMinusOne = w.subtract(BigInteger(1));
    const int32_t s = wMinusOne.getLowestSetBit();
    const BigInteger d = wMinusOne.shiftRight(s);
    // Bases from a fixed sequence, so the answer is the same on every run.
    uint64_t state = 0x9E3779B97F4A7C15u ^ static_cast<uint64_t>(bits);
    const BigInteger range = w.subtract(BigInteger(3));
    for (int32_t round = 0; round < rounds; ++round) {
        BigInteger base;
        if (round < 12) {
            base = BigInteger(static_cast<int>(SMALL_PRIMES[round]));
        } else {
            std::vector<Limb> random(w.size());
            for (Limb& limb : random) {
                state ^= state << 13;
                state ^= state >> 7;
                state ^= state << 17;
                limb = state;
            }
            base = fromVector(random, 1).mod(range).add(BigInteger(2));
        }
        if (!millerRabinPasses(w, wMinusOne, d, s, base))
            return false;
    }
    return true;
}

Reference<Object> BigInteger::clone() const {
    return Reference<Object>(new BigInteger(*this));
}

int32_t BigInteger::compareTo(const Object& other) const {
    const auto* that = dynamic_cast<const BigInteger*>(&other);
    if (!that)
        throw CastFailedException(String(u"compareTo needs another BigInteger"));
    return compareTo(*that);
}

int32_t BigInteger::compareTo(const BigInteger& other) const noexcept {
    if (m_signum != other.m_signum)
        return m_signum > other.m_signum ? 1 : -1;
    const int order = nat::compare(limbs(), size(), other.limbs(), other.size());
    return m_signum < 0 ? -order : order;
}

bool BigInteger::equals(const Object& other) const {
    const auto* that = dynamic_cast<const BigInteger*>(&other);
    return that && compareTo(*that) == 0;
}

uint32_t BigInteger::hashCode() const {
    // Over the magnitude's 32-bit words, most significant first, then times the sign.
    uint32_t h = 0;
    for (size_t i = size(); i-- > 0;) {
        h = 31 * h + static_cast<uint32_t>(limbs()[i] >> 32);
        h = 31 * h + static_cast<uint32_t>(limbs()[i]);
    }
    return h * static_cast<uint32_t>(m_signum);
}

} // namespace qn::math
