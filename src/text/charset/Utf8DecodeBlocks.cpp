// The block loop of the fast UTF-8 decoder on x86-64 processors with SSSE3, SSE4.1 and POPCNT,
// and with AVX2 on Linux (chosen once at run time; decodeUtf8Common calls decodeUtf8Blocks first
// and carries on from where it stops). Mixed text of any script goes 64 bytes at a time.
//
// A chunk of 64 bytes is loaded and checked at once. All ASCII: widenAscii. Without bytes
// 0xF0-0xFF (Latin-1, Cyrillic, Greek, Chinese): a few masks of leads and continuation bytes find
// the faults (leadMasks). Otherwise three nibble tables do (blockFaults). Then the chunk is written
// in four independent steps of sixteen bytes: every byte gets a candidate unit (ASCII as it is, a
// lead with the bytes after it; a four-byte lead its high surrogate and its first continuation byte
// the low one), and the candidates of the bytes that start sequences (and of the low surrogates)
// are compressed to the front with pshufb, eight lanes at a time. The chunk's masks say which lanes
// those are and how far the chunk goes (planChunk): up to a last sequence that runs past its end,
// or before the sequence holding its first fault. How much arithmetic a candidate needs depends on
// the longest lead of the chunk and its recent neighbours (ChunkMode). Where bit deposit is fast,
// chunks dense with two- or three-byte sequences (Russian, Greek; Chinese, Japanese, Korean) are
// written by the dense steps instead, which gather each sequence's bytes before they compute
// (DenseTable).
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

#include <immintrin.h>

#include <cstring>

// The 256-bit steps are compiled tuned as for Haswell: tuned for no processor in particular, GCC
// builds every vector constant afresh from an integer register in each step (three instructions
// apiece) rather than load it. GCC inlines a function into one of another tuning only when told to.
#define QNCL_AVX2_STEPS __attribute__((target("avx2,popcnt,tune=haswell")))
#define QNCL_INLINE inline __attribute__((always_inline))

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

// The pair classes of the fault check (see blockFaults): a bit is set in the three tables' entries
// for a byte and its follower when the pair can be that kind of fault.
constexpr int8_t TOO_SHORT = 0x01;  // a lead, then no continuation
constexpr int8_t TOO_LONG = 0x02;   // ASCII, then a continuation
constexpr int8_t OVERLONG = 0x04;   // C0 or C1, then a continuation
constexpr int8_t SURROGATE = 0x08;  // ED, then A0-BF
constexpr int8_t FOUR_80 = 0x10;    // F0 or F5-FF, then 80-8F
constexpr int8_t FOUR_90 = 0x20;    // F4-FF, then 90-AF
constexpr int8_t FOUR_B0 = 0x40;    // F0-FF, then B0-BF
constexpr int8_t TWO_CONTS = -0x80; // a continuation, then another
constexpr int8_t FOUR_ANY = FOUR_80 | FOUR_90 | FOUR_B0;
constexpr int8_t CONT_NEXT = TOO_LONG | OVERLONG | TWO_CONTS;
constexpr int8_t ANY = TOO_SHORT | TOO_LONG | TWO_CONTS | FOUR_B0;
constexpr int8_t HIGH_LEADS = ANY | FOUR_80 | FOUR_90;

// By the high nibble of a byte, its low nibble, and the high nibble of its follower.
struct alignas(16) FaultTables {
    int8_t prevHigh[16];
    int8_t prevLow[16];
    int8_t curHigh[16];
};

constexpr FaultTables FAULTS = {
    {TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TOO_LONG, TWO_CONTS,
     TWO_CONTS, TWO_CONTS, TWO_CONTS, TOO_SHORT | OVERLONG, TOO_SHORT, TOO_SHORT | SURROGATE,
     TOO_SHORT | FOUR_ANY},
    {ANY | OVERLONG | FOUR_80, ANY | OVERLONG, ANY, ANY, ANY | FOUR_90, HIGH_LEADS, HIGH_LEADS,
     HIGH_LEADS, HIGH_LEADS, HIGH_LEADS, HIGH_LEADS, HIGH_LEADS, HIGH_LEADS, HIGH_LEADS | SURROGATE,
     HIGH_LEADS, HIGH_LEADS},
    {TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT,
     CONT_NEXT | FOUR_80, CONT_NEXT | FOUR_90, CONT_NEXT | SURROGATE | FOUR_90,
     CONT_NEXT | SURROGATE | FOUR_B0, TOO_SHORT, TOO_SHORT, TOO_SHORT, TOO_SHORT},
};

QNCL_SSE41 inline __m128i faultTable(const int8_t (&table)[16]) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(table));
}

