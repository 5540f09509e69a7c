// The boxed numbers: immutable objects holding one value of a fixed width, for code that handles
// numbers as Objects (collections, ordering and hashing across components). They behave as
// Java's Byte, Integer, Long, Float and Double do, with unsigned widths beside the signed ones.
//
// Reading a value in another width never fails:
//  - an integer becomes another integer modulo 2^width (two's complement wrapping), and a float
//    or double rounded to nearest;
//  - a Float or Double becomes an int32 or int64 truncated toward zero, NaN as 0 and saturated at
//    the type's limits; an int8, int16, uint8 or uint16 through int32, then wrapped; a uint32
//    through int64, then wrapped; a uint64 truncated, NaN as 0, saturated above, and a negative
//    value through int64, then wrapped, so -1.0 gives the largest value as -1 does;
//  - a Double becomes a float rounded to nearest, beyond float's range an infinity.
//
// Text is read where it lies in the String: parse allocates nothing but its exception (and a
// copy of floating-point text over 128 units). Failures, with messages that quote the text:
//  - CastFailedException: empty or malformed text, which cannot become a number at all (where
//    Java throws NumberFormatException);
//  - RangeErrorException: a well-formed number outside the type's range, or a radix outside 2-36
//    (checked before the text).
//
// Each valueOf returns a new object: there is no cache of small values as in Java, since objects
// are counted and a shared one would outlive the module that made it.
#pragma once

#include "qn/core/Object.h"
#include "qn/core/String.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace qn {

namespace detail {

// C++ leaves these conversions undefined out of range; these are Java's.
inline int32_t floatingToInt32(double value) noexcept {
    if (std::isnan(value))
        return 0;
    if (value <= -2147483648.0)
        return std::numeric_limits<int32_t>::min();
    if (value >= 2147483647.0)
        return std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(value);
}

inline int64_t floatingToInt64(double value) noexcept {
    if (std::isnan(value))
        return 0;
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<int64_t>::min();
    // 2^63 itself is the first double out of range.
    if (value >= 9223372036854775808.0)
        return std::numeric_limits<int64_t>::max();
    return static_cast<int64_t>(value);
}

inline uint64_t floatingToUInt64(double value) noexcept {
    if (std::isnan(value))
        return 0;
    if (value >= 18446744073709551616.0)
        return std::numeric_limits<uint64_t>::max();
    if (value > -1.0)
        return static_cast<uint64_t>(value);
    return static_cast<uint64_t>(floatingToInt64(value));
}

} // namespace detail

// Any boxed number, read in any width as described above.
class QNCL_API Number : public Object {
public:
    ~Number() override;

    virtual int8_t int8Value() const noexcept = 0;
    virtual int16_t int16Value() const noexcept = 0;
    virtual int32_t int32Value() const noexcept = 0;
    virtual int64_t int64Value() const noexcept = 0;
    virtual uint8_t uint8Value() const noexcept = 0;
    virtual uint16_t uint16Value() const noexcept = 0;
    virtual uint32_t uint32Value() const noexcept = 0;
    virtual uint64_t uint64Value() const noexcept = 0;
    virtual float floatValue() const noexcept = 0;
    virtual double doubleValue() const noexcept = 0;

protected:
    Number() noexcept = default;
    // A copy is a new object: it shares nothing of the original's count or module.
    Number(const Number&) noexcept : Object(static_cast<const Object*>(nullptr)) {}
};

// The signed integers; int64Value() reads any of them without loss.
class QNCL_API SignedInteger : public Number {
public:
    ~SignedInteger() override;

protected:
    SignedInteger() noexcept = default;
    SignedInteger(const SignedInteger&) noexcept = default;
};

// The unsigned integers; uint64Value() reads any of them without loss.
class QNCL_API UnsignedInteger : public Number {
public:
    ~UnsignedInteger() override;

protected:
    UnsignedInteger() noexcept = default;
    UnsignedInteger(const UnsignedInteger&) noexcept = default;
};

