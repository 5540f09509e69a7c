// The loops of the single-byte converters, written once over a mapping: the bases call them with
// their virtual hook, the concrete converters with an inline mapping (and, where bytes
// 0x00-0x7F are ASCII itself, with runs of ASCII copied eight bytes or four units a step, or with
// SSE2 sixteen bytes a step whatever their mix; see TableBlocks). All give the same results and
// positions; the fuzzers compare them.
#pragma once

#include "qn/core/Exception.h"
#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

// QNCL_SB_PORTABLE keeps the word-at-a-time loops where SSE2 exists too.
#if !defined(QNCL_SB_PORTABLE) && (defined(__SSE2__) || defined(_M_X64))
#include <emmintrin.h>
#define QNCL_SB_SSE2 1
#endif

// On x86-64 code page 1252 and its kin also have an SSSE3 step, compiled apart and chosen at
// run time (SingleByteBlocks.cpp).
#include "SimdLevel.h"
#if defined(QNCL_SB_SSE2) && defined(QNCL_SIMD_BLOCKS)
#define QNCL_SB_SSSE3 1
#endif

namespace qn::text::charset::kernels {

#ifdef QNCL_SB_SSSE3
// The SSSE3 step of TableBlocks for a table whose bytes 0x00-0x7F and 0xA0-0xFF map to
// themselves: lookup holds, for the bytes 0x80-0x8F and then 0x90-0x9F, the low byte of each
// one's unit xor the byte itself, then the high bytes of their units. Same contract as
// TableBlocks' own step, except that it also stops before a byte mapping to U+FF00-U+FFFF.
// level is simdLevel(), at least 1.
void decodeLatin1UpperBlocks(const uint8_t (*lookup)[16], const unsigned char* bytes, long& i,
                             long inEnd, char16_t* out, long& o, long outEnd, int level);
#endif

// What a single-byte decoder does with an unmapped byte, from the converter's settings.
struct ByteSubstitution {
    bool mode;
    char16_t unit;
    int32_t length;
};

// The encoder's side.
struct CharSubstitution {
    bool mode;
    signed char byte;
    int32_t length;
};

inline ByteSubstitution settingsOf(const ByteToCharConverter& converter) {
    char16_t unit = 0xFFFD;
    converter.getSubstitutionChars(&unit, 1);
    return {converter.getSubstitutionMode(), unit,
            static_cast<int32_t>(converter.getSubstitutionChars(nullptr, 0))};
}

inline CharSubstitution settingsOf(const CharToByteConverter& converter) {
    signed char byte = 0x3F;
    converter.getSubstitutionBytes(&byte, 1);
    return {converter.getSubstitutionMode(), byte,
            static_cast<int32_t>(converter.getSubstitutionBytes(nullptr, 0))};
}

// The longest stretch mapped one by one before looking for ASCII words again.
constexpr long RUN = 64;

constexpr uint64_t HIGH_BITS_8 = 0x8080808080808080ULL;
// A unit above 0x7F, or above 0xFF, in any of four lanes.
constexpr uint64_t ASCII_16 = 0xFF80FF80FF80FF80ULL;
constexpr uint64_t LATIN1_16 = 0xFF00FF00FF00FF00ULL;

inline uint64_t load64(const void* p) {
    uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

inline bool isHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
inline bool isLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// Writes a character below U+110000 outside the surrogate range as one unit, or as a surrogate
// pair when it needs two slots; false, writing nothing, when they are not there.
inline bool writeCodePoint(uint32_t v, char16_t* out, long& o, long outEnd) {
    if (v <= 0xFFFF) {
        out[o++] = static_cast<char16_t>(v);
        return true;
    }
    if (outEnd - o < 2)
        return false;
    out[o++] = static_cast<char16_t>(((v - 0x10000) >> 10) + 0xD800);
    out[o++] = static_cast<char16_t>((v & 0x3FF) + 0xDC00);
    return true;
}

// Before an exception of an encoder that pairs surrogates, whose offending sequence began at
// input position at: back to that position with nothing pending when the sequence began in this
// call (at is not before the call's *inPos); when its high surrogate ended an earlier call,
// the position stays at this call's start with the surrogate still pending. *outPos becomes o.
inline void rewindPending(long at, char16_t& pending, long* inPos, long* outPos, long o) {
    if (at >= *inPos) {
        pending = 0;
        *inPos = at;
    }
    *outPos = o;
}

// Block steps for decode that take nothing: the word loop of ASCII runs is used instead.
struct NoBlocks {
    static constexpr bool ENABLED = false;
    void operator()(const unsigned char*, long&, long, char16_t*, long&, long) const {}
};

// Block steps of a decoding table whose bytes 0x00-0x7F map to themselves, and, with
// latin1Upper, the bytes 0xA0-0xFF as well (code page 1252). Sixteen bytes are widened a step
// and the lanes of the other bytes then looked up one by one, so text with a few letters
// outside ASCII still goes a block at a time. A step stops at the first byte that maps to
// nothing, leaving it for the per-byte loop; the units a step widened past that byte are
// scratch in the caller's free room and are written again. Without SSE2 it takes nothing.
// With latin1Upper and SSSE3 the 32 bytes 0x80-0x9F are looked up sixteen at a time in
// registers instead (decodeLatin1UpperBlocks).
struct TableBlocks {
#ifdef QNCL_SB_SSE2
    static constexpr bool ENABLED = true;
#else
    static constexpr bool ENABLED = false;
#endif
    const char16_t* table;
    bool latin1Upper;
#ifdef QNCL_SB_SSSE3
    int level;
    // The low and high bytes of the units of 0x80-0x9F, as decodeLatin1UpperBlocks takes them.
    alignas(16) uint8_t lookup[4][16];
#endif

    TableBlocks(const char16_t* table_, bool latin1Upper_)
        : table(table_), latin1Upper(latin1Upper_) {
#ifdef QNCL_SB_SSSE3
        level = latin1Upper ? simdLevel() : 0;
        if (level > 0) {
            // Once a call: units 0x80-0x9F split into their low and high bytes.
            __m128i units[4];
            for (int k = 0; k < 4; ++k)
                units[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table + 0x80 + 8 * k));
            const __m128i low = _mm_set1_epi16(0xFF);
            const __m128i lanes =
                _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
            for (int half = 0; half < 2; ++half) {
                const __m128i a = units[2 * half];
                const __m128i b = units[2 * half + 1];
                const __m128i values =
                    _mm_add_epi8(lanes, _mm_set1_epi8(static_cast<char>(0x80 + 0x10 * half)));
                _mm_store_si128(reinterpret_cast<__m128i*>(lookup[half]),
                                _mm_xor_si128(values, _mm_packus_epi16(_mm_and_si128(a, low),
                                                                       _mm_and_si128(b, low))));
                _mm_store_si128(reinterpret_cast<__m128i*>(lookup[2 + half]),
                                _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8)));
            }
        }
#endif
    }

    void operator()([[maybe_unused]] const unsigned char* bytes, [[maybe_unused]] long& i,
                    [[maybe_unused]] long inEnd, [[maybe_unused]] char16_t* out,
                    [[maybe_unused]] long& o, [[maybe_unused]] long outEnd) const {
#ifdef QNCL_SB_SSSE3
        if (level > 0) {
            decodeLatin1UpperBlocks(lookup, bytes, i, inEnd, out, o, outEnd, level);
            return;
        }
#endif
#ifdef QNCL_SB_SSE2
        const long n = std::min(inEnd - i, outEnd - o);
        const unsigned char* from = bytes + i;
        char16_t* to = out + o;
        const __m128i zero = _mm_setzero_si128();
        // Signed bytes below this bound are the ones to look up: 0x80-0x9F, or all of
        // 0x80-0xFF.
        const __m128i bound = _mm_set1_epi8(static_cast<char>(latin1Upper ? 0xA0 : 0x00));
        long k = 0;
        for (; k + 16 <= n; k += 16) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k), _mm_unpacklo_epi8(block, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + k + 8),
                             _mm_unpackhi_epi8(block, zero));
            auto lookUp = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmplt_epi8(block, bound)));
            while (lookUp != 0) {
                const int lane = __builtin_ctz(lookUp);
                const char16_t c = table[from[k + lane]];
                if (c == 0xFFFD) {
                    i += k + lane;
                    o += k + lane;
                    return;
                }
                to[k + lane] = c;
                lookUp &= lookUp - 1;
            }
        }
        i += k;
        o += k;
