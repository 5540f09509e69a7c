#include "Win32.h"

QN_EXTERN_C QNRESULT QN_STDCALL QNPathGetCurrentDirectory(QNWCHAR* buffer, int32_t size,
                                                          int32_t* needed) {
    if (needed)
        *needed = 0;
    if (!buffer && size > 0)
        return QN_E_POINTER;
    // With a buffer too small the call returns the size it needs, terminator included; otherwise
    // the length it wrote, without it.
    const DWORD length =
        GetCurrentDirectoryW(size > 0 ? static_cast<DWORD>(size) : 0, size > 0 ? buffer : nullptr);
    if (length == 0)
        return qncore::win32::lastResult();
    const bool fits = size > 0 && length < static_cast<DWORD>(size);
    if (needed)
        *needed = static_cast<int32_t>(fits ? length + 1 : length);
    return fits ? QN_S_OK : QN_E_BUFFERTOOSMALL;
}
