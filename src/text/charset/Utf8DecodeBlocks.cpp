// The block loop of the fast UTF-8 decoder on x86-64 processors with SSSE3, SSE4.1 and POPCNT
// (chosen once at run time; decodeUtf8Common calls decodeUtf8Blocks first and carries on from
// where it stops). Mixed text of any script goes 64 bytes at a time.
//
// A chunk of 64 bytes is loaded and checked at once. All ASCII: widenAscii. Without bytes
// 0xE0-0xFF (Latin-1, Cyrillic, Greek): a few masks find the faults (narrowMasks). Otherwise
// three nibble tables do (blockFaults). Then steps of sixteen bytes walk the chunk's masks of
// sequence starts: every byte gets a candidate unit (ASCII as it is, a lead with the bytes after
// it; a four-byte lead its high surrogate and its first continuation byte the low one), the
// candidates of the bytes that start sequences (and of the low surrogates) are compressed to the
// front with pshufb, eight lanes at a time, and the step takes the sequences that end within the
// sixteen bytes. How much arithmetic a candidate needs depends on the chunk's longest lead.
//
// What it leaves: a chunk with a fault goes as far as the steps can before it, then a sequence
// at a time to its end (decodeFaultyChunk), which stops before a sequence that needs an
// exception or the substitution, for the simple loop; the last 96 bytes of the input and the last
// 96 units of the output go back to decodeUtf8Common. The faults are the bytes and pairs the simple
// loop treats as anything but a well-formed sequence, or whose value needs an exception or the
// substitution: stray continuation bytes, leads cut short, C0, C1 and F5-FF, three-byte surrogates
// (ED A0-BF), four-byte forms with a second byte the decoder refuses (0xB0-0xBF) or that give
// values below U+10000 (F0 80-8F, which may be surrogates) or above U+10FFFF (F4 90-AF). Overlong
// three-byte forms (E0 80-9F) are not faults: they decode to their small values here exactly as in
// the simple loop.
//
// A step may store up to sixteen units past those it writes, always below outEnd; they are
// written again by the next step or left beyond the output position.
#include "UtfKernels.h"

#ifdef QNCL_UTF8_DECODE_BLOCKS

#include <smmintrin.h>
#include <tmmintrin.h>

namespace qn::text::charset::utf {

namespace {

// By a mask of eight 16-bit lanes: the pshufb mask that moves the lanes kept to the front, in
// order (0x80 clears the rest).
struct CompressTable {
    alignas(16) uint8_t shuffle[256][16];

