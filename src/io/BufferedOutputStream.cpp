#include "qn/io/BufferedOutputStream.h"

#include "StreamSupport.h"

#include <algorithm>
#include <cstring>

namespace qn::io {

BufferedOutputStream::BufferedOutputStream(OutputStream* out, long size)
    : m_out(checkStream(out)), m_size(std::max(size, 16L)), m_buffer(new signed char[m_size]) {}

BufferedOutputStream::~BufferedOutputStream() = default;

void BufferedOutputStream::checkOpen() const {
    if (!m_buffer)
        throw IoException(u"stream closed");
}

void BufferedOutputStream::drain() {
    if (m_count > 0) {
        // Counted as written first: a failing wrapped stream does not get the bytes twice.
        const long n = m_count;
        m_count = 0;
        m_out->write(m_buffer.get(), n);
    }
}

void BufferedOutputStream::write(signed char b) {
    checkOpen();
    if (m_count >= m_size)
        drain();
    m_buffer[m_count++] = b;
}

void BufferedOutputStream::write(const signed char* buf, long len) {
    checkOpen();
    if (len < 1)
        return;
    checkBuffer(buf, len);
    if (len >= m_size) {
        drain();
        m_out->write(buf, len);
        return;
    }
    if (m_count + len > m_size)
        drain();
    std::memcpy(m_buffer.get() + m_count, buf, static_cast<size_t>(len));
    m_count += len;
}

void BufferedOutputStream::flush() {
    checkOpen();
    drain();
    m_out->flush();
}

void BufferedOutputStream::close() {
    m_buffer.reset();
    m_count = 0;
    m_out->close();
}

} // namespace qn::io
