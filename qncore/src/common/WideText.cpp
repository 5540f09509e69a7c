#include "Internal.h"

namespace {
#include "CaseTables.inc"

inline QNWCHAR mapCase(const uint8_t* index, const uint16_t (*delta)[256], QNWCHAR c) {
    const unsigned u = static_cast<uint16_t>(c);
    return static_cast<QNWCHAR>((u + delta[index[u >> 8]][u & 0xFF]) & 0xFFFF);
}

template <class Map> QNWCHAR* mapText(QNWCHAR* text, int32_t length, Map map) {
    if (!text)
        return text;
    if (length < 0) {
        for (QNWCHAR* p = text; *p; ++p)
            *p = map(*p);
    } else {
        for (int32_t i = 0; i < length; ++i)
            text[i] = map(text[i]);
    }
    return text;
}

} // namespace

QN_EXTERN_C int32_t QN_STDCALL QNStrLenW(const QNWCHAR* text) {
    if (!text)
        return 0;
    const QNWCHAR* p = text;
    while (*p)
        ++p;
    return static_cast<int32_t>(p - text);
}

QN_EXTERN_C int32_t QN_STDCALL QNStrCmpW(const QNWCHAR* a, const QNWCHAR* b) {
    static const QNWCHAR empty = 0;
    if (!a)
        a = &empty;
    if (!b)
        b = &empty;
    for (;; ++a, ++b) {
        const unsigned ca = static_cast<uint16_t>(*a), cb = static_cast<uint16_t>(*b);
        if (ca != cb)
            return ca < cb ? -1 : 1;
        if (!ca)
            return 0;
    }
}

