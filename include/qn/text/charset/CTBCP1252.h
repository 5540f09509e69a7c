// CTBCP1252: the "CP1252" encoder, the exact inverse of BTCCP1252: the Windows code page 1252 (the
// undefined bytes 0x81, 0x8D, 0x8F, 0x90 and 0x9D are unmapped).
#pragma once

#include "qn/text/charset/CTBSingleByteTable.h"

namespace qn::text::charset {

class QNCL_API CTBCP1252 final : public CTBSingleByteTable {
public:
    CTBCP1252() noexcept;
    ~CTBCP1252() override;
};

} // namespace qn::text::charset