    constexpr CompressTable() : shuffle() {
        for (int keep = 0; keep < 256; ++keep) {
            int to = 0;
            for (int lane = 0; lane < 8; ++lane)
                if ((keep >> lane) & 1) {
                    shuffle[keep][to++] = static_cast<uint8_t>(2 * lane);
                    shuffle[keep][to++] = static_cast<uint8_t>(2 * lane + 1);
                }
            while (to < 16)
                shuffle[keep][to++] = 0x80;
        }
    }
};

constexpr CompressTable COMPRESS{};

// One byte per position, nonzero where the block at bytes (read as if ASCII came before it) has
// a fault; see the top of the file. Three nibble tables classify each pair of neighbours (the
// bits below); the third and fourth bytes of long forms are checked against the leads two and
// three bytes back.
template <bool Four> QNCL_SSE41 inline __m128i blockFaults(__m128i bytes, __m128i before) {
    constexpr int8_t TOO_SHORT = 0x01;  // a lead, then no continuation
    constexpr int8_t TOO_LONG = 0x02;   // ASCII, then a continuation
    constexpr int8_t OVERLONG = 0x04;   // C0 or C1, then a continuation
    constexpr int8_t SURROGATE = 0x08;  // ED, then A0-BF
    constexpr int8_t FOUR_80 = 0x10;    // F0 or F5-FF, then 80-8F
    constexpr int8_t FOUR_90 = 0x20;    // F4-FF, then 90-AF
    constexpr int8_t FOUR_B0 = 0x40;    // F0-FF, then B0-BF
    constexpr int8_t TWO_CONTS = -0x80; // a continuation, then another
    constexpr int8_t FOUR = FOUR_80 | FOUR_90 | FOUR_B0;
    constexpr int8_t CONT_NEXT = TOO_LONG | OVERLONG | TWO_CONTS;

    const __m128i prev1 = _mm_alignr_epi8(bytes, before, 15);
    const __m128i lowNibbles = _mm_set1_epi8(0x0F);
    const __m128i prevHigh = _mm_and_si128(_mm_srli_epi16(prev1, 4), lowNibbles);
    const __m128i prevLow = _mm_and_si128(prev1, lowNibbles);
    const __m128i curHigh = _mm_and_si128(_mm_srli_epi16(bytes, 4), lowNibbles);
    const __m128i byPrevHigh = _mm_shuffle_epi8(
        _mm_setr_epi8(TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG,
                      TOO_LONG, TWO_CONTS, TWO_CONTS, TWO_CONTS, TWO_CONTS, TOO_SHORT | OVERLONG,
                      TOO_SHORT, TOO_SHORT | SURROGATE, TOO_SHORT | FOUR),
        prevHigh);
    constexpr int8_t ANY = TOO_SHORT | TOO_LONG | TWO_CONTS | FOUR_B0;
    const __m128i byPrevLow = _mm_shuffle_epi8(
        _mm_setr_epi8(ANY | OVERLONG | FOUR_80, ANY | OVERLONG, ANY, ANY, ANY | FOUR_90,
                      ANY | FOUR_80 | FOUR_90, ANY | FOUR_80 | FOUR_90, ANY | FOUR_80 | FOUR_90,
                      ANY | FOUR_80 | FOUR_90, ANY | FOUR_80 | FOUR_90, ANY | FOUR_80 | FOUR_90,
                      ANY | FOUR_80 | FOUR_90, ANY | FOUR_80 | FOUR_90,
                      ANY | SURROGATE | FOUR_80 | FOUR_90, ANY | FOUR_80 | FOUR_90,
                      ANY | FOUR_80 | FOUR_90),
        prevLow);
    const __m128i byCurHigh = _mm_shuffle_epi8(
        _mm_setr_epi8(TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT,
                      TOO_SHORT, CONT_NEXT | FOUR_80, CONT_NEXT | FOUR_90,
                      CONT_NEXT | SURROGATE | FOUR_90, CONT_NEXT | SURROGATE | FOUR_B0, TOO_SHORT,
                      TOO_SHORT, TOO_SHORT, TOO_SHORT),
        curHigh);
    const __m128i pairs = _mm_and_si128(_mm_and_si128(byPrevHigh, byPrevLow), byCurHigh);
    // 0x80 where a continuation must come: two bytes after E0-FF, three after F0-FF. A
    // continuation there is the one place TWO_CONTS is right; anywhere else it is a fault.
    const __m128i third =
        _mm_subs_epu8(_mm_alignr_epi8(bytes, before, 14), _mm_set1_epi8(0xE0 - 0x80));
    __m128i mustContinue = third;
    if constexpr (Four)
        mustContinue = _mm_or_si128(
            third, _mm_subs_epu8(_mm_alignr_epi8(bytes, before, 13), _mm_set1_epi8(0xF0 - 0x80)));
    mustContinue = _mm_and_si128(mustContinue, _mm_set1_epi8(TWO_CONTS));
    return _mm_xor_si128(pairs, mustContinue);
}

constexpr long CHUNK = 64;

QNCL_SSE41 inline uint64_t bitsOf(__m128i b0, __m128i b1, __m128i b2, __m128i b3) {
    return static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b0))) |
           static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b1))) << 16 |
           static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b2))) << 32 |
           static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b3))) << 48;
}

// A chunk's bits, one per byte, lowest first: where sequences start (every byte but the
// continuation bytes), and how far the walk may go (the first fault, or CHUNK).
struct ChunkMasks {
    uint64_t starts;
    long usable;
};

