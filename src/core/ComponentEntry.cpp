// The library file's component entry points, beside the load entry: the platform asks them for
// class objects, whether the file may be unloaded, and to (un)register its classes.
#include "qn/core/xcom/LibraryEntry.h"

namespace qn::xcom {

namespace {

// The library's class table: no rows (see libraryModule).
ClassData s_classes[] = {{nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}};

// Made when the file is loaded, so that its lock exists before any caller can ask.
DllModule s_module(s_classes);

} // namespace

DllModule& libraryModule() {
    return s_module;
}

} // namespace qn::xcom

QN_EXTERN_C QNRESULT QN_STDCALL DllGetClassObject(const QNGUID* clsid, const QNGUID* iid,
                                                  void** out) {
    if (!clsid || !iid) {
        if (out)
            *out = nullptr;
        return QN_E_POINTER;
    }
    return qn::translateExceptions(
        [&] { return qn::xcom::libraryModule().GetClassObject(*clsid, *iid, out); });
}

QN_EXTERN_C QNRESULT QN_STDCALL DllCanUnloadNow(void) {
    return qn::translateExceptions([] { return qn::xcom::libraryModule().CanUnloadNow(); });
}

QN_EXTERN_C QNRESULT QN_STDCALL DllRegisterServer(void) {
    // Any address inside this file identifies it.
    return qn::translateExceptions([] {
        return qn::xcom::libraryModule().RegisterServer(
            reinterpret_cast<const void*>(&qn::xcom::s_classes));
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL DllUnregisterServer(void) {
    return qn::translateExceptions([] { return qn::xcom::libraryModule().UnregisterServer(); });
}
