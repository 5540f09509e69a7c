// The UTF-8 converters. The first byte picks the direction and the substitution settings, the
// next four seed the splits; the rest is the text (bytes to decode, or UTF-16 units, two bytes
// each, to encode). Checked: a conversion in random pieces ends exactly as the one-shot
// conversion (output, positions, exception), pairs are never split between calls, the fast
// loops (SSE2 and SSSE3 in the converters, machine words in the loops run here) agree with the
// simple ones step for step under the same splits (windows up to 40 units, so that blocks happen,
// and up to 300 for the converter's chunks), the 128-bit, 256-bit and dense chunk steps agree
// with each other, and well-formed text survives a round trip.
#include "qn/text/charset/BTCUTF8.h"
#include "qn/text/charset/CTBUTF8.h"

#include "ConverterFuzz.h"
#include "text/Utf8Faults.h"
#include "text/charset/ConverterLookup.h"
#include "text/charset/UtfKernels.h"

#include <algorithm>
#include <cstring>

using namespace qn::text::charset;
using namespace fuzzsupport;

namespace {

struct Settings {
    bool mode;
    char16_t chars[3] = {u'<', 0xFFFD, u'>'};
    int32_t length;
};

template <bool Fast> struct SimpleDecoder {
    const Settings& settings;
    long operator()(const uint8_t* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                    long outEnd) const {
        return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
            utf::decodeUtf8<Fast>(
                in, i, inEnd, out, o, outEnd, [this](char16_t* to, long& at, long end) {
                    return detail::writeSubstitution(settings.mode, settings.chars, settings.length,
                                                     to, at, end, true);
                });
        });
    }
};

void fuzzDecoder(const Settings& settings, uint32_t seed, const uint8_t* text, long size) {
    const auto* in = reinterpret_cast<const signed char*>(text);
    const long capacity = 3 * size + 8;
    // Windows of 9 keep the converter to its simple steps; windows of up to 300 bytes and units
    // reach its 64-byte chunks (SSSE3), with the input and the output ending anywhere in or
    // after them.
    auto converterRun = [&](Random* random, long window) {
        BTCUTF8 decoder;
        decoder.setSubstitutionMode(settings.mode);
        decoder.setSubstitutionChars(settings.chars, settings.length);
        return run<char16_t>(
            size, capacity, random, window, window,
            [&](long* inPos, long inEnd, char16_t* out, long* outPos, long outEnd) {
                const long written = decoder.convert(in, inPos, inEnd, out, outPos, outEnd);
                check(written == 0 || !utf::isHighSurrogate(out[*outPos - 1]));
                return written;
            });
    };
    auto kernelRun = [&](Random* random, auto decoder, long window) {
        return run<char16_t>(
            size, capacity, random, window, window,
            [&](long* inPos, long inEnd, char16_t* out, long* outPos, long outEnd) {
                return decoder(text, inPos, inEnd, out, outPos, outEnd);
            });
    };
    const Outcome<char16_t> oneShot = converterRun(nullptr, 9);
    Random a{seed}, b{seed}, c{seed}, d{seed}, e{seed};
    check(converterRun(&a, 9) == oneShot);
    check(kernelRun(&b, SimpleDecoder<false>{settings}, 40) ==
          kernelRun(&c, SimpleDecoder<true>{settings}, 40));
    check(converterRun(&d, 300) == kernelRun(&e, SimpleDecoder<false>{settings}, 300));
    check(kernelRun(nullptr, SimpleDecoder<false>{settings}, 40) == oneShot);
    check(kernelRun(nullptr, SimpleDecoder<true>{settings}, 40) == oneShot);
#if defined(QNCL_UTF8_DECODE_BLOCKS) && defined(QNCL_SIMD_WIDE)
    // The 128-bit and 256-bit chunk steps, from the same random starts into outputs that end
    // anywhere, stop at the same place with the same units; with the dense steps as well they
    // may stop elsewhere, but on the same way: the one that went less far wrote a prefix of the
    // other's units.
    if (utf::utf8BlockLevel() < 2)
        return;
    Random r{seed};
    std::vector<char16_t> narrow(static_cast<size_t>(size) + 1), wide(narrow.size()),
        dense(narrow.size());
    for (int round = 0; round < 4; ++round) {
        const long start = r.upTo(size + 1) - 1;
        const long outEnd = r.upTo(size + 1);
        long i1 = start, o1 = 0, i2 = start, o2 = 0, i3 = start, o3 = 0;
        utf::decodeUtf8Blocks(text, i1, size, narrow.data(), o1, outEnd, 1);
        utf::decodeUtf8Blocks(text, i2, size, wide.data(), o2, outEnd, 2);
        check(i1 == i2 && o1 == o2 &&
              std::equal(narrow.begin(), narrow.begin() + o1, wide.begin()));
        if (utf::utf8BlockLevel() < 3)
            continue;
        utf::decodeUtf8Blocks(text, i3, size, dense.data(), o3, outEnd, 3);
        check((i3 < i2) == (o3 < o2) && (i3 == i2) == (o3 == o2) &&
              std::equal(dense.begin(), dense.begin() + std::min(o2, o3), wide.begin()));
    }
#endif
}

