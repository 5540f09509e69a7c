// qn::math::BigInteger against GMP's mpz functions on the same operands: multiplication and
// division at 100 to 100,000 decimal digits, decimal text out and in at 10,000 and 1,000,000
// digits, and modPow with 2048-bit operands. Java's BigInteger runs the same cases from
// bench/java (bench/run). Before the benchmarks, a differential check compares the results of
// every operation with GMP's on random operands and stops the program on a difference.
#include "qn/math/BigInteger.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#ifdef QNCL_BENCH_GMP
#include <gmp.h>
#endif

namespace {

using qn::String;
using qn::math::BigInteger;

// The operands: decimal digits from a 64-bit linear congruential generator, the same in
// bench/java/MathBench.java.
std::string digits(size_t count, uint64_t seed) {
    std::string text(count, '0');
    uint64_t x = seed;
    for (size_t i = 0; i < count; ++i) {
        x = x * 6364136223846793005u + 1442695040888963407u;
        const unsigned d = static_cast<unsigned>((x >> 33) % 10);
        text[i] = static_cast<char>('0' + (i == 0 ? 1 + d % 9 : d));
    }
    return text;
}

String wide(const std::string& text) {
    std::u16string units(text.begin(), text.end());
    return String(units.data(), static_cast<int32_t>(units.size()));
}

BigInteger ours(const std::string& text) {
    return BigInteger(wide(text));
}

std::string narrow(const String& s) {
    return std::string(s.getData(), s.getData() + s.getLength());
}

// Multiply: two numbers of n digits.

void Multiply_ours(benchmark::State& state, int64_t n) {
    const BigInteger a = ours(digits(static_cast<size_t>(n), 1)),
                     b = ours(digits(static_cast<size_t>(n), 2));
    for (auto _ : state)
        benchmark::DoNotOptimize(a.multiply(b));
}

// Divide: 2n digits by n digits, quotient and remainder.

void Divide_ours(benchmark::State& state, int64_t n) {
    const BigInteger a = ours(digits(2 * static_cast<size_t>(n), 3)),
                     b = ours(digits(static_cast<size_t>(n), 4));
    for (auto _ : state)
        benchmark::DoNotOptimize(a.divideAndRemainder(b));
}

void ToString_ours(benchmark::State& state, int64_t n) {
    const BigInteger a = ours(digits(static_cast<size_t>(n), 5));
    for (auto _ : state)
        benchmark::DoNotOptimize(a.toString(10));
}

void Parse_ours(benchmark::State& state, int64_t n) {
    const String text = wide(digits(static_cast<size_t>(n), 6));
    for (auto _ : state)
        benchmark::DoNotOptimize(BigInteger(text));
}

// ModPow: base and exponent below a 2048-bit odd modulus.
struct ModPowOperands {
    std::string base, exponent, modulus;
};
ModPowOperands modPowOperands() {
    // 2048 bits is 617 decimal digits; the modulus made odd by its last digit.
    std::string m = digits(617, 7);
    m.back() = '7';
    return {digits(616, 8), digits(616, 9), m};
}

void ModPow_ours(benchmark::State& state, int64_t) {
    const ModPowOperands o = modPowOperands();
    const BigInteger base = ours(o.base), exponent = ours(o.exponent), m = ours(o.modulus);
    for (auto _ : state)
        benchmark::DoNotOptimize(base.modPow(exponent, m));
}

#ifdef QNCL_BENCH_GMP

struct Mpz {
    Mpz() { mpz_init(v); }
    explicit Mpz(const std::string& text) { mpz_init_set_str(v, text.c_str(), 10); }
    ~Mpz() { mpz_clear(v); }
    Mpz(const Mpz&) = delete;
    Mpz& operator=(const Mpz&) = delete;
    std::string str(int radix = 10) const {
        std::vector<char> buffer(mpz_sizeinbase(v, radix) + 2);
        mpz_get_str(buffer.data(), radix, v);
        return buffer.data();
    }
    mpz_t v;
};

void Multiply_gmp(benchmark::State& state, int64_t n) {
    const Mpz a(digits(static_cast<size_t>(n), 1)), b(digits(static_cast<size_t>(n), 2));
    Mpz r;
    for (auto _ : state) {
        mpz_mul(r.v, a.v, b.v);
        benchmark::ClobberMemory();
    }
}

void Divide_gmp(benchmark::State& state, int64_t n) {
    const Mpz a(digits(2 * static_cast<size_t>(n), 3)), b(digits(static_cast<size_t>(n), 4));
    Mpz q, r;
    for (auto _ : state) {
        mpz_tdiv_qr(q.v, r.v, a.v, b.v);
        benchmark::ClobberMemory();
    }
}

void ToString_gmp(benchmark::State& state, int64_t n) {
    const Mpz a(digits(static_cast<size_t>(n), 5));
    std::vector<char> buffer(mpz_sizeinbase(a.v, 10) + 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(mpz_get_str(buffer.data(), 10, a.v));
}

void Parse_gmp(benchmark::State& state, int64_t n) {
    const std::string text = digits(static_cast<size_t>(n), 6);
    Mpz r;
    for (auto _ : state) {
        mpz_set_str(r.v, text.c_str(), 10);
        benchmark::ClobberMemory();
    }
}

void ModPow_gmp(benchmark::State& state, int64_t) {
    const ModPowOperands o = modPowOperands();
    const Mpz base(o.base), exponent(o.exponent), m(o.modulus);
    Mpz r;
    for (auto _ : state) {
        mpz_powm(r.v, base.v, exponent.v, m.v);
        benchmark::ClobberMemory();
    }
}

// The differential check: every operation on random operands of mixed signs and sizes (up to
// past the Toom-3 and recursive-division thresholds) against GMP, compared as text.
class Checker {
public:
    bool run() {
        for (int round = 0; round < 400; ++round) {
            const std::string a = randomNumber(), b = randomNumber();
            check(a, b);
        }
        std::fprintf(stderr, "differential check against GMP: %d results agree\n", m_checked);
        return m_failed == 0;
    }

private:
    std::string randomNumber() {
        m_state = m_state * 6364136223846793005u + 1442695040888963407u;
        const size_t sizes[] = {1, 5, 19, 20, 40, 300, 700, 2000, 4000, 12000, 40000, 100000};
        const size_t n = sizes[(m_state >> 40) % 12];
        std::string text = digits(static_cast<size_t>(n), m_state);
        return (m_state >> 20) & 1 ? "-" + text : text;
    }

    void expect(const char* what, const std::string& ours, const Mpz& theirs, int radix = 10) {
        ++m_checked;
        const std::string expected = theirs.str(radix);
        if (ours != expected && m_failed++ < 5)
            std::fprintf(stderr, "%s differs from GMP: %.60s... against %.60s...\n", what,
                         ours.c_str(), expected.c_str());
    }

    void check(const std::string& as, const std::string& bs) {
        const BigInteger a = ours(as), b = ours(bs);
        const Mpz x(as), y(bs);
        Mpz r, s;
        mpz_add(r.v, x.v, y.v);
        expect("add", narrow(a.add(b).toString()), r);
        mpz_sub(r.v, x.v, y.v);
        expect("subtract", narrow(a.subtract(b).toString()), r);
        mpz_mul(r.v, x.v, y.v);
        expect("multiply", narrow(a.multiply(b).toString()), r);
        mpz_mul(r.v, x.v, x.v);
        expect("square", narrow(a.multiply(a).toString()), r);
        mpz_tdiv_qr(r.v, s.v, x.v, y.v);
        const auto qr = a.divideAndRemainder(b);
        expect("divide", narrow(qr.first.toString()), r);
        expect("remainder", narrow(qr.second.toString()), s);
        mpz_and(r.v, x.v, y.v);
        expect("and", narrow(a.and_(b).toString(16)), r, 16);
        mpz_ior(r.v, x.v, y.v);
        expect("or", narrow(a.or_(b).toString(16)), r, 16);
        mpz_xor(r.v, x.v, y.v);
        expect("xor", narrow(a.xor_(b).toString(16)), r, 16);
        const auto shift = static_cast<int32_t>(as.size() % 200);
        mpz_fdiv_q_2exp(r.v, x.v, static_cast<mp_bitcnt_t>(shift));
        expect("shiftRight", narrow(a.shiftRight(shift).toString()), r);
        const int radix = 2 + static_cast<int>(bs.size() % 35);
        mpz_set(r.v, x.v);
        expect("toString(radix)", narrow(a.toString(radix)), r, radix);
        mpz_gcd(r.v, x.v, y.v);
        if (as.size() < 1000 && bs.size() < 1000)
            expect("gcd", narrow(a.gcd(b).toString()), r);
        mpz_abs(s.v, x.v);
        mpz_sqrt(r.v, s.v);
        expect("sqrt", narrow(a.abs().sqrt().toString()), r);
        if (bs.size() < 700 && as.size() < 700) {
            mpz_abs(s.v, y.v);
            mpz_setbit(s.v, 0);
            Mpz e;
            mpz_abs(e.v, x.v);
            mpz_powm(r.v, x.v, e.v, s.v);
            const BigInteger m = b.abs().setBit(0);
            expect("modPow", narrow(a.modPow(a.abs(), m).toString()), r);
            mpz_add_ui(s.v, s.v, 1);
            mpz_powm(r.v, x.v, e.v, s.v);
            expect("modPow (even)", narrow(a.modPow(a.abs(), m.add(BigInteger(1))).toString()), r);
        }
    }

    uint64_t m_state = 12345;
    int m_checked = 0;
    int m_failed = 0;
};

#endif

// Names are "math.<Case><digits>/<who>", as bench/java/MathBench.java writes them.
void registerAll() {
    struct Case {
        const char* kind;
        void (*ours)(benchmark::State&, int64_t);
        void (*gmp)(benchmark::State&, int64_t);
        std::vector<int64_t> sizes;
    };
    const Case cases[] = {
#ifdef QNCL_BENCH_GMP
        {"Multiply", Multiply_ours, Multiply_gmp, {100, 1000, 10000, 100000}},
        {"Divide", Divide_ours, Divide_gmp, {100, 1000, 10000, 100000}},
        {"ToString", ToString_ours, ToString_gmp, {10000, 1000000}},
        {"Parse", Parse_ours, Parse_gmp, {10000, 1000000}},
        {"ModPow", ModPow_ours, ModPow_gmp, {2048}},
#else
        {"Multiply", Multiply_ours, nullptr, {100, 1000, 10000, 100000}},
        {"Divide", Divide_ours, nullptr, {100, 1000, 10000, 100000}},
        {"ToString", ToString_ours, nullptr, {10000, 1000000}},
        {"Parse", Parse_ours, nullptr, {10000, 1000000}},
        {"ModPow", ModPow_ours, nullptr, {2048}},
#endif
    };
    for (const Case& c : cases) {
        for (int64_t n : c.sizes) {
            const std::string base = std::string("math.") + c.kind + std::to_string(n);
            benchmark::RegisterBenchmark((base + "/ours").c_str(), c.ours, n)
                ->Unit(benchmark::kMicrosecond);
            if (c.gmp)
                benchmark::RegisterBenchmark((base + "/gmp").c_str(), c.gmp, n)
                    ->Unit(benchmark::kMicrosecond);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
#ifdef QNCL_BENCH_GMP
    if (!Checker().run())
        return 1;
#else
    std::fprintf(stderr, "GMP not found: no differential check, no GMP peer\n");
#endif
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
