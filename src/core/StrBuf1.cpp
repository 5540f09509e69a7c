// StrBuf1: the owned 8-bit string's storage, editing and case mapping.
#include "qn/core/StrBuf1.h"

#include "qn/core/Exception.h"

#include "Str1Codec.h"

#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace qn {

namespace {

int32_t checkedSum(int64_t a, int64_t b) {
    const int64_t total = a + b;
    if (total >= INT32_MAX)
        throw std::bad_alloc();
    return static_cast<int32_t>(total);
}

void clampRange(int32_t size, int32_t& start, int32_t& count) {
    start = start < 0 ? 0 : std::min(start, size);
    if (count < 0 || count > size - start)
        count = size - start;
}

// memcpy that accepts a null source with a count of 0.
void copyBytes(char* to, const char* from, int32_t count) {
    if (count > 0)
        std::memcpy(to, from, static_cast<size_t>(count));
}

bool isAscii(const char* data, int32_t length) {
    for (int32_t i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(data[i]) >= 0x80)
            return false;
    }
    return true;
}

char mapAscii(char c, bool upper) {
    if (upper)
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
    return Str1::foldAscii(c);
}

void mapAsciiBytes(char* data, int32_t length, bool upper) {
    for (int32_t i = 0; i < length; ++i)
        data[i] = mapAscii(data[i], upper);
}

// In ISO8859_1 every byte is its own code point; a letter whose other case lies outside the
// Latin-1 range keeps its case.
void mapLatin1Bytes(char* data, int32_t length, bool upper) {
    for (int32_t i = 0; i < length; ++i) {
        const auto c = static_cast<QNWCHAR>(static_cast<unsigned char>(data[i]));
        const QNWCHAR mapped = upper ? QNToUpperW(c) : QNToLowerW(c);
        if (mapped <= 0xFF)
            data[i] = static_cast<char>(mapped);
    }
}

char16_t mapUnit(char16_t c, bool upper) {
    const auto w = static_cast<QNWCHAR>(c);
    return static_cast<char16_t>(upper ? QNToUpperW(w) : QNToLowerW(w));
}

bool encodes(text::charset::CharToByteConverter& encoder, char16_t c) {
    signed char scratch[16];
    long inPos = 0;
    long outPos = 0;
    encoder.reset();
    try {
        encoder.convert(&c, &inPos, 1, scratch, &outPos, sizeof scratch);
    } catch (const text::charset::UnmappableCharacterException&) {
        return false;
    }
    return inPos == 1;
}

bool isName(const String& encoding, const char16_t* name) {
    return encoding.equals(name, -1, true);
}

} // namespace

StrBuf1::StrBuf1() noexcept
    : m_block(const_cast<char*>(EMPTY)), m_capacity(0), m_inline(nullptr), m_inlineCapacity(0) {}

StrBuf1::StrBuf1(char* inlineBlock, int32_t inlineCapacity) noexcept
    : m_block(inlineBlock), m_capacity(inlineCapacity), m_inline(inlineBlock),
      m_inlineCapacity(inlineCapacity) {
    m_block[0] = 0;
    setView(m_block, 0);
}

StrBuf1::StrBuf1(const Str1& text) : StrBuf1() {
    setTo(text);
}

StrBuf1::StrBuf1(const char* text, int32_t length, const String& encoding) : StrBuf1() {
    m_encoding = encoding;
    setTo(text, length);
}

StrBuf1::StrBuf1(const String& text, const String& encoding) : StrBuf1() {
    m_encoding = encoding;
    setTo(text);
}

StrBuf1::StrBuf1(const StrBuf1& other) : StrBuf1() {
    setTo(other);
}

StrBuf1::StrBuf1(StrBuf1&& other) : StrBuf1() {
    *this = std::move(other);
}

StrBuf1& StrBuf1::operator=(const StrBuf1& other) {
    return setTo(other);
}

StrBuf1& StrBuf1::operator=(StrBuf1&& other) {
    if (this == &other)
        return *this;
    if (other.m_capacity == 0 || other.isInline())
        return setTo(other);
    release();
    m_block = other.m_block;
    m_capacity = other.m_capacity;
    m_encoding = other.m_encoding;
    setView(m_block, other.m_length);
    // The moved-from buffer falls back to its own inline block, or to none.
    other.m_block = other.m_inline ? other.m_inline : const_cast<char*>(EMPTY);
    other.m_capacity = other.m_inline ? other.m_inlineCapacity : 0;
    other.storeLength(0);
    return *this;
}

