#include "qn/core/xcom/ClassFactory.h"

namespace qn::xcom {

ClassFactory::~ClassFactory() = default;

const InterfaceData* ClassFactory::GetComIntfMap() {
    static const InterfaceData map[] = {{&IID_IQNClassFactory, INTERFACE_SUBOBJECT,
                                         interfaceOffset<ClassFactory, IQNClassFactory>()},
                                        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL ClassFactory::QueryInterface(const QNGUID& iid, void** out) {
    return QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

QNRESULT QN_STDCALL ClassFactory::CreateInstance(IQNUnknown* outer, const QNGUID& iid, void** out) {
    if (!out)
        return QN_E_POINTER;
    *out = nullptr;
    if (outer && !isEqualGuid(iid, IID_IQNUnknown))
        return QN_E_INVALIDARG;
    if (!m_createInstance)
        return QN_E_CLASSNOTAVAILABLE;
    return m_createInstance(GetComModule(), outer, iid, out);
}

QNRESULT QN_STDCALL ClassFactory::LockServer(int32_t lock) {
    Module* module = GetComModule();
    if (!module)
        return QN_E_UNEXPECTED;
    if (lock)
        module->AddRef();
    else
        module->Release();
    return QN_S_OK;
}

QNRESULT ClassFactory::CreateClassObject(Module* module, uintptr_t parameter, const QNGUID& iid,
                                         void** out) {
    *out = nullptr;
    return translateExceptions([&] {
        auto* factory = new ClassFactory();
        factory->SetCreateInstanceQIFunc(reinterpret_cast<CreateInstanceFunction>(parameter));
        const QNRESULT r = factory->QueryInterface(iid, out);
        if (QN_FAILED(r)) {
            delete factory;
            return r;
        }
        // Set after the first reference, which therefore does not lock the module.
        factory->SetComModule(module);
        return r;
    });
}

} // namespace qn::xcom
