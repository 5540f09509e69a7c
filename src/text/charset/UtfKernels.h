// The conversion loops of the UTF converters, as templates so that the converters, the
// benchmarks and the fuzzers run the same code. Each loop works on the caller's copies of the
// positions (i, o) and leaves them at the start of the unit it stopped at, or of the offending
// unit when it throws; runConvert stores them back in both cases.
//
// The UTF-8 loops have a fast form (Fast = true) that moves runs of ASCII a block at a time:
// sixteen units at a time with SSE2, a machine word at a time elsewhere (the 32-bit target);
// with SSE2, runs of two-byte sequences go eight or four at a time too. It
// must agree with the simple form byte for byte and position for position.
#pragma once

#include "qn/core/Exception.h"

#include "SimdLevel.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

// QNCL_UTF_PORTABLE asks for the word-at-a-time blocks where SSE2 exists too (the fuzzer holds
// that path to the simple loops on the build machine).
#if !defined(QNCL_UTF_PORTABLE) && (defined(__SSE2__) || defined(_M_X64))
#include <emmintrin.h>
#define QNCL_UTF_SSE2 1
#endif

namespace qn::text::charset::utf {

// Runs body(i, o) over copies of the positions and stores them back, also when body throws.
// The result is the number of output units written.
template <class Body> long runConvert(long* inPos, long* outPos, Body&& body) {
    long i = *inPos;
    long o = *outPos;
    try {
        body(i, o);
    } catch (...) {
        *inPos = i;
        *outPos = o;
        throw;
    }
    const long written = o - *outPos;
    *inPos = i;
    *outPos = o;
    return written;
}

inline bool isHighSurrogate(uint32_t unit) {
    return unit - 0xD800u < 0x400u;
}
inline bool isLowSurrogate(uint32_t unit) {
    return unit - 0xDC00u < 0x400u;
}
inline bool isSurrogate(uint32_t value) {
    return value - 0xD800u < 0x800u;
}

[[noreturn]] inline void throwInvalid(const STRUCT_QN_STR_LIT_INFO& message) {
    throw InvalidCharacterException(String(message));
}

// The pairing step of the encoders that combine surrogates. False when unit is a high surrogate
// that is now pending (consumed, nothing to write); otherwise value is the code point to write.
// A pending surrogate not followed by a low one is dropped and the unit refused.
inline bool pairSurrogates(char16_t unit, char16_t& pending, uint32_t& value) {
    if (pending != 0) {
        if (!isLowSurrogate(unit)) {
            pending = 0;
            throwInvalid(QN_STR_LIT(u"leading surrogate without trailing"));
        }
        value = (static_cast<uint32_t>(pending) << 10) + unit - 0x35FDC00u;
        pending = 0;
        return true;
    }
    if (isHighSurrogate(unit)) {
        pending = unit;
        return false;
    }
    value = unit;
    return true;
}

// Writes one decoded code point at out[o]: nothing when the output is full; above U+FFFF a
// surrogate pair (two free units needed), or for U+110000 and above the substitution run
// (substitute(out, o, outEnd) writes it, or says stop, or throws); a value in the surrogate
// range throws InvalidCharacterException with message. False: stop before this code point.
template <class Substitute>
bool writeDecoded(uint32_t value, char16_t* out, long& o, long outEnd, Substitute& substitute,
                  const STRUCT_QN_STR_LIT_INFO& message) {
    if (o >= outEnd)
        return false;
    if (value <= 0xFFFFu) {
        if (isSurrogate(value))
            throwInvalid(message);
        out[o++] = static_cast<char16_t>(value);
        return true;
    }
    if (value >= 0x110000u)
        return substitute(out, o, outEnd);
    if (outEnd - o < 2)
        return false;
    out[o] = static_cast<char16_t>(((value - 0x10000u) >> 10) + 0xD800u);
    out[o + 1] = static_cast<char16_t>((value & 0x3FFu) + 0xDC00u);
    o += 2;
    return true;
}

// flush of the encoders that pair surrogates: a pending high surrogate is dropped and refused.
inline long flushPending(char16_t& pending) {
    if (pending != 0) {
        pending = 0;
        throwInvalid(QN_STR_LIT(u"leading surrogate without trailing"));
    }
    return 0;
}

// The sequence length of each lead byte; 0 for bytes that never lead.
struct Utf8Lengths {
    uint8_t length[256];
    constexpr Utf8Lengths() : length() {
        for (int b = 0; b < 256; ++b)
            length[b] = b < 0x80   ? 1
                        : b < 0xC2 ? 0
                        : b < 0xE0 ? 2
                        : b < 0xF0 ? 3
                        : b < 0xF5 ? 4
                                   : 0;
    }
};
inline constexpr Utf8Lengths UTF8_LENGTHS{};

inline bool isContinuation(uint32_t byte) {
    return byte - 0x80u < 0x40u;
}

// Widens the ASCII run at in[i] into out[o] while both have room.
inline void widenAscii(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o,
                       long outEnd) {
    const long n = std::min(inEnd - i, outEnd - o);
    const uint8_t* from = in + i;
    char16_t* to = out + o;
    long k = 0;
#ifdef QNCL_UTF_SSE2
    const __m128i zero = _mm_setzero_si128();
    for (; k + 16 <= n; k += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k));
        if (_mm_movemask_epi8(bytes) != 0)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k + 8), _mm_unpackhi_epi8(bytes, zero));
    }
