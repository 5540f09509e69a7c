// The library's counted load and unload sequence, run by the platform's load entry (the DLL entry
// on Windows, the shared object's constructor and destructor elsewhere), and the process-wide
// global lock that guards one-time creations.
//
// Load (only the first of nested calls works): the C run time's locale becomes the user's
// default; the global lock, a Mutex named "QNCL::g_pGlobalLock", is created; every built-in class
// is registered from one static table, in table order; every built-in codec is registered with
// the codec manager and the encoding-information table is built. Unload (only the last): the
// encoding-information table, the codec manager and the class registry are freed and the global
// lock destroyed. Both turn any exception into a result code.
#pragma once

#include "qn/core/Config.h"

namespace qn {
namespace sync {
class LockObject;
}

// Exists between load and unload.
extern QNCL_API sync::LockObject* g_pGlobalLock;

// The token by which this library identifies itself to the core module's component layer.
QNCL_API const void* libraryModuleToken() noexcept;

// Registers every row of the built-in class table with the registry, in order.
QNCL_API void registerBuiltinClasses();

} // namespace qn

// 0 on success; a later nested call only counts. Unloading more often than loading gives
// 0x80004005 and does nothing.
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL QNCLLibInit(void);
QN_EXTERN_C QNCL_API QNRESULT QN_STDCALL QNCLLibUninit(void);
