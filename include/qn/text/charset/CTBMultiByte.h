// CTBMultiByte: the base of the encoders of variable-length encodings. A subclass encodes one
// code point at a time in convertChar; convert pairs surrogates and applies it under the encoder
// contract.
#pragma once

#include "qn/text/charset/CharToByteConverter.h"

namespace qn::text::charset {

// convert, per character: surrogates are paired as by the single-byte encoders (a high
// surrogate waits for its partner across calls; InvalidCharacterException "leading surrogate
// without trailing" or "trailing surrogate without leading" for one without). Each code point
// goes to convertChar with the room left:
// - a positive count: that many bytes were written;
// - 0: nothing was written; when the room is below getMaxBytesPerChar() the character did not
//   fit and the conversion stops before it, otherwise it is taken as unmappable;
// - -1: the codec has no bytes for it: unmappable.
// An unmappable character is replaced by the whole run of substitution bytes (none with a
// substitution length of 0), or the conversion stops when the run does not fit; with
// substitution off UnmappableCharacterException is thrown. Positions and the pending surrogate
// after an exception are as for the single-byte encoders.
class QNCL_API CTBMultiByte : public CharToByteConverter {
public:
    ~CTBMultiByte() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    // InvalidCharacterException "leading surrogate without trailing" while a high surrogate is
    // pending; otherwise 0.
    long flush(signed char* out, long* outPos, long outEnd) override;
    // Drops a pending high surrogate.
    void reset() override;
    // The codec's values; "" and -1 until known.
    const char16_t* getEncodingName() const override;
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;

    // Writes the bytes of codePoint at out, room bytes at most: the count written, 0 when
    // nothing was written, -1 when the codec has no bytes for it.
    virtual long convertChar(uint32_t codePoint, signed char* out, long room) = 0;

protected:
    CTBMultiByte() noexcept = default;

    char16_t m_pendingHighSurrogate = 0;
    String m_encodingName;
    int32_t m_maxBytesPerChar = -1;
    int32_t m_maxCharsPerByte = -1;
};

} // namespace qn::text::charset
