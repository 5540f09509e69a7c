// The search for the end of a line over UTF-16 units. Sixteen units are tested per round with
// SSE2, their results packed into one bit each so that a match costs one branch; then four at
// a time in a 64-bit word (all of the search on the 32-bit target), and the last few one by one.
#pragma once

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#define QNCL_IO_SSE2 1
#endif

namespace qn::io::scan {

constexpr uint64_t ONES = 0x0001000100010001u;

// True when one of the four 16-bit units of word is 0. Subtracting one from each unit borrows
// into the top bit of a zero unit first; units above a zero one may be flagged too, which does
// not matter for "any".
inline bool hasZeroUnit(uint64_t word) {
    return ((word - ONES) & ~word & (ONES << 15)) != 0;
}

// The first unit in [p, end) that is LF or CR, or end.
inline const char16_t* findLineEnd(const char16_t* p, const char16_t* end) {
#ifdef QNCL_IO_SSE2
    const __m128i lf = _mm_set1_epi16(u'\n');
    const __m128i cr = _mm_set1_epi16(u'\r');
    auto terminators = [&](const char16_t* at) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        return _mm_or_si128(_mm_cmpeq_epi16(v, lf), _mm_cmpeq_epi16(v, cr));
    };
    for (; end - p >= 16; p += 16) {
        // A unit that matched is 0xFFFF, which packs to one byte 0xFF.
        const int mask = _mm_movemask_epi8(_mm_packs_epi16(terminators(p), terminators(p + 8)));
        if (mask != 0)
            return p + __builtin_ctz(static_cast<unsigned>(mask));
    }
#endif
    for (; end - p >= 4; p += 4) {
        uint64_t word;
        std::memcpy(&word, p, sizeof word);
        if (hasZeroUnit(word ^ (ONES * u'\n')) || hasZeroUnit(word ^ (ONES * u'\r')))
            break;
    }
    // Both terminators are below 0x0E, so most characters cost one comparison.
    while (p < end && (*p > u'\r' || (*p != u'\n' && *p != u'\r')))
        ++p;
    return p;
}

} // namespace qn::io::scan
