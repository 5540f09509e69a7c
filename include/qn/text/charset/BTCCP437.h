// BTCCP437: the "CP437" decoder, the IBM PC code page 437 in full (bytes 0x00-0x1F are the controls
// U+0000-U+001F).
#pragma once

#include "qn/text/charset/BTCSingleByteTable.h"

namespace qn::text::charset {

class QNCL_API BTCCP437 final : public BTCSingleByteTable {
public:
    BTCCP437() noexcept;
    ~BTCCP437() override;
};

} // namespace qn::text::charset
