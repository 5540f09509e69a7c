// sync::Mutex: a recursive lock of the core module, optionally named so that every user of the
// name in the process shares it (on Windows, the native named kernel mutex).
#pragma once

#include "qn/sync/LockObject.h"

namespace qn::sync {

class QNCL_API Mutex : public LockObject {
public:
    // name may be null; flags are the core module's QN_SYNC_* create flags.
    explicit Mutex(const char* name = nullptr, uint32_t flags = 0);
    ~Mutex() override;

    void wait() override;
    bool tryWait() override;
    void signal() override;

private:
    QNHANDLE m_handle = nullptr;
};

} // namespace qn::sync
