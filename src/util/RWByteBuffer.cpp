#include "qn/util/RWByteBuffer.h"

#include "BufferSupport.h"
#include "qn/core/Exception.h"

#include <algorithm>
#include <cstring>

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
    if (!data || length < 0)
        length = 0;
    int32_t newCapacity = 0;
    signed char* block = buffer::allocate<signed char>(std::max(length, capacity), newCapacity);
    if (length > 0)
        std::memcpy(block, data, static_cast<size_t>(length));
    std::free(m_data);
    m_data = block;
    m_capacity = newCapacity;
    m_length = length;
}

void RWByteBuffer::setLength(int32_t length) {
    if (length == -1)
        return;
    if (length < -1 || length > m_capacity)
        throw RangeErrorException(String(u"buffer length out of range"));
    m_length = length;
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