#else
    constexpr uintptr_t highBits = static_cast<uintptr_t>(0x8080808080808080ull);
    for (; k + static_cast<long>(sizeof(uintptr_t)) <= n; k += sizeof(uintptr_t)) {
        uintptr_t word;
        std::memcpy(&word, from + k, sizeof word);
        if ((word & highBits) != 0)
            break;
        for (size_t j = 0; j < sizeof word; ++j)
            to[k + j] = from[k + j];
    }
#endif
    while (k < n && from[k] < 0x80) {
        to[k] = from[k];
        ++k;
    }
    i += k;
    o += k;
}

// Narrows the ASCII run at in[i] into out[o] while both have room.
inline void narrowAscii(const char16_t* in, long& i, long inEnd, uint8_t* out, long& o,
                        long outEnd) {
    const long n = std::min(inEnd - i, outEnd - o);
    const char16_t* from = in + i;
    uint8_t* to = out + o;
    long k = 0;
#ifdef QNCL_UTF_SSE2
    const __m128i nonAscii = _mm_set1_epi16(static_cast<short>(0xFF80));
    const __m128i zero = _mm_setzero_si128();
    for (; k + 16 <= n; k += 16) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k + 8));
        const __m128i outside = _mm_and_si128(_mm_or_si128(low, high), nonAscii);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(outside, zero)) != 0xFFFF)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k), _mm_packus_epi16(low, high));
    }
#else
    constexpr uint64_t highBits = 0xFF80FF80FF80FF80ull;
    for (; k + 4 <= n; k += 4) {
        uint64_t word;
        std::memcpy(&word, from + k, sizeof word);
        if ((word & highBits) != 0)
            break;
        for (long j = 0; j < 4; ++j)
            to[k + j] = static_cast<uint8_t>(from[k + j]);
    }
#endif
    while (k < n && from[k] < 0x80) {
        to[k] = static_cast<uint8_t>(from[k]);
        ++k;
    }
    i += k;
    o += k;
}

#ifdef QNCL_UTF_SSE2

// The two-byte blocks below take a whole block, its first half or nothing. A block that ended
// where its run does would make each step's start wait for the previous block's count; fixed
// sizes keep the next step a predictable branch.

// True when the sixteen bytes at from are all ASCII.
inline bool isAsciiBlock(const uint8_t* from) {
    return _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))) == 0;
}

