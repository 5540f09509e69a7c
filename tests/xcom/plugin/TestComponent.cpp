// The component library the xcom tests register, find by program identifier, create and
// unregister: one class, served by a DllModule through its class factory.
#include "TestComponent.h"

#include "qn/core/Object.h"
#include "qn/core/xcom/ClassFactory.h"
#include "qn/core/xcom/DllModule.h"

#ifdef _WIN32
#define COMPONENT_EXPORT extern "C" __declspec(dllexport)
#else
#define COMPONENT_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

class Counter : public qn::Object, public qntest::ITestCounter {
public:
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return qn::xcom::QueryInterfaceMap(map(), this, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return qn::Object::AddRef(); }
    uint32_t QN_STDCALL Release() override { return qn::Object::Release(); }

    QNRESULT QN_STDCALL Next(int32_t* value) override {
        if (!value)
            return QN_E_POINTER;
        *value = ++m_value;
        return QN_S_OK;
    }

private:
    static const qn::xcom::InterfaceData* map() {
        static const qn::xcom::InterfaceData entries[] = {
            {&qntest::IID_ITestCounter, qn::xcom::INTERFACE_SUBOBJECT,
             qn::xcom::interfaceOffset<Counter, qntest::ITestCounter>()},
            {nullptr, qn::xcom::handler(&qn::chainToObjectMap), 0},
            {nullptr, 0, 0}};
        return entries;
    }

    int32_t m_value = 0;
};

qn::xcom::ClassData g_classes[] = {
    qn::xcom::classEntry<Counter>(qntest::CLSID_TestCounter, qntest::TEST_COUNTER_PROGID,
                                  qntest::TEST_COUNTER_VI_PROGID, u"qncl test counter"),
    {nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}};

qn::xcom::DllModule g_module(g_classes);

} // namespace

COMPONENT_EXPORT QNRESULT QN_STDCALL DllGetClassObject(const QNGUID* clsid, const QNGUID* iid,
                                                       void** out) {
    return g_module.GetClassObject(*clsid, *iid, out);
}

COMPONENT_EXPORT QNRESULT QN_STDCALL DllCanUnloadNow() {
    return g_module.CanUnloadNow();
}

COMPONENT_EXPORT QNRESULT QN_STDCALL DllRegisterServer() {
    return g_module.RegisterServer(static_cast<const void*>(&g_module));
}

COMPONENT_EXPORT QNRESULT QN_STDCALL DllUnregisterServer() {
    return g_module.UnregisterServer();
}
