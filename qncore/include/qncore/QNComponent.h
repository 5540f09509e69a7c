/* Component classes found by program identifier and created through their class factories.
 *
 * Registration uses the keys of the platform registry's class root:
 *   CLSID\{clsid}                           default value: description
 *   CLSID\{clsid}\InprocServer32            default value: path of the component library
 *   CLSID\{clsid}\ProgID                    default value: the program identifier
 *   CLSID\{clsid}\VersionIndependentProgID  default value: the version-independent identifier
 *   <progid>\CLSID                          default value: {clsid}
 *   <version-independent progid>\CLSID      default value: {clsid}
 *   <version-independent progid>\CurVer     default value: the program identifier
 * On Windows these are registry keys under HKEY_CLASSES_ROOT (written to the machine's class root
 * when allowed, else to the user's). On POSIX they are lines "key=value" in a store file: the
 * path in the environment variable QNCL_COMPONENT_REGISTRY, else
 * $XDG_CONFIG_HOME/qncl/components.reg, else $HOME/.config/qncl/components.reg.
 *
 * Class objects registered inside the process are found before the registry. A component library
 * is loaded by path and asked for its class object through its exported DllGetClassObject; it
 * stays loaded until every module that loaded it has been marked uninitialised and its
 * DllCanUnloadNow answers QN_S_OK. */
#ifndef QNCORE_QNCOMPONENT_H
#define QNCORE_QNCOMPONENT_H

#include "QNUnknown.h"

/* Identifies a module (a library using the core) to the component layer; any stable address
 * will do. Null stands for the process itself and is always initialised. */
typedef const void* QNMODULE;

QN_EXTERN_C_BEGIN

/* "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case: 39 units with the terminator. */
QNCORE_API QNRESULT QN_STDCALL QNGuidToStringW(const QNGUID* guid, QNWCHAR* buffer, int32_t size);
/* Accepts the form above, braces optional, digits in either case; QN_E_INVALIDCLASSSTRING
 * otherwise. */
QNCORE_API QNRESULT QN_STDCALL QNGuidFromStringW(const QNWCHAR* text, QNGUID* guid);

/* Finds the class identifier of a program identifier (exact case on POSIX, as the Windows
 * registry: any case). A version-independent identifier without a CLSID key of its own is
 * followed through CurVer. QN_E_CLASSNOTREGISTERED when unknown. */
QNCORE_API QNRESULT QN_STDCALL QNComClassIDFromProgID(const QNWCHAR* progId, QNGUID* clsid);

/* Creates an instance of the class on behalf of module: its class object from the process's
 * registrations or from its library, then CreateInstance(outer, iid, out). *out is null on
 * failure. A module that is not initialised gets QN_E_UNEXPECTED. */
QNCORE_API QNRESULT QN_STDCALL QNModuleComCreateObject(QNMODULE module, const QNGUID* clsid,
                                                       IQNUnknown* outer, const QNGUID* iid,
                                                       void** out);

/* Marks module initialised (non-zero) or not (0). Marking it uninitialised frees the component
 * libraries loaded only on its behalf that can unload now. */
QNCORE_API QNRESULT QN_STDCALL QNModuleSetInitialized(QNMODULE module, int32_t initialized);

/* Writes the registration of a class; progId, versionIndependentProgId and description may be
 * null or empty, then their keys are left out. */
QNCORE_API QNRESULT QN_STDCALL QNComRegisterClass(const QNGUID* clsid, const QNWCHAR* progId,
                                                  const QNWCHAR* versionIndependentProgId,
                                                  const QNWCHAR* description,
                                                  const QNWCHAR* libraryPath);
/* Removes what QNComRegisterClass wrote for the class, program identifiers included.
 * QN_S_FALSE when nothing was registered. */
QNCORE_API QNRESULT QN_STDCALL QNComUnregisterClass(const QNGUID* clsid);

/* Registers a class object inside the process (held by one reference until revoked), with an
 * optional program identifier. QN_E_ALREADYEXISTS when the class is registered already. */
QNCORE_API QNRESULT QN_STDCALL QNComRegisterClassObject(const QNGUID* clsid, const QNWCHAR* progId,
                                                        IQNUnknown* classObject);
QNCORE_API QNRESULT QN_STDCALL QNComRevokeClassObject(const QNGUID* clsid);

/* The full path of the library or program file that contains address (any code or data address
 * inside it; on Windows also its module handle), zero-terminated in buffer. QN_E_BUFFERTOOSMALL
 * when size units cannot hold it, QN_E_FILENOTFOUND when no loaded file contains the address. */
QNCORE_API QNRESULT QN_STDCALL QNModuleGetFileNameW(const void* address, QNWCHAR* buffer,
                                                    int32_t size);

QN_EXTERN_C_END

#endif
