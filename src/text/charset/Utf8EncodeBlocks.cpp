// UTF-16 to UTF-8 eight units a step with SSSE3 and SSE4.1, for any mix of one-, two- and
// three-byte units and surrogate pairs, and sixteen with AVX2 (x86-64 only, AVX2 not on
// Windows; chosen at run time, once).
//
// What a step takes, from a window of at least sixteen units of the stretch (the stretch is
// encodeUtf8Common's: min(units left, free bytes / 3) units, so every store below lands inside
// the output, and a step reads no unit past the stretch):
// - an ASCII run of sixteen units or more, to its end through narrowAscii; eight ASCII units
//   before other ones, packed to eight bytes;
// - eight units all below U+0800 (Latin-1 text, Cyrillic, Greek, with their ASCII), then
//   sixteen at a time while the run lasts: each unit becomes one 16-bit lane holding its one or
//   two bytes, and one shuffle per eight, picked by which lanes need two bytes, squeezes out the
//   unused bytes;
// - eight units of any other mix without surrogates (CJK with its ASCII punctuation): each unit
//   becomes a 32-bit lane holding its one to three bytes, and one shuffle per half, picked by
//   each lane's length, squeezes them together;
// - eight units with surrogates, each half of a pair: as above, a high surrogate's lane holding
//   the first two of its pair's four bytes and the low one's the last two. A pair may straddle
//   two steps (the high surrogate last, its low one first in the next block): the next step
//   takes the high one from the previous block.
// A block holding a surrogate that is not half of a pair (a lone low one, a high one not
// followed by a low one) goes unit by unit through the same scalar step as encodeUtf8Common,
// which stops before such a surrogate for the simple loop; a pair straddling the step before
// goes again whole then. Shorter windows near the end of a stretch go unit by unit too.
//
// With AVX2 (encodeWideRun), blocks of sixteen units go in one step as long as 32 units of the
// stretch are left: packed when all ASCII (to the end of the run, without leaving the loop), as
// two-byte lanes when all below U+0800, else as 32-bit lanes whose bytes end at the lane's
// third byte: an ASCII unit keeps only that byte, a two-byte unit the last two, a three-byte
// unit all three. A pair's high surrogate keeps the first three of the pair's four bytes (its
// lane reads the unit after it, also across blocks, so a pair may straddle two steps) and its
// low one the last, its third byte. That takes fewer operations than the eight-unit lanes,
// where a low surrogate's lane needs bits of the unit before it. A pair left straddling when the
// wide steps stop goes again whole after them. The lanes' class bits are shuffled before their
// movemask so that it gives the offsets of the shuffle rows as they are, and each row holds the
// number of bytes it keeps: between the mask and the loads there are only the moves that split
// it in two.
//
// A step stores whole sixteen byte vectors: the bytes past the units it took are scratch the
// next step (or the caller's next write) overwrites; nothing is stored at or past outEnd.
#include "UtfKernels.h"

#ifdef QNCL_UTF_ENCODE_BLOCKS

#include <smmintrin.h>
#include <tmmintrin.h>
#ifdef QNCL_SIMD_WIDE
#include <immintrin.h>
#endif

namespace qn::text::charset::utf {

namespace {

// The shuffles that squeeze the lanes of a step together, with the number of bytes each keeps.
// twoByte[m]: eight 16-bit lanes, lane k keeps its second byte when bit k of m is set.
// mixed[m]: four 32-bit lanes, lane k keeps 1 + bit k + 2 * bit (k + 4) of m bytes (both bits
// set, four bytes, is not used).
struct EncodeShuffles {
    alignas(16) uint8_t twoByte[256][16];
    alignas(16) uint8_t mixed[256][16];
    uint8_t twoByteLength[256];
    uint8_t mixedLength[256];

