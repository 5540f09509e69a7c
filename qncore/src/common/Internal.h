// Shared machinery of the core module's two sides: the exception guard of every exported
// function, handle records, the process-wide table of named objects, and text helpers.
#pragma once

#include "qncore/QNCore.h"

#include <atomic>
#include <cstring>
#include <new>
#include <string>

namespace qncore {

// Runs body, turning any escaping exception into a result code: no exception leaves the module.
template <class Body> QNRESULT guard(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return QN_E_OUTOFMEMORY;
    } catch (...) {
        return QN_E_FAIL;
    }
}

enum class Kind : uint32_t { Mutex = 1, Semaphore, Event, Gate, RWLock, Condition, Thread };

// An object behind one or more handles. Named objects are shared by all users of the name and
// are destroyed with their last user.
class Shared {
public:
    explicit Shared(Kind kind) : m_kind(kind) {}
    virtual ~Shared() = default;
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;

    Kind kind() const { return m_kind; }

private:
    friend class NamedObjects;
    const Kind m_kind;
    std::string m_name; // empty for an unnamed object
    int m_users = 1;
};

class NamedObjects {
public:
    // Finds the object named name, or makes one with make() (name may be null or empty: always a
    // new unnamed object). *created tells which happened.
    template <class Make>
    static QNRESULT acquire(const char* name, Kind kind, uint32_t flags, Make&& make, Shared** out,
                            bool* created) {
        return acquireImpl(name, kind, flags, &invoke<Make>, &make, out, created);
    }
    // Drops one user; the last one destroys the object.
    static void release(Shared* object) noexcept;

private:
    using MakeFn = Shared* (*)(void*);
    template <class Make> static Shared* invoke(void* make) {
        return (*static_cast<Make*>(make))();
    }
    static QNRESULT acquireImpl(const char* name, Kind kind, uint32_t flags, MakeFn make,
                                void* context, Shared** out, bool* created);
};

// Handle records: a handle points at one of these while it is live.
QNHANDLE makeHandle(Kind kind, Shared* object);
// The object of a live handle of that kind, or null.
Shared* objectOf(QNHANDLE handle, Kind kind) noexcept;
// Frees the record; the caller has released the object.
void freeHandle(QNHANDLE handle) noexcept;

template <class T> T* as(QNHANDLE handle, Kind kind) noexcept {
    return static_cast<T*>(objectOf(handle, kind));
}

// Validates the flags word and the optional out pointer of a create call.
inline QNRESULT checkCreate(uint32_t flags, QNHANDLE* handle) {
    if (!handle)
        return QN_E_POINTER;
    *handle = nullptr;
    return (flags & ~QN_SYNC_VALID_FLAGS) ? QN_E_INVALIDARG : QN_S_OK;
}

std::string toUtf8(const QNWCHAR* text, int32_t length = -1);
std::u16string toUtf16(const char* text, int32_t length = -1);

inline const char16_t* u16(const QNWCHAR* p) {
    return reinterpret_cast<const char16_t*>(p);
}
inline const QNWCHAR* qw(const char16_t* p) {
    return reinterpret_cast<const QNWCHAR*>(p);
}

// Calendar arithmetic (proleptic Gregorian), shared by both sides.
int64_t daysFromCivil(int64_t year, unsigned month, unsigned day) noexcept;
void civilFromDays(int64_t days, int64_t* year, unsigned* month, unsigned* day) noexcept;

} // namespace qncore
