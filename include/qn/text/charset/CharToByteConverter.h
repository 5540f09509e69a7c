// CharToByteConverter: the abstract encoder from UTF-16 units to the bytes of one encoding.
// Concrete encoders are named CTB<encoding> and are made by getConverter (by encoding name,
// alias or code page) or by the class registry. An encoder is a small state machine that the
// caller feeds buffer by buffer; it is not safe for use by two threads at once.
#pragma once

#include "qn/core/Exception.h"
#include "qn/core/Object.h"
#include "qn/core/Reference.h"

namespace qn::text::charset {

// Every encoder's convert works like this:
// - it encodes in[*inPos .. inEnd) into out[*outPos .. outEnd) and advances both positions:
//   *inPos just after the last consumed unit, *outPos just after the last written byte; the
//   result is the number of bytes written by this call;
// - it stops without error when the input is exhausted or when the output has no room for the
//   next character's whole byte sequence (or the whole run of substitution bytes);
// - a character the encoding cannot represent is replaced by the substitution bytes in
//   substitution mode, and throws UnmappableCharacterException (no message) otherwise;
// - a surrogate without its partner, where the encoder refuses one, throws
//   InvalidCharacterException with a message naming the fault;
// - whenever an exception leaves, *inPos is the start of the offending unit and *outPos the end
//   of what was written before it, so the caller can resume or report the exact place.
// Encoders that pair surrogates keep a high surrogate that ends one call's input pending for the
// next call; flush reports one still pending at the end of the text.
class QNCL_API CharToByteConverter : public Object {
public:
    // Room for substitution bytes.
    static constexpr long MAX_SUBSTITUTION_BYTES = 7;

    CharToByteConverter() noexcept = default;
    ~CharToByteConverter() override;

    virtual long convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                         long* outPos, long outEnd) = 0;
    // Writes what the encoder still holds between calls; the number of bytes written. Here: 0.
    virtual long flush(signed char* out, long* outPos, long outEnd);
    // Forgets any state held between calls (substitution settings stay). Here: nothing.
    virtual void reset();
    // The canonical upper-case name, e.g. "UTF-8"; static text.
    virtual const char16_t* getEncodingName() const = 0;
    virtual long getMaxBytesPerChar() const = 0;
    virtual long getMaxCharsPerByte() const = 0;
    // True (the default): unrepresentable characters become the substitution bytes.
    virtual bool getSubstitutionMode() const;
    virtual void setSubstitutionMode(bool mode);
    // With a null buf, the number of substitution bytes; otherwise copies min(size, that number)
    // bytes into buf and returns the count copied. The default is the one byte 0x3F ("?").
    virtual long getSubstitutionBytes(signed char* buf, long size) const;
    // Takes count bytes (0 to MAX_SUBSTITUTION_BYTES; 0 drops unrepresentable characters).
    // RangeErrorException for any other count, or a null bytes with a count above 0; the
    // settings then stay as they were.
    virtual void setSubstitutionBytes(const signed char* bytes, long count);

    // A new encoder for name (encoding name, alias or code page in decimal, any case); a null
    // name gives getDefaultConverter(). UnknownEncodingException, whose message is name, when
    // no encoder is known for it.
    static Reference<CharToByteConverter> getConverter(const char16_t* name);
    // The encoder of the process's default encoding (the core module's
    // QNGetDefaultCharEncoding); ASCII when that is empty or unknown. Never fails but for lack
    // of memory.
    static Reference<CharToByteConverter> getDefaultConverter();
#ifdef _WIN32
    static Reference<CharToByteConverter> getConverter(const wchar_t* name) {
        return getConverter(reinterpret_cast<const char16_t*>(name));
    }
#endif

protected:
    // For subclasses' convert: the substitution run's fate at out[outPos]. Substitution mode off
    // throws UnmappableCharacterException. Otherwise the run is written, outPos advanced past it
    // and true returned, unless it does not fit: then nothing is written and false says "stop
    // here". With endBeforeOutEnd the run must end before outEnd (a run that would end exactly at
    // outEnd stops too, as the UTF and AMP-7 converters require); otherwise it may end at outEnd.
    bool writeSubstitution(signed char* out, long& outPos, long outEnd, bool endBeforeOutEnd) const;

    bool m_substitutionMode = true;
    signed char m_substitutionBytes[MAX_SUBSTITUTION_BYTES] = {0x3F, 0, 0, 0, 0, 0, 0};
    int32_t m_substitutionLength = 1;
};

} // namespace qn::text::charset
