// Threads as Win32 threads: the handle record owns the thread's kernel handle, which the
// system keeps valid after the thread has ended, so joins need no bookkeeping of their own.
#include "Win32.h"

#include <memory>
#include <process.h>
#include <string>

using namespace qncore;

namespace {

class ThreadRecord final : public Shared {
public:
    ThreadRecord() : Shared(Kind::Thread) {}
    win32::NativeHandle native;
    DWORD id = 0;
};

struct Start {
    QNPFN_ThreadProc proc;
    void* argument;
};

unsigned __stdcall threadMain(void* raw) {
    const Start start = *static_cast<Start*>(raw);
    delete static_cast<Start*>(raw);
    return start.proc(start.argument);
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadCreate(QNPFN_ThreadProc proc, void* argument,
                                               QNHANDLE* handle, uint32_t* id) {
    if (!handle)
        return QN_E_POINTER;
    *handle = nullptr;
    if (!proc)
        return QN_E_INVALIDARG;
    return guard([&] {
        auto record = std::make_unique<ThreadRecord>();
        auto start = std::make_unique<Start>(Start{proc, argument});
        // The C run time's own start, so that its per-thread state is set up and freed.
        unsigned threadId = 0;
        const uintptr_t native = _beginthreadex(nullptr, 0, threadMain, start.get(), 0, &threadId);
        if (native == 0)
            return win32::lastResult();
        start.release();
        record->native.reset(reinterpret_cast<HANDLE>(native));
        record->id = threadId;
        if (id)
            *id = threadId;
        *handle = makeHandle(Kind::Thread, record.release());
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadJoin(QNHANDLE handle, uint32_t milliseconds,
                                             uint32_t* exitCode) {
    auto* record = as<ThreadRecord>(handle, Kind::Thread);
    if (!record)
        return QN_E_HANDLE;
    if (record->id == GetCurrentThreadId())
        return QN_E_POSSIBLEDEADLOCK;
    switch (WaitForSingleObject(record->native.get(), milliseconds)) {
    case WAIT_OBJECT_0:
        break;
    case WAIT_TIMEOUT:
        return QN_E_TIMEOUT;
    default:
        return win32::lastResult();
    }
    DWORD code = 0;
    if (!GetExitCodeThread(record->native.get(), &code))
        return win32::lastResult();
    if (exitCode)
        *exitCode = code;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadClose(QNHANDLE handle) {
    auto* record = as<ThreadRecord>(handle, Kind::Thread);
    if (!record)
        return QN_E_HANDLE;
    freeHandle(handle);
    delete record;
    return QN_S_OK;
}

QN_EXTERN_C uint32_t QN_STDCALL QNThreadGetCurrentId(void) {
    return GetCurrentThreadId();
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadSleep(uint32_t milliseconds) {
    Sleep(milliseconds);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNThreadSetName(const char* name) {
    if (!name)
        return QN_E_POINTER;
    // Thread descriptions exist from Windows 10 1607 on; older systems have no thread names.
    using SetDescription = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    static const SetDescription setDescription =
        reinterpret_cast<SetDescription>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription")));
    if (!setDescription)
        return QN_S_FALSE;
    return guard([&] {
        const int length = MultiByteToWideChar(CP_UTF8, 0, name, -1, nullptr, 0);
        if (length <= 0)
            return win32::lastResult();
        std::wstring wide(static_cast<size_t>(length), L'\0');
        MultiByteToWideChar(CP_UTF8, 0, name, -1, &wide[0], length);
        const HRESULT r = setDescription(GetCurrentThread(), wide.c_str());
        return static_cast<QNRESULT>(r);
    });
}
