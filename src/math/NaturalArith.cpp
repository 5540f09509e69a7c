#include "math/Natural.h"

#include <algorithm>
#include <cstring>

namespace qn::math::nat {

// Crossovers measured on x86-64 (g++ -O2, 2-core Xeon): Karatsuba from 32 limbs, Toom-3 from
// 200, transforms from 3500; recursive division from 60 quotient limbs; radix conversion by
// halves from 24 limbs.
Thresholds thresholds = {32, 200, 3500, 60, 24};

Limb divWidePortable(Limb high, Limb low, Limb d, Limb& rem) {
    // Normalize, then two steps of one 32-bit quotient digit each, as in long division.
    const int s = leadingZeros(d);
    if (s) {
        d <<= s;
        high = (high << s) | (low >> (64 - s));
        low <<= s;
    }
    const Limb d1 = d >> 32, d0 = d & 0xFFFFFFFFu;
    Limb digits[2];
    Limb top = high;
    for (int step = 0; step < 2; ++step) {
        const Limb next = step == 0 ? low >> 32 : low & 0xFFFFFFFFu;
        Limb q = top / d1;
        Limb r = top - q * d1;
        while (q > 0xFFFFFFFFu || q * d0 > ((r << 32) | next)) {
            --q;
            r += d1;
            if (r > 0xFFFFFFFFu)
                break;
        }
        digits[step] = q;
        top = ((top << 32) | next) - q * d;
    }
    rem = top >> s;
    return (digits[0] << 32) | digits[1];
}

Reciprocal::Reciprocal(Limb divisor) : d(divisor) {
    Limb unused;
    // floor((B^2 - 1) / d) - B
    inverse = divWide(~divisor, ~Limb{0}, divisor, unused);
}

int compare(const Limb* a, const Limb* b, size_t n) {
    while (n--) {
        if (a[n] != b[n])
            return a[n] > b[n] ? 1 : -1;
    }
    return 0;
}

int compare(const Limb* a, size_t an, const Limb* b, size_t bn) {
    if (an != bn)
        return an > bn ? 1 : -1;
    return compare(a, b, an);
}

Limb addN(Limb* r, const Limb* a, const Limb* b, size_t n) {
#ifdef QNCL_MATH_INT128
    Wide sum = 0;
    for (size_t i = 0; i < n; ++i) {
        sum += static_cast<Wide>(a[i]) + b[i];
        r[i] = static_cast<Limb>(sum);
        sum >>= 64;
    }
    return static_cast<Limb>(sum);
#else
    Limb carry = 0;
    for (size_t i = 0; i < n; ++i) {
        const Limb x = a[i];
        const Limb s = x + b[i];
        const Limb t = s + carry;
        carry = (s < x) | (t < s);
        r[i] = t;
    }
    return carry;
#endif
}

Limb add1(Limb* r, const Limb* a, size_t n, Limb b) {
    size_t i = 0;
    for (; i < n && b; ++i) {
        const Limb s = a[i] + b;
        b = s < b;
        r[i] = s;
    }
    if (r != a)
        std::copy(a + i, a + n, r + i);
    return b;
}

Limb add(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    const Limb carry = addN(r, a, b, bn);
    return add1(r + bn, a + bn, an - bn, carry);
}

Limb subN(Limb* r, const Limb* a, const Limb* b, size_t n) {
    Limb borrow = 0;
    for (size_t i = 0; i < n; ++i) {
        const Limb x = a[i];
        const Limb d = x - b[i];
        const Limb t = d - borrow;
        borrow = (d > x) | (t > d);
        r[i] = t;
    }
    return borrow;
}

Limb sub1(Limb* r, const Limb* a, size_t n, Limb b) {
    size_t i = 0;
    for (; i < n && b; ++i) {
        const Limb x = a[i];
        r[i] = x - b;
        b = x < b;
    }
    if (r != a)
        std::copy(a + i, a + n, r + i);
    return b;
}

Limb sub(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    const Limb borrow = subN(r, a, b, bn);
    return sub1(r + bn, a + bn, an - bn, borrow);
}

Limb mul1(Limb* r, const Limb* a, size_t n, Limb b) {
#ifdef QNCL_MATH_INT128
    Limb high = 0;
    for (size_t i = 0; i < n; ++i) {
        const Wide t = static_cast<Wide>(a[i]) * b + high;
        r[i] = static_cast<Limb>(t);
        high = static_cast<Limb>(t >> 64);
    }
    return high;
#else
    Limb carry = 0;
    for (size_t i = 0; i < n; ++i) {
        Limb high;
        const Limb low = mulWide(a[i], b, high);
        const Limb t = low + carry;
        carry = high + (t < low);
        r[i] = t;
    }
    return carry;
#endif
}

Limb addMul1(Limb* r, const Limb* a, size_t n, Limb b) {
#ifdef QNCL_MATH_INT128
    Limb high = 0;
    for (size_t i = 0; i < n; ++i) {
        // (B - 1)^2 + 2 (B - 1) < B^2: never overflows.
        const Wide t = static_cast<Wide>(a[i]) * b + r[i] + high;
        r[i] = static_cast<Limb>(t);
        high = static_cast<Limb>(t >> 64);
    }
    return high;
#else
    Limb carry = 0;
    for (size_t i = 0; i < n; ++i) {
        Limb high;
        Limb low = mulWide(a[i], b, high);
        low += carry;
        high += low < carry;
        const Limb t = r[i] + low;
        carry = high + (t < low);
        r[i] = t;
    }
    return carry;
#endif
}

Limb subMul1(Limb* r, const Limb* a, size_t n, Limb b) {
    Limb carry = 0;
    for (size_t i = 0; i < n; ++i) {
        Limb high;
        Limb low = mulWide(a[i], b, high);
        low += carry;
        high += low < carry;
        const Limb x = r[i];
        r[i] = x - low;
        carry = high + (x < low);
    }
    return carry;
}

Limb shiftLeft(Limb* r, const Limb* a, size_t n, int s) {
    const Limb out = a[n - 1] >> (64 - s);
    for (size_t i = n - 1; i > 0; --i)
        r[i] = (a[i] << s) | (a[i - 1] >> (64 - s));
    r[0] = a[0] << s;
    return out;
}

Limb shiftRight(Limb* r, const Limb* a, size_t n, int s) {
    const Limb out = a[0] << (64 - s);
    for (size_t i = 0; i + 1 < n; ++i)
        r[i] = (a[i] >> s) | (a[i + 1] << (64 - s));
    r[n - 1] = a[n - 1] >> s;
    return out;
}

// r[0, n) += a * (b0 + b1 B), the two limbs above going to c0 (r[n]'s place) and c1
// (r[n + 1]'s). Two rows in one pass halve the loads and stores of r.
void addMul2(Limb* r, const Limb* a, size_t n, Limb b0, Limb b1, Limb& c0, Limb& c1) {
    Limb low = 0, high = 0;
#ifdef QNCL_MATH_INT128
    for (size_t i = 0; i < n; ++i) {
        const Wide p0 = static_cast<Wide>(a[i]) * b0 + r[i] + low;
        r[i] = static_cast<Limb>(p0);
        const Wide p1 = static_cast<Wide>(a[i]) * b1 + static_cast<Limb>(p0 >> 64) + high;
        low = static_cast<Limb>(p1);
        high = static_cast<Limb>(p1 >> 64);
    }
#else
    for (size_t i = 0; i < n; ++i) {
        const Limb x = a[i];
        Limb h0, h1;
        Limb l0 = mulWide(x, b0, h0);
        const Limb l1 = mulWide(x, b1, h1);
        // Position i: r[i] + x b0 + low (low already holds the b1 row's part for it).
        l0 += low;
        h0 += l0 < low;
        const Limb t = r[i] + l0;
        h0 += t < l0;
        r[i] = t;
        // Position i + 1: the high limb of x b0, the low limb of x b1, and high.
        Limb next = h0 + l1;
        Limb top = h1 + (next < l1);
        next += high;
        top += next < high;
        low = next;
        high = top;
    }
#endif
    c0 = low;
    c1 = high;
}

void mulBasecase(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    r[an] = mul1(r, a, an, b[0]);
    size_t j = 1;
    for (; j + 1 < bn; j += 2)
        addMul2(r + j, a, an, b[j], b[j + 1], r[an + j], r[an + j + 1]);
    if (j < bn)
        r[an + j] = addMul1(r + j, a, an, b[j]);
}

// The cross products once, doubled, then the squares on the diagonal.
void sqrBasecase(Limb* r, const Limb* a, size_t n) {
    if (n == 1) {
        r[0] = mulWide(a[0], a[0], r[1]);
        return;
    }
    r[0] = 0;
    r[n] = mul1(r + 1, a + 1, n - 1, a[0]);
    for (size_t i = 1; i + 1 < n; ++i)
        r[n + i] = addMul1(r + 2 * i + 1, a + i + 1, n - i - 1, a[i]);
    r[2 * n - 1] = shiftLeft(r + 1, r + 1, 2 * n - 2, 1);
    Limb carry = 0;
    for (size_t i = 0; i < n; ++i) {
        Limb high;
        const Limb low = mulWide(a[i], a[i], high);
        Limb t = r[2 * i] + low;
        Limb c = t < low;
        t += carry;
        c += t < carry;
        r[2 * i] = t;
        Limb u = r[2 * i + 1] + high;
        Limb c2 = u < high;
        u += c;
        c2 += u < c;
        r[2 * i + 1] = u;
        carry = c2;
    }
}

#ifdef QNCL_MATH_INT128
void montgomeryColumns(Limb* r, const Limb* a, const Limb* b, const Limb* m, size_t n, Limb inverse,
                       Limb* u) {
    // A three-limb accumulator: low holds limbs 0 and 1, top limb 2.
    Wide low = 0;
    Limb top = 0;
    const bool square = a == b;
    for (size_t k = 0; k + 1 < 2 * n; ++k) {
        const size_t first = k < n ? 0 : k - n + 1;
        if (square) {
            // The products a[j] a[k - j] with j < k - j once, doubled, then the square.
            Wide half = 0;
            Limb halfTop = 0;
            for (size_t j = first; j < k - j; ++j) {
                const Wide p = static_cast<Wide>(a[j]) * a[k - j];
                half += p;
                halfTop += half < p;
            }
            halfTop = (halfTop << 1) | static_cast<Limb>(half >> 127);
            half <<= 1;
            if (!(k & 1)) {
                const Wide p = static_cast<Wide>(a[k / 2]) * a[k / 2];
                half += p;
                halfTop += half < p;
            }
            low += half;
            top += halfTop + (low < half);
        } else {
            for (size_t j = first; j <= k && j < n; ++j) {
                const Wide p = static_cast<Wide>(a[j]) * b[k - j];
                low += p;
                top += low < p;
            }
        }
        // The reduction's products for this column, with the multipliers found so far.
        for (size_t j = first; j < k && j < n; ++j) {
            const Wide p = static_cast<Wide>(u[j]) * m[k - j];
            low += p;
            top += low < p;
        }
        if (k < n) {
            // The multiplier that clears this column's low limb.
            u[k] = static_cast<Limb>(low) * inverse;
            const Wide p = static_cast<Wide>(u[k]) * m[0];
            low += p;
            top += low < p;
        } else {
            r[k - n] = static_cast<Limb>(low);
        }
        low = (low >> 64) | (static_cast<Wide>(top) << 64);
        top = 0;
    }
    r[n - 1] = static_cast<Limb>(low);
    if (static_cast<Limb>(low >> 64) || compare(r, m, n) >= 0)
        subN(r, r, m, n);
}
#endif

namespace {

void mulDispatch(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn);

// a is much longer than b: b times each bn-limb piece of a, added at the piece's place.
void mulChunked(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    std::fill(r, r + an + bn, Limb{0});
    Limbs t = allocate(2 * bn);
    for (size_t i = 0; i < an; i += bn) {
        const size_t pn = std::min(bn, an - i);
        mulDispatch(t.get(), b, bn, a + i, pn);
        add(r + i, r + i, an + bn - i, t.get(), pn + bn);
    }
}

// |x - y| of two numbers padded to n limbs; true when x < y.
bool absDiff(Limb* r, const Limb* x, size_t xn, const Limb* y, size_t yn, size_t n) {
    Limbs px = allocate(n), py = allocate(n);
    std::copy(x, x + xn, px.get());
    std::fill(px.get() + xn, px.get() + n, Limb{0});
    std::copy(y, y + yn, py.get());
    std::fill(py.get() + yn, py.get() + n, Limb{0});
    if (compare(px.get(), py.get(), n) < 0) {
        subN(r, py.get(), px.get(), n);
        return true;
    }
    subN(r, px.get(), py.get(), n);
    return false;
}

// a = a1 B^h + a0, b = b1 B^h + b0:
// a b = z0 + (z0 + z2 - (a0 - a1)(b0 - b1)) B^h + z2 B^2h.
void mulKaratsuba(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    const bool square = a == b && an == bn;
    const size_t h = (an + 1) / 2;
    const size_t a1n = an - h, b1n = bn - h;
    mulDispatch(r, a, h, b, h);
    mulDispatch(r + 2 * h, a + h, a1n, b + h, b1n);
    Limbs da = allocate(h), db = allocate(h), t = allocate(2 * h), middle = allocate(2 * h + 1);
    bool negative = absDiff(da.get(), a, h, a + h, a1n, h);
    if (square) {
        mulDispatch(t.get(), da.get(), h, da.get(), h);
        negative = false;
    } else {
        negative ^= absDiff(db.get(), b, h, b + h, b1n, h);
        mulDispatch(t.get(), da.get(), h, db.get(), h);
    }
    Limb* m = middle.get();
    std::copy(r, r + 2 * h, m);
    m[2 * h] = add(m, m, 2 * h, r + 2 * h, a1n + b1n);
    if (negative)
        m[2 * h] += addN(m, m, t.get(), 2 * h);
    else
        m[2 * h] -= subN(m, m, t.get(), 2 * h);
    const size_t rest = an + bn - h;
    add(r + h, r + h, rest, m, std::min(rest, normalized(m, 2 * h + 1)));
}

// Signed numbers for Toom-3's evaluation and interpolation.
struct Signed {
    std::vector<Limb> mag;
    bool negative = false;
};

void trim(std::vector<Limb>& v) {
    v.resize(normalized(v.data(), v.size()));
}

std::vector<Limb> addMag(const std::vector<Limb>& x, const std::vector<Limb>& y) {
    const std::vector<Limb>& big = x.size() >= y.size() ? x : y;
    const std::vector<Limb>& small = x.size() >= y.size() ? y : x;
    std::vector<Limb> r(big.size() + 1);
    r[big.size()] = add(r.data(), big.data(), big.size(), small.data(), small.size());
    trim(r);
    return r;
}

// x - y for x >= y.
std::vector<Limb> subMag(const std::vector<Limb>& x, const std::vector<Limb>& y) {
    std::vector<Limb> r(x.size());
    sub(r.data(), x.data(), x.size(), y.data(), y.size());
    trim(r);
    return r;
}

Signed plus(const Signed& x, const Signed& y) {
    Signed r;
    if (x.negative == y.negative) {
        r = {addMag(x.mag, y.mag), x.negative};
    } else if (compare(x.mag.data(), x.mag.size(), y.mag.data(), y.mag.size()) >= 0) {
        r = {subMag(x.mag, y.mag), x.negative};
    } else {
        r = {subMag(y.mag, x.mag), y.negative};
    }
    r.negative = r.negative && !r.mag.empty();
    return r;
}

Signed minus(const Signed& x, Signed y) {
    y.negative = !y.negative && !y.mag.empty();
    return plus(x, y);
}

Signed times(const Signed& x, const Signed& y) {
    return {mul(x.mag, y.mag), x.negative != y.negative && !x.mag.empty() && !y.mag.empty()};
}

Signed shifted(Signed x, int left) {
    if (x.mag.empty())
        return x;
    if (left > 0) {
        x.mag.push_back(0);
        x.mag.back() = shiftLeft(x.mag.data(), x.mag.data(), x.mag.size() - 1, left);
    } else {
        shiftRight(x.mag.data(), x.mag.data(), x.mag.size(), -left);
    }
    trim(x.mag);
    if (x.mag.empty())
        x.negative = false;
    return x;
}

// Division by 3 known to be exact: multiplication by 3's inverse modulo B, limb by limb.
Signed divExact3(Signed x) {
    const Limb inverse = 0xAAAAAAAAAAAAAAABu; // 3 * inverse == 1 mod 2^64
    Limb borrow = 0;
    for (Limb& limb : x.mag) {
        const Limb s = limb;
        const Limb q = (s - borrow) * inverse;
        limb = q;
        Limb high;
        mulWide(q, 3, high);
        borrow = high + (s < borrow);
    }
    trim(x.mag);
    return x;
}

Signed piece(const Limb* a, size_t an, size_t from, size_t k) {
    if (from >= an)
        return {};
    std::vector<Limb> v(a + from, a + std::min(an, from + k));
    trim(v);
    return {v, false};
}

// Evaluation at 0, 1, -1, -2 and infinity; interpolation in Bodrato's sequence.
void mulToom3(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    const bool square = a == b && an == bn;
    const size_t k = (an + 2) / 3;
    const Signed a0 = piece(a, an, 0, k), a1 = piece(a, an, k, k), a2 = piece(a, an, 2 * k, k);
    const Signed b0 = piece(b, bn, 0, k), b1 = piece(b, bn, k, k), b2 = piece(b, bn, 2 * k, k);
    auto evaluate = [](const Signed& x0, const Signed& x1, const Signed& x2, Signed out[3]) {
        const Signed even = plus(x0, x2);
        out[0] = plus(even, x1);
        out[1] = minus(even, x1);
        // x0 - 2 x1 + 4 x2 = ((x2 * 2 - x1) * 2) + x0
        out[2] = plus(shifted(minus(shifted(x2, 1), x1), 1), x0);
    };
    Signed pa[3], pb[3];
    evaluate(a0, a1, a2, pa);
    if (!square)
        evaluate(b0, b1, b2, pb);
    const Signed* qb = square ? pa : pb;
    Signed r0 = times(a0, square ? a0 : b0);
    Signed r1 = times(pa[0], qb[0]);
    Signed rm1 = times(pa[1], qb[1]);
    Signed rm2 = times(pa[2], qb[2]);
    Signed rinf = times(a2, square ? a2 : b2);

    Signed r3 = divExact3(minus(rm2, r1));
    r1 = shifted(minus(r1, rm1), -1);
    Signed r2 = minus(rm1, r0);
    r3 = plus(shifted(minus(r2, r3), -1), shifted(rinf, 1));
    r2 = minus(plus(r2, r1), rinf);
    r1 = minus(r1, r3);

    const size_t rn = an + bn;
    std::fill(r, r + rn, Limb{0});
    const Signed* coefficients[] = {&r0, &r1, &r2, &r3, &rinf};
    for (size_t i = 0; i < 5; ++i) {
        const std::vector<Limb>& c = coefficients[i]->mag;
        const size_t at = i * k;
        if (c.empty() || at >= rn)
            continue;
        add(r + at, r + at, rn - at, c.data(), std::min(c.size(), rn - at));
    }
}

void mulDispatch(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    const bool square = a == b && an == bn;
    if (bn < thresholds.karatsuba) {
        if (square)
            sqrBasecase(r, a, an);
        else
            mulBasecase(r, a, an, b, bn);
    } else if (2 * bn <= an + 1) {
        mulChunked(r, a, an, b, bn);
    } else if (bn >= thresholds.ntt) {
        mulNtt(r, a, an, b, bn);
    } else if (bn < thresholds.toom3 || bn <= 2 * ((an + 2) / 3)) {
        mulKaratsuba(r, a, an, b, bn);
    } else {
        mulToom3(r, a, an, b, bn);
    }
}

} // namespace

void mul(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    mulDispatch(r, a, an, b, bn);
}

std::vector<Limb> mul(const std::vector<Limb>& a, const std::vector<Limb>& b) {
    if (a.empty() || b.empty())
        return {};
    std::vector<Limb> r(a.size() + b.size());
    if (&a == &b)
        mulDispatch(r.data(), a.data(), a.size(), a.data(), a.size());
    else
        mulDispatch(r.data(), a.data(), a.size(), b.data(), b.size());
    trim(r);
    return r;
}

Limb divRem1(Limb* q, const Limb* a, size_t n, Limb d) {
    const int s = leadingZeros(d);
    const Reciprocal inverse(d << s);
    Limb rem = 0;
    if (s == 0) {
        for (size_t i = n; i-- > 0;)
            q[i] = inverse.divide(rem, a[i], rem);
        return rem;
    }
    // The numerator shifted by s on the fly; the remainder shifted back at the end.
    Limb high = a[n - 1] >> (64 - s);
    for (size_t i = n; i-- > 0;) {
        const Limb low = (a[i] << s) | (i ? a[i - 1] >> (64 - s) : 0);
        q[i] = inverse.divide(high, low, rem);
        high = rem;
    }
    return rem >> s;
}

namespace {

// Knuth's algorithm D: n (nn limbs) by d (dn >= 2 limbs, top bit set) with n's top dn limbs
// below d; q gets nn - dn limbs and n keeps the remainder in its low dn limbs.
void divKnuth(Limb* q, Limb* n, size_t nn, const Limb* d, size_t dn) {
    const Limb d1 = d[dn - 1], d0 = d[dn - 2];
    const Reciprocal inverse(d1);
    for (size_t j = nn - dn; j-- > 0;) {
        Limb* part = n + j;
        const Limb n2 = part[dn], n1 = part[dn - 1], n0 = part[dn - 2];
        Limb qhat, rhat;
        bool rhatOverflow = false;
        if (n2 >= d1) {
            // n2 == d1: the estimate is B - 1, with rhat = n2 B + n1 - (B - 1) d1 = n1 + d1.
            qhat = ~Limb{0};
            rhat = n1 + d1;
            rhatOverflow = rhat < n1;
        } else {
            qhat = inverse.divide(n2, n1, rhat);
        }
        if (!rhatOverflow) {
            // Correct with the second divisor limb: at most twice.
            for (;;) {
                Limb high;
                const Limb low = mulWide(qhat, d0, high);
                if (high < rhat || (high == rhat && low <= n0))
                    break;
                --qhat;
                const Limb before = rhat;
                rhat += d1;
                if (rhat < before)
                    break;
            }
        }
        const Limb borrow = subMul1(part, d, dn, qhat);
        const Limb top = part[dn];
        part[dn] = top - borrow;
        if (top < borrow) {
            // qhat was one too large.
            --qhat;
            part[dn] += addN(part, part, d, dn);
        }
        q[j] = qhat;
    }
}

// n (qn + dn limbs) by d (dn limbs, top bit set), qn <= dn: q gets qn limbs, the remainder stays
// in n's low dn limbs, and the quotient's limb above q (0 or 1) is returned.
Limb divBlock(Limb* q, Limb* n, size_t qn, const Limb* d, size_t dn, Limb* scratch) {
    if (qn < thresholds.divideAndConquer) {
        Limb high = 0;
        if (compare(n + qn, d, dn) >= 0) {
            subN(n + qn, n + qn, d, dn);
            high = 1;
        }
        divKnuth(q, n, qn + dn, d, dn);
        return high;
    }
    if (qn == dn) {
        // Two halves of the quotient, each from the top of what is left.
        const size_t low = dn / 2, high = dn - low;
        const Limb top = divBlock(q + low, n + low, high, d, dn, scratch);
        divBlock(q, n, low, d, dn, scratch);
        return top;
    }
    // The quotient from the divisor's top qn limbs, then corrected for its low ones.
    const size_t low = dn - qn;
    Limb top = divBlock(q, n + low, qn, d + low, qn, scratch);
    mul(scratch, q, qn, d, low);
    const Limb carry = top ? add(scratch + qn, scratch + qn, low, d, low) : 0;
    Limb borrow = subN(n, n, scratch, dn) + carry;
    while (borrow) {
        top -= sub1(q, q, qn, 1);
        borrow -= addN(n, n, d, dn);
    }
    return top;
}

} // namespace

void divRem(Limb* q, Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    if (bn == 1) {
        r[0] = divRem1(q, a, an, b[0]);
        return;
    }
    // Normalize so the divisor's top bit is set; the numerator gains a limb, which keeps its top
    // dn limbs below the divisor.
    const int s = leadingZeros(b[bn - 1]);
    Limbs d = allocate(bn), n = allocate(an + 1);
    if (s) {
        shiftLeft(d.get(), b, bn, s);
        n[an] = shiftLeft(n.get(), a, an, s);
    } else {
        std::copy(b, b + bn, d.get());
        std::copy(a, a + an, n.get());
        n[an] = 0;
    }
    const size_t qn = an + 1 - bn;
    if (bn < thresholds.divideAndConquer || qn < thresholds.divideAndConquer) {
        divKnuth(q, n.get(), an + 1, d.get(), bn);
    } else {
        Limbs scratch = allocate(bn);
        // The odd top block first, then whole blocks of bn quotient limbs.
        size_t done = qn % bn ? qn % bn : bn;
        size_t at = qn - done;
        divBlock(q + at, n.get() + at, done, d.get(), bn, scratch.get());
        while (at) {
            at -= bn;
            divBlock(q + at, n.get() + at, bn, d.get(), bn, scratch.get());
        }
    }
    if (s)
        shiftRight(r, n.get(), bn, s);
    else
        std::copy(n.get(), n.get() + bn, r);
}

} // namespace qn::math::nat
