#include "Internal.h"

namespace qncore {

// Days since 1970-01-01 of a proleptic Gregorian date (eras of 400 years).
int64_t daysFromCivil(int64_t year, unsigned month, unsigned day) noexcept {
    year -= month <= 2;
    const int64_t era = (year >= 0 ? year : year - 399) / 400;
    const int64_t yoe = year - era * 400;
    const int64_t doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

void civilFromDays(int64_t days, int64_t* year, unsigned* month, unsigned* day) noexcept {
    days += 719468;
    const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const int64_t doe = days - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    *day = static_cast<unsigned>(doy - (153 * mp + 2) / 5 + 1);
    *month = static_cast<unsigned>(mp < 10 ? mp + 3 : mp - 9);
    *year = yoe + era * 400 + (*month <= 2);
}

} // namespace qncore

namespace {

// 1601-01-01 and 30827-12-31 23:59:59: the range of the record.
constexpr int64_t MIN_POSIX = -11644473600LL;
constexpr int64_t MAX_POSIX = 910670515199LL;

bool isLeap(int64_t y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNTimeFromPosix(int64_t seconds, STRUCT_QN_TIME* time) {
    if (!time)
        return QN_E_POINTER;
    if (seconds < MIN_POSIX || seconds > MAX_POSIX)
        return QN_E_INVALIDARG;
    int64_t days = seconds / 86400, rest = seconds % 86400;
    if (rest < 0) {
        rest += 86400;
        --days;
    }
    int64_t year = 0;
    unsigned month = 0, day = 0;
    qncore::civilFromDays(days, &year, &month, &day);
    time->wYear = static_cast<uint16_t>(year);
    time->wMonth = static_cast<uint16_t>(month);
    // 1970-01-01 was a Thursday (4).
    time->wDayOfWeek = static_cast<uint16_t>(((days % 7) + 11) % 7);
    time->wDay = static_cast<uint16_t>(day);
    time->wHour = static_cast<uint16_t>(rest / 3600);
    time->wMinute = static_cast<uint16_t>(rest / 60 % 60);
    time->wSecond = static_cast<uint16_t>(rest % 60);
    time->wMilliseconds = 0;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNTimeToPosix(const STRUCT_QN_TIME* time, int64_t* seconds) {
    if (!time || !seconds)
        return QN_E_POINTER;
    static const unsigned char monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const int64_t y = time->wYear;
    if (y < 1601 || y > 30827 || time->wMonth < 1 || time->wMonth > 12 || time->wDay < 1 ||
        time->wHour > 23 || time->wMinute > 59 || time->wSecond > 59 || time->wMilliseconds > 999)
        return QN_E_INVALIDARG;
    const unsigned limit = monthDays[time->wMonth - 1] + (time->wMonth == 2 && isLeap(y) ? 1 : 0);
    if (time->wDay > limit)
        return QN_E_INVALIDARG;
    *seconds = qncore::daysFromCivil(y, time->wMonth, time->wDay) * 86400 + time->wHour * 3600 +
               time->wMinute * 60 + time->wSecond;
    return QN_S_OK;
}
