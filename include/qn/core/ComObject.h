// The reference-counted component object: an atomic count that starts at 0 (the first holder
// takes the first reference; the last Release destroys the object) and an optional owning
// module whose lock count counts the module's live objects.
#pragma once

#include "qn/core/xcom/InterfaceMap.h"

#include <atomic>

namespace qn {
namespace xcom {
class Module;
}

class QNCL_API ComObject : public IQNUnknown {
public:
    ComObject() noexcept;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    // Increments the count; the first reference also locks the owning module.
    uint32_t QN_STDCALL AddRef() override;
    // Decrements the count; at 0 unlocks the owning module and deletes the object.
    uint32_t QN_STDCALL Release() override;
    virtual ~ComObject();

    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    QNRESULT NonDelegatingQueryInterface(const QNGUID& iid, void** out);
    uint32_t InternalAddRef() noexcept {
        return m_refCount.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    uint32_t InternalRelease() noexcept {
        return m_refCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
    // Acquire: a holder that reads 1 may change what the object guards in place.
    uint32_t GetRefCount() const noexcept { return m_refCount.load(std::memory_order_acquire); }
    IQNUnknown* GetUnknown() noexcept { return this; }
    const IQNUnknown* GetUnknown() const noexcept { return this; }

    // Sets the owning module without touching its lock count, whatever this object's count is.
    void SetComModule(xcom::Module* module) noexcept { m_module = module; }
    xcom::Module* GetComModule() const noexcept { return m_module; }
    // Aggregation is not supported: always 0x80040110.
    QNRESULT SetOuterUnknown(IQNUnknown* outer) noexcept;

    // Registration texts of a component class; a plain object has none.
    static const QNWCHAR* GetComDescription() noexcept { return nullptr; }
    static const QNWCHAR* GetComProgID() noexcept { return nullptr; }
    static const QNWCHAR* GetComVersionIndependentProgID() noexcept { return nullptr; }
    static const QNWCHAR* GetComObjectVersion() noexcept { return nullptr; }

    static const xcom::InterfaceData* GetComIntfMap();

    // Objects alive in this process, counted in debug builds (QNCL_COUNT_OBJECTS); -1 otherwise.
    static long liveObjects() noexcept;

protected:
    // For value-like classes: a copy starts with count 0 and no module.
    explicit ComObject(const ComObject*) noexcept;

private:
    std::atomic<uint32_t> m_refCount;
    xcom::Module* m_module;
};

} // namespace qn
