// CTBUTF16 and its byte orders CTBUTF16LE ("UTF-16LE") and CTBUTF16BE ("UTF-16BE"): units to
// UTF-16 bytes, copied as they are. Surrogates are not paired or checked, nothing fails, and no
// byte order mark is written (U+FEFF is an ordinary character). A unit is written only whole:
// an odd last free byte of the output stays unused.
#pragma once

#include "qn/text/charset/CharToByteUTF.h"

namespace qn::text::charset {

class QNCL_API CTBUTF16 : public CharToByteUTF {
public:
    ~CTBUTF16() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    // 4 and 4.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;
};

class QNCL_API CTBUTF16LE : public CTBUTF16 {
public:
    CTBUTF16LE() noexcept = default;
    ~CTBUTF16LE() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

class QNCL_API CTBUTF16BE : public CTBUTF16 {
public:
    CTBUTF16BE() noexcept = default;
    ~CTBUTF16BE() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

} // namespace qn::text::charset
