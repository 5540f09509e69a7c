/* Native error numbers to result codes. On Windows a native error is a Win32 error code; on POSIX
 * an errno value, mapped to the Win32 error of the same meaning, so that one failure gives one
 * code everywhere (a missing file is 0x80070002 on both). */
#ifndef QNCORE_QNERROR_H
#define QNCORE_QNERROR_H

#include "QNTypes.h"

QN_EXTERN_C_BEGIN

/* 0 gives QN_S_OK; an error without a counterpart gives QN_E_FAIL. */
QNCORE_API QNRESULT QN_STDCALL QNResultFromNative(uint32_t nativeError);
/* The calling thread's last native error (errno, or GetLastError()). */
QNCORE_API uint32_t QN_STDCALL QNGetLastNativeError(void);

QN_EXTERN_C_END

#endif
