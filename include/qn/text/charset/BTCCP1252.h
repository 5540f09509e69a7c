// BTCCP1252: the "CP1252" decoder, the Windows code page 1252 (the undefined bytes 0x81, 0x8D,
// 0x8F, 0x90 and 0x9D are unmapped).
#pragma once

#include "qn/text/charset/BTCSingleByteTable.h"

namespace qn::text::charset {

class QNCL_API BTCCP1252 final : public BTCSingleByteTable {
public:
    BTCCP1252() noexcept;
    ~BTCCP1252() override;
};

} // namespace qn::text::charset
