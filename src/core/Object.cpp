#include "qn/core/Object.h"

#include "qn/core/Class.h"
#include "qn/core/CopyObject.h"
#include "qn/core/Exception.h"
#include "qn/core/String.h"
#include "qn/math/BigInteger.h"

namespace qn {

namespace {

int32_t compareAddresses(uintptr_t a, uintptr_t b) {
    return a > b ? 1 : a < b ? -1 : 0;
}

} // namespace

Object::~Object() = default;
CopyObject::~CopyObject() = default;

const xcom::InterfaceData* Object::GetComIntfMap() {
    static const xcom::InterfaceData map[] = {{&IID_IQNComparable, xcom::INTERFACE_SUBOBJECT,
                                               xcom::interfaceOffset<Object, IQNComparable>()},
                                              {nullptr, 0, 0}};
    return map;
}

QNRESULT chainToObjectMap(ComObject* object, const QNGUID& iid, void** out, uintptr_t) {
    return xcom::QueryInterfaceMap(Object::GetComIntfMap(), object, iid, out);
}

QNRESULT QN_STDCALL Object::QueryInterface(const QNGUID& iid, void** out) {
    return xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

Reference<Object> Object::clone() const {
    throw Exception();
}

int32_t Object::compareTo(const Object& other) const {
    return compareAddresses(reinterpret_cast<uintptr_t>(this), reinterpret_cast<uintptr_t>(&other));
}

bool Object::equals(const Object& other) const {
    return this == &other;
}

const Class* Object::getClass() const {
    return Class::forType(typeid(*this));
}

uint32_t Object::hashCode() const {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(this));
}

String Object::toString() const {
    String text(u"Object");
    try {
        text = String(getClass()->getName());
    } catch (...) {
        // An unregistered class prints as a plain Object.
    }
    text.append(u'@');
    const auto address = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(this));
    return text.append(math::BigInteger::valueOfUnsigned(address).toString(16));
}

QNRESULT QN_STDCALL Object::CompareTo(IQNUnknown* other, int32_t* result) {
    if (!result)
        return QN_E_POINTER;
    *result = 0;
    return translateExceptions([&] {
        if (const auto* object = dynamic_cast<const Object*>(other)) {
            *result = compareTo(*object);
            return;
        }
        // The reverse of compareTo's sense, kept for the components that rely on it.
        *result =
            compareAddresses(reinterpret_cast<uintptr_t>(other), reinterpret_cast<uintptr_t>(this));
    });
}

QNRESULT QN_STDCALL Object::HashCode(uint32_t* hash) {
    if (!hash)
        return QN_E_POINTER;
    *hash = 0;
    return translateExceptions([&] { *hash = hashCode(); });
}

} // namespace qn
