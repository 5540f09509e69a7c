/* Operating-system threads: start, join with or without a time-out, the calling thread's id,
 * sleeping, and a name that debuggers and system tools show.
 *
 * A thread handle is owned by its creator and closed with QNThreadClose. Closing does not stop the
 * thread: a thread whose handle is closed before it was joined runs on, detached, and its
 * resources are freed when it ends. */
#ifndef QNCORE_QNTHREAD_H
#define QNCORE_QNTHREAD_H

#include "QNTypes.h"

/* A time-out that never runs out. */
#define QN_INFINITE 0xFFFFFFFFu

/* The body of a thread; its result is the thread's exit code. */
typedef uint32_t(QN_STDCALL* QNPFN_ThreadProc)(void* argument);

QN_EXTERN_C_BEGIN

/* Starts proc(argument) on a new thread; *id receives the thread's id (may be null). */
QNCORE_API QNRESULT QN_STDCALL QNThreadCreate(QNPFN_ThreadProc proc, void* argument,
                                              QNHANDLE* handle, uint32_t* id);
/* Waits at most milliseconds (QN_INFINITE: without limit) for the thread to end: QN_S_OK and its
 * exit code in *exitCode (may be null), or QN_E_TIMEOUT while it still runs. A thread joining
 * itself gets QN_E_POSSIBLEDEADLOCK. Any number of joins may follow the first successful one. */
QNCORE_API QNRESULT QN_STDCALL QNThreadJoin(QNHANDLE handle, uint32_t milliseconds,
                                            uint32_t* exitCode);
/* Frees the handle; a thread still running is detached. */
QNCORE_API QNRESULT QN_STDCALL QNThreadClose(QNHANDLE handle);

/* The calling thread's id as the system and its debuggers show it (the kernel's thread id on
 * Linux, the Win32 thread id on Windows). Never 0. */
QNCORE_API uint32_t QN_STDCALL QNThreadGetCurrentId(void);
/* Gives up the processor for at least milliseconds; 0 only yields. */
QNCORE_API QNRESULT QN_STDCALL QNThreadSleep(uint32_t milliseconds);
/* Names the calling thread (UTF-8). Linux keeps the first 15 bytes, cut at a character boundary;
 * Windows shows the whole name where the system supports thread descriptions and answers
 * QN_S_FALSE where it does not. */
QNCORE_API QNRESULT QN_STDCALL QNThreadSetName(const char* name);

QN_EXTERN_C_END

#endif
