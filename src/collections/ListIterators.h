// The list iterator of AbstractList, one class for all four iterator interfaces, and the
// interface map its kind shares. Internal to the library.
#pragma once

#include "qn/collections/xcom/AbstractList.h"
#include "qn/core/ComObject.h"
#include "qn/core/Exception.h"

namespace qn::collections::xcom::iteration {

// Every list iterator answers the four iterator interfaces.
const qn::xcom::InterfaceData* listIteratorMap();

// The base of list iterators: a counted object with the iterator's interface map.
class ListIteratorBase : public ComObject, public ListIterator {
public:
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return qn::xcom::QueryInterfaceMap(listIteratorMap(), this, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }
};

// Fails with a plain Exception when the list's count is not the expected one.
inline void checkModification(int32_t expected, int32_t actual) {
    if (expected != actual)
        throw Exception();
}

} // namespace qn::collections::xcom::iteration
