// BufferedOutputStream: collects small writes in a heap buffer and hands them to the wrapped
// stream in blocks. close() does not write what is still buffered: flush first.
#pragma once

#include "qn/io/OutputStream.h"

#include <memory>

namespace qn::io {

class QNCL_API BufferedOutputStream : public OutputStream {
public:
    // size of 16 or less gives 16. out must not be null: ResultException 0x80004003.
    BufferedOutputStream(OutputStream* out, long size);
    ~BufferedOutputStream() override;

    // Every operation on a closed stream throws IoException "stream closed".
    using OutputStream::write;
    // A write of at least the buffer size goes to the wrapped stream directly, after what was
    // buffered.
    void write(const signed char* buf, long len) override;
    void write(signed char b) override;
    // Writes the buffered bytes, then flushes the wrapped stream.
    void flush() override;
    // Frees the buffer, dropping unflushed bytes, and closes the wrapped stream.
    void close() override;

    long getBufferSize() const { return m_size; }

private:
    void checkOpen() const;
    void drain();

    Reference<OutputStream> m_out;
    long m_size;
    std::unique_ptr<signed char[]> m_buffer;
    long m_count = 0;
};

} // namespace qn::io
