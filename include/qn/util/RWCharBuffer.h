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
    // The other's text in a block of the other's capacity.
    RWCharBuffer(const RWCharBuffer& other);
    // Not assignable: a buffer is an object with an identity, not a value.
    RWCharBuffer& operator=(const RWCharBuffer&) = delete;
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

    // Unsized deletion, because a buffer made with its block is larger than the class.
    static void* operator new(size_t size);
    static void operator delete(void* object) noexcept;

protected:
    // Replaces the content with a copy of text in a block for the larger of length and capacity.
    void assign(const char16_t* text, int32_t length, int32_t capacity);
    // Validates a length given to releaseWriteLock and stores it.
    void setLength(int32_t length);

private:
    // String reads, writes and grows the buffers it makes itself without a virtual call.
    friend class qn::String;

    // A buffer with room for capacity characters in the same allocation as the object, which
    // saves String a second allocation for every text it makes.
    static RWCharBuffer* withBlock(int32_t capacity);
    void freeBlock() noexcept;

    char16_t* m_data = nullptr;
    int32_t m_capacity = 0;
    int32_t m_length = 0;
    // The block that came with the object (withBlock), which is never freed or resized on its
    // own; null for buffers made by the constructors.
    char16_t* m_fixedBlock = nullptr;

#ifdef _WIN32
public:
    // The same constructors for the platform's wide text, which has the same 16-bit units.
    RWCharBuffer(const wchar_t* text, int32_t length, int32_t capacity = 0)
        : RWCharBuffer(reinterpret_cast<const char16_t*>(text), length, capacity) {}
#endif
};

} // namespace qn::util
