// The UTF-32 converters: one loop each, reading and writing units through the byte-order hook.
#include "qn/text/charset/BTCUTF32.h"
#include "qn/text/charset/CTBUTF32.h"

#include "UtfKernels.h"

namespace qn::text::charset {

BTCUTF32::~BTCUTF32() = default;
long BTCUTF32::convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                       long outEnd) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::decodeUtf32(
            reinterpret_cast<const uint8_t*>(in), i, inEnd, out, o, outEnd,
            [this](uint32_t unit) { return convertUTF32(unit); },
            [this](char16_t* to, long& at, long end) {
                return writeSubstitution(to, at, end, true);
            });
    });
}
long BTCUTF32::getMaxBytesPerChar() const {
    return 4;
}
long BTCUTF32::getMaxCharsPerByte() const {
    return 4;
}

BTCUTF32LE::~BTCUTF32LE() = default;
const char16_t* BTCUTF32LE::getEncodingName() const {
    return u"UTF-32LE";
}
char16_t BTCUTF32LE::convertChar(char16_t unit) const {
    return utf::sameOrder16(unit);
}
uint32_t BTCUTF32LE::convertUTF32(uint32_t unit) const {
    return utf::sameOrder32(unit);
}

BTCUTF32BE::~BTCUTF32BE() = default;
const char16_t* BTCUTF32BE::getEncodingName() const {
    return u"UTF-32BE";
}
char16_t BTCUTF32BE::convertChar(char16_t unit) const {
    return utf::swapOrder16(unit);
}
uint32_t BTCUTF32BE::convertUTF32(uint32_t unit) const {
    return utf::swapOrder32(unit);
}

CTBUTF32::~CTBUTF32() = default;
long CTBUTF32::convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                       long outEnd) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::encodeUtf32(in, i, inEnd, reinterpret_cast<uint8_t*>(out), o, outEnd,
                         m_pendingHighSurrogate,
                         [this](uint32_t value) { return convertUTF32(value); });
    });
}
long CTBUTF32::flush(signed char*, long*, long) {
    return utf::flushPending(m_pendingHighSurrogate);
}
void CTBUTF32::reset() {
    m_pendingHighSurrogate = 0;
}
long CTBUTF32::getMaxBytesPerChar() const {
    return 4;
}
long CTBUTF32::getMaxCharsPerByte() const {
    return 4;
}

CTBUTF32LE::~CTBUTF32LE() = default;
const char16_t* CTBUTF32LE::getEncodingName() const {
    return u"UTF-32LE";
}
char16_t CTBUTF32LE::convertChar(char16_t unit) const {
    return utf::sameOrder16(unit);
}
uint32_t CTBUTF32LE::convertUTF32(uint32_t unit) const {
    return utf::sameOrder32(unit);
}

CTBUTF32BE::~CTBUTF32BE() = default;
const char16_t* CTBUTF32BE::getEncodingName() const {
    return u"UTF-32BE";
}
char16_t CTBUTF32BE::convertChar(char16_t unit) const {
    return utf::swapOrder16(unit);
}
uint32_t CTBUTF32BE::convertUTF32(uint32_t unit) const {
    return utf::swapOrder32(unit);
}

} // namespace qn::text::charset
