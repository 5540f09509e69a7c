#include "qn/util/MTCharBuffer.h"

#include "BufferSupport.h"

namespace qn::util {

MTCharBuffer::MTCharBuffer() : m_lock(nullptr, 0) {}

MTCharBuffer::MTCharBuffer(int32_t capacity) : RWCharBuffer(capacity), m_lock(nullptr, 0) {}

MTCharBuffer::MTCharBuffer(const char16_t* text, int32_t length, int32_t capacity)
    : RWCharBuffer(text, length, capacity), m_lock(nullptr, 0) {}

MTCharBuffer::MTCharBuffer(const MTCharBuffer& other) : RWCharBuffer(), m_lock(nullptr, 0) {
    buffer::SharedHold hold(other.m_lock);
    assign(other.getData(), other.getLength(), other.getCapacity());
}

MTCharBuffer::~MTCharBuffer() = default;

const char16_t* MTCharBuffer::getReadLock() const {
    m_lock.waitShared();
    return RWCharBuffer::getReadLock();
}

void MTCharBuffer::releaseReadLock() const {
    m_lock.signalShared();
}

char16_t* MTCharBuffer::getWriteLock() {
    m_lock.wait();
    return RWCharBuffer::getWriteLock();
}

void MTCharBuffer::releaseWriteLock(int32_t length) {
    // The write ends whether or not the length is accepted.
    buffer::endWrite(m_lock, [&] { setLength(length); });
}

void MTCharBuffer::freeExtra() {
    buffer::ExclusiveHold hold(m_lock);
    RWCharBuffer::freeExtra();
}

} // namespace qn::util
