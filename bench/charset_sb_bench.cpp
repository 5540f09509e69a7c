// The single-byte converters against ICU's converters (ucnv) on the same texts: 256 KiB of
// ASCII and 256 KiB of Western European text, decoded from and encoded to ISO8859_1, CP1252 and
// CP437, each a whole buffer per call with the output allocated beforehand.
#include "qn/text/charset/BTCCP1252.h"
#include "qn/text/charset/BTCCP437.h"
#include "qn/text/charset/BTCISO8859_1.h"
#include "qn/text/charset/CTBCP1252.h"
#include "qn/text/charset/CTBCP437.h"
#include "qn/text/charset/CTBISO8859_1.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#ifdef QNCL_BENCH_ICU
#include <unicode/ucnv.h>
#endif

namespace {

using namespace qn;
using namespace qn::text::charset;

constexpr size_t TEXT_UNITS = 256 * 1024;

// Every character of the Western text exists in all three code pages.
const char16_t ASCII_LINE[] = u"The quick brown fox jumps over the lazy dog; 0123456789 times.\n";
const char16_t WESTERN_LINE[] =
    u"Gr\u00FC\u00DFe aus K\u00F6ln: caf\u00E9 cr\u00E8me, na\u00EFve fa\u00E7ade, se\u00F1or "
    u"M\u00FCller \u00E0 Gen\u00E8ve, \u00C4rger \u00FCber \u00D6l.\n";

std::u16string repeat(const char16_t* line) {
    std::u16string text;
    while (text.size() < TEXT_UNITS)
        text += line;
    text.resize(TEXT_UNITS);
    return text;
}

const std::u16string& textOf(bool western) {
    static const std::u16string ascii = repeat(ASCII_LINE);
    static const std::u16string latin = repeat(WESTERN_LINE);
    return western ? latin : ascii;
}

template <class Encoder> std::vector<signed char> encoded(bool western) {
    const std::u16string& text = textOf(western);
    Reference<Encoder> encoder(new Encoder);
    std::vector<signed char> bytes(text.size());
    long inPos = 0, outPos = 0;
    encoder->convert(text.data(), &inPos, static_cast<long>(text.size()), bytes.data(), &outPos,
                     static_cast<long>(bytes.size()));
    return bytes;
}

void setRate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * TEXT_UNITS));
}

template <class Decoder, class Encoder> void decodeOurs(benchmark::State& state, bool western) {
    const std::vector<signed char> bytes = encoded<Encoder>(western);
    Reference<Decoder> decoder(new Decoder);
    std::u16string out(bytes.size(), u'\0');
    for (auto _ : state) {
        long inPos = 0, outPos = 0;
        decoder->convert(bytes.data(), &inPos, static_cast<long>(bytes.size()), out.data(), &outPos,
                         static_cast<long>(out.size()));
        benchmark::DoNotOptimize(out.data());
    }
    setRate(state);
}

template <class Encoder> void encodeOurs(benchmark::State& state, bool western) {
    const std::u16string& text = textOf(western);
    Reference<Encoder> encoder(new Encoder);
    std::vector<signed char> out(text.size());
    for (auto _ : state) {
        long inPos = 0, outPos = 0;
        encoder->convert(text.data(), &inPos, static_cast<long>(text.size()), out.data(), &outPos,
                         static_cast<long>(out.size()));
        benchmark::DoNotOptimize(out.data());
    }
    setRate(state);
}

#ifdef QNCL_BENCH_ICU
UConverter* openIcu(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name, &status);
    return U_SUCCESS(status) ? converter : nullptr;
}

template <class Encoder> void decodeIcu(benchmark::State& state, const char* name, bool western) {
    const std::vector<signed char> bytes = encoded<Encoder>(western);
    UConverter* converter = openIcu(name);
    std::u16string out(bytes.size() + 1, u'\0');
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_toUChars(converter, out.data(), static_cast<int32_t>(out.size()),
                      reinterpret_cast<const char*>(bytes.data()),
                      static_cast<int32_t>(bytes.size()), &status);
        benchmark::DoNotOptimize(out.data());
    }
    ucnv_close(converter);
    setRate(state);
}

void encodeIcu(benchmark::State& state, const char* name, bool western) {
    const std::u16string& text = textOf(western);
    UConverter* converter = openIcu(name);
    std::vector<char> out(text.size() + 1);
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_fromUChars(converter, out.data(), static_cast<int32_t>(out.size()), text.data(),
                        static_cast<int32_t>(text.size()), &status);
        benchmark::DoNotOptimize(out.data());
    }
    ucnv_close(converter);
    setRate(state);
}

#endif

// Both directions of one code page, on both texts, for us and for ICU.
template <class Decoder, class Encoder>
void registerPage(const std::string& page, [[maybe_unused]] const char* icuName) {
    for (const bool western : {false, true}) {
        const std::string text = western ? "Western" : "Ascii";
        benchmark::RegisterBenchmark(
            ("charset.Decode" + page + text + "/ours").c_str(),
            [western](benchmark::State& state) { decodeOurs<Decoder, Encoder>(state, western); });
        benchmark::RegisterBenchmark(
            ("charset.Encode" + page + text + "/ours").c_str(),
            [western](benchmark::State& state) { encodeOurs<Encoder>(state, western); });
#ifdef QNCL_BENCH_ICU
        benchmark::RegisterBenchmark(("charset.Decode" + page + text + "/ICU").c_str(),
                                     [western, icuName](benchmark::State& state) {
                                         decodeIcu<Encoder>(state, icuName, western);
                                     });
        benchmark::RegisterBenchmark(
            ("charset.Encode" + page + text + "/ICU").c_str(),
            [western, icuName](benchmark::State& state) { encodeIcu(state, icuName, western); });
#endif
    }
}

} // namespace

int main(int argc, char** argv) {
    registerPage<BTCISO8859_1, CTBISO8859_1>("ISO8859_1", "ISO-8859-1");
    registerPage<BTCCP1252, CTBCP1252>("CP1252", "windows-1252");
    registerPage<BTCCP437, CTBCP437>("CP437", "ibm-437");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