#endif
    }
};

// Decodes bytes in[i..] into out[o..] while both remain; Map gives a byte's character, U+FFFD
// when unmapped. ASCII_RUNS: bytes 0x00-0x7F map to themselves, so a word of eight of them is
// widened without looking them up, or blocks (see TableBlocks) take the text where they are
// enabled.
template <bool ASCII_RUNS, class Map, class Blocks = NoBlocks>
long decode(const Map& map, const ByteSubstitution& substitution, const signed char* in,
            long* inPos, long inEnd, char16_t* out, long* outPos, long outEnd,
            const Blocks& blocks = Blocks()) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(in);
    long i = *inPos;
    long o = *outPos;
    const long start = o;
    for (;;) {
        // Mapped bytes are stored straight away, in stretches of at most RUN so that a long
        // run of ASCII gets back to the word loop; the first unmapped byte falls through to the
        // per-byte step below.
        while (i < inEnd && o < outEnd) {
            if constexpr (Blocks::ENABLED) {
                blocks(bytes, i, inEnd, out, o, outEnd);
            } else if (ASCII_RUNS) {
                // The run of whole ASCII words, widened in one loop the compiler vectorises.
                const long limit = std::min(inEnd - i, outEnd - o);
                long run = 0;
                while (run + 8 <= limit && (load64(bytes + i + run) & HIGH_BITS_8) == 0)
                    run += 8;
                for (long k = 0; k < run; ++k)
                    out[o + k] = bytes[i + k];
                i += run;
                o += run;
            }
            const long limit = std::min({inEnd - i, outEnd - o, RUN});
            long k = 0;
            // Eight bytes are copied out first: the stores to out cannot then force the bytes
            // to be read again one by one.
            for (; k + 8 <= limit; k += 8) {
                unsigned char chunk[8];
                std::memcpy(chunk, bytes + i + k, sizeof chunk);
                int j = 0;
                for (; j < 8; ++j) {
                    const char16_t c = map(chunk[j]);
                    if (c == 0xFFFD)
                        break;
                    out[o + k + j] = c;
                }
                if (j < 8) {
                    k += j;
                    break;
                }
            }
            for (; k < limit; ++k) {
                const char16_t c = map(bytes[i + k]);
                if (c == 0xFFFD)
                    break;
                out[o + k] = c;
            }
            i += k;
            o += k;
            if (k < limit)
                break;
        }
        if (i >= inEnd || o >= outEnd)
            break;
        const char16_t c = map(bytes[i]);
        if (c != 0xFFFD) {
            out[o++] = c;
        } else if (!substitution.mode) {
            *inPos = i;
            *outPos = o;
            throw UnmappableCharacterException();
        } else if (substitution.length == 1) {
            out[o++] = substitution.unit;
        }
        ++i;
    }
    *inPos = i;
    *outPos = o;
    return o - start;
}

