#include "qn/util/RWCharBuffer.h"

#include "BufferSupport.h"

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
    buffer::release(m_data, m_fixedBlock);
}

void RWCharBuffer::assign(const char16_t* text, int32_t length, int32_t capacity) {
    buffer::assign(m_data, m_capacity, m_length, text, length, capacity, m_fixedBlock);
}

void RWCharBuffer::setLength(int32_t length) {
    buffer::storeLength(m_length, m_capacity, length);
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
