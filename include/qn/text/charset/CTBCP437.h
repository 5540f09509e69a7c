// CTBCP437: the "CP437" encoder, the exact inverse of BTCCP437: the IBM PC code page 437 in full
// (bytes 0x00-0x1F are the controls U+0000-U+001F).
#pragma once

#include "qn/text/charset/CTBSingleByteTable.h"

namespace qn::text::charset {

class QNCL_API CTBCP437 final : public CTBSingleByteTable {
public:
    CTBCP437() noexcept;
    ~CTBCP437() override;
};

} // namespace qn::text::charset
