#include "qn/sync/Condition.h"

#include "Check.h"

namespace qn::sync {

Condition::Condition(const char* name, uint32_t flags) {
    check(QNConditionCreate(name, flags, &m_handle));
}
Condition::~Condition() {
    QNConditionDestroy(m_handle);
}
void Condition::acquire() {
    check(QNConditionAcquire(m_handle));
}
void Condition::release() {
    check(QNConditionRelease(m_handle));
}
void Condition::signal() {
    check(QNConditionSignal(m_handle));
}
void Condition::broadcast() {
    check(QNConditionBroadcast(m_handle));
}
void Condition::wait() {
    check(QNConditionWait(m_handle));
}
void Condition::wait(uint32_t milliseconds) {
    check(QNConditionTimedWait(m_handle, milliseconds));
}

Condition::Holder::Holder(Condition& condition) : m_condition(condition) {
    m_condition.acquire();
}
Condition::Holder::~Holder() {
    // The holder holds the lock, so giving it back cannot fail; nothing leaves a destructor.
    QNConditionRelease(m_condition.m_handle);
}

} // namespace qn::sync