// One byte per position, nonzero where the block at bytes (read as if before came before it) has
// a fault; see the top of the file. The three tables classify each pair of neighbours; the third
// and fourth bytes of long forms are checked against the leads two and three bytes back: 0x80
// where a continuation must come (two bytes after E0-FF, three after F0-FF). A continuation there
// is the one place TWO_CONTS is right; anywhere else it is a fault.
QNCL_SSE41 inline __m128i blockFaults(__m128i bytes, __m128i before) {
    const __m128i prev1 = _mm_alignr_epi8(bytes, before, 15);
    const __m128i lowNibbles = _mm_set1_epi8(0x0F);
    const __m128i pairs = _mm_and_si128(
        _mm_and_si128(
            _mm_shuffle_epi8(faultTable(FAULTS.prevHigh),
                             _mm_and_si128(_mm_srli_epi16(prev1, 4), lowNibbles)),
            _mm_shuffle_epi8(faultTable(FAULTS.prevLow), _mm_and_si128(prev1, lowNibbles))),
        _mm_shuffle_epi8(faultTable(FAULTS.curHigh),
                         _mm_and_si128(_mm_srli_epi16(bytes, 4), lowNibbles)));
    const __m128i mustContinue =
        _mm_or_si128(_mm_subs_epu8(_mm_alignr_epi8(bytes, before, 14), _mm_set1_epi8(0xE0 - 0x80)),
                     _mm_subs_epu8(_mm_alignr_epi8(bytes, before, 13), _mm_set1_epi8(0xF0 - 0x80)));
    return _mm_xor_si128(pairs, _mm_and_si128(mustContinue, _mm_set1_epi8(TWO_CONTS)));
}

constexpr long CHUNK = 64;

QNCL_SSE41 inline uint64_t bitsOf(__m128i b0, __m128i b1, __m128i b2, __m128i b3) {
    return static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b0))) |
           static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b1))) << 16 |
           static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b2))) << 32 |
           static_cast<uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(b3))) << 48;
}

// A chunk's bits, one per byte, lowest first: where sequences start (every byte but the
// continuation bytes), and where the first fault is (CHUNK when there is none).
struct ChunkMasks {
    uint64_t starts;
    long usable;
};

// For chunks without bytes 0xF0-0xFF (Three) or without bytes 0xE0-0xFF: ASCII, continuation
// bytes and leads of two- (and three-) byte forms only. Every lead needs a continuation byte
// after it, a three-byte lead a second one after that, and no other byte may be one: the faults
// are where the continuation bytes and the places that need one differ. Besides, C0 and C1 are
// faults at their own position, and so is the second byte of ED A0-BF (a surrogate). What a last
// lead needs past byte 63 is shifted out: planChunk leaves that sequence to the next chunk.
template <bool Three> QNCL_SSE41 inline ChunkMasks leadMasks(const __m128i (&v)[4]) {
    const __m128i belowLeads = _mm_set1_epi8(-65);
    const uint64_t nonAscii = bitsOf(v[0], v[1], v[2], v[3]);
    const uint64_t leads =
        bitsOf(_mm_cmpgt_epi8(v[0], belowLeads), _mm_cmpgt_epi8(v[1], belowLeads),
               _mm_cmpgt_epi8(v[2], belowLeads), _mm_cmpgt_epi8(v[3], belowLeads)) &
        nonAscii;
    const uint64_t conts = nonAscii & ~leads;
    uint64_t need = leads << 1;
    if constexpr (Three) {
        const __m128i belowThrees = _mm_set1_epi8(-33);
        need |= (bitsOf(_mm_cmpgt_epi8(v[0], belowThrees), _mm_cmpgt_epi8(v[1], belowThrees),
                        _mm_cmpgt_epi8(v[2], belowThrees), _mm_cmpgt_epi8(v[3], belowThrees)) &
                 nonAscii)
                << 2;
    }
    uint64_t faults = conts ^ need;
    const __m128i even = _mm_set1_epi8(static_cast<char>(0xFE));
    const __m128i c0 = _mm_set1_epi8(static_cast<char>(0xC0));
    const __m128i overlong[4] = {_mm_cmpeq_epi8(_mm_and_si128(v[0], even), c0),
                                 _mm_cmpeq_epi8(_mm_and_si128(v[1], even), c0),
                                 _mm_cmpeq_epi8(_mm_and_si128(v[2], even), c0),
                                 _mm_cmpeq_epi8(_mm_and_si128(v[3], even), c0)};
    __m128i any = _mm_or_si128(_mm_or_si128(overlong[0], overlong[1]),
                               _mm_or_si128(overlong[2], overlong[3]));
    __m128i eds[4];
    if constexpr (Three) {
        const __m128i ed = _mm_set1_epi8(static_cast<char>(0xED));
        for (int k = 0; k < 4; ++k) {
            eds[k] = _mm_cmpeq_epi8(v[k], ed);
            any = _mm_or_si128(any, eds[k]);
        }
    }
    if (!_mm_testz_si128(any, any)) {
        faults |= bitsOf(overlong[0], overlong[1], overlong[2], overlong[3]);
        if constexpr (Three) {
            // Continuation bytes A0-BF are those above -97 as signed bytes.
            const __m128i belowA0 = _mm_set1_epi8(-97);
            faults |= bitsOf(eds[0], eds[1], eds[2], eds[3]) << 1 & conts &
                      bitsOf(_mm_cmpgt_epi8(v[0], belowA0), _mm_cmpgt_epi8(v[1], belowA0),
                             _mm_cmpgt_epi8(v[2], belowA0), _mm_cmpgt_epi8(v[3], belowA0));
        }
    }
    return {~conts, faults == 0 ? CHUNK : __builtin_ctzll(faults)};
}

