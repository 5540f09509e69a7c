// StdioOutputStream: an output stream over a stream of the C runtime, standard output unless
// another is given; getStdErrorStream() writes to standard error. Bytes go through the runtime's
// own buffer, in order, so they mix correctly with the program's other writes to the stream.
// The runtime stream is not closed by close().
#pragma once

#include "qn/io/OutputStream.h"

#include <cstdio>

namespace qn::io {

class QNCL_API StdioOutputStream : public OutputStream {
public:
    StdioOutputStream();
    explicit StdioOutputStream(std::FILE* file);
    ~StdioOutputStream() override;

    static Reference<StdioOutputStream> getStdErrorStream();

    using OutputStream::write;
    // IoException "stream write error" on a failure or a short write.
    void write(const signed char* buf, long len) override;
    void write(signed char b) override;
    // IoException "stream flush error".
    void flush() override;

private:
    std::FILE* m_file;
};

} // namespace qn::io