    constexpr EncodeShuffles() : twoByte(), mixed(), twoByteLength(), mixedLength() {
        for (int m = 0; m < 256; ++m) {
            int n = 0;
            for (int k = 0; k < 8; ++k) {
                twoByte[m][n++] = static_cast<uint8_t>(2 * k);
                if ((m >> k) & 1)
                    twoByte[m][n++] = static_cast<uint8_t>(2 * k + 1);
            }
            twoByteLength[m] = static_cast<uint8_t>(n);
            for (; n < 16; ++n)
                twoByte[m][n] = 0x80;
            n = 0;
            for (int k = 0; k < 4; ++k) {
                const int length = 1 + ((m >> k) & 1) + 2 * ((m >> (k + 4)) & 1);
                for (int b = 0; b < length; ++b)
                    mixed[m][n++] = static_cast<uint8_t>(4 * k + b);
            }
            mixedLength[m] = static_cast<uint8_t>(n);
            for (; n < 16; ++n)
                mixed[m][n] = 0x80;
        }
    }
};

constexpr EncodeShuffles SHUFFLES{};

QNCL_SSE41 inline __m128i load(const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

QNCL_SSE41 inline void store(uint8_t* to, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
}

QNCL_SSE41 inline __m128i set16(int value) {
    return _mm_set1_epi16(static_cast<short>(value));
}

// All ones in the lanes of units that have none of mask's bits: ASCII with 0xFF80, below U+0800
// with 0xF800.
QNCL_SSE41 inline __m128i lanesWithout(__m128i units, int mask) {
    return _mm_cmpeq_epi16(_mm_and_si128(units, set16(mask)), _mm_setzero_si128());
}

// Eight units below U+0800 (ascii marks the ASCII lanes, asciiBits has one bit a lane for
// them): stores their bytes at to and says how many there are.
QNCL_SSE41 inline long encodeTwoByteLanes(__m128i units, __m128i ascii, unsigned asciiBits,
                                          uint8_t* to) {
    // Little-endian lanes: the lead byte 0xC0 | unit >> 6 first, then 0x80 | (unit & 0x3F).
    const __m128i two =
        _mm_or_si128(_mm_or_si128(_mm_srli_epi16(units, 6),
                                  _mm_slli_epi16(_mm_and_si128(units, set16(0x3F)), 8)),
                     set16(0x80C0));
    const unsigned index = ~asciiBits & 0xFFu;
    store(to, _mm_shuffle_epi8(_mm_blendv_epi8(two, units, ascii), load(SHUFFLES.twoByte[index])));
    return SHUFFLES.twoByteLength[index];
}

// The first two bytes (first) and the third (trail) of eight units, each as if it took three
// bytes if it takes three or more, two if two, one if one (ascii and below mark the lanes below
// U+0080 and U+0800).
QNCL_SSE41 inline void threeByteLanes(__m128i units, __m128i ascii, __m128i below, __m128i& first,
                                      __m128i& trail) {
    trail = _mm_or_si128(_mm_and_si128(units, set16(0x3F)), set16(0x80));
    const __m128i mid =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), set16(0x3F)), set16(0x80));
    const __m128i lead2 = _mm_or_si128(_mm_srli_epi16(units, 6), set16(0xC0));
    const __m128i lead3 = _mm_or_si128(_mm_srli_epi16(units, 12), set16(0xE0));
    first = _mm_blendv_epi8(_mm_or_si128(lead3, _mm_slli_epi16(mid, 8)),
                            _mm_or_si128(lead2, _mm_slli_epi16(trail, 8)), below);
    first = _mm_blendv_epi8(first, units, ascii);
}

// Stores the bytes of eight lanes at to and says how many there are: lane k has 1 + two[k] +
// 2 * three[k] bytes (all ones or zero in each mask), the first two in first, the third in trail.
QNCL_SSE41 inline long storeLanes(__m128i first, __m128i trail, __m128i two, __m128i three,
                                  uint8_t* to) {
    const unsigned lengths = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(two, three)));
    const unsigned index0 = (lengths & 0xFu) | ((lengths >> 4) & 0xF0u);
    const unsigned index1 = ((lengths >> 4) & 0xFu) | ((lengths >> 8) & 0xF0u);
    store(to, _mm_shuffle_epi8(_mm_unpacklo_epi16(first, trail), load(SHUFFLES.mixed[index0])));
    const long length0 = SHUFFLES.mixedLength[index0];
    store(to + length0,
          _mm_shuffle_epi8(_mm_unpackhi_epi16(first, trail), load(SHUFFLES.mixed[index1])));
    return length0 + SHUFFLES.mixedLength[index1];
}

// Eight units with no surrogate among them: stores their bytes at to, says how many there are.
QNCL_SSE41 inline long encodeThreeByteLanes(__m128i units, __m128i ascii, __m128i below,
                                            uint8_t* to) {
    __m128i first, trail;
    threeByteLanes(units, ascii, below, first, trail);
    return storeLanes(first, trail, _mm_andnot_si128(ascii, below),
                      _mm_xor_si128(below, _mm_set1_epi32(-1)), to);
}

