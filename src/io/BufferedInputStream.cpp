#include "qn/io/BufferedInputStream.h"

#include "StreamSupport.h"

#include <algorithm>

namespace qn::io {

namespace {
constexpr long MIN_BUFFER = 16;
}

BufferedInputStream::BufferedInputStream(InputStream* in, long size)
    : m_in(checkStream(in)), m_size(std::max(size, MIN_BUFFER)), m_buffer(new signed char[m_size]) {
}

BufferedInputStream::~BufferedInputStream() = default;

void BufferedInputStream::checkOpen() const {
    if (!m_buffer)
        throw IoException(u"stream closed");
}

MarkedBuffer<signed char> BufferedInputStream::state() {
    return {m_buffer, m_size, m_pos, m_count, m_markLimit, m_markPos};
}

int BufferedInputStream::read() {
    // A closed stream holds no bytes (close empties it), so the common case needs one test.
    if (m_pos < m_count)
        return m_buffer[m_pos++]; // sign-extended on purpose: 0xFF reads as -1
    return readAfterFill();
}

[[gnu::noinline]] int BufferedInputStream::readAfterFill() {
    checkOpen();
    state().fill(*m_in);
    return m_pos < m_count ? m_buffer[m_pos++] : -1;
}

long BufferedInputStream::read(signed char* buf, long len) {
    checkOpen();
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    return state().read(*m_in, buf, len);
}

long BufferedInputStream::skip(long n) {
    checkOpen();
    return state().skip(*m_in, n);
}

long BufferedInputStream::available() {
    checkOpen();
    return m_in->available() + (m_count - m_pos);
}

void BufferedInputStream::close() {
    m_buffer.reset();
    m_pos = m_count = 0;
    m_in->close();
}

bool BufferedInputStream::markSupported() {
    return true;
}

void BufferedInputStream::mark(long readLimit) {
    checkOpen();
    m_markLimit = readLimit;
    m_markPos = m_pos;
}

void BufferedInputStream::reset() {
    checkOpen();
    state().reset();
}

} // namespace qn::io
