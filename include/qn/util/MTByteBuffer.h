// util::MTByteBuffer: a read-write byte buffer that several threads share. Its reader-writer
// lock is taken shared by getReadLock and released by releaseReadLock, and taken exclusively by
// getWriteLock and released by releaseWriteLock; the lock is not recursive.
#pragma once

#include "qn/sync/ReaderWriterLock.h"
#include "qn/util/RWByteBuffer.h"

namespace qn::util {

class QNCL_API MTByteBuffer : public RWByteBuffer {
public:
    MTByteBuffer();
    explicit MTByteBuffer(int32_t capacity);
    MTByteBuffer(const signed char* data, int32_t length, int32_t capacity = 0);
    MTByteBuffer(const char* data, int32_t length, int32_t capacity = 0)
        : MTByteBuffer(reinterpret_cast<const signed char*>(data), length, capacity) {}
    MTByteBuffer(const unsigned char* data, int32_t length, int32_t capacity = 0)
        : MTByteBuffer(reinterpret_cast<const signed char*>(data), length, capacity) {}
    // Copies the other's data under its read lock.
    MTByteBuffer(const MTByteBuffer& other);
    ~MTByteBuffer() override;

    // getLength and getData take no lock (call them while holding one); ensureCapacity belongs
    // under the write lock that the caller holds.
    const signed char* getReadLock() const override;
    void releaseReadLock() const override;
    signed char* getWriteLock() override;
    // Releases the lock even when the length is refused with RangeErrorException.
    void releaseWriteLock(int32_t length) override;
    // Takes the write lock itself: call it without holding one.
    void freeExtra() override;

private:
    mutable sync::ReaderWriterLock m_lock;
};

} // namespace qn::util
