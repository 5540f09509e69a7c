#include "qn/sync/Mutex.h"

#include "Check.h"

namespace qn::sync {

Mutex::Mutex(const char* name, uint32_t flags) {
    check(QNMutexCreate(name, flags, &m_handle));
}
Mutex::~Mutex() {
    QNMutexDestroy(m_handle);
}
void Mutex::wait() {
    check(QNMutexAcquire(m_handle));
}
bool Mutex::tryWait() {
    return QN_SUCCEEDED(QNMutexTryAcquire(m_handle));
}
void Mutex::signal() {
    check(QNMutexRelease(m_handle));
}

} // namespace qn::sync