// Decodes the sixteen bytes at from into eight units when they are eight two-byte sequences
// (lead 0xC2-0xDF, then a continuation byte), else their first half into four units when that
// is four of them (a shorter word); says how many sequences it took: 8, 4 or 0.
inline int decodeTwoByteBlock(const uint8_t* from, char16_t* to) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    // Even bytes must be 0xC2-0xDF, odd ones 0x80-0xBF: an unsigned range test per byte, done
    // as a signed compare after moving the range to the bottom of the signed bytes.
    const __m128i start = _mm_set1_epi16(static_cast<short>(0x80C2));
    const __m128i bound = _mm_set1_epi16(static_cast<short>(0xC09E)); // 0x40, 0x1E less 0x80
    const __m128i shifted = _mm_xor_si128(_mm_sub_epi8(bytes, start), _mm_set1_epi8(-128));
    const unsigned inRange =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_cmplt_epi8(shifted, bound)));
    if ((inRange & 0xFFu) != 0xFFu)
        return 0;
    const __m128i lead = _mm_slli_epi16(_mm_and_si128(bytes, _mm_set1_epi16(0x1F)), 6);
    const __m128i trail = _mm_and_si128(_mm_srli_epi16(bytes, 8), _mm_set1_epi16(0x3F));
    const __m128i units = _mm_or_si128(lead, trail);
    if (inRange != 0xFFFFu) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), units);
        return 4;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), units);
    return 8;
}
#endif

// One stretch of the fast decoding loop, below limit (see decodeUtf8Common). True when the
// stretch is used up (i == limit) or stops before a long ASCII run; false before a sequence that
// the simple loop must take.
inline bool decodeUtf8Stretch(const uint8_t* in, long& i, long limit, long inEnd, char16_t* out,
                              long& o) {
    while (i < limit) {
        const uint32_t b0 = in[i];
        if (b0 < 0x80) {
            // A block pays only for a run longer than a short word. Below limit - 16 a block of
            // sixteen bytes is readable and its units fit.
            if (limit - i >= 16 && ((in[i + 1] | in[i + 2] | in[i + 3] | in[i + 4]) & 0x80u) == 0) {
#ifdef QNCL_UTF_SSE2
                // A run shorter than a block goes here; widenAscii would leave the stretch
                // for it and come back.
                if (!isAsciiBlock(in + i)) {
                    do {
                        out[o++] = in[i++];
                    } while (in[i] < 0x80);
                    continue;
                }
#endif
                return true;
            }
            out[o++] = static_cast<char16_t>(b0);
            ++i;
            continue;
        }
        const uint32_t b1 = in[i + 1];
        if (b0 - 0xC2u < 0x1Eu && isContinuation(b1)) {
#ifdef QNCL_UTF_SSE2
            // Eight (or four) sequences at a time while a run of them lasts (a word of Cyrillic
            // or Greek).
            if (limit - i >= 16 && in[i + 2] - 0xC2u < 0x1Eu) {
                int taken = decodeTwoByteBlock(in + i, out + o);
                if (taken != 0) {
                    for (;;) {
                        i += 2 * taken;
                        o += taken;
                        if (taken != 8 || limit - i < 16)
                            break;
                        taken = decodeTwoByteBlock(in + i, out + o);
                    }
                    continue;
                }
            }
#endif
            // Two-byte sequences come in runs (Cyrillic, Greek, Hebrew, Arabic): take the next
            // one in the same step when it is there.
            const uint32_t b2 = in[i + 2];
            const uint32_t b3 = in[i + 3];
            out[o] = static_cast<char16_t>((b0 << 6) + b1 - 0x3080u);
            if (b2 - 0xC2u < 0x1Eu && isContinuation(b3)) {
                out[o + 1] = static_cast<char16_t>((b2 << 6) + b3 - 0x3080u);
                o += 2;
                i += 4;
            } else {
                o += 1;
                i += 2;
            }
            continue;
        }
        const uint32_t b2 = in[i + 2];
        if ((b0 & 0xF0u) == 0xE0u && isContinuation(b1) && isContinuation(b2)) {
            const uint32_t value = (((b0 << 6) + b1) << 6) + b2 - 0xE2080u;
            if (isSurrogate(value))
                return false;
            out[o++] = static_cast<char16_t>(value);
            i += 3;
            // Three-byte sequences come in runs too (CJK): one more in the same step.
            if (inEnd - i >= 3 && (in[i] & 0xF0u) == 0xE0u && isContinuation(in[i + 1]) &&
                isContinuation(in[i + 2])) {
                const uint32_t next = (((in[i] << 6u) + in[i + 1]) << 6u) + in[i + 2] - 0xE2080u;
                if (!isSurrogate(next)) {
                    out[o++] = static_cast<char16_t>(next);
                    i += 3;
                }
            }
            continue;
        }
        const uint32_t b3 = in[i + 3];
        if (b0 - 0xF0u < 5u && b1 - 0x80u < 0x30u && isContinuation(b2) && isContinuation(b3)) {
            const uint32_t value =
                (((((b0 << 6) + b1) << 6) + b2) << 6) + b3 - 0x3C82080u - 0x10000u;
            if (value >= 0x100000u)
                return false;
            out[o] = static_cast<char16_t>((value >> 10) + 0xD800u);
            out[o + 1] = static_cast<char16_t>((value & 0x3FFu) + 0xDC00u);
            o += 2;
            i += 4;
            continue;
        }
        return false;
    }
    return true;
}

