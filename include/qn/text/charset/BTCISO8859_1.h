// BTCISO8859_1: the "ISO8859_1" decoder: every byte is the code point of the same value.
#pragma once

#include "qn/text/charset/BTCSingleByte.h"

namespace qn::text::charset {

class QNCL_API BTCISO8859_1 final : public BTCSingleByte {
public:
    BTCISO8859_1() noexcept = default;
    ~BTCISO8859_1() override;

    // The same results as BTCSingleByte::convert, a word of bytes at a time.
    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertByte(signed char byte) const override;
};

} // namespace qn::text::charset
