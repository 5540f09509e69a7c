#include "common/Internal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr uint32_t KNOWN_ACCESS = QN_FILE_READ | QN_FILE_WRITE | QN_FILE_CREATE | QN_FILE_APPEND |
                                  QN_FILE_TRUNCATE | QN_FILE_SHARED | QN_FILE_EXCLUSIVE;

QNRESULT lastError() {
    return QNResultFromNative(static_cast<uint32_t>(errno));
}

int fd(QNFILE file) {
    return static_cast<int>(file);
}

bool validFile(QNFILE file) {
    return file >= 0 && file <= INT32_MAX;
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNFileOpen(const QNWCHAR* path, uint32_t access,
                                           uint32_t permission, QNFILE* file) {
    if (!path || !file)
        return QN_E_POINTER;
    *file = QN_INVALID_FILE;
    const bool read = access & QN_FILE_READ, write = access & QN_FILE_WRITE;
    if ((access & ~KNOWN_ACCESS) || (!read && !write) || ((access & QN_FILE_TRUNCATE) && !write))
        return QN_E_INVALIDARG;
    return qncore::guard([&] {
        int flags = O_CLOEXEC | (read && write ? O_RDWR : write ? O_WRONLY : O_RDONLY);
        if (access & QN_FILE_CREATE)
            flags |= O_CREAT | ((access & QN_FILE_EXCLUSIVE) ? O_EXCL : 0);
        if (access & QN_FILE_TRUNCATE)
            flags |= O_TRUNC;
        const std::string name = qncore::toUtf8(path);
        int opened;
        do {
            opened = ::open(name.c_str(), flags, static_cast<mode_t>(permission & 07777));
        } while (opened < 0 && errno == EINTR);
        if (opened < 0)
            return lastError();
        struct stat st {};
        if (fstat(opened, &st) == 0 && S_ISDIR(st.st_mode)) {
            ::close(opened);
            return QN_E_ACCESSDENIED;
        }
        *file = opened;
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileRead(QNFILE file, void* buffer, uint32_t length,
                                           uint32_t* done) {
    if (done)
        *done = 0;
    if (!buffer || !done)
        return QN_E_POINTER;
    if (!validFile(file))
        return QN_E_HANDLE;
    ssize_t n;
    do {
        n = ::read(fd(file), buffer, length > INT32_MAX ? INT32_MAX : length);
    } while (n < 0 && errno == EINTR);
    if (n < 0)
        return lastError();
    *done = static_cast<uint32_t>(n);
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileWrite(QNFILE file, const void* buffer, uint32_t length,
                                            uint32_t* done) {
    if (done)
        *done = 0;
    if (!buffer && length)
        return QN_E_POINTER;
    if (!validFile(file))
        return QN_E_HANDLE;
    const char* p = static_cast<const char*>(buffer);
    uint32_t written = 0;
    while (written < length) {
        const uint32_t chunk = length - written > INT32_MAX ? INT32_MAX : length - written;
        const ssize_t n = ::write(fd(file), p + written, chunk);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            if (done)
                *done = written;
            return lastError();
        }
        written += static_cast<uint32_t>(n);
    }
    if (done)
        *done = written;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileSeek64(QNFILE file, int64_t offset, int32_t origin,
                                             int64_t* newPosition) {
    if (!validFile(file))
        return QN_E_HANDLE;
    static const int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (origin < QN_SEEK_BEGIN || origin > QN_SEEK_END)
        return QN_E_INVALIDARG;
    const off_t position = lseek(fd(file), static_cast<off_t>(offset), whence[origin]);
    if (position < 0)
        return lastError();
    if (newPosition)
        *newPosition = position;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileFlush(QNFILE file) {
    if (!validFile(file))
        return QN_E_HANDLE;
    if (fsync(fd(file)) == 0)
        return QN_S_OK;
    // Pipes, terminals and sockets have nothing to make durable.
    return errno == EINVAL || errno == EROFS ? QN_S_OK : lastError();
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileGetSize(QNFILE file, int64_t* size) {
    if (!size)
        return QN_E_POINTER;
    if (!validFile(file))
        return QN_E_HANDLE;
    struct stat st {};
    if (fstat(fd(file), &st) != 0)
        return lastError();
    *size = st.st_size;
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileClose(QNFILE file) {
    if (!validFile(file))
        return QN_E_HANDLE;
    // The descriptor is gone after close even when it reports EINTR, so it is not retried.
    return ::close(fd(file)) == 0 || errno == EINTR ? QN_S_OK : lastError();
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileGetStatus(const QNWCHAR* path,
                                                STRUCT_QN_FILE_STATUS* status) {
    if (!path || !status)
        return QN_E_POINTER;
    return qncore::guard([&] {
        const std::string name = qncore::toUtf8(path);
        struct stat st {};
        if (::stat(name.c_str(), &st) != 0)
            return lastError();
        *status = STRUCT_QN_FILE_STATUS{};
        status->isDirectory = S_ISDIR(st.st_mode) ? 1 : 0;
        status->size = status->isDirectory ? 0 : st.st_size;
        status->modifiedPosix = st.st_mtim.tv_sec;
        status->isReadOnly = ::access(name.c_str(), W_OK) != 0 ? 1 : 0;
        QNRESULT r = QNTimeFromPosix(st.st_mtim.tv_sec, &status->modifiedUtc);
        status->modifiedUtc.wMilliseconds = static_cast<uint16_t>(st.st_mtim.tv_nsec / 1000000);
        return r;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNFileDelete(const QNWCHAR* path) {
    if (!path)
        return QN_E_POINTER;
    return qncore::guard([&] {
        const std::string name = qncore::toUtf8(path);
        if (::unlink(name.c_str()) == 0)
            return QN_S_OK;
        // Linux reports EISDIR for a directory; Windows, access denied: keep one answer.
        return errno == EISDIR ? QN_E_ACCESSDENIED : lastError();
    });
}
