#include "Win32.h"
#include "common/IpcName.h"

#include <sddl.h>

#include <string>

struct QNIpcSemaphoreRecord {
    HANDLE handle;
};

namespace {

// A security descriptor whose only entry grants the calling process's user everything, so that a
// semaphore is its creator's alone.
class OwnerOnly {
public:
    OwnerOnly() {
        HANDLE token = nullptr;
        if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
            return;
        DWORD size = 0;
        GetTokenInformation(token, TokenUser, nullptr, 0, &size);
        std::string user(size, '\0');
        char* sid = nullptr;
        if (size && GetTokenInformation(token, TokenUser, &user[0], size, &size) &&
            ConvertSidToStringSidA(reinterpret_cast<TOKEN_USER*>(&user[0])->User.Sid, &sid)) {
            const std::string sddl = std::string("D:P(A;;GA;;;") + sid + ")";
            ConvertStringSecurityDescriptorToSecurityDescriptorA(sddl.c_str(), SDDL_REVISION_1,
                                                                 &m_descriptor, nullptr);
            LocalFree(sid);
        }
        CloseHandle(token);
    }
    ~OwnerOnly() {
        if (m_descriptor)
            LocalFree(m_descriptor);
    }
    OwnerOnly(const OwnerOnly&) = delete;
    OwnerOnly& operator=(const OwnerOnly&) = delete;

    bool valid() const { return m_descriptor != nullptr; }
    SECURITY_ATTRIBUTES* attributes() {
        m_attributes = {sizeof m_attributes, m_descriptor, FALSE};
        return &m_attributes;
    }

private:
    PSECURITY_DESCRIPTOR m_descriptor = nullptr;
    SECURITY_ATTRIBUTES m_attributes{};
};

QNRESULT store(HANDLE handle, QNIPCSEMAPHORE* semaphore) {
    if (!handle)
        return qncore::win32::lastResult();
    *semaphore = new QNIpcSemaphoreRecord{handle};
    return QN_S_OK;
}

QNRESULT wait(QNIPCSEMAPHORE semaphore, DWORD milliseconds) {
    if (!semaphore)
        return QN_E_HANDLE;
    switch (WaitForSingleObject(semaphore->handle, milliseconds)) {
    case WAIT_OBJECT_0:
        return QN_S_OK;
    case WAIT_TIMEOUT:
        return QN_E_TIMEOUT;
    default:
        return qncore::win32::lastResult();
    }
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreCreate(const char* name, uint32_t initialCount,
                                                     uint32_t flags, QNIPCSEMAPHORE* semaphore) {
    if (!semaphore)
        return QN_E_POINTER;
    *semaphore = nullptr;
    if (!qncore::validIpcName(name) || initialCount > QN_IPC_SEMAPHORE_MAX ||
        (flags & ~QN_IPC_CREATE_NEW))
        return QN_E_INVALIDARG;
    return qncore::guard([&] {
        OwnerOnly security;
        if (!security.valid())
            return qncore::win32::lastResult();
        qncore::win32::NativeHandle handle(CreateSemaphoreA(
            security.attributes(), static_cast<LONG>(initialCount), QN_IPC_SEMAPHORE_MAX, name));
        if (handle.get() && (flags & QN_IPC_CREATE_NEW) && GetLastError() == ERROR_ALREADY_EXISTS)
            return QN_E_ALREADYEXISTS;
        return store(handle.release(), semaphore);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreOpen(const char* name, QNIPCSEMAPHORE* semaphore) {
    if (!semaphore)
        return QN_E_POINTER;
    *semaphore = nullptr;
    if (!qncore::validIpcName(name))
        return QN_E_INVALIDARG;
    return qncore::guard([&] {
        return store(OpenSemaphoreA(SEMAPHORE_MODIFY_STATE | SYNCHRONIZE, FALSE, name), semaphore);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreWait(QNIPCSEMAPHORE semaphore) {
    return wait(semaphore, INFINITE);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreTryWait(QNIPCSEMAPHORE semaphore) {
    return wait(semaphore, 0);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreTimedWait(QNIPCSEMAPHORE semaphore,
                                                        uint32_t milliseconds) {
    // INFINITE is itself a count of milliseconds; a wait that long stays a limited one.
    return wait(semaphore, milliseconds == INFINITE ? INFINITE - 1 : milliseconds);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphorePost(QNIPCSEMAPHORE semaphore) {
    if (!semaphore)
        return QN_E_HANDLE;
    return ReleaseSemaphore(semaphore->handle, 1, nullptr) ? QN_S_OK : qncore::win32::lastResult();
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreClose(QNIPCSEMAPHORE semaphore) {
    if (!semaphore)
        return QN_E_HANDLE;
    const QNRESULT r = CloseHandle(semaphore->handle) ? QN_S_OK : qncore::win32::lastResult();
    delete semaphore;
    return r;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreUnlink(const char* name) {
    return qncore::validIpcName(name) ? QN_S_OK : QN_E_INVALIDARG;
}
