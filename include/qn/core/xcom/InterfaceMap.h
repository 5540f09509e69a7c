// Interface maps: one static table per class telling which interfaces it answers and where they
// live, walked by QueryInterfaceMap.
#pragma once

#include "qn/core/Interfaces.h"

#include <cstdint>

namespace qn {
class ComObject;

namespace xcom {

// A handler word of this value marks an interface that is a sub-object of the object.
constexpr uintptr_t INTERFACE_SUBOBJECT = 1;

// Called for a function entry with (object, requested identifier, output, the entry's parameter).
using InterfaceFunction = QNRESULT (*)(ComObject* object, const QNGUID& iid, void** out,
                                       uintptr_t parameter);

// One entry, three words. iid null: the entry applies to every identifier. handler: 1 for a
// sub-object at distance parameter from the object's start, else an InterfaceFunction; 0 ends
// the map.
struct InterfaceData {
    const QNGUID* iid;
    uintptr_t handler;
    uintptr_t parameter;
};

// Answers iid from the map: null output gives 0x80004003; the base identifier is the object
// itself; otherwise the first matching sub-object entry, or the first function entry that
// succeeds (a function entry with an identifier that fails ends the walk with its result).
// Unknown identifiers give 0x80004002 and a null output.
QNCL_API QNRESULT QueryInterfaceMap(const InterfaceData* map, ComObject* object, const QNGUID& iid,
                                    void** out);

// The distance from the start of Derived's ComObject part to its Interface sub-object.
template <class Derived, class Interface> uintptr_t interfaceOffset() {
    // Any well-aligned non-null address works: only the difference is used.
    Derived* probe = reinterpret_cast<Derived*>(alignof(Derived) * 64);
    return reinterpret_cast<uintptr_t>(static_cast<Interface*>(probe)) -
           reinterpret_cast<uintptr_t>(static_cast<ComObject*>(probe));
}

template <class Function> uintptr_t handler(Function f) {
    return reinterpret_cast<uintptr_t>(f);
}

} // namespace xcom
} // namespace qn
