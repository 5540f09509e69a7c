// BTCUTF16 and its byte orders BTCUTF16LE ("UTF-16LE") and BTCUTF16BE ("UTF-16BE"): UTF-16
// bytes to units, copied as they are. Surrogates are not paired or checked, nothing fails, and no
// byte order mark is written or recognised (U+FEFF is an ordinary character). A trailing odd
// byte stays unconsumed for the next call.
#pragma once

#include "qn/text/charset/ByteToCharUTF.h"

namespace qn::text::charset {

class QNCL_API BTCUTF16 : public ByteToCharUTF {
public:
    ~BTCUTF16() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    // 4 and 4.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;
};

class QNCL_API BTCUTF16LE : public BTCUTF16 {
public:
    BTCUTF16LE() noexcept = default;
    ~BTCUTF16LE() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

class QNCL_API BTCUTF16BE : public BTCUTF16 {
public:
    BTCUTF16BE() noexcept = default;
    ~BTCUTF16BE() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

} // namespace qn::text::charset
