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

    // The same results as BTCSingleByte::convert, reading the table directly and copying runs
    // of ASCII a word at a time when the table maps them to themselves.
    long convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                 long outEnd) override;
    const char16_t* getEncodingName() const override;
    char16_t convertByte(signed char byte) const override;

private:
    const char16_t* m_name;
    const char16_t* m_table;
    // True when bytes 0x00-0x7F map to U+0000-U+007F.
    bool m_asciiIdentity;
};

} // namespace qn::text::charset
