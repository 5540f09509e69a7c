// qn::String against std::u16string and ICU's UnicodeString on the same texts: building from
// text, appending, comparing, searching, hashing, placeholder formatting and copying.
#include "qn/core/String.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

#ifdef QNCL_BENCH_ICU
#include <unicode/unistr.h>
#endif

namespace {

using qn::String;

// A line of mixed scripts, about the size of a message or a path.
const char16_t LINE[] = u"Grüße aus Köln: ΑΒΓΔ αβγδ, Привет, 東京都 ok";
constexpr int32_t LINE_LENGTH = sizeof LINE / sizeof LINE[0] - 1;
const char16_t PIECE[] = u"segment-0123456789/";
constexpr int32_t PIECE_LENGTH = sizeof PIECE / sizeof PIECE[0] - 1;
constexpr int PIECES = 64;
const char16_t NEEDLE[] = u"needle in it";
constexpr int32_t NEEDLE_LENGTH = sizeof NEEDLE / sizeof NEEDLE[0] - 1;
const char16_t FORMAT[] = u"User {0} signed in from {1} at {2}; session of {0} is {3}.";
const char16_t* const ARGUMENTS[] = {u"grüße.user", u"192.168.100.200", u"12:34:56", u"open"};

// units of repeated LINE text.
std::u16string text(size_t units) {
    std::u16string t;
    while (t.size() < units)
        t += LINE;
    t.resize(units);
    return t;
}

// 4 KiB of text with the needle near its end.
std::u16string haystack() {
    std::u16string t = text(2048 - 40);
    t += NEEDLE;
    return t + text(28);
}

// Two 64-unit texts that differ in their last unit.
std::u16string left() {
    return text(64);
}
std::u16string right() {
    std::u16string t = text(64);
    t.back() = u'~';
    return t;
}

void setRate(benchmark::State& state, size_t units) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * units * 2));
}

// Build: a String from a line of text.

void Build_ours(benchmark::State& state) {
    for (auto _ : state) {
        String s(LINE, LINE_LENGTH);
        benchmark::DoNotOptimize(s.getData());
    }
    setRate(state, LINE_LENGTH);
}
BENCHMARK(Build_ours)->Name("string.Build/ours");

void Build_std(benchmark::State& state) {
    for (auto _ : state) {
        std::u16string s(LINE, LINE_LENGTH);
        benchmark::DoNotOptimize(s.data());
    }
    setRate(state, LINE_LENGTH);
}
BENCHMARK(Build_std)->Name("string.Build/std::u16string");

// Append: 64 pieces of 19 units onto an empty string.

void Append_ours(benchmark::State& state) {
    for (auto _ : state) {
        String s;
        for (int i = 0; i < PIECES; ++i)
            s.append(PIECE, PIECE_LENGTH);
        benchmark::DoNotOptimize(s.getData());
    }
    setRate(state, PIECES * PIECE_LENGTH);
}
BENCHMARK(Append_ours)->Name("string.Append/ours");

void Append_std(benchmark::State& state) {
    for (auto _ : state) {
        std::u16string s;
        for (int i = 0; i < PIECES; ++i)
            s.append(PIECE, PIECE_LENGTH);
        benchmark::DoNotOptimize(s.data());
    }
    setRate(state, PIECES * PIECE_LENGTH);
}
BENCHMARK(Append_std)->Name("string.Append/std::u16string");

// Compare: two 64-unit texts differing in their last unit.

void Compare_ours(benchmark::State& state) {
    const std::u16string a = left();
    const std::u16string b = right();
    const String x(a.data(), 64);
    const String y(b.data(), 64);
    for (auto _ : state)
        benchmark::DoNotOptimize(x.compare(y));
    setRate(state, 64);
}
BENCHMARK(Compare_ours)->Name("string.Compare/ours");

void Compare_std(benchmark::State& state) {
    const std::u16string x = left();
    const std::u16string y = right();
    for (auto _ : state)
        benchmark::DoNotOptimize(x.compare(y));
    setRate(state, 64);
}
BENCHMARK(Compare_std)->Name("string.Compare/std::u16string");

// IndexOf: a 12-unit needle near the end of 4 KiB.

