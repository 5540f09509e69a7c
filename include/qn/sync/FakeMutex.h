// sync::FakeMutex: a lock that does nothing, for places that need a LockObject where no locking
// is wanted (an object used by one thread only). wait and signal return at once; tryWait always
// succeeds, however often the lock is "taken".
#pragma once

#include "qn/sync/LockObject.h"

namespace qn::sync {

class QNCL_API FakeMutex : public LockObject {
public:
    FakeMutex() noexcept = default;
    ~FakeMutex() override;

    void wait() override;
    bool tryWait() override;
    void signal() override;
};

} // namespace qn::sync
