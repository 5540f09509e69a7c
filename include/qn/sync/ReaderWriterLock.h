// sync::ReaderWriterLock: many readers or one writer. wait/tryWait/signal take and release it
// exclusively (writer); the Shared forms take and release it for reading. A waiting writer keeps
// new readers out.
#pragma once

#include "qn/sync/Object.h"

namespace qn::sync {

class QNCL_API ReaderWriterLock : public Object {
public:
    explicit ReaderWriterLock(const char* name = nullptr, uint32_t flags = 0);
    ~ReaderWriterLock() override;

    void wait() override;
    bool tryWait() override;
    virtual void signal();
    virtual void waitShared();
    virtual bool tryWaitShared();
    virtual void signalShared();

private:
    QNHANDLE m_handle = nullptr;
};

} // namespace qn::sync
