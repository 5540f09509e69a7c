// BTCSingleByte: the base of the decoders whose every byte is one character (ASCII, ISO8859_1,
// the code pages). A subclass answers convertByte; convert applies it byte by byte under the
// decoder contract.
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"

namespace qn::text::charset {

// convert, per byte while input and output remain: c = convertByte(byte). U+FFFD means the byte
// is unmapped: with substitution off UnmappableCharacterException is thrown (positions at that
// byte); with a substitution length of 1 the substitution unit is written; with any other
// length the byte is consumed and nothing is written (single-byte decoders only support a
// one-unit substitution, deliberately). Any other c is written. Nothing is held between calls.
class QNCL_API BTCSingleByte : public ByteToCharConverter {
public:
    ~BTCSingleByte() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    // 1 and 1.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;

    // The character of one byte; U+FFFD when unmapped.
    virtual char16_t convertByte(signed char byte) const = 0;

protected:
    BTCSingleByte() noexcept = default;
};

} // namespace qn::text::charset
