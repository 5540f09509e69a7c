// BTCSingleByteTable: a single-byte decoder driven by a 256-entry table of characters, the base
// of the code-page decoders.
#pragma once

#include "qn/text/charset/BTCSingleByte.h"

namespace qn::text::charset {

class QNCL_API BTCSingleByteTable : public BTCSingleByte {
public:
    // name and table are static: they must outlive the decoder. table[byte] is the byte's
    // character, U+FFFD where the code page defines none.
    BTCSingleByteTable(const char16_t* name, const char16_t* table) noexcept;
    ~BTCSingleByteTable() override;

    // The same results as BTCSingleByte::convert, reading the table directly. When the table
    // maps ASCII to itself, sixteen bytes go a step (words of ASCII where SSE2 is absent) and
    // only the other bytes are looked up; when it maps 0xA0-0xFF to themselves too (code page
    // 1252), the bytes 0x80-0x9F are looked up in registers, sixteen bytes a step with SSSE3
    // and 32 with AVX2 (x86-64, chosen at run time). Such a call may leave scratch units in
    // the free room past the returned output position (never at or past outEnd).
    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertByte(signed char byte) const override;

private:
    const char16_t* m_name;
    const char16_t* m_table;
    // True when bytes 0x00-0x7F map to U+0000-U+007F.
    bool m_asciiIdentity;
    // True when bytes 0xA0-0xFF map to U+00A0-U+00FF as well (code page 1252).
    bool m_latin1Identity;
};

} // namespace qn::text::charset
