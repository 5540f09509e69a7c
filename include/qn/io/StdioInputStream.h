// StdioInputStream: an input stream over a stream of the C runtime, standard input unless
// another is given. The runtime stream is not closed by close().
#pragma once

#include "qn/io/InputStream.h"

#include <cstdio>

namespace qn::io {

class QNCL_API StdioInputStream : public InputStream {
public:
    StdioInputStream();
    explicit StdioInputStream(std::FILE* file);
    ~StdioInputStream() override;

    using InputStream::read;
    // One line of at most len - 1 bytes, its line feed included (len below 1: 0); the number
    // of bytes before the first zero byte, -1 at the end. IoException "stream read error".
    long read(signed char* buf, long len) override;
    // One byte as 0-255, -1 at the end. IoException "stream read error".
    int read() override;
    // Seeks n bytes forward and returns how far the position moved; a stream that cannot seek
    // (a pipe, a terminal) throws IoException "stream seek error".
    long skip(long n) override;

private:
    std::FILE* m_file;
};

} // namespace qn::io
