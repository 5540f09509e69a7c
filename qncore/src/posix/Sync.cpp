// Locks and signals over the C++ runtime's threads primitives. Names are shared within the
// process through the common table of named objects.
#include "common/Internal.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

using qncore::Kind;
using qncore::Shared;

namespace {

constexpr uint32_t MAX_SEMAPHORE = 0x7FFFFFFF;

using Clock = std::chrono::steady_clock;

Clock::time_point deadline(uint32_t milliseconds) {
    return Clock::now() + std::chrono::milliseconds(milliseconds);
}

// Creates (or opens by name) an object of type T and hands out a new handle to it.
template <class T, class... Args>
QNRESULT create(Kind kind, const char* name, uint32_t flags, QNHANDLE* handle, Args... args) {
    QNRESULT r = qncore::checkCreate(flags, handle);
    if (QN_FAILED(r))
        return r;
    return qncore::guard([&] {
        Shared* object = nullptr;
        bool created = false;
        QNRESULT acquired = qncore::NamedObjects::acquire(
            name, kind, flags, [&] { return new T(flags, args...); }, &object, &created);
        if (QN_FAILED(acquired))
            return acquired;
        try {
            *handle = qncore::makeHandle(kind, object);
        } catch (...) {
            qncore::NamedObjects::release(object);
            throw;
        }
        return QN_S_OK;
    });
}

QNRESULT destroy(QNHANDLE handle, Kind kind) {
    Shared* object = qncore::objectOf(handle, kind);
    if (!object)
        return QN_E_HANDLE;
    qncore::freeHandle(handle);
    qncore::NamedObjects::release(object);
    return QN_S_OK;
}

// Runs op on the live object of the handle, or reports a bad handle.
template <class T, class Op> QNRESULT with(QNHANDLE handle, Kind kind, Op op) {
    T* object = qncore::as<T>(handle, kind);
    return object ? op(*object) : QN_E_HANDLE;
}

// Recursive; the owner is tracked here so that a release by another thread is refused before it
// reaches the system mutex.
class Mutex : public Shared {
public:
    explicit Mutex(uint32_t flags) : Shared(Kind::Mutex) {
        if (flags & QN_SYNC_INITIAL_SET)
            acquire();
    }

    QNRESULT acquire() {
        if (owned()) {
            ++m_depth;
            return QN_S_OK;
        }
        m_mutex.lock();
        take();
        return QN_S_OK;
    }
    QNRESULT tryAcquire() {
        if (owned()) {
            ++m_depth;
            return QN_S_OK;
        }
        if (!m_mutex.try_lock())
            return QN_E_TIMEOUT;
        take();
        return QN_S_OK;
    }
    QNRESULT release() {
        if (!owned())
            return QN_E_NOTOWNER;
        if (--m_depth == 0) {
            m_owner.store(std::thread::id(), std::memory_order_relaxed);
            m_mutex.unlock();
        }
        return QN_S_OK;
    }

private:
    // Only the owner itself can find its own id here, so relaxed order is enough.
    bool owned() const {
        return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }
    void take() {
        m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
        m_depth = 1;
    }

    std::mutex m_mutex;
    std::atomic<std::thread::id> m_owner{};
    uint32_t m_depth = 0; // changed by the owner only
};

class Semaphore : public Shared {
public:
    Semaphore(uint32_t, uint32_t initial) : Shared(Kind::Semaphore), m_count(initial) {}

    QNRESULT wait() {
        std::unique_lock<std::mutex> hold(m_lock);
        m_changed.wait(hold, [this] { return m_count > 0; });
        --m_count;
        return QN_S_OK;
    }
    QNRESULT timedWait(uint32_t milliseconds) {
        std::unique_lock<std::mutex> hold(m_lock);
        if (!m_changed.wait_until(hold, deadline(milliseconds), [this] { return m_count > 0; }))
            return QN_E_TIMEOUT;
        --m_count;
        return QN_S_OK;
    }
    QNRESULT post() {
        {
            std::lock_guard<std::mutex> hold(m_lock);
            if (m_count >= MAX_SEMAPHORE)
                return QN_E_TOOMANYPOSTS;
            ++m_count;
        }
        m_changed.notify_one();
        return QN_S_OK;
    }
    int32_t value() {
        std::lock_guard<std::mutex> hold(m_lock);
        return static_cast<int32_t>(m_count);
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    uint32_t m_count;
};

// Event (automatic reset) and gate (manual reset) share one shape.
class Signal : public Shared {
public:
    Signal(Kind kind, uint32_t flags) : Shared(kind), m_set((flags & QN_SYNC_INITIAL_SET) != 0) {}

