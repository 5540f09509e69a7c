#include "common/Internal.h"
#include "common/IpcName.h"

#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>

struct QNIpcSemaphoreRecord {
    sem_t* semaphore;
};

namespace {

QNRESULT lastError() {
    return errno == EOVERFLOW ? QN_E_TOOMANYPOSTS
                              : QNResultFromNative(static_cast<uint32_t>(errno));
}

std::string systemName(const char* name) {
    return std::string("/") + name;
}

QNRESULT openSemaphore(const char* name, int flags, uint32_t initialCount,
                       QNIPCSEMAPHORE* semaphore) {
    if (!semaphore)
        return QN_E_POINTER;
    *semaphore = nullptr;
    if (!qncore::validIpcName(name) || initialCount > QN_IPC_SEMAPHORE_MAX)
        return QN_E_INVALIDARG;
    return qncore::guard([&] {
        sem_t* opened = sem_open(systemName(name).c_str(), flags, static_cast<mode_t>(0600),
                                 static_cast<unsigned>(initialCount));
        if (opened == SEM_FAILED)
            return lastError();
        *semaphore = new QNIpcSemaphoreRecord{opened};
        return QN_S_OK;
    });
}

// Retries a call that a signal handler interrupted.
template <class Call> QNRESULT retry(Call call) {
    int r;
    do {
        r = call();
    } while (r != 0 && errno == EINTR);
    if (r == 0)
        return QN_S_OK;
    return errno == EAGAIN || errno == ETIMEDOUT ? QN_E_TIMEOUT : lastError();
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreCreate(const char* name, uint32_t initialCount,
                                                     uint32_t flags, QNIPCSEMAPHORE* semaphore) {
    if (flags & ~QN_IPC_CREATE_NEW)
        return QN_E_INVALIDARG;
    const int open = O_CREAT | ((flags & QN_IPC_CREATE_NEW) ? O_EXCL : 0);
    return openSemaphore(name, open, initialCount, semaphore);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreOpen(const char* name, QNIPCSEMAPHORE* semaphore) {
    return openSemaphore(name, 0, 0, semaphore);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreWait(QNIPCSEMAPHORE semaphore) {
    if (!semaphore)
        return QN_E_HANDLE;
    return retry([&] { return sem_wait(semaphore->semaphore); });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreTryWait(QNIPCSEMAPHORE semaphore) {
    if (!semaphore)
        return QN_E_HANDLE;
    return retry([&] { return sem_trywait(semaphore->semaphore); });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreTimedWait(QNIPCSEMAPHORE semaphore,
                                                        uint32_t milliseconds) {
    if (!semaphore)
        return QN_E_HANDLE;
    // sem_timedwait takes a moment of the real-time clock, fixed once so retries do not extend it.
    timespec until{};
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_sec += static_cast<time_t>(milliseconds / 1000);
    until.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000L;
    if (until.tv_nsec >= 1000000000L) {
        until.tv_sec += 1;
        until.tv_nsec -= 1000000000L;
    }
    return retry([&] { return sem_timedwait(semaphore->semaphore, &until); });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphorePost(QNIPCSEMAPHORE semaphore) {
    if (!semaphore)
        return QN_E_HANDLE;
    return sem_post(semaphore->semaphore) == 0 ? QN_S_OK : lastError();
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreClose(QNIPCSEMAPHORE semaphore) {
    if (!semaphore)
        return QN_E_HANDLE;
    const QNRESULT r = sem_close(semaphore->semaphore) == 0 ? QN_S_OK : lastError();
    delete semaphore;
    return r;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNIpcSemaphoreUnlink(const char* name) {
    if (!qncore::validIpcName(name))
        return QN_E_INVALIDARG;
    return qncore::guard(
        [&] { return sem_unlink(systemName(name).c_str()) == 0 ? QN_S_OK : lastError(); });
}