// Eight units at from with surrogates among them (surrogate marks them; from[8] is readable):
// stores their bytes at to, sets written to their number and says true when each surrogate is
// half of a pair; else false, with nothing stored. last holds the previous step's units and
// lastHigh its high surrogates (the last lane's is the one of a pair straddling the steps); both
// are set for the next step.
QNCL_SSE41 inline bool encodeSurrogateLanes(const char16_t* from, __m128i units, __m128i ascii,
                                            __m128i below, __m128i surrogate, __m128i& last,
                                            __m128i& lastHigh, uint8_t* to, long& written) {
    const __m128i high = _mm_cmpeq_epi16(_mm_and_si128(units, set16(0xFC00)), set16(0xD800));
    const __m128i low = _mm_andnot_si128(high, surrogate);
    // The unit after each lane is a low surrogate exactly where the lane is a high one, and
    // the unit before each lane a high one exactly where the lane is a low one.
    const __m128i afterLow =
        _mm_cmpeq_epi16(_mm_and_si128(load(from + 1), set16(0xFC00)), set16(0xDC00));
    const __m128i mismatch = _mm_or_si128(_mm_xor_si128(high, afterLow),
                                          _mm_xor_si128(low, _mm_alignr_epi8(high, lastHigh, 14)));
    if (!_mm_testz_si128(mismatch, mismatch))
        return false;
    __m128i first, trail;
    threeByteLanes(units, ascii, below, first, trail);
    // The pair (h, l) is U+10000 + (h & 0x3FF) << 10 + (l & 0x3FF), and h + 0x40 has its
    // value >> 10 in its low eleven bits. Its four bytes go two to a lane: the high lane
    // 0xF0 | (h + 0x40) >> 8 & 7 and 0x80 | ((h + 0x40) >> 2 & 0x3F); the low one
    // 0x80 | (h & 3) << 4 | (l >> 6 & 0xF) and 0x80 | (l & 0x3F), its trail byte.
    const __m128i plus = _mm_add_epi16(units, set16(0x40));
    const __m128i highBytes =
        _mm_or_si128(_mm_or_si128(_mm_and_si128(_mm_srli_epi16(plus, 8), set16(7)),
                                  _mm_and_si128(_mm_slli_epi16(plus, 6), set16(0x3F00))),
                     set16(0x80F0));
    const __m128i prev = _mm_alignr_epi8(units, last, 14);
    const __m128i lowBytes =
        _mm_or_si128(_mm_or_si128(_mm_slli_epi16(_mm_and_si128(prev, set16(3)), 4),
                                  _mm_and_si128(_mm_srli_epi16(units, 6), set16(0xF))),
                     _mm_or_si128(_mm_slli_epi16(trail, 8), set16(0x80)));
    first = _mm_blendv_epi8(first, _mm_blendv_epi8(lowBytes, highBytes, high), surrogate);
    written = storeLanes(first, trail, _mm_or_si128(_mm_andnot_si128(ascii, below), surrogate),
                         _mm_xor_si128(_mm_or_si128(below, surrogate), _mm_set1_epi32(-1)), to);
    last = units;
    lastHigh = high;
    return true;
}

// The positions a run of steps ends at.
struct Positions {
    long i;
    long o;
};

#ifdef QNCL_SIMD_WIDE
// The rows of the wide steps: a shuffle and the number of bytes it keeps, at an offset the
// lanes' class bits give as they come out of a movemask, already shifted into place.
// quad: four 32-bit lanes whose bytes end at the third; lane k keeps one byte when bit 2k of the
// row's number is set, two when only bit 2k + 1 is, else three. That is twelve bytes at most, so
// the count is the row's last byte (the shuffle makes scratch of it).
// two: eight 16-bit lanes, lane k keeping its first byte when bit k is set, else both; the count
// is byte 16 of the row.
struct WideRows {
    alignas(64) uint8_t quad[256][16];
    alignas(64) uint8_t two[256][32];

