/* The process's current directory, the base of relative paths. */
#ifndef QNCORE_QNPATH_H
#define QNCORE_QNPATH_H

#include "QNTypes.h"

QN_EXTERN_C_BEGIN

/* Writes the absolute path of the current directory with a terminating zero, in the platform's
 * separators. *needed (may be null) receives the size it takes, terminator included; a buffer
 * smaller than that gives QN_E_BUFFERTOOSMALL and writes nothing. */
QNCORE_API QNRESULT QN_STDCALL QNPathGetCurrentDirectory(QNWCHAR* buffer, int32_t size,
                                                         int32_t* needed);

QN_EXTERN_C_END

#endif