void StrBuf1::release() noexcept {
    if (m_capacity > 0 && !isInline())
        delete[] m_block;
}

StrBuf1::~StrBuf1() {
    release();
}

void StrBuf1::grow(int32_t capacity) {
    if (capacity <= m_capacity)
        return;
    // At least doubling, so that appending is amortised constant.
    const int64_t size = std::min<int64_t>(
        std::max<int64_t>({capacity, int64_t{m_capacity} * 2, 15}), INT32_MAX - 1);
    char* block = new char[static_cast<size_t>(size) + 1];
    std::memcpy(block, m_data, static_cast<size_t>(m_length));
    block[m_length] = 0;
    release();
    m_block = block;
    m_capacity = static_cast<int32_t>(size);
    setView(m_block, m_length);
}

void StrBuf1::reserve(int32_t capacity) {
    grow(capacity);
}

void StrBuf1::storeLength(int32_t length) noexcept {
    if (m_capacity > 0)
        m_block[length] = 0;
    setView(m_block, length);
}

StrBuf1& StrBuf1::setLength(int32_t length) {
    if (length < 0 || length > m_capacity)
        throw RangeErrorException(String(u"length out of range"));
    storeLength(length);
    return *this;
}

StrBuf1& StrBuf1::splice(int32_t start, int32_t removed, const char* text, int32_t length) {
    const int32_t newLength = checkedSum(static_cast<int64_t>(m_length) - removed, length);
    if (newLength == 0 && m_capacity == 0)
        return *this;
    // text may lie inside this buffer: keep the old block alive until it is copied.
    const bool inside = text >= m_data && text < m_data + m_length;
    if (newLength > m_capacity || inside) {
        StrBuf1 fresh;
        fresh.grow(std::max(newLength, m_capacity));
        copyBytes(fresh.m_block, m_data, start);
        copyBytes(fresh.m_block + start, text, length);
        copyBytes(fresh.m_block + start + length, m_data + start + removed,
                  m_length - start - removed);
        fresh.storeLength(newLength);
        if (newLength <= m_capacity) {
            copyBytes(m_block, fresh.m_block, newLength);
            storeLength(newLength);
            return *this;
        }
        fresh.m_encoding = m_encoding;
        return *this = std::move(fresh);
    }
    if (length != removed)
        std::memmove(m_block + start + length, m_block + start + removed,
                     static_cast<size_t>(m_length - start - removed));
    copyBytes(m_block + start, text, length);
    storeLength(newLength);
    return *this;
}

StrBuf1& StrBuf1::setTo(const Str1& text) {
    if (&text != this) {
        splice(0, m_length, text.getData(), text.getLength());
        m_encoding = text.getEncoding();
    }
    return *this;
}

StrBuf1& StrBuf1::setTo(const char* text, int32_t length) {
    const Str1 view(text, length);
    return splice(0, m_length, view.getData(), view.getLength());
}

StrBuf1& StrBuf1::setTo(const String& text) {
    const Reference<String::AnsiBytes> encoded =
        text.getBytes(str1::EncodingArgument(m_encoding).get());
    return splice(0, m_length, encoded->getData(), encoded->getLength());
}

StrBuf1& StrBuf1::setLatin1(const char16_t* text, int32_t length) {
    if (!text)
        length = 0;
    else if (length < 0)
        length = QNStrLenW(reinterpret_cast<const QNWCHAR*>(text));
    if (length > m_capacity || m_capacity == 0) {
        StrBuf1 fresh;
        fresh.grow(length);
        *this = std::move(fresh);
    }
    for (int32_t i = 0; i < length; ++i)
        m_block[i] = text[i] <= 0xFF ? static_cast<char>(text[i]) : '?';
    storeLength(length);
    m_encoding = String(u"ISO8859_1");
    return *this;
}

StrBuf1& StrBuf1::setEncoding(const String& encoding) {
    m_encoding = encoding;
    return *this;
}