    QNRESULT timedWait(bool limited, uint32_t milliseconds) {
        std::unique_lock<std::mutex> hold(m_lock);
        auto isSet = [this] { return m_set; };
        if (!limited)
            m_changed.wait(hold, isSet);
        else if (!m_changed.wait_until(hold, deadline(milliseconds), isSet))
            return QN_E_TIMEOUT;
        if (kind() == Kind::Event)
            m_set = false;
        return QN_S_OK;
    }
    QNRESULT set(bool value) {
        {
            std::lock_guard<std::mutex> hold(m_lock);
            m_set = value;
        }
        if (value) {
            if (kind() == Kind::Event)
                m_changed.notify_one();
            else
                m_changed.notify_all();
        }
        return QN_S_OK;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_set;
};

class Event : public Signal {
public:
    explicit Event(uint32_t flags) : Signal(Kind::Event, flags) {}
};

class Gate : public Signal {
public:
    explicit Gate(uint32_t flags) : Signal(Kind::Gate, flags) {}
};

// Many readers or one writer; a waiting writer keeps new readers out.
class RWLock : public Shared {
public:
    explicit RWLock(uint32_t) : Shared(Kind::RWLock) {}

    QNRESULT acquireWrite(bool wait) {
        std::unique_lock<std::mutex> hold(m_lock);
        if (m_writer == std::this_thread::get_id())
            return QN_E_POSSIBLEDEADLOCK;
        if (!wait)
            return writable() ? takeWrite() : QN_E_TIMEOUT;
        ++m_waitingWriters;
        m_changed.wait(hold, [this] { return writable(); });
        --m_waitingWriters;
        return takeWrite();
    }
    QNRESULT releaseWrite() {
        {
            std::lock_guard<std::mutex> hold(m_lock);
            if (m_writer != std::this_thread::get_id())
                return QN_E_NOTOWNER;
            m_writer = std::thread::id();
        }
        m_changed.notify_all();
        return QN_S_OK;
    }
    QNRESULT acquireRead(bool wait) {
        std::unique_lock<std::mutex> hold(m_lock);
        auto readable = [this] { return m_writer == std::thread::id() && m_waitingWriters == 0; };
        if (m_writer == std::this_thread::get_id())
            return QN_E_POSSIBLEDEADLOCK;
        if (!wait && !readable())
            return QN_E_TIMEOUT;
        m_changed.wait(hold, readable);
        ++m_readers;
        return QN_S_OK;
    }
    QNRESULT releaseRead() {
        {
            std::lock_guard<std::mutex> hold(m_lock);
            if (m_readers == 0)
                return QN_E_NOTOWNER;
            if (--m_readers > 0)
                return QN_S_OK;
        }
        m_changed.notify_all();
        return QN_S_OK;
    }

private:
    bool writable() const { return m_writer == std::thread::id() && m_readers == 0; }
    QNRESULT takeWrite() {
        m_writer = std::this_thread::get_id();
        return QN_S_OK;
    }

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::thread::id m_writer;
    uint32_t m_readers = 0;
    uint32_t m_waitingWriters = 0;
};

class Condition : public Shared {
public:
    explicit Condition(uint32_t) : Shared(Kind::Condition) {}

