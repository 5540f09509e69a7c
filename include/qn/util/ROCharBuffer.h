// util::ROCharBuffer: a read-only view of characters that the buffer does not own: static text
// or text whose owner keeps it alive and unchanged for the buffer's life. Nothing is copied.
#pragma once

#include "qn/util/AbstractCharBuffer.h"

namespace qn {
class String;
}

namespace qn::util {

class QNCL_API ROCharBuffer : public AbstractCharBuffer {
public:
    ROCharBuffer() noexcept = default;
    // Stores text and length as given (a negative length, or a null text, as 0); the third
    // argument is ignored and exists for symmetry with RWCharBuffer.
    ROCharBuffer(const char16_t* text, int32_t length, int32_t ignored = 0) noexcept;
    // Shares the other's text (still not owned).
    ROCharBuffer(const ROCharBuffer& other) noexcept;
    ~ROCharBuffer() override;

    int32_t getLength() const override;
    const char16_t* getData() const override;
    const char16_t* getReadLock() const override;
    // Nothing to release: the text never changes.
    void releaseReadLock() const override;
    // Always false.
    bool isWritable() const override;
    // getWriteLock, ensureCapacity and releaseWriteLock throw ReadOnlyException.
    char16_t* getWriteLock() override;
    char16_t* ensureCapacity(int32_t capacity) override;
    void releaseWriteLock(int32_t length) override;
    // Nothing to give back: the buffer owns no block.
    void freeExtra() override;

private:
    // String reads the buffers it makes itself without a virtual call.
    friend class qn::String;

    const char16_t* m_data = nullptr;
    int32_t m_length = 0;

#ifdef _WIN32
public:
    // The same constructors for the platform's wide text, which has the same 16-bit units.
    ROCharBuffer(const wchar_t* text, int32_t length, int32_t ignored = 0) noexcept
        : ROCharBuffer(reinterpret_cast<const char16_t*>(text), length, ignored) {}
#endif
};

} // namespace qn::util
