// Str1: a read-only view of 8-bit text in a named encoding. It is the library's form for byte
// text that keeps its encoding with it: codec names, protocol keys, text on its way to or from a
// String. A view holds no bytes of its own; StrBuf1 (and StrBuf1N) own theirs and derive from it,
// so every operation below also works on a buffer.
#pragma once

#include "qn/core/String.h"

namespace qn {

// Design:
// - The text is a pointer and a length; it need not be zero-terminated and may hold zero bytes.
//   A view made from a pointer refers to the caller's bytes, which must outlive it.
// - The encoding is a name known to the codec manager ("ISO8859_1", "UTF-8", "CP1252", ...),
//   held as a String; the empty name means the process's default encoding. It only matters
//   where bytes become characters: toString, and the case mapping of StrBuf1.
// - Comparing and searching are ordinal over unsigned bytes, shorter prefix first, whatever the
//   encoding. Case-insensitive matching folds the ASCII letters only: the meaning of a byte above
//   0x7F depends on the encoding, and keys (codec names, headers) are ASCII in practice.
// - Indices follow String's rules: a start outside the text is clamped into it, a negative or
//   too long length means "to the end"; only getCharAt refuses an index outside the text, with
//   RangeErrorException.
// - A Str1 is a value: copying it copies the view, never the bytes.
class QNCL_API Str1 {
public:
    // The empty text in the default encoding.
    Str1() noexcept : m_data(EMPTY), m_length(0) {}
    // length -1 means up to the terminating zero; a null text is the empty text.
    Str1(const char* text, int32_t length = -1, const String& encoding = String());
    Str1(const signed char* text, int32_t length, const String& encoding = String())
        : Str1(reinterpret_cast<const char*>(text), length, encoding) {}
    Str1(const unsigned char* text, int32_t length, const String& encoding = String())
        : Str1(reinterpret_cast<const char*>(text), length, encoding) {}

    int32_t getLength() const noexcept { return m_length; }
    bool isEmpty() const noexcept { return m_length == 0; }
    const char* getData() const noexcept { return m_data; }
    // The same bytes in the form the converters take.
    const signed char* getBytes() const noexcept {
        return reinterpret_cast<const signed char*>(m_data);
    }
    // The empty String stands for the process's default encoding.
    const String& getEncoding() const noexcept { return m_encoding; }
    // RangeErrorException outside 0 to length - 1.
    char getCharAt(int32_t index) const;
    char operator[](int32_t index) const { return getCharAt(index); }

    // -1, 0 or 1.
    int32_t compare(const Str1& other, bool ignoreCase = false) const noexcept;
    bool equals(const Str1& other, bool ignoreCase = false) const noexcept;
    bool startsWith(const Str1& prefix, bool ignoreCase = false) const noexcept;
    bool endsWith(const Str1& suffix, bool ignoreCase = false) const noexcept;
    bool contains(const Str1& part, bool ignoreCase = false) const noexcept {
        return indexOf(part, 0, ignoreCase) >= 0;
    }
    // The first match at or after start, or the last one beginning at or before start (a
    // negative start: from the end); -1 when absent. An empty part matches at the clamped start.
    int32_t indexOf(const Str1& part, int32_t start = 0, bool ignoreCase = false) const noexcept;
    int32_t indexOf(char c, int32_t start = 0, bool ignoreCase = false) const noexcept;
    int32_t lastIndexOf(const Str1& part, int32_t start = -1,
                        bool ignoreCase = false) const noexcept;
    int32_t lastIndexOf(char c, int32_t start = -1, bool ignoreCase = false) const noexcept;

    // String's hash over the unsigned bytes: h = h * 37 + byte over every byte below length 64,
    // else every (length - 32) / 32 + 1-th from the first, wrapping in 32 bits; 0 when empty. With
    // ignoreCase, ASCII letters count as lower case.
    uint32_t hashCode(bool ignoreCase = false) const noexcept;

    // A view of the range, in the same encoding.
    Str1 substring(int32_t start, int32_t length = -1) const;

    // The text decoded in its encoding, through the codec manager's decoder (substitution on,
    // so undecodable bytes become U+FFFD; an incomplete sequence at the end becomes one U+FFFD).
    // UnknownEncodingException when no converter has the encoding's name.
    String toString() const;

    // The ASCII simple case mapping the ignoreCase forms use.
    static char foldAscii(char c) noexcept {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    }

protected:
    void setView(const char* data, int32_t length) noexcept {
        m_data = data;
        m_length = length;
    }

    static const char EMPTY[1];

    const char* m_data;
    int32_t m_length;
    String m_encoding;
};

inline bool operator==(const Str1& a, const Str1& b) {
    return a.equals(b);
}
inline bool operator!=(const Str1& a, const Str1& b) {
    return !a.equals(b);
}
inline bool operator<(const Str1& a, const Str1& b) {
    return a.compare(b) < 0;
}

} // namespace qn
