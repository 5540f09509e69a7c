// CTBAMP7: the "AMP-7" encoder (see BTCAMP7 for the encoding). Its output is printable ASCII with
// TAB, LF and CR, whatever the text.
#pragma once

#include "qn/text/charset/CharToByteConverter.h"

namespace qn::text::charset {

// convert, per character (a high surrogate followed by a low one is one character):
// - the ampersand is written "&AMP;";
// - U+0020-U+007E, TAB, LF and CR are written as the byte itself;
// - a code point of U+FFFFF or above is unmappable: substitution off throws
//   UnmappableCharacterException, otherwise the substitution bytes are written, or the
//   conversion stops when they would reach or pass the output end;
// - every other code point (controls, U+007F, everything from U+0080, a lone low surrogate) is
//   written "&_%X;", the code point in upper-case hexadecimal without leading zeros.
// A character that does not fit in the remaining output stops the conversion before it. A high
// surrogate at the very end of the input stays unconsumed for the next call; one followed by
// anything but a low surrogate throws InvalidCharacterException "leading surrogate without
// trailing" with the input position at it. Nothing is held between calls.
class QNCL_API CTBAMP7 : public CharToByteConverter {
public:
    CTBAMP7() noexcept = default;
    ~CTBAMP7() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    // 8 and 1.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;
};

} // namespace qn::text::charset
