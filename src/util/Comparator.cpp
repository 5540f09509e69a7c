#include "qn/util/Comparator.h"

#include "qn/collections/CQNCollections.h"
#include "qn/core/Exception.h"
#include "qn/core/Library.h"
#include "qn/core/Singleton.h"
#include "qn/sync/LockObject.h"

namespace qn::util {

namespace {

using collections::xcom::IID_IQNComparator;
using collections::xcom::IQNComparator;

int compareAddresses(const void* a, const void* b) {
    const uintptr_t x = reinterpret_cast<uintptr_t>(a);
    const uintptr_t y = reinterpret_cast<uintptr_t>(b);
    return x < y ? -1 : x > y ? 1 : 0;
}

// The one default comparator, held by the singleton.
struct DefaultComparator {
    Reference<Comparator> comparator{new Comparator()};
};

using DefaultComparatorHolder = Singleton<DefaultComparator, g_pGlobalLock>;

// Releases the default comparator when the library's static objects are destroyed. Where the
// global lock is already gone by then, the process is ending and the comparator is left.
struct DefaultComparatorRelease {
    ~DefaultComparatorRelease() {
        if (g_pGlobalLock)
            DefaultComparatorHolder::freeInstance();
    }
} s_release;

} // namespace

Comparator::~Comparator() = default;

const xcom::InterfaceData* Comparator::GetComIntfMap() {
    static const xcom::InterfaceData map[] = {{&IID_IQNComparator, xcom::INTERFACE_SUBOBJECT,
                                               xcom::interfaceOffset<Comparator, IQNComparator>()},
                                              {nullptr, xcom::handler(&chainToObjectMap), 0},
                                              {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL Comparator::QueryInterface(const QNGUID& iid, void** out) {
    return xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

QNRESULT QN_STDCALL Comparator::Compare(const IQNUnknown* a, const IQNUnknown* b, int* result) {
    if (!result)
        return QN_E_POINTER;
    if (a) {
        IQNComparable* comparable = nullptr;
        if (const_cast<IQNUnknown*>(a)->QueryInterface(
                IID_IQNComparable, reinterpret_cast<void**>(&comparable)) >= 0 &&
            comparable) {
            int32_t order = 0;
            const QNRESULT status = comparable->CompareTo(const_cast<IQNUnknown*>(b), &order);
            comparable->Release();
            *result = order;
            return status;
        }
    }
    *result = compareAddresses(a, b);
    return QN_S_OK;
}

QNRESULT QN_STDCALL Comparator::Hash(const IQNUnknown* a, unsigned long* result) {
    if (!result)
        return QN_E_POINTER;
    if (a) {
        IQNComparable* comparable = nullptr;
        if (const_cast<IQNUnknown*>(a)->QueryInterface(
                IID_IQNComparable, reinterpret_cast<void**>(&comparable)) >= 0 &&
            comparable) {
            uint32_t hash = 0;
            const QNRESULT status = comparable->HashCode(&hash);
            comparable->Release();
            *result = hash;
            return status;
        }
    }
    *result = static_cast<unsigned long>(reinterpret_cast<uintptr_t>(a));
    return QN_S_OK;
}

int Comparator::compare(const Object& a, const Object& b) const {
    int result = 0;
    const QNRESULT status =
        const_cast<Comparator*>(this)->Compare(a.GetUnknown(), b.GetUnknown(), &result);
    if (status < 0)
        throw ResultException(status);
    return result;
}

unsigned long Comparator::hash(const Object& a) const {
    unsigned long result = 0;
    const QNRESULT status = const_cast<Comparator*>(this)->Hash(a.GetUnknown(), &result);
    if (status < 0)
        throw ResultException(status);
    return result;
}

int32_t Comparator::compareTo(const Object& other) const {
    if (dynamic_cast<const Comparator*>(&other))
        return 0;
    return Object::compareTo(other);
}

bool Comparator::equals(const Object& other) const {
    return dynamic_cast<const Comparator*>(&other) != nullptr;
}

} // namespace qn::util

namespace qn::collections {

Reference<xcom::IQNComparator> GetDefaultComparator() {
    return Reference<xcom::IQNComparator>(
        util::DefaultComparatorHolder::getInstance()->comparator.get());
}

} // namespace qn::collections
