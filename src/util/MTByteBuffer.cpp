#include "qn/util/MTByteBuffer.h"

#include "BufferSupport.h"

namespace qn::util {

MTByteBuffer::MTByteBuffer() : m_lock(nullptr, 0) {}

MTByteBuffer::MTByteBuffer(int32_t capacity) : RWByteBuffer(capacity), m_lock(nullptr, 0) {}

MTByteBuffer::MTByteBuffer(const signed char* data, int32_t length, int32_t capacity)
    : RWByteBuffer(data, length, capacity), m_lock(nullptr, 0) {}

MTByteBuffer::MTByteBuffer(const MTByteBuffer& other) : RWByteBuffer(), m_lock(nullptr, 0) {
    buffer::SharedHold hold(other.m_lock);
    assign(other.getData(), other.getLength(), other.getCapacity());
}

MTByteBuffer::~MTByteBuffer() = default;

const signed char* MTByteBuffer::getReadLock() const {
    m_lock.waitShared();
    return RWByteBuffer::getReadLock();
}

void MTByteBuffer::releaseReadLock() const {
    m_lock.signalShared();
}

signed char* MTByteBuffer::getWriteLock() {
    m_lock.wait();
    return RWByteBuffer::getWriteLock();
}

void MTByteBuffer::releaseWriteLock(int32_t length) {
    // The write ends whether or not the length is accepted.
    buffer::endWrite(m_lock, [&] { setLength(length); });
}

void MTByteBuffer::freeExtra() {
    buffer::ExclusiveHold hold(m_lock);
    RWByteBuffer::freeExtra();
}

} // namespace qn::util
