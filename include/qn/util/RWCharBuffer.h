// util::RWCharBuffer: an owned, growable block of characters. Capacities are 0 or multiples of
// 16 characters, and growth is exactly to the next multiple of 16 of what is asked, never
// geometric: a buffer holds no more memory than its user asked for.
#pragma once

#include "qn/util/AbstractCharBuffer.h"

namespace qn {
class String;
}

namespace qn::util {

class QNCL_API RWCharBuffer : public AbstractCharBuffer {
public:
    RWCharBuffer() noexcept = default;
    // A block of capacity rounded up to 16 (none for 0), length 0.
    explicit RWCharBuffer(int32_t capacity);
    // A block for the larger of length and capacity; length characters of text are copied when
    // length is at least 1 (a null text copies nothing), else the length is 0.
    RWCharBuffer(const char16_t* text, int32_t length, int32_t capacity = 0);
#ifdef _WIN32
    RWCharBuffer(const wchar_t* text, int32_t length, int32_t capacity = 0)
        : RWCharBuffer(reinterpret_cast<const char16_t*>(text), length, capacity) {}
#endif
    // The other's text in a block of the other's capacity.
    RWCharBuffer(const RWCharBuffer& other);
    ~RWCharBuffer() override;

    int32_t getLength() const override;
    const char16_t* getData() const override;
    // Single-threaded: the read lock only hands out the data.
    const char16_t* getReadLock() const override;
    void releaseReadLock() const override;
    // Always true.
    bool isWritable() const override;
    char16_t* getWriteLock() override;
    // Reallocates to capacity rounded up to 16 when the present capacity is smaller; otherwise
    // changes nothing. std::bad_alloc leaves the previous block in place.
    char16_t* ensureCapacity(int32_t capacity) override;
    // RangeErrorException for a length below -1 or above the capacity (nothing changes).
    void releaseWriteLock(int32_t length) override;
    // Shrinks the block to the length rounded up to 16; an empty buffer frees its block.
    void freeExtra() override;

    int32_t getCapacity() const noexcept { return m_capacity; }

protected:
    // Replaces the content with a copy of text in a block for the larger of length and capacity.
    void assign(const char16_t* text, int32_t length, int32_t capacity);
    // Validates a length given to releaseWriteLock and stores it.
    void setLength(int32_t length);

private:
    // String reads, writes and grows the buffers it makes itself without a virtual call.
    friend class qn::String;

    char16_t* m_data = nullptr;
    int32_t m_capacity = 0;
    int32_t m_length = 0;
    // Reserved for an extension record of the block (an allocator or a mapping, say); always
    // null in this library and never read.
    [[maybe_unused]] void* m_extension = nullptr;
};

} // namespace qn::util
