#include "qn/util/ROCharBuffer.h"

#include "qn/core/Exception.h"

namespace qn::util {

namespace {

[[noreturn]] void refuseWrite() {
    throw ReadOnlyException(String(u"read-only character buffer"));
}

} // namespace

ROCharBuffer::ROCharBuffer(const char16_t* text, int32_t length, int32_t) noexcept
    : m_data(text), m_length(text && length > 0 ? length : 0) {}

ROCharBuffer::ROCharBuffer(const ROCharBuffer& other) noexcept
    : AbstractCharBuffer(other), m_data(other.m_data), m_length(other.m_length) {}

ROCharBuffer::~ROCharBuffer() = default;

int32_t ROCharBuffer::getLength() const {
    return m_length;
}
const char16_t* ROCharBuffer::getData() const {
    return m_data;
}
const char16_t* ROCharBuffer::getReadLock() const {
    return m_data;
}
void ROCharBuffer::releaseReadLock() const {}
bool ROCharBuffer::isWritable() const {
    return false;
}
char16_t* ROCharBuffer::getWriteLock() {
    refuseWrite();
}
char16_t* ROCharBuffer::ensureCapacity(int32_t) {
    refuseWrite();
}
void ROCharBuffer::releaseWriteLock(int32_t) {
    refuseWrite();
}
void ROCharBuffer::freeExtra() {}

} // namespace qn::util