// For any chunk: blockFaults over its four blocks.
QNCL_SSE41 inline ChunkMasks fullMasks(const __m128i (&v)[4]) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i f[4] = {blockFaults(v[0], zero), blockFaults(v[1], v[0]), blockFaults(v[2], v[1]),
                          blockFaults(v[3], v[2])};
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
    // lead & 0x1F times 64 plus follower & 0x3F, in one multiply-add of the lane's two bytes.
    const __m128i two =
        _mm_maddubs_epi16(_mm_and_si128(pairs, _mm_set1_epi16(0x1F3F)), _mm_set1_epi16(0x4001));
    __m128i multi = two;
    if constexpr (W >= THREE) {
        // As signed lanes, leads 0xE0 and up are above -8193 (0xDFFF), 0xF0 and up above -4097.
        const __m128i three = _mm_or_si128(_mm_slli_epi16(two, 6), thirds);
        multi = _mm_blendv_epi8(multi, three, _mm_cmpgt_epi16(pairs, _mm_set1_epi16(-8193)));
        if constexpr (W == FOUR) {
            // three holds the low four bits of its byte, six of the next and six of the one
            // after. In a four-byte lead's lane that is value - 0x10000 >> 6: the high surrogate
            // is 0xD800 + three >> 4. In its first continuation's lane the low ten bits are those
            // of the low surrogate.
            const __m128i high =
                _mm_add_epi16(_mm_srli_epi16(three, 4), _mm_set1_epi16(static_cast<short>(0xD7C0)));
            const __m128i low = _mm_or_si128(_mm_and_si128(three, _mm_set1_epi16(0x3FF)),
                                             _mm_set1_epi16(static_cast<short>(0xDC00)));
            multi = _mm_blendv_epi8(multi, high, _mm_cmpgt_epi16(pairs, _mm_set1_epi16(-4097)));
            // Continuation bytes (0x80-0xBF) are the lanes below -16384.
            multi = _mm_blendv_epi8(
                multi, low, _mm_cmplt_epi16(pairs, _mm_set1_epi16(static_cast<short>(0xC000))));
        }
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

// A chunk's writing: the lanes whose units are kept (sequence starts, and the lanes of the first
// continuation bytes of four-byte forms, which hold the low surrogates) and how many of the
// chunk's bytes that takes. A clean chunk takes all its sequences but a last one that goes on
// past byte 63. Otherwise the chunk takes the sequences before the last start below the first
// fault: a fault is found no later than the start of the sequence after the one it belongs to,
// so every sequence before that start is whole and well formed.
struct ChunkPlan {
    uint64_t keep;
    long taken;
};

QNCL_INLINE ChunkPlan planChunk(const uint8_t* from, const ChunkMasks& masks, uint64_t fourLeads) {
    const uint64_t lanes = masks.starts | fourLeads << 1;
    if (masks.usable < CHUNK) {
        const uint64_t before = masks.starts & ((uint64_t{1} << masks.usable) - 1);
        const long taken = before == 0 ? 0 : 63 - __builtin_clzll(before);
        return {lanes & ((uint64_t{1} << taken) - 1), taken};
    }
    // A lead in byte 63, a three- or four-byte lead in byte 62 or a four-byte one in byte 61
    // starts a sequence that goes on; in a clean chunk at most one of them is there. Which one
    // follows the text, so it is found by arithmetic: byte + 0x40 reaches 0x100 from 0xC0 on.
    uint32_t last;
    std::memcpy(&last, from + 60, 4);
    const unsigned cut = (((last >> 24) + 0x40) >> 8) + 2 * ((((last >> 16) & 0xFF) + 0x20) >> 8) +
                         3 * ((((last >> 8) & 0xFF) + 0x10) >> 8);
    return {lanes & (~uint64_t{0} >> cut), CHUNK - static_cast<long>(cut)};
}

// The units of a chunk's kept lanes, sixteen bytes a step; the steps are independent of each
// other but for where they store.
template <Widest W>
QNCL_SSE41 inline char16_t* writeChunk(const uint8_t* from, uint64_t keep, char16_t* to) {
    for (int b = 0; b < 4; ++b) {
        const unsigned lanes = static_cast<unsigned>(keep >> (16 * b)) & 0xFFFFu;
        writeCompressed<W>(from + 16 * b,
                           _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16 * b)), lanes,
                           to);
        to += __builtin_popcount(lanes);
    }
    return to;
}

// A fault stopped the steps: the rest of the chunk goes a sequence at a time, where faults tend
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

// After a chunk's steps, written up to to: the positions move on, and a chunk with a fault is
// finished a sequence at a time. False when what follows needs the simple loop.
QNCL_INLINE bool finishChunk(const uint8_t* in, const uint8_t* from, long& i, long inEnd,
                             char16_t* out, long& o, long outEnd, const ChunkMasks& masks,
                             const ChunkPlan& plan, const char16_t* to) {
    i += plan.taken;
    o = to - out;
    return masks.usable == CHUNK ||
           decodeFaultyChunk(in, i, from - in + CHUNK, inEnd, out, o, outEnd);
}

