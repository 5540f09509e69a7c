// The UTF converters against ICU (u_strFromUTF8, u_strToUTF8, ucnv), glibc's iconv and, for
// ASCII, a plain widening loop (the speed of memory itself), on the same generated texts: ASCII,
// Latin-1, Russian, Greek, Chinese, emoji, Western (code page 1252) and mixed text, each about 256
// KiB of UTF-8.
#include "qn/text/charset/BTCUTF16.h"
#include "qn/text/charset/BTCUTF32.h"
#include "qn/text/charset/BTCUTF8.h"
#include "qn/text/charset/CTBUTF16.h"
#include "qn/text/charset/CTBUTF32.h"
#include "qn/text/charset/CTBUTF8.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#ifdef QNCL_BENCH_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif
#ifdef QNCL_BENCH_ICONV
#include <iconv.h>
#endif

namespace {

using namespace qn::text::charset;

constexpr size_t TARGET_BYTES = 256 * 1024;

// Words of each script, joined by spaces and punctuation into about TARGET_BYTES of UTF-8.
const char16_t* const ASCII_WORDS[] = {u"the",  u"quick", u"brown", u"fox",     u"jumps", u"over",
                                       u"lazy", u"dog,",  u"while", u"numbers", u"1234",  u"run."};
const char16_t* const LATIN1_WORDS[] = {u"Grüße",   u"aus",  u"Köln",  u"und",
                                        u"Zürich;", u"café", u"crème", u"brûlée",
                                        u"à",       u"la",   u"façon", u"élevée."};
const char16_t* const RUSSIAN_WORDS[] = {u"Привет,", u"мир!",   u"Съешь",       u"же",    u"ещё",
                                         u"этих",    u"мягких", u"французских", u"булок."};
const char16_t* const GREEK_WORDS[] = {u"Ξεσκεπάζω",  u"την",      u"ψυχοφθόρα",
                                       u"βδελυγμία,", u"καλημέρα", u"κόσμε."};
const char16_t* const CHINESE_WORDS[] = {u"我能吞下玻璃而不伤身体。", u"东京都", u"中文文本",
                                         u"字符集转换，", u"性能测试"};
const char16_t* const EMOJI_WORDS[] = {u"😀😃😄", u"🚀", u"ok", u"👍🏽", u"🎉🎊", u"❤️", u"🌍."};
// Western text as Windows code page 1252 holds it: mostly ASCII and Latin-1, with the odd curly
// quote, dash or euro sign (three bytes in UTF-8).
const char16_t* const WESTERN_WORDS[] = {
    u"“Crème",  u"brûlée", u"for",    u"two,”",   u"said",       u"Zoë",    u"at",
    u"the",     u"café",   u"in",     u"Zürich;", u"the",        u"garçon", u"answered",
    u"‘Bien",   u"sûr’",   u"and",    u"wrote",   u"€14.50",     u"on",     u"the",
    u"bill",    u"—",      u"tip",    u"not",     u"included.",  u"Señor",  u"Muñoz",
    u"ordered", u"a",      u"Kölsch", u"and",     u"smørrebrød", u"7:45…",  u"Œuvre™."};
// Mostly ASCII with the odd word of Latin-1, Cyrillic, Chinese and an emoji: the mix of the
// readers' line benchmark, where nearly every chunk holds a four-byte form.
const char16_t* const MIXED_WORDS[] = {u"the",    u"stream", u"of",   u"characters", u"reader",
                                       u"line",   u"buffer", u"café", u"naïve",      u"привет",
                                       u"文字列", u"😀",      u"42",   u"x"};

template <size_t N> std::u16string makeText(const char16_t* const (&words)[N]) {
    std::u16string text;
    size_t bytes = 0;
    for (size_t k = 0; bytes < TARGET_BYTES; ++k) {
        const std::u16string word = words[(k * 7 + k / N) % N];
        text += word;
        text += u' ';
        for (char16_t unit : word)
            bytes += unit < 0x80 ? 1 : unit < 0x800 ? 2 : (unit >= 0xD800 && unit < 0xE000) ? 2 : 3;
        ++bytes;
    }
    return text;
}

template <class Encoder> std::string encode(const std::u16string& text) {
    Encoder encoder;
    std::string out(text.size() * 4 + 16, '\0');
    long inPos = 0, outPos = 0;
    encoder.convert(text.data(), &inPos, static_cast<long>(text.size()),
                    reinterpret_cast<signed char*>(&out[0]), &outPos,
                    static_cast<long>(out.size()));
    out.resize(static_cast<size_t>(outPos));
    return out;
}

struct Corpus {
    std::u16string units;
    std::string utf8;
    std::string utf16le;
    std::string utf32le;
};

template <size_t N> Corpus makeCorpus(const char16_t* const (&words)[N]) {
    Corpus c;
    c.units = makeText(words);
    c.utf8 = encode<CTBUTF8>(c.units);
    c.utf16le = encode<CTBUTF16LE>(c.units);
    c.utf32le = encode<CTBUTF32LE>(c.units);
    return c;
}

const Corpus& corpus(int which) {
    static const Corpus corpora[] = {makeCorpus(ASCII_WORDS),   makeCorpus(LATIN1_WORDS),
                                     makeCorpus(RUSSIAN_WORDS), makeCorpus(GREEK_WORDS),
                                     makeCorpus(CHINESE_WORDS), makeCorpus(EMOJI_WORDS),
                                     makeCorpus(WESTERN_WORDS), makeCorpus(MIXED_WORDS)};
    return corpora[which];
}

void setRate(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

// Decoding: bytes in, UTF-16 units out; the rate counts the encoded bytes.
template <class Decoder>
void decodeOurs(benchmark::State& state, const std::string& bytes, size_t units) {
    Decoder decoder;
    std::u16string out(units + 16, u'\0');
    for (auto _ : state) {
        long inPos = 0, outPos = 0;
        decoder.convert(reinterpret_cast<const signed char*>(bytes.data()), &inPos,
                        static_cast<long>(bytes.size()), &out[0], &outPos,
                        static_cast<long>(out.size()));
        benchmark::DoNotOptimize(out.data());
        if (outPos != static_cast<long>(units))
            state.SkipWithError("wrong length");
    }
    setRate(state, bytes.size());
}

template <class Encoder>
void encodeOurs(benchmark::State& state, const std::u16string& units, size_t bytes) {
    Encoder encoder;
    std::string out(bytes + 16, '\0');
    for (auto _ : state) {
        long inPos = 0, outPos = 0;
        encoder.convert(units.data(), &inPos, static_cast<long>(units.size()),
                        reinterpret_cast<signed char*>(&out[0]), &outPos,
                        static_cast<long>(out.size()));
        benchmark::DoNotOptimize(out.data());
        if (outPos != static_cast<long>(bytes))
            state.SkipWithError("wrong length");
    }
    setRate(state, bytes);
}

#ifdef QNCL_BENCH_ICU
void decodeIcu(benchmark::State& state, const std::string& bytes, size_t units) {
    std::u16string out(units + 16, u'\0');
    for (auto _ : state) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strFromUTF8(reinterpret_cast<UChar*>(&out[0]), static_cast<int32_t>(out.size()), &length,
                      bytes.data(), static_cast<int32_t>(bytes.size()), &error);
        benchmark::DoNotOptimize(out.data());
        if (U_FAILURE(error) || length != static_cast<int32_t>(units))
            state.SkipWithError("ICU failed");
    }
    setRate(state, bytes.size());
}

void encodeIcu(benchmark::State& state, const std::u16string& units, size_t bytes) {
    std::string out(bytes + 16, '\0');
    for (auto _ : state) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        u_strToUTF8(&out[0], static_cast<int32_t>(out.size()), &length,
                    reinterpret_cast<const UChar*>(units.data()),
                    static_cast<int32_t>(units.size()), &error);
        benchmark::DoNotOptimize(out.data());
        if (U_FAILURE(error) || length != static_cast<int32_t>(bytes))
            state.SkipWithError("ICU failed");
    }
    setRate(state, bytes);
}

