// The AMP-7 converters: seven-bit text with entities for the ampersand and for every character
// outside printable ASCII.
#include "qn/text/charset/BTCAMP7.h"
#include "qn/text/charset/CTBAMP7.h"

#include "SingleByteKernels.h"

namespace qn::text::charset {

namespace {

constexpr int MAX_DIGITS = 5;

// The entities that name a character.
struct Named {
    const char* text; // after the ampersand, up to and including the semicolon
    char16_t c;
};
constexpr Named NAMED[] = {{"AMP;", u'&'}, {"APOS;", u'\''}, {"QUOT;", u'"'}};

enum class Parse { COMPLETE, INCOMPLETE, BAD };

struct Entity {
    Parse result;
    uint32_t value; // the code point when COMPLETE
    long length;    // bytes from the ampersand through the semicolon when COMPLETE
};

int hexValue(unsigned char b) {
    if (b >= '0' && b <= '9')
        return b - '0';
    if (b >= 'A' && b <= 'F')
        return b - 'A' + 10;
    if (b >= 'a' && b <= 'f')
        return b - 'a' + 10;
    return -1;
}

// The entity at bytes[0] (an ampersand), with count bytes available.
Entity parseEntity(const unsigned char* bytes, long count) {
    if (count < 2)
        return {Parse::INCOMPLETE, 0, 0};
    if (bytes[1] == '_') {
        uint32_t value = 0;
        for (long k = 2; k < count; ++k) {
            if (bytes[k] == ';')
                return {Parse::COMPLETE, value, k + 1};
            const int digit = hexValue(bytes[k]);
            if (digit < 0 || k - 2 == MAX_DIGITS)
                return {Parse::BAD, 0, 0};
            value = value * 16 + static_cast<uint32_t>(digit);
        }
        return {Parse::INCOMPLETE, 0, 0};
    }
    for (const Named& named : NAMED) {
        long k = 0;
        while (named.text[k] != 0 && k + 1 < count && bytes[k + 1] == named.text[k])
            ++k;
        if (named.text[k] == 0)
            return {Parse::COMPLETE, named.c, k + 1};
        if (k + 1 == count)
            return {Parse::INCOMPLETE, 0, 0};
    }
    return {Parse::BAD, 0, 0};
}

bool isLiteral(char16_t c) {
    return (c >= 0x20 && c <= 0x7E && c != u'&') || c == u'\t' || c == u'\n' || c == u'\r';
}

// "&_%X;" for value into buffer; the byte count.
int formatEntity(uint32_t value, char* buffer) {
    static const char DIGITS[] = "0123456789ABCDEF";
    char digits[8];
    int count = 0;
    do {
        digits[count++] = DIGITS[value & 0xF];
        value >>= 4;
    } while (value != 0);
    int length = 0;
    buffer[length++] = '&';
    buffer[length++] = '_';
    while (count > 0)
        buffer[length++] = digits[--count];
    buffer[length++] = ';';
    return length;
}

} // namespace

BTCAMP7::~BTCAMP7() = default;

long BTCAMP7::convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                      long outEnd) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(in);
    long i = *inPos;
    long o = *outPos;
    const long start = o;
    while (i < inEnd && o < outEnd) {
        const unsigned char b = bytes[i];
        if (b < 0x80 && b != '&') {
            out[o++] = b;
            ++i;
            continue;
        }
        const Entity entity =
            b == '&' ? parseEntity(bytes + i, inEnd - i) : Entity{Parse::BAD, 0, 0};
        if (entity.result == Parse::INCOMPLETE)
            break;
        if (entity.result == Parse::BAD) {
            *inPos = i;
            *outPos = o;
            if (!writeSubstitution(out, o, outEnd, true))
                break;
            ++i;
            continue;
        }
        const uint32_t v = entity.value;
        if (v >= 0xD800 && v <= 0xDFFF) {
            *inPos = i;
            *outPos = o;
            throw InvalidCharacterException(
                String(u"Invalid AMP-7 sequence (decoded chars in surrogate range)"));
        }
        // Five digits reach U+FFFFF at most, so every value is a character.
        if (!kernels::writeCodePoint(v, out, o, outEnd))
            break;
        i += entity.length;
    }
    *inPos = i;
    *outPos = o;
    return o - start;
}

const char16_t* BTCAMP7::getEncodingName() const {
    return u"AMP-7";
}

long BTCAMP7::getMaxBytesPerChar() const {
    return 8;
}

long BTCAMP7::getMaxCharsPerByte() const {
    return 1;
}

CTBAMP7::~CTBAMP7() = default;

long CTBAMP7::convert(const char16_t* in, long* inPos, long inEnd, signed char* out, long* outPos,
                      long outEnd) {
    long i = *inPos;
    long o = *outPos;
    const long start = o;
    while (i < inEnd) {
        const char16_t c = in[i];
        uint32_t value = c;
        long used = 1;
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (i + 1 == inEnd)
                break;
            const char16_t low = in[i + 1];
            if (low < 0xDC00 || low > 0xDFFF) {
                *inPos = i;
                *outPos = o;
                throw InvalidCharacterException(String(u"leading surrogate without trailing"));
            }
            value = ((static_cast<uint32_t>(c) - 0xD800) << 10) + (low - 0xDC00) + 0x10000;
            used = 2;
        }
        char entity[8];
        const char* bytes = entity;
        int length;
        if (isLiteral(c)) {
            entity[0] = static_cast<char>(c);
            length = 1;
        } else if (c == u'&') {
            bytes = "&AMP;";
            length = 5;
        } else if (value >= 0xFFFFF) {
            *inPos = i;
            *outPos = o;
            if (!writeSubstitution(out, o, outEnd, true))
                break;
            i += used;
            continue;
        } else {
            length = formatEntity(value, entity);
        }
        if (outEnd - o < length)
            break;
        for (int k = 0; k < length; ++k)
            out[o++] = static_cast<signed char>(bytes[k]);
        i += used;
    }
    *inPos = i;
    *outPos = o;
    return o - start;
}

const char16_t* CTBAMP7::getEncodingName() const {
    return u"AMP-7";
}

long CTBAMP7::getMaxBytesPerChar() const {
    return 8;
}

long CTBAMP7::getMaxCharsPerByte() const {
    return 1;
}

} // namespace qn::text::charset