// Chunks of 64 bytes are checked, then written (planChunk, writeChunk); the next chunk starts
// where this one's sequences end. A chunk reads up to byte 66 (its last step's third bytes) and
// stores at most 64 units (a unit per byte at most, the last step's stores end within that);
// decodeFaultyChunk reads up to three bytes past the chunk. So with 96 bytes of input and 96 units
// of output left, everything stays inside both buffers.
constexpr long ROOM = CHUNK + 32;

// How long a chunk's sequences may be, from the largest of its bytes in each lane of top: bytes
// from 0xE0 (0xF0) up are those still 0x80 or more less 0x60 (0x70).
QNCL_SSE41 QNCL_INLINE Widest widestIn(__m128i top, __m128i past3, __m128i past4) {
    if (_mm_movemask_epi8(_mm_subs_epu8(top, past3)) == 0)
        return TWO;
    return _mm_movemask_epi8(_mm_subs_epu8(top, past4)) == 0 ? THREE : FOUR;
}

// The class a chunk is written with: the widest of the recent chunks' classes, so that text
// mixing them (Western text with the odd curly quote, lines with a word of Chinese here and there)
// takes one path and the branch stays predictable. It narrows after 16 chunks in a row that
// would have allowed a narrower one.
struct ChunkMode {
    Widest mode = TWO;
    unsigned narrower = 0;

    QNCL_INLINE Widest next(Widest widest) {
        if (widest > mode) {
            mode = widest;
            narrower = 0;
        }
        narrower = widest < mode ? narrower + 1 : 0;
        if (narrower >= 16) {
            mode = widest;
            narrower = 0;
        }
        return mode;
    }
};

QNCL_SSE41 void decodeBlocks(const uint8_t* in, long& inPos, long inEnd, char16_t* out,
                             long& outPos, long outEnd) {
    ChunkMode modes;
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
        ChunkMasks masks;
        ChunkPlan plan;
        char16_t* to = out + o;
        switch (modes.next(widestIn(top, _mm_set1_epi8(0x60), _mm_set1_epi8(0x70)))) {
        case TWO:
            masks = leadMasks<false>(v);
            plan = planChunk(from, masks, 0);
            to = writeChunk<TWO>(from, plan.keep, to);
            break;
        case THREE:
            masks = leadMasks<true>(v);
            plan = planChunk(from, masks, 0);
            to = writeChunk<THREE>(from, plan.keep, to);
            break;
        default: { // FOUR
            const __m128i fours = _mm_set1_epi8(0x70);
            masks = fullMasks(v);
            plan = planChunk(from, masks,
                             bitsOf(_mm_subs_epu8(v[0], fours), _mm_subs_epu8(v[1], fours),
                                    _mm_subs_epu8(v[2], fours), _mm_subs_epu8(v[3], fours)));
            to = writeChunk<FOUR>(from, plan.keep, to);
            break;
        }
        }
        if (!finishChunk(in, from, i, inEnd, out, o, outEnd, masks, plan, to))
            break;
    }
    inPos = i;
    outPos = o;
}

#ifdef QNCL_SIMD_WIDE
// The same with 256-bit vectors (Linux only; see SimdLevel.h): the chunk is two vectors, a fault
// check covers 32 bytes, and a step's sixteen candidate units are one vector.

// The vector constants of the 256-bit steps, made once per call and hidden from the compiler,
// which would otherwise build each again in every chunk (three instructions apiece) for want of
// registers; spilled, they are memory operands.
struct WideConstants {
    // The fault check.
    __m256i prevHigh, prevLow, curHigh, nibble, past3, past4, twoConts, belowConts, belowLeads,
        belowThrees, even, c0, ed;
    // The units.
    __m256i low6, payloads, weights, low10, threeLeads, fourLeads, continuations, highBase, lowBase;
    // The dense steps.
    __m256i densePayloadsTwo, densePayloads, denseWeights, denseScale;
};

QNCL_AVX2_STEPS inline __m256i faultTableWide(const int8_t (&table)[16]) {
    return hidden(
        _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(table))));
}

QNCL_AVX2_STEPS inline WideConstants wideConstants() {
    return {faultTableWide(FAULTS.prevHigh), faultTableWide(FAULTS.prevLow),
            faultTableWide(FAULTS.curHigh), hidden(_mm256_set1_epi8(0x0F)),
            // Bytes from 0xE0 (0xF0) up are those still 0x80 or more less 0x60 (0x70).
            hidden(_mm256_set1_epi8(0xE0 - 0x80)), hidden(_mm256_set1_epi8(0xF0 - 0x80)),
            hidden(_mm256_set1_epi8(TWO_CONTS)),
            // As signed bytes, continuation bytes are -128..-65 and leads -64..-1, three-byte
            // leads from -32 on.
            hidden(_mm256_set1_epi8(-64)), hidden(_mm256_set1_epi8(-65)),
            hidden(_mm256_set1_epi8(-33)), hidden(_mm256_set1_epi8(static_cast<char>(0xFE))),
            hidden(_mm256_set1_epi8(static_cast<char>(0xC0))),
            hidden(_mm256_set1_epi8(static_cast<char>(0xED))), hidden(_mm256_set1_epi16(0x3F)),
            hidden(_mm256_set1_epi16(0x1F3F)), hidden(_mm256_set1_epi16(0x4001)),
            hidden(_mm256_set1_epi16(0x3FF)),
            // As signed lanes, leads 0xE0 and up are above -8193 (0xDFFF), 0xF0 and up above
            // -4097; continuation bytes are below -16384.
            hidden(_mm256_set1_epi16(-8193)), hidden(_mm256_set1_epi16(-4097)),
            hidden(_mm256_set1_epi16(static_cast<short>(0xC000))),
            hidden(_mm256_set1_epi16(static_cast<short>(0xD7C0))),
            hidden(_mm256_set1_epi16(static_cast<short>(0xDC00))),
            // The payloads of a dense lane's bytes, last first (see writeDense).
            hidden(_mm256_set1_epi16(0x3F7F)), hidden(_mm256_set1_epi32(0x000F3F7F)),
            hidden(_mm256_set1_epi32(0x00014001)), hidden(_mm256_set1_epi32(0x10000001))};
}

