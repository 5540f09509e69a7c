// Multiplication of large numbers by number-theoretic transforms: the limbs' convolution is
// computed modulo three primes k 2^s + 1 below 2^62 (each with roots of unity of every power
// of two up to 2^55), and rebuilt by the Chinese remainder theorem. A convolution coefficient
// is below n 2^128, far below the primes' product (about 2^184), so it is exact.
// Arithmetic modulo each prime is Montgomery's with R = 2^64.
#include "math/Natural.h"

#include <algorithm>

namespace qn::math::nat {

namespace {

class Field {
public:
    Field(Limb p, Limb generator) : m_p(p) {
        // -p^-1 mod 2^64 by Newton's iteration.
        Limb x = p;
        for (int i = 0; i < 6; ++i)
            x *= 2 - p * x;
        m_negInverse = ~x + 1;
        Limb r;
        divWide(1, 0, p, r);
        m_r = r; // R mod p
        Limb high;
        const Limb low = mulWide(r, r, high);
        divWide(high, low, p, m_r2); // R^2 mod p
        m_generator = enter(generator);
    }

    Limb p() const { return m_p; }
    Limb negInverse() const { return m_negInverse; }
    Limb r2() const { return m_r2; }
    // a b R^-1 mod p for a, b < p.
    Limb mul(Limb a, Limb b) const {
        Limb high;
        const Limb low = mulWide(a, b, high);
        Limb mh;
        mulWide(low * m_negInverse, m_p, mh);
        Limb t = high + mh + (low != 0);
        return t >= m_p ? t - m_p : t;
    }
    Limb add(Limb a, Limb b) const {
        const Limb s = a + b;
        return s >= m_p ? s - m_p : s;
    }
    Limb sub(Limb a, Limb b) const { return a >= b ? a - b : a + m_p - b; }
    // x R mod p: the Montgomery form of x.
    Limb enter(Limb x) const { return mul(x % m_p, m_r2); }
    // base^e for base in Montgomery form, the result in Montgomery form.
    Limb pow(Limb base, Limb e) const {
        Limb result = m_r;
        for (; e; e >>= 1) {
            if (e & 1)
                result = mul(result, base);
            base = mul(base, base);
        }
        return result;
    }
    Limb inverse(Limb montgomery) const { return pow(montgomery, m_p - 2); }
    // A primitive n-th root of unity (n a power of two), in Montgomery form.
    Limb root(Limb n) const { return pow(m_generator, (m_p - 1) / n); }

private:
    Limb m_p;
    Limb m_negInverse;
    Limb m_r;
    Limb m_r2;
    Limb m_generator;
};

const Field& field(int i) {
    static const Field fields[3] = {Field(29 * (Limb{1} << 57) + 1, 3),
                                    Field(69 * (Limb{1} << 55) + 1, 5),
                                    Field(27 * (Limb{1} << 56) + 1, 5)};
    return fields[i];
}

// Butterflies keep values lazily reduced, in [0, 2p): with p below 2^62, sums of two such values
// and differences offset by 2p stay below 2^64, and Montgomery's reduction of a product below
// 2^64 p lands in [0, 2p) without a final subtraction.
struct Lazy {
    explicit Lazy(const Field& f) : p(f.p()), twoP(2 * f.p()), negInverse(f.negInverse()) {}
    Limb mul(Limb a, Limb b) const {
        Limb high;
        const Limb low = mulWide(a, b, high);
        Limb mh;
        mulWide(low * negInverse, p, mh);
        return high + mh + (low != 0);
    }
    // a - 2p if a >= 2p, for a below 4p.
    Limb fold(Limb a) const { return a - (twoP & (Limb{0} - static_cast<Limb>(a >= twoP))); }
    Limb p;
    Limb twoP;
    Limb negInverse;
};

// Twiddle factors: table[len + j] = w_2len^j for each half-length len, in Montgomery form and
// below p. The inverse roots come from the same powers: w^-j = w^(2len - j) = -w^(len - j).
void twiddles(const Field& f, size_t n, Limb* table, Limb* inverseTable) {
    for (size_t len = 1; len < n; len <<= 1) {
        const Limb w = f.root(2 * len);
        Limb x = f.enter(1);
        for (size_t j = 0; j < len; ++j) {
            table[len + j] = x;
            x = f.mul(x, w);
        }
        inverseTable[len] = table[len];
        for (size_t j = 1; j < len; ++j)
            inverseTable[len + j] = f.p() - table[2 * len - j];
    }
}

// The layer of half-length 1, the same forward and backward: its only root is 1, so it adds and
// subtracts without a multiplication.
void unitLayer(const Lazy f, Limb* a, size_t n) {
    const Limb twoP = f.twoP;
    for (size_t i = 0; i + 1 < n; i += 2) {
        const Limb u = a[i], v = a[i + 1];
        a[i] = f.fold(u + v);
        a[i + 1] = f.fold(u - v + twoP);
    }
}

// Decimation in frequency: natural order in, bit-reversed order out; values in [0, 2p).
// Two layers per pass (lengths len and len / 2 on four values at once) halve the passes over
// memory; an odd layer left over is done alone.
void forward(const Lazy f, Limb* a, size_t n, const Limb* table) {
    const Limb twoP = f.twoP;
    size_t len = n / 2;
    for (; len >= 4; len >>= 2) {
        const size_t half = len / 2;
        const Limb* w1 = table + len;
        const Limb* w2 = table + half;
        for (size_t i = 0; i < n; i += 2 * len) {
            Limb* x = a + i;
            for (size_t j = 0; j < half; ++j) {
                const Limb a0 = x[j], a1 = x[j + half], a2 = x[j + len], a3 = x[j + len + half];
                const Limb b0 = f.fold(a0 + a2), b2 = f.mul(a0 - a2 + twoP, w1[j]);
                const Limb b1 = f.fold(a1 + a3), b3 = f.mul(a1 - a3 + twoP, w1[j + half]);
                x[j] = f.fold(b0 + b1);
                x[j + half] = f.mul(b0 - b1 + twoP, w2[j]);
                x[j + len] = f.fold(b2 + b3);
                x[j + len + half] = f.mul(b2 - b3 + twoP, w2[j]);
            }
        }
    }
    if (len == 2) {
        const Limb w = table[3];
        for (size_t i = 0; i < n; i += 4) {
            Limb* x = a + i;
            const Limb u0 = x[0], v0 = x[2], u1 = x[1], v1 = x[3];
            x[0] = f.fold(u0 + v0);
            x[2] = f.fold(u0 - v0 + twoP); // the root w^0 = 1
            x[1] = f.fold(u1 + v1);
            x[3] = f.mul(u1 - v1 + twoP, w);
        }
    }
    unitLayer(f, a, n);
}

// Decimation in time with the inverse roots: bit-reversed order in, natural order out
// (times n); values in [0, 2p). Two layers per pass as in forward.
void backward(const Lazy f, Limb* a, size_t n, const Limb* table) {
    const Limb twoP = f.twoP;
    unitLayer(f, a, n);
    size_t len = 2;
    for (; 4 * len <= n; len <<= 2) {
        const Limb* w1 = table + len;
        const Limb* w2 = table + 2 * len;
        for (size_t i = 0; i < n; i += 4 * len) {
            Limb* x = a + i;
            for (size_t j = 0; j < len; ++j) {
                const Limb a0 = x[j], a1 = x[j + len], a2 = x[j + 2 * len], a3 = x[j + 3 * len];
                Limb v = f.mul(a1, w1[j]);
                const Limb b0 = f.fold(a0 + v), b1 = f.fold(a0 - v + twoP);
                v = f.mul(a3, w1[j]);
                const Limb b2 = f.fold(a2 + v), b3 = f.fold(a2 - v + twoP);
                v = f.mul(b2, w2[j]);
                x[j] = f.fold(b0 + v);
                x[j + 2 * len] = f.fold(b0 - v + twoP);
                v = f.mul(b3, w2[j + len]);
                x[j + len] = f.fold(b1 + v);
                x[j + 3 * len] = f.fold(b1 - v + twoP);
            }
        }
    }
    if (len < n) {
        const Limb* w = table + len;
        Limb* y = a + len;
        for (size_t j = 0; j < len; ++j) {
            const Limb u = a[j], v = f.mul(y[j], w[j]);
            a[j] = f.fold(u + v);
            y[j] = f.fold(u - v + twoP);
        }
    }
}

// One prime's transforms of length n: the twiddle tables and the lazily reduced arithmetic.
struct Transform {
    Transform(const Field& field, size_t n)
        : field(field), f(field), n(n), tables(allocate(2 * n)) {
        twiddles(field, n, tables.get(), tables.get() + n);
    }
    // out = the transform of a's len limbs, zero-padded to n. Limbs enter Montgomery form by
    // one multiplication by R^2 mod p (a limb times a value below p is below 2^64 p).
    void in(const Limb* a, size_t len, Limb* out) const {
        // Local copies: the compiler cannot keep members in registers across stores to limbs.
        const Lazy f = this->f;
        const Limb r2 = field.r2();
        for (size_t i = 0; i < len; ++i)
            out[i] = f.mul(a[i], r2);
        std::fill(out + len, out + n, Limb{0});
        forward(f, out, n, tables.get());
    }
    // x = the cyclic convolution whose transforms are x and y (y may be x), values below p.
    void out(Limb* x, const Limb* y) const {
        const Lazy f = this->f;
        for (size_t i = 0; i < n; ++i)
            x[i] = f.mul(x[i], y[i]);
        backward(f, x, n, tables.get() + n);
        // The values are n c R in Montgomery terms; one multiplication by n^-1 (plain) leaves c.
        const Limb p = field.p();
        const Limb scale = p - (p - 1) / n;
        for (size_t i = 0; i < n; ++i) {
            const Limb c = f.mul(x[i], scale);
            x[i] = c >= p ? c - p : c;
        }
    }
    const Field& field;
    Lazy f;
    size_t n;
    Limbs tables;
};

// x mod p for x below a few times p, by subtraction.
inline Limb reduceSmall(Limb x, Limb p) {
    while (x >= p)
        x -= p;
    return x;
}

} // namespace

void mulNtt(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
    if (an < bn) {
        std::swap(a, b);
        std::swap(an, bn);
    }
    const bool square = a == b && an == bn;
    const size_t rn = an + bn;
    // The length: a power of two n, with a cut into pieces of n - bn + 1 limbs so that each
    // piece's product with b fits n coefficients. b is transformed once, each piece forward and
    // back; padding a product of 2^k + 1 coefficients to 2^(k+1) costs more than two pieces.
    size_t n = 1, best = 0, pieces = 1;
    double bestCost = 0;
    while (n < bn + 1)
        n <<= 1;
    for (;; n <<= 1) {
        const size_t piece = n - bn + 1;
        const size_t count = (an + piece - 1) / piece;
        int log = 0;
        while ((size_t{1} << log) < n)
            ++log;
        const double cost = static_cast<double>(n) * (log + 2) *
                            static_cast<double>(square && count == 1 ? 2 : 1 + 2 * count);
        if (!best || cost < bestCost) {
            best = n;
            bestCost = cost;
            pieces = count;
        }
        if (count == 1)
            break;
    }
    n = best;
    const size_t piece = n - bn + 1;
    const bool squaring = square && pieces == 1;

    const Field f1 = field(0), f2 = field(1), f3 = field(2);
    const Transform transforms[3] = {Transform(f1, n), Transform(f2, n), Transform(f3, n)};
    Limbs bTransforms[3];
    if (!squaring) {
        for (int i = 0; i < 3; ++i) {
            bTransforms[i] = allocate(n);
            transforms[i].in(b, bn, bTransforms[i].get());
        }
    }
    Limbs residues[3] = {allocate(n), allocate(n), allocate(n)};

    // Garner: x = v1 + p1 v2 + p1 p2 v3.
    const Limb p1 = f1.p(), p2 = f2.p();
    const Limb inv12 = f2.inverse(f2.enter(p1));
    const Limb inv13 = f3.inverse(f3.enter(p1));
    const Limb inv23 = f3.inverse(f3.enter(p2));
    Limb p12[2];
    p12[0] = mulWide(p1, p2, p12[1]);
    std::fill(r, r + rn, Limb{0});
    for (size_t at = 0; at < an; at += piece) {
        const size_t len = std::min(piece, an - at);
        for (int i = 0; i < 3; ++i) {
            Limb* x = residues[i].get();
            transforms[i].in(a + at, len, x);
            transforms[i].out(x, squaring ? x : bTransforms[i].get());
        }
        // The piece's product, len + bn - 1 coefficients, added in at its place; the sum of
        // all pieces is the product, so no carry leaves r.
        Limb* to = r + at;
        const size_t room = rn - at;
        for (size_t k = 0; k + 1 < len + bn; ++k) {
            const Limb r1 = residues[0][k], r2 = residues[1][k], r3 = residues[2][k];
            const Limb v2 = f2.mul(f2.sub(r2, reduceSmall(r1, p2)), inv12);
            Limb t = f3.mul(f3.sub(r3, reduceSmall(r1, f3.p())), inv13);
            const Limb v3 = f3.mul(f3.sub(t, reduceSmall(v2, f3.p())), inv23);
            Limb x[4];
            x[2] = mul1(x, p12, 2, v3);
            x[3] = 0;
            Limb pv[2];
            pv[0] = mulWide(p1, v2, pv[1]);
            add(x, x, 4, pv, 2);
            add1(x, x, 4, r1);
            add(to + k, to + k, room - k, x, std::min<size_t>(4, room - k));
        }
    }
}

} // namespace qn::math::nat
