// sync::Event: a signal that resets itself. signal releases exactly one waiter, or stays set
// until one comes. An event cannot be polled: tryWait is always false; wait(0) asks instead.
#pragma once

#include "qn/sync/Object.h"

namespace qn::sync {

class QNCL_API Event : public Object {
public:
    // QN_SYNC_INITIAL_SET creates it signalled.
    explicit Event(const char* name = nullptr, uint32_t flags = 0);
    ~Event() override;

    void wait() override;
    // Always false, without asking the core module.
    bool tryWait() override;
    // True when signalled within milliseconds, false when the time ran out.
    virtual bool wait(uint32_t milliseconds);
    virtual void signal();

private:
    QNHANDLE m_handle = nullptr;
};

} // namespace qn::sync
