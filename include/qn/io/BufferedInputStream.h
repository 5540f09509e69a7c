// BufferedInputStream: reads the wrapped stream in blocks through a heap buffer and supports
// mark and reset. Unlike InputStream::read(), the single-byte read() sign-extends: a byte
// 0x80-0xFF comes back negative, so 0xFF reads as -1 although the stream has not ended. Callers
// that need every byte value use read(buf, len).
//
// A mark keeps up to the mark limit of bytes read after it: when a refill would need more room,
// the buffer grows to the limit; when more than the limit was read, the mark is invalidated and
// reset() throws "mark invalid". A read from the wrapped stream that gives 0 bytes ends a read
// here as if the stream had ended (-1 when nothing was delivered).
#pragma once

#include "qn/io/InputStream.h"

#include <memory>

namespace qn::io {

template <class T> struct MarkedBuffer;

class QNCL_API BufferedInputStream : public InputStream {
public:
    // size of 16 or less gives 16. in must not be null: ResultException 0x80004003.
    BufferedInputStream(InputStream* in, long size);
    ~BufferedInputStream() override;

    // Every operation on a closed stream throws IoException "stream closed".
    using InputStream::read;
    long read(signed char* buf, long len) override;
    int read() override;
    long skip(long n) override;
    long available() override;
    // Frees the buffer and closes the wrapped stream (again, on a second close).
    void close() override;
    bool markSupported() override;
    void mark(long readLimit) override;
    // Back to the mark: IoException "stream not marked" without one, "mark invalid" after more
    // than the mark limit was read past it.
    void reset() override;

    long getBufferSize() const { return m_size; }

private:
    void checkOpen() const;
    MarkedBuffer<signed char> state();
    // read() once the buffer is used up, kept apart so that the common case stays small.
    int readAfterFill();

    Reference<InputStream> m_in;
    long m_size;
    std::unique_ptr<signed char[]> m_buffer;
    long m_pos = 0;
    long m_count = 0;
    long m_markLimit = 0;
    long m_markPos = -1; // -1: no mark; -2: mark invalidated
};

} // namespace qn::io