// For chunks without bytes 0xE0-0xFF: ASCII, continuation bytes and leads 0xC0-0xDF only. Then
// the faults are a continuation byte that does not follow a lead, a lead not followed by one,
// and C0 or C1 (at its own position).
QNCL_SSE41 inline ChunkMasks narrowMasks(const __m128i (&v)[4]) {
    const __m128i belowLeads = _mm_set1_epi8(-65);
    const uint64_t nonAscii = bitsOf(v[0], v[1], v[2], v[3]);
    const uint64_t leads =
        bitsOf(_mm_cmpgt_epi8(v[0], belowLeads), _mm_cmpgt_epi8(v[1], belowLeads),
               _mm_cmpgt_epi8(v[2], belowLeads), _mm_cmpgt_epi8(v[3], belowLeads)) &
        nonAscii;
    const uint64_t conts = nonAscii & ~leads;
    uint64_t faults = conts ^ (leads << 1);
    const __m128i even = _mm_set1_epi8(static_cast<char>(0xFE));
    const __m128i c0 = _mm_set1_epi8(static_cast<char>(0xC0));
    const __m128i overlong[4] = {_mm_cmpeq_epi8(_mm_and_si128(v[0], even), c0),
                                 _mm_cmpeq_epi8(_mm_and_si128(v[1], even), c0),
                                 _mm_cmpeq_epi8(_mm_and_si128(v[2], even), c0),
                                 _mm_cmpeq_epi8(_mm_and_si128(v[3], even), c0)};
    const __m128i any = _mm_or_si128(_mm_or_si128(overlong[0], overlong[1]),
                                     _mm_or_si128(overlong[2], overlong[3]));
    if (!_mm_testz_si128(any, any))
        faults |= bitsOf(overlong[0], overlong[1], overlong[2], overlong[3]);
    return {~conts, faults == 0 ? CHUNK : __builtin_ctzll(faults)};
}

// For any chunk (Four: one that may hold bytes 0xF0-0xFF): blockFaults over its four blocks.
template <bool Four> QNCL_SSE41 inline ChunkMasks fullMasks(const __m128i (&v)[4]) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i f[4] = {blockFaults<Four>(v[0], zero), blockFaults<Four>(v[1], v[0]),
                          blockFaults<Four>(v[2], v[1]), blockFaults<Four>(v[3], v[2])};
    // Continuation bytes are -128..-65 as signed bytes; every other byte starts a sequence.
    const __m128i cont = _mm_set1_epi8(-64);
    const uint64_t starts = ~bitsOf(_mm_cmplt_epi8(v[0], cont), _mm_cmplt_epi8(v[1], cont),
                                    _mm_cmplt_epi8(v[2], cont), _mm_cmplt_epi8(v[3], cont));
    const __m128i any = _mm_or_si128(_mm_or_si128(f[0], f[1]), _mm_or_si128(f[2], f[3]));
    if (_mm_testz_si128(any, any))
        return {starts, CHUNK};
    const uint64_t clean = bitsOf(_mm_cmpeq_epi8(f[0], zero), _mm_cmpeq_epi8(f[1], zero),
                                  _mm_cmpeq_epi8(f[2], zero), _mm_cmpeq_epi8(f[3], zero));
    return {starts, __builtin_ctzll(~clean)};
}

// What a block may hold: sequences of one or two bytes, up to three, or up to four.
enum Widest { TWO = 2, THREE = 3, FOUR = 4 };

