// The UTF-16 and UTF-32 converters, both byte orders and both directions. The first byte picks
// the converter and the substitution mode, the next four seed the splits; the rest is the text.
// Checked: a conversion in random pieces ends exactly as the one-shot conversion (output,
// positions, exception), the BE converters give the LE ones' bytes reversed per unit, and text
// comes back unchanged through encoder and decoder where the form can carry it.
#include "qn/text/charset/BTCUTF16.h"
#include "qn/text/charset/BTCUTF32.h"
#include "qn/text/charset/CTBUTF16.h"
#include "qn/text/charset/CTBUTF32.h"

#include "ConverterFuzz.h"

#include <cstring>
#include <memory>

using namespace qn;
using namespace qn::text::charset;
using namespace fuzzsupport;

namespace {

template <class Converter, class InUnit, class OutUnit>
Outcome<OutUnit> convert(const std::vector<InUnit>& in, bool mode, Random* random) {
    Converter converter;
    converter.setSubstitutionMode(mode);
    const long size = static_cast<long>(in.size());
    return run<OutUnit>(size, 4 * size + 8, random, 11, 9,
                        [&](long* inPos, long inEnd, OutUnit* out, long* outPos, long outEnd) {
                            return converter.convert(in.data(), inPos, inEnd, out, outPos, outEnd);
                        });
}

template <class Converter, class InUnit, class OutUnit>
Outcome<OutUnit> checkPieces(const std::vector<InUnit>& in, bool mode, uint32_t seed) {
    const Outcome<OutUnit> oneShot = convert<Converter, InUnit, OutUnit>(in, mode, nullptr);
    Random random{seed};
    check(convert<Converter, InUnit, OutUnit>(in, mode, &random) == oneShot);
    return oneShot;
}

// The bytes with each unit of width bytes reversed; a trailing partial unit stays as it is.
std::vector<signed char> swapped(std::vector<signed char> bytes, size_t width) {
    for (size_t k = 0; k + width <= bytes.size(); k += width)
        std::reverse(bytes.begin() + static_cast<long>(k),
                     bytes.begin() + static_cast<long>(k + width));
    return bytes;
}

void fuzzDecoders(const std::vector<signed char>& bytes, bool mode, uint32_t seed) {
    const auto le16 = checkPieces<BTCUTF16LE, signed char, char16_t>(bytes, mode, seed);
    const auto be16 = checkPieces<BTCUTF16BE, signed char, char16_t>(swapped(bytes, 2), mode, seed);
    check(le16 == be16);
    const auto le32 = checkPieces<BTCUTF32LE, signed char, char16_t>(bytes, mode, seed);
    const auto be32 = checkPieces<BTCUTF32BE, signed char, char16_t>(swapped(bytes, 4), mode, seed);
    check(le32 == be32);
    // UTF-16 carries every unit; re-encoding gives the whole units back.
    const auto again = checkPieces<CTBUTF16LE, char16_t, signed char>(le16.out, mode, seed);
    check(again.failure == 0 && again.outPos == (static_cast<long>(bytes.size()) & ~1L));
    check(std::equal(again.out.begin(), again.out.end(), bytes.begin()));
}

void fuzzEncoders(const std::vector<char16_t>& units, bool mode, uint32_t seed) {
    const auto le16 = checkPieces<CTBUTF16LE, char16_t, signed char>(units, mode, seed);
    const auto be16 = checkPieces<CTBUTF16BE, char16_t, signed char>(units, mode, seed);
    check(le16.failure == 0 && be16.failure == 0 && swapped(le16.out, 2) == be16.out);
    const auto le32 = checkPieces<CTBUTF32LE, char16_t, signed char>(units, mode, seed);
    const auto be32 = checkPieces<CTBUTF32BE, char16_t, signed char>(units, mode, seed);
    check(le32.failure == be32.failure && le32.inPos == be32.inPos);
    check(swapped(le32.out, 4) == be32.out);
    // Decoding gives the text back up to the first lone surrogate (decoders refuse those).
    if (le32.failure != 0)
        return;
    const auto back = checkPieces<BTCUTF32LE, signed char, char16_t>(le32.out, mode, seed);
    check(back.out.size() <= units.size());
    check(std::equal(back.out.begin(), back.out.end(), units.begin()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 5)
        return 0;
    const bool mode = (data[0] & 2) != 0;
    uint32_t seed;
    std::memcpy(&seed, data + 1, 4);
    if (data[0] & 1) {
        std::vector<char16_t> units((size - 5) / 2);
        if (!units.empty())
            std::memcpy(units.data(), data + 5, units.size() * 2);
        fuzzEncoders(units, mode, seed);
    } else {
        fuzzDecoders(std::vector<signed char>(data + 5, data + size), mode, seed);
    }
    return 0;
}
