// CharToByteUTF: the base of the fixed-width UTF encoders (UTF-16 and UTF-32 in either byte
// order). Units pass through a byte-order hook (identity for the LE classes, a byte swap for
// the BE ones) and are written in the host's (little-endian) order.
#pragma once

#include "qn/text/charset/CharToByteConverter.h"

namespace qn::text::charset {

class QNCL_API CharToByteUTF : public CharToByteConverter {
public:
    ~CharToByteUTF() override;

    // The byte-order hooks for one 16-bit and one 32-bit unit.
    virtual char16_t convertChar(char16_t unit) const = 0;
    virtual uint32_t convertUTF32(uint32_t unit) const = 0;

protected:
    // Copies min(input units left, free output bytes / 2) units through convertChar and
    // advances both positions past them; the number of bytes written is returned, as convert
    // returns it.
    long sameEncodingConvert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                             long* outPos, long outEnd);
};

} // namespace qn::text::charset
