// FileInputStream: reads a file through the core module. Failures of the file system are thrown
// as ResultException with the core module's code (a missing file is 0x80070002 everywhere).
#pragma once

#include "qn/io/InputStream.h"

namespace qn::util {
class FilePath;
}

namespace qn::io {

class QNCL_API FileInputStream : public InputStream {
public:
    // Opens the file for reading; the stream owns the handle.
    explicit FileInputStream(const String& path);
    explicit FileInputStream(const util::FilePath& path);
    // Wraps an open handle; close() closes it only when owns is true.
    FileInputStream(QNFILE handle, bool owns);
    // Closes an owned handle, ignoring a failure.
    ~FileInputStream() override;

    using InputStream::read;
    // One read of up to len bytes: the count, or -1 at the end of the file (len below 1: 0).
    long read(signed char* buf, long len) override;
    // The bytes between the position and the end of the file (at most the largest long); 0 for a
    // handle that cannot seek (a pipe, a terminal), where nothing is known to be waiting.
    long available() override;
    // Closes an owned, open handle; the handle is -1 afterwards either way, so a second close
    // does nothing.
    void close() override;

    QNFILE getHandle() const { return m_handle; }

private:
    QNFILE m_handle = QN_INVALID_FILE;
    bool m_owns = true;
};

} // namespace qn::io
