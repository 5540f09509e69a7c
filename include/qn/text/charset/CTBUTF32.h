// CTBUTF32 and its byte orders CTBUTF32LE ("UTF-32LE") and CTBUTF32BE ("UTF-32BE"): units to
// UTF-32 bytes. A high surrogate is held until the next unit (across calls too) and must be
// followed by a low surrogate, else InvalidCharacterException "leading surrogate without
// trailing" (the pending surrogate is dropped, so the caller may resume at the offending unit).
// A lone low surrogate is written as its own value. No byte order mark is written. The call
// stops whenever fewer than four bytes of output remain, even before a unit that would write
// nothing.
#pragma once

#include "qn/text/charset/CharToByteUTF.h"

namespace qn::text::charset {

class QNCL_API CTBUTF32 : public CharToByteUTF {
public:
    ~CTBUTF32() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    // Writes nothing; InvalidCharacterException "leading surrogate without trailing" when a high
    // surrogate is pending (it is dropped).
    long flush(signed char* out, long* outPos, long outEnd) override;
    // Drops a pending high surrogate.
    void reset() override;
    // 4 and 4.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;

protected:
    // The pending high surrogate; 0 when none.
    char16_t m_pendingHighSurrogate = 0;
};

class QNCL_API CTBUTF32LE : public CTBUTF32 {
public:
    CTBUTF32LE() noexcept = default;
    ~CTBUTF32LE() override;

    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

class QNCL_API CTBUTF32BE : public CTBUTF32 {
public:
    CTBUTF32BE() noexcept = default;
    ~CTBUTF32BE() override;

    const char16_t* getEncodingName() const override;
    char16_t convertChar(char16_t unit) const override;
    uint32_t convertUTF32(uint32_t unit) const override;
};

} // namespace qn::text::charset
