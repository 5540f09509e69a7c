// xcom::Module: a library file's publication of component classes. It holds a static table of
// class rows, hands out each row's class object (created once, on the first request, and cached
// for the module's life), counts the locks that keep the file loaded, and writes and removes the
// registration of its classes. Its lock count counts LockServer calls, explicit AddRef, and every
// object of the module whose own count is above 0.
#pragma once

#include "qn/core/Config.h"
#include "qn/sync/Mutex.h"

#include <atomic>

namespace qn::xcom {

class Module;

// Creates a row's class object: (module, the row's parameter, interface identifier, output).
using CreateClassObjectFunction = QNRESULT (*)(Module* module, uintptr_t parameter,
                                               const QNGUID& iid, void** out);

// One row of a module's class table; the table ends with a row whose clsid is null. The texts
// are what registration writes: progId (when null, versionIndependentProgId "." version stands
// in for it where both are given), the version-independent identifier and the description; any
// may be null. This library's maker's identifiers begin with "Solvantic.".
struct ClassData {
    const QNGUID* clsid;
    uintptr_t parameter;
    CreateClassObjectFunction createClassObject;
    const char16_t* progId;
    const char16_t* versionIndependentProgId;
    const char16_t* description;
    const char16_t* version;
    // Holds one reference from the first request on; the reference does not lock the module.
    std::atomic<IQNUnknown*> classObject;
};

class QNCL_API Module {
public:
    // classes (may be null: no classes) must outlive the module. Creating the module's lock can
    // fail: ResultException with the core module's code.
    explicit Module(ClassData* classes = nullptr);
    // Releases the cached class objects; a client still holding one must not use it after the
    // module is gone, as with any object of an unloaded library.
    virtual ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // 0 when nothing holds the module, 1 otherwise.
    virtual QNRESULT CanUnloadNow();
    // The class object of clsid, asked for iid: 0x80004003 for a null out; otherwise *out is set
    // (null on failure). Each row is tried in turn until one answers; with no row for clsid the
    // result is 0x80040111.
    virtual QNRESULT GetClassObject(const QNGUID& clsid, const QNGUID& iid, void** out);
    // Registers every row as served by the library file at path, stopping at the first failure.
    virtual QNRESULT RegisterServer(const char16_t* path);
    // Removes every row's registration, stopping at the first failure.
    virtual QNRESULT UnregisterServer();
    // Writes one row's keys under the class root (qncore6's registration store on POSIX).
    virtual QNRESULT RegisterClassEntry(ClassData& row, const char16_t* path);
    // Removes them; 1 (success) when the class was not registered.
    virtual QNRESULT UnregisterClassEntry(ClassData& row);
    // The class object of row when it is clsid's (0x80040111 otherwise), created under the
    // module's lock on the first request.
    virtual QNRESULT TryGetClassObject(const QNGUID& clsid, const QNGUID& iid, void** out,
                                       ClassData& row);

    uint32_t AddRef() noexcept { return m_lockCount.fetch_add(1, std::memory_order_relaxed) + 1; }
    uint32_t Release() noexcept { return m_lockCount.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    uint32_t GetRefCount() const noexcept { return m_lockCount.load(std::memory_order_acquire); }

    // Registers the rows as served by the file that contains instance: any address inside the
    // library (on Windows also its module handle). 0x80004005 when no file is found for it.
    QNRESULT RegisterServer(const void* instance);

    ClassData* getClassData() const noexcept { return m_classes; }

private:
    ClassData* const m_classes;
    std::atomic<uint32_t> m_lockCount{0};
    // Named "qn::xcom::Module::m_lock": every module of the process shares this one recursive
    // lock, so a creation function may itself ask another module for a class object.
    sync::Mutex m_lock;
};

} // namespace qn::xcom
