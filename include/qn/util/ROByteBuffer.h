// util::ROByteBuffer: a read-only view of bytes that the buffer does not own: static data or
// data whose owner keeps it alive and unchanged for the buffer's life. Nothing is copied.
#pragma once

#include "qn/util/AbstractByteBuffer.h"

namespace qn::util {

class QNCL_API ROByteBuffer : public AbstractByteBuffer {
public:
    ROByteBuffer() noexcept = default;
    // Stores data and length as given (a negative length, or null data, as 0); the third
    // argument is ignored and exists for symmetry with RWByteBuffer.
    ROByteBuffer(const signed char* data, int32_t length, int32_t ignored = 0) noexcept;
    ROByteBuffer(const char* data, int32_t length, int32_t ignored = 0) noexcept
        : ROByteBuffer(reinterpret_cast<const signed char*>(data), length, ignored) {}
    ROByteBuffer(const unsigned char* data, int32_t length, int32_t ignored = 0) noexcept
        : ROByteBuffer(reinterpret_cast<const signed char*>(data), length, ignored) {}
    // Shares the other's data (still not owned).
    ROByteBuffer(const ROByteBuffer& other) noexcept;
    ~ROByteBuffer() override;

    int32_t getLength() const override;
    const signed char* getData() const override;
    const signed char* getReadLock() const override;
    // Nothing to release: the data never changes.
    void releaseReadLock() const override;
    // Always false.
    bool isWritable() const override;
    // getWriteLock, ensureCapacity and releaseWriteLock throw ReadOnlyException.
    signed char* getWriteLock() override;
    signed char* ensureCapacity(int32_t capacity) override;
    void releaseWriteLock(int32_t length) override;
    // Nothing to give back: the buffer owns no block.
    void freeExtra() override;

private:
    const signed char* m_data = nullptr;
    int32_t m_length = 0;
};

} // namespace qn::util
