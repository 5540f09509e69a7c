#include "qn/core/Number.h"

#include "qn/core/Exception.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace qn {

namespace {

// other as the boxed number class Name, or null. The classes are final, so comparing the dynamic
// type is the whole test, and far cheaper than dynamic_cast's walk of the class tree.
template <class Name> const Name* asExactly(const Object& other) {
    static_assert(std::is_final_v<Name>, "only a final class is known by its dynamic type");
    return typeid(other) == typeid(Name) ? static_cast<const Name*>(&other) : nullptr;
}

// An error message: a fixed part, then what it is about, with the text quoted and cut short.
class Message {
public:
    explicit Message(const char16_t* prefix) { append(prefix); }

    Message& append(const char16_t* part) {
        while (*part && m_length < CAPACITY)
            m_text[m_length++] = *part++;
        return *this;
    }
    Message& append(int value) {
        char digits[16];
        const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
        for (const char* p = digits; p != end && m_length < CAPACITY; ++p)
            m_text[m_length++] = static_cast<char16_t>(*p);
        return *this;
    }
    Message& appendQuoted(const String& text) {
        const char16_t* data = text.getData();
        const int32_t length = text.getLength();
        int32_t shown = std::min(length, QUOTED_LIMIT);
        // Never end on half a surrogate pair.
        if (shown < length && shown > 0 && data[shown - 1] >= 0xD800 && data[shown - 1] < 0xDC00)
            --shown;
        append(u"\"");
        for (int32_t i = 0; i < shown; ++i)
            m_text[m_length++] = data[i];
        return append(shown < length ? u"...\"" : u"\"");
    }
    String toString() const { return String(m_text, m_length); }

private:
    static constexpr int32_t QUOTED_LIMIT = 40;
    // Room for the longest fixed part, a quoted text at its limit and a number.
    static constexpr int32_t CAPACITY = 160;

    char16_t m_text[CAPACITY];
    int32_t m_length = 0;
};

[[noreturn]] void throwEmpty() {
    throw CastFailedException(String(u"not a number: empty text"));
}

[[noreturn]] void throwMalformed(const String& text, int radix = 10) {
    Message message(u"not a number");
    if (radix != 10)
        message.append(u" in radix ").append(radix);
    throw CastFailedException(message.append(u": ").appendQuoted(text).toString());
}

[[noreturn]] void throwOutOfRange(const char16_t* type, const String& text) {
    Message message(u"out of range for ");
    throw RangeErrorException(message.append(type).append(u": ").appendQuoted(text).toString());
}

[[noreturn]] void throwBadRadix(int radix) {
    throw RangeErrorException(Message(u"radix out of range 2 to 36: ").append(radix).toString());
}

[[noreturn]] void throwOtherClass(const char16_t* type) {
    throw CastFailedException(Message(u"compareTo needs another ").append(type).toString());
}

bool isDecimalDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// 0-35 for the ASCII digits and letters of either case, 36 for anything else.
unsigned digitValue(char16_t c) {
    if (isDecimalDigit(c))
        return c - u'0';
    if (c >= u'a' && c <= u'z')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'Z')
        return c - u'A' + 10;
    return 36;
}

// Reads the sign and the digits. False when the magnitude needs more than 64 bits; the text is
// still checked to its end, so that malformed text is reported as such however long it is.
bool readMagnitude(const String& text, int radix, uint64_t& magnitude, bool& negative) {
    if (radix < 2 || radix > 36)
        throwBadRadix(radix);
    const char16_t* data = text.getData();
    const int32_t length = text.getLength();
    if (length == 0)
        throwEmpty();
    int32_t i = 0;
    negative = data[0] == u'-';
    if (negative || data[0] == u'+')
        ++i;
    if (i == length)
        throwMalformed(text, radix);
    const unsigned base = static_cast<unsigned>(radix);
    const uint64_t cutoff = UINT64_MAX / base;
    const unsigned lastDigitLimit = static_cast<unsigned>(UINT64_MAX % base);
    bool fits = true;
    magnitude = 0;
    for (; i < length; ++i) {
        const unsigned digit = digitValue(data[i]);
        if (digit >= base)
            throwMalformed(text, radix);
        if (magnitude > cutoff || (magnitude == cutoff && digit > lastDigitLimit))
            fits = false;
        else
            magnitude = magnitude * base + digit;
    }
    return fits;
}

