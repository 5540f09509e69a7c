/* Locks and signals: mutexes, counting semaphores, events, gates, reader-writer locks and
 * conditions. Every create call takes an optional 8-bit name: all users of one name share one
 * object (within the process on POSIX; on Windows mutexes, semaphores, events and gates are the
 * native named kernel objects and are shared with other processes of the session). Reusing a
 * name for another kind of object fails with QN_E_HANDLE.
 *
 * Waits block without limit; timed waits take milliseconds and report QN_E_TIMEOUT when the time
 * runs out; a refused try reports QN_E_TIMEOUT as well (a wait of zero). A thread that asks again
 * for a non-recursive lock it holds exclusively gets QN_E_POSSIBLEDEADLOCK instead of hanging. */
#ifndef QNCORE_QNSYNC_H
#define QNCORE_QNSYNC_H

#include "QNTypes.h"

/* Flags of every create call. */
#define QN_SYNC_CREATE_NEW 0x1u /* fail with QN_E_ALREADYEXISTS when the name is in use */
#define QN_SYNC_INITIAL_SET                                                                        \
    0x2u /* mutex: created owned by the caller; event: signalled;                                  \
            gate: open. Ignored when a named object already exists. */
#define QN_SYNC_VALID_FLAGS 0x3u

QN_EXTERN_C_BEGIN

/* Mutex: recursive; the owner may acquire it again and releases it as often. Releasing a mutex
 * the caller does not own fails with QN_E_NOTOWNER. */
QNCORE_API QNRESULT QN_STDCALL QNMutexCreate(const char* name, uint32_t flags, QNHANDLE* handle);
QNCORE_API QNRESULT QN_STDCALL QNMutexAcquire(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNMutexTryAcquire(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNMutexRelease(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNMutexDestroy(QNHANDLE handle);

/* Counting semaphore, count 0 to 0x7FFFFFFF; a post beyond fails with QN_E_TOOMANYPOSTS.
 * QN_SYNC_INITIAL_SET has no meaning here and is ignored. */
QNCORE_API QNRESULT QN_STDCALL QNSemaphoreCreate(uint32_t initialCount, const char* name,
                                                 uint32_t flags, QNHANDLE* handle);
QNCORE_API QNRESULT QN_STDCALL QNSemaphoreWait(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNSemaphoreTryWait(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNSemaphoreTimedWait(QNHANDLE handle, uint32_t milliseconds);
QNCORE_API QNRESULT QN_STDCALL QNSemaphorePost(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNSemaphoreGetValue(QNHANDLE handle, int32_t* value);
QNCORE_API QNRESULT QN_STDCALL QNSemaphoreDestroy(QNHANDLE handle);

/* Event: automatic reset. A signal releases exactly one waiter, or stays set until one comes. */
QNCORE_API QNRESULT QN_STDCALL QNEventCreate(const char* name, uint32_t flags, QNHANDLE* handle);
QNCORE_API QNRESULT QN_STDCALL QNEventWait(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNEventTimedWait(QNHANDLE handle, uint32_t milliseconds);
QNCORE_API QNRESULT QN_STDCALL QNEventSignal(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNEventReset(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNEventDestroy(QNHANDLE handle);

/* Gate: manual reset. An open gate lets every waiter through until it is closed. */
QNCORE_API QNRESULT QN_STDCALL QNGateCreate(const char* name, uint32_t flags, QNHANDLE* handle);
QNCORE_API QNRESULT QN_STDCALL QNGateWait(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNGateTryWait(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNGateTimedWait(QNHANDLE handle, uint32_t milliseconds);
QNCORE_API QNRESULT QN_STDCALL QNGateOpen(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNGateClose(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNGateDestroy(QNHANDLE handle);

/* Reader-writer lock: many readers or one writer, not recursive. A waiting writer blocks new
 * readers, so writers are not starved. QN_SYNC_INITIAL_SET is ignored. */
QNCORE_API QNRESULT QN_STDCALL QNRWLockCreate(const char* name, uint32_t flags, QNHANDLE* handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockAcquireWrite(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockTryAcquireWrite(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockReleaseWrite(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockAcquireRead(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockTryAcquireRead(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockReleaseRead(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNRWLockDestroy(QNHANDLE handle);

/* Condition: a lock (not recursive) with a condition variable. Wait, Signal and Broadcast are
 * called with the lock held; Wait gives it up while it waits and holds it again when it returns,
 * also after a time-out. Wakeups may be spurious: wait in a loop over the predicate.
 * QN_SYNC_INITIAL_SET is ignored. */
QNCORE_API QNRESULT QN_STDCALL QNConditionCreate(const char* name, uint32_t flags,
                                                 QNHANDLE* handle);
QNCORE_API QNRESULT QN_STDCALL QNConditionAcquire(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNConditionRelease(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNConditionSignal(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNConditionBroadcast(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNConditionWait(QNHANDLE handle);
QNCORE_API QNRESULT QN_STDCALL QNConditionTimedWait(QNHANDLE handle, uint32_t milliseconds);
QNCORE_API QNRESULT QN_STDCALL QNConditionDestroy(QNHANDLE handle);

QN_EXTERN_C_END

#endif