#if defined(QNCL_UTF_SSE2) && defined(QNCL_SIMD_BLOCKS)
#define QNCL_UTF8_DECODE_BLOCKS 1
// Utf8DecodeBlocks.cpp (in qncl6): the same work as the loop below, 64 bytes of mixed text at a
// time, on processors with SSSE3, SSE4.1 and POPCNT (nothing elsewhere); it also writes U+FFFD
// for bytes that start no sequence, as the simple loop does. It stops before a sequence that
// needs the simple loop, or within 96 bytes of the input's end or 96 units of the output's end,
// and may use the output below outEnd as scratch past the units it writes. level is what
// utf8BlockLevel() allows or less: 1 takes 128-bit steps, 2 256-bit ones where they are built,
// 3 those and dense steps for text of two- and three-byte sequences. 1 and 2 stop at the same place
// with the same units; 3 may stop elsewhere on the same way through the text.
void decodeUtf8Blocks(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o, long outEnd,
                      int level);

inline int utf8BlockLevel() {
#ifdef QNCL_SIMD_WIDE
    if (simdLevel() == 2 && fastBitDeposit())
        return 3;
#endif
    return simdLevel();
}
#endif

// The fast form's inner loop: stretch by stretch, takes ASCII (a block at a time where it can)
// and well-formed sequences whose value needs neither substitution nor an exception, and leaves
// everything else to the simple loop. The positions live in locals here: stores through the
// output must not force them to memory.
inline void decodeUtf8Common(const uint8_t* in, long& inPos, long inEnd, char16_t* out,
                             long& outPos, long outEnd) {
    long i = inPos;
    long o = outPos;
#ifdef QNCL_UTF8_DECODE_BLOCKS
    decodeUtf8Blocks(in, i, inEnd, out, o, outEnd, utf8BlockLevel());
#endif
    for (;;) {
        // A sequence writes no more units than it has bytes, so below limit every sequence is
        // readable in full and its result fits, with no other bound check.
        const long limit = i + std::min(inEnd - i - 3, outEnd - o - 1);
        if (limit <= i)
            break;
        if (!decodeUtf8Stretch(in, i, limit, inEnd, out, o))
            break;
        if (i < limit)
            widenAscii(in, i, inEnd, out, o, outEnd);
    }
    inPos = i;
    outPos = o;
}

// The simple loop's reading of the sequence at from, whose length bytes (from its lead's entry in
// UTF8_LENGTHS) are all readable: its value and the bytes it takes, or U+FFFD and one byte for
// a byte that starts no sequence.
inline int readUtf8(const uint8_t* from, int length, uint32_t& value) {
    const uint32_t b0 = from[0];
    switch (length) {
    case 1:
        value = b0;
        return 1;
    case 2:
        if (isContinuation(from[1])) {
            value = (b0 << 6) + from[1] - 0x3080u;
            return 2;
        }
        break;
    case 3:
        if (isContinuation(from[1]) && isContinuation(from[2])) {
            value = (((b0 << 6) + from[1]) << 6) + from[2] - 0xE2080u;
            return 3;
        }
        break;
    case 4:
        // 0x80-0xAF only: the second byte of a four-byte form.
        if (from[1] - 0x80u < 0x30u && isContinuation(from[2]) && isContinuation(from[3])) {
            value = (((((b0 << 6) + from[1]) << 6) + from[2]) << 6) + from[3] - 0x3C82080u;
            return 4;
        }
        break;
    default:
        break;
    }
    value = 0xFFFD;
    return 1;
}

