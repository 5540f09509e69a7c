// BTCMultiByte: the base of the decoders of variable-length encodings. A subclass decodes one
// sequence at a time in convertBytes; convert applies it under the decoder contract.
#pragma once

#include "qn/text/charset/ByteToCharConverter.h"

namespace qn::text::charset {

// convert, per step while input remains and the output has room: convertBytes gives one code
// point and the bytes it used; 0 bytes means the sequence is incomplete and stays for the next
// call. U+FFFD or a value of U+110000 and above is substituted (substitution off:
// UnmappableCharacterException; otherwise the substitution units, or a stop when they do not
// fit). A value in U+D800-U+DFFF throws InvalidCharacterException "Invalid byte sequence
// (decoded chars in surrogate range)". A value above U+FFFF is written as a surrogate pair (two
// slots needed, else a stop). Exceptions leave the positions at the start of the sequence.
//
// A hook that throws leaves the positions at its sequence too.
//
// convert never splits a pair. A subclass whose convertBytes returns a high surrogate's worth of
// work may leave the unit that belongs after it in m_pendingTrailSurrogate: convert stops there,
// writes it first on the next call, and flush writes it at the end of the text.
class QNCL_API BTCMultiByte : public ByteToCharConverter {
public:
    ~BTCMultiByte() override;

    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    // Writes a pending trailing surrogate: InvalidCharacterException "Not enough room in buffer
    // for trailing surrogate" when fewer than two slots remain. 0 when none is pending.
    long flush(char16_t* out, long* outPos, long outEnd) override;
    // Drops a pending trailing surrogate.
    void reset() override;
    // The codec's values; "" and -1 until known.
    const char16_t* getEncodingName() const override;
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;

    // Decodes the sequence at bytes: length comes in as the bytes available and goes out as the
    // bytes used (0: incomplete). Returns the code point, U+FFFD for bytes that are no character.
    virtual uint32_t convertBytes(const signed char* bytes, long& length) = 0;

protected:
    BTCMultiByte() noexcept = default;

    char16_t m_pendingTrailSurrogate = 0;
    String m_encodingName;
    int32_t m_maxBytesPerChar = -1;
    int32_t m_maxCharsPerByte = -1;
};

} // namespace qn::text::charset
