#include "qn/sync/Gate.h"

#include "Check.h"

namespace qn::sync {

Gate::Gate(const char* name, uint32_t flags) {
    check(QNGateCreate(name, flags, &m_handle));
}
Gate::~Gate() {
    QNGateDestroy(m_handle);
}
void Gate::wait() {
    check(QNGateWait(m_handle));
}
bool Gate::tryWait() {
    return QN_SUCCEEDED(QNGateTryWait(m_handle));
}
bool Gate::wait(uint32_t milliseconds) {
    return timedWaitResult(QNGateTimedWait(m_handle, milliseconds));
}
void Gate::open() {
    check(QNGateOpen(m_handle));
}
void Gate::close() {
    check(QNGateClose(m_handle));
}

} // namespace qn::sync
