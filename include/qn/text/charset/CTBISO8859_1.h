// CTBISO8859_1: the "ISO8859_1" encoder: U+0000-U+00FF are the bytes of the same value; everything
// above is unmapped.
#pragma once

#include "qn/text/charset/CTBSingleByte.h"

namespace qn::text::charset {

class QNCL_API CTBISO8859_1 final : public CTBSingleByte {
public:
    CTBISO8859_1() noexcept = default;
    ~CTBISO8859_1() override;

    // The same results as CTBSingleByte::convert, a word of units at a time.
    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    signed char convertChar(char16_t c) const override;
};

} // namespace qn::text::charset