    constexpr WideRows() : quad(), two() {
        for (int m = 0; m < 256; ++m) {
            int n = 0;
            for (int k = 0; k < 4; ++k) {
                const int kept = (m >> (2 * k)) & 1 ? 1 : (m >> (2 * k + 1)) & 1 ? 2 : 3;
                for (int b = 3 - kept; b < 3; ++b)
                    quad[m][n++] = static_cast<uint8_t>(4 * k + b);
            }
            quad[m][15] = static_cast<uint8_t>(n);
            for (; n < 15; ++n)
                quad[m][n] = 0x80;
            n = 0;
            for (int k = 0; k < 8; ++k) {
                two[m][n++] = static_cast<uint8_t>(2 * k);
                if (!((m >> k) & 1))
                    two[m][n++] = static_cast<uint8_t>(2 * k + 1);
            }
            two[m][16] = static_cast<uint8_t>(n);
            for (; n < 16; ++n)
                two[m][n] = 0x80;
        }
    }
};

constexpr WideRows WIDE_ROWS{};

// value in every 16-bit lane, hidden (see SimdLevel.h).
QNCL_AVX2 inline __m256i hiddenLanes(int value) {
    return hidden(_mm256_set1_epi16(static_cast<short>(value)));
}

// The same byte shuffle in both halves, hidden.
QNCL_AVX2 inline __m256i hiddenShuffle(const int8_t (&bytes)[16]) {
    const __m128i half = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    return hidden(_mm256_broadcastsi128_si256(half));
}

// Where the class bits of a half's lanes go before its movemask, so that the mask holds the
// offsets of the rows in WIDE_ROWS: the first byte of each 16-bit lane (ASCII or not) to bits
// 5-12 for the two-byte rows; for the quads, a lane's byte of the first argument of packs and
// then its byte of the second to bits 4-11, lanes 0-3 in quadEven and 4-7 in quadOdd.
constexpr int8_t TWO_SPREAD[16] = {-1, -1, -1, -1, -1, 0, 2, 4, 6, 8, 10, 12, 14, -1, -1, -1};
constexpr int8_t QUAD_EVEN_SPREAD[16] = {-1, -1, -1, -1, 0, 8, 1, 9, 2, 10, 3, 11, -1, -1, -1, -1};
constexpr int8_t QUAD_ODD_SPREAD[16] = {-1, -1, -1, -1, 4, 12, 5, 13, 6, 14, 7, 15, -1, -1, -1, -1};

// The constants of the wide steps, made once before the loop and hidden from the compiler,
// which would otherwise build each anew in the loop from a general register (three
// instructions) where a register or a load from the stack takes none or one.
struct WideConstants {
    __m256i nonAscii, notBelow, bits6, byte80, highTag, surrogateMask, pairBase, threeLead, twoLead,
        fourLead, mid, twoBytes, twoSpread, quadEven, quadOdd;

    QNCL_AVX2 WideConstants()
        : nonAscii(hiddenLanes(0xFF80)), notBelow(hiddenLanes(0xF800)), bits6(hiddenLanes(0x3F)),
          byte80(hiddenLanes(0x80)), highTag(hiddenLanes(0xD800)),
          surrogateMask(hiddenLanes(0xFC00)), pairBase(hiddenLanes(0x90)),
          threeLead(hiddenLanes(0x80E0)), twoLead(hiddenLanes(0xC0E0)),
          fourLead(hiddenLanes(0x0018)), mid(hiddenLanes(0x3F00)), twoBytes(hiddenLanes(0x80C0)),
          twoSpread(hiddenShuffle(TWO_SPREAD)), quadEven(hiddenShuffle(QUAD_EVEN_SPREAD)),
          quadOdd(hiddenShuffle(QUAD_ODD_SPREAD)) {}
};

QNCL_AVX2 inline __m256i rows(const uint8_t* low, const uint8_t* high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(load(low)), load(high), 1);
}