// blockFaults over 32 bytes; before holds the 32 bytes ahead of them.
QNCL_AVX2_STEPS inline __m256i blockFaultsWide(__m256i bytes, __m256i before,
                                               const WideConstants& c) {
    // Each 128-bit lane of joined holds the sixteen bytes ahead of that lane of bytes.
    const __m256i joined = _mm256_permute2x128_si256(before, bytes, 0x21);
    const __m256i prev1 = _mm256_alignr_epi8(bytes, joined, 15);
    const __m256i pairs = _mm256_and_si256(
        _mm256_and_si256(_mm256_shuffle_epi8(
                             c.prevHigh, _mm256_and_si256(_mm256_srli_epi16(prev1, 4), c.nibble)),
                         _mm256_shuffle_epi8(c.prevLow, _mm256_and_si256(prev1, c.nibble))),
        _mm256_shuffle_epi8(c.curHigh, _mm256_and_si256(_mm256_srli_epi16(bytes, 4), c.nibble)));
    const __m256i mustContinue =
        _mm256_or_si256(_mm256_subs_epu8(_mm256_alignr_epi8(bytes, joined, 14), c.past3),
                        _mm256_subs_epu8(_mm256_alignr_epi8(bytes, joined, 13), c.past4));
    return _mm256_xor_si256(pairs, _mm256_and_si256(mustContinue, c.twoConts));
}

QNCL_AVX2_STEPS inline uint64_t bitsOfWide(__m256i low, __m256i high) {
    return static_cast<uint64_t>(static_cast<uint32_t>(_mm256_movemask_epi8(low))) |
           static_cast<uint64_t>(static_cast<uint32_t>(_mm256_movemask_epi8(high))) << 32;
}

// leadMasks over two 32-byte halves.
template <bool Three>
QNCL_AVX2_STEPS inline ChunkMasks leadMasksWide(const __m256i (&v)[2], const WideConstants& c) {
    const uint64_t nonAscii = bitsOfWide(v[0], v[1]);
    const uint64_t leads =
        bitsOfWide(_mm256_cmpgt_epi8(v[0], c.belowLeads), _mm256_cmpgt_epi8(v[1], c.belowLeads)) &
        nonAscii;
    const uint64_t conts = nonAscii & ~leads;
    uint64_t need = leads << 1;
    if constexpr (Three)
        need |= (bitsOfWide(_mm256_cmpgt_epi8(v[0], c.belowThrees),
                            _mm256_cmpgt_epi8(v[1], c.belowThrees)) &
                 nonAscii)
                << 2;
    uint64_t faults = conts ^ need;
    const __m256i overlong[2] = {_mm256_cmpeq_epi8(_mm256_and_si256(v[0], c.even), c.c0),
                                 _mm256_cmpeq_epi8(_mm256_and_si256(v[1], c.even), c.c0)};
    __m256i any = _mm256_or_si256(overlong[0], overlong[1]);
    __m256i eds[2];
    if constexpr (Three) {
        eds[0] = _mm256_cmpeq_epi8(v[0], c.ed);
        eds[1] = _mm256_cmpeq_epi8(v[1], c.ed);
        any = _mm256_or_si256(any, _mm256_or_si256(eds[0], eds[1]));
    }
    if (!_mm256_testz_si256(any, any)) {
        faults |= bitsOfWide(overlong[0], overlong[1]);
        if constexpr (Three) {
            const __m256i belowA0 = _mm256_set1_epi8(-97);
            faults |=
                bitsOfWide(eds[0], eds[1]) << 1 & conts &
                bitsOfWide(_mm256_cmpgt_epi8(v[0], belowA0), _mm256_cmpgt_epi8(v[1], belowA0));
        }
    }
    return {~conts, faults == 0 ? CHUNK : __builtin_ctzll(faults)};
}

QNCL_AVX2_STEPS inline ChunkMasks fullMasksWide(const __m256i (&v)[2], const WideConstants& c) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i f[2] = {blockFaultsWide(v[0], zero, c), blockFaultsWide(v[1], v[0], c)};
    const uint64_t starts =
        ~bitsOfWide(_mm256_cmpgt_epi8(c.belowConts, v[0]), _mm256_cmpgt_epi8(c.belowConts, v[1]));
    const __m256i any = _mm256_or_si256(f[0], f[1]);
    if (_mm256_testz_si256(any, any))
        return {starts, CHUNK};
    const uint64_t clean = bitsOfWide(_mm256_cmpeq_epi8(f[0], zero), _mm256_cmpeq_epi8(f[1], zero));
    return {starts, __builtin_ctzll(~clean)};
}

