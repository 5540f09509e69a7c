// sync::LockObject: the abstract base of exclusive locks, and the type of the global lock.
#pragma once

#include "qn/sync/Object.h"

namespace qn::sync {

class QNCL_API LockObject : public Object {
public:
    ~LockObject() override;

    // Releases the lock taken with wait or a successful tryWait.
    virtual void signal() = 0;

    void lock() { wait(); }
    void unlock() { signal(); }
};

// Holds a lock for the lifetime of a scope.
class LockGuard {
public:
    explicit LockGuard(LockObject& lock) : m_lock(lock) { m_lock.wait(); }
    ~LockGuard() {
        try {
            m_lock.signal();
        } catch (...) {
            // Releasing a lock this scope holds cannot fail; nothing may leave a destructor.
        }
    }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    LockObject& m_lock;
};

} // namespace qn::sync
