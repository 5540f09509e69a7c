// util::MTCharBuffer: a read-write character buffer that several threads share. Its
// reader-writer lock is taken shared by getReadLock and released by releaseReadLock, and taken
// exclusively by getWriteLock and released by releaseWriteLock; the lock is not recursive.
#pragma once

#include "qn/sync/ReaderWriterLock.h"
#include "qn/util/RWCharBuffer.h"

namespace qn::util {

class QNCL_API MTCharBuffer : public RWCharBuffer {
public:
    MTCharBuffer();
    explicit MTCharBuffer(int32_t capacity);
    MTCharBuffer(const char16_t* text, int32_t length, int32_t capacity = 0);
    // Copies the other's text under its read lock.
    MTCharBuffer(const MTCharBuffer& other);
    ~MTCharBuffer() override;

    // getLength and getData take no lock (call them while holding one); ensureCapacity belongs
    // under the write lock that the caller holds.
    const char16_t* getReadLock() const override;
    void releaseReadLock() const override;
    char16_t* getWriteLock() override;
    // Releases the lock even when the length is refused with RangeErrorException.
    void releaseWriteLock(int32_t length) override;
    // Takes the write lock itself: call it without holding one.
    void freeExtra() override;

private:
    mutable sync::ReaderWriterLock m_lock;

#ifdef _WIN32
public:
    // The same constructors for the platform's wide text, which has the same 16-bit units.
    MTCharBuffer(const wchar_t* text, int32_t length, int32_t capacity = 0)
        : MTCharBuffer(reinterpret_cast<const char16_t*>(text), length, capacity) {}
#endif
};

} // namespace qn::util
