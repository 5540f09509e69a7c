// sync::Gate: a signal that stays as it is set. An open gate lets every waiter through until it
// is closed; a closed one holds them all.
#pragma once

#include "qn/sync/Object.h"

namespace qn::sync {

class QNCL_API Gate : public Object {
public:
    // QN_SYNC_INITIAL_SET creates it open.
    explicit Gate(const char* name = nullptr, uint32_t flags = 0);
    ~Gate() override;

    void wait() override;
    // True when the gate is open.
    bool tryWait() override;
    // True when the gate was or became open within milliseconds, false when the time ran out.
    virtual bool wait(uint32_t milliseconds);
    virtual void open();
    virtual void close();

private:
    QNHANDLE m_handle = nullptr;
};

} // namespace qn::sync
