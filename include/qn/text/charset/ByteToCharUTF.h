// ByteToCharUTF: the base of the fixed-width UTF decoders (UTF-16 and UTF-32 in either byte
// order). Units are read in the host's (little-endian) order and passed through a byte-order
// hook: identity for the LE classes, a byte swap for the BE ones.
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"

namespace qn::text::charset {

class QNCL_API ByteToCharUTF : public ByteToCharConverter {
public:
    ~ByteToCharUTF() override;

    // The byte-order hooks for one 16-bit and one 32-bit unit.
    virtual char16_t convertChar(char16_t unit) const = 0;
    virtual uint32_t convertUTF32(uint32_t unit) const = 0;

protected:
    // Copies min(whole 2-byte units left, free output units) units through convertChar and
    // advances both positions by them (*inPos in bytes); the count is returned. A trailing odd
    // byte stays unconsumed.
    long sameEncodingConvert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                             long* outPos, long outEnd);
};

} // namespace qn::text::charset
