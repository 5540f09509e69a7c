// The search for the end of a line over UTF-16 units. With SSE2, 32 units are tested per round:
// each 16 are packed to bytes with unsigned saturation (LF and CR stay themselves, every unit
// above 0xFF becomes 0 or 0xFF), compared as bytes and reduced to one bit per unit, so that a
// match costs one branch. Without it, four units at a time in a 64-bit word, and the last few
// one by one.
#pragma once

#include <algorithm>
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

#ifdef QNCL_IO_SSE2
// One bit per unit of a (bits 0-7) and b (bits 8-15), set for LF and CR.
inline unsigned terminatorBits(__m128i a, __m128i b) {
    const __m128i bytes = _mm_packus_epi16(a, b);
    const __m128i hits = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')),
                                      _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r')));
    return static_cast<unsigned>(_mm_movemask_epi8(hits));
}

inline __m128i load(const char16_t* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

inline void store(char16_t* p, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}
#endif

// The first unit in [p, end) that is LF or CR, or end.
inline const char16_t* findLineEnd(const char16_t* p, const char16_t* end) {
#ifdef QNCL_IO_SSE2
    for (; end - p >= 32; p += 32) {
        const unsigned bits = terminatorBits(load(p), load(p + 8)) |
                              terminatorBits(load(p + 16), load(p + 24)) << 16;
        if (bits != 0)
            return p + __builtin_ctz(bits);
    }
    if (end - p >= 16) {
        const unsigned bits = terminatorBits(load(p), load(p + 8));
        if (bits != 0)
            return p + __builtin_ctz(bits);
        p += 16;
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

// The search and the copy of a line in one pass: copies the units of [p, end) to out up to the
// first LF or CR, in whole blocks of 32 or 16 while both the rest of the input and out's room
// (room units from out) hold one. Units after the terminator may be written too, never at or
// past out + room. Returns the terminator with found set, or, with found clear, the first unit
// not copied yet (no terminator before it), fewer than a block from end or from the room's end.
// Without SSE2 it copies nothing and returns p: the caller's unit-by-unit path does it all.
inline const char16_t* copyToLineEnd(const char16_t* p, const char16_t* end, char16_t* out,
                                     long room, bool& found) {
    found = false;
#ifdef QNCL_IO_SSE2
    const long fit = std::min<long>(end - p, room);
    const char16_t* const last = p + fit;
    for (; last - p >= 32; p += 32, out += 32) {
        const __m128i a = load(p), b = load(p + 8), c = load(p + 16), d = load(p + 24);
        store(out, a);
        store(out + 8, b);
        store(out + 16, c);
        store(out + 24, d);
        const unsigned bits = terminatorBits(a, b) | terminatorBits(c, d) << 16;
        if (bits != 0) {
            found = true;
            return p + __builtin_ctz(bits);
        }
    }
    if (last - p >= 16) {
        const __m128i a = load(p), b = load(p + 8);
        store(out, a);
        store(out + 8, b);
        const unsigned bits = terminatorBits(a, b);
        if (bits != 0) {
            found = true;
            return p + __builtin_ctz(bits);
        }
        p += 16;
    }
#else
    (void)end;
    (void)out;
    (void)room;
#endif
    return p;
}

} // namespace qn::io::scan
