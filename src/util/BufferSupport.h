// What the buffers share on both the character and the byte side: blocks of elements whose
// capacity is 0 or a multiple of 16, held with malloc so that they can change size in place with
// realloc; the checks that end a write; scoped holds of a reader-writer lock; and the outputs of
// the interface operations.
#pragma once

#include "qn/core/Exception.h"
#include "qn/sync/ReaderWriterLock.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace qn::util::buffer {

// n rounded up to a multiple of 16. std::bad_alloc when that is more elements than a 32-bit
// count or the address space holds.
template <class E> int32_t roundedCapacity(int32_t n) {
    const int64_t rounded = (static_cast<int64_t>(n) + 15) & ~int64_t{15};
    if (rounded > INT32_MAX || static_cast<uint64_t>(rounded) > SIZE_MAX / sizeof(E))
        throw std::bad_alloc();
    return static_cast<int32_t>(rounded);
}

// A new block for n elements rounded up to 16, its capacity stored; none for n of 0 or less.
template <class E> E* allocate(int32_t n, int32_t& capacity) {
    if (n <= 0) {
        capacity = 0;
        return nullptr;
    }
    const int32_t rounded = roundedCapacity<E>(n);
    void* block = std::malloc(static_cast<size_t>(rounded) * sizeof(E));
    if (!block)
        throw std::bad_alloc();
    capacity = rounded;
    return static_cast<E*>(block);
}

// Reallocation to n elements: n of 0 frees the block and empties the buffer; the same rounded
// capacity changes nothing; otherwise the block is resized, keeping its content up to the
// smaller size. A block allocated with its object (fixed) is never freed or resized: it shrinks
// in place and is left for a new block to grow. A failure throws std::bad_alloc and leaves all
// three fields as they were.
template <class E>
void reallocate(E*& data, int32_t& capacity, int32_t& length, int32_t n,
                const void* fixed = nullptr) {
    const bool isFixed = data && data == fixed;
    if (n <= 0) {
        if (!isFixed)
            std::free(data);
        data = nullptr;
        capacity = 0;
        length = 0;
        return;
    }
    const int32_t rounded = roundedCapacity<E>(n);
    if (rounded == capacity)
        return;
    if (isFixed && rounded < capacity) {
        capacity = rounded;
        length = std::min(length, rounded);
        return;
    }
    void* block = isFixed ? std::malloc(static_cast<size_t>(rounded) * sizeof(E))
                          : std::realloc(data, static_cast<size_t>(rounded) * sizeof(E));
    if (!block)
        throw std::bad_alloc();
    if (isFixed)
        std::memcpy(block, data, static_cast<size_t>(capacity) * sizeof(E));
    data = static_cast<E*>(block);
    capacity = rounded;
    length = std::min(length, rounded);
}

// Frees a block unless it is the one allocated with its object (fixed).
template <class E> void release(E* data, const void* fixed = nullptr) noexcept {
    if (data != fixed)
        std::free(data);
}

// Replaces the content with a copy of n elements of from (none when from is null or n is
// negative) in a new block for the larger of n and minCapacity. The old block is released only
// once the new one exists, so std::bad_alloc leaves the buffer as it was.
template <class E>
void assign(E*& data, int32_t& capacity, int32_t& length, const E* from, int32_t n,
            int32_t minCapacity, const void* fixed = nullptr) {
    if (!from || n < 0)
        n = 0;
    int32_t newCapacity = 0;
    E* block = allocate<E>(std::max(n, minCapacity), newCapacity);
    if (n > 0)
        std::memcpy(block, from, static_cast<size_t>(n) * sizeof(E));
    release(data, fixed);
    data = block;
    capacity = newCapacity;
    length = n;
}

// The length that ends a write: -1 keeps the present one; below -1 or above the capacity throws
// RangeErrorException and changes nothing.
inline void storeLength(int32_t& length, int32_t capacity, int32_t n) {
    if (n == -1)
        return;
    if (n < -1 || n > capacity)
        throw RangeErrorException(String(u"buffer length out of range"));
    length = n;
}

// Runs the last step of a write, for which the caller holds lock exclusively, then releases the
// lock whether or not the step throws. Unlike ExclusiveHold, a failing release reaches the caller.
template <class Step> void endWrite(sync::ReaderWriterLock& lock, Step&& step) {
    try {
        step();
    } catch (...) {
        lock.signal();
        throw;
    }
    lock.signal();
}

// The one output of an interface operation: a null pointer gives QN_E_POINTER; otherwise the
// output is cleared, so that a failure leaves nothing in it, then set from get with exceptions
// turned into result codes.
template <class T, class Get> QNRESULT output(T* out, Get&& get) noexcept {
    if (!out)
        return QN_E_POINTER;
    *out = T();
    return translateExceptions([&] { *out = get(); });
}

// Holds a reader-writer lock shared, or exclusively, for a scope.
class SharedHold {
public:
    explicit SharedHold(sync::ReaderWriterLock& lock) : m_lock(lock) { m_lock.waitShared(); }
    ~SharedHold() {
        try {
            m_lock.signalShared();
        } catch (...) {
            // Releasing a hold this scope took cannot fail; nothing may leave a destructor.
        }
    }
    SharedHold(const SharedHold&) = delete;
    SharedHold& operator=(const SharedHold&) = delete;

private:
    sync::ReaderWriterLock& m_lock;
};

class ExclusiveHold {
public:
    explicit ExclusiveHold(sync::ReaderWriterLock& lock) : m_lock(lock) { m_lock.wait(); }
    ~ExclusiveHold() {
        try {
            m_lock.signal();
        } catch (...) {
            // As for SharedHold.
        }
    }
    ExclusiveHold(const ExclusiveHold&) = delete;
    ExclusiveHold& operator=(const ExclusiveHold&) = delete;

private:
    sync::ReaderWriterLock& m_lock;
};

} // namespace qn::util::buffer
