#include "qn/util/ROByteBuffer.h"

#include "qn/core/Exception.h"

namespace qn::util {

namespace {

[[noreturn]] void refuseWrite() {
    throw ReadOnlyException(String(u"read-only byte buffer"));
}

} // namespace

ROByteBuffer::ROByteBuffer(const signed char* data, int32_t length, int32_t) noexcept
    : m_data(data), m_length(data && length > 0 ? length : 0) {}

ROByteBuffer::ROByteBuffer(const ROByteBuffer& other) noexcept
    : AbstractByteBuffer(other), m_data(other.m_data), m_length(other.m_length) {}

ROByteBuffer::~ROByteBuffer() = default;

int32_t ROByteBuffer::getLength() const {
    return m_length;
}
const signed char* ROByteBuffer::getData() const {
    return m_data;
}
const signed char* ROByteBuffer::getReadLock() const {
    return m_data;
}
void ROByteBuffer::releaseReadLock() const {}
bool ROByteBuffer::isWritable() const {
    return false;
}
signed char* ROByteBuffer::getWriteLock() {
    refuseWrite();
}
signed char* ROByteBuffer::ensureCapacity(int32_t) {
    refuseWrite();
}
void ROByteBuffer::releaseWriteLock(int32_t) {
    refuseWrite();
}
void ROByteBuffer::freeExtra() {}

} // namespace qn::util