StrBuf1& StrBuf1::append(const Str1& text) {
    return splice(m_length, 0, text.getData(), text.getLength());
}

StrBuf1& StrBuf1::append(const char* text, int32_t length) {
    return append(Str1(text, length));
}

StrBuf1& StrBuf1::append(char c, int32_t count) {
    return resize(checkedSum(m_length, std::max(count, int32_t{0})), c);
}

StrBuf1& StrBuf1::insert(int32_t position, const Str1& text) {
    int32_t none = 0;
    clampRange(m_length, position, none);
    return splice(position, 0, text.getData(), text.getLength());
}

StrBuf1& StrBuf1::remove(int32_t start, int32_t count) {
    clampRange(m_length, start, count);
    return splice(start, count, nullptr, 0);
}

StrBuf1& StrBuf1::replace(int32_t start, int32_t count, const Str1& text) {
    clampRange(m_length, start, count);
    return splice(start, count, text.getData(), text.getLength());
}

StrBuf1& StrBuf1::clear() noexcept {
    storeLength(0);
    return *this;
}

StrBuf1& StrBuf1::resize(int32_t length, char fill) {
    if (length < 0)
        length = 0;
    if (length <= m_length) {
        storeLength(length);
        return *this;
    }
    grow(length);
    std::memset(m_block + m_length, fill, static_cast<size_t>(length - m_length));
    storeLength(length);
    return *this;
}

StrBuf1& StrBuf1::setCharAt(int32_t index, char c) {
    if (index < 0 || index >= m_length)
        throw RangeErrorException(String(u"index out of range"));
    m_block[index] = c;
    return *this;
}

StrBuf1& StrBuf1::toUpper() {
    return mapCase(true);
}

StrBuf1& StrBuf1::toLower() {
    return mapCase(false);
}

StrBuf1& StrBuf1::mapCase(bool upper) {
    if (m_length == 0)
        return *this;
    if (isName(m_encoding, u"ISO8859_1")) {
        mapLatin1Bytes(m_block, m_length, upper);
        return *this;
    }
    const str1::EncodingArgument encoding(m_encoding);
    Reference<text::charset::ByteToCharConverter> decoder;
    Reference<text::charset::CharToByteConverter> encoder;
    try {
        decoder = text::charset::ByteToCharConverter::getConverter(encoding.get());
        encoder = text::charset::CharToByteConverter::getConverter(encoding.get());
    } catch (const text::charset::UnknownEncodingException&) {
        mapAsciiBytes(m_block, m_length, upper);
        return *this;
    }
    const String canonical(decoder->getEncodingName());
    if (isName(canonical, u"ISO8859_1")) {
        mapLatin1Bytes(m_block, m_length, upper);
        return *this;
    }
    // In these encodings every byte below 0x80 is the ASCII character itself.
    const bool asciiTransparent = isName(canonical, u"ASCII") || isName(canonical, u"UTF-8") ||
                                  isName(canonical, u"CP1252") || isName(canonical, u"CP437");
    if (asciiTransparent && isAscii(m_block, m_length)) {
        mapAsciiBytes(m_block, m_length, upper);
        return *this;
    }
    // Decode, map unit by unit and encode again. Text that does not survive the round trip
    // unchanged (undecodable bytes) is left as it is rather than rewritten.
    const String original = toString();
    const Reference<String::AnsiBytes> again = original.getBytes(encoding.get());
    if (!Str1(again->getData(), again->getLength()).equals(*this))
        return *this;
    String mapped(original);
    const int32_t length = mapped.getLength();
    char16_t* units = mapped.getWriteLock();
    // A character whose other case the encoding lacks keeps its case; case mapping never
    // touches surrogates, so every changed unit can be tried alone.
    encoder->setSubstitutionMode(false);
    for (int32_t i = 0; i < length; ++i) {
        const char16_t other = mapUnit(units[i], upper);
        if (other != units[i] && encodes(*encoder, other))
            units[i] = other;
    }
    mapped.releaseWriteLock(length);
    const Reference<String::AnsiBytes> result = mapped.getBytes(encoding.get());
    return splice(0, m_length, result->getData(), result->getLength());
}

} // namespace qn
