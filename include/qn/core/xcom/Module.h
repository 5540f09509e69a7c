// xcom::Module: a library file's publication of component classes. Its lock count counts what
// keeps the file loaded: LockServer calls, explicit AddRef, and every object of the module whose
// own count is above 0.
#pragma once

#include "qn/core/Config.h"

#include <atomic>

namespace qn::xcom {

class QNCL_API Module {
public:
    Module() noexcept = default;
    virtual ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // 0 when nothing holds the module, 1 otherwise.
    virtual QNRESULT CanUnloadNow() { return GetRefCount() == 0 ? 0 : 1; }

    uint32_t AddRef() noexcept { return m_lockCount.fetch_add(1, std::memory_order_relaxed) + 1; }
    uint32_t Release() noexcept { return m_lockCount.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    uint32_t GetRefCount() const noexcept { return m_lockCount.load(std::memory_order_acquire); }

private:
    std::atomic<uint32_t> m_lockCount{0};
};

} // namespace qn::xcom