// UTF-8 to UTF-16 (the rules are listed in BTCUTF8.h).
template <bool Fast, class Substitute>
void decodeUtf8(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o, long outEnd,
                Substitute&& substitute) {
    while (i < inEnd) {
        if constexpr (Fast) {
            decodeUtf8Common(in, i, inEnd, out, o, outEnd);
            if (i >= inEnd)
                return;
        }
        const int length = UTF8_LENGTHS.length[in[i]];
        if (length > inEnd - i)
            return;
        uint32_t value;
        const int used = readUtf8(in + i, length, value);
        if (!writeDecoded(value, out, o, outEnd, substitute,
                          QN_STR_LIT(u"Invalid UTF-8 sequence (decoded chars in surrogate range)")))
            return;
        i += used;
    }
}

inline void writeTwo(uint32_t unit, uint8_t* to) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    // One store instead of two.
    const auto bytes = static_cast<uint16_t>(0x80C0u | (unit >> 6) | ((unit & 0x3Fu) << 8));
    std::memcpy(to, &bytes, 2);
#else
    to[0] = static_cast<uint8_t>(0xC0u | (unit >> 6));
    to[1] = static_cast<uint8_t>(0x80u | (unit & 0x3Fu));
#endif
}

inline void writeThree(uint32_t unit, uint8_t* to) {
    to[0] = static_cast<uint8_t>(0xE0u | (unit >> 12));
    to[1] = static_cast<uint8_t>(0x80u | ((unit >> 6) & 0x3Fu));
    to[2] = static_cast<uint8_t>(0x80u | (unit & 0x3Fu));
}

#ifdef QNCL_UTF_SSE2
// True when the sixteen units at from are all ASCII.
inline bool isAsciiBlock(const char16_t* from) {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 8));
    const __m128i outside =
        _mm_and_si128(_mm_or_si128(low, high), _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(outside, _mm_setzero_si128())) == 0xFFFF;
}

// Encodes the eight units at from as sixteen bytes when all are 0x80-0x7FF, else the first four
// as eight bytes when those are; says how many units it took: 8, 4 or 0.
inline int encodeTwoByteBlock(const char16_t* from, uint8_t* to) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    // unit - 0x80 below 0x780, unsigned, as a signed compare with the range moved down.
    const __m128i shifted = _mm_xor_si128(_mm_sub_epi16(units, _mm_set1_epi16(0x80)),
                                          _mm_set1_epi16(static_cast<short>(0x8000)));
    const __m128i inRange = _mm_cmplt_epi16(shifted, _mm_set1_epi16(static_cast<short>(0x8780)));
    const unsigned inside = static_cast<unsigned>(_mm_movemask_epi8(inRange));
    if ((inside & 0xFFu) != 0xFFu)
        return 0;
    // Little-endian lanes: the lead byte 0xC0 | unit >> 6 first, then 0x80 | (unit & 0x3F).
    const __m128i bytes =
        _mm_or_si128(_mm_or_si128(_mm_srli_epi16(units, 6),
                                  _mm_slli_epi16(_mm_and_si128(units, _mm_set1_epi16(0x3F)), 8)),
                     _mm_set1_epi16(static_cast<short>(0x80C0)));
    if (inside != 0xFFFFu) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), bytes);
        return 4;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
    return 8;
}
#endif

