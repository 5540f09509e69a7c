#include "qn/core/Object.h"

#include "qn/core/Class.h"
#include "qn/core/CopyObject.h"
#include "qn/core/Exception.h"
#include "qn/core/String.h"
#include "qn/math/BigInteger.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <typeinfo>

namespace qn {

namespace {

int32_t compareAddresses(uintptr_t a, uintptr_t b) {
    return a > b ? 1 : a < b ? -1 : 0;
}

// Finding the Object behind an interface pointer with dynamic_cast walks the whole class tree
// (the interface is an ambiguous base, and types are compared by name across modules), which
// costs a hundred nanoseconds and more. Its answer depends only on the most derived type and on
// which subobject the pointer designates, so it is worked out once for each such pair and kept
// here; entries are published once and never change or go away.
class ObjectCasts {
public:
    const Object* find(const IQNUnknown* face) {
        const std::type_info* type = &typeid(*face);
        const char* top = static_cast<const char*>(dynamic_cast<const void*>(face));
        const ptrdiff_t source = reinterpret_cast<const char*>(face) - top;
        size_t slot = ((reinterpret_cast<uintptr_t>(type) >> 4) ^ static_cast<size_t>(source)) %
                      SLOTS;
        for (size_t probe = 0; probe < SLOTS; ++probe, slot = (slot + 1) % SLOTS) {
            const Entry* entry = m_slots[slot].load(std::memory_order_acquire);
            if (!entry)
                return learn(face, type, source, slot);
            if (entry->type == type && entry->source == source)
                return entry->target == NOT_AN_OBJECT
                           ? nullptr
                           : reinterpret_cast<const Object*>(top + entry->target);
        }
        return dynamic_cast<const Object*>(face);
    }

private:
    struct Entry {
        const std::type_info* type;
        ptrdiff_t source;
        ptrdiff_t target;
    };
    // A power of two, so that finding a slot takes no division.
    static constexpr size_t SLOTS = 256;
    static constexpr ptrdiff_t NOT_AN_OBJECT = PTRDIFF_MIN;

    // Another thread may take the slot first; then the pair is looked for further on next time.
    const Object* learn(const IQNUnknown* face, const std::type_info* type, ptrdiff_t source,
                        size_t slot) {
        const Object* object = dynamic_cast<const Object*>(face);
        const char* top = static_cast<const char*>(dynamic_cast<const void*>(face));
        const ptrdiff_t target =
            object ? reinterpret_cast<const char*>(object) - top : NOT_AN_OBJECT;
        auto* entry = new (std::nothrow) Entry{type, source, target};
        const Entry* empty = nullptr;
        if (entry && !m_slots[slot].compare_exchange_strong(empty, entry,
                                                            std::memory_order_acq_rel))
            delete entry;
        return object;
    }

    std::atomic<const Entry*> m_slots[SLOTS] = {};
};

// Constant-initialised and trivially destroyed, so usable from any static constructor or
// destructor.
ObjectCasts s_objectCasts;

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
        if (const Object* object = other ? s_objectCasts.find(other) : nullptr) {
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