template <bool Fast> struct SimpleEncoder {
    char16_t* pending;
    long operator()(const char16_t* in, long* inPos, long inEnd, uint8_t* out, long* outPos,
                    long outEnd) const {
        return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
            utf::encodeUtf8<Fast>(in, i, inEnd, out, o, outEnd, *pending);
        });
    }
};

void fuzzEncoder(uint32_t seed, const uint8_t* data, long bytes) {
    std::vector<char16_t> units(static_cast<size_t>(bytes / 2));
    if (!units.empty())
        std::memcpy(units.data(), data, units.size() * 2);
    const long size = static_cast<long>(units.size());
    const long capacity = 3 * size + 8;
    auto converterRun = [&](Random* random) {
        CTBUTF8 encoder;
        return run<signed char>(
            size, capacity, random, 9, capacity,
            [&](long* inPos, long inEnd, signed char* out, long* outPos, long outEnd) {
                return encoder.convert(units.data(), inPos, inEnd, out, outPos, outEnd);
            },
            capacity);
    };
    auto kernelRun = [&](Random* random, auto encoder) {
        char16_t pending = 0;
        encoder.pending = &pending;
        Outcome<uint8_t> outcome =
            run<uint8_t>(size, capacity, random, 40, 40,
                         [&](long* inPos, long inEnd, uint8_t* out, long* outPos, long outEnd) {
                             return encoder(units.data(), inPos, inEnd, out, outPos, outEnd);
                         });
        outcome.out.push_back(static_cast<uint8_t>(pending));
        return outcome;
    };
    // A completed pair that meets the end of a window loses its high surrogate (on purpose),
    // so pieces of input are compared with ample output windows.
    const Outcome<signed char> oneShot = converterRun(nullptr);
    Random a{seed}, b{seed}, c{seed};
    check(converterRun(&a) == oneShot);
    check(kernelRun(&b, SimpleEncoder<false>{}) == kernelRun(&c, SimpleEncoder<true>{}));
    check(kernelRun(nullptr, SimpleEncoder<false>{}) == kernelRun(nullptr, SimpleEncoder<true>{}));

    // Text without lone surrogates comes back unchanged, but for the code points whose
    // four-byte form has a second byte above 0xAF (U+30000-U+3FFFF and the like), which the
    // decoder refuses on purpose.
    bool wellFormed = true;
    for (long k = 0; k < size && wellFormed; ++k) {
        if (utf::isHighSurrogate(units[k])) {
            wellFormed = k + 1 < size && utf::isLowSurrogate(units[k + 1]);
            if (wellFormed) {
                const uint32_t value =
                    (static_cast<uint32_t>(units[k]) << 10) + units[k + 1] - 0x35FDC00u;
                wellFormed = ((value >> 12) & 0x3Fu) < 0x30u;
                ++k;
            }
        } else if (utf::isLowSurrogate(units[k])) {
            wellFormed = false;
        }
    }
    if (!wellFormed)
        return;
    check(oneShot.failure == 0 && oneShot.inPos == size);
    BTCUTF8 decoder;
    std::vector<char16_t> back(static_cast<size_t>(size) + 1);
    long inPos = 0, outPos = 0;
    decoder.convert(oneShot.out.data(), &inPos, oneShot.outPos, back.data(), &outPos, size + 1);
    check(outPos == size && inPos == oneShot.outPos);
    check(std::equal(units.begin(), units.end(), back.begin()));
}

} // namespace

// With bit 4 of the first byte, the text is built from the input: bytes below 0xF0 pick
// well-formed characters of every length, the others one of sixteen faults. Long runs of mixed
// well-formed text with rare faults are what the block paths take, and random bytes seldom are.
static std::vector<uint8_t> buildText(const uint8_t* data, size_t size) {
    static const char* const pieces[] = {"a",
                                         " ",
                                         "7",
                                         "\xC3\xA9",
                                         "\xD0\x96",
                                         "\xCE\xA9",
                                         "\xE4\xB8\xAD",
                                         "\xE3\x80\x82",
                                         "\xE2\x82\xAC",
                                         "\xEF\xBF\xBF",
                                         "\xF0\x9F\x98\x80",
                                         "\xF4\x8F\xBF\xBF"};
    std::vector<uint8_t> text;
    for (size_t k = 0; k < size; ++k) {
        const char* piece = data[k] >= 0xF0 ? charsettest::UTF8_FAULTS[data[k] - 0xF0]
                                            : pieces[data[k] % (sizeof pieces / sizeof *pieces)];
        text.insert(text.end(), piece, piece + std::strlen(piece));
    }
    return text;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 5)
        return 0;
    Settings settings;
    settings.mode = (data[0] & 2) != 0;
    settings.length = (data[0] >> 2) & 3;
    uint32_t seed;
    std::memcpy(&seed, data + 1, 4);
    const uint8_t* text = data + 5;
    const long length = static_cast<long>(size - 5);
    if (data[0] & 1)
        fuzzEncoder(seed, text, length);
    else if (data[0] & 0x10) {
        const std::vector<uint8_t> built = buildText(text, static_cast<size_t>(length));
        fuzzDecoder(settings, seed, built.data(), static_cast<long>(built.size()));
    } else
        fuzzDecoder(settings, seed, text, length);
    return 0;
}
