#include "qn/core/ComObject.h"

#include "qn/core/xcom/Module.h"

namespace qn {

#ifdef QNCL_COUNT_OBJECTS
namespace {
std::atomic<long> s_live{0};
}
#endif

ComObject::ComObject() noexcept : m_refCount(0), m_module(nullptr) {
#ifdef QNCL_COUNT_OBJECTS
    s_live.fetch_add(1, std::memory_order_relaxed);
#endif
}

ComObject::ComObject(const ComObject*) noexcept : ComObject() {}

ComObject::~ComObject() {
#ifdef QNCL_COUNT_OBJECTS
    s_live.fetch_sub(1, std::memory_order_relaxed);
#endif
}

long ComObject::liveObjects() noexcept {
#ifdef QNCL_COUNT_OBJECTS
    return s_live.load(std::memory_order_relaxed);
#else
    return -1;
#endif
}

QNRESULT QN_STDCALL ComObject::QueryInterface(const QNGUID& iid, void** out) {
    return xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

QNRESULT ComObject::NonDelegatingQueryInterface(const QNGUID& iid, void** out) {
    return QueryInterface(iid, out);
}

uint32_t QN_STDCALL ComObject::AddRef() {
    const uint32_t count = InternalAddRef();
    if (count == 1 && m_module)
        m_module->AddRef();
    return count;
}

uint32_t QN_STDCALL ComObject::Release() {
    const uint32_t count = InternalRelease();
    if (count == 0) {
        if (m_module)
            m_module->Release();
        delete this;
    }
    return count;
}

QNRESULT ComObject::SetOuterUnknown(IQNUnknown*) noexcept {
    return QN_E_NOAGGREGATION;
}

const xcom::InterfaceData* ComObject::GetComIntfMap() {
    // The base interface is answered by QueryInterfaceMap itself; nothing else here.
    static const xcom::InterfaceData map[] = {{nullptr, 0, 0}};
    return map;
}

namespace xcom {

QNRESULT QueryInterfaceMap(const InterfaceData* map, ComObject* object, const QNGUID& iid,
                           void** out) {
    if (!out)
        return QN_E_POINTER;
    if (isEqualGuid(iid, IID_IQNUnknown)) {
        *out = object->GetUnknown();
        object->GetUnknown()->AddRef();
        return QN_S_OK;
    }
    for (const InterfaceData* entry = map; entry->handler != 0; ++entry) {
        if (entry->iid && !isEqualGuid(*entry->iid, iid))
            continue;
        if (entry->handler == INTERFACE_SUBOBJECT) {
            auto* face =
                reinterpret_cast<IQNUnknown*>(reinterpret_cast<char*>(object) + entry->parameter);
            *out = face;
            face->AddRef();
            return QN_S_OK;
        }
        const auto function = reinterpret_cast<InterfaceFunction>(entry->handler);
        const QNRESULT r = function(object, iid, out, entry->parameter);
        if (r == QN_S_OK || (entry->iid && r < 0))
            return r;
    }
    *out = nullptr;
    return QN_E_NOINTERFACE;
}

} // namespace xcom
} // namespace qn
