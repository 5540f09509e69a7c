#include "Win32.h"

static_assert(sizeof(STRUCT_QN_TIME) == sizeof(SYSTEMTIME), "the record is SYSTEMTIME's layout");

QN_EXTERN_C QNRESULT QN_STDCALL QNTimeGetLocal(STRUCT_QN_TIME* time) {
    if (!time)
        return QN_E_POINTER;
    SYSTEMTIME now;
    GetLocalTime(&now);
    std::memcpy(time, &now, sizeof now);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNTimeGetSystem(STRUCT_QN_TIME* time) {
    if (!time)
        return QN_E_POINTER;
    SYSTEMTIME now;
    GetSystemTime(&now);
    std::memcpy(time, &now, sizeof now);
    return QN_S_OK;
}