// unitsOf over sixteen lanes.
template <Widest W>
QNCL_AVX2_STEPS inline __m256i unitsOfWide(__m256i pairs, __m256i thirds, const WideConstants& c) {
    const __m256i two = _mm256_maddubs_epi16(_mm256_and_si256(pairs, c.payloads), c.weights);
    __m256i multi = two;
    if constexpr (W >= THREE) {
        const __m256i three = _mm256_or_si256(_mm256_slli_epi16(two, 6), thirds);
        multi = _mm256_blendv_epi8(multi, three, _mm256_cmpgt_epi16(pairs, c.threeLeads));
        if constexpr (W == FOUR) {
            const __m256i high = _mm256_add_epi16(_mm256_srli_epi16(three, 4), c.highBase);
            const __m256i low = _mm256_or_si256(_mm256_and_si256(three, c.low10), c.lowBase);
            multi = _mm256_blendv_epi8(multi, high, _mm256_cmpgt_epi16(pairs, c.fourLeads));
            multi = _mm256_blendv_epi8(multi, low, _mm256_cmpgt_epi16(c.continuations, pairs));
        }
    }
    return _mm256_blendv_epi8(_mm256_srli_epi16(pairs, 8), multi, _mm256_srai_epi16(pairs, 15));
}

QNCL_AVX2_STEPS inline __m256i widened(const uint8_t* at) {
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
}

template <Widest W>
QNCL_AVX2_STEPS inline char16_t* writeChunkWide(const uint8_t* from, uint64_t keep, char16_t* to,
                                                const WideConstants& c) {
    for (int b = 0; b < 4; ++b) {
        const uint8_t* at = from + 16 * b;
        const __m256i pairs = _mm256_or_si256(_mm256_slli_epi16(widened(at), 8), widened(at + 1));
        __m256i thirds = pairs;
        if constexpr (W >= THREE)
            thirds = _mm256_and_si256(widened(at + 2), c.low6);
        const unsigned lanes = static_cast<unsigned>(keep >> (16 * b)) & 0xFFFFu;
        const unsigned low = lanes & 0xFFu;
        const __m256i shuffle = _mm256_inserti128_si256(
            _mm256_castsi128_si256(
                _mm_load_si128(reinterpret_cast<const __m128i*>(COMPRESS.shuffle[low]))),
            _mm_load_si128(reinterpret_cast<const __m128i*>(COMPRESS.shuffle[lanes >> 8])), 1);
        const __m256i units = _mm256_shuffle_epi8(unitsOfWide<W>(pairs, thirds, c), shuffle);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_castsi256_si128(units));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + __builtin_popcount(low)),
                         _mm256_extracti128_si256(units, 1));
        to += __builtin_popcount(lanes);
    }
    return to;
}

// The dense steps, for chunks of text where most sequences are two bytes long (Russian, Greek)
// or three (Chinese, Japanese, Korean), and the candidate steps above would throw away half or two
// thirds of their lanes. A window of up to twelve bytes holds six sequences of up to two bytes, or
// four of up to three; the chunk's first five windows go, each gathering its sequences' bytes
// into lanes of their own (16 or 32 bits) with one pshufb, last byte first. Where a window starts
// is where its first sequence does, found by bit deposit (one instruction, no window waiting for
// the one before); its pshufb mask follows from the next twelve bits of the chunk's starts. Only
// for clean chunks whose first five windows' sequences are whole and cover enough bytes
// (DenseTable::MIN_BYTES; with fewer, the candidate steps write more per chunk).
//
// By the bits after a window's first start (bit k: a sequence starts at byte k + 1), the row of
// the lengths of its sequences; by row, the pshufb mask that gathers them.
template <int Longest> struct DenseTable {
    static constexpr int PER_WINDOW = 12 / Longest;
    static constexpr long SEQUENCES = 5 * PER_WINDOW;
    static constexpr long MIN_BYTES = Longest == 2 ? 40 : 48;
    static constexpr int LANE = Longest == 2 ? 2 : 4;
    static constexpr int ROWS = Longest == 2 ? 64 : 81;

    uint8_t row[4096];
    alignas(16) uint8_t shuffle[ROWS][16];

    constexpr DenseTable() : row(), shuffle() {
        for (int r = 0; r < ROWS; ++r) {
            int at = 0;
            for (int lane = 0, rest = r; lane < 16 / LANE; ++lane, rest /= Longest) {
                const int length = lane < PER_WINDOW ? rest % Longest + 1 : 0;
                for (int k = 0; k < LANE; ++k)
                    shuffle[r][LANE * lane + k] =
                        static_cast<uint8_t>(k < length ? at + length - 1 - k : 0x80);
                at += length;
            }
        }
        for (int bits = 0; bits < 4096; ++bits) {
            int r = 0, weight = 1, last = 0, found = 0;
            for (int k = 0; k < 12 && found < PER_WINDOW; ++k)
                if ((bits >> k) & 1) {
                    const int length = k + 1 - last;
                    if (length > Longest)
                        break;
                    r += (length - 1) * weight;
                    weight *= Longest;
                    last = k + 1;
                    ++found;
                }
            row[bits] = static_cast<uint8_t>(found == PER_WINDOW ? r : 0);
        }
    }
};

