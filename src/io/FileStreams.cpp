#include "qn/io/FileInputStream.h"
#include "qn/io/FileOutputStream.h"
#include "qn/ipc/Semaphore.h"
#include "qn/sync/LockObject.h"
#include "qn/util/FilePath.h"

#include "StreamSupport.h"

#include <climits>
#include <cstdio>

namespace qn::io {

namespace {

// New files belong to their owner alone.
constexpr uint32_t PERMISSION = 0x1C0;
constexpr uint32_t READ_ACCESS = 0x80000000u;

QNFILE openFile(const String& path, uint32_t access) {
    QNFILE handle = QN_INVALID_FILE;
    check(
        QNFileOpen(reinterpret_cast<const QNWCHAR*>(path.getData()), access, PERMISSION, &handle));
    return handle;
}

long clampToLong(int64_t n) {
    return n > LONG_MAX ? LONG_MAX : n < 0 ? 0 : static_cast<long>(n);
}

// Files are written in pieces the core module's 32-bit count can describe.
constexpr long MAX_PIECE = 0x40000000L;

} // namespace

FileInputStream::FileInputStream(const String& path) : m_handle(openFile(path, READ_ACCESS)) {}
FileInputStream::FileInputStream(const util::FilePath& path) : FileInputStream(path.getPath()) {}
FileInputStream::FileInputStream(QNFILE handle, bool owns) : m_handle(handle), m_owns(owns) {}

FileInputStream::~FileInputStream() {
    if (m_owns && m_handle != QN_INVALID_FILE)
        QNFileClose(m_handle);
}

long FileInputStream::read(signed char* buf, long len) {
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    uint32_t done = 0;
    const QNRESULT r =
        QNFileRead(m_handle, buf, static_cast<uint32_t>(len < MAX_PIECE ? len : MAX_PIECE), &done);
    if (QN_SUCCEEDED(r))
        return done ? static_cast<long>(done) : -1;
    if (r == QN_E_HANDLEEOF)
        return -1;
    throw ResultException(r);
}

long FileInputStream::available() {
    // A pipe, a terminal or a socket cannot seek and has no size: nothing is known to be
    // available without blocking, so 0 rather than a failure.
    // A closed stream still fails as it always did.
    int64_t position = 0, size = 0;
    const QNRESULT sought = QNFileSeek64(m_handle, 0, QN_SEEK_CURRENT, &position);
    if (m_handle == QN_INVALID_FILE)
        check(sought);
    if (QN_FAILED(sought) || QN_FAILED(QNFileGetSize(m_handle, &size)) || size < position)
        return 0;
    return clampToLong(size - position);
}

void FileInputStream::close() {
    const QNFILE handle = m_handle;
    m_handle = QN_INVALID_FILE;
    if (m_owns && handle != QN_INVALID_FILE)
        check(QNFileClose(handle));
}

FileOutputStream::FileOutputStream(const String& path, unsigned mode) {
    init(path, mode);
}
FileOutputStream::FileOutputStream(const util::FilePath& path, unsigned mode) {
    init(path.getPath(), mode);
}
FileOutputStream::FileOutputStream(const String& path, bool append) {
    init(path, append ? CREATE : TRUNCATE);
}
FileOutputStream::FileOutputStream(const util::FilePath& path, bool append) {
    init(path.getPath(), append ? CREATE : TRUNCATE);
}
FileOutputStream::FileOutputStream(QNFILE handle, bool owns) : m_handle(handle), m_owns(owns) {}

FileOutputStream::~FileOutputStream() {
    try {
        close();
    } catch (...) {
        // Nothing may leave a destructor; a caller that cares closes first.
    }
}

std::string FileOutputStream::sharedLockName(const util::FilePath& path) {
    // One name for every spelling of the path: absolute, normal, folded where case is ignored.
    String key = path.toAbsolute().getPath();
    if (!util::PathNormaliser::isCaseSensitive(util::PathNormaliser::NATIVE_STYLE))
        key.toLower();
    uint64_t hash = 0xCBF29CE484222325ULL; // 64-bit FNV-1a over the UTF-16 units
    for (int32_t i = 0; i < key.getLength(); ++i) {
        hash = (hash ^ (key[i] & 0xFF)) * 0x100000001B3ULL;
        hash = (hash ^ (key[i] >> 8)) * 0x100000001B3ULL;
    }
    char name[32];
    std::snprintf(name, sizeof name, "qncl.file.%016llx", static_cast<unsigned long long>(hash));
    return name;
}

void FileOutputStream::removeSharedNames(const util::FilePath& path) {
    const std::string name = sharedLockName(path);
    ipc::Semaphore::unlink(name.c_str());
    ipc::Semaphore::unlink((name + ".signal").c_str());
}

void FileOutputStream::init(const String& path, unsigned mode) {
    m_path = path;
    m_mode = mode;
    if (!(mode & SHARED)) {
        open();
        return;
    }
    m_lock = new ipc::Semaphore(sharedLockName(util::FilePath(path)).c_str(), 1);
    sync::LockGuard guard(*m_lock);
    open();
}

void FileOutputStream::openFile(uint32_t access) {
    m_handle = io::openFile(m_path, access);
    m_owns = true;
    if (!(access & QN_FILE_TRUNCATE))
        check(QNFileSeek64(m_handle, 0, QN_SEEK_END, nullptr));
}

void FileOutputStream::open() {
    if (m_handle != QN_INVALID_FILE)
        return;
    if (m_closed)
        throw ResultException(QN_E_HANDLE);
    uint32_t access = QN_FILE_WRITE;
    if (m_mode & (CREATE | TRUNCATE | EXCLUSIVE))
        access |= QN_FILE_CREATE;
    access |= m_mode & (TRUNCATE | EXCLUSIVE);
    openFile(access);
    // A shared file is truncated or claimed once; reopening only creates it again if it went.
    if (m_mode & SHARED)
        m_mode &= ~(TRUNCATE | EXCLUSIVE);
}

void FileOutputStream::writeAll(const signed char* buf, long len) {
    while (len > 0) {
        uint32_t done = 0;
        const QNRESULT r = QNFileWrite(
            m_handle, buf, static_cast<uint32_t>(len < MAX_PIECE ? len : MAX_PIECE), &done);
        check(r);
        if (done == 0)
            throw ResultException(QN_E_FAIL);
        buf += done;
        len -= static_cast<long>(done);
    }
}

void FileOutputStream::write(const signed char* buf, long len) {
    if (len < 1)
        return;
    checkBuffer(buf, len);
    if (!(m_mode & SHARED)) {
        if (m_mode & APPEND)
            check(QNFileSeek64(m_handle, 0, QN_SEEK_END, nullptr));
        writeAll(buf, len);
        return;
    }
    if (m_closed)
        throw ResultException(QN_E_HANDLE);
    sync::LockGuard guard(*m_lock);
    open();
    check(QNFileSeek64(m_handle, 0, QN_SEEK_END, nullptr));
    writeAll(buf, len);
}

void FileOutputStream::closeHandle() {
    const QNFILE handle = m_handle;
    m_handle = QN_INVALID_FILE;
    if (m_owns && handle != QN_INVALID_FILE)
        QNFileClose(handle);
}

void FileOutputStream::flush() {
    if (m_handle == QN_INVALID_FILE)
        return;
    const QNRESULT r = QNFileFlush(m_handle);
    if (m_mode & SHARED)
        closeHandle();
    check(r);
}

void FileOutputStream::close() {
    if (!(m_mode & SHARED)) {
        closeHandle();
        m_closed = true;
        return;
    }
    if (m_closed)
        return;
    m_closed = true;
    {
        sync::LockGuard guard(*m_lock);
        closeHandle();
    }
    m_lock = nullptr;
    m_signal = nullptr;
}

int64_t FileOutputStream::getSize() const {
    if (m_handle != QN_INVALID_FILE) {
        int64_t size = 0;
        check(QNFileGetSize(m_handle, &size));
        return size;
    }
    STRUCT_QN_FILE_STATUS status{};
    check(QNFileGetStatus(reinterpret_cast<const QNWCHAR*>(m_path.getData()), &status));
    return status.size;
}

ipc::Semaphore& FileOutputStream::signalObject() {
    if (!(m_mode & SHARED) || m_closed)
        throw IllegalStateException(u"stream not shared");
    if (!m_signal)
        m_signal = new ipc::Semaphore((m_lock->getName() + ".signal").c_str(), 0);
    return *m_signal;
}

void FileOutputStream::signal() {
    signalObject().signal();
}
void FileOutputStream::wait() {
    signalObject().wait();
}
bool FileOutputStream::wait(uint32_t milliseconds) {
    return signalObject().wait(milliseconds);
}

} // namespace qn::io