// Integer8 ... UInteger64. Beyond Object's operations:
//  - compareTo orders by value (-1, 0 or 1) and throws CastFailedException for an object of any
//    other class, even another integer; equals wants the same class and value;
//  - hashCode is Java's: the value itself, sign-extended, up to 32 bits; the two halves of the
//    value exclusive-or'ed for 64 bits;
//  - toString is the value in base 10, as String::valueOf writes it;
//  - parse reads an optional sign and at least one digit of the radix, the ASCII digits and
//    letters of either case, with no blanks or prefix ("0x"). As in Java, a '+' is allowed; an
//    unsigned type takes "-0" as 0 and any other negative value as out of range.
#define QN_INTEGER_CLASS(Name, Base, Type)                                                         \
    class QNCL_API Name final : public Base {                                                      \
    public:                                                                                        \
        using ValueType = Type;                                                                    \
        static constexpr Type MIN_VALUE = std::numeric_limits<Type>::min();                        \
        static constexpr Type MAX_VALUE = std::numeric_limits<Type>::max();                        \
                                                                                                   \
        Name() noexcept : m_value(0) {}                                                            \
        explicit Name(Type value) noexcept : m_value(value) {}                                     \
        Name(const Name&) noexcept = default;                                                      \
        ~Name() override;                                                                          \
                                                                                                   \
        int8_t int8Value() const noexcept override { return static_cast<int8_t>(m_value); }        \
        int16_t int16Value() const noexcept override { return static_cast<int16_t>(m_value); }     \
        int32_t int32Value() const noexcept override { return static_cast<int32_t>(m_value); }     \
        int64_t int64Value() const noexcept override { return static_cast<int64_t>(m_value); }     \
        uint8_t uint8Value() const noexcept override { return static_cast<uint8_t>(m_value); }     \
        uint16_t uint16Value() const noexcept override { return static_cast<uint16_t>(m_value); }  \
        uint32_t uint32Value() const noexcept override { return static_cast<uint32_t>(m_value); }  \
        uint64_t uint64Value() const noexcept override { return static_cast<uint64_t>(m_value); }  \
        float floatValue() const noexcept override { return static_cast<float>(m_value); }         \
        double doubleValue() const noexcept override { return static_cast<double>(m_value); }      \
                                                                                                   \
        Reference<Object> clone() const override;                                                  \
        int32_t compareTo(const Object& other) const override;                                     \
        bool equals(const Object& other) const override;                                           \
        uint32_t hashCode() const override;                                                        \
        String toString() const override;                                                          \
                                                                                                   \
        static int32_t compare(Type a, Type b) noexcept { return a < b ? -1 : a > b ? 1 : 0; }     \
        static Type parse(const String& text, int radix = 10);                                     \
        static Reference<Name> valueOf(Type value);                                                \
        static Reference<Name> valueOf(const String& text, int radix = 10);                        \
                                                                                                   \
    private:                                                                                       \
        Type m_value;                                                                              \
    }

QN_INTEGER_CLASS(Integer8, SignedInteger, int8_t);
QN_INTEGER_CLASS(Integer16, SignedInteger, int16_t);
QN_INTEGER_CLASS(Integer32, SignedInteger, int32_t);
QN_INTEGER_CLASS(Integer64, SignedInteger, int64_t);
QN_INTEGER_CLASS(UInteger8, UnsignedInteger, uint8_t);
QN_INTEGER_CLASS(UInteger16, UnsignedInteger, uint16_t);
QN_INTEGER_CLASS(UInteger32, UnsignedInteger, uint32_t);
QN_INTEGER_CLASS(UInteger64, UnsignedInteger, uint64_t);

#undef QN_INTEGER_CLASS