template <class T> T parseInteger(const String& text, int radix, const char16_t* type) {
    uint64_t magnitude;
    bool negative;
    const bool fits = readMagnitude(text, radix, magnitude, negative);
    constexpr uint64_t positiveLimit = std::numeric_limits<T>::max();
    constexpr uint64_t negativeLimit = std::is_signed_v<T> ? positiveLimit + 1 : 0;
    if (!fits || magnitude > (negative ? negativeLimit : positiveLimit))
        throwOutOfRange(type, text);
    // Wraps to the negative value; the most negative one has no positive counterpart in T.
    return static_cast<T>(negative ? 0 - magnitude : magnitude);
}

template <class T> String formatInteger(T value) {
    char16_t text[24];
    char16_t* const end = text + sizeof text / sizeof text[0];
    char16_t* p = end;
    uint64_t magnitude = static_cast<uint64_t>(value);
    bool negative = false;
    if constexpr (std::is_signed_v<T>) {
        negative = value < 0;
        if (negative)
            magnitude = 0 - magnitude;
    }
    do {
        *--p = static_cast<char16_t>(u'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude);
    if (negative)
        *--p = u'-';
    return String(p, static_cast<int32_t>(end - p));
}

template <class T> uint32_t hashInteger(T value) {
    // Up to 32 bits the value, sign-extended as Java's narrower types are.
    if constexpr (sizeof(T) <= 4) {
        return static_cast<uint32_t>(value);
    } else {
        const uint64_t bits = static_cast<uint64_t>(value);
        return static_cast<uint32_t>(bits ^ (bits >> 32));
    }
}

bool equalsIgnoringCase(const char16_t* text, int32_t length, const char* word) {
    int32_t i = 0;
    for (; i < length && word[i]; ++i) {
        char16_t c = text[i];
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c - u'A' + u'a');
        if (c != static_cast<unsigned char>(word[i]))
            return false;
    }
    return i == length && !word[i];
}

// The unsigned digit form: checks the syntax, then has the run time round it to nearest.
template <class T>
T readDecimal(const char16_t* data, int32_t length, const String& text, const char16_t* type) {
    int32_t i = 0;
    int32_t firstNonZero = -1; // among all the digits before the exponent
    for (; i < length && isDecimalDigit(data[i]); ++i) {
        if (firstNonZero < 0 && data[i] != u'0')
            firstNonZero = i;
    }
    const int32_t integerDigits = i;
    int32_t digits = integerDigits;
    if (i < length && data[i] == u'.') {
        for (++i; i < length && isDecimalDigit(data[i]); ++i, ++digits) {
            if (firstNonZero < 0 && data[i] != u'0')
                firstNonZero = digits;
        }
    }
    if (digits == 0)
        throwMalformed(text);
    int64_t exponent = 0;
    if (i < length && (data[i] == u'e' || data[i] == u'E')) {
        ++i;
        const bool negativeExponent = i < length && data[i] == u'-';
        if (i < length && (negativeExponent || data[i] == u'+'))
            ++i;
        if (i == length || !isDecimalDigit(data[i]))
            throwMalformed(text);
        // Saturated far beyond any type's range, so that it cannot overflow.
        for (; i < length && isDecimalDigit(data[i]); ++i)
            exponent = std::min<int64_t>(exponent * 10 + (data[i] - u'0'), 1000000000);
        if (negativeExponent)
            exponent = -exponent;
    }
    if (i != length)
        throwMalformed(text);

    // The text is ASCII now. Only an absurdly long one needs the heap.
    char shortCopy[128];
    std::string longCopy;
    char* ascii = shortCopy;
    if (length > static_cast<int32_t>(sizeof shortCopy)) {
        longCopy.resize(static_cast<size_t>(length));
        ascii = longCopy.data();
    }
    std::copy(data, data + length, ascii);
    T value;
    const std::from_chars_result result =
        std::from_chars(ascii, ascii + length, value, std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range) {
        // The power of ten of the leading digit tells an overflow from an underflow, which
        // becomes zero as in Java.
        if (integerDigits - 1 - firstNonZero + exponent > 0)
            throwOutOfRange(type, text);
        return 0;
    }
    if (result.ec != std::errc() || result.ptr != ascii + length)
        throwMalformed(text);
    return value;
}

template <class T> T parseFloating(const String& text, const char16_t* type) {
    const char16_t* data = text.getData();
    int32_t begin = 0;
    int32_t end = text.getLength();
    while (begin < end && data[begin] <= u' ')
        ++begin;
    while (end > begin && data[end - 1] <= u' ')
        --end;
    if (begin == end)
        throwEmpty();
    const bool negative = data[begin] == u'-';
    if (negative || data[begin] == u'+')
        ++begin;
    const char16_t* rest = data + begin;
    const int32_t length = end - begin;
    if (equalsIgnoringCase(rest, length, "nan"))
        return std::numeric_limits<T>::quiet_NaN();
    T magnitude;
    if (equalsIgnoringCase(rest, length, "inf") || equalsIgnoringCase(rest, length, "infinity"))
        magnitude = std::numeric_limits<T>::infinity();
    else
        magnitude = readDecimal<T>(rest, length, text, type);
    return negative ? -magnitude : magnitude;
}

String asciiToString(const char* begin, const char* end) {
    char16_t text[48];
    std::copy(begin, end, text);
    return String(text, static_cast<int32_t>(end - begin));
}

// The scientific form "-d.ddde-XX" laid out as "%g" lays out a value with that many significant
// digits: in that form again, or in positional form when the exponent is at least -4 and below
// the digit count (or 6, printf's default).
String layOutLikeG(const char* text, const char* end) {
    const char* p = text;
    const bool negative = *p == '-';
    if (negative)
        ++p;
    char digits[24];
    int count = 0;
    for (; *p != 'e'; ++p) {
        if (*p != '.')
            digits[count++] = *p;
    }
    const char* exponentText = p + 1;
    int exponent = 0;
    std::from_chars(exponentText + 1, end, exponent);
    if (*exponentText == '-')
        exponent = -exponent;

    char out[48];
    int n = 0;
    if (negative)
        out[n++] = '-';
    if (exponent < -4 || exponent >= std::max(count, 6)) {
        out[n++] = digits[0];
        if (count > 1)
            out[n++] = '.';
        n = static_cast<int>(std::copy(digits + 1, digits + count, out + n) - out);
        out[n++] = 'e';
        // Sign and at least two digits, as in printf's form.
        n = static_cast<int>(std::copy(exponentText, end, out + n) - out);
    } else if (exponent >= 0) {
        for (int i = 0; i <= exponent; ++i)
            out[n++] = i < count ? digits[i] : '0';
        if (count > exponent + 1)
            out[n++] = '.';
        for (int i = exponent + 1; i < count; ++i)
            out[n++] = digits[i];
    } else {
        out[n++] = '0';
        out[n++] = '.';
        for (int i = -1; i > exponent; --i)
            out[n++] = '0';
        n = static_cast<int>(std::copy(digits, digits + count, out + n) - out);
    }
    return asciiToString(out, out + n);
}

template <class T> String formatFloating(T value) {
    if (std::isnan(value))
        return String(u"nan");
    char text[48];
    // String::valueOf's "%g" first: six significant digits, kept when they read back exactly.
    char* end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr;
    T readBack;
    const std::from_chars_result back = std::from_chars(text, end, readBack);
    if (back.ec == std::errc() && readBack == value)
        return asciiToString(text, end);
    end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
    return layOutLikeG(text, end);
}

// The bits that equals, hashCode and compare read, every NaN as the one NaN; a hash folds them
// as hashInteger folds an integer of their width.
int32_t canonicalBits(float value) noexcept {
    return Float::floatToIntBits(value);
}
int64_t canonicalBits(double value) noexcept {
    return Double::doubleToLongBits(value);
}

template <class T> int32_t compareFloating(T a, T b) noexcept {
    if (a < b)
        return -1;
    if (a > b)
        return 1;
    // Equal or unordered: the bits order -0.0 below 0.0 and the one NaN above everything.
    const auto x = canonicalBits(a);
    const auto y = canonicalBits(b);
    return x < y ? -1 : x > y ? 1 : 0;
}

} // namespace

