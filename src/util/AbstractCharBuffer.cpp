#include "qn/util/AbstractCharBuffer.h"

#include "BufferSupport.h"

namespace qn::util {

AbstractCharBuffer::~AbstractCharBuffer() = default;

const xcom::InterfaceData* AbstractCharBuffer::GetComIntfMap() {
    static const xcom::InterfaceData map[] = {
        {&IID_IQNCharBuffer, xcom::INTERFACE_SUBOBJECT,
         xcom::interfaceOffset<AbstractCharBuffer, IQNCharBuffer>()},
        {nullptr, xcom::handler(&chainToObjectMap), 0},
        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL AbstractCharBuffer::QueryInterface(const QNGUID& iid, void** out) {
    return xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

QNRESULT QN_STDCALL AbstractCharBuffer::GetLength(int32_t* length) {
    return buffer::output(length, [&] { return getLength(); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::GetData(const QNWCHAR** data) {
    return buffer::output(data, [&] { return reinterpret_cast<const QNWCHAR*>(getData()); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::GetReadLock(const QNWCHAR** data) {
    return buffer::output(data, [&] { return reinterpret_cast<const QNWCHAR*>(getReadLock()); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::ReleaseReadLock() {
    return translateExceptions([&] { releaseReadLock(); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::IsWritable(int32_t* writable) {
    return buffer::output(writable, [&] { return isWritable() ? 1 : 0; });
}

QNRESULT QN_STDCALL AbstractCharBuffer::GetWriteLock(QNWCHAR** data) {
    return buffer::output(data, [&] { return reinterpret_cast<QNWCHAR*>(getWriteLock()); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::EnsureCapacity(int32_t capacity, QNWCHAR** data) {
    return buffer::output(data,
                          [&] { return reinterpret_cast<QNWCHAR*>(ensureCapacity(capacity)); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::ReleaseWriteLock(int32_t length) {
    return translateExceptions([&] { releaseWriteLock(length); });
}

QNRESULT QN_STDCALL AbstractCharBuffer::FreeExtra() {
    return translateExceptions([&] { freeExtra(); });
}

} // namespace qn::util
