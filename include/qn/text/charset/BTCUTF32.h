// BTCUTF32 and its byte orders BTCUTF32LE ("UTF-32LE") and BTCUTF32BE ("UTF-32BE"): UTF-32
// bytes to units. Values above U+FFFF become surrogate pairs; values from U+110000 (any 32-bit
// value up to 0xFFFFFFFF) take the substitution path (a run is written only when it ends before
// the output's end; substitution mode off: UnmappableCharacterException); a value in the
// surrogate range throws InvalidCharacterException "Illegal UTF-32 char in surrogate range". No
// byte order mark is recognised. A trailing partial unit stays unconsumed for the next call.
#pragma once

#include "qn/text/charset/ByteToCharUTF.h"

namespace qn::text::charset {

class QNCL_API BTCUTF32 : public ByteToCharUTF {
public:
    ~BTCUTF32() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    // 4 and 4.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;
};

class QNCL_API BTCUTF32LE : public BTCUTF32 {
public:
    BTCUTF32LE() noexcept = default;
    ~BTCUTF32LE() override;

    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

class QNCL_API BTCUTF32BE : public BTCUTF32 {
public:
    BTCUTF32BE() noexcept = default;
    ~BTCUTF32BE() override;

    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

} // namespace qn::text::charset
