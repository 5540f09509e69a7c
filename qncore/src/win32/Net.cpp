// The socket layer's header comes before the platform's own through QNNet.h.
#include "qncore/QNNet.h"

#include "Win32.h"

namespace {

// The socket layer's lookup failures to the core's numbers; any other number passes through.
int32_t coreNumberOf(int error) {
    switch (error) {
    case WSA_NOT_ENOUGH_MEMORY:
        return QN_EAI_MEMORY;
    case WSAEINVAL:
        return QN_EAI_BADFLAGS;
    case WSAESOCKTNOSUPPORT:
        return QN_EAI_SOCKTYPE;
    case WSAEAFNOSUPPORT:
        return QN_EAI_FAMILY;
    case WSATYPE_NOT_FOUND:
        return QN_EAI_SERVICE;
    case WSAHOST_NOT_FOUND:
        return QN_EAI_NONAME;
    case WSATRY_AGAIN:
        return QN_EAI_AGAIN;
    case WSANO_RECOVERY:
        return QN_EAI_FAIL;
    case WSANO_DATA:
        return QN_EAI_NODATA;
    default:
        return error;
    }
}

} // namespace

QN_EXTERN_C int32_t QN_STDCALL QNgetaddrinfo(const char* node, const char* service,
                                             const struct addrinfo* hints,
                                             struct addrinfo** result) {
    WSADATA data;
    const int started = WSAStartup(MAKEWORD(2, 2), &data);
    if (started != 0)
        return coreNumberOf(started);
    const int error = getaddrinfo(node, service, hints, result);
    // The list lives in the process's memory and outlasts the socket layer's use count.
    WSACleanup();
    return coreNumberOf(error);
}

QN_EXTERN_C void QN_STDCALL QNfreeaddrinfo(struct addrinfo* result) {
    if (result)
        freeaddrinfo(result);
}
