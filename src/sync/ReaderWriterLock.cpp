#include "qn/sync/ReaderWriterLock.h"

#include "Check.h"

namespace qn::sync {

ReaderWriterLock::ReaderWriterLock(const char* name, uint32_t flags) {
    check(QNRWLockCreate(name, flags, &m_handle));
}
ReaderWriterLock::~ReaderWriterLock() {
    QNRWLockDestroy(m_handle);
}
void ReaderWriterLock::wait() {
    check(QNRWLockAcquireWrite(m_handle));
}
bool ReaderWriterLock::tryWait() {
    return QN_SUCCEEDED(QNRWLockTryAcquireWrite(m_handle));
}
void ReaderWriterLock::signal() {
    check(QNRWLockReleaseWrite(m_handle));
}
void ReaderWriterLock::waitShared() {
    check(QNRWLockAcquireRead(m_handle));
}
bool ReaderWriterLock::tryWaitShared() {
    return QN_SUCCEEDED(QNRWLockTryAcquireRead(m_handle));
}
void ReaderWriterLock::signalShared() {
    check(QNRWLockReleaseRead(m_handle));
}

} // namespace qn::sync
