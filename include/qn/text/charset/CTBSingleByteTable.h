// CTBSingleByteTable: a single-byte encoder driven by a two-level table, the base of the
// code-page encoders.
#pragma once

#include "qn/text/charset/CTBSingleByte.h"

#include <cstdint>

namespace qn::text::charset {

// The table: pageIndex[high byte of the unit] is an offset into bytes, and bytes[offset + low
// byte] is the code-page byte, or 0 when unmapped. Pages without a mapped character share one
// page of zeros. The code-page tables are built from their decoder tables, so the two
// directions are exact inverses.
class QNCL_API CTBSingleByteTable : public CTBSingleByte {
public:
    // name, pageIndex (256 entries) and bytes are static: they must outlive the encoder.
    CTBSingleByteTable(const char16_t* name, const uint16_t* pageIndex,
                       const unsigned char* bytes) noexcept;
    ~CTBSingleByteTable() override;

    // The same results as CTBSingleByte::convert, reading the table directly and narrowing
    // runs of ASCII a word at a time when the table maps them to themselves.
    long convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    signed char convertChar(char16_t c) const override;

private:
    const char16_t* m_name;
    const uint16_t* m_pageIndex;
    const unsigned char* m_bytes;
    bool m_asciiIdentity;
};

} // namespace qn::text::charset
