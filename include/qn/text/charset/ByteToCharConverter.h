// ByteToCharConverter: the abstract decoder from the bytes of one encoding to UTF-16 units.
// Concrete decoders are named BTC<encoding> and are made by getConverter (by encoding name,
// alias or code page) or by the class registry. A decoder is a small state machine that the
// caller feeds buffer by buffer; it is not safe for use by two threads at once.
#pragma once

#include "qn/core/Exception.h"
#include "qn/core/Object.h"
#include "qn/core/Reference.h"

namespace qn::text::charset {

// Every decoder's convert works like this:
// - it decodes in[*inPos .. inEnd) into out[*outPos .. outEnd) and advances both positions:
//   *inPos just after the last consumed byte, *outPos just after the last written unit; the
//   result is the number of units written by this call;
// - it stops without error when the input is exhausted, when the next sequence is incomplete
//   (it stays unconsumed for the next call), or when the output has no room for the next whole
//   result: a surrogate pair or a run of substitution units is never split;
// - a code point the target cannot hold (above U+10FFFF, or unmapped in a table codec) is
//   replaced by the substitution units in substitution mode, and throws
//   UnmappableCharacterException (no message) otherwise;
// - malformed input that substitution does not cover throws InvalidCharacterException with a
//   message naming the fault;
// - whenever an exception leaves, *inPos is the start of the offending sequence and *outPos the
//   end of what was written before it, so the caller can resume or report the exact place.
class QNCL_API ByteToCharConverter : public Object {
public:
    // Room for substitution units.
    static constexpr long MAX_SUBSTITUTION_CHARS = 3;

    ByteToCharConverter() noexcept = default;
    ~ByteToCharConverter() override;

    virtual long convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                         long* outPos, long outEnd) = 0;
    // Emits what the decoder still holds between calls; the number of units written. Here: 0.
    virtual long flush(char16_t* out, long* outPos, long outEnd);
    // Forgets any state held between calls (substitution settings stay). Here: nothing.
    virtual void reset();
    // The canonical upper-case name, e.g. "UTF-8"; static text.
    virtual const char16_t* getEncodingName() const = 0;
    virtual long getMaxBytesPerChar() const = 0;
    virtual long getMaxCharsPerByte() const = 0;
    // True (the default): unrepresentable code points become the substitution units.
    virtual bool getSubstitutionMode() const;
    virtual void setSubstitutionMode(bool mode);
    // With a null buf, the number of substitution units; otherwise copies min(size, that number)
    // units into buf and returns the count copied. The default is the one unit U+FFFD.
    virtual long getSubstitutionChars(char16_t* buf, long size) const;
    // Takes count units (0 to MAX_SUBSTITUTION_CHARS; 0 drops unrepresentable code points).
    // RangeErrorException for any other count, or a null chars with a count above 0; the
    // settings then stay as they were.
    virtual void setSubstitutionChars(const char16_t* chars, long count);

    // A new decoder for name (encoding name, alias or code page in decimal, any case); a null
    // name gives getDefaultConverter(). UnknownEncodingException, whose message is name, when
    // no decoder is known for it.
    static Reference<ByteToCharConverter> getConverter(const char16_t* name);
    // The decoder of the process's default encoding (the core module's
    // QNGetDefaultCharEncoding); ASCII when that is empty or unknown. Never fails but for lack
    // of memory.
    static Reference<ByteToCharConverter> getDefaultConverter();
#ifdef _WIN32
    static Reference<ByteToCharConverter> getConverter(const wchar_t* name) {
        return getConverter(reinterpret_cast<const char16_t*>(name));
    }
#endif

protected:
    // For subclasses' convert: the substitution run's fate at out[outPos]. Substitution mode off
    // throws UnmappableCharacterException. Otherwise the run is written, outPos advanced past it
    // and true returned, unless it does not fit: then nothing is written and false says "stop
    // here". With endBeforeOutEnd the run must end before outEnd (a run that would end exactly at
    // outEnd stops too, as the UTF and AMP-7 converters require); otherwise it may end at outEnd.
    bool writeSubstitution(char16_t* out, long& outPos, long outEnd, bool endBeforeOutEnd) const;

    bool m_substitutionMode = true;
    char16_t m_substitutionChars[MAX_SUBSTITUTION_CHARS] = {0xFFFD, 0, 0};
    int32_t m_substitutionLength = 1;
};

} // namespace qn::text::charset