template <int Longest> constexpr DenseTable<Longest> DENSE{};

// Bit deposit, written out: the 256-bit steps are not compiled for BMI2, and the dense steps run
// only where the processor has it (fastBitDeposit).
QNCL_INLINE uint64_t depositBits(uint64_t source, uint64_t mask) {
    uint64_t result;
    __asm__("pdepq %2, %1, %0" : "=r"(result) : "r"(source), "r"(mask));
    return result;
}

// Where start k (from 0) of starts is; there must be one.
QNCL_INLINE long startAt(uint64_t starts, long k) {
    return __builtin_ctzll(depositBits(uint64_t{1} << k, starts));
}

// The pshufb mask of the window that starts at byte at.
template <int Longest>
QNCL_AVX2_STEPS QNCL_INLINE __m128i denseShuffle(const DenseTable<Longest>& table, uint64_t starts,
                                                 long at) {
    return _mm_load_si128(
        reinterpret_cast<const __m128i*>(table.shuffle[table.row[(starts >> (at + 1)) & 0xFFF]]));
}

// Two windows' bytes, gathered (the second window in the high half).
template <int Longest>
QNCL_AVX2_STEPS QNCL_INLINE __m256i gatherWindows(const DenseTable<Longest>& table,
                                                  const uint8_t* from, uint64_t starts, long at0,
                                                  long at1) {
    const __m256i bytes = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at0))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at1)), 1);
    return _mm256_shuffle_epi8(
        bytes, _mm256_inserti128_si256(_mm256_castsi128_si256(denseShuffle(table, starts, at0)),
                                       denseShuffle(table, starts, at1), 1));
}

// The units of a chunk's first DenseTable<Longest>::SEQUENCES sequences. A 16-bit lane (two-byte
// text) holds its last byte and the lead; their payloads (seven bits of ASCII or six of a
// continuation, the seventh clear; five of a two-byte lead, the sixth clear) weighed 1 and 64 by
// one multiply-add make the unit. A 32-bit lane (three-byte text) has a three-byte lead's four
// bits third, weighed 4096 by a second multiply-add; its units are packed from 32 to 16 bits.
template <int Longest>
QNCL_AVX2_STEPS QNCL_INLINE void writeDense(const uint8_t* from, uint64_t starts, char16_t* to,
                                            const WideConstants& c) {
    constexpr const DenseTable<Longest>& table = DENSE<Longest>;
    constexpr long n = DenseTable<Longest>::PER_WINDOW;
    const long at[5] = {0, startAt(starts, n), startAt(starts, 2 * n), startAt(starts, 3 * n),
                        startAt(starts, 4 * n)};
    for (int w = 0; w < 4; w += 2) {
        const __m256i lanes = _mm256_and_si256(gatherWindows(table, from, starts, at[w], at[w + 1]),
                                               Longest == 2 ? c.densePayloadsTwo : c.densePayloads);
        const __m256i units =
            _mm256_maddubs_epi16(lanes, Longest == 2 ? c.weights : c.denseWeights);
        if constexpr (Longest == 2) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + n * w), _mm256_castsi256_si128(units));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + n * (w + 1)),
                             _mm256_extracti128_si256(units, 1));
        } else {
            const __m256i values = _mm256_madd_epi16(units, c.denseScale);
            // Each half's four units, packed twice over; the first copies of both halves together.
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + n * w),
                             _mm256_castsi256_si128(_mm256_permute4x64_epi64(
                                 _mm256_packus_epi32(values, values), 0x08)));
        }
    }
    // The fifth window alone.
    const __m128i lanes = _mm_and_si128(
        _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at[4])),
                         denseShuffle(table, starts, at[4])),
        _mm256_castsi256_si128(Longest == 2 ? c.densePayloadsTwo : c.densePayloads));
    const __m128i units =
        _mm_maddubs_epi16(lanes, _mm256_castsi256_si128(Longest == 2 ? c.weights : c.denseWeights));
    if constexpr (Longest == 2) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 4 * n), units);
    } else {
        const __m128i values = _mm_madd_epi16(units, _mm256_castsi256_si128(c.denseScale));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 4 * n), _mm_packus_epi32(values, values));
    }
}

// How far the dense steps take a chunk with these masks: to its start after their sequences, or
// nowhere (0) when the chunk is not for them.
template <int Longest> QNCL_INLINE long denseTaken(const ChunkMasks& masks) {
    const uint64_t last = depositBits(uint64_t{1} << DenseTable<Longest>::SEQUENCES, masks.starts);
    if (masks.usable < CHUNK || last < uint64_t{1} << DenseTable<Longest>::MIN_BYTES)
        return 0;
    return __builtin_ctzll(last);
}

