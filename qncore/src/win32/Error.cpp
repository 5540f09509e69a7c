#include "Win32.h"

QN_EXTERN_C QNRESULT QN_STDCALL QNResultFromNative(uint32_t nativeError) {
    // A file that exists is one failure everywhere, whichever call reported it.
    if (nativeError == ERROR_FILE_EXISTS)
        nativeError = ERROR_ALREADY_EXISTS;
    // As HRESULT_FROM_WIN32: zero is success and a value that is a failure code already stays.
    if (static_cast<int32_t>(nativeError) <= 0)
        return static_cast<QNRESULT>(nativeError);
    return static_cast<QNRESULT>((nativeError & 0xFFFFu) | 0x80070000u);
}

QN_EXTERN_C uint32_t QN_STDCALL QNGetLastNativeError(void) {
    return GetLastError();
}
