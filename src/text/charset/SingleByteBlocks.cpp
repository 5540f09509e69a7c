// The block steps of the single-byte decoders whose bytes 0x00-0x7F and 0xA0-0xFF map to
// themselves (code page 1252): sixteen bytes a step with SSSE3, 32 with AVX2 (Linux only, as
// for the UTF-8 encoder: GCC on Windows does not align the stack for 32-byte vectors), the
// bytes in 0x80-0x9F looked up with two byte shuffles per half of their units, however many
// there are. Chosen at run time, once.
#include "SingleByteKernels.h"

#ifdef QNCL_SB_SSSE3

#include <tmmintrin.h>
#ifdef QNCL_SIMD_WIDE
#include <immintrin.h>
#endif

namespace qn::text::charset::kernels {

namespace {

#ifdef QNCL_SIMD_WIDE
// 32 bytes a step while they last, as the sixteen-byte loop below does them; returns how many
// bytes it took (stopping before a byte whose unit has the high byte 0xFF).
QNCL_AVX2 __attribute__((noinline)) long
decodeWide(const uint8_t (*lookup)[16], const unsigned char* from, char16_t* to, long n) {
    // Each table in both halves: the shuffles look up within a half.
    __m256i tables[4];
    for (int t = 0; t < 4; ++t)
        tables[t] = _mm256_broadcastsi128_si256(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(lookup[t])));
    const __m256i low0 = tables[0];
    const __m256i low1 = tables[1];
    const __m256i high0 = tables[2];
    const __m256i high1 = tables[3];
    const __m256i base0 = _mm256_set1_epi8(static_cast<char>(0x80));
    const __m256i base1 = _mm256_set1_epi8(static_cast<char>(0x90));
    const __m256i clamp = _mm256_set1_epi8(0x70);
    const __m256i ones = _mm256_set1_epi8(static_cast<char>(0xFF));
    const __m256i bound = _mm256_set1_epi8(static_cast<char>(0xA0));
    long k = 0;
    for (; k + 32 <= n; k += 32) {
        const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + k));
        auto* units = reinterpret_cast<__m256i*>(to + k);
        if (_mm256_movemask_epi8(_mm256_cmpgt_epi8(bound, block)) == 0) {
            _mm256_storeu_si256(units, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(block)));
            _mm256_storeu_si256(units + 1,
                                _mm256_cvtepu8_epi16(_mm256_extracti128_si256(block, 1)));
            continue;
        }
        const __m256i index0 = _mm256_adds_epu8(_mm256_xor_si256(block, base0), clamp);
        const __m256i index1 = _mm256_adds_epu8(_mm256_xor_si256(block, base1), clamp);
        const __m256i lows =
            _mm256_xor_si256(block, _mm256_or_si256(_mm256_shuffle_epi8(low0, index0),
                                                    _mm256_shuffle_epi8(low1, index1)));
        const __m256i highs =
            _mm256_or_si256(_mm256_shuffle_epi8(high0, index0), _mm256_shuffle_epi8(high1, index1));
        // Within each half: unpacklo has units 0-7 and 16-23, unpackhi 8-15 and 24-31.
        const __m256i first = _mm256_unpacklo_epi8(lows, highs);
        const __m256i second = _mm256_unpackhi_epi8(lows, highs);
        _mm256_storeu_si256(units, _mm256_permute2x128_si256(first, second, 0x20));
        _mm256_storeu_si256(units + 1, _mm256_permute2x128_si256(first, second, 0x31));
        const auto stop =
            static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(highs, ones)));
        if (stop != 0)
            return k + __builtin_ctz(stop);
    }
    return k;
}
#endif

} // namespace

QNCL_SSE41 void decodeLatin1UpperBlocks(const uint8_t (*lookup)[16], const unsigned char* bytes,
                                        long& i, long inEnd, char16_t* out, long& o, long outEnd,
                                        int level) {
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
#ifdef QNCL_SIMD_WIDE
    if (level >= 2 && n >= 32) {
        k = decodeWide(lookup, from, to, n);
        if (k + 32 <= n) {
            // Stopped before a byte for the per-byte loop.
            i += k;
            o += k;
            return;
        }
    }
#else
    (void)level;
#endif
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