// Encodes units in[i..] into out[o..]; Map gives a unit's byte, 0 when unmapped. RUN_MASK, when
// not 0, marks the bits that no unit mapping to its own value has in any of four lanes (ASCII_16
// or LATIN1_16): a word of four such units is narrowed without looking them up.
template <uint64_t RUN_MASK, class Map>
long encode(const Map& map, const CharSubstitution& substitution, char16_t& pending,
            const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
            long outEnd) {
    long i = *inPos;
    long o = *outPos;
    const long start = o;
    const auto rewind = [&](long at) { rewindPending(at, pending, inPos, outPos, o); };
    for (;;) {
        // As in decode: mapped units are stored straight away, in stretches of at most RUN,
        // up to the first that maps to nothing (an unmappable character or a surrogate).
        while (pending == 0 && i < inEnd && o < outEnd) {
            if (RUN_MASK != 0) {
                // The run of whole words of units that are their own bytes, narrowed in one
                // loop the compiler vectorises.
                const long limit = std::min(inEnd - i, outEnd - o);
                long run = 0;
                while (run + 4 <= limit && (load64(in + i + run) & RUN_MASK) == 0)
                    run += 4;
                for (long k = 0; k < run; ++k)
                    out[o + k] = static_cast<signed char>(in[i + k]);
                i += run;
                o += run;
            }
            const long limit = std::min({inEnd - i, outEnd - o, RUN});
            long k = 0;
            for (; k < limit; ++k) {
                const char16_t c = in[i + k];
                const signed char b = map(c);
                if (b == 0 && c != 0)
                    break;
                out[o + k] = b;
            }
            i += k;
            o += k;
            if (k < limit)
                break;
        }
        if (i >= inEnd)
            break;
        const char16_t c = in[i];
        bool unmapped;
        signed char b = 0;
        if (pending != 0) {
            if (!isLowSurrogate(c)) {
                rewind(i - 1);
                throw InvalidCharacterException(String(u"leading surrogate without trailing"));
            }
            unmapped = true;
        } else {
            b = map(c);
            unmapped = b == 0 && c != 0;
            if (unmapped && isHighSurrogate(c)) {
                pending = c;
                ++i;
                continue;
            }
            if (unmapped && isLowSurrogate(c)) {
                rewind(i);
                throw InvalidCharacterException(String(u"trailing surrogate without leading"));
            }
        }
        if (unmapped) {
            if (!substitution.mode) {
                rewind(pending != 0 ? i - 1 : i);
                throw UnmappableCharacterException();
            }
            if (substitution.length == 1) {
                if (o >= outEnd)
                    break;
                out[o++] = substitution.byte;
            }
            pending = 0;
        } else {
            if (o >= outEnd)
                break;
            out[o++] = b;
        }
        ++i;
    }
    *inPos = i;
    *outPos = o;
    return o - start;
}

} // namespace qn::text::charset::kernels
