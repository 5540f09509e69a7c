// Mutexes, semaphores, events and gates are the native named kernel objects; reader-writer locks
// and conditions are slim in-process locks named through the process's table.
#include "Win32.h"

#include <memory>

namespace {

using namespace qncore;
using win32::NativeHandle;

constexpr QNRESULT E_POSSIBLE_DEADLOCK = static_cast<QNRESULT>(0x8007046Bu);
constexpr LONG SEMAPHORE_MAX = 0x7FFFFFFF;

// A kernel object behind a handle record.
class Kernel final : public Shared {
public:
    explicit Kernel(Kind kind) : Shared(kind) {}
    NativeHandle native;
};

HANDLE nativeOf(QNHANDLE handle, Kind kind) {
    Kernel* object = as<Kernel>(handle, kind);
    return object ? object->native.get() : nullptr;
}

// Whether an event resets itself on release. Events and gates share the native event type, so
// this is what tells an existing one of the other kind apart; without the query nothing is known.
bool isAutoReset(HANDLE event, bool* autoReset) {
    struct BasicInformation {
        int type; // 0: manual reset, 1: automatic reset
        LONG state;
    };
    using Query = LONG(NTAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    static const Query query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryEvent")));
    BasicInformation info{};
    ULONG length = 0;
    if (!query || query(event, 0, &info, sizeof info, &length) < 0)
        return false;
    *autoReset = info.type == 1;
    return true;
}

// Creates or opens a kernel object through create(name or null, initially set) and gives it a
// handle record.
template <class Create>
QNRESULT createKernel(Kind kind, const char* name, uint32_t flags, QNHANDLE* handle,
                      Create&& create) {
    const QNRESULT checked = checkCreate(flags, handle);
    if (QN_FAILED(checked))
        return checked;
    return guard([&] {
        auto object = std::make_unique<Kernel>(kind);
        SetLastError(ERROR_SUCCESS);
        object->native.reset(create(name && *name ? name : nullptr, flags & QN_SYNC_INITIAL_SET));
        if (!object->native.get())
            return win32::lastResult();
        if (GetLastError() == ERROR_ALREADY_EXISTS) {
            bool autoReset = false;
            if ((kind == Kind::Event || kind == Kind::Gate) &&
                isAutoReset(object->native.get(), &autoReset) && autoReset != (kind == Kind::Event))
                return QN_E_HANDLE;
            if (flags & QN_SYNC_CREATE_NEW)
                return QN_E_ALREADYEXISTS;
        }
        *handle = makeHandle(kind, object.get());
        object.release();
        return QN_S_OK;
    });
}

QNRESULT waitFor(HANDLE native, DWORD milliseconds) {
    switch (WaitForSingleObject(native, milliseconds)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED: // a mutex whose owner ended holding it; the caller owns it now
        return QN_S_OK;
    case WAIT_TIMEOUT:
        return QN_E_TIMEOUT;
    default:
        return win32::lastResult();
    }
}

QNRESULT wait(QNHANDLE handle, Kind kind, DWORD milliseconds) {
    const HANDLE native = nativeOf(handle, kind);
    return native ? waitFor(native, milliseconds) : QN_E_HANDLE;
}

// A timed wait has a limit even when asked for the longest time: INFINITE would have none.
DWORD limited(uint32_t milliseconds) {
    return milliseconds < INFINITE ? milliseconds : INFINITE - 1;
}

// Applies a setting call (SetEvent, ResetEvent, ReleaseMutex) to the object.
QNRESULT apply(QNHANDLE handle, Kind kind, BOOL(WINAPI* call)(HANDLE)) {
    const HANDLE native = nativeOf(handle, kind);
    if (!native)
        return QN_E_HANDLE;
    return call(native) ? QN_S_OK : win32::lastResult();
}

QNRESULT destroy(QNHANDLE handle, Kind kind) {
    Shared* object = objectOf(handle, kind);
    if (!object)
        return QN_E_HANDLE;
    freeHandle(handle);
    NamedObjects::release(object);
    return QN_S_OK;
}

// An in-process lock. A named one also holds a kernel timer of its name: the kernel then refuses
// that name to the other kinds of object, and this one is refused a name they have, since one
// name serves one kind of object.
class Local : public Shared {
public:
    Local(Kind kind, HANDLE reservation) : Shared(kind), m_reservation(reservation) {}

private:
    NativeHandle m_reservation;
};

class RWLock final : public Local {
public:
    explicit RWLock(HANDLE reservation) : Local(Kind::RWLock, reservation) {}
    SRWLOCK lock = SRWLOCK_INIT;
    std::atomic<DWORD> writer{0}; // thread holding the write lock, 0 when none
    std::atomic<int32_t> readers{0};
};

class Condition final : public Local {
public:
    explicit Condition(HANDLE reservation) : Local(Kind::Condition, reservation) {}
    SRWLOCK lock = SRWLOCK_INIT;
    CONDITION_VARIABLE variable = CONDITION_VARIABLE_INIT;
    std::atomic<DWORD> owner{0}; // thread holding the lock, 0 when none
};

template <class T>
QNRESULT createLocal(Kind kind, const char* name, uint32_t flags, QNHANDLE* handle) {
    QNRESULT result = checkCreate(flags, handle);
    if (QN_FAILED(result))
        return result;
    return guard([&] {
        NativeHandle reservation;
        if (name && *name) {
            reservation.reset(CreateWaitableTimerA(nullptr, TRUE, name));
            // A kernel object of another type has the name. Any other failure (a name the
            // kernel does not take) leaves the name to the process's table alone.
            if (!reservation.get() && GetLastError() == ERROR_INVALID_HANDLE)
                return QN_E_HANDLE;
        }
        Shared* object = nullptr;
        bool created = false;
        result = NamedObjects::acquire(
            name, kind, flags,
            [&] {
                T* made = new T(reservation.get());
                reservation.release();
                return made;
            },
            &object, &created);
        if (QN_FAILED(result))
            return result;
        try {
            *handle = makeHandle(kind, object);
        } catch (...) {
            NamedObjects::release(object);
            throw;
        }
        return QN_S_OK;
    });
}

DWORD currentThread() {
    return GetCurrentThreadId();
}

QNRESULT conditionWait(QNHANDLE handle, DWORD milliseconds) {
    Condition* c = as<Condition>(handle, Kind::Condition);
    if (!c)
        return QN_E_HANDLE;
    const DWORD me = currentThread();
    if (c->owner.load() != me)
        return QN_E_NOTOWNER;
    c->owner.store(0);
    const BOOL woken = SleepConditionVariableSRW(&c->variable, &c->lock, milliseconds, 0);
    const DWORD error = woken ? ERROR_SUCCESS : GetLastError();
    c->owner.store(me);
    if (error == ERROR_TIMEOUT)
        return QN_E_TIMEOUT;
    return QNResultFromNative(error);
}

} // namespace

// Mutex

QN_EXTERN_C QNRESULT QN_STDCALL QNMutexCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return createKernel(Kind::Mutex, name, flags, handle,
                        [](const char* n, bool owned) { return CreateMutexA(nullptr, owned, n); });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNMutexAcquire(QNHANDLE handle) {
    return wait(handle, Kind::Mutex, INFINITE);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNMutexTryAcquire(QNHANDLE handle) {
    return wait(handle, Kind::Mutex, 0);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNMutexRelease(QNHANDLE handle) {
    return apply(handle, Kind::Mutex, ReleaseMutex);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNMutexDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Mutex);
}

// Semaphore

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreCreate(uint32_t initialCount, const char* name,
                                                  uint32_t flags, QNHANDLE* handle) {
    if (handle && initialCount > static_cast<uint32_t>(SEMAPHORE_MAX)) {
        *handle = nullptr;
        return QN_E_INVALIDARG;
    }
    return createKernel(Kind::Semaphore, name, flags, handle, [&](const char* n, bool) {
        return CreateSemaphoreA(nullptr, static_cast<LONG>(initialCount), SEMAPHORE_MAX, n);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreWait(QNHANDLE handle) {
    return wait(handle, Kind::Semaphore, INFINITE);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreTryWait(QNHANDLE handle) {
    return wait(handle, Kind::Semaphore, 0);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return wait(handle, Kind::Semaphore, limited(milliseconds));
}

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphorePost(QNHANDLE handle) {
    const HANDLE native = nativeOf(handle, Kind::Semaphore);
    if (!native)
        return QN_E_HANDLE;
    return ReleaseSemaphore(native, 1, nullptr) ? QN_S_OK : win32::lastResult();
}

// The kernel tells a semaphore's count only when it is raised, so one unit is taken and given
// back: the value is a snapshot that other users may change at any moment.
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreGetValue(QNHANDLE handle, int32_t* value) {
    if (!value)
        return QN_E_POINTER;
    const HANDLE native = nativeOf(handle, Kind::Semaphore);
    if (!native)
        return QN_E_HANDLE;
    const QNRESULT taken = waitFor(native, 0);
    if (taken == QN_E_TIMEOUT) {
        *value = 0;
        return QN_S_OK;
    }
    if (QN_FAILED(taken))
        return taken;
    LONG previous = 0;
    if (!ReleaseSemaphore(native, 1, &previous))
        return win32::lastResult();
    *value = previous + 1;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Semaphore);
}

// Event

QN_EXTERN_C QNRESULT QN_STDCALL QNEventCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return createKernel(Kind::Event, name, flags, handle, [](const char* n, bool set) {
        return CreateEventA(nullptr, FALSE, set, n);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNEventWait(QNHANDLE handle) {
    return wait(handle, Kind::Event, INFINITE);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNEventTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return wait(handle, Kind::Event, limited(milliseconds));
}

QN_EXTERN_C QNRESULT QN_STDCALL QNEventSignal(QNHANDLE handle) {
    return apply(handle, Kind::Event, SetEvent);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNEventReset(QNHANDLE handle) {
    return apply(handle, Kind::Event, ResetEvent);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNEventDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Event);
}

// Gate

QN_EXTERN_C QNRESULT QN_STDCALL QNGateCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return createKernel(Kind::Gate, name, flags, handle, [](const char* n, bool open) {
        return CreateEventA(nullptr, TRUE, open, n);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateWait(QNHANDLE handle) {
    return wait(handle, Kind::Gate, INFINITE);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateTryWait(QNHANDLE handle) {
    return wait(handle, Kind::Gate, 0);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return wait(handle, Kind::Gate, limited(milliseconds));
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateOpen(QNHANDLE handle) {
    return apply(handle, Kind::Gate, SetEvent);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateClose(QNHANDLE handle) {
    return apply(handle, Kind::Gate, ResetEvent);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Gate);
}

// Reader-writer lock

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return createLocal<RWLock>(Kind::RWLock, name, flags, handle);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockAcquireWrite(QNHANDLE handle) {
    RWLock* l = as<RWLock>(handle, Kind::RWLock);
    if (!l)
        return QN_E_HANDLE;
    // The lock is not recursive: its writer asking again would wait for itself.
    const DWORD me = currentThread();
    if (l->writer.load() == me)
        return E_POSSIBLE_DEADLOCK;
    AcquireSRWLockExclusive(&l->lock);
    l->writer.store(me);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockTryAcquireWrite(QNHANDLE handle) {
    RWLock* l = as<RWLock>(handle, Kind::RWLock);
    if (!l)
        return QN_E_HANDLE;
    if (!TryAcquireSRWLockExclusive(&l->lock))
        return QN_E_TIMEOUT;
    l->writer.store(currentThread());
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockReleaseWrite(QNHANDLE handle) {
    RWLock* l = as<RWLock>(handle, Kind::RWLock);
    if (!l)
        return QN_E_HANDLE;
    if (l->writer.load() != currentThread())
        return QN_E_NOTOWNER;
    l->writer.store(0);
    ReleaseSRWLockExclusive(&l->lock);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockAcquireRead(QNHANDLE handle) {
    RWLock* l = as<RWLock>(handle, Kind::RWLock);
    if (!l)
        return QN_E_HANDLE;
    if (l->writer.load() == currentThread())
        return E_POSSIBLE_DEADLOCK;
    AcquireSRWLockShared(&l->lock);
    ++l->readers;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockTryAcquireRead(QNHANDLE handle) {
    RWLock* l = as<RWLock>(handle, Kind::RWLock);
    if (!l)
        return QN_E_HANDLE;
    if (!TryAcquireSRWLockShared(&l->lock))
        return QN_E_TIMEOUT;
    ++l->readers;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockReleaseRead(QNHANDLE handle) {
    RWLock* l = as<RWLock>(handle, Kind::RWLock);
    if (!l)
        return QN_E_HANDLE;
    // Releasing a read lock nobody holds would corrupt the native lock's state.
    int32_t readers = l->readers.load();
    do {
        if (readers <= 0)
            return QN_E_NOTOWNER;
    } while (!l->readers.compare_exchange_weak(readers, readers - 1));
    ReleaseSRWLockShared(&l->lock);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::RWLock);
}

// Condition

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionCreate(const char* name, uint32_t flags,
                                                  QNHANDLE* handle) {
    return createLocal<Condition>(Kind::Condition, name, flags, handle);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionAcquire(QNHANDLE handle) {
    Condition* c = as<Condition>(handle, Kind::Condition);
    if (!c)
        return QN_E_HANDLE;
    // The lock is not recursive: its owner asking again would wait for itself.
    const DWORD me = currentThread();
    if (c->owner.load() == me)
        return E_POSSIBLE_DEADLOCK;
    AcquireSRWLockExclusive(&c->lock);
    c->owner.store(me);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionRelease(QNHANDLE handle) {
    Condition* c = as<Condition>(handle, Kind::Condition);
    if (!c)
        return QN_E_HANDLE;
    if (c->owner.load() != currentThread())
        return QN_E_NOTOWNER;
    c->owner.store(0);
    ReleaseSRWLockExclusive(&c->lock);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionSignal(QNHANDLE handle) {
    Condition* c = as<Condition>(handle, Kind::Condition);
    if (!c)
        return QN_E_HANDLE;
    WakeConditionVariable(&c->variable);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionBroadcast(QNHANDLE handle) {
    Condition* c = as<Condition>(handle, Kind::Condition);
    if (!c)
        return QN_E_HANDLE;
    WakeAllConditionVariable(&c->variable);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionWait(QNHANDLE handle) {
    return conditionWait(handle, INFINITE);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return conditionWait(handle, limited(milliseconds));
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Condition);
}