QN_EXTERN_C int32_t QN_STDCALL QNStrCmpNW(const QNWCHAR* a, int32_t lengthA, const QNWCHAR* b,
                                          int32_t lengthB) {
    const int32_t n = lengthA < lengthB ? lengthA : lengthB;
    for (int32_t i = 0; i < n; ++i) {
        const unsigned ca = static_cast<uint16_t>(a[i]), cb = static_cast<uint16_t>(b[i]);
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    return lengthA == lengthB ? 0 : (lengthA < lengthB ? -1 : 1);
}

QN_EXTERN_C QNWCHAR QN_STDCALL QNToLowerW(QNWCHAR c) {
    return mapCase(kLowerIndex, kLowerDelta, c);
}

QN_EXTERN_C QNWCHAR QN_STDCALL QNToUpperW(QNWCHAR c) {
    return mapCase(kUpperIndex, kUpperDelta, c);
}

QN_EXTERN_C QNWCHAR* QN_STDCALL QNStrToLowerW(QNWCHAR* text, int32_t length) {
    return mapText(text, length, [](QNWCHAR c) { return mapCase(kLowerIndex, kLowerDelta, c); });
}

QN_EXTERN_C QNWCHAR* QN_STDCALL QNStrToUpperW(QNWCHAR* text, int32_t length) {
    return mapText(text, length, [](QNWCHAR c) { return mapCase(kUpperIndex, kUpperDelta, c); });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNLToStrW(int32_t value, QNWCHAR* buffer, int32_t size,
                                          int32_t radix) {
    if (!buffer || radix < 2 || radix > 36)
        return QN_E_INVALIDARG;
    const bool negative = radix == 10 && value < 0;
    // Radix 10 writes the magnitude; other radices the unsigned bit pattern.
    uint32_t rest = negative ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
    QNWCHAR digits[33];
    int n = 0;
    do {
        const unsigned d = rest % static_cast<uint32_t>(radix);
        digits[n++] = static_cast<QNWCHAR>(d < 10 ? '0' + d : 'a' + d - 10);
        rest /= static_cast<uint32_t>(radix);
    } while (rest);
    const int32_t needed = n + (negative ? 1 : 0) + 1;
    if (size < needed) {
        if (size > 0)
            buffer[0] = 0;
        return QN_E_BUFFERTOOSMALL;
    }
    QNWCHAR* p = buffer;
    if (negative)
        *p++ = '-';
    while (n)
        *p++ = digits[--n];
    *p = 0;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNStrCpyNW(QNWCHAR* destination, int32_t size,
                                           const QNWCHAR* source, int32_t length) {
    if (!destination || size <= 0)
        return QN_E_INVALIDARG;
    if (length < 0)
        length = QNStrLenW(source);
    const int32_t n = length < size - 1 ? length : size - 1;
    if (n > 0)
        std::memmove(destination, source, static_cast<size_t>(n) * sizeof(QNWCHAR));
    destination[n] = 0;
    return n == length ? QN_S_OK : QN_S_FALSE;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNCopyCharBuffer(IQNCharBuffer* buffer, const QNWCHAR* text,
                                                 int32_t length) {
    if (!buffer)
        return QN_E_POINTER;
    if (!text)
        length = 0;
    else if (length < 0)
        length = QNStrLenW(text);
    int32_t writable = 0;
    QNRESULT r = buffer->IsWritable(&writable);
    if (QN_FAILED(r))
        return r;
    if (!writable)
        return QN_E_ACCESSDENIED;
    QNWCHAR* data = nullptr;
    if (QN_FAILED(r = buffer->GetWriteLock(&data)))
        return r;
    r = buffer->EnsureCapacity(length + 1, &data);
    if (QN_FAILED(r)) {
        buffer->ReleaseWriteLock(-1);
        return r;
    }
    if (length > 0)
        std::memmove(data, text, static_cast<size_t>(length) * sizeof(QNWCHAR));
    data[length] = 0;
    return buffer->ReleaseWriteLock(length);
}

namespace {

// Decodes one scalar value; returns the units used, or 0 at the end. Unpaired surrogates give
// U+FFFD.
int32_t nextScalar(const QNWCHAR* text, int32_t i, int32_t length, uint32_t* cp) {
    if (i >= length)
        return 0;
    const uint32_t c = static_cast<uint16_t>(text[i]);
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < length) {
        const uint32_t d = static_cast<uint16_t>(text[i + 1]);
        if (d >= 0xDC00 && d <= 0xDFFF) {
            *cp = 0x10000 + ((c - 0xD800) << 10) + (d - 0xDC00);
            return 2;
        }
    }
    *cp = (c >= 0xD800 && c <= 0xDFFF) ? 0xFFFD : c;
    return 1;
}

} // namespace

QN_EXTERN_C int32_t QN_STDCALL QNWideToUtf8(const QNWCHAR* text, int32_t length, char* out,
                                            int32_t capacity) {
    if (!text)
        length = 0;
    else if (length < 0)
        length = QNStrLenW(text);
    int32_t n = 0;
    auto put = [&](uint32_t byte) {
        if (out && n < capacity)
            out[n] = static_cast<char>(byte);
        ++n;
    };
    uint32_t cp = 0;
    for (int32_t i = 0, used; (used = nextScalar(text, i, length, &cp)) != 0; i += used) {
        if (cp < 0x80) {
            put(cp);
        } else if (cp < 0x800) {
            put(0xC0 | (cp >> 6));
            put(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            put(0xE0 | (cp >> 12));
            put(0x80 | ((cp >> 6) & 0x3F));
            put(0x80 | (cp & 0x3F));
        } else {
            put(0xF0 | (cp >> 18));
            put(0x80 | ((cp >> 12) & 0x3F));
            put(0x80 | ((cp >> 6) & 0x3F));
            put(0x80 | (cp & 0x3F));
        }
    }
    if (out && n < capacity)
        out[n] = 0;
    return n;
}

QN_EXTERN_C int32_t QN_STDCALL QNUtf8ToWide(const char* text, int32_t length, QNWCHAR* out,
                                            int32_t capacity) {
    if (!text)
        length = 0;
    else if (length < 0)
        length = static_cast<int32_t>(std::strlen(text));
    const auto* s = reinterpret_cast<const unsigned char*>(text);
    int32_t n = 0;
    auto put = [&](uint32_t unit) {
        if (out && n < capacity)
            out[n] = static_cast<QNWCHAR>(unit);
        ++n;
    };
    for (int32_t i = 0; i < length;) {
        const uint32_t b = s[i];
        int32_t extra = b < 0x80                 ? 0
                        : b >= 0xC2 && b <= 0xDF ? 1
                        : b >= 0xE0 && b <= 0xEF ? 2
                        : b >= 0xF0 && b <= 0xF4 ? 3
                                                 : -1;
        uint32_t cp = extra == 0 ? b : extra == 1 ? b & 0x1F : extra == 2 ? b & 0x0F : b & 0x07;
        // Second-byte limits reject overlong forms, surrogates and values above U+10FFFF.
        const uint32_t lo = b == 0xE0 ? 0xA0 : b == 0xF0 ? 0x90 : 0x80;
        const uint32_t hi = b == 0xED ? 0x9F : b == 0xF4 ? 0x8F : 0xBF;
        int32_t used = 1;
        for (int32_t k = 1; extra > 0 && k <= extra; ++k) {
            if (i + k >= length) {
                extra = -1;
                break;
            }
            const uint32_t t = s[i + k];
            if (t < (k == 1 ? lo : 0x80) || t > (k == 1 ? hi : 0xBF)) {
                extra = -1;
                break;
            }
            cp = (cp << 6) | (t & 0x3F);
            used = k + 1;
        }
        if (extra < 0) {
            put(0xFFFD);
        } else if (cp >= 0x10000) {
            put(0xD800 + ((cp - 0x10000) >> 10));
            put(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            put(cp);
        }
        i += used;
    }
    if (out && n < capacity)
        out[n] = 0;
    return n;
}

namespace qncore {

std::string toUtf8(const QNWCHAR* text, int32_t length) {
    std::string out(static_cast<size_t>(QNWideToUtf8(text, length, nullptr, 0)), '\0');
    QNWideToUtf8(text, length, &out[0], static_cast<int32_t>(out.size()));
    return out;
}

std::u16string toUtf16(const char* text, int32_t length) {
    std::u16string out(static_cast<size_t>(QNUtf8ToWide(text, length, nullptr, 0)), u'\0');
    QNUtf8ToWide(text, length, reinterpret_cast<QNWCHAR*>(&out[0]),
                 static_cast<int32_t>(out.size()));
    return out;
}

} // namespace qncore
