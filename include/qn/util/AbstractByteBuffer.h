// util::AbstractByteBuffer: the base of the counted byte blocks that carry binary data across
// component boundaries. An Object that also answers IQNByteBuffer, whose operations call the C++
// ones below and turn exceptions into result codes.
#pragma once

#include "qn/core/Object.h"
#include "qn/util/IQNByteBuffer.h"

namespace qn::util {

class QNCL_API AbstractByteBuffer : public Object, public IQNByteBuffer {
public:
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }
    ~AbstractByteBuffer() override;

    // Bytes in use. Like getData, it takes no lock: read it under a lock you hold when other
    // threads may write.
    virtual int32_t getLength() const = 0;
    // The first byte; null when the buffer has no block.
    virtual const signed char* getData() const = 0;
    // The first byte, stable until the matching releaseReadLock.
    virtual const signed char* getReadLock() const = 0;
    virtual void releaseReadLock() const = 0;
    virtual bool isWritable() const = 0;
    // The first byte, writable until the matching releaseWriteLock; null while the buffer has
    // no block (ensureCapacity makes one).
    virtual signed char* getWriteLock() = 0;
    // Room for at least capacity bytes; returns the first one, which may have moved.
    virtual signed char* ensureCapacity(int32_t capacity) = 0;
    // Ends a write and sets the length; -1 keeps the present length.
    virtual void releaseWriteLock(int32_t length) = 0;
    // Gives back the room beyond the length.
    virtual void freeExtra() = 0;

    // IQNByteBuffer: null output pointers give 0x80004003; outputs are cleared on failure.
    QNRESULT QN_STDCALL GetLength(int32_t* length) override;
    QNRESULT QN_STDCALL GetData(const signed char** data) override;
    QNRESULT QN_STDCALL GetReadLock(const signed char** data) override;
    QNRESULT QN_STDCALL ReleaseReadLock() override;
    QNRESULT QN_STDCALL IsWritable(int32_t* writable) override;
    QNRESULT QN_STDCALL GetWriteLock(signed char** data) override;
    QNRESULT QN_STDCALL EnsureCapacity(int32_t capacity, signed char** data) override;
    QNRESULT QN_STDCALL ReleaseWriteLock(int32_t length) override;
    QNRESULT QN_STDCALL FreeExtra() override;

    // IQNByteBuffer, then Object's map (IQNComparable).
    static const xcom::InterfaceData* GetComIntfMap();

protected:
    AbstractByteBuffer() noexcept = default;
    // A copy is a new object: count 0, no module.
    AbstractByteBuffer(const AbstractByteBuffer&) noexcept
        : Object(static_cast<const Object*>(nullptr)), IQNByteBuffer() {}
    AbstractByteBuffer& operator=(const AbstractByteBuffer&) noexcept { return *this; }
};

} // namespace qn::util
