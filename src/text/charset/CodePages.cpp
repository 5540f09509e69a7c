// The table-driven single-byte converters and the code pages 437 and 1252.
#include "qn/text/charset/BTCCP1252.h"
#include "qn/text/charset/BTCCP437.h"
#include "qn/text/charset/CTBCP1252.h"
#include "qn/text/charset/CTBCP437.h"

#include "CodePageTables.h"
#include "SingleByteKernels.h"

namespace qn::text::charset {

namespace {

bool decodesToItself(const char16_t* table, char16_t from, char16_t to) {
    for (char16_t b = from; b <= to; ++b) {
        if (table[b] != b)
            return false;
    }
    return true;
}

bool encodesAsciiToItself(const uint16_t* pageIndex, const unsigned char* bytes) {
    for (unsigned b = 1; b < 0x80; ++b) {
        if (bytes[pageIndex[0] + b] != b)
            return false;
    }
    return true;
}

} // namespace

BTCSingleByteTable::BTCSingleByteTable(const char16_t* name, const char16_t* table) noexcept
    : m_name(name), m_table(table), m_asciiIdentity(decodesToItself(table, 0x00, 0x7F)),
      m_latin1Identity(decodesToItself(table, 0xA0, 0xFF)) {}

BTCSingleByteTable::~BTCSingleByteTable() = default;

long BTCSingleByteTable::convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                                 long* outPos, long outEnd) {
    const char16_t* table = m_table;
    const auto map = [table](unsigned char b) { return table[b]; };
    const kernels::ByteSubstitution settings = kernels::settingsOf(*this);
    if (m_asciiIdentity)
        return kernels::decode<true>(map, settings, in, inPos, inEnd, out, outPos, outEnd,
                                     kernels::TableBlocks{table, m_latin1Identity});
    return kernels::decode<false>(map, settings, in, inPos, inEnd, out, outPos, outEnd);
}

const char16_t* BTCSingleByteTable::getEncodingName() const {
    return m_name;
}

char16_t BTCSingleByteTable::convertByte(signed char byte) const {
    return m_table[static_cast<unsigned char>(byte)];
}

CTBSingleByteTable::CTBSingleByteTable(const char16_t* name, const uint16_t* pageIndex,
                                       const unsigned char* bytes) noexcept
    : m_name(name), m_pageIndex(pageIndex), m_bytes(bytes),
      m_asciiIdentity(encodesAsciiToItself(pageIndex, bytes)) {}

CTBSingleByteTable::~CTBSingleByteTable() = default;

long CTBSingleByteTable::convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                                 long* outPos, long outEnd) {
    const uint16_t* pageIndex = m_pageIndex;
    const unsigned char* bytes = m_bytes;
    const auto map = [pageIndex, bytes](char16_t c) {
        return static_cast<signed char>(bytes[pageIndex[c >> 8] + (c & 0xFF)]);
    };
    const kernels::CharSubstitution settings = kernels::settingsOf(*this);
    if (m_asciiIdentity)
        return kernels::encode<kernels::ASCII_16>(map, settings, m_pendingHighSurrogate, in, inPos,
                                                  inEnd, out, outPos, outEnd);
    return kernels::encode<0>(map, settings, m_pendingHighSurrogate, in, inPos, inEnd, out, outPos,
                              outEnd);
}

const char16_t* CTBSingleByteTable::getEncodingName() const {
    return m_name;
}

signed char CTBSingleByteTable::convertChar(char16_t c) const {
    return static_cast<signed char>(m_bytes[m_pageIndex[c >> 8] + (c & 0xFF)]);
}

BTCCP437::BTCCP437() noexcept : BTCSingleByteTable(u"CP437", tables::CP437_TO_UNICODE) {}
BTCCP437::~BTCCP437() = default;

BTCCP1252::BTCCP1252() noexcept : BTCSingleByteTable(u"CP1252", tables::CP1252_TO_UNICODE) {}
BTCCP1252::~BTCCP1252() = default;

CTBCP437::CTBCP437() noexcept
    : CTBSingleByteTable(u"CP437", tables::CP437_FROM_UNICODE.pageIndex,
                         tables::CP437_FROM_UNICODE.bytes) {}
CTBCP437::~CTBCP437() = default;

CTBCP1252::CTBCP1252() noexcept
    : CTBSingleByteTable(u"CP1252", tables::CP1252_FROM_UNICODE.pageIndex,
                         tables::CP1252_FROM_UNICODE.bytes) {}
CTBCP1252::~CTBCP1252() = default;

} // namespace qn::text::charset
