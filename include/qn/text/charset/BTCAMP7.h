// BTCAMP7: the "AMP-7" decoder. AMP-7 is the library's seven-bit text encoding: printable ASCII,
// TAB, LF and CR stand for themselves, the ampersand is written "&AMP;", and every other
// character is an entity "&_" + hexadecimal code point + ";".
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"

namespace qn::text::charset {

// convert, while input and output remain:
// - a byte 0x00-0x7F other than the ampersand is the character itself;
// - "&AMP;", "&APOS;" and "&QUOT;" (upper case only) are the ampersand, the apostrophe and the
//   quotation mark;
// - "&_", up to five hexadecimal digits (either case) and ";" are that code point (no digits:
//   U+0000); above U+FFFF it is written as a surrogate pair (two slots needed, else the
//   conversion stops); a value in U+D800-U+DFFF throws InvalidCharacterException
//   "Invalid AMP-7 sequence (decoded chars in surrogate range)";
// - an entity cut off by the end of the input stops the conversion before its ampersand, for
//   the next call to complete;
// - anything else (a byte above 0x7F, an ampersand that starts no entity, a sixth digit, a bad
//   character inside an entity) consumes one byte and is substituted: substitution off throws
//   UnmappableCharacterException; otherwise the substitution units are written, or the
//   conversion stops when they would reach or pass the output end.
// Nothing is held between calls.
class QNCL_API BTCAMP7 : public ByteToCharConverter {
public:
    BTCAMP7() noexcept = default;
    ~BTCAMP7() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    // 8 and 1.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;
};

} // namespace qn::text::charset