// A run of chunks for the dense steps, from one whose masks (starts) say they take it (taken
// bytes). Each chunk's windows are written while the next chunk is checked: they then need
// nothing that is not ready, where written at once they would wait for their own chunk's masks
// (bit deposit, then two dependent table loads) and hold up the chunks behind them. The run ends
// before a chunk that is not for the dense steps of its width, or near the buffers' ends.
template <int Longest>
QNCL_AVX2_STEPS QNCL_INLINE void denseRun(const uint8_t* in, long& i, long inEnd, char16_t* out,
                                          long& o, long outEnd, uint64_t starts, long taken,
                                          const WideConstants& c) {
    constexpr long units = DenseTable<Longest>::SEQUENCES;
    // Bytes that start longer sequences than the run's: from 0xE0 (0xF0) up.
    const __m256i longer = Longest == 2 ? c.past3 : c.past4;
    // The chunk written next; its units go just before out + o.
    const uint8_t* pendingFrom = in + i;
    uint64_t pendingStarts = starts;
    i += taken;
    o += units;
    while (inEnd - i >= ROOM && outEnd - o >= ROOM) {
        const uint8_t* from = in + i;
        const __m256i v[2] = {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)),
                              _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 32))};
        if (_mm256_movemask_epi8(_mm256_subs_epu8(_mm256_max_epu8(v[0], v[1]), longer)) != 0)
            break;
        const ChunkMasks masks = leadMasksWide<Longest == 3>(v, c);
        const long next = denseTaken<Longest>(masks);
        if (next == 0)
            break;
        writeDense<Longest>(pendingFrom, pendingStarts, out + o - units, c);
        pendingFrom = from;
        pendingStarts = masks.starts;
        i += next;
        o += units;
    }
    writeDense<Longest>(pendingFrom, pendingStarts, out + o - units, c);
}

// A chunk of sequences of up to W bytes (two or three): a run of the dense steps from it where
// they take it (Dense), else its candidate steps. False when the run took it, and the chunks
// after it as far as it went.
template <bool Dense, Widest W>
QNCL_AVX2_STEPS QNCL_INLINE bool
writeLeadChunk(const uint8_t* in, const uint8_t* from, long& i, long inEnd, char16_t* out, long& o,
               long outEnd, const __m256i (&v)[2], ChunkMasks& masks, ChunkPlan& plan,
               char16_t*& to, const WideConstants& c) {
    masks = leadMasksWide<W == THREE>(v, c);
    if constexpr (Dense) {
        if (const long taken = denseTaken<W>(masks)) {
            denseRun<W>(in, i, inEnd, out, o, outEnd, masks.starts, taken, c);
            return false;
        }
    }
    plan = planChunk(from, masks, 0);
    to = writeChunkWide<W>(from, plan.keep, to, c);
    return true;
}

// Dense: with the dense steps (see DenseTable).
template <bool Dense>
QNCL_AVX2_STEPS void decodeBlocksWide(const uint8_t* in, long& inPos, long inEnd, char16_t* out,
                                      long& outPos, long outEnd) {
    const WideConstants constants = wideConstants();
    ChunkMode modes;
    long i = inPos;
    long o = outPos;
    while (inEnd - i >= ROOM && outEnd - o >= ROOM) {
        const uint8_t* from = in + i;
        const __m256i v[2] = {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)),
                              _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 32))};
        const __m256i top = _mm256_max_epu8(v[0], v[1]);
        if (_mm256_movemask_epi8(top) == 0) {
            widenAscii(in, i, inEnd, out, o, outEnd);
            continue;
        }
        ChunkMasks masks;
        ChunkPlan plan;
        char16_t* to = out + o;
        switch (modes.next(widestIn(
            _mm_max_epu8(_mm256_castsi256_si128(top), _mm256_extracti128_si256(top, 1)),
            _mm256_castsi256_si128(constants.past3), _mm256_castsi256_si128(constants.past4)))) {
        case TWO:
            if (!writeLeadChunk<Dense, TWO>(in, from, i, inEnd, out, o, outEnd, v, masks, plan, to,
                                            constants))
                continue;
            break;
        case THREE:
            if (!writeLeadChunk<Dense, THREE>(in, from, i, inEnd, out, o, outEnd, v, masks, plan,
                                              to, constants))
                continue;
            break;
        default: { // FOUR
            masks = fullMasksWide(v, constants);
            plan = planChunk(from, masks,
                             bitsOfWide(_mm256_subs_epu8(v[0], constants.past4),
                                        _mm256_subs_epu8(v[1], constants.past4)));
            to = writeChunkWide<FOUR>(from, plan.keep, to, constants);
            break;
        }
        }
        if (!finishChunk(in, from, i, inEnd, out, o, outEnd, masks, plan, to))
            break;
    }
    inPos = i;
    outPos = o;
}
#endif
} // namespace

void decodeUtf8Blocks(const uint8_t* in, long& i, long inEnd, char16_t* out, long& o, long outEnd,
                      int level) {
#ifdef QNCL_SIMD_WIDE
    if (level > 1) {
        if (level > 2)
            decodeBlocksWide<true>(in, i, inEnd, out, o, outEnd);
        else
            decodeBlocksWide<false>(in, i, inEnd, out, o, outEnd);
        return;
    }
#endif
    if (level > 0)
        decodeBlocks(in, i, inEnd, out, o, outEnd);
}

} // namespace qn::text::charset::utf

#endif
