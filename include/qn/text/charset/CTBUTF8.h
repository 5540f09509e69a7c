// CTBUTF8: the UTF-8 encoder ("UTF-8"). A high surrogate is held until the next unit (across
// calls too); it must be followed by a low surrogate, else InvalidCharacterException "leading
// surrogate without trailing" (the pending surrogate is dropped, so the caller may resume at
// the offending unit). A lone low surrogate is encoded as three bytes like any other unit.
//
// When the bytes of a completed pair do not fit, the call returns with the low surrogate
// unconsumed but the pending high surrogate already cleared: a resumed call then encodes the
// low surrogate alone. Callers that must keep pairs give room for four bytes (or flush
// between texts only when the output had room).
//
// Units go eight or sixteen a step where the processor allows (x86-64 with SSE4.1, AVX2 on
// Linux), with the results and positions of the rules above; a call may leave scratch bytes in
// the free output room past the returned output position (never at or past outEnd).
#pragma once

#include "qn/text/charset/CharToByteConverter.h"

namespace qn::text::charset {

class QNCL_API CTBUTF8 : public CharToByteConverter {
public:
    CTBUTF8() noexcept = default;
    ~CTBUTF8() override;

    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    // Writes nothing; InvalidCharacterException "leading surrogate without trailing" when a high
    // surrogate is pending (it is dropped).
    long flush(signed char* out, long* outPos, long outEnd) override;
    // Drops a pending high surrogate.
    void reset() override;
    const char16_t* getEncodingName() const override;
    // 6 and 1.
    long getMaxBytesPerChar() const override;
    long getMaxCharsPerByte() const override;

protected:
    // The pending high surrogate; 0 when none.
    char16_t m_pendingHighSurrogate = 0;
};

} // namespace qn::text::charset
