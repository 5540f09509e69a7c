#include "Internal.h"

namespace {

int hexValue(QNWCHAR c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Reads 2 * bytes hex digits at text[*i] into value.
bool readHex(const QNWCHAR* text, int32_t* i, int bytes, uint64_t* value) {
    *value = 0;
    for (int k = 0; k < bytes * 2; ++k) {
        const int v = hexValue(text[*i]);
        if (v < 0)
            return false;
        *value = (*value << 4) | static_cast<unsigned>(v);
        ++*i;
    }
    return true;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNGuidToStringW(const QNGUID* guid, QNWCHAR* buffer, int32_t size) {
    if (!guid || !buffer)
        return QN_E_POINTER;
    if (size < 39) {
        if (size > 0)
            buffer[0] = 0;
        return QN_E_BUFFERTOOSMALL;
    }
    static const char digits[] = "0123456789ABCDEF";
    int32_t n = 0;
    auto hex = [&](uint64_t v, int bytes) {
        for (int shift = bytes * 8 - 4; shift >= 0; shift -= 4)
            buffer[n++] = static_cast<QNWCHAR>(digits[(v >> shift) & 0xF]);
    };
    buffer[n++] = '{';
    hex(guid->Data1, 4);
    buffer[n++] = '-';
    hex(guid->Data2, 2);
    buffer[n++] = '-';
    hex(guid->Data3, 2);
    buffer[n++] = '-';
    hex(guid->Data4[0], 1);
    hex(guid->Data4[1], 1);
    buffer[n++] = '-';
    for (int k = 2; k < 8; ++k)
        hex(guid->Data4[k], 1);
    buffer[n++] = '}';
    buffer[n] = 0;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGuidFromStringW(const QNWCHAR* text, QNGUID* guid) {
    if (!text || !guid)
        return QN_E_POINTER;
    const int32_t length = QNStrLenW(text);
    const bool braces = length == 38 && text[0] == '{' && text[37] == '}';
    if (!braces && length != 36)
        return QN_E_INVALIDCLASSSTRING;
    int32_t i = braces ? 1 : 0;
    uint64_t v = 0;
    QNGUID g{};
    auto dash = [&]() { return text[i++] == '-'; };
    if (!readHex(text, &i, 4, &v))
        return QN_E_INVALIDCLASSSTRING;
    g.Data1 = static_cast<uint32_t>(v);
    if (!dash() || !readHex(text, &i, 2, &v))
        return QN_E_INVALIDCLASSSTRING;
    g.Data2 = static_cast<uint16_t>(v);
    if (!dash() || !readHex(text, &i, 2, &v))
        return QN_E_INVALIDCLASSSTRING;
    g.Data3 = static_cast<uint16_t>(v);
    if (!dash())
        return QN_E_INVALIDCLASSSTRING;
    for (int k = 0; k < 8; ++k) {
        if (k == 2 && !dash())
            return QN_E_INVALIDCLASSSTRING;
        if (!readHex(text, &i, 1, &v))
            return QN_E_INVALIDCLASSSTRING;
        g.Data4[k] = static_cast<uint8_t>(v);
    }
    *guid = g;
    return QN_S_OK;
}
