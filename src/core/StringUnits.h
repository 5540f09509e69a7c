// Unit-level text algorithms behind String: measuring, case folding, ordinal comparison,
// searching and hashing over (pointer, length) pairs. Internal to the library.
#pragma once

#include "qn/core/Config.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace qn::units {

// Units of text (length -1: up to its terminating zero); a null text has none.
inline int32_t measure(const char16_t* text, int32_t length) {
    if (!text)
        return 0;
    return length < 0 ? QNStrLenW(reinterpret_cast<const QNWCHAR*>(text)) : length;
}

// Clamps start into [0, size] and length into [0, size - start]; a negative length means "to
// the end".
inline void clamp(int32_t size, int32_t& start, int32_t& length) {
    if (start < 0)
        start = 0;
    else if (start > size)
        start = size;
    if (length < 0 || length > size - start)
        length = size - start;
}

// a + b as a length that still leaves room for a terminating zero; std::bad_alloc beyond.
inline int32_t sum(int64_t a, int64_t b) {
    const int64_t total = a + b;
    if (total >= INT32_MAX)
        throw std::bad_alloc();
    return static_cast<int32_t>(total);
}

// The simple lower-case mapping of the core module, with ASCII answered here.
inline char16_t fold(char16_t c) {
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 0x20) : c;
    return static_cast<char16_t>(QNToLowerW(static_cast<QNWCHAR>(c)));
}

inline void copy(char16_t* to, const char16_t* from, int32_t length) {
    if (length > 0)
        std::memcpy(to, from, static_cast<size_t>(length) * sizeof(char16_t));
}

// True when text starts inside [data, data + length).
inline bool within(const char16_t* text, const char16_t* data, int32_t length) {
    const uintptr_t t = reinterpret_cast<uintptr_t>(text);
    const uintptr_t d = reinterpret_cast<uintptr_t>(data);
    return t >= d && t < d + static_cast<uintptr_t>(length) * sizeof(char16_t);
}

// Ordinal comparison, a shorter prefix first: -1, 0 or 1.
int32_t compare(const char16_t* a, int32_t lengthA, const char16_t* b, int32_t lengthB,
                bool ignoreCase);
bool equal(const char16_t* a, const char16_t* b, int32_t length, bool ignoreCase);

// The first index in [start, end) holding c (folded when ignoreCase), or -1.
int32_t find(const char16_t* data, int32_t start, int32_t end, char16_t c, bool ignoreCase);
// The first match of needle beginning in [start, length - needleLength], or -1.
int32_t find(const char16_t* data, int32_t length, int32_t start, const char16_t* needle,
             int32_t needleLength, bool ignoreCase);
// The last match of needle beginning at or before start, or -1.
int32_t findLast(const char16_t* data, int32_t length, int32_t start, const char16_t* needle,
                 int32_t needleLength, bool ignoreCase);

// String's hash of a text: h = h * 37 + unit over every unit below length 64, then over every
// (length - 32) / 32 + 1-th unit from the first, in wrapping 32-bit arithmetic; 0 when empty.
uint32_t hash(const char16_t* data, int32_t length, bool ignoreCase);

// Membership in a set of units: a bitmap below 256, a list above.
class UnitSet {
public:
    UnitSet(const char16_t* set, int32_t length, bool ignoreCase);
    ~UnitSet();
    UnitSet(const UnitSet&) = delete;
    UnitSet& operator=(const UnitSet&) = delete;

    bool contains(char16_t c) const {
        if (m_ignoreCase)
            c = fold(c);
        if (c < 256)
            return (m_low[c >> 6] >> (c & 63)) & 1;
        return containsHigh(c);
    }

private:
    bool containsHigh(char16_t c) const;

    uint64_t m_low[4] = {0, 0, 0, 0};
    char16_t* m_high = nullptr;
    int32_t m_highCount = 0;
    bool m_ignoreCase;
};

} // namespace qn::units
