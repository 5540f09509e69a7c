#include "qn/io/BufferedInputStream.h"

#include "StreamSupport.h"

#include <algorithm>
#include <cstring>

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

void BufferedInputStream::fillBuffer() {
    long kept = 0;
    if (m_markPos >= 0) {
        kept = m_pos - m_markPos;
        if (kept < m_markLimit) {
            if (m_markLimit > m_size) {
                std::unique_ptr<signed char[]> grown(new signed char[m_markLimit]);
                std::memcpy(grown.get(), m_buffer.get() + m_markPos, static_cast<size_t>(kept));
                m_buffer = std::move(grown);
                m_size = m_markLimit;
            } else {
                std::memmove(m_buffer.get(), m_buffer.get() + m_markPos, static_cast<size_t>(kept));
            }
            m_markPos = 0;
            m_pos = m_count = kept;
        } else {
            // More than the limit was read past the mark: the bytes need not be kept any more.
            m_markPos = -2;
            kept = 0;
        }
    }
    const long n = m_in->read(m_buffer.get() + kept, m_size - kept);
    if (n > 0) {
        m_pos = kept;
        m_count = kept + n;
    }
}

int BufferedInputStream::read() {
    // A closed stream holds no bytes (close empties it), so the common case needs one test.
    if (m_pos < m_count)
        return m_buffer[m_pos++]; // sign-extended on purpose: 0xFF reads as -1
    return readAfterFill();
}

[[gnu::noinline]] int BufferedInputStream::readAfterFill() {
    checkOpen();
    fillBuffer();
    return m_pos < m_count ? m_buffer[m_pos++] : -1;
}

long BufferedInputStream::read(signed char* buf, long len) {
    checkOpen();
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    long copied = 0;
    for (;;) {
        if (m_pos >= m_count) {
            if (copied > 0 && m_in->available() == 0)
                return copied;
            if (len - copied >= m_size && m_markPos < 0) {
                // Large reads bypass the buffer, which is empty and holds no mark.
                const long n = m_in->read(buf + copied, len - copied);
                if (n > 0)
                    return copied + n;
                return copied ? copied : n;
            }
            fillBuffer();
            if (m_pos >= m_count)
                return copied ? copied : -1;
        }
        const long n = std::min(len - copied, m_count - m_pos);
        std::memcpy(buf + copied, m_buffer.get() + m_pos, static_cast<size_t>(n));
        m_pos += n;
        copied += n;
        if (copied == len)
            return copied;
    }
}

long BufferedInputStream::skip(long n) {
    checkOpen();
    long skipped = 0;
    while (skipped < n) {
        if (m_pos >= m_count) {
            fillBuffer();
            if (m_pos >= m_count)
                break;
        }
        const long step = std::min(n - skipped, m_count - m_pos);
        m_pos += step;
        skipped += step;
    }
    return skipped;
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
    if (m_markPos >= 0) {
        m_pos = m_markPos;
        return;
    }
    throw IoException(m_markPos == -2 ? u"mark invalid" : u"stream not marked");
}

} // namespace qn::io
