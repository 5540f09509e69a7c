// Where the commands' bytes come from and go to: a named file, or standard input and output
// when the name is absent or "-". Input is read through a FileInputStream, over the file or the
// standard input handle; output goes through the core module's file functions. An output
// file is written beside its target under a temporary name and renamed into place only by
// commit(), so a run that fails leaves the target exactly as it was.
#pragma once

#include "Tool.h"

#include "qn/io/FileInputStream.h"

#include <cstddef>

namespace qncl {

// Failures throw ResultException with the platform's code and a message that names the file and
// says what was being done ("in.txt: cannot open: file not found (0x80070002)").
class ByteInput {
public:
    explicit ByteInput(const String& name);
    ~ByteInput();
    ByteInput(const ByteInput&) = delete;
    ByteInput& operator=(const ByteInput&) = delete;

    // The stream the input is read through; its failures carry no file name.
    qn::io::FileInputStream& stream() { return *m_stream; }
    // Up to size bytes; 0 only at the end of the input, or once closed.
    size_t read(unsigned char* buffer, size_t size);
    // Lets the file go before its end: a file open for reading cannot be replaced on every
    // platform, and the output may be about to replace it.
    void close() noexcept;
    // How messages name the input: the file name, or "-".
    const String& name() const { return m_name; }

private:
    String m_name;
    qn::Reference<qn::io::FileInputStream> m_stream;
};

class ByteOutput {
public:
    explicit ByteOutput(const String& name);
    // Without commit(), removes the temporary file and leaves the target alone.
    ~ByteOutput();
    ByteOutput(const ByteOutput&) = delete;
    ByteOutput& operator=(const ByteOutput&) = delete;

    // IllegalStateException after commit().
    void write(const unsigned char* data, size_t size);
    // Flushes, closes, and puts the file in place of its target (replacing it).
    void commit();
    const String& name() const { return m_name; }

private:
    void discard() noexcept;

    String m_name;
    bool m_standard;
    String m_temporary;
    QNFILE m_file = QN_INVALID_FILE;
};

bool isStandardStream(const String& name);

} // namespace qncl
