// Conversion between limbs and digits. A power-of-two radix is a matter of regrouping bits.
// Other radixes work in chunks of k digits, radix^k being the largest power in a limb: below
// thresholds.radix limbs one chunk at a time (quadratic), above it by halves, splitting at
// radix^(k 2^i) with the subquadratic multiplication and division.
#include "math/Natural.h"

#include <algorithm>
#include <cmath>

namespace qn::math::nat {

namespace {

struct Base {
    explicit Base(int radix) : radix(radix) {
        Limb p = static_cast<Limb>(radix);
        digits = 1;
        while (p <= ~Limb{0} / static_cast<Limb>(radix)) {
            p *= static_cast<Limb>(radix);
            ++digits;
        }
        big = p;
    }
    int radix;
    size_t digits; // per chunk
    Limb big;      // radix^digits
};

int bitsPerDigit(int radix) {
    return (radix & (radix - 1)) == 0 ? trailingZeros(static_cast<Limb>(radix)) : 0;
}

// radix^(digits 2^i), built by squaring as far as asked.
class Powers {
public:
    explicit Powers(const Base& base) : m_base(base) { m_powers.push_back({base.big}); }
    const std::vector<Limb>& at(size_t i) {
        while (m_powers.size() <= i)
            m_powers.push_back(mul(m_powers.back(), m_powers.back()));
        return m_powers[i];
    }
    size_t digitsAt(size_t i) const { return m_base.digits << i; }

private:
    const Base& m_base;
    std::vector<std::vector<Limb>> m_powers;
};

// Writes exactly width digits of a chunk value (width <= base.digits).
void chunkDigits(Limb value, uint8_t* out, size_t width, int radix) {
    for (size_t i = width; i-- > 0;) {
        out[i] = static_cast<uint8_t>(value % static_cast<Limb>(radix));
        value /= static_cast<Limb>(radix);
    }
}

// Exactly width digits of x (x < radix^width), zero-padded, one chunk at a time.
void toDigitsBasecase(std::vector<Limb> x, uint8_t* out, size_t width, const Base& base) {
    size_t n = normalized(x.data(), x.size());
    size_t end = width;
    while (n && end) {
        const Limb chunk = divRem1(x.data(), x.data(), n, base.big);
        n = normalized(x.data(), n);
        const size_t take = std::min(base.digits, end);
        chunkDigits(chunk, out + end - take, take, base.radix);
        end -= take;
    }
    std::fill(out, out + end, uint8_t{0});
}

void toDigitsSplit(const std::vector<Limb>& x, uint8_t* out, size_t width, const Base& base,
                   Powers& powers) {
    if (x.size() < thresholds.radix) {
        toDigitsBasecase(x, out, width, base);
        return;
    }
    // The largest power of at most half x's length: x = q p + r, r with digitsAt(i) digits.
    size_t i = 0;
    while (powers.at(i + 1).size() <= (x.size() + 1) / 2)
        ++i;
    const std::vector<Limb>& p = powers.at(i);
    const size_t lowWidth = powers.digitsAt(i);
    std::vector<Limb> q(x.size() - p.size() + 1), r(p.size());
    divRem(q.data(), r.data(), x.data(), x.size(), p.data(), p.size());
    q.resize(normalized(q.data(), q.size()));
    r.resize(normalized(r.data(), r.size()));
    toDigitsSplit(q, out, width - lowWidth, base, powers);
    toDigitsSplit(r, out + width - lowWidth, lowWidth, base, powers);
}

std::vector<uint8_t> toDigitsPow2(const Limb* a, size_t an, int bits) {
    const size_t totalBits = an * 64 - static_cast<size_t>(leadingZeros(a[an - 1]));
    const size_t count = (totalBits + bits - 1) / bits;
    std::vector<uint8_t> out(count);
    const Limb mask = (Limb{1} << bits) - 1;
    for (size_t d = 0; d < count; ++d) {
        const size_t bit = d * static_cast<size_t>(bits);
        const size_t limb = bit / 64;
        const int shift = static_cast<int>(bit % 64);
        Limb v = a[limb] >> shift;
        if (shift + bits > 64 && limb + 1 < an)
            v |= a[limb + 1] << (64 - shift);
        out[count - 1 - d] = static_cast<uint8_t>(v & mask);
    }
    return out;
}

std::vector<Limb> fromDigitsPow2(const uint8_t* digits, size_t count, int bits) {
    std::vector<Limb> r((count * static_cast<size_t>(bits) + 63) / 64 + 1, 0);
    for (size_t d = 0; d < count; ++d) {
        const Limb v = digits[count - 1 - d];
        const size_t bit = d * static_cast<size_t>(bits);
        const int shift = static_cast<int>(bit % 64);
        r[bit / 64] |= v << shift;
        if (shift + bits > 64)
            r[bit / 64 + 1] |= v >> (64 - shift);
    }
    r.resize(normalized(r.data(), r.size()));
    return r;
}

Limb chunkValue(const uint8_t* digits, size_t count, int radix) {
    Limb v = 0;
    for (size_t i = 0; i < count; ++i)
        v = v * static_cast<Limb>(radix) + digits[i];
    return v;
}

std::vector<Limb> fromDigitsBasecase(const uint8_t* digits, size_t count, const Base& base) {
    std::vector<Limb> r(count / base.digits + 2, 0);
    size_t n = 0;
    // A short first chunk, so that the rest are whole.
    size_t width = count % base.digits ? count % base.digits : base.digits;
    for (size_t at = 0; at < count; at += width, width = base.digits) {
        const Limb chunk = chunkValue(digits + at, width, base.radix);
        if (n) {
            Limb carry = mul1(r.data(), r.data(), n, base.big);
            if (carry)
                r[n++] = carry;
            carry = add1(r.data(), r.data(), n, chunk);
            if (carry)
                r[n++] = carry;
        } else if (chunk) {
            r[n++] = chunk;
        }
    }
    r.resize(n);
    return r;
}

std::vector<Limb> fromDigitsSplit(const uint8_t* digits, size_t count, const Base& base,
                                  Powers& powers) {
    if (count < thresholds.radix * base.digits)
        return fromDigitsBasecase(digits, count, base);
    size_t i = 0;
    while (powers.digitsAt(i + 1) < count)
        ++i;
    const size_t lowWidth = powers.digitsAt(i);
    std::vector<Limb> high = fromDigitsSplit(digits, count - lowWidth, base, powers);
    std::vector<Limb> low = fromDigitsSplit(digits + count - lowWidth, lowWidth, base, powers);
    std::vector<Limb> r = mul(high, powers.at(i));
    if (r.size() < low.size())
        r.resize(low.size(), 0);
    r.push_back(0);
    if (!low.empty())
        add(r.data(), r.data(), r.size(), low.data(), low.size());
    r.resize(normalized(r.data(), r.size()));
    return r;
}

} // namespace

std::vector<uint8_t> toDigits(const Limb* a, size_t an, int radix) {
    if (const int bits = bitsPerDigit(radix))
        return toDigitsPow2(a, an, bits);
    const Base base(radix);
    const double bitLength = static_cast<double>(an * 64 - leadingZeros(a[an - 1]));
    const size_t width = static_cast<size_t>(bitLength * std::log(2.0) / std::log(radix)) + 2;
    std::vector<uint8_t> out(width);
    Powers powers(base);
    toDigitsSplit(std::vector<Limb>(a, a + an), out.data(), width, base, powers);
    const auto first = std::find_if(out.begin(), out.end(), [](uint8_t d) { return d != 0; });
    out.erase(out.begin(), first);
    return out;
}

std::vector<Limb> fromDigits(const uint8_t* digits, size_t count, int radix) {
    while (count && !*digits) {
        ++digits;
        --count;
    }
    if (!count)
        return {};
    if (const int bits = bitsPerDigit(radix))
        return fromDigitsPow2(digits, count, bits);
    const Base base(radix);
    Powers powers(base);
    return fromDigitsSplit(digits, count, base, powers);
}

} // namespace qn::math::nat