// ucnv for the fixed-width forms, which have no u_str function.
void decodeUcnv(benchmark::State& state, const char* name, const std::string& bytes, size_t units) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name, &error);
    std::u16string out(units + 16, u'\0');
    for (auto _ : state) {
        error = U_ZERO_ERROR;
        const int32_t length = ucnv_toUChars(converter, reinterpret_cast<UChar*>(&out[0]),
                                             static_cast<int32_t>(out.size()), bytes.data(),
                                             static_cast<int32_t>(bytes.size()), &error);
        benchmark::DoNotOptimize(out.data());
        if (U_FAILURE(error) || length != static_cast<int32_t>(units))
            state.SkipWithError("ICU failed");
    }
    ucnv_close(converter);
    setRate(state, bytes.size());
}

void encodeUcnv(benchmark::State& state, const char* name, const std::u16string& units,
                size_t bytes) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name, &error);
    std::string out(bytes + 16, '\0');
    for (auto _ : state) {
        error = U_ZERO_ERROR;
        const int32_t length = ucnv_fromUChars(converter, &out[0], static_cast<int32_t>(out.size()),
                                               reinterpret_cast<const UChar*>(units.data()),
                                               static_cast<int32_t>(units.size()), &error);
        benchmark::DoNotOptimize(out.data());
        if (U_FAILURE(error) || length != static_cast<int32_t>(bytes))
            state.SkipWithError("ICU failed");
    }
    ucnv_close(converter);
    setRate(state, bytes);
}
#endif

