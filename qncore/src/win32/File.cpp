#include "Win32.h"

namespace {

constexpr uint32_t KNOWN_ACCESS = QN_FILE_READ | QN_FILE_WRITE | QN_FILE_CREATE | QN_FILE_APPEND |
                                  QN_FILE_TRUNCATE | QN_FILE_SHARED | QN_FILE_EXCLUSIVE;

// -1 is also the current process's pseudo handle, which the file calls would accept.
bool isValid(QNFILE file) {
    return file != QN_INVALID_FILE;
}

HANDLE nativeOf(QNFILE file) {
    return reinterpret_cast<HANDLE>(file);
}

DWORD dispositionOf(uint32_t access) {
    const bool create = access & QN_FILE_CREATE, truncate = access & QN_FILE_TRUNCATE;
    if (create && (access & QN_FILE_EXCLUSIVE))
        return CREATE_NEW;
    if (create)
        return truncate ? CREATE_ALWAYS : OPEN_ALWAYS;
    return truncate ? TRUNCATE_EXISTING : OPEN_EXISTING;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNFileOpen(const QNWCHAR* path, uint32_t access,
                                           uint32_t /*permission*/, QNFILE* file) {
    if (!path || !file)
        return QN_E_POINTER;
    *file = QN_INVALID_FILE;
    if ((access & ~KNOWN_ACCESS) || !(access & (QN_FILE_READ | QN_FILE_WRITE)) ||
        ((access & QN_FILE_TRUNCATE) && !(access & QN_FILE_WRITE)))
        return QN_E_INVALIDARG;
    const DWORD rights = ((access & QN_FILE_READ) ? GENERIC_READ : 0) |
                         ((access & QN_FILE_WRITE) ? GENERIC_WRITE : 0);
    const HANDLE handle =
        CreateFileW(path, rights, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    dispositionOf(access), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return qncore::win32::lastResult();
    *file = reinterpret_cast<QNFILE>(handle);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileRead(QNFILE file, void* buffer, uint32_t length,
                                           uint32_t* done) {
    if (done)
        *done = 0;
    if (!buffer && length)
        return QN_E_POINTER;
    if (!isValid(file))
        return QN_E_HANDLE;
    DWORD read = 0;
    if (!ReadFile(nativeOf(file), buffer, length, &read, nullptr)) {
        const DWORD error = GetLastError();
        // The end of a file, or of a pipe whose writer has gone, is the end of input.
        if (error != ERROR_HANDLE_EOF && error != ERROR_BROKEN_PIPE)
            return QNResultFromNative(error);
        read = 0;
    }
    if (done)
        *done = read;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileWrite(QNFILE file, const void* buffer, uint32_t length,
                                            uint32_t* done) {
    if (done)
        *done = 0;
    if (!buffer && length)
        return QN_E_POINTER;
    if (!isValid(file))
        return QN_E_HANDLE;
    const char* bytes = static_cast<const char*>(buffer);
    uint32_t total = 0;
    QNRESULT result = QN_S_OK;
    while (total < length) {
        DWORD written = 0;
        if (!WriteFile(nativeOf(file), bytes + total, length - total, &written, nullptr)) {
            result = qncore::win32::lastResult();
            break;
        }
        // A device that takes nothing would keep the loop going for ever.
        if (written == 0) {
            result = QN_E_FAIL;
            break;
        }
        total += written;
    }
    if (done)
        *done = total;
    return result;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileSeek64(QNFILE file, int64_t offset, int32_t origin,
                                             int64_t* newPosition) {
    static const DWORD methods[] = {FILE_BEGIN, FILE_CURRENT, FILE_END};
    if (origin < QN_SEEK_BEGIN || origin > QN_SEEK_END)
        return QN_E_INVALIDARG;
    if (!isValid(file))
        return QN_E_HANDLE;
    LARGE_INTEGER distance, position;
    distance.QuadPart = offset;
    if (!SetFilePointerEx(nativeOf(file), distance, &position, methods[origin])) {
        const DWORD error = GetLastError();
        // A position before the start is a bad argument, as the POSIX side reports it.
        return error == ERROR_NEGATIVE_SEEK ? QN_E_INVALIDARG : QNResultFromNative(error);
    }
    if (newPosition)
        *newPosition = position.QuadPart;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileFlush(QNFILE file) {
    if (!isValid(file))
        return QN_E_HANDLE;
    const HANDLE handle = nativeOf(file);
    if (FlushFileBuffers(handle))
        return QN_S_OK;
    const DWORD error = GetLastError();
    // A handle without write access has nothing of its own to flush.
    if (error == ERROR_ACCESS_DENIED)
        return QN_S_OK;
    // Consoles and pipes have no buffers to flush; a bad handle is still a failure.
    const DWORD type = GetFileType(handle);
    if ((error == ERROR_INVALID_HANDLE || error == ERROR_INVALID_FUNCTION) &&
        (type == FILE_TYPE_CHAR || type == FILE_TYPE_PIPE))
        return QN_S_OK;
    return QNResultFromNative(error);
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileGetSize(QNFILE file, int64_t* size) {
    if (!size)
        return QN_E_POINTER;
    if (!isValid(file))
        return QN_E_HANDLE;
    LARGE_INTEGER value;
    if (!GetFileSizeEx(nativeOf(file), &value))
        return qncore::win32::lastResult();
    *size = value.QuadPart;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileClose(QNFILE file) {
    if (!isValid(file))
        return QN_E_HANDLE;
    return CloseHandle(nativeOf(file)) ? QN_S_OK : qncore::win32::lastResult();
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileGetStatus(const QNWCHAR* path,
                                                STRUCT_QN_FILE_STATUS* status) {
    if (!path || !status)
        return QN_E_POINTER;
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path, GetFileExInfoStandard, &data))
        return qncore::win32::lastResult();
    SYSTEMTIME utc;
    if (!FileTimeToSystemTime(&data.ftLastWriteTime, &utc))
        return qncore::win32::lastResult();
    const bool directory = data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    // File times count 100 ns intervals from 1601-01-01, 11644473600 seconds before 1970.
    const uint64_t ticks =
        (uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32) | data.ftLastWriteTime.dwLowDateTime;
    status->size =
        directory ? 0
                  : static_cast<int64_t>((uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow);
    status->modifiedPosix = static_cast<int64_t>(ticks / 10000000u) - 11644473600LL;
    std::memcpy(&status->modifiedUtc, &utc, sizeof utc);
    status->isDirectory = directory ? 1 : 0;
    status->isReadOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) ? 1 : 0;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileDelete(const QNWCHAR* path) {
    if (!path)
        return QN_E_POINTER;
    return DeleteFileW(path) ? QN_S_OK : qncore::win32::lastResult();
}
