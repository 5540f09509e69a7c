// xcom::ClassFactory: the class object of a component class. It creates instances through a
// creation function that the module's class table supplies, and locks the module for clients
// that want it to stay loaded between creations.
#pragma once

#include "qn/core/ComObject.h"
#include "qn/core/Exception.h"
#include "qn/core/xcom/Module.h"

namespace qn::xcom {

class QNCL_API ClassFactory : public ComObject, public IQNClassFactory {
public:
    // Creates an instance: (the factory's module, outer object, interface identifier, output).
    using CreateInstanceFunction = QNRESULT (*)(Module* module, IQNUnknown* outer,
                                                const QNGUID& iid, void** out);

    ClassFactory() noexcept = default;
    ~ClassFactory() override;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    // 0x80004003 for a null out. With an outer object only the base interface may be asked for
    // (0x80070057 otherwise). Without a creation function: 0x80040111.
    QNRESULT QN_STDCALL CreateInstance(IQNUnknown* outer, const QNGUID& iid, void** out) override;
    // Locks (non-zero) or unlocks the factory's module; 0x8000FFFF when it has none.
    QNRESULT QN_STDCALL LockServer(int32_t lock) override;

    void SetCreateInstanceQIFunc(CreateInstanceFunction function) noexcept {
        m_createInstance = function;
    }

    static const InterfaceData* GetComIntfMap();

    // The creation function of a class-table row whose parameter is a CreateInstanceFunction:
    // a new factory of the module using that function. The reference it hands out is the
    // module's cache's and does not lock the module.
    static QNRESULT CreateClassObject(Module* module, uintptr_t parameter, const QNGUID& iid,
                                      void** out);

private:
    CreateInstanceFunction m_createInstance = nullptr;
};

// A CreateInstanceFunction for a component class T (default-constructible, derived from
// ComObject): a new T of the module, asked for iid. Aggregation is refused with 0x80040110.
template <class T>
QNRESULT createInstance(Module* module, IQNUnknown* outer, const QNGUID& iid, void** out) {
    *out = nullptr;
    if (outer)
        return QN_E_NOAGGREGATION;
    return translateExceptions([&] {
        T* object = new T();
        object->SetComModule(module); // before the first reference, which locks the module
        object->AddRef();
        const QNRESULT r = object->QueryInterface(iid, out);
        object->Release();
        return r;
    });
}

// A class-table row for T, created through a ClassFactory.
template <class T>
ClassData classEntry(const QNGUID& clsid, const char16_t* progId,
                     const char16_t* versionIndependentProgId, const char16_t* description,
                     const char16_t* version = nullptr) {
    const ClassFactory::CreateInstanceFunction create = &createInstance<T>;
    return ClassData{&clsid,
                     reinterpret_cast<uintptr_t>(create),
                     &ClassFactory::CreateClassObject,
                     progId,
                     versionIndependentProgId,
                     description,
                     version,
                     nullptr};
}

} // namespace qn::xcom
