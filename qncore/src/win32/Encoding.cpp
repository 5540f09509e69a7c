#include "Win32.h"

#include <cstdio>

QN_EXTERN_C QNRESULT QN_STDCALL QNGetDefaultCharEncoding(QNWCHAR* buffer, int32_t size) {
    if (!buffer)
        return QN_E_POINTER;
    char name[16];
    const UINT codePage = GetACP();
    switch (codePage) {
    case 65001:
        std::strcpy(name, "UTF-8");
        break;
    case 28591:
        std::strcpy(name, "ISO8859_1");
        break;
    case 20127:
        std::strcpy(name, "ASCII");
        break;
    case 20932:
        std::strcpy(name, "EUCJP");
        break;
    default:
        std::snprintf(name, sizeof name, "CP%u", codePage);
        break;
    }
    const int32_t length = static_cast<int32_t>(std::strlen(name));
    if (size <= length) {
        if (size > 0)
            buffer[0] = 0;
        return QN_E_BUFFERTOOSMALL;
    }
    for (int32_t i = 0; i <= length; ++i)
        buffer[i] = static_cast<QNWCHAR>(name[i]);
    return QN_S_OK;
}