// Encodes the unit at in[i] into out[o], together with the low surrogate after it when it is a
// high one and the pair lies below end; false, taking nothing, for any other surrogate (the
// simple loop's business). The caller makes sure that three bytes a unit fit.
inline bool encodeUtf8Unit(const char16_t* in, long& i, long end, uint8_t* out, long& o) {
    const uint32_t unit = in[i];
    if (unit < 0x80) {
        out[o++] = static_cast<uint8_t>(unit);
        ++i;
    } else if (unit < 0x800) {
        writeTwo(unit, out + o);
        o += 2;
        ++i;
    } else if (!isSurrogate(unit)) {
        writeThree(unit, out + o);
        o += 3;
        ++i;
    } else if (isHighSurrogate(unit) && i + 1 < end && isLowSurrogate(in[i + 1])) {
        const uint32_t value = (unit << 10) + in[i + 1] - 0x35FDC00u;
        out[o] = static_cast<uint8_t>(0xF0u | (value >> 18));
        out[o + 1] = static_cast<uint8_t>(0x80u | ((value >> 12) & 0x3Fu));
        out[o + 2] = static_cast<uint8_t>(0x80u | ((value >> 6) & 0x3Fu));
        out[o + 3] = static_cast<uint8_t>(0x80u | (value & 0x3Fu));
        o += 4;
        i += 2;
    } else {
        return false;
    }
    return true;
}

// The fast form's inner loop, with no surrogate pending: takes ASCII (a block at a time where it
// can), every unit outside the surrogate range and whole pairs, as long as the output has room
// for anything, and leaves everything else to the simple loop. A unit writes at most three
// bytes (a pair four for two units), so a stretch of min(units left, free bytes / 3) units runs
// with no other bound check. The positions live in locals, as above.
inline void encodeUtf8Common(const char16_t* in, long& inPos, long inEnd, uint8_t* out,
                             long& outPos, long outEnd) {
    long i = inPos;
    long o = outPos;
    for (;;) {
        const long end = i + std::min(inEnd - i, (outEnd - o) / 3);
        if (end == i)
            break;
        while (i < end) {
            const uint32_t unit = in[i];
            // The ASCII test reads sixteen units and a two-byte block eight, writing at most
            // sixteen bytes: within the stretch when that many units of it are left.
            if (unit < 0x80) {
                if (end - i >= 16 &&
                    ((in[i + 1] | in[i + 2] | in[i + 3] | in[i + 4]) & 0xFF80u) == 0) {
#ifdef QNCL_UTF_SSE2
                    // A run shorter than a block goes here, as in decoding.
                    if (!isAsciiBlock(in + i)) {
                        do {
                            out[o++] = static_cast<uint8_t>(in[i++]);
                        } while (in[i] < 0x80);
                        continue;
                    }
#endif
                    break;
                }
                out[o++] = static_cast<uint8_t>(unit);
                ++i;
                continue;
            }
#ifdef QNCL_UTF_SSE2
            if (unit < 0x800 && end - i >= 8 && in[i + 1] - 0x80u < 0x780u) {
                int taken = encodeTwoByteBlock(in + i, out + o);
                if (taken != 0) {
                    for (;;) {
                        i += taken;
                        o += 2 * taken;
                        if (taken != 8 || end - i < 8)
                            break;
                        taken = encodeTwoByteBlock(in + i, out + o);
                    }
                    continue;
                }
            }
#endif
            if (!encodeUtf8Unit(in, i, end, out, o)) {
                inPos = i;
                outPos = o;
                return;
            }
        }
        // A stretch ends used up, or before a long ASCII run that goes a block at a time.
        if (i < end)
            narrowAscii(in, i, inEnd, out, o, outEnd);
    }
    inPos = i;
    outPos = o;
}

// On x86-64 the encoder also has SSE4.1 and AVX2 blocks, compiled apart and chosen at run time.
#if defined(QNCL_UTF_SSE2) && defined(QNCL_SIMD_BLOCKS)
#define QNCL_UTF_ENCODE_BLOCKS 1
// Utf8EncodeBlocks.cpp: the same contract as encodeUtf8Common, eight units a step in SSSE3 and
// SSE4.1 whatever their mix (level 1), and sixteen in AVX2 (level 2, Linux only); it takes a
// level simdLevel() allows.
void encodeUtf8Blocks(const char16_t* in, long& inPos, long inEnd, uint8_t* out, long& outPos,
                      long outEnd, int level);
#endif

