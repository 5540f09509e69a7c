// CTBSingleByte: the base of the encoders that write one byte per character (ASCII, ISO8859_1,
// the code pages). A subclass answers convertChar; convert applies it unit by unit under the
// encoder contract, pairing surrogates so that a supplementary character counts as one
// (always unmappable) character.
#pragma once

#include "qn/text/charset/CharToByteConverter.h"

namespace qn::text::charset {

// convert, per input unit:
// 1. With a high surrogate pending, the unit must be a low surrogate, else
//    InvalidCharacterException "leading surrogate without trailing"; the pair then takes the
//    unmappable path of step 3 (no single byte holds it).
// 2. Otherwise b = convertChar(unit); a non-zero b, or the unit U+0000 itself, is written.
// 3. b = 0 for another unit: a high surrogate becomes pending and is consumed; a low surrogate
//    throws InvalidCharacterException "trailing surrogate without leading"; anything else is
//    unmappable: substitution off throws UnmappableCharacterException, a substitution length
//    other than 1 drops the character, a length of 1 writes the substitution byte.
// Writing stops when the output is full. When an exception leaves, the positions and the
// pending surrogate are as they were before the offending sequence: at its high surrogate with
// nothing pending when that surrogate came in this call, else at the call's start with it still
// pending (reset() drops it).
class QNCL_API CTBSingleByte : public CharToByteConverter {
public:
    ~CTBSingleByte() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    // InvalidCharacterException "leading surrogate without trailing" while a high surrogate is
    // pending; otherwise 0.
    long flush(signed char* out, long* outPos, long outEnd) override;
    // Drops a pending high surrogate.
    void reset() override;
    // 1 and 1.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;

    // The byte of one unit; 0 when unmapped (U+0000 itself maps to 0 too).
    virtual signed char convertChar(char16_t c) const = 0;

protected:
    CTBSingleByte() noexcept = default;

    // The high surrogate that ended the previous call's input, or 0.
    char16_t m_pendingHighSurrogate = 0;
};

} // namespace qn::text::charset
