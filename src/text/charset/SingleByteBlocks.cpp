// The SSSE3 step of the single-byte decoders whose bytes 0x00-0x7F and 0xA0-0xFF map to
// themselves (code page 1252): sixteen bytes a step, the ones in 0x80-0x9F looked up with two
// byte shuffles per half of their units, however many there are. Chosen at run time, once.
#include "SingleByteKernels.h"

#ifdef QNCL_SB_SSSE3

#include <tmmintrin.h>

#define QNCL_SSSE3 __attribute__((target("ssse3")))

namespace qn::text::charset::kernels {

bool hasSsse3Blocks() {
    static const bool supported = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("ssse3") != 0;
    }();
    return supported;
}

QNCL_SSSE3 void decodeLatin1UpperBlocks(const uint8_t (*lookup)[16], const unsigned char* bytes,
                                        long& i, long inEnd, char16_t* out, long& o, long outEnd) {
    const auto load = [](const void* from) {
        return _mm_loadu_si128(static_cast<const __m128i*>(from));
    };
    const long n = std::min(inEnd - i, outEnd - o);
    const unsigned char* from = bytes + i;
    char16_t* to = out + o;
    const __m128i low0 = load(lookup[0]);
    const __m128i low1 = load(lookup[1]);
    const __m128i high0 = load(lookup[2]);
    const __m128i high1 = load(lookup[3]);
    const __m128i base0 = _mm_set1_epi8(static_cast<char>(0x80));
    const __m128i base1 = _mm_set1_epi8(static_cast<char>(0x90));
    const __m128i clamp = _mm_set1_epi8(0x70);
    const __m128i ones = _mm_set1_epi8(static_cast<char>(0xFF));
    const __m128i zero = _mm_setzero_si128();
    // Signed, the bytes 0x80-0x9F are the ones below 0xA0.
    const __m128i bound = _mm_set1_epi8(static_cast<char>(0xA0));
    long k = 0;
    for (; k + 16 <= n; k += 16) {
        const __m128i block = load(from + k);
        // Blocks without any of 0x80-0x9F, all of most Western text, are only widened.
        if (_mm_movemask_epi8(_mm_cmplt_epi8(block, bound)) == 0) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k), _mm_unpacklo_epi8(block, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k + 8),
                             _mm_unpackhi_epi8(block, zero));
            continue;
        }
        // A shuffle gives zero where its index has bit 7 set: (byte ^ 0x80) + 0x70, saturated,
        // has it clear for 0x80-0x8F only, (byte ^ 0x90) + 0x70 for 0x90-0x9F only. Every
        // other byte finds zero in both tables: its high byte is zero and its low byte itself.
        const __m128i index0 = _mm_adds_epu8(_mm_xor_si128(block, base0), clamp);
        const __m128i index1 = _mm_adds_epu8(_mm_xor_si128(block, base1), clamp);
        const __m128i lows = _mm_xor_si128(
            block, _mm_or_si128(_mm_shuffle_epi8(low0, index0), _mm_shuffle_epi8(low1, index1)));
        const __m128i highs =
            _mm_or_si128(_mm_shuffle_epi8(high0, index0), _mm_shuffle_epi8(high1, index1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k), _mm_unpacklo_epi8(lows, highs));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k + 8), _mm_unpackhi_epi8(lows, highs));
        // A byte that maps to nothing (U+FFFD), or to another U+FFxx, ends the step there; the
        // per-byte loop takes it.
        const auto stop = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(highs, ones)));
        if (stop != 0) {
            k += __builtin_ctz(stop);
            break;
        }
    }
    i += k;
    o += k;
}

} // namespace qn::text::charset::kernels

#endif
