/* Wall-clock time as STRUCT_QN_TIME records (the Win32 SYSTEMTIME layout), with millisecond
 * resolution. */
#ifndef QNCORE_QNTIME_H
#define QNCORE_QNTIME_H

#include "QNTypes.h"

QN_EXTERN_C_BEGIN

/* The current local time, in the process's time zone. */
QNCORE_API QNRESULT QN_STDCALL QNTimeGetLocal(STRUCT_QN_TIME* time);
/* The current UTC time. */
QNCORE_API QNRESULT QN_STDCALL QNTimeGetSystem(STRUCT_QN_TIME* time);
/* Seconds since 1970-01-01 00:00:00 UTC to a UTC record (milliseconds 0). The record covers the
 * years 1601 to 30827; other values give QN_E_INVALIDARG. */
QNCORE_API QNRESULT QN_STDCALL QNTimeFromPosix(int64_t seconds, STRUCT_QN_TIME* time);
/* The reverse of QNTimeFromPosix for a valid UTC record (milliseconds are dropped). */
QNCORE_API QNRESULT QN_STDCALL QNTimeToPosix(const STRUCT_QN_TIME* time, int64_t* seconds);

QN_EXTERN_C_END

#endif
