#include "qn/text/charset/CTBUTF8.h"

#include "UtfKernels.h"

namespace qn::text::charset {

CTBUTF8::~CTBUTF8() = default;

long CTBUTF8::convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                      long outEnd) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::encodeUtf8<true>(in, i, inEnd, reinterpret_cast<uint8_t*>(out), o, outEnd,
                              m_pendingHighSurrogate);
    });
}

long CTBUTF8::flush(signed char*, long*, long) {
    return utf::flushPending(m_pendingHighSurrogate);
}

void CTBUTF8::reset() {
    m_pendingHighSurrogate = 0;
}

const char16_t* CTBUTF8::getEncodingName() const {
    return u"UTF-8";
}

long CTBUTF8::getMaxBytesPerChar() const {
    return 6;
}

long CTBUTF8::getMaxCharsPerByte() const {
    return 1;
}

} // namespace qn::text::charset