// Candidate units, one per byte of a block: pairs holds each byte high and its follower low
// (negative from 0x80), thirds the payload of the byte after that (from THREE). A lane's unit is
// right when its byte starts a sequence of one to Widest bytes, and with FOUR, for the first
// continuation byte of a four-byte form, where it is the pair's low surrogate (the lead's lane
// has the high one). Masking a lead with 0x1F keeps the payload of two- and three-byte leads
// alike (the bit under 0x10 of 1110xxxx is its 0).
template <Widest W> QNCL_SSE41 inline __m128i unitsOf(__m128i pairs, __m128i thirds) {
    const __m128i two =
        _mm_or_si128(_mm_srli_epi16(_mm_and_si128(pairs, _mm_set1_epi16(0x1F00)), 2),
                     _mm_and_si128(pairs, _mm_set1_epi16(0x3F)));
    __m128i multi = two;
    if constexpr (W >= THREE) {
        // As signed lanes, leads 0xE0 and up are above -8193 (0xDFFF), 0xF0 and up above -4097.
        multi = _mm_blendv_epi8(multi, _mm_or_si128(_mm_slli_epi16(two, 6), thirds),
                                _mm_cmpgt_epi16(pairs, _mm_set1_epi16(-8193)));
    }
    if constexpr (W == FOUR) {
        // The high surrogate: 0xD800 + (value - 0x10000 >> 10), from the lead, the first
        // continuation and the top two payload bits of the second. two << 2 has the lead's
        // payload with its marker bit 0x10 (0x1000 after the shift), which the sum takes back.
        const __m128i high =
            _mm_add_epi16(_mm_or_si128(_mm_slli_epi16(two, 2), _mm_srli_epi16(thirds, 4)),
                          _mm_set1_epi16(static_cast<short>(0xD7C0 - 0x1000)));
        // The low one, in the lane of the first continuation: its follower's low four payload
        // bits and the last byte's six.
        const __m128i low = _mm_or_si128(
            _mm_or_si128(_mm_slli_epi16(_mm_and_si128(pairs, _mm_set1_epi16(0x0F)), 6), thirds),
            _mm_set1_epi16(static_cast<short>(0xDC00)));
        multi = _mm_blendv_epi8(multi, high, _mm_cmpgt_epi16(pairs, _mm_set1_epi16(-4097)));
        // Continuation bytes (0x80-0xBF) are the lanes below -16384.
        multi = _mm_blendv_epi8(multi, low,
                                _mm_cmplt_epi16(pairs, _mm_set1_epi16(static_cast<short>(0xC000))));
    }
    return _mm_blendv_epi8(_mm_srli_epi16(pairs, 8), multi, _mm_srai_epi16(pairs, 15));
}

// Sixteen bytes at from holding sequences of one to Widest bytes: the units of the lanes in
// keep (a bit per byte), in order. Every byte gets a candidate unit; the lanes of continuation
// bytes (but those of the low surrogates), and of a last sequence that goes on past the block,
// are dropped.
template <Widest W>
QNCL_SSE41 inline void writeCompressed(const uint8_t* from, __m128i bytes, unsigned keep,
                                       char16_t* to) {
    const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 1));
    __m128i thirdsLow = next, thirdsHigh = next;
    if constexpr (W >= THREE) {
        const __m128i after = _mm_and_si128(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 2)), _mm_set1_epi8(0x3F));
        thirdsLow = _mm_unpacklo_epi8(after, _mm_setzero_si128());
        thirdsHigh = _mm_unpackhi_epi8(after, _mm_setzero_si128());
    }
    const unsigned low = keep & 0xFFu;
    const unsigned high = keep >> 8;
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(to),
        _mm_shuffle_epi8(unitsOf<W>(_mm_unpacklo_epi8(next, bytes), thirdsLow),
                         _mm_load_si128(reinterpret_cast<const __m128i*>(COMPRESS.shuffle[low]))));
    _mm_storeu_si128(
        reinterpret_cast<__m128i*>(to + __builtin_popcount(low)),
        _mm_shuffle_epi8(unitsOf<W>(_mm_unpackhi_epi8(next, bytes), thirdsHigh),
                         _mm_load_si128(reinterpret_cast<const __m128i*>(COMPRESS.shuffle[high]))));
}

// The walk over a chunk: steps of sixteen bytes from k while the masks know the byte after the
// block (k + 16 < CHUNK) and bytes k..k+16 are free of faults; each takes the sequences that end
// within the block. With FOUR, four holds the chunk's four-byte leads, whose next lanes are kept
// too.
template <Widest W>
QNCL_SSE41 inline long walkChunk(const uint8_t* from, const ChunkMasks& masks, uint64_t four,
                                 char16_t*& to) {
    long k = 0;
    while (k <= CHUNK - 17 && k + 17 <= masks.usable) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + k));
        const unsigned ends = static_cast<unsigned>(masks.starts >> (k + 1)) & 0xFFFFu;
        const unsigned taken = 32 - __builtin_clz(ends);
        unsigned keep = static_cast<unsigned>(masks.starts >> k);
        if constexpr (W == FOUR)
            keep |= static_cast<unsigned>(four >> k) << 1;
        keep &= (1u << taken) - 1;
        writeCompressed<W>(from + k, bytes, keep, to);
        k += taken;
        to += __builtin_popcount(keep);
    }
    return k;
}

