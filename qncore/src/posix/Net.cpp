#include "common/Internal.h"

#include "qncore/QNNet.h"

#include <cerrno>

namespace {

int32_t fromEai(int code) {
    switch (code) {
    case 0:
        return 0;
    case EAI_MEMORY:
        return QN_EAI_MEMORY;
    case EAI_BADFLAGS:
        return QN_EAI_BADFLAGS;
    case EAI_SOCKTYPE:
        return QN_EAI_SOCKTYPE;
    case EAI_FAMILY:
        return QN_EAI_FAMILY;
    case EAI_SERVICE:
        return QN_EAI_SERVICE;
    case EAI_NONAME:
        return QN_EAI_NONAME;
    case EAI_AGAIN:
        return QN_EAI_AGAIN;
    case EAI_FAIL:
        return QN_EAI_FAIL;
#ifdef EAI_NODATA
    case EAI_NODATA:
        return QN_EAI_NODATA;
#endif
#ifdef EAI_ADDRFAMILY
    case EAI_ADDRFAMILY:
        return QN_EAI_NODATA;
#endif
    case EAI_SYSTEM:
        return errno ? errno : QN_EAI_FAIL;
    default:
        return QN_EAI_FAIL;
    }
}

} // namespace

QN_EXTERN_C int32_t QN_STDCALL QNgetaddrinfo(const char* node, const char* service,
                                             const struct addrinfo* hints,
                                             struct addrinfo** result) {
    if (!result)
        return QN_EAI_FAIL;
    *result = nullptr;
    errno = 0;
    return fromEai(getaddrinfo(node, service, hints, result));
}

QN_EXTERN_C void QN_STDCALL QNfreeaddrinfo(struct addrinfo* result) {
    if (result)
        freeaddrinfo(result);
}