// Stores the bytes of sixteen 32-bit lanes whose bytes end at the third, b0 and b1 in first and
// b2 in trail, at out[o]: lane k keeps one byte where one has it, two where only short_ has it,
// else three. Says where the bytes end.
QNCL_AVX2 inline long storeQuads(__m256i first, __m256i trail, __m256i one, __m256i short_,
                                 const WideConstants& c, uint8_t* out, long o) {
    const __m256i classes = _mm256_packs_epi16(one, short_);
    const uint32_t even =
        static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_shuffle_epi8(classes, c.quadEven)));
    const uint32_t odd =
        static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_shuffle_epi8(classes, c.quadOdd)));
    const uint8_t* base = &WIDE_ROWS.quad[0][0];
    const uint8_t* row0 = base + (even & 0xFFFFu);
    const uint8_t* row1 = base + (odd & 0xFFFFu);
    const uint8_t* row2 = base + (even >> 16);
    const uint8_t* row3 = base + (odd >> 16);
    // unpacklo holds units 0-3 and 8-11, unpackhi 4-7 and 12-15.
    const __m256i lowQuads =
        _mm256_shuffle_epi8(_mm256_unpacklo_epi16(first, trail), rows(row0, row2));
    const __m256i highQuads =
        _mm256_shuffle_epi8(_mm256_unpackhi_epi16(first, trail), rows(row1, row3));
    store(out + o, _mm256_castsi256_si128(lowQuads));
    o += row0[15];
    store(out + o, _mm256_castsi256_si128(highQuads));
    o += row1[15];
    store(out + o, _mm256_extracti128_si256(lowQuads, 1));
    o += row2[15];
    store(out + o, _mm256_extracti128_si256(highQuads, 1));
    return o + row3[15];
}