    QNRESULT acquire() {
        if (owned())
            return QN_E_POSSIBLEDEADLOCK;
        m_lock.lock();
        m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
        return QN_S_OK;
    }
    QNRESULT release() {
        if (!owned())
            return QN_E_NOTOWNER;
        m_owner.store(std::thread::id(), std::memory_order_relaxed);
        m_lock.unlock();
        return QN_S_OK;
    }
    QNRESULT notify(bool all) {
        if (!owned())
            return QN_E_NOTOWNER;
        if (all)
            m_changed.notify_all();
        else
            m_changed.notify_one();
        return QN_S_OK;
    }
    QNRESULT wait(bool limited, uint32_t milliseconds) {
        if (!owned())
            return QN_E_NOTOWNER;
        std::unique_lock<std::mutex> hold(m_lock, std::adopt_lock);
        m_owner.store(std::thread::id(), std::memory_order_relaxed);
        bool timedOut = false;
        if (!limited)
            m_changed.wait(hold);
        else
            timedOut =
                m_changed.wait_until(hold, deadline(milliseconds)) == std::cv_status::timeout;
        m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
        hold.release();
        return timedOut ? QN_E_TIMEOUT : QN_S_OK;
    }

private:
    // Only the owner itself can find its own id here, so relaxed order is enough.
    bool owned() const {
        return m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::atomic<std::thread::id> m_owner{};
};

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNMutexCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return create<Mutex>(Kind::Mutex, name, flags, handle);
}
QN_EXTERN_C QNRESULT QN_STDCALL QNMutexAcquire(QNHANDLE handle) {
    return with<Mutex>(handle, Kind::Mutex, [](Mutex& m) { return m.acquire(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNMutexTryAcquire(QNHANDLE handle) {
    return with<Mutex>(handle, Kind::Mutex, [](Mutex& m) { return m.tryAcquire(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNMutexRelease(QNHANDLE handle) {
    return with<Mutex>(handle, Kind::Mutex, [](Mutex& m) { return m.release(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNMutexDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Mutex);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreCreate(uint32_t initialCount, const char* name,
                                                  uint32_t flags, QNHANDLE* handle) {
    if (initialCount > MAX_SEMAPHORE)
        return QN_E_INVALIDARG;
    return create<Semaphore>(Kind::Semaphore, name, flags, handle, initialCount);
}
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreWait(QNHANDLE handle) {
    return with<Semaphore>(handle, Kind::Semaphore, [](Semaphore& s) { return s.wait(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreTryWait(QNHANDLE handle) {
    return with<Semaphore>(handle, Kind::Semaphore, [](Semaphore& s) { return s.timedWait(0); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return with<Semaphore>(handle, Kind::Semaphore,
                           [=](Semaphore& s) { return s.timedWait(milliseconds); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphorePost(QNHANDLE handle) {
    return with<Semaphore>(handle, Kind::Semaphore, [](Semaphore& s) { return s.post(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreGetValue(QNHANDLE handle, int32_t* value) {
    if (!value)
        return QN_E_POINTER;
    return with<Semaphore>(handle, Kind::Semaphore, [=](Semaphore& s) {
        *value = s.value();
        return QN_S_OK;
    });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNSemaphoreDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Semaphore);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNEventCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return create<Event>(Kind::Event, name, flags, handle);
}
QN_EXTERN_C QNRESULT QN_STDCALL QNEventWait(QNHANDLE handle) {
    return with<Event>(handle, Kind::Event, [](Event& e) { return e.timedWait(false, 0); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNEventTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return with<Event>(handle, Kind::Event,
                       [=](Event& e) { return e.timedWait(true, milliseconds); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNEventSignal(QNHANDLE handle) {
    return with<Event>(handle, Kind::Event, [](Event& e) { return e.set(true); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNEventReset(QNHANDLE handle) {
    return with<Event>(handle, Kind::Event, [](Event& e) { return e.set(false); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNEventDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Event);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGateCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return create<Gate>(Kind::Gate, name, flags, handle);
}
QN_EXTERN_C QNRESULT QN_STDCALL QNGateWait(QNHANDLE handle) {
    return with<Gate>(handle, Kind::Gate, [](Gate& g) { return g.timedWait(false, 0); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNGateTryWait(QNHANDLE handle) {
    return with<Gate>(handle, Kind::Gate, [](Gate& g) { return g.timedWait(true, 0); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNGateTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return with<Gate>(handle, Kind::Gate, [=](Gate& g) { return g.timedWait(true, milliseconds); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNGateOpen(QNHANDLE handle) {
    return with<Gate>(handle, Kind::Gate, [](Gate& g) { return g.set(true); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNGateClose(QNHANDLE handle) {
    return with<Gate>(handle, Kind::Gate, [](Gate& g) { return g.set(false); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNGateDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Gate);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockCreate(const char* name, uint32_t flags, QNHANDLE* handle) {
    return create<RWLock>(Kind::RWLock, name, flags, handle);
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockAcquireWrite(QNHANDLE handle) {
    return with<RWLock>(handle, Kind::RWLock, [](RWLock& l) { return l.acquireWrite(true); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockTryAcquireWrite(QNHANDLE handle) {
    return with<RWLock>(handle, Kind::RWLock, [](RWLock& l) { return l.acquireWrite(false); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockReleaseWrite(QNHANDLE handle) {
    return with<RWLock>(handle, Kind::RWLock, [](RWLock& l) { return l.releaseWrite(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockAcquireRead(QNHANDLE handle) {
    return with<RWLock>(handle, Kind::RWLock, [](RWLock& l) { return l.acquireRead(true); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockTryAcquireRead(QNHANDLE handle) {
    return with<RWLock>(handle, Kind::RWLock, [](RWLock& l) { return l.acquireRead(false); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockReleaseRead(QNHANDLE handle) {
    return with<RWLock>(handle, Kind::RWLock, [](RWLock& l) { return l.releaseRead(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNRWLockDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::RWLock);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNConditionCreate(const char* name, uint32_t flags,
                                                  QNHANDLE* handle) {
    return create<Condition>(Kind::Condition, name, flags, handle);
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionAcquire(QNHANDLE handle) {
    return with<Condition>(handle, Kind::Condition, [](Condition& c) { return c.acquire(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionRelease(QNHANDLE handle) {
    return with<Condition>(handle, Kind::Condition, [](Condition& c) { return c.release(); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionSignal(QNHANDLE handle) {
    return with<Condition>(handle, Kind::Condition, [](Condition& c) { return c.notify(false); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionBroadcast(QNHANDLE handle) {
    return with<Condition>(handle, Kind::Condition, [](Condition& c) { return c.notify(true); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionWait(QNHANDLE handle) {
    return with<Condition>(handle, Kind::Condition, [](Condition& c) { return c.wait(false, 0); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionTimedWait(QNHANDLE handle, uint32_t milliseconds) {
    return with<Condition>(handle, Kind::Condition,
                           [=](Condition& c) { return c.wait(true, milliseconds); });
}
QN_EXTERN_C QNRESULT QN_STDCALL QNConditionDestroy(QNHANDLE handle) {
    return destroy(handle, Kind::Condition);
}
