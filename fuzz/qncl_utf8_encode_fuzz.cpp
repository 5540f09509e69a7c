// The UTF-8 encoder's fast forms against its simple loop, on text built for the block paths:
// runs of ASCII, two- and three-byte units and pairs, with lone surrogates where the input asks
// for them (or, with sparse faults, rarely). The first byte is unused but for the length cap and
// the sparse faults, the next four seed the splits; each following pair of bytes adds a unit (or
// a run, or a pair). Checked: the AVX2 and the SSE4.1 blocks (where the processor has them), the
// SSE2 loop and the simple loop end alike (output, positions, exception, pending surrogate) in
// one call and under the same random splits of input and output (windows large enough for
// blocks, and tiny ones), and the converter in qncl6 gives the one-call result.
#include "qn/text/charset/CTBUTF8.h"

#include "ConverterFuzz.h"
#include "text/charset/UtfKernels.h"

#include <algorithm>
#include <cstring>
#include <vector>

using namespace qn::text::charset;
using namespace fuzzsupport;

namespace {

std::vector<char16_t> makeText(const uint8_t* data, size_t size, size_t cap, bool sparse) {
    std::vector<char16_t> units;
    for (size_t k = 0; k + 1 < size && units.size() < cap; k += 2) {
        const uint32_t payload = ((data[k] & 0x1Fu) << 8) | data[k + 1];
        switch (data[k] >> 5) {
        case 0:
        case 1:
            for (uint32_t n = 0; n <= payload % 24; ++n)
                units.push_back(static_cast<char16_t>(0x20 + (payload + n) % 0x60));
            break;
        case 2:
            units.push_back(static_cast<char16_t>(0x80 + payload % 0x780));
            break;
        case 3:
        case 6: {
            uint32_t value = 0x800 + payload * 7;
            if (value >= 0xD800)
                value += 0x800;
            units.push_back(static_cast<char16_t>(value));
            break;
        }
        case 4:
        case 7:
            units.push_back(static_cast<char16_t>(0xD800 + (payload & 0x3FF)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((payload * 13) & 0x3FF)));
            break;
        default:
            // With sparse faults, most of these are pairs too: long well-formed runs of the
            // wide steps with the odd lone surrogate.
            if (sparse && (payload & 7) != 0) {
                units.push_back(static_cast<char16_t>(0xD800 + (payload >> 3)));
                units.push_back(static_cast<char16_t>(0xDC00 + (payload & 0x3FF)));
                break;
            }
            units.push_back(static_cast<char16_t>(0xD800 + payload % 0x800));
            break;
        }
    }
    return units;
}

template <bool Fast, int Blocks> struct Encoder {
    char16_t* pending;
    long operator()(const char16_t* in, long* inPos, long inEnd, uint8_t* out, long* outPos,
                    long outEnd) const {
        return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
            utf::encodeUtf8<Fast, Blocks>(in, i, inEnd, out, o, outEnd, *pending);
        });
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 5)
        return 0;
    uint32_t seed;
    std::memcpy(&seed, data + 1, 4);
    const std::vector<char16_t> units =
        makeText(data + 5, size - 5, data[0] & 1 ? 4096 : 256, (data[0] & 2) != 0);
    const long length = static_cast<long>(units.size());
    const long capacity = 3 * length + 8;
    auto kernelRun = [&](Random* random, long maxRoom, auto encoder) {
        char16_t pending = 0;
        encoder.pending = &pending;
        Outcome<uint8_t> outcome =
            run<uint8_t>(length, capacity, random, 80, maxRoom,
                         [&](long* inPos, long inEnd, uint8_t* out, long* outPos, long outEnd) {
                             return encoder(units.data(), inPos, inEnd, out, outPos, outEnd);
                         });
        outcome.out.push_back(static_cast<uint8_t>(pending));
        outcome.out.push_back(static_cast<uint8_t>(pending >> 8));
        return outcome;
    };
    for (long maxRoom : {9L, 200L}) {
        Random a{seed}, b{seed}, c{seed}, d{seed};
        const Outcome<uint8_t> simple = kernelRun(&a, maxRoom, Encoder<false, 0>{});
        check(kernelRun(&b, maxRoom, Encoder<true, 0>{}) == simple);
        check(kernelRun(&c, maxRoom, Encoder<true, 1>{}) == simple);
        check(kernelRun(&d, maxRoom, Encoder<true, 2>{}) == simple);
    }
    const Outcome<uint8_t> oneCall = kernelRun(nullptr, capacity, Encoder<false, 0>{});
    check(kernelRun(nullptr, capacity, Encoder<true, 0>{}) == oneCall);
    check(kernelRun(nullptr, capacity, Encoder<true, 1>{}) == oneCall);
    check(kernelRun(nullptr, capacity, Encoder<true, 2>{}) == oneCall);
    CTBUTF8 converter;
    std::vector<uint8_t> out(static_cast<size_t>(capacity));
    long inPos = 0, outPos = 0;
    try {
        converter.convert(units.data(), &inPos, length, reinterpret_cast<signed char*>(out.data()),
                          &outPos, capacity);
    } catch (const qn::Exception&) {
        check(oneCall.failure != 0);
    }
    check(inPos == oneCall.inPos && outPos == oneCall.outPos);
    check(std::equal(out.begin(), out.begin() + outPos, oneCall.out.begin()));
    return 0;
}