// Sixteen units a step, any mix, from in[i] into out[o] while at least 32 units of the stretch
// are left (see the top of the file). Stops before a block with a surrogate that is not half of
// a pair, for the eight-unit steps. Positions come and go by value: a reference would put them
// in memory.
QNCL_AVX2 __attribute__((noinline)) Positions encodeWideRun(const char16_t* in, long i, long end,
                                                            uint8_t* out, long o) {
    const __m256i zero = _mm256_setzero_si256();
    const WideConstants c;
    const char16_t* from = in + i;
    const char16_t* const last = in + end - 32;
    // 3 (the movemask bits of a lane) while the last step took a high surrogate as its last
    // unit, else 0. Its low one begins the next block (checked), which so goes to the surrogate
    // step, whatever else it holds.
    uint32_t carry = 0;
    while (from <= last) {
        const __m256i units = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
        const __m256i ascii = _mm256_cmpeq_epi16(_mm256_and_si256(units, c.nonAscii), zero);
        if (_mm256_testz_si256(units, c.notBelow)) {
            // All below U+0800: one or two bytes a lane, as in encodeTwoByteLanes, eight lanes
            // to each half of the register. ASCII blocks are packed here, sixteen units at a
            // time to the end of their run: leaving for the ASCII loop and coming back would
            // cost more than the packing where runs are a few blocks long.
            const uint32_t asciiBits = static_cast<uint32_t>(
                _mm256_movemask_epi8(_mm256_shuffle_epi8(ascii, c.twoSpread)));
            if (asciiBits == 0x1FE01FE0u) {
                __m256i block = units;
                do {
                    store(out + o, _mm_packus_epi16(_mm256_castsi256_si128(block),
                                                    _mm256_extracti128_si256(block, 1)));
                    o += 16;
                    from += 16;
                    if (from > last)
                        break;
                    block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
                } while (_mm256_testz_si256(block, c.nonAscii));
                continue;
            }
            const uint8_t* row0 = &WIDE_ROWS.two[0][0] + (asciiBits & 0xFFFFu);
            const uint8_t* row1 = &WIDE_ROWS.two[0][0] + (asciiBits >> 16);
            const __m256i two = _mm256_or_si256(
                _mm256_or_si256(_mm256_srli_epi16(units, 6),
                                _mm256_slli_epi16(_mm256_and_si256(units, c.bits6), 8)),
                c.twoBytes);
            const __m256i bytes =
                _mm256_shuffle_epi8(_mm256_blendv_epi8(two, units, ascii), rows(row0, row1));
            store(out + o, _mm256_castsi256_si128(bytes));
            o += row0[16];
            store(out + o, _mm256_extracti128_si256(bytes, 1));
            o += row1[16];
            from += 16;
            continue;
        }
        const __m256i upper = _mm256_and_si256(units, c.notBelow);
        const __m256i below = _mm256_cmpeq_epi16(upper, zero);
        const __m256i surrogate = _mm256_cmpeq_epi16(upper, c.highTag);
        // Each lane's bytes end at its third: b0 and b1 in first, b2 in trail (see the top of
        // the file). b0 = 0xE0 | lead >> 12 and b1 = 0x80 | (lead >> 6 & 0x3F), as for a
        // three-byte unit, with a two-byte unit's b1 its lead 0xC0 | unit >> 6 (an ASCII
        // unit's are not used). Its b2 0x80 | (unit & 0x3F) is above an ASCII unit and not
        // above any other: the smaller of the two is also an ASCII unit's one byte.
        const __m256i leadBits = _mm256_blendv_epi8(c.threeLead, c.twoLead, below);
        const uint32_t surrogateBits = static_cast<uint32_t>(_mm256_movemask_epi8(surrogate));
        if (surrogateBits == 0) {
            const __m256i trail = _mm256_min_epu16(
                units, _mm256_or_si256(_mm256_and_si256(units, c.bits6), c.byte80));
            const __m256i first = _mm256_xor_si256(
                _mm256_or_si256(_mm256_srli_epi16(units, 12),
                                _mm256_and_si256(_mm256_slli_epi16(units, 2), c.mid)),
                leadBits);
            o = storeQuads(first, trail, ascii, below, c, out, o);
            from += 16;
            continue;
        }
        const __m256i high =
            _mm256_cmpeq_epi16(_mm256_and_si256(units, c.surrogateMask), c.highTag);
        const __m256i low = _mm256_andnot_si256(high, surrogate);
        // Every low surrogate right after a high one (the first after the last step's), and
        // every high one right before a low one, the last one's being the unit after the block:
        // one test, as a branch on that unit alone would be as random as the text. Taking only
        // fifteen units when the last is high would be no branch either, but the next load
        // would wait for this block's mask.
        const uint32_t highBits = static_cast<uint32_t>(_mm256_movemask_epi8(high));
        const uint64_t nextLow = (from[16] & 0xFC00u) == 0xDC00u ? 3 : 0;
        if (((surrogateBits ^ highBits) | nextLow << 32) !=
            ((static_cast<uint64_t>(highBits) << 2) | carry))
            break;
        carry = highBits >> 30;
        // A high surrogate h gets the first three of its pair's four bytes: 0xF0 | cp >> 18
        // and 0x80 | (cp >> 12 & 0x3F) come from h + 0x40, which holds cp >> 10, moved up
        // four bits and put through the three-byte lead (0xE8-0xEC, turned to 0xF0-0xF4 by
        // two more lead bits); 0x80 | (h & 3) << 4 | (l >> 6 & 0xF) is the trail byte of that,
        // with the bits of its low one l in the four bits the move left free: l >> 6 is
        // 0x370-0x37F, so (h << 4) + (l >> 6) + 0x90 is the lot. The low one keeps only
        // 0x80 | (l & 0x3F), its trail byte as a three-byte unit's.
        const __m256i next = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 1));
        const __m256i pair = _mm256_add_epi16(
            _mm256_add_epi16(_mm256_slli_epi16(units, 4), _mm256_srli_epi16(next, 6)), c.pairBase);
        const __m256i lead = _mm256_blendv_epi8(units, pair, high);
        const __m256i trail =
            _mm256_min_epu16(units, _mm256_or_si256(_mm256_and_si256(lead, c.bits6), c.byte80));
        const __m256i first =
            _mm256_xor_si256(_mm256_or_si256(_mm256_srli_epi16(lead, 12),
                                             _mm256_and_si256(_mm256_slli_epi16(lead, 2), c.mid)),
                             _mm256_or_si256(leadBits, _mm256_and_si256(high, c.fourLead)));
        // A low surrogate keeps one byte as an ASCII unit does.
        o = storeQuads(first, trail, _mm256_or_si256(ascii, low), below, c, out, o);
        from += 16;
    }
    // A pair split between the last step and the next goes again whole after the run.
    return {from - in - static_cast<long>(carry >> 1), o - static_cast<long>(carry)};
}
#endif

// encodeUtf8Unit up to stop (a pair may end one unit past it); false where it stops.
inline bool encodeUtf8Units(const char16_t* in, long& i, long stop, long end, uint8_t* out,
                            long& o) {
    while (i < stop) {
        if (!encodeUtf8Unit(in, i, end, out, o))
            return false;
    }
    return true;
}

// 1 when the last lane of lastHigh is set (a pair straddles two steps), else 0.
QNCL_SSE41 inline long straddlingPair(__m128i lastHigh) {
    return static_cast<long>(static_cast<unsigned>(_mm_movemask_epi8(lastHigh)) >> 15);
}