#ifdef QNCL_BENCH_ICONV
void runIconv(benchmark::State& state, const char* to, const char* from, const std::string& in,
              size_t outBytes, size_t rateBytes) {
    iconv_t cd = iconv_open(to, from);
    std::string out(outBytes + 16, '\0');
    for (auto _ : state) {
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
        char* inPtr = const_cast<char*>(in.data());
        size_t inLeft = in.size();
        char* outPtr = &out[0];
        size_t outLeft = out.size();
        iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft);
        benchmark::DoNotOptimize(out.data());
        if (out.size() - outLeft != outBytes)
            state.SkipWithError("iconv failed");
    }
    iconv_close(cd);
    setRate(state, rateBytes);
}
#endif

const char* const NAMES[] = {"Ascii",   "Latin1", "Russian", "Greek",
                             "Chinese", "Emoji",  "Western", "Mixed"};

void registerAll() {
    for (int which = 0; which < 8; ++which) {
        const std::string name = NAMES[which];
        const Corpus& c = corpus(which);
        const size_t units = c.units.size();
        const std::string u8 = "Utf8Decode" + name;
        benchmark::RegisterBenchmark((u8 + "/ours").c_str(), [&c, units](benchmark::State& s) {
            decodeOurs<BTCUTF8>(s, c.utf8, units);
        });
        const std::string e8 = "Utf8Encode" + name;
        benchmark::RegisterBenchmark((e8 + "/ours").c_str(), [&c](benchmark::State& s) {
            encodeOurs<CTBUTF8>(s, c.units, c.utf8.size());
        });
        const std::string d16 = "Utf16LEDecode" + name;
        const std::string e16 = "Utf16LEEncode" + name;
        const std::string d32 = "Utf32LEDecode" + name;
        const std::string e32 = "Utf32LEEncode" + name;
        if (which == 0 || which == 5) {
            benchmark::RegisterBenchmark((d16 + "/ours").c_str(), [&c, units](benchmark::State& s) {
                decodeOurs<BTCUTF16LE>(s, c.utf16le, units);
            });
            benchmark::RegisterBenchmark((e16 + "/ours").c_str(), [&c](benchmark::State& s) {
                encodeOurs<CTBUTF16LE>(s, c.units, c.utf16le.size());
            });
            benchmark::RegisterBenchmark((d32 + "/ours").c_str(), [&c, units](benchmark::State& s) {
                decodeOurs<BTCUTF32LE>(s, c.utf32le, units);
            });
            benchmark::RegisterBenchmark((e32 + "/ours").c_str(), [&c](benchmark::State& s) {
                encodeOurs<CTBUTF32LE>(s, c.units, c.utf32le.size());
            });
        }
        if (which == 0) {
            // The physical reference: one byte to one unit, nothing checked.
            benchmark::RegisterBenchmark((u8 + "/widen").c_str(), [&c, units](benchmark::State& s) {
                std::u16string out(units, u'\0');
                for (auto _ : s) {
                    const auto* in = reinterpret_cast<const unsigned char*>(c.utf8.data());
                    for (size_t k = 0; k < units; ++k)
                        out[k] = in[k];
                    benchmark::DoNotOptimize(out.data());
                }
                setRate(s, c.utf8.size());
            });
        }
#ifdef QNCL_BENCH_ICU
        benchmark::RegisterBenchmark((u8 + "/icu").c_str(), [&c, units](benchmark::State& s) {
            decodeIcu(s, c.utf8, units);
        });
        benchmark::RegisterBenchmark((e8 + "/icu").c_str(), [&c](benchmark::State& s) {
            encodeIcu(s, c.units, c.utf8.size());
        });
        if (which == 0 || which == 5) {
            benchmark::RegisterBenchmark((d16 + "/icu").c_str(), [&c, units](benchmark::State& s) {
                decodeUcnv(s, "UTF-16LE", c.utf16le, units);
            });
            benchmark::RegisterBenchmark((e16 + "/icu").c_str(), [&c](benchmark::State& s) {
                encodeUcnv(s, "UTF-16LE", c.units, c.utf16le.size());
            });
            benchmark::RegisterBenchmark((d32 + "/icu").c_str(), [&c, units](benchmark::State& s) {
                decodeUcnv(s, "UTF-32LE", c.utf32le, units);
            });
            benchmark::RegisterBenchmark((e32 + "/icu").c_str(), [&c](benchmark::State& s) {
                encodeUcnv(s, "UTF-32LE", c.units, c.utf32le.size());
            });
        }
#endif
#ifdef QNCL_BENCH_ICONV
        benchmark::RegisterBenchmark((u8 + "/iconv").c_str(), [&c, units](benchmark::State& s) {
            runIconv(s, "UTF-16LE", "UTF-8", c.utf8, units * 2, c.utf8.size());
        });
        benchmark::RegisterBenchmark((e8 + "/iconv").c_str(), [&c](benchmark::State& s) {
            const std::string in(reinterpret_cast<const char*>(c.units.data()), c.units.size() * 2);
            runIconv(s, "UTF-8", "UTF-16LE", in, c.utf8.size(), c.utf8.size());
        });
#endif
    }
}

} // namespace

int main(int argc, char** argv) {
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
