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
    freeBlock();
}

void* RWCharBuffer::operator new(size_t size) {
    return ::operator new(size);
}

void RWCharBuffer::operator delete(void* object) noexcept {
    ::operator delete(object);
}

RWCharBuffer* RWCharBuffer::withBlock(int32_t capacity) {
    const int32_t rounded = buffer::roundedCapacity<char16_t>(capacity);
    void* memory =
        ::operator new(sizeof(RWCharBuffer) + static_cast<size_t>(rounded) * sizeof(char16_t));
    auto* buffer = ::new (memory) RWCharBuffer();
    buffer->m_fixedBlock =
        reinterpret_cast<char16_t*>(static_cast<char*>(memory) + sizeof(RWCharBuffer));
    buffer->m_data = buffer->m_fixedBlock;
    buffer->m_capacity = rounded;
    return buffer;
}

void RWCharBuffer::freeBlock() noexcept {
    if (m_data != m_fixedBlock)
        std::free(m_data);
}

void RWCharBuffer::assign(const char16_t* text, int32_t length, int32_t capacity) {
    if (!text || length < 0)
        length = 0;
    int32_t newCapacity = 0;
    char16_t* data = buffer::allocate<char16_t>(std::max(length, capacity), newCapacity);
    if (length > 0)
        std::memcpy(data, text, static_cast<size_t>(length) * sizeof(char16_t));
    freeBlock();
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
        buffer::reallocate(m_data, m_capacity, m_length, capacity, m_fixedBlock);
    return m_data;
}

void RWCharBuffer::releaseWriteLock(int32_t length) {
    setLength(length);
}

void RWCharBuffer::freeExtra() {
    buffer::reallocate(m_data, m_capacity, m_length, m_length, m_fixedBlock);
}

} // namespace qn::util
