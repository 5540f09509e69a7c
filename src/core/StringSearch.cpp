// String's comparing, searching and hashing, and the unit algorithms under them. Plain loops
// work on 64-bit words (four units) where that is safe without knowing the byte order.
#include "qn/core/String.h"

#include "StringReader.h"

#include <algorithm>

namespace qn {

namespace units {

namespace {

constexpr uint64_t LANE_ONES = 0x0001000100010001ULL;
constexpr uint64_t LANE_HIGHS = 0x8000800080008000ULL;

uint64_t load4(const char16_t* p) {
    uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// The index of the first unit where a and b differ, or length.
int32_t mismatch(const char16_t* a, const char16_t* b, int32_t length) {
    int32_t i = 0;
    for (; i + 8 <= length; i += 8) {
        if (((load4(a + i) ^ load4(b + i)) | (load4(a + i + 4) ^ load4(b + i + 4))) != 0)
            break;
    }
    while (i < length && a[i] == b[i])
        ++i;
    return i;
}

int32_t mismatchFolded(const char16_t* a, const char16_t* b, int32_t length) {
    int32_t i = 0;
    while (i < length && (a[i] == b[i] || fold(a[i]) == fold(b[i])))
        ++i;
    return i;
}

// The first index in [i, end) holding c: four units a step, testing each word for a zero lane
// after XOR with c in every lane.
int32_t findExact(const char16_t* data, int32_t i, int32_t end, char16_t c) {
    const uint64_t pattern = LANE_ONES * c;
    for (; i + 4 <= end; i += 4) {
        const uint64_t word = load4(data + i) ^ pattern;
        if (((word - LANE_ONES) & ~word & LANE_HIGHS) != 0)
            break;
    }
    for (; i < end; ++i) {
        if (data[i] == c)
            return i;
    }
    return -1;
}

// h = h * 37 + unit over the units data[at(0)], ..., data[at(count - 1)], eight units a step:
// h * 37^8 plus the eight units weighted by 37^7 down to 1, grouped in pairs (c * 37 + d) so
// that a step costs four general multiplications and only one of them depends on h.
template <bool FOLD, class At> uint32_t hashUnits(const char16_t* data, int32_t count, At at) {
    constexpr uint32_t P1 = 37u, P2 = P1 * P1, P4 = P2 * P2, P8 = P4 * P4;
    const auto unit = [&](int32_t k) -> uint32_t {
        const char16_t c = data[at(k)];
        return FOLD ? fold(c) : c;
    };
    uint32_t h = 0;
    int32_t k = 0;
    for (; k + 8 <= count; k += 8) {
        const uint32_t p0 = unit(k) * P1 + unit(k + 1);
        const uint32_t p1 = unit(k + 2) * P1 + unit(k + 3);
        const uint32_t p2 = unit(k + 4) * P1 + unit(k + 5);
        const uint32_t p3 = unit(k + 6) * P1 + unit(k + 7);
        h = h * P8 + (p0 * P2 + p1) * P4 + (p2 * P2 + p3);
    }
    for (; k < count; ++k)
        h = h * P1 + unit(k);
    return h;
}

// Every step-th unit from the first: all of them below length 64, at most 63 above. The empty
// text has step 0.
template <bool FOLD> uint32_t hashSampled(const char16_t* data, int32_t length, int32_t step) {
    if (step <= 1)
        return hashUnits<FOLD>(data, length, [](int32_t k) { return k; });
    const int32_t count = (length + step - 1) / step;
    return hashUnits<FOLD>(data, count, [step](int32_t k) { return k * step; });
}

} // namespace

uint32_t hash(const char16_t* data, int32_t length, bool ignoreCase) {
    // Truncated toward zero: every unit below length 64, then a sample of 32 to 63 units.
    const int32_t step = (length - 32) / 32 + 1;
    return ignoreCase ? hashSampled<true>(data, length, step)
                      : hashSampled<false>(data, length, step);
}

int32_t compare(const char16_t* a, int32_t lengthA, const char16_t* b, int32_t lengthB,
                bool ignoreCase) {
    const int32_t common = std::min(lengthA, lengthB);
    const int32_t i = ignoreCase ? mismatchFolded(a, b, common) : mismatch(a, b, common);
    if (i < common) {
        const char16_t x = ignoreCase ? fold(a[i]) : a[i];
        const char16_t y = ignoreCase ? fold(b[i]) : b[i];
        return x < y ? -1 : 1;
    }
    return lengthA < lengthB ? -1 : lengthA > lengthB ? 1 : 0;
}

bool equal(const char16_t* a, const char16_t* b, int32_t length, bool ignoreCase) {
    if (ignoreCase)
        return mismatchFolded(a, b, length) == length;
    return a == b || std::memcmp(a, b, static_cast<size_t>(length) * sizeof(char16_t)) == 0;
}

int32_t find(const char16_t* data, int32_t start, int32_t end, char16_t c, bool ignoreCase) {
    if (!ignoreCase)
        return findExact(data, start, end, c);
    const char16_t folded = fold(c);
    for (int32_t i = start; i < end; ++i) {
        if (fold(data[i]) == folded)
            return i;
    }
    return -1;
}

int32_t find(const char16_t* data, int32_t length, int32_t start, const char16_t* needle,
             int32_t needleLength, bool ignoreCase) {
    if (needleLength == 0)
        return start;
    const int32_t last = length - needleLength;
    for (int32_t i = start; i <= last; ++i) {
        i = find(data, i, last + 1, needle[0], ignoreCase);
        if (i < 0)
            return -1;
        if (equal(data + i + 1, needle + 1, needleLength - 1, ignoreCase))
            return i;
    }
    return -1;
}

int32_t findLast(const char16_t* data, int32_t length, int32_t start, const char16_t* needle,
                 int32_t needleLength, bool ignoreCase) {
    for (int32_t i = std::min(start, length - needleLength); i >= 0; --i) {
        if (equal(data + i, needle, needleLength, ignoreCase))
            return i;
    }
    return -1;
}

UnitSet::UnitSet(const char16_t* set, int32_t length, bool ignoreCase) : m_ignoreCase(ignoreCase) {
    for (int32_t i = 0; i < length; ++i) {
        const char16_t c = ignoreCase ? fold(set[i]) : set[i];
        if (c < 256) {
            m_low[c >> 6] |= uint64_t{1} << (c & 63);
            continue;
        }
        if (!m_high)
            m_high = new char16_t[static_cast<size_t>(length - i)];
        m_high[m_highCount++] = c;
    }
}

UnitSet::~UnitSet() {
    delete[] m_high;
}

bool UnitSet::containsHigh(char16_t c) const {
    return std::find(m_high, m_high + m_highCount, c) != m_high + m_highCount;
}

} // namespace units

namespace {

// The first index in [start, end) whose membership in set equals wanted, or -1; backwards from
// start down to 0 when last.
int32_t scan(const char16_t* data, int32_t length, const units::UnitSet& set, int32_t start,
             bool wanted, bool last) {
    if (last) {
        for (int32_t i = std::min(start, length - 1); i >= 0; --i) {
            if (set.contains(data[i]) == wanted)
                return i;
        }
        return -1;
    }
    for (int32_t i = std::max(start, 0); i < length; ++i) {
        if (set.contains(data[i]) == wanted)
            return i;
    }
    return -1;
}

int32_t fromEnd(int32_t start, int32_t length) {
    return start < 0 ? length : start;
}

} // namespace

int32_t String::compare(const String& other, bool ignoreCase) const {
    if (m_buffer == other.m_buffer)
        return 0;
    const Reader a(*this);
    const Reader b(other);
    return units::compare(a.data, a.length, b.data, b.length, ignoreCase);
}

int32_t String::compare(const char16_t* text, int32_t length, bool ignoreCase) const {
    length = units::measure(text, length);
    const Reader a(*this);
    return units::compare(a.data, a.length, text, length, ignoreCase);
}

bool String::equals(const String& other, bool ignoreCase) const {
    if (m_buffer == other.m_buffer)
        return true;
    const Reader a(*this);
    const Reader b(other);
    return a.length == b.length && units::equal(a.data, b.data, a.length, ignoreCase);
}

bool String::equals(const char16_t* text, int32_t length, bool ignoreCase) const {
    length = units::measure(text, length);
    const Reader a(*this);
    return a.length == length && units::equal(a.data, text, length, ignoreCase);
}

int32_t String::regionCompare(int32_t start, int32_t length, const String& other,
                              int32_t otherStart, int32_t otherLength, bool ignoreCase) const {
    const Reader a(*this);
    const Reader b(other);
    units::clamp(a.length, start, length);
    units::clamp(b.length, otherStart, otherLength);
    return units::compare(a.data + start, length, b.data + otherStart, otherLength, ignoreCase);
}

bool String::regionMatches(int32_t start, int32_t length, const String& other, int32_t otherStart,
                           int32_t otherLength, bool ignoreCase) const {
    return regionCompare(start, length, other, otherStart, otherLength, ignoreCase) == 0;
}

bool String::startsWith(const String& prefix, bool ignoreCase) const {
    const Reader b(prefix);
    return startsWith(b.data, b.length, ignoreCase);
}

bool String::startsWith(const char16_t* text, int32_t length, bool ignoreCase) const {
    length = units::measure(text, length);
    const Reader a(*this);
    return length <= a.length && units::equal(a.data, text, length, ignoreCase);
}

bool String::endsWith(const String& suffix, bool ignoreCase) const {
    const Reader b(suffix);
    return endsWith(b.data, b.length, ignoreCase);
}

bool String::endsWith(const char16_t* text, int32_t length, bool ignoreCase) const {
    length = units::measure(text, length);
    const Reader a(*this);
    return length <= a.length && units::equal(a.data + a.length - length, text, length, ignoreCase);
}

bool String::contains(const String& part, bool ignoreCase) const {
    return indexOf(part, 0, ignoreCase) >= 0;
}

bool String::contains(const char16_t* text, int32_t length, bool ignoreCase) const {
    return indexOf(text, length, 0, ignoreCase) >= 0;
}

int32_t String::indexOf(const String& part, int32_t start, bool ignoreCase) const {
    const Reader b(part);
    return indexOf(b.data, b.length, start, ignoreCase);
}

int32_t String::indexOf(const char16_t* text, int32_t length, int32_t start,
                        bool ignoreCase) const {
    length = units::measure(text, length);
    const Reader a(*this);
    start = std::clamp(start, 0, a.length);
    return units::find(a.data, a.length, start, text, length, ignoreCase);
}

int32_t String::indexOf(char16_t c, int32_t start, bool ignoreCase) const {
    const Reader a(*this);
    return units::find(a.data, std::max(start, 0), a.length, c, ignoreCase);
}

int32_t String::lastIndexOf(const String& part, int32_t start, bool ignoreCase) const {
    const Reader b(part);
    return lastIndexOf(b.data, b.length, start, ignoreCase);
}

int32_t String::lastIndexOf(const char16_t* text, int32_t length, int32_t start,
                            bool ignoreCase) const {
    length = units::measure(text, length);
    const Reader a(*this);
    start = std::min(fromEnd(start, a.length), a.length);
    return units::findLast(a.data, a.length, start, text, length, ignoreCase);
}

int32_t String::lastIndexOf(char16_t c, int32_t start, bool ignoreCase) const {
    return lastIndexOf(&c, 1, start, ignoreCase);
}

int32_t String::findFirstOf(const String& set, int32_t start, bool ignoreCase) const {
    const Reader s(set);
    return findFirstOf(s.data, s.length, start, ignoreCase);
}

int32_t String::findFirstOf(const char16_t* set, int32_t length, int32_t start,
                            bool ignoreCase) const {
    const units::UnitSet members(set, units::measure(set, length), ignoreCase);
    const Reader a(*this);
    return scan(a.data, a.length, members, start, true, false);
}

int32_t String::findFirstNotOf(const String& set, int32_t start, bool ignoreCase) const {
    const Reader s(set);
    return findFirstNotOf(s.data, s.length, start, ignoreCase);
}

int32_t String::findFirstNotOf(const char16_t* set, int32_t length, int32_t start,
                               bool ignoreCase) const {
    const units::UnitSet members(set, units::measure(set, length), ignoreCase);
    const Reader a(*this);
    return scan(a.data, a.length, members, start, false, false);
}

int32_t String::findLastOf(const String& set, int32_t start, bool ignoreCase) const {
    const Reader s(set);
    return findLastOf(s.data, s.length, start, ignoreCase);
}

int32_t String::findLastOf(const char16_t* set, int32_t length, int32_t start,
                           bool ignoreCase) const {
    const units::UnitSet members(set, units::measure(set, length), ignoreCase);
    const Reader a(*this);
    return scan(a.data, a.length, members, fromEnd(start, a.length), true, true);
}

int32_t String::findLastNotOf(const String& set, int32_t start, bool ignoreCase) const {
    const Reader s(set);
    return findLastNotOf(s.data, s.length, start, ignoreCase);
}

int32_t String::findLastNotOf(const char16_t* set, int32_t length, int32_t start,
                              bool ignoreCase) const {
    const units::UnitSet members(set, units::measure(set, length), ignoreCase);
    const Reader a(*this);
    return scan(a.data, a.length, members, fromEnd(start, a.length), false, true);
}

int32_t String::findFirstOfCase(const String& set, int32_t start) const {
    return findFirstOf(set, start, false);
}

int32_t String::findFirstOfCase(const char16_t* set, int32_t length, int32_t start) const {
    return findFirstOf(set, length, start, false);
}

uint32_t String::hashCode(bool ignoreCase) const {
    const Reader a(*this);
    return units::hash(a.data, a.length, ignoreCase);
}

} // namespace qn
