// The single-byte bases and the two converters that need no table: ASCII and ISO8859_1.
#include "qn/text/charset/BTCASCII.h"
#include "qn/text/charset/BTCISO8859_1.h"
#include "qn/text/charset/CTBASCII.h"
#include "qn/text/charset/CTBISO8859_1.h"

#include "SingleByteKernels.h"

#include <algorithm>

namespace qn::text::charset {

namespace {

// Function objects rather than functions, so that the kernels inline them.
constexpr auto asciiChar = [](unsigned char b) { return b < 0x80 ? b : char16_t{0xFFFD}; };
constexpr auto latin1Char = [](unsigned char b) { return char16_t{b}; };
constexpr auto asciiByte = [](char16_t c) {
    return c < 0x80 ? static_cast<signed char>(c) : static_cast<signed char>(0);
};
constexpr auto latin1Byte = [](char16_t c) {
    return c <= 0xFF ? static_cast<signed char>(c) : static_cast<signed char>(0);
};

} // namespace

BTCSingleByte::~BTCSingleByte() = default;

long BTCSingleByte::convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                            long* outPos, long outEnd) {
    const auto map = [this](unsigned char b) { return convertByte(static_cast<signed char>(b)); };
    return kernels::decode<false>(map, kernels::settingsOf(*this), in, inPos, inEnd, out, outPos,
                                  outEnd);
}

long BTCSingleByte::getMaxBytesPerChar() const {
    return 1;
}

long BTCSingleByte::getMaxCharsPerByte() const {
    return 1;
}

CTBSingleByte::~CTBSingleByte() = default;

long CTBSingleByte::convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                            long* outPos, long outEnd) {
    const auto map = [this](char16_t c) { return convertChar(c); };
    return kernels::encode<0>(map, kernels::settingsOf(*this), m_pendingHighSurrogate, in, inPos,
                              inEnd, out, outPos, outEnd);
}

long CTBSingleByte::flush(signed char*, long*, long) {
    if (m_pendingHighSurrogate != 0)
        throw InvalidCharacterException(String(u"leading surrogate without trailing"));
    return 0;
}

void CTBSingleByte::reset() {
    m_pendingHighSurrogate = 0;
}

long CTBSingleByte::getMaxBytesPerChar() const {
    return 1;
}

long CTBSingleByte::getMaxCharsPerByte() const {
    return 1;
}

BTCASCII::~BTCASCII() = default;

long BTCASCII::convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                       long outEnd) {
    return kernels::decode<true>(asciiChar, kernels::settingsOf(*this), in, inPos, inEnd, out,
                                 outPos, outEnd);
}

const char16_t* BTCASCII::getEncodingName() const {
    return u"ASCII";
}

char16_t BTCASCII::convertByte(signed char byte) const {
    return asciiChar(static_cast<unsigned char>(byte));
}

BTCISO8859_1::~BTCISO8859_1() = default;

long BTCISO8859_1::convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                           long* outPos, long outEnd) {
    // Every byte maps, so nothing is ever substituted: a plain widening of the common length.
    const long count = std::min(inEnd - *inPos, outEnd - *outPos);
    if (count <= 0)
        return 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(in + *inPos);
    char16_t* units = out + *outPos;
    for (long k = 0; k < count; ++k)
        units[k] = latin1Char(bytes[k]);
    *inPos += count;
    *outPos += count;
    return count;
}

const char16_t* BTCISO8859_1::getEncodingName() const {
    return u"ISO8859_1";
}

char16_t BTCISO8859_1::convertByte(signed char byte) const {
    return latin1Char(static_cast<unsigned char>(byte));
}

CTBASCII::~CTBASCII() = default;

long CTBASCII::convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                       long outEnd) {
    return kernels::encode<kernels::ASCII_16>(asciiByte, kernels::settingsOf(*this),
                                              m_pendingHighSurrogate, in, inPos, inEnd, out, outPos,
                                              outEnd);
}

const char16_t* CTBASCII::getEncodingName() const {
    return u"ASCII";
}

signed char CTBASCII::convertChar(char16_t c) const {
    return asciiByte(c);
}

CTBISO8859_1::~CTBISO8859_1() = default;

long CTBISO8859_1::convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                           long* outPos, long outEnd) {
    return kernels::encode<kernels::LATIN1_16>(latin1Byte, kernels::settingsOf(*this),
                                               m_pendingHighSurrogate, in, inPos, inEnd, out,
                                               outPos, outEnd);
}

const char16_t* CTBISO8859_1::getEncodingName() const {
    return u"ISO8859_1";
}

signed char CTBISO8859_1::convertChar(char16_t c) const {
    return latin1Byte(c);
}

} // namespace qn::text::charset