// What Float and Double declare alike; each adds the conversions to and from its bits.
#define QN_FLOATING_MEMBERS(Name, Type)                                                            \
    using ValueType = Type;                                                                        \
    static constexpr Type MIN_VALUE = std::numeric_limits<Type>::denorm_min();                     \
    static constexpr Type MIN_NORMAL = std::numeric_limits<Type>::min();                           \
    static constexpr Type MAX_VALUE = std::numeric_limits<Type>::max();                            \
    static constexpr Type POSITIVE_INFINITY = std::numeric_limits<Type>::infinity();               \
    static constexpr Type NEGATIVE_INFINITY = -std::numeric_limits<Type>::infinity();              \
    static constexpr Type NaN = std::numeric_limits<Type>::quiet_NaN();                            \
                                                                                                   \
    Name() noexcept : m_value(0) {}                                                                \
    explicit Name(Type value) noexcept : m_value(value) {}                                         \
    Name(const Name&) noexcept = default;                                                          \
    ~Name() override;                                                                              \
                                                                                                   \
    int8_t int8Value() const noexcept override {                                                   \
        return static_cast<int8_t>(detail::floatingToInt32(m_value));                              \
    }                                                                                              \
    int16_t int16Value() const noexcept override {                                                 \
        return static_cast<int16_t>(detail::floatingToInt32(m_value));                             \
    }                                                                                              \
    int32_t int32Value() const noexcept override {                                                 \
        return detail::floatingToInt32(m_value);                                                   \
    }                                                                                              \
    int64_t int64Value() const noexcept override {                                                 \
        return detail::floatingToInt64(m_value);                                                   \
    }                                                                                              \
    uint8_t uint8Value() const noexcept override {                                                 \
        return static_cast<uint8_t>(detail::floatingToInt32(m_value));                             \
    }                                                                                              \
    uint16_t uint16Value() const noexcept override {                                               \
        return static_cast<uint16_t>(detail::floatingToInt32(m_value));                            \
    }                                                                                              \
    uint32_t uint32Value() const noexcept override {                                               \
        return static_cast<uint32_t>(detail::floatingToInt64(m_value));                            \
    }                                                                                              \
    uint64_t uint64Value() const noexcept override {                                               \
        return detail::floatingToUInt64(m_value);                                                  \
    }                                                                                              \
    float floatValue() const noexcept override {                                                   \
        return static_cast<float>(m_value);                                                        \
    }                                                                                              \
    double doubleValue() const noexcept override {                                                 \
        return m_value;                                                                            \
    }                                                                                              \
                                                                                                   \
    bool isNaN() const noexcept {                                                                  \
        return std::isnan(m_value);                                                                \
    }                                                                                              \
    bool isInfinite() const noexcept {                                                             \
        return std::isinf(m_value);                                                                \
    }                                                                                              \
                                                                                                   \
    Reference<Object> clone() const override;                                                      \
    int32_t compareTo(const Object& other) const override;                                         \
    bool equals(const Object& other) const override;                                               \
    uint32_t hashCode() const override;                                                            \
    String toString() const override;                                                              \
                                                                                                   \
    static bool isNaN(Type value) noexcept {                                                       \
        return std::isnan(value);                                                                  \
    }                                                                                              \
    static bool isInfinite(Type value) noexcept {                                                  \
        return std::isinf(value);                                                                  \
    }                                                                                              \
    static int32_t compare(Type a, Type b) noexcept;                                               \
    static Type parse(const String& text);                                                         \
    static Reference<Name> valueOf(Type value);                                                    \
    static Reference<Name> valueOf(const String& text)

// Float and Double. Beyond Object's operations, as Java's:
//  - compareTo and compare order totally: -0.0 below 0.0, NaN above infinity and equal to every
//    NaN; compareTo throws CastFailedException for an object of any other class;
//  - equals compares floatToIntBits / doubleToLongBits: every NaN equals every NaN, 0.0 is not
//    -0.0; hashCode is made from the same bits;
//  - toString gives String::valueOf's "%g" text when that reads back as the same value, otherwise
//    the fewest significant digits that do, laid out as "%g" lays them out ("1234567",
//    "0.30000000000000004", "1.7976931348623157e+308"); "inf", "-inf" and "nan";
//  - parse takes, after blanks (up to U+0020) are trimmed at both ends as Java does, an optional
//    sign and either digits with an optional '.' and exponent ("1", "1.", ".5", "1e-3") or
//    "NaN", "Inf" or "Infinity" in any case. The value is rounded to nearest from the text
//    itself, so Float never rounds twice. Unlike Java, a value beyond the type's range throws
//    RangeErrorException instead of becoming an infinity; one too small becomes zero of its
//    sign. No hexadecimal form or type suffix ("1.5f").
//
// As in Java, MIN_VALUE is the smallest positive value (a subnormal); the most negative finite
// value is -MAX_VALUE.
class QNCL_API Float final : public Number {
public:
    QN_FLOATING_MEMBERS(Float, float);

    // The bits of the value, every NaN as 0x7FC00000.
    static int32_t floatToIntBits(float value) noexcept {
        return std::isnan(value) ? 0x7FC00000 : floatToRawIntBits(value);
    }
    static int32_t floatToRawIntBits(float value) noexcept {
        int32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    static float intBitsToFloat(int32_t bits) noexcept {
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

private:
    float m_value;
};

class QNCL_API Double final : public Number {
public:
    QN_FLOATING_MEMBERS(Double, double);

    // The bits of the value, every NaN as 0x7FF8000000000000.
    static int64_t doubleToLongBits(double value) noexcept {
        return std::isnan(value) ? INT64_C(0x7FF8000000000000) : doubleToRawLongBits(value);
    }
    static int64_t doubleToRawLongBits(double value) noexcept {
        int64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    static double longBitsToDouble(int64_t bits) noexcept {
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

private:
    double m_value;
};

#undef QN_FLOATING_MEMBERS

} // namespace qn
