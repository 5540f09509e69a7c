// BTCCom: a decoder over a codec plug-in (IQNCharCodec). The codec manager makes one when an
// encoding name is registered as "Solvantic.CharCodec." + name rather than built in.
#pragma once

#include "qn/text/charset/BTCMultiByte.h"
#include "qn/text/charset/IQNCharCodec.h"

namespace qn::text::charset {

class QNCL_API BTCCom : public BTCMultiByte {
public:
    // Takes a reference to codec and reads its name and both maxima once; a failure code from
    // any of them is thrown as ResultException with that code.
    explicit BTCCom(IQNCharCodec* codec);
    // Releases the codec.
    ~BTCCom() override;

    // The codec manager's default maker for the object its plug-in step created (with
    // IID_IQNCharCodec).
    static Reference<ByteToCharConverter> wrap(IQNUnknown* codec);

    // The codec's DecodeBytes, with U+FFFD preset. A failure code from it, or a used length
    // outside what was available, is thrown as ResultException (the positions stay at the
    // sequence).
    uint32_t convertBytes(const signed char* bytes, long& length) override;

private:
    IQNCharCodec* m_codec;
};

} // namespace qn::text::charset
