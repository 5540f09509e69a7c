// What each side (POSIX, Win32) supplies to the common component layer.
#pragma once

#include "Internal.h"

#include <string>

namespace qncore::platform {

// The registration store / registry's class root.
QNRESULT classIdFromProgId(const std::u16string& progId, QNGUID* clsid);
QNRESULT libraryPathOf(const QNGUID& clsid, std::u16string* path);
QNRESULT registerClass(const QNGUID& clsid, const std::u16string& progId,
                       const std::u16string& versionIndependentProgId,
                       const std::u16string& description, const std::u16string& libraryPath);
QNRESULT unregisterClass(const QNGUID& clsid);

// Dynamic libraries. load returns null and sets *result on failure.
void* loadLibrary(const std::u16string& path, QNRESULT* result);
void* findSymbol(void* library, const char* name);
void freeLibrary(void* library);
// The path of the loaded file containing address; QN_E_FILENOTFOUND when none does.
QNRESULT moduleFileName(const void* address, std::u16string* path);

} // namespace qncore::platform
