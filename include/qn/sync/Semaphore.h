// sync::Semaphore: a counting semaphore of the core module. wait takes one unit, blocking while
// the count is 0; signal gives one back. A name shares one semaphore among all its users (on
// Windows, the native named kernel semaphore).
#pragma once

#include "qn/sync/Object.h"

namespace qn::sync {

class QNCL_API Semaphore : public Object {
public:
    // Counts run from 0 to 0x7FFFFFFF; name may be null; flags are the core module's
    // QN_SYNC_* create flags.
    explicit Semaphore(uint32_t initialCount = 0, const char* name = nullptr, uint32_t flags = 0);
    ~Semaphore() override;

    void wait() override;
    bool tryWait() override;
    // Posting beyond the largest count throws ResultException (0x8007012A).
    virtual void signal();
    // The count at the moment of the call; other threads may change it at once.
    virtual int32_t getValue();

private:
    QNHANDLE m_handle = nullptr;
};

} // namespace qn::sync
