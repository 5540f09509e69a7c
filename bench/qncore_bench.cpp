// qncore6 primitives against what a user would otherwise call: case mapping and UTF-8
// conversion against ICU, an uncontended lock against std::mutex.
#include "qncore/QNSync.h"
#include "qncore/QNWideText.h"

#include <benchmark/benchmark.h>

#include <mutex>
#include <string>

#ifdef QNCL_BENCH_ICU
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#endif

namespace {

// Mixed-script text: Latin with accents, Greek, Cyrillic, CJK.
std::u16string sampleText() {
    const std::u16string piece = u"Grüße aus Köln, ΑΒΓΔ αβγδ, Привет МИР, 東京都 and PLAIN ascii. ";
    std::u16string text;
    while (text.size() < 4096)
        text += piece;
    return text;
}

const QNWCHAR* qw(const char16_t* p) {
    return reinterpret_cast<const QNWCHAR*>(p);
}
QNWCHAR* qw(char16_t* p) {
    return reinterpret_cast<QNWCHAR*>(p);
}

void ToLower_ours(benchmark::State& state) {
    const std::u16string text = sampleText();
    std::u16string work = text;
    for (auto _ : state) {
        work = text;
        QNStrToLowerW(qw(work.data()), static_cast<int32_t>(work.size()));
        benchmark::DoNotOptimize(work.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * 2));
}
BENCHMARK(ToLower_ours)->Name("ToLower4KiB/ours");

void Utf8_ours(benchmark::State& state) {
    const std::u16string text = sampleText();
    std::string out(text.size() * 3, '\0');
    for (auto _ : state) {
        benchmark::DoNotOptimize(QNWideToUtf8(qw(text.data()), static_cast<int32_t>(text.size()),
                                              out.data(), static_cast<int32_t>(out.size())));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * 2));
}
BENCHMARK(Utf8_ours)->Name("ToUtf8_4KiB/ours");

void Lock_ours(benchmark::State& state) {
    QNHANDLE mutex = nullptr;
    QNMutexCreate(nullptr, 0, &mutex);
    for (auto _ : state) {
        QNMutexAcquire(mutex);
        QNMutexRelease(mutex);
    }
    QNMutexDestroy(mutex);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Lock_ours)->Name("LockUnlock/ours");

void Lock_std(benchmark::State& state) {
    std::recursive_mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Lock_std)->Name("LockUnlock/std::recursive_mutex");

#ifdef QNCL_BENCH_ICU
void ToLower_icu(benchmark::State& state) {
    const std::u16string text = sampleText();
    std::u16string work = text;
    for (auto _ : state) {
        // u_strToLower applies full case mapping; the per-unit simple mapping is the like peer.
        work = text;
        for (char16_t& c : work)
            c = static_cast<char16_t>(u_tolower(c));
        benchmark::DoNotOptimize(work.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * 2));
}
BENCHMARK(ToLower_icu)->Name("ToLower4KiB/icu");

void Utf8_icu(benchmark::State& state) {
    const std::u16string text = sampleText();
    std::string out(text.size() * 3, '\0');
    for (auto _ : state) {
        int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, text.data(),
                           static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
        benchmark::DoNotOptimize(length);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * 2));
}
BENCHMARK(Utf8_icu)->Name("ToUtf8_4KiB/icu");
#endif

} // namespace

BENCHMARK_MAIN();