// A fault stopped the walk: the rest of the chunk goes a sequence at a time, where faults tend
// to come in numbers (text in another encoding), the next chunk's check would not pay. The
// stretch takes what it can; a byte that starts no sequence becomes U+FFFD as in the simple
// loop. False before a sequence that needs the simple loop (an exception or the substitution
// may follow).
inline bool decodeFaultyChunk(const uint8_t* in, long& i, long end, long inEnd, char16_t* out,
                              long& o, long outEnd) {
    while (i < end) {
        if (decodeUtf8Stretch(in, i, end, inEnd, out, o)) {
            // Used up, or before a run of ASCII that goes a block at a time.
            if (i < end)
                widenAscii(in, i, inEnd, out, o, outEnd);
            continue;
        }
        uint32_t value;
        if (readUtf8(in + i, UTF8_LENGTHS.length[in[i]], value) != 1 || value != 0xFFFD)
            return false;
        out[o++] = 0xFFFD;
        ++i;
    }
    return true;
}

// Chunks of 64 bytes are checked at once, then walked (see walkChunk); the next chunk starts
// where the walk ended. The walk carries only k from step to step, through the masks: the loads
// and the arithmetic of a step are off that path. No step reads past byte 64 of the chunk
// (k + 17 for k <= 47) and the walk ends by k = 63; a step stores at most sixteen units and
// units never outnumber bytes; so with 96 bytes of input and 96 units of output the chunk, and
// decodeFaultyChunk to its end (with three bytes to read ahead), stay inside both buffers.
QNCL_SSE41 void decodeBlocks(const uint8_t* in, long& inPos, long inEnd, char16_t* out,
                             long& outPos, long outEnd) {
    constexpr long ROOM = CHUNK + 32;
    long i = inPos;
    long o = outPos;
    while (inEnd - i >= ROOM && outEnd - o >= ROOM) {
        const uint8_t* from = in + i;
        const __m128i v[4] = {_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)),
                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16)),
                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 32)),
                              _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 48))};
        const __m128i top = _mm_max_epu8(_mm_max_epu8(v[0], v[1]), _mm_max_epu8(v[2], v[3]));
        if (_mm_movemask_epi8(top) == 0) {
            widenAscii(in, i, inEnd, out, o, outEnd);
            continue;
        }
        char16_t* to = out + o;
        long k;
        ChunkMasks masks;
        // Bytes from 0xE0 (0xF0) up are those still 0x80 or more less 0x60 (0x70).
        const __m128i fours = _mm_set1_epi8(0x70);
        if (_mm_movemask_epi8(_mm_subs_epu8(top, _mm_set1_epi8(0x60))) == 0) {
            masks = narrowMasks(v);
            k = walkChunk<TWO>(from, masks, 0, to);
        } else if (_mm_movemask_epi8(_mm_subs_epu8(top, fours)) == 0) {
            masks = fullMasks<false>(v);
            k = walkChunk<THREE>(from, masks, 0, to);
        } else {
            masks = fullMasks<true>(v);
            k = walkChunk<FOUR>(from, masks,
                                bitsOf(_mm_subs_epu8(v[0], fours), _mm_subs_epu8(v[1], fours),
                                       _mm_subs_epu8(v[2], fours), _mm_subs_epu8(v[3], fours)),
                                to);
        }
        i += k;
        o = to - out;
        if (masks.usable < CHUNK &&
            !decodeFaultyChunk(in, i, from - in + CHUNK, inEnd, out, o, outEnd))
            break;
    }
    inPos = i;
    outPos = o;
}

} // namespace

void decodeUtf8Blocks(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o, long outEnd) {
    if (simdLevel() > 0)
        decodeBlocks(in, i, inEnd, out, o, outEnd);
}

} // namespace qn::text::charset::utf

#endif
