// sync::Condition: a lock with a condition variable. acquire (or a Holder) enters it; wait gives
// the lock up while it waits and holds it again when it returns; signal wakes one waiter and
// broadcast all. Wake-ups may be spurious, so wait in a loop over the predicate. Not a
// sync::Object: it cannot stand where a waitable object is expected.
#pragma once

#include "qn/core/Object.h"

namespace qn::sync {

class QNCL_API Condition : public qn::Object {
public:
    explicit Condition(const char* name = nullptr, uint32_t flags = 0);
    ~Condition() override;

    // The lock is not recursive: acquiring it again from its holder throws ResultException
    // (0x8007046B).
    void acquire();
    void release();
    // Called with the lock held.
    void signal();
    void broadcast();
    void wait();
    // Unlike Event and Gate, a time-out is a failure here: it throws ResultException with
    // 0x800705B4, and the lock is held again as after any wait.
    void wait(uint32_t milliseconds);

    // Holds the condition's lock for the lifetime of a scope.
    class QNCL_API Holder {
    public:
        explicit Holder(Condition& condition);
        ~Holder();
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;

    private:
        Condition& m_condition;
    };

private:
    QNHANDLE m_handle = nullptr;
};

} // namespace qn::sync
