// BTCUTF8: the UTF-8 decoder ("UTF-8"). Invalid bytes become U+FFFD one byte at a time, without
// consulting the substitution mode; code points above U+FFFF become surrogate pairs.
//
// What it accepts, exactly: a lead byte gives the sequence's length (0x00-0x7F one, 0xC2-0xDF
// two, 0xE0-0xEF three, 0xF0-0xF4 four; 0x80-0xC1 and 0xF5-0xFF are never valid leads). The
// second byte of a four-byte form must be 0x80-0xAF, every other continuation byte 0x80-0xBF.
// Nothing else is checked: overlong three- and four-byte forms (E0 80 80) decode to their small
// values; F4 90-AF .. gives values from U+110000, which take the substitution path (substitution
// mode off: UnmappableCharacterException); a three-byte form of a surrogate (ED A0 80) throws
// InvalidCharacterException "Invalid UTF-8 sequence (decoded chars in surrogate range)". A
// sequence cut off by the input's end stays unconsumed for the next call. A substitution run
// is written only when it ends before the output's end.
//
// Mixed text is decoded sixteen bytes a step where the processor allows (x86-64 with SSE4.1):
// the results and positions are those of the one-sequence-at-a-time rules above, but a call may
// leave scratch units in the free output room past the returned output position (never at or
// past outEnd).
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"

namespace qn::text::charset {

class QNCL_API BTCUTF8 : public ByteToCharConverter {
public:
    BTCUTF8() noexcept = default;
    ~BTCUTF8() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    // 6 and 4.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;
};

} // namespace qn::text::charset