void IndexOf_ours(benchmark::State& state) {
    const std::u16string t = haystack();
    const String hay(t.data(), static_cast<int32_t>(t.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(hay.indexOf(NEEDLE, NEEDLE_LENGTH));
    setRate(state, t.size());
}
BENCHMARK(IndexOf_ours)->Name("string.IndexOf4KiB/ours");

void IndexOf_std(benchmark::State& state) {
    const std::u16string hay = haystack();
    for (auto _ : state)
        benchmark::DoNotOptimize(hay.find(NEEDLE, 0, NEEDLE_LENGTH));
    setRate(state, hay.size());
}
BENCHMARK(IndexOf_std)->Name("string.IndexOf4KiB/std::u16string");

// Hash: a 16-unit key and a 4 KiB text.

template <size_t UNITS> void Hash_ours(benchmark::State& state) {
    const std::u16string t = text(UNITS);
    const String s(t.data(), static_cast<int32_t>(UNITS));
    for (auto _ : state)
        benchmark::DoNotOptimize(s.hashCode());
    setRate(state, UNITS);
}
BENCHMARK(Hash_ours<16>)->Name("string.HashShort/ours");
BENCHMARK(Hash_ours<2048>)->Name("string.HashLong/ours");

template <size_t UNITS> void Hash_std(benchmark::State& state) {
    const std::u16string s = text(UNITS);
    const std::hash<std::u16string> hash;
    for (auto _ : state)
        benchmark::DoNotOptimize(hash(s));
    setRate(state, UNITS);
}
BENCHMARK(Hash_std<16>)->Name("string.HashShort/std::u16string");
BENCHMARK(Hash_std<2048>)->Name("string.HashLong/std::u16string");

// Format: four placeholders, one of them twice.

void Format_ours(benchmark::State& state) {
    const String format(qn::STRUCT_QN_STR_LIT_INFO{FORMAT, -1});
    String s;
    for (auto _ : state) {
        s.format(format, ARGUMENTS[0], ARGUMENTS[1], ARGUMENTS[2], ARGUMENTS[3]);
        benchmark::DoNotOptimize(s.getData());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Format_ours)->Name("string.Format/ours");

// The same result by hand: every token replaced in turn, as a std::u16string user writes it.
void Format_std(benchmark::State& state) {
    const std::u16string tokens[] = {u"{0}", u"{1}", u"{2}", u"{3}"};
    std::u16string s;
    for (auto _ : state) {
        s = FORMAT;
        for (int n = 0; n < 4; ++n) {
            const std::u16string argument = ARGUMENTS[n];
            for (size_t at = s.find(tokens[n]); at != std::u16string::npos;
                 at = s.find(tokens[n], at + argument.size()))
                s.replace(at, tokens[n].size(), argument);
        }
        benchmark::DoNotOptimize(s.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Format_std)->Name("string.Format/std::u16string");

// Copy: a 1 KiB text (512 units), then one 32 times as long.

template <size_t UNITS> void Copy_ours(benchmark::State& state) {
    const std::u16string t = text(UNITS);
    const String source(t.data(), static_cast<int32_t>(UNITS));
    for (auto _ : state) {
        String copy(source);
        benchmark::DoNotOptimize(copy.getData());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Copy_ours<512>)->Name("string.Copy1KiB/ours");
BENCHMARK(Copy_ours<16384>)->Name("string.Copy32KiB/ours");

template <size_t UNITS> void Copy_std(benchmark::State& state) {
    const std::u16string source = text(UNITS);
    for (auto _ : state) {
        std::u16string copy(source);
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Copy_std<512>)->Name("string.Copy1KiB/std::u16string");
BENCHMARK(Copy_std<16384>)->Name("string.Copy32KiB/std::u16string");

#ifdef QNCL_BENCH_ICU

void Build_icu(benchmark::State& state) {
    for (auto _ : state) {
        icu::UnicodeString s(LINE, LINE_LENGTH);
        benchmark::DoNotOptimize(s.getBuffer());
    }
    setRate(state, LINE_LENGTH);
}
BENCHMARK(Build_icu)->Name("string.Build/icu");

void Append_icu(benchmark::State& state) {
    for (auto _ : state) {
        icu::UnicodeString s;
        for (int i = 0; i < PIECES; ++i)
            s.append(PIECE, PIECE_LENGTH);
        benchmark::DoNotOptimize(s.getBuffer());
    }
    setRate(state, PIECES * PIECE_LENGTH);
}
BENCHMARK(Append_icu)->Name("string.Append/icu");

void Compare_icu(benchmark::State& state) {
    const std::u16string a = left();
    const std::u16string b = right();
    const icu::UnicodeString x(a.data(), 64);
    const icu::UnicodeString y(b.data(), 64);
    for (auto _ : state)
        benchmark::DoNotOptimize(x.compare(y));
    setRate(state, 64);
}
BENCHMARK(Compare_icu)->Name("string.Compare/icu");

void IndexOf_icu(benchmark::State& state) {
    const std::u16string t = haystack();
    const icu::UnicodeString hay(t.data(), static_cast<int32_t>(t.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(hay.indexOf(NEEDLE, NEEDLE_LENGTH, 0));
    setRate(state, t.size());
}
BENCHMARK(IndexOf_icu)->Name("string.IndexOf4KiB/icu");

template <size_t UNITS> void Hash_icu(benchmark::State& state) {
    const std::u16string t = text(UNITS);
    const icu::UnicodeString s(t.data(), static_cast<int32_t>(UNITS));
    for (auto _ : state)
        benchmark::DoNotOptimize(s.hashCode());
    setRate(state, UNITS);
}
BENCHMARK(Hash_icu<16>)->Name("string.HashShort/icu");
BENCHMARK(Hash_icu<2048>)->Name("string.HashLong/icu");

void Format_icu(benchmark::State& state) {
    const icu::UnicodeString tokens[] = {u"{0}", u"{1}", u"{2}", u"{3}"};
    const icu::UnicodeString arguments[] = {ARGUMENTS[0], ARGUMENTS[1], ARGUMENTS[2], ARGUMENTS[3]};
    icu::UnicodeString s;
    for (auto _ : state) {
        s = FORMAT;
        for (int n = 0; n < 4; ++n)
            s.findAndReplace(tokens[n], arguments[n]);
        benchmark::DoNotOptimize(s.getBuffer());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Format_icu)->Name("string.Format/icu");

template <size_t UNITS> void Copy_icu(benchmark::State& state) {
    const std::u16string t = text(UNITS);
    const icu::UnicodeString source(t.data(), static_cast<int32_t>(UNITS));
    for (auto _ : state) {
        icu::UnicodeString copy(source);
        benchmark::DoNotOptimize(copy.getBuffer());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Copy_icu<512>)->Name("string.Copy1KiB/icu");
BENCHMARK(Copy_icu<16384>)->Name("string.Copy32KiB/icu");

#endif

} // namespace

BENCHMARK_MAIN();
