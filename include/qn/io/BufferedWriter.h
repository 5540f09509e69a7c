// BufferedWriter: collects characters in a heap buffer and writes them to the wrapped writer
// when the buffer is full and at flush. Arrays at least as long as the buffer go straight
// through (after what is buffered).
#pragma once

#include "qn/io/Writer.h"

#include <memory>

namespace qn::io {

class QNCL_API BufferedWriter : public Writer {
public:
    static constexpr long DEFAULT_BUFFER_SIZE = 8192;

    // size below 16 gives 16. out must not be null: ResultException 0x80004003.
    explicit BufferedWriter(Writer* out, long size = DEFAULT_BUFFER_SIZE);
    ~BufferedWriter() override;

    // Every operation on a closed writer but close throws IoException "stream closed".
    using Writer::write;
    void write(const char16_t* buf, long len) override;
    void write(char16_t c) override;
    // Writes the buffered characters, then flushes the wrapped writer.
    void flush() override;
    // Frees the buffer and closes the wrapped writer. Characters not flushed are lost: flush
    // before closing.
    void close() override;

    long getBufferSize() const { return m_size; }

private:
    void checkOpen() const;
    void writeBuffered();

    Reference<Writer> m_out;
    long m_size;
    std::unique_ptr<char16_t[]> m_buffer;
    long m_count = 0;
};

} // namespace qn::io