// UTF-16 to UTF-8 (the rules are listed in CTBUTF8.h); pending is the encoder's pending high
// surrogate. Blocks caps the level of the blocks the fast form may use (0: encodeUtf8Common only;
// the fuzzers hold every level to the simple form).
template <bool Fast, int Blocks = 2>
void encodeUtf8(const char16_t* in, long& i, long inEnd, uint8_t* out, long& o, long outEnd,
                char16_t& pending) {
    while (i < inEnd) {
        if constexpr (Fast) {
            if (pending == 0) {
#ifdef QNCL_UTF_ENCODE_BLOCKS
                const int level = std::min(Blocks, simdLevel());
                if (level > 0)
                    encodeUtf8Blocks(in, i, inEnd, out, o, outEnd, level);
                else
#endif
                    encodeUtf8Common(in, i, inEnd, out, o, outEnd);
                if (i >= inEnd)
                    return;
            }
        }
        uint32_t value;
        if (!pairSurrogates(in[i], pending, value)) {
            ++i;
            continue;
        }
        int length = value < 0x80u ? 1 : value < 0x800u ? 2 : value < 0x10000u ? 3 : 4;
        if (value >= 0x200000u) {
            value = 0xFFFD;
            length = 3;
        }
        // A completed pair that does not fit leaves its low surrogate for the next call, with
        // the high one already forgotten.
        if (outEnd - o < length)
            return;
        static constexpr uint8_t LEAD[5] = {0, 0x00, 0xC0, 0xE0, 0xF0};
        for (int k = length - 1; k > 0; --k) {
            out[o + k] = static_cast<uint8_t>(0x80u | (value & 0x3Fu));
            value >>= 6;
        }
        out[o] = static_cast<uint8_t>(LEAD[length] | value);
        o += length;
        ++i;
    }
}

// UTF-32 to UTF-16; order(raw) turns a unit read in host order into its value.
template <class Order, class Substitute>
void decodeUtf32(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o, long outEnd,
                 Order&& order, Substitute&& substitute) {
    while (inEnd - i >= 4) {
        uint32_t raw;
        std::memcpy(&raw, in + i, 4);
        if (!writeDecoded(order(raw), out, o, outEnd, substitute,
                          QN_STR_LIT(u"Illegal UTF-32 char in surrogate range")))
            return;
        i += 4;
    }
}

// UTF-16 to UTF-32; order(value) gives the unit to store in host order.
template <class Order>
void encodeUtf32(const char16_t* in, long& i, long inEnd, uint8_t* out, long& o, long outEnd,
                 char16_t& pending, Order&& order) {
    while (i < inEnd) {
        if (outEnd - o < 4)
            return;
        uint32_t value;
        if (pairSurrogates(in[i], pending, value)) {
            const uint32_t raw = order(value);
            std::memcpy(out + o, &raw, 4);
            o += 4;
        }
        ++i;
    }
}

// Fixed-width UTF-16 copies: min(whole input units, output room) units through order.
template <class Order>
void copyUtf16In(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o, long outEnd,
                 Order&& order) {
    const long count = std::max(0L, std::min((inEnd - i) / 2, outEnd - o));
    for (long k = 0; k < count; ++k) {
        char16_t unit;
        std::memcpy(&unit, in + i + 2 * k, 2);
        out[o + k] = order(unit);
    }
    i += 2 * count;
    o += count;
}

template <class Order>
void copyUtf16Out(const char16_t* in, long& i, long inEnd, uint8_t* out, long& o, long outEnd,
                  Order&& order) {
    const long count = std::max(0L, std::min(inEnd - i, (outEnd - o) / 2));
    for (long k = 0; k < count; ++k) {
        const char16_t unit = order(in[i + k]);
        std::memcpy(out + o + 2 * k, &unit, 2);
    }
    i += count;
    o += 2 * count;
}

inline char16_t sameOrder16(char16_t unit) {
    return unit;
}
inline char16_t swapOrder16(char16_t unit) {
    return static_cast<char16_t>((unit >> 8) | (unit << 8));
}
inline uint32_t sameOrder32(uint32_t unit) {
    return unit;
}
inline uint32_t swapOrder32(uint32_t unit) {
    return (unit >> 24) | ((unit >> 8) & 0xFF00u) | ((unit << 8) & 0xFF0000u) | (unit << 24);
}

} // namespace qn::text::charset::utf
