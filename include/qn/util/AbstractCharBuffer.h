// util::AbstractCharBuffer: the base of the counted blocks of 16-bit characters that lie under
// String and carry text across component boundaries. An Object that also answers IQNCharBuffer,
// whose operations call the C++ ones below and turn exceptions into result codes.
#pragma once

#include "qn/core/Object.h"

namespace qn::util {

class QNCL_API AbstractCharBuffer : public Object, public IQNCharBuffer {
public:
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }
    ~AbstractCharBuffer() override;

    // Characters in use. Like getData, it takes no lock: read it under a lock you hold when
    // other threads may write.
    virtual int32_t getLength() const = 0;
    // The first character; null when the buffer has no block.
    virtual const char16_t* getData() const = 0;
    // The first character, stable until the matching releaseReadLock.
    virtual const char16_t* getReadLock() const = 0;
    virtual void releaseReadLock() const = 0;
    virtual bool isWritable() const = 0;
    // The first character, writable until the matching releaseWriteLock; null while the buffer
    // has no block (ensureCapacity makes one).
    virtual char16_t* getWriteLock() = 0;
    // Room for at least capacity characters; returns the first one, which may have moved.
    virtual char16_t* ensureCapacity(int32_t capacity) = 0;
    // Ends a write and sets the length; -1 keeps the present length.
    virtual void releaseWriteLock(int32_t length) = 0;
    // Gives back the room beyond the length.
    virtual void freeExtra() = 0;

    // IQNCharBuffer: null output pointers give 0x80004003; outputs are cleared on failure.
    QNRESULT QN_STDCALL GetLength(int32_t* length) override;
    QNRESULT QN_STDCALL GetData(const QNWCHAR** data) override;
    QNRESULT QN_STDCALL GetReadLock(const QNWCHAR** data) override;
    QNRESULT QN_STDCALL ReleaseReadLock() override;
    QNRESULT QN_STDCALL IsWritable(int32_t* writable) override;
    QNRESULT QN_STDCALL GetWriteLock(QNWCHAR** data) override;
    QNRESULT QN_STDCALL EnsureCapacity(int32_t capacity, QNWCHAR** data) override;
    QNRESULT QN_STDCALL ReleaseWriteLock(int32_t length) override;
    QNRESULT QN_STDCALL FreeExtra() override;

    // IQNCharBuffer, then Object's map (IQNComparable).
    static const xcom::InterfaceData* GetComIntfMap();

protected:
    AbstractCharBuffer() noexcept = default;
    // A copy is a new object: count 0, no module.
    AbstractCharBuffer(const AbstractCharBuffer&) noexcept
        : Object(static_cast<const Object*>(nullptr)), IQNCharBuffer() {}
    AbstractCharBuffer& operator=(const AbstractCharBuffer&) noexcept { return *this; }
};

} // namespace qn::util
