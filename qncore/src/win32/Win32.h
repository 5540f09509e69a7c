// What the Win32 side's files share: the platform headers and native failures as result codes.
#pragma once

#include "common/Internal.h"

#include <windows.h>

namespace qncore::win32 {

// The calling thread's last native error as a result code.
inline QNRESULT lastResult() {
    return QNResultFromNative(GetLastError());
}

// Owns one kernel handle; null when empty.
class NativeHandle {
public:
    explicit NativeHandle(HANDLE handle = nullptr) : m_handle(handle) {}
    ~NativeHandle() {
        if (m_handle)
            CloseHandle(m_handle);
    }
    NativeHandle(const NativeHandle&) = delete;
    NativeHandle& operator=(const NativeHandle&) = delete;

    HANDLE get() const { return m_handle; }
    HANDLE release() {
        HANDLE handle = m_handle;
        m_handle = nullptr;
        return handle;
    }
    void reset(HANDLE handle) {
        if (m_handle)
            CloseHandle(m_handle);
        m_handle = handle;
    }

private:
    HANDLE m_handle;
};

} // namespace qncore::win32
