/* Named counting semaphores shared between processes: POSIX named semaphores ("/" + name), or
 * Windows named kernel semaphores. A semaphore is created for its owner alone (POSIX mode 0600;
 * on Windows a security descriptor that grants the creating user alone). A name is 1 to 200
 * bytes of 8-bit text without '/' or '\\'; anything else gives QN_E_INVALIDARG.
 *
 * The name outlives the processes on POSIX until QNIpcSemaphoreUnlink removes it; a process
 * that opens the name afterwards gets a new semaphore, while those holding the old one keep it.
 * On Windows the kernel removes the name with its last handle and QNIpcSemaphoreUnlink only
 * checks the name. */
#ifndef QNCORE_QNIPC_H
#define QNCORE_QNIPC_H

#include "QNTypes.h"

/* An opaque handle of one opened semaphore; null is never valid. */
typedef struct QNIpcSemaphoreRecord* QNIPCSEMAPHORE;

/* Flags of QNIpcSemaphoreCreate. */
#define QN_IPC_CREATE_NEW 0x1u /* fail with QN_E_ALREADYEXISTS when the name exists */

#define QN_IPC_SEMAPHORE_MAX 0x7FFFFFFF

QN_EXTERN_C_BEGIN

/* Opens the semaphore of that name, creating it with initialCount (0 to QN_IPC_SEMAPHORE_MAX)
 * when it does not exist; an existing semaphore keeps its count. */
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreCreate(const char* name, uint32_t initialCount,
                                                    uint32_t flags, QNIPCSEMAPHORE* semaphore);
/* Opens an existing semaphore; QN_E_FILENOTFOUND when there is none of that name. */
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreOpen(const char* name, QNIPCSEMAPHORE* semaphore);
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreWait(QNIPCSEMAPHORE semaphore);
/* QN_E_TIMEOUT when the count is 0. */
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreTryWait(QNIPCSEMAPHORE semaphore);
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreTimedWait(QNIPCSEMAPHORE semaphore,
                                                       uint32_t milliseconds);
/* QN_E_TOOMANYPOSTS when the count would pass QN_IPC_SEMAPHORE_MAX. */
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphorePost(QNIPCSEMAPHORE semaphore);
/* Closes this process's handle; the semaphore and its name stay for the others. */
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreClose(QNIPCSEMAPHORE semaphore);
/* Removes the name (POSIX); QN_E_FILENOTFOUND when there is none. */
QNCORE_API QNRESULT QN_STDCALL QNIpcSemaphoreUnlink(const char* name);

QN_EXTERN_C_END

#endif
