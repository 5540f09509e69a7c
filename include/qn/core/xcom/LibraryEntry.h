// The qncl6 library's own component module and its standard entry points, which the platform
// (or the core module's component layer) finds by name in the library file. A component library
// exports entry points of the same names for its own module and must not include this header.
#pragma once

#include "qn/core/Exception.h"
#include "qn/core/xcom/DllModule.h"

namespace qn::xcom {

// The module of the qncl6 library file. The library publishes no component classes of its
// own through it (its classes are made by constructors, or by name through the class
// registry); it answers the entry points below and counts the locks that keep the file loaded.
QNCL_API DllModule& libraryModule();

} // namespace qn::xcom

// The library module's class object for clsid, asked for iid.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL DllGetClassObject(const QNGUID* clsid, const QNGUID* iid,
                                                           void** out);
// 0 when the library may be unloaded, 1 while its module is locked.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL DllCanUnloadNow(void);
// Registers (or removes the registration of) the library module's classes, with this file's
// path.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL DllRegisterServer(void);
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL DllUnregisterServer(void);