Number::~Number() = default;
SignedInteger::~SignedInteger() = default;
UnsignedInteger::~UnsignedInteger() = default;

// What every boxed number defines alike; compare is the class's own.
#define QN_NUMBER_MEMBERS(Name)                                                                    \
    Name::~Name() = default;                                                                       \
    Reference<Object> Name::clone() const {                                                        \
        return Reference<Object>(new Name(*this));                                                 \
    }                                                                                              \
    int32_t Name::compareTo(const Object& other) const {                                           \
        const auto* that = asExactly<Name>(other);                                                 \
        if (!that)                                                                                 \
            throwOtherClass(u"" #Name);                                                            \
        return compare(m_value, that->m_value);                                                    \
    }                                                                                              \
    Reference<Name> Name::valueOf(ValueType value) {                                               \
        return Reference<Name>(new Name(value));                                                   \
    }

// The constants are defined here too, so that the DLL exports them: code that binds one to a
// reference (as std::max does) takes its address, which a Windows client imports.
#define QN_INTEGER_MEMBERS(Name)                                                                   \
    constexpr Name::ValueType Name::MIN_VALUE;                                                     \
    constexpr Name::ValueType Name::MAX_VALUE;                                                     \
    QN_NUMBER_MEMBERS(Name)                                                                        \
    bool Name::equals(const Object& other) const {                                                 \
        const auto* that = asExactly<Name>(other);                                                 \
        return that && that->m_value == m_value;                                                   \
    }                                                                                              \
    uint32_t Name::hashCode() const {                                                              \
        return hashInteger(m_value);                                                               \
    }                                                                                              \
    String Name::toString() const {                                                                \
        return formatInteger(m_value);                                                             \
    }                                                                                              \
    Name::ValueType Name::parse(const String& text, int radix) {                                   \
        return parseInteger<ValueType>(text, radix, u"" #Name);                                    \
    }                                                                                              \
    Reference<Name> Name::valueOf(const String& text, int radix) {                                 \
        return valueOf(parse(text, radix));                                                        \
    }

QN_INTEGER_MEMBERS(Integer8)
QN_INTEGER_MEMBERS(Integer16)
QN_INTEGER_MEMBERS(Integer32)
QN_INTEGER_MEMBERS(Integer64)
QN_INTEGER_MEMBERS(UInteger8)
QN_INTEGER_MEMBERS(UInteger16)
QN_INTEGER_MEMBERS(UInteger32)
QN_INTEGER_MEMBERS(UInteger64)

#undef QN_INTEGER_MEMBERS

// The same for Float and Double, which compare, hash and test equality through canonicalBits.
#define QN_FLOATING_MEMBERS(Name)                                                                  \
    constexpr Name::ValueType Name::MIN_VALUE;                                                     \
    constexpr Name::ValueType Name::MIN_NORMAL;                                                    \
    constexpr Name::ValueType Name::MAX_VALUE;                                                     \
    constexpr Name::ValueType Name::POSITIVE_INFINITY;                                             \
    constexpr Name::ValueType Name::NEGATIVE_INFINITY;                                             \
    constexpr Name::ValueType Name::NaN;                                                           \
    QN_NUMBER_MEMBERS(Name)                                                                        \
    bool Name::equals(const Object& other) const {                                                 \
        const auto* that = asExactly<Name>(other);                                                 \
        return that && canonicalBits(that->m_value) == canonicalBits(m_value);                     \
    }                                                                                              \
    uint32_t Name::hashCode() const {                                                              \
        return hashInteger(canonicalBits(m_value));                                                \
    }                                                                                              \
    String Name::toString() const {                                                                \
        return formatFloating(m_value);                                                            \
    }                                                                                              \
    int32_t Name::compare(ValueType a, ValueType b) noexcept {                                     \
        return compareFloating(a, b);                                                              \
    }                                                                                              \
    Name::ValueType Name::parse(const String& text) {                                              \
        return parseFloating<ValueType>(text, u"" #Name);                                          \
    }                                                                                              \
    Reference<Name> Name::valueOf(const String& text) {                                            \
        return valueOf(parse(text));                                                               \
    }

QN_FLOATING_MEMBERS(Float)
QN_FLOATING_MEMBERS(Double)

#undef QN_FLOATING_MEMBERS
#undef QN_NUMBER_MEMBERS

} // namespace qn
