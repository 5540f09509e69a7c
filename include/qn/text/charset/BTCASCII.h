// BTCASCII: the "ASCII" decoder: bytes 0x00-0x7F are U+0000-U+007F; 0x80-0xFF are unmapped.
#pragma once

#include "qn/text/charset/BTCSingleByte.h"

namespace qn::text::charset {

class QNCL_API BTCASCII final : public BTCSingleByte {
public:
    BTCASCII() noexcept = default;
    ~BTCASCII() override;

    // The same results as BTCSingleByte::convert, a word of bytes at a time.
    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertByte(signed char byte) const override;
};

} // namespace qn::text::charset
