// FileOutputStream: writes a file through the core module, alone or shared with other
// processes. New files are created for their owner alone (permission 0x1C0). Failures of the
// file system are thrown as ResultException with the core module's code.
//
// The mode word:
//   CREATE    (1)  create the file when it does not exist.
//   APPEND    (2)  seek to the end before every write, so that several writers append.
//   TRUNCATE  (4)  create the file, or cut an existing one to length 0.
//   SHARED    (8)  share the file between processes: every write takes an inter-process lock
//                  named after the file's absolute path, (re)opens the file when no handle is
//                  held, seeks to the end and writes all its bytes before the lock is given
//                  back, so writes of several processes never interleave and never overwrite
//                  each other. flush() closes the handle again; close() gives up the lock.
//   EXCLUSIVE (16) create the file, failing with 0x800700B7 when it exists.
// A file opened without TRUNCATE is positioned at its end, so (path, true) appends. In shared
// mode TRUNCATE and EXCLUSIVE act on the first open only: a reopen never truncates what other
// processes wrote.
//
// signal() and wait() let processes sharing a file tell each other of new content: each file
// has a named counting semaphore beside its lock; signal() counts it up and wait() blocks until
// it can count it down. Both throw IllegalStateException "stream not shared" outside shared mode.
//
// The names of the lock and the signal ("qncl.file." and a hash of the path) persist on POSIX
// until removed with removeSharedNames(), which is safe only once no process uses the file.
#pragma once

#include "qn/io/OutputStream.h"

#include <string>

namespace qn::util {
class FilePath;
}
namespace qn::ipc {
class Semaphore;
}

namespace qn::io {

class QNCL_API FileOutputStream : public OutputStream {
public:
    enum : unsigned { CREATE = 1, APPEND = 2, TRUNCATE = 4, SHARED = 8, EXCLUSIVE = 16 };

    // Opens the file with the mode word (shared mode opens and locks on first use).
    FileOutputStream(const String& path, unsigned mode);
    FileOutputStream(const util::FilePath& path, unsigned mode);
    // append: mode CREATE (kept and written at the end); otherwise TRUNCATE.
    FileOutputStream(const String& path, bool append);
    FileOutputStream(const util::FilePath& path, bool append);
    // Wraps an open handle; close() closes it only when owns is true.
    FileOutputStream(QNFILE handle, bool owns);
    // close() without the failures.
    ~FileOutputStream() override;

    using OutputStream::write;
    // Writes all len bytes.
    void write(const signed char* buf, long len) override;
    // Flushes the system's buffers to the device; in shared mode also closes the handle.
    void flush() override;
    // Closes an owned handle (a failure is ignored; a handle not owned stays open) and, in
    // shared mode, gives up the lock and the signal. Writes after close throw ResultException
    // 0x80070006.
    void close() override;

    bool is_open() const { return m_handle != QN_INVALID_FILE; }
    // Opens the file with the stream's mode when no handle is held.
    void open();
    // The file's size in bytes (of the path, when shared mode holds no handle).
    int64_t getSize() const;
    void signal();
    void wait();
    // As wait(), giving up after milliseconds: false then.
    bool wait(uint32_t milliseconds);

    // The names of the inter-process lock and signal of a path; removing them while another
    // process still uses the file breaks the lock.
    static std::string sharedLockName(const util::FilePath& path);
    static void removeSharedNames(const util::FilePath& path);

private:
    void init(const String& path, unsigned mode);
    void openFile(uint32_t access);
    void writeAll(const signed char* buf, long len);
    void closeHandle();
    ipc::Semaphore& signalObject();

    String m_path;
    QNFILE m_handle = QN_INVALID_FILE;
    bool m_owns = true;
    bool m_closed = false;
    unsigned m_mode = 0;
    Reference<ipc::Semaphore> m_lock;
    Reference<ipc::Semaphore> m_signal;
};

} // namespace qn::io
