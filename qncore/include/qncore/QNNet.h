/* Address lookup with the core module's own error numbers, which stay apart from the socket
 * layer's native numbers:
 *   2008 memory, 12022 bad flags, 12044 socket type, 12047 family, 12109 service,
 *   13001 no name, 13002 try again, 13003 failure, 14001 no data.
 * A failure of the system itself (POSIX EAI_SYSTEM) is reported as the native error number. */
#ifndef QNCORE_QNNET_H
#define QNCORE_QNNET_H

#include "QNTypes.h"

#if defined(_WIN32)
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <netdb.h>
#include <sys/socket.h>
#endif

#define QN_EAI_MEMORY 2008
#define QN_EAI_BADFLAGS 12022
#define QN_EAI_SOCKTYPE 12044
#define QN_EAI_FAMILY 12047
#define QN_EAI_SERVICE 12109
#define QN_EAI_NONAME 13001
#define QN_EAI_AGAIN 13002
#define QN_EAI_FAIL 13003
#define QN_EAI_NODATA 14001

QN_EXTERN_C_BEGIN

/* getaddrinfo of the platform (Windows: the socket layer is started and stopped around the call).
 * Returns 0 or one of the numbers above; the result list is freed with QNfreeaddrinfo. */
QNCORE_API int32_t QN_STDCALL QNgetaddrinfo(const char* node, const char* service,
                                            const struct addrinfo* hints, struct addrinfo** result);
QNCORE_API void QN_STDCALL QNfreeaddrinfo(struct addrinfo* result);

QN_EXTERN_C_END

#endif
