/* The process's default 8-bit character encoding, named as the codec manager names it. */
#ifndef QNCORE_QNENCODING_H
#define QNCORE_QNENCODING_H

#include "QNTypes.h"

QN_EXTERN_C_BEGIN

/* Writes the name with a terminating zero: on Windows the ANSI code page ("CP1252", "UTF-8" for
 * 65001, "ISO8859_1" for 28591, "ASCII" for 20127, "CP<n>" otherwise); on POSIX the codeset of
 * the user's default locale from the environment ("UTF-8", "ISO8859_1", "ASCII", "CP1252",
 * "EUCJP", or the codeset as the system names it). QN_E_BUFFERTOOSMALL when size (units,
 * terminator included) is too small. */
QNCORE_API QNRESULT QN_STDCALL QNGetDefaultCharEncoding(QNWCHAR* buffer, int32_t size);

QN_EXTERN_C_END

#endif
