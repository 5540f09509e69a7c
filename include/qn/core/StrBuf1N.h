// StrBuf1N<N>: a StrBuf1 that holds up to N bytes inside the object, so short 8-bit strings
// (names, keys, small conversions) are built without touching the heap. Longer text moves to a
// heap block as in StrBuf1; everything else is StrBuf1's.
#pragma once

#include "qn/core/StrBuf1.h"

namespace qn {

template <int32_t N> class StrBuf1N : public StrBuf1 {
    static_assert(N > 0, "StrBuf1N needs room for at least one byte");

public:
    StrBuf1N() noexcept : StrBuf1(m_storage, N) {}
    explicit StrBuf1N(const Str1& text) : StrBuf1(m_storage, N) { setTo(text); }
    StrBuf1N(const char* text, int32_t length = -1, const String& encoding = String())
        : StrBuf1(m_storage, N) {
        setEncoding(encoding);
        setTo(text, length);
    }
    StrBuf1N(const String& text, const String& encoding) : StrBuf1(m_storage, N) {
        setEncoding(encoding);
        setTo(text);
    }
    StrBuf1N(const StrBuf1N& other) : StrBuf1(m_storage, N) { setTo(other); }
    StrBuf1N& operator=(const StrBuf1N& other) {
        setTo(other);
        return *this;
    }
    StrBuf1N& operator=(const Str1& text) {
        setTo(text);
        return *this;
    }

private:
    // N bytes and the terminator.
    char m_storage[N + 1];
};

} // namespace qn
