// String's placeholders ("{0}", "{1}", ...) and valueOf.
#include "qn/core/String.h"

#include "StringReader.h"

#include <algorithm>
#include <cstdio>
#include <type_traits>
#include <vector>

namespace qn {

namespace {

// One placeholder in a format: where it starts, its length with the braces, and its index.
struct Token {
    int32_t position;
    int32_t length;
    int32_t index;
};

// The placeholder at text[i] ('{', a canonical decimal index, '}'), or false. Indices have no
// leading zeros ("{01}" is not the token of 1) and at most nine digits.
bool readToken(const char16_t* text, int32_t length, int32_t i, Token& token) {
    int32_t j = i + 1;
    int32_t index = 0;
    while (j < length && j - i <= 9 && text[j] >= u'0' && text[j] <= u'9')
        index = index * 10 + (text[j++] - u'0');
    const int32_t digits = j - i - 1;
    if (digits == 0 || (digits > 1 && text[i + 1] == u'0') || j >= length || text[j] != u'}')
        return false;
    token = {i, digits + 2, index};
    return true;
}

// Every placeholder of the format, in order of position. Placeholders cannot overlap, so one
// pass finds every occurrence of every token that a token-by-token search would.
template <class Store> void scanTokens(const char16_t* text, int32_t length, Store store) {
    Token token;
    for (int32_t i = 0; i < length; ++i) {
        if (text[i] == u'{' && readToken(text, length, i, token)) {
            store(token);
            i += token.length - 1;
        }
    }
}

// Storage that stays on the stack for the usual handful of entries.
template <class T> class SmallArray {
public:
    explicit SmallArray(int32_t size) : m_data(m_local) {
        if (size > LOCAL) {
            m_heap.resize(static_cast<size_t>(size));
            m_data = m_heap.data();
        }
    }
    T& operator[](int32_t i) { return m_data[i]; }

private:
    static constexpr int32_t LOCAL = 16;
    T m_local[LOCAL];
    std::vector<T> m_heap;
    T* m_data;
};

// Integers in decimal with a leading minus sign: the text of "%d", "%u", "%ld", "%lu", "%lld"
// and "%llu", which no locale changes.
template <class T> String decimal(T value) {
    using Unsigned = std::make_unsigned_t<T>;
    char16_t text[24];
    char16_t* const end = text + sizeof text / sizeof text[0];
    char16_t* p = end;
    bool negative = false;
    if constexpr (std::is_signed_v<T>)
        negative = value < 0;
    Unsigned magnitude = static_cast<Unsigned>(value);
    if (negative)
        magnitude = Unsigned(0) - magnitude;
    do {
        *--p = static_cast<char16_t>(u'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude);
    if (negative)
        *--p = u'-';
    return String(p, static_cast<int32_t>(end - p));
}

// "%g" of the run-time library, so the decimal point follows its locale.
String general(double value) {
    char text[32];
    const int length = std::max(std::snprintf(text, sizeof text, "%g", value), 0);
    char16_t wide[32];
    for (int i = 0; i < length; ++i)
        wide[i] = static_cast<char16_t>(static_cast<unsigned char>(text[i]));
    return String(wide, length);
}

} // namespace

// Fills the format's placeholders; next() gives the next argument text.
template <class Next>
String& String::fill(const char16_t* format, int32_t length, const String* shared, Next next) {
    int32_t count = 0;
    scanTokens(format, length, [&](const Token&) { ++count; });
    SmallArray<Token> tokens(count);
    int32_t found = 0;
    scanTokens(format, length, [&](const Token& token) { tokens[found++] = token; });

    // Indices below count that occur; an index at or above count cannot be part of an unbroken
    // run from 0.
    SmallArray<char> present(count);
    for (int32_t i = 0; i < count; ++i)
        present[i] = false;
    for (int32_t i = 0; i < count; ++i) {
        if (tokens[i].index < count)
            present[tokens[i].index] = true;
    }
    int32_t taken = 0;
    while (taken < count && present[taken])
        ++taken;

    SmallArray<const char16_t*> arguments(taken);
    SmallArray<int32_t> lengths(taken);
    for (int32_t n = 0; n < taken; ++n) {
        arguments[n] = next();
        lengths[n] = units::measure(arguments[n], -1);
    }

    if (taken == 0) {
        // Only the format text: a String format is shared rather than copied.
        if (shared)
            return *this = *shared;
        return setTo(format, length);
    }

    int32_t total = length;
    for (int32_t i = 0; i < count; ++i) {
        if (tokens[i].index < taken)
            total = units::sum(total - tokens[i].length, lengths[tokens[i].index]);
    }
    // Built in a new buffer before this string lets go of its old one, which may hold the
    // format or an argument.
    util::RWCharBuffer* buffer = newBuffer(units::sum(total, 1));
    char16_t* out = buffer->m_data;
    int32_t from = 0;
    for (int32_t i = 0; i < count; ++i) {
        const Token& token = tokens[i];
        if (token.index >= taken)
            continue;
        units::copy(out, format + from, token.position - from);
        out += token.position - from;
        units::copy(out, arguments[token.index], lengths[token.index]);
        out += lengths[token.index];
        from = token.position + token.length;
    }
    units::copy(out, format + from, length - from);
    buffer->m_data[total] = 0;
    buffer->m_length = total;
    reset(tag(buffer, BUFFER_RW));
    return *this;
}

String& String::format(const char16_t* format, int32_t length, ...) {
    va_list arguments;
    va_start(arguments, length);
    try {
        formatv(format, length, arguments);
    } catch (...) {
        va_end(arguments);
        throw;
    }
    va_end(arguments);
    return *this;
}

String& String::formatv(const char16_t* format, int32_t length, va_list arguments) {
    va_list next;
    va_copy(next, arguments);
    try {
        fill(format, units::measure(format, length), nullptr,
             [&] { return va_arg(next, const char16_t*); });
    } catch (...) {
        va_end(next);
        throw;
    }
    va_end(next);
    return *this;
}

String& String::formatv(const String& format, va_list arguments) {
    const Reader text(format);
    va_list next;
    va_copy(next, arguments);
    try {
        fill(text.data, text.length, &format, [&] { return va_arg(next, const char16_t*); });
    } catch (...) {
        va_end(next);
        throw;
    }
    va_end(next);
    return *this;
}

String& String::formatArray(const String& format, const char16_t* const* arguments, int32_t count) {
    const Reader text(format);
    int32_t n = 0;
    return fill(text.data, text.length, &format,
                [&]() -> const char16_t* { return n < count ? arguments[n++] : nullptr; });
}

String String::valueOf(int value) {
    return decimal(value);
}
String String::valueOf(unsigned int value) {
    return decimal(value);
}
String String::valueOf(long value) {
    return decimal(value);
}
String String::valueOf(unsigned long value) {
    return decimal(value);
}
String String::valueOf(long long value) {
    return decimal(value);
}
String String::valueOf(unsigned long long value) {
    return decimal(value);
}
String String::valueOf(float value) {
    return general(value);
}
String String::valueOf(double value) {
    return general(value);
}
String String::valueOf(bool value) {
    return String(literalBuffer(value), Counted{});
}
String String::valueOf(char16_t c) {
    return String(c);
}

} // namespace qn
