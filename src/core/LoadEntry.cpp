// The platform's load entry: it runs the library's counted load and unload sequence. The
// loader serialises these calls.
#include "qn/core/Library.h"

#if defined(_WIN32)
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        QNCLLibInit();
    else if (reason == DLL_PROCESS_DETACH)
        QNCLLibUninit();
    return TRUE;
}
#else
__attribute__((constructor)) static void qnclLoad() {
    QNCLLibInit();
}
__attribute__((destructor)) static void qnclUnload() {
    QNCLLibUninit();
}
#endif
