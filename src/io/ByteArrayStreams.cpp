#include "qn/io/ByteArrayInputStream.h"
#include "qn/io/ByteArrayOutputStream.h"

#include "StreamSupport.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace qn::io {

ByteArrayInputStream::ByteArrayInputStream(const signed char* bytes, long length)
    : m_length(std::max(length, 0L)) {
    checkBuffer(bytes, m_length);
    m_data.reset(new signed char[m_length ? m_length : 1]);
    if (m_length)
        std::memcpy(m_data.get(), bytes, static_cast<size_t>(m_length));
}
ByteArrayInputStream::ByteArrayInputStream(const char* bytes, long length)
    : ByteArrayInputStream(reinterpret_cast<const signed char*>(bytes), length) {}
ByteArrayInputStream::ByteArrayInputStream(const unsigned char* bytes, long length)
    : ByteArrayInputStream(reinterpret_cast<const signed char*>(bytes), length) {}
ByteArrayInputStream::~ByteArrayInputStream() = default;

long ByteArrayInputStream::read(signed char* buf, long len) {
    if (m_position >= m_length)
        return -1;
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    const long n = std::min(len, m_length - m_position);
    std::memcpy(buf, m_data.get() + m_position, static_cast<size_t>(n));
    m_position += n;
    return n;
}

ByteArrayOutputStream::ByteArrayOutputStream(long capacity)
    : m_buffer(new signed char[std::max(capacity, 1L)]), m_capacity(std::max(capacity, 0L)) {}
ByteArrayOutputStream::~ByteArrayOutputStream() = default;

void ByteArrayOutputStream::write(const signed char* buf, long len) {
    if (len < 1)
        return;
    checkBuffer(buf, len);
    if (len > LONG_MAX - m_count)
        throw std::bad_alloc();
    ensureCapacity(m_count + len);
    std::memcpy(m_buffer.get() + m_count, buf, static_cast<size_t>(len));
    m_count += len;
}

void ByteArrayOutputStream::write(signed char b) {
    if (m_count == LONG_MAX)
        throw std::bad_alloc();
    ensureCapacity(m_count + 1);
    m_buffer[m_count++] = b;
}

void ByteArrayOutputStream::ensureCapacity(long needed) {
    if (needed <= m_capacity)
        return;
    // Computed wide: five quarters of a large long does not fit in one.
    const long long grown = static_cast<long long>(needed) * 5 / 4;
    reallocBuffer(grown > LONG_MAX ? LONG_MAX : static_cast<long>(grown));
}

void ByteArrayOutputStream::reallocBuffer(long size) {
    size = std::max(size, 0L);
    std::unique_ptr<signed char[]> buffer(new signed char[size ? size : 1]);
    m_count = std::min(m_count, size);
    std::memcpy(buffer.get(), m_buffer.get(), static_cast<size_t>(m_count));
    m_buffer = std::move(buffer);
    m_capacity = size;
}

long ByteArrayOutputStream::getBytes(signed char* buf, long size) const {
    const long n = std::min(std::max(size, 0L), m_count);
    checkBuffer(buf, n);
    if (n)
        std::memcpy(buf, m_buffer.get(), static_cast<size_t>(n));
    return n;
}

void ByteArrayOutputStream::writeTo(OutputStream* out) const {
    checkStream(out)->write(m_buffer.get(), m_count);
}

String ByteArrayOutputStream::toString() const {
    return toString(nullptr);
}

String ByteArrayOutputStream::toString(const char16_t* encoding) const {
    return String(reinterpret_cast<const char*>(m_buffer.get()), static_cast<int32_t>(m_count),
                  encoding);
}

} // namespace qn::io
