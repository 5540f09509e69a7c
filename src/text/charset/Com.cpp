// The converters over codec plug-ins, and their makers, which the codec manager calls when its
// plug-in step finds an object.
#include "qn/text/charset/BTCCom.h"
#include "qn/text/charset/CTBCom.h"

#include <algorithm>
#include <tuple>

namespace qn::text::charset {

namespace {

void check(QNRESULT result) {
    if (QN_FAILED(result))
        throw ResultException(result);
}

// The name and both maxima a plug-in reports, read once.
std::tuple<String, int32_t, int32_t> readFacts(IQNCharCodec* codec) {
    // Counted by the plug-in, so it lives on the heap.
    Reference<String> name = String::CQNString(u"");
    check(codec->GetEncodingName(name.get()));
    int32_t maxBytesPerChar = -1;
    int32_t maxCharsPerByte = -1;
    check(codec->GetMaxBytesPerChar(&maxBytesPerChar));
    check(codec->GetMaxCharsPerByte(&maxCharsPerByte));
    return {*name, maxBytesPerChar, maxCharsPerByte};
}

} // namespace

Reference<ByteToCharConverter> BTCCom::wrap(IQNUnknown* codec) {
    return new BTCCom(static_cast<IQNCharCodec*>(codec));
}

Reference<CharToByteConverter> CTBCom::wrap(IQNUnknown* codec) {
    return new CTBCom(static_cast<IQNCharCodec*>(codec));
}

BTCCom::BTCCom(IQNCharCodec* codec) : m_codec(codec) {
    std::tie(m_encodingName, m_maxBytesPerChar, m_maxCharsPerByte) = readFacts(codec);
    m_codec->AddRef();
}

BTCCom::~BTCCom() {
    m_codec->Release();
}

uint32_t BTCCom::convertBytes(const signed char* bytes, long& length) {
    int32_t used = static_cast<int32_t>(length);
    uint32_t codePoint = 0xFFFD;
    check(m_codec->DecodeBytes(bytes, &used, &codePoint));
    if (used < 0 || used > length)
        throw ResultException(QN_E_UNEXPECTED);
    length = used;
    return codePoint;
}

CTBCom::CTBCom(IQNCharCodec* codec) : m_codec(codec), m_bytes(new util::RWByteBuffer(16)) {
    std::tie(m_encodingName, m_maxBytesPerChar, m_maxCharsPerByte) = readFacts(codec);
    m_codec->AddRef();
}

CTBCom::~CTBCom() {
    m_codec->Release();
}

long CTBCom::convertChar(uint32_t codePoint, signed char* out, long room) {
    util::IQNByteBuffer* buffer = m_bytes.get();
    signed char* data = nullptr;
    check(buffer->GetWriteLock(&data));
    check(buffer->ReleaseWriteLock(0));
    if (QN_FAILED(m_codec->EncodeChar(codePoint, buffer)))
        return -1;
    int32_t count = 0;
    check(buffer->GetLength(&count));
    if (count < 1 || count > room)
        return 0;
    const signed char* bytes = nullptr;
    check(buffer->GetReadLock(&bytes));
    std::copy(bytes, bytes + count, out);
    check(buffer->ReleaseReadLock());
    return count;
}

} // namespace qn::text::charset