// The step loop over a stretch (see the top of the file); false where a unit stops it.
QNCL_SSE41 inline bool encodeStretch(const char16_t* in, long& i, long end, uint8_t* out, long& o,
                                     bool wide) {
    // A pair straddling two steps has its high surrogate's first two bytes written by the first
    // (the last lane of lastHigh set); unit by unit, it is taken again from there.
    __m128i last = _mm_setzero_si128();
    __m128i lastHigh = _mm_setzero_si128();
    while (end - i >= 16) {
        const __m128i units = load(in + i);
        const __m128i ascii = lanesWithout(units, 0xFF80);
        const __m128i below = lanesWithout(units, 0xF800);
        const unsigned classBits =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(ascii, below)));
        // After a straddling pair the first lane is a low surrogate: none of the next three.
        if (classBits == 0xFFFFu) {
            const __m128i more = load(in + i + 8);
            if (_mm_testz_si128(more, set16(0xFF80))) {
                // A long run: the plain ASCII loop, to its end or the stretch's.
                narrowAscii(in, i, end, out, o, o + (end - i));
            } else {
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out + o),
                                 _mm_packus_epi16(units, units));
                i += 8;
                o += 8;
            }
            continue;
        }
#ifdef QNCL_SIMD_WIDE
        if (wide && end - i >= 32) {
            const Positions reached = encodeWideRun(in, i, end, out, o);
            if (reached.i != i) {
                // The wide steps leave no pair straddling.
                i = reached.i;
                o = reached.o;
                lastHigh = _mm_setzero_si128();
                continue;
            }
        }
#else
        (void)wide;
#endif
        if (classBits >= 0xFF00u) {
            o += encodeTwoByteLanes(units, ascii, classBits & 0xFFu, out + o);
            i += 8;
            // Runs below U+0800 go on for sixteen units at a time while they last.
            while (end - i >= 16) {
                const __m128i lo = load(in + i);
                const __m128i hi = load(in + i + 8);
                if (!_mm_testz_si128(_mm_or_si128(lo, hi), set16(0xF800)))
                    break;
                const __m128i asciiLo = lanesWithout(lo, 0xFF80);
                const __m128i asciiHi = lanesWithout(hi, 0xFF80);
                const unsigned bits =
                    static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(asciiLo, asciiHi)));
                o += encodeTwoByteLanes(lo, asciiLo, bits & 0xFFu, out + o);
                o += encodeTwoByteLanes(hi, asciiHi, bits >> 8, out + o);
                i += 16;
            }
            continue;
        }
        const __m128i surrogate =
            _mm_cmpeq_epi16(_mm_and_si128(units, set16(0xF800)), set16(0xD800));
        if (_mm_testz_si128(surrogate, surrogate)) {
            o += encodeThreeByteLanes(units, ascii, below, out + o);
            i += 8;
            continue;
        }
        long written;
        if (encodeSurrogateLanes(in + i, units, ascii, below, surrogate, last, lastHigh, out + o,
                                 written)) {
            i += 8;
            o += written;
            continue;
        }
        const long carried = straddlingPair(lastHigh);
        i -= carried;
        o -= 2 * carried;
        lastHigh = _mm_setzero_si128();
        if (!encodeUtf8Units(in, i, i + 8, end, out, o))
            return false;
    }
    const long carried = straddlingPair(lastHigh);
    i -= carried;
    o -= 2 * carried;
    return encodeUtf8Units(in, i, end, end, out, o);
}

// The stretches, with the positions in locals: stores through the output must not force them to
// memory.
QNCL_SSE41 void encodeBlocks(const char16_t* in, long& inPos, long inEnd, uint8_t* out,
                             long& outPos, long outEnd, bool wide) {
    long i = inPos;
    long o = outPos;
    for (;;) {
        const long end = i + std::min(inEnd - i, (outEnd - o) / 3);
        if (end == i || !encodeStretch(in, i, end, out, o, wide))
            break;
    }
    inPos = i;
    outPos = o;
}

} // namespace

void encodeUtf8Blocks(const char16_t* in, long& inPos, long inEnd, uint8_t* out, long& outPos,
                      long outEnd, int level) {
    encodeBlocks(in, inPos, inEnd, out, outPos, outEnd, level >= 2);
}

} // namespace qn::text::charset::utf

#endif
