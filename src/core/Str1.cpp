// Str1's comparing, searching and hashing, over unsigned bytes.
#include "qn/core/Str1.h"

#include "qn/core/Exception.h"

#include "Str1Codec.h"

#include <algorithm>
#include <cstring>

namespace qn {

namespace {

bool sameFolded(const char* a, const char* b, int32_t length) noexcept {
    for (int32_t i = 0; i < length; ++i) {
        if (a[i] != b[i] && Str1::foldAscii(a[i]) != Str1::foldAscii(b[i]))
            return false;
    }
    return true;
}

bool sameBytes(const char* a, const char* b, int32_t length, bool ignoreCase) noexcept {
    return ignoreCase ? sameFolded(a, b, length) : std::memcmp(a, b, length) == 0;
}

int32_t clampStart(int32_t start, int32_t length) noexcept {
    return start < 0 ? 0 : std::min(start, length);
}

} // namespace

const char Str1::EMPTY[1] = {0};

Str1::Str1(const char* text, int32_t length, const String& encoding)
    : m_data(text ? text : EMPTY), m_length(0), m_encoding(encoding) {
    if (text)
        m_length = length < 0 ? static_cast<int32_t>(std::strlen(text)) : length;
}

char Str1::getCharAt(int32_t index) const {
    if (index < 0 || index >= m_length)
        throw RangeErrorException(String(u"index out of range"));
    return m_data[index];
}

int32_t Str1::compare(const Str1& other, bool ignoreCase) const noexcept {
    const int32_t common = std::min(m_length, other.m_length);
    for (int32_t i = 0; i < common; ++i) {
        unsigned char a = static_cast<unsigned char>(m_data[i]);
        unsigned char b = static_cast<unsigned char>(other.m_data[i]);
        if (ignoreCase) {
            a = static_cast<unsigned char>(foldAscii(static_cast<char>(a)));
            b = static_cast<unsigned char>(foldAscii(static_cast<char>(b)));
        }
        if (a != b)
            return a < b ? -1 : 1;
    }
    return m_length == other.m_length ? 0 : (m_length < other.m_length ? -1 : 1);
}

bool Str1::equals(const Str1& other, bool ignoreCase) const noexcept {
    return m_length == other.m_length && sameBytes(m_data, other.m_data, m_length, ignoreCase);
}

bool Str1::startsWith(const Str1& prefix, bool ignoreCase) const noexcept {
    return prefix.m_length <= m_length &&
           sameBytes(m_data, prefix.m_data, prefix.m_length, ignoreCase);
}

bool Str1::endsWith(const Str1& suffix, bool ignoreCase) const noexcept {
    return suffix.m_length <= m_length && sameBytes(m_data + m_length - suffix.m_length,
                                                    suffix.m_data, suffix.m_length, ignoreCase);
}

int32_t Str1::indexOf(const Str1& part, int32_t start, bool ignoreCase) const noexcept {
    start = clampStart(start, m_length);
    if (part.m_length == 0)
        return start;
    if (part.m_length == 1)
        return indexOf(part.m_data[0], start, ignoreCase);
    const int32_t last = m_length - part.m_length;
    for (int32_t i = start; i <= last; ++i) {
        if (!ignoreCase) {
            const void* hit = std::memchr(m_data + i, part.m_data[0], last - i + 1);
            if (!hit)
                return -1;
            i = static_cast<int32_t>(static_cast<const char*>(hit) - m_data);
        }
        if (sameBytes(m_data + i, part.m_data, part.m_length, ignoreCase))
            return i;
    }
    return -1;
}

int32_t Str1::indexOf(char c, int32_t start, bool ignoreCase) const noexcept {
    start = clampStart(start, m_length);
    if (!ignoreCase) {
        const void* hit = std::memchr(m_data + start, c, m_length - start);
        return hit ? static_cast<int32_t>(static_cast<const char*>(hit) - m_data) : -1;
    }
    const char folded = foldAscii(c);
    for (int32_t i = start; i < m_length; ++i) {
        if (foldAscii(m_data[i]) == folded)
            return i;
    }
    return -1;
}

int32_t Str1::lastIndexOf(const Str1& part, int32_t start, bool ignoreCase) const noexcept {
    const int32_t last = m_length - part.m_length;
    if (last < 0)
        return -1;
    for (int32_t i = start < 0 ? last : std::min(start, last); i >= 0; --i) {
        if (sameBytes(m_data + i, part.m_data, part.m_length, ignoreCase))
            return i;
    }
    return -1;
}

int32_t Str1::lastIndexOf(char c, int32_t start, bool ignoreCase) const noexcept {
    return lastIndexOf(Str1(&c, 1), start, ignoreCase);
}

uint32_t Str1::hashCode(bool ignoreCase) const noexcept {
    const int32_t step = m_length < 64 ? 1 : (m_length - 32) / 32 + 1;
    uint32_t h = 0;
    for (int32_t i = 0; i < m_length; i += step) {
        const char c = ignoreCase ? foldAscii(m_data[i]) : m_data[i];
        h = h * 37u + static_cast<unsigned char>(c);
    }
    return h;
}

Str1 Str1::substring(int32_t start, int32_t length) const {
    start = clampStart(start, m_length);
    const int32_t rest = m_length - start;
    return Str1(m_data + start, length < 0 || length > rest ? rest : length, m_encoding);
}

String Str1::toString() const {
    return String(m_data, m_length, str1::EncodingArgument(m_encoding).get());
}

} // namespace qn
