// util::RWByteBuffer: an owned, growable byte block. Capacities are 0 or multiples of 16 bytes,
// and growth is exactly to the next multiple of 16 of what is asked, never geometric: a buffer
// holds no more memory than its user asked for.
#pragma once

#include "qn/util/AbstractByteBuffer.h"

namespace qn::util {

class QNCL_API RWByteBuffer : public AbstractByteBuffer {
public:
    RWByteBuffer() noexcept = default;
    // A block of capacity rounded up to 16 (none for 0), length 0.
    explicit RWByteBuffer(int32_t capacity);
    // A block for the larger of length and capacity; length bytes of data are copied when
    // length is at least 1 (null data copies nothing), else the length is 0.
    RWByteBuffer(const signed char* data, int32_t length, int32_t capacity = 0);
    RWByteBuffer(const char* data, int32_t length, int32_t capacity = 0)
        : RWByteBuffer(reinterpret_cast<const signed char*>(data), length, capacity) {}
    RWByteBuffer(const unsigned char* data, int32_t length, int32_t capacity = 0)
        : RWByteBuffer(reinterpret_cast<const signed char*>(data), length, capacity) {}
    // The other's data in a block of the other's capacity.
    RWByteBuffer(const RWByteBuffer& other);
    // Not assignable: a buffer is an object with an identity, not a value.
    RWByteBuffer& operator=(const RWByteBuffer&) = delete;
    ~RWByteBuffer() override;

    int32_t getLength() const override;
    const signed char* getData() const override;
    // Single-threaded: the read lock only hands out the data.
    const signed char* getReadLock() const override;
    void releaseReadLock() const override;
    // Always true.
    bool isWritable() const override;
    signed char* getWriteLock() override;
    // Reallocates to capacity rounded up to 16 when the present capacity is smaller; otherwise
    // changes nothing. std::bad_alloc leaves the previous block in place.
    signed char* ensureCapacity(int32_t capacity) override;
    // RangeErrorException for a length below -1 or above the capacity (nothing changes).
    void releaseWriteLock(int32_t length) override;
    // Shrinks the block to the length rounded up to 16; an empty buffer frees its block.
    void freeExtra() override;

    int32_t getCapacity() const noexcept { return m_capacity; }

protected:
    // Replaces the content with a copy of data in a block for the larger of length and capacity.
    void assign(const signed char* data, int32_t length, int32_t capacity);
    // Validates a length given to releaseWriteLock and stores it.
    void setLength(int32_t length);

private:
    signed char* m_data = nullptr;
    int32_t m_capacity = 0;
    int32_t m_length = 0;
    // Reserved, like RWCharBuffer's, for a block allocated together with the object; no byte
    // buffer is made that way, so it stays null and is never read.
    [[maybe_unused]] void* m_fixedBlock = nullptr;
};

} // namespace qn::util
