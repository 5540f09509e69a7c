// String's conversions to and from 8-bit text in a named encoding, through the converters of the
// character-set layer.
#include "qn/core/Exception.h"
#include "qn/core/String.h"
#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"

#include <cstring>
#include <string>

namespace qn {

namespace {

using text::charset::ByteToCharConverter;
using text::charset::CharToByteConverter;

int32_t measure(const char* bytes, int32_t length) {
    if (!bytes)
        return 0;
    return length < 0 ? static_cast<int32_t>(std::strlen(bytes)) : length;
}

int32_t measure(const char16_t* text, int32_t length) {
    if (!text)
        return 0;
    return length < 0 ? QNStrLenW(reinterpret_cast<const QNWCHAR*>(text)) : length;
}

// Room that any converter's next step fits in: a surrogate pair or a whole substitution run.
constexpr long STEP_ROOM = 16;

// Decodes the whole text. A sequence cut off by the end becomes one U+FFFD.
std::u16string decodeAll(ByteToCharConverter& decoder, const char* bytes, long length) {
    std::u16string out(static_cast<size_t>(length) + STEP_ROOM, u'\0');
    const auto* in = reinterpret_cast<const signed char*>(bytes);
    long inPos = 0, outPos = 0;
    for (;;) {
        decoder.convert(in, &inPos, length, &out[0], &outPos, static_cast<long>(out.size()));
        const bool roomLeft = static_cast<long>(out.size()) - outPos >= STEP_ROOM;
        if (inPos == length || roomLeft)
            break;
        out.resize(out.size() * 2);
    }
    if (inPos < length)
        out[static_cast<size_t>(outPos++)] = 0xFFFD;
    decoder.flush(&out[0], &outPos, static_cast<long>(out.size()));
    out.resize(static_cast<size_t>(outPos));
    return out;
}

std::string encodeAll(CharToByteConverter& encoder, const char16_t* text, long length) {
    std::string out(static_cast<size_t>(length) + STEP_ROOM, '\0');
    long inPos = 0, outPos = 0;
    for (;;) {
        encoder.convert(text, &inPos, length, reinterpret_cast<signed char*>(&out[0]), &outPos,
                        static_cast<long>(out.size()));
        if (inPos == length && static_cast<long>(out.size()) - outPos >= STEP_ROOM)
            break;
        out.resize(out.size() * 2);
    }
    encoder.flush(reinterpret_cast<signed char*>(&out[0]), &outPos, static_cast<long>(out.size()));
    out.resize(static_cast<size_t>(outPos));
    return out;
}

} // namespace

String::String(const char* bytes, int32_t length, const char16_t* encoding) : String() {
    setTo(bytes, length, encoding);
}

Reference<String> String::CQNString(const char* bytes, int32_t length, const char16_t* encoding) {
    return Reference<String>(new String(bytes, length, encoding));
}

String& String::setTo(const char* bytes, int32_t length, const char16_t* encoding) {
    Reference<ByteToCharConverter> decoder = ByteToCharConverter::getConverter(encoding);
    const std::u16string text = decodeAll(*decoder, bytes, measure(bytes, length));
    return setTo(text.data(), static_cast<int32_t>(text.size()));
}

int32_t String::getBytes(signed char* buffer, int32_t size, const char16_t* encoding) const {
    Reference<CharToByteConverter> encoder = CharToByteConverter::getConverter(encoding);
    const long length = getLength();
    if (!buffer)
        return static_cast<int32_t>(encodeAll(*encoder, getData(), length).size());
    if (size <= 0)
        return 0;
    long inPos = 0, outPos = 0;
    encoder->convert(getData(), &inPos, length, buffer, &outPos, size - 1);
    if (inPos == length)
        encoder->flush(buffer, &outPos, size - 1);
    buffer[outPos] = 0;
    return static_cast<int32_t>(outPos);
}

Reference<String::AnsiBytes> String::getBytes(const char16_t* encoding) const {
    return Reference<AnsiBytes>(new AnsiBytes(getData(), getLength(), encoding));
}

int32_t String::getBytes(util::IQNByteBuffer* buffer, const char16_t* encoding) const {
    Reference<CharToByteConverter> encoder = CharToByteConverter::getConverter(encoding);
    const std::string bytes = encodeAll(*encoder, getData(), getLength());
    const auto length = static_cast<int32_t>(bytes.size());
    auto check = [](QNRESULT result) {
        if (result < 0)
            throw ResultException(result);
    };
    signed char* data = nullptr;
    check(buffer->GetWriteLock(&data));
    QNRESULT result = buffer->EnsureCapacity(length + 1, &data);
    if (result >= 0) {
        std::memcpy(data, bytes.c_str(), bytes.size() + 1);
        result = buffer->ReleaseWriteLock(length);
    } else {
        buffer->ReleaseWriteLock(-1);
    }
    check(result);
    return length;
}

const char* String::getBytesReadLock(const char16_t* encoding, int32_t* length) const {
    Reference<AnsiBytes> bytes(new AnsiBytes(getData(), getLength(), encoding));
    m_auxiliary = bytes;
    if (length)
        *length = bytes->getLength();
    return bytes->getData();
}

void String::releaseBytesReadLock() const {
    m_auxiliary = nullptr;
}

String::AnsiBytes::AnsiBytes(const char16_t* text, const char16_t* encoding)
    : AnsiBytes(text, -1, encoding) {}

String::AnsiBytes::AnsiBytes(const char16_t* text, int32_t length, const char16_t* encoding)
    : m_requested(encoding) {
    Reference<CharToByteConverter> encoder = CharToByteConverter::getConverter(encoding);
    m_encoding = String(encoder->getEncodingName());
    const std::string bytes = encodeAll(*encoder, text, measure(text, length));
    m_bytes = new char[bytes.size() + 1];
    std::memcpy(m_bytes, bytes.c_str(), bytes.size() + 1);
    m_length = static_cast<int32_t>(bytes.size());
}

String::AnsiBytes::~AnsiBytes() {
    delete[] m_bytes;
}

bool String::AnsiBytes::encodingEquals(const char16_t* encoding) const {
    if (!encoding)
        return m_requested.isEmpty();
    return m_requested.equals(encoding, -1, true) || m_encoding.equals(encoding, -1, true);
}

} // namespace qn
