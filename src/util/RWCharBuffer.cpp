#include "qn/util/RWCharBuffer.h"

#include "BufferSupport.h"
#include "qn/core/Exception.h"

#include <algorithm>
#include <cstring>

namespace qn::util {

RWCharBuffer::RWCharBuffer(int32_t capacity) {
    m_data = buffer::allocate<char16_t>(capacity, m_capacity);
}

RWCharBuffer::RWCharBuffer(const char16_t* text, int32_t length, int32_t capacity) {
    assign(text, length, capacity);
}

RWCharBuffer::RWCharBuffer(const RWCharBuffer& other) : AbstractCharBuffer(other) {
    assign(other.m_data, other.m_length, other.m_capacity);
}

RWCharBuffer::~RWCharBuffer() {
    std::free(m_data);
}

void RWCharBuffer::assign(const char16_t* text, int32_t length, int32_t capacity) {
    if (!text || length < 0)
        length = 0;
    int32_t newCapacity = 0;
    char16_t* data = buffer::allocate<char16_t>(std::max(length, capacity), newCapacity);
    if (length > 0)
        std::memcpy(data, text, static_cast<size_t>(length) * sizeof(char16_t));
    std::free(m_data);
    m_data = data;
    m_capacity = newCapacity;
    m_length = length;
}

void RWCharBuffer::setLength(int32_t length) {
    if (length == -1)
        return;
    if (length < -1 || length > m_capacity)
        throw RangeErrorException(String(u"buffer length out of range"));
    m_length = length;
}

int32_t RWCharBuffer::getLength() const {
    return m_length;
}
const char16_t* RWCharBuffer::getData() const {
    return m_data;
}
const char16_t* RWCharBuffer::getReadLock() const {
    return m_data;
}
void RWCharBuffer::releaseReadLock() const {}
bool RWCharBuffer::isWritable() const {
    return true;
}
char16_t* RWCharBuffer::getWriteLock() {
    return m_data;
}

char16_t* RWCharBuffer::ensureCapacity(int32_t capacity) {
    if (m_capacity < capacity)
        buffer::reallocate(m_data, m_capacity, m_length, capacity);
    return m_data;
}

void RWCharBuffer::releaseWriteLock(int32_t length) {
    setLength(length);
}

void RWCharBuffer::freeExtra() {
    buffer::reallocate(m_data, m_capacity, m_length, m_length);
}

} // namespace qn::util
