// The UTF-16 converters. The byte-order classes run the copy loop with their hook inlined; the
// result is what sameEncodingConvert gives through the virtual hook.
#include "qn/text/charset/BTCUTF16.h"
#include "qn/text/charset/CTBUTF16.h"

#include "UtfKernels.h"

namespace qn::text::charset {

namespace {

template <class Order>
long decode16(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
              long outEnd, Order order) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::copyUtf16In(reinterpret_cast<const uint8_t*>(in), i, inEnd, out, o, outEnd, order);
    });
}

template <class Order>
long encode16(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
              long outEnd, Order order) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::copyUtf16Out(in, i, inEnd, reinterpret_cast<uint8_t*>(out), o, outEnd, order);
    });
}

} // namespace

BTCUTF16::~BTCUTF16() = default;
long BTCUTF16::convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                       long outEnd) {
    return sameEncodingConvert(in, inPos, inEnd, out, outPos, outEnd);
}
long BTCUTF16::getMaxBytesPerChar() const {
    return 4;
}
long BTCUTF16::getMaxCharsPerByte() const {
    return 4;
}

BTCUTF16LE::~BTCUTF16LE() = default;
long BTCUTF16LE::convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                         long* outPos, long outEnd) {
    return decode16(in, inPos, inEnd, out, outPos, outEnd, [](char16_t u) { return u; });
}
const char16_t* BTCUTF16LE::getEncodingName() const {
    return u"UTF-16LE";
}
char16_t BTCUTF16LE::convertChar(char16_t unit) const {
    return utf::sameOrder16(unit);
}
uint32_t BTCUTF16LE::convertUTF32(uint32_t unit) const {
    return utf::sameOrder32(unit);
}

BTCUTF16BE::~BTCUTF16BE() = default;
long BTCUTF16BE::convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                         long* outPos, long outEnd) {
    return decode16(in, inPos, inEnd, out, outPos, outEnd,
                    [](char16_t u) { return utf::swapOrder16(u); });
}
const char16_t* BTCUTF16BE::getEncodingName() const {
    return u"UTF-16BE";
}
char16_t BTCUTF16BE::convertChar(char16_t unit) const {
    return utf::swapOrder16(unit);
}
uint32_t BTCUTF16BE::convertUTF32(uint32_t unit) const {
    return utf::swapOrder32(unit);
}

CTBUTF16::~CTBUTF16() = default;
long CTBUTF16::convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                       long outEnd) {
    return sameEncodingConvert(in, inPos, inEnd, out, outPos, outEnd);
}
long CTBUTF16::getMaxBytesPerChar() const {
    return 4;
}
long CTBUTF16::getMaxCharsPerByte() const {
    return 4;
}

CTBUTF16LE::~CTBUTF16LE() = default;
long CTBUTF16LE::convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                         long* outPos, long outEnd) {
    return encode16(in, inPos, inEnd, out, outPos, outEnd, [](char16_t u) { return u; });
}
const char16_t* CTBUTF16LE::getEncodingName() const {
    return u"UTF-16LE";
}
char16_t CTBUTF16LE::convertChar(char16_t unit) const {
    return utf::sameOrder16(unit);
}
uint32_t CTBUTF16LE::convertUTF32(uint32_t unit) const {
    return utf::sameOrder32(unit);
}

CTBUTF16BE::~CTBUTF16BE() = default;
long CTBUTF16BE::convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                         long* outPos, long outEnd) {
    return encode16(in, inPos, inEnd, out, outPos, outEnd,
                    [](char16_t u) { return utf::swapOrder16(u); });
}
const char16_t* CTBUTF16BE::getEncodingName() const {
    return u"UTF-16BE";
}
char16_t CTBUTF16BE::convertChar(char16_t unit) const {
    return utf::swapOrder16(unit);
}
uint32_t CTBUTF16BE::convertUTF32(uint32_t unit) const {
    return utf::swapOrder32(unit);
}

} // namespace qn::text::charset
