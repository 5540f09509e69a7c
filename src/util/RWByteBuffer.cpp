#include "qn/util/RWByteBuffer.h"

#include "BufferSupport.h"

namespace qn::util {

RWByteBuffer::RWByteBuffer(int32_t capacity) {
    m_data = buffer::allocate<signed char>(capacity, m_capacity);
}

RWByteBuffer::RWByteBuffer(const signed char* data, int32_t length, int32_t capacity) {
    assign(data, length, capacity);
}

RWByteBuffer::RWByteBuffer(const RWByteBuffer& other) : AbstractByteBuffer(other) {
    assign(other.m_data, other.m_length, other.m_capacity);
}

RWByteBuffer::~RWByteBuffer() {
    std::free(m_data);
}

void RWByteBuffer::assign(const signed char* data, int32_t length, int32_t capacity) {
    buffer::assign(m_data, m_capacity, m_length, data, length, capacity);
}

void RWByteBuffer::setLength(int32_t length) {
    buffer::storeLength(m_length, m_capacity, length);
}

int32_t RWByteBuffer::getLength() const {
    return m_length;
}
const signed char* RWByteBuffer::getData() const {
    return m_data;
}
const signed char* RWByteBuffer::getReadLock() const {
    return m_data;
}
void RWByteBuffer::releaseReadLock() const {}
bool RWByteBuffer::isWritable() const {
    return true;
}
signed char* RWByteBuffer::getWriteLock() {
    return m_data;
}

signed char* RWByteBuffer::ensureCapacity(int32_t capacity) {
    if (m_capacity < capacity)
        buffer::reallocate(m_data, m_capacity, m_length, capacity);
    return m_data;
}

void RWByteBuffer::releaseWriteLock(int32_t length) {
    setLength(length);
}

void RWByteBuffer::freeExtra() {
    buffer::reallocate(m_data, m_capacity, m_length, m_length);
}

} // namespace qn::util
