#include "qn/sync/Semaphore.h"

#include "Check.h"

namespace qn::sync {

Semaphore::Semaphore(uint32_t initialCount, const char* name, uint32_t flags) {
    check(QNSemaphoreCreate(initialCount, name, flags, &m_handle));
}
Semaphore::~Semaphore() {
    QNSemaphoreDestroy(m_handle);
}
void Semaphore::wait() {
    check(QNSemaphoreWait(m_handle));
}
bool Semaphore::tryWait() {
    return QN_SUCCEEDED(QNSemaphoreTryWait(m_handle));
}
void Semaphore::signal() {
    check(QNSemaphorePost(m_handle));
}
int32_t Semaphore::getValue() {
    int32_t value = 0;
    check(QNSemaphoreGetValue(m_handle, &value));
    return value;
}

} // namespace qn::sync
