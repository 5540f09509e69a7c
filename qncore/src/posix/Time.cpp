#include "common/Internal.h"

#include <ctime>

namespace {

QNRESULT now(bool local, STRUCT_QN_TIME* out) {
    if (!out)
        return QN_E_POINTER;
    timespec ts{};
    clock_gettime(CLOCK_REALTIME, &ts);
    std::tm parts{};
    const time_t seconds = ts.tv_sec;
    if (!(local ? localtime_r(&seconds, &parts) : gmtime_r(&seconds, &parts)))
        return QN_E_FAIL;
    out->wYear = static_cast<uint16_t>(parts.tm_year + 1900);
    out->wMonth = static_cast<uint16_t>(parts.tm_mon + 1);
    out->wDayOfWeek = static_cast<uint16_t>(parts.tm_wday);
    out->wDay = static_cast<uint16_t>(parts.tm_mday);
    out->wHour = static_cast<uint16_t>(parts.tm_hour);
    out->wMinute = static_cast<uint16_t>(parts.tm_min);
    // A leap second (60) is folded into the last ordinary second, as the record cannot hold it.
    out->wSecond = static_cast<uint16_t>(parts.tm_sec > 59 ? 59 : parts.tm_sec);
    out->wMilliseconds = static_cast<uint16_t>(ts.tv_nsec / 1000000);
    return QN_S_OK;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNTimeGetLocal(STRUCT_QN_TIME* time) {
    return now(true, time);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNTimeGetSystem(STRUCT_QN_TIME* time) {
    return now(false, time);
}
