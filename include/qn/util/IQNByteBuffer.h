// IQNByteBuffer: the byte counterpart of IQNCharBuffer, the form in which counted byte blocks
// cross component boundaries. Same operations and slot order, with signed 8-bit elements.
#pragma once

#include "qn/core/Interfaces.h"

namespace qn::util {

// Readers bracket access with GetReadLock and ReleaseReadLock; writers with GetWriteLock and
// ReleaseWriteLock, which also sets the new length (-1 keeps the present one). EnsureCapacity is
// valid under a write lock and may move the block.
struct IQNByteBuffer : IQNUnknown {
    virtual QNRESULT QN_STDCALL GetLength(int32_t* length) = 0;
    virtual QNRESULT QN_STDCALL GetData(const signed char** data) = 0;
    virtual QNRESULT QN_STDCALL GetReadLock(const signed char** data) = 0;
    virtual QNRESULT QN_STDCALL ReleaseReadLock() = 0;
    virtual QNRESULT QN_STDCALL IsWritable(int32_t* writable) = 0;
    virtual QNRESULT QN_STDCALL GetWriteLock(signed char** data) = 0;
    virtual QNRESULT QN_STDCALL EnsureCapacity(int32_t capacity, signed char** data) = 0;
    virtual QNRESULT QN_STDCALL ReleaseWriteLock(int32_t length) = 0;
    virtual QNRESULT QN_STDCALL FreeExtra() = 0;

protected:
    ~IQNByteBuffer() = default;
};

// BD454BEB-D847-40F3-AABF-3083AC2AC54B
inline const QNGUID IID_IQNByteBuffer = {
    0xBD454BEB, 0xD847, 0x40F3, {0xAA, 0xBF, 0x30, 0x83, 0xAC, 0x2A, 0xC5, 0x4B}};

} // namespace qn::util
