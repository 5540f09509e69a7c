#include "qn/util/AbstractByteBuffer.h"

#include "BufferSupport.h"

namespace qn::util {

AbstractByteBuffer::~AbstractByteBuffer() = default;

const xcom::InterfaceData* AbstractByteBuffer::GetComIntfMap() {
    static const xcom::InterfaceData map[] = {
        {&IID_IQNByteBuffer, xcom::INTERFACE_SUBOBJECT,
         xcom::interfaceOffset<AbstractByteBuffer, IQNByteBuffer>()},
        {nullptr, xcom::handler(&chainToObjectMap), 0},
        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL AbstractByteBuffer::QueryInterface(const QNGUID& iid, void** out) {
    return xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

QNRESULT QN_STDCALL AbstractByteBuffer::GetLength(int32_t* length) {
    return buffer::output(length, [&] { return getLength(); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::GetData(const signed char** data) {
    return buffer::output(data, [&] { return getData(); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::GetReadLock(const signed char** data) {
    return buffer::output(data, [&] { return getReadLock(); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::ReleaseReadLock() {
    return translateExceptions([&] { releaseReadLock(); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::IsWritable(int32_t* writable) {
    return buffer::output(writable, [&] { return isWritable() ? 1 : 0; });
}

QNRESULT QN_STDCALL AbstractByteBuffer::GetWriteLock(signed char** data) {
    return buffer::output(data, [&] { return getWriteLock(); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::EnsureCapacity(int32_t capacity, signed char** data) {
    return buffer::output(data, [&] { return ensureCapacity(capacity); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::ReleaseWriteLock(int32_t length) {
    return translateExceptions([&] { releaseWriteLock(length); });
}

QNRESULT QN_STDCALL AbstractByteBuffer::FreeExtra() {
    return translateExceptions([&] { freeExtra(); });
}

} // namespace qn::util
