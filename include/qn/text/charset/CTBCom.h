// CTBCom: an encoder over a codec plug-in (IQNCharCodec). The codec manager makes one when an
// encoding name is registered as "Solvantic.CharCodec." + name rather than built in.
#pragma once

#include "qn/text/charset/CTBMultiByte.h"
#include "qn/text/charset/IQNCharCodec.h"
#include "qn/util/RWByteBuffer.h"

namespace qn::text::charset {

class QNCL_API CTBCom : public CTBMultiByte {
public:
    // Takes a reference to codec and reads its name and both maxima once; a failure code from
    // any of them is thrown as ResultException with that code.
    explicit CTBCom(IQNCharCodec* codec);
    // Releases the codec.
    ~CTBCom() override;

    // The codec manager's default maker for the object its plug-in step created (with
    // IID_IQNCharCodec).
    static Reference<CharToByteConverter> wrap(IQNUnknown* codec);

    // Asks the codec to encode into a byte buffer and copies the bytes out when their count is
    // between 1 and room. Otherwise nothing is written: -1 when the codec reported a failure,
    // 0 when it did not. A failure reading the buffer is thrown as ResultException.
    long convertChar(uint32_t codePoint, signed char* out, long room) override;

private:
    IQNCharCodec* m_codec;
    // Reused for every character.
    Reference<util::RWByteBuffer> m_bytes;
};

} // namespace qn::text::charset
