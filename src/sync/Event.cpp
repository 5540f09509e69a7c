#include "qn/sync/Event.h"

#include "Check.h"

namespace qn::sync {

Event::Event(const char* name, uint32_t flags) {
    check(QNEventCreate(name, flags, &m_handle));
}
Event::~Event() {
    QNEventDestroy(m_handle);
}
void Event::wait() {
    check(QNEventWait(m_handle));
}
bool Event::tryWait() {
    return false;
}
bool Event::wait(uint32_t milliseconds) {
    return timedWaitResult(QNEventTimedWait(m_handle, milliseconds));
}
void Event::signal() {
    check(QNEventSignal(m_handle));
}

} // namespace qn::sync
