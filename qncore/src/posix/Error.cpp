// errno values mapped to the Win32 errors of the same meaning, so that a failure has one result
// code on every platform.
#include "common/Internal.h"

#include <cerrno>

namespace {

struct Mapping {
    int errnoValue;
    uint16_t win32;
};

const Mapping MAPPINGS[] = {
    {EPERM, 5},        {ENOENT, 2},      {ESRCH, 2},        {EINTR, 1223},    {EIO, 1117},
    {ENXIO, 2},        {E2BIG, 87},      {ENOEXEC, 193},    {EBADF, 6},       {ECHILD, 128},
    {EAGAIN, 170},     {ENOMEM, 14},     {EACCES, 5},       {EFAULT, 487},    {EBUSY, 170},
    {EEXIST, 183},     {EXDEV, 17},      {ENODEV, 15},      {ENOTDIR, 3},     {EISDIR, 5},
    {EINVAL, 87},      {ENFILE, 4},      {EMFILE, 4},       {ENOTTY, 1},      {ETXTBSY, 32},
    {EFBIG, 223},      {ENOSPC, 112},    {ESPIPE, 132},     {EROFS, 19},      {EMLINK, 1142},
    {EPIPE, 109},      {EDOM, 87},       {ERANGE, 87},      {EDEADLK, 1131},  {ENAMETOOLONG, 206},
    {ENOLCK, 158},     {ENOSYS, 50},     {ENOTEMPTY, 145},  {ELOOP, 1921},    {ENODATA, 38},
    {ETIMEDOUT, 1460}, {EOVERFLOW, 534}, {ECANCELED, 1223}, {EOPNOTSUPP, 50}, {EDQUOT, 1816},
    {ENOTSUP, 50},
};

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNResultFromNative(uint32_t nativeError) {
    if (nativeError == 0)
        return QN_S_OK;
    for (const Mapping& m : MAPPINGS) {
        if (static_cast<uint32_t>(m.errnoValue) == nativeError)
            return static_cast<QNRESULT>(0x80070000u | m.win32);
    }
    return QN_E_FAIL;
}

QN_EXTERN_C uint32_t QN_STDCALL QNGetLastNativeError(void) {
    return static_cast<uint32_t>(errno);
}
