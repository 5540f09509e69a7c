#include "qn/ipc/Semaphore.h"

#include "qn/core/Exception.h"

namespace qn::ipc {

namespace {

void check(QNRESULT r) {
    if (QN_FAILED(r))
        throw ResultException(r);
}

// False for a wait that timed out; any other failure is thrown.
bool acquired(QNRESULT r) {
    if (r == QN_E_TIMEOUT)
        return false;
    check(r);
    return true;
}

} // namespace

Semaphore::Semaphore(const char* name, uint32_t initialCount, Mode mode) {
    check(mode == OPEN_ONLY
              ? QNIpcSemaphoreOpen(name, &m_handle)
              : QNIpcSemaphoreCreate(name, initialCount, mode == CREATE_ONLY ? QN_IPC_CREATE_NEW : 0,
                                     &m_handle));
    m_name = name;
}

Semaphore::~Semaphore() {
    QNIpcSemaphoreClose(m_handle);
}

void Semaphore::wait() {
    check(QNIpcSemaphoreWait(m_handle));
}
bool Semaphore::wait(uint32_t milliseconds) {
    return acquired(QNIpcSemaphoreTimedWait(m_handle, milliseconds));
}
bool Semaphore::tryWait() {
    return QN_SUCCEEDED(QNIpcSemaphoreTryWait(m_handle));
}
void Semaphore::signal() {
    check(QNIpcSemaphorePost(m_handle));
}

bool Semaphore::unlink(const char* name) {
    const QNRESULT r = QNIpcSemaphoreUnlink(name);
    if (r == QN_E_FILENOTFOUND)
        return false;
    check(r);
    return true;
}

} // namespace qn::ipc
