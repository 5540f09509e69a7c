#include "ComponentSupport.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>
#endif

#include <atomic>
#include <cstdio>

namespace qntest {

namespace {

// The directory of path with its separator (Windows' loader wants backslashes).
std::u16string directoryOf(const std::u16string& path) {
    const size_t slash = path.find_last_of(u"/\\");
    return slash == std::u16string::npos ? u"./" : path.substr(0, slash + 1);
}

#ifndef _WIN32
std::string narrow(const std::u16string& text) {
    std::string out(static_cast<size_t>(QNWideToUtf8(W(text.c_str()), -1, nullptr, 0)) + 1, '\0');
    QNWideToUtf8(W(text.c_str()), -1, &out[0], static_cast<int32_t>(out.size()));
    out.resize(out.size() - 1);
    return out;
}
#endif

using Entry = QNRESULT(QN_STDCALL*)();
using GetClassObject = QNRESULT(QN_STDCALL*)(const QNGUID*, const QNGUID*, void**);

} // namespace

ScratchRegistry::ScratchRegistry() {
#ifndef _WIN32
    static std::atomic<int> serial{0};
    char name[64];
    std::snprintf(name, sizeof name, "/tmp/qncl-xcom-%ld-%d.reg", static_cast<long>(getpid()),
                  ++serial);
    m_path = name;
    setenv("QNCL_COMPONENT_REGISTRY", m_path.c_str(), 1);
#endif
}

ScratchRegistry::~ScratchRegistry() {
#ifndef _WIN32
    unsetenv("QNCL_COMPONENT_REGISTRY");
    std::remove(m_path.c_str());
#endif
}

std::u16string programPath() {
    QNWCHAR path[1024];
    if (QN_FAILED(QNModuleGetFileNameW(reinterpret_cast<const void*>(&programPath), path, 1024)))
        return u"";
    return reinterpret_cast<const char16_t*>(path);
}

std::u16string componentPath() {
    return directoryOf(programPath()) + u"" QNCL_TEST_COMPONENT;
}

ComponentLibrary::ComponentLibrary() {
#ifdef _WIN32
    m_handle = LoadLibraryW(reinterpret_cast<const wchar_t*>(componentPath().c_str()));
#else
    m_handle = dlopen(narrow(componentPath()).c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
}

ComponentLibrary::~ComponentLibrary() {
    if (!m_handle)
        return;
#ifdef _WIN32
    FreeLibrary(static_cast<HMODULE>(m_handle));
#else
    dlclose(m_handle);
#endif
}

void* ComponentLibrary::symbol(const char* name) const {
#ifdef _WIN32
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_handle), name));
#else
    return dlsym(m_handle, name);
#endif
}

QNRESULT ComponentLibrary::registerServer() const {
    return reinterpret_cast<Entry>(symbol("DllRegisterServer"))();
}
QNRESULT ComponentLibrary::unregisterServer() const {
    return reinterpret_cast<Entry>(symbol("DllUnregisterServer"))();
}
QNRESULT ComponentLibrary::canUnloadNow() const {
    return reinterpret_cast<Entry>(symbol("DllCanUnloadNow"))();
}
QNRESULT ComponentLibrary::getClassObject(const QNGUID& clsid, const QNGUID& iid,
                                          void** out) const {
    return reinterpret_cast<GetClassObject>(symbol("DllGetClassObject"))(&clsid, &iid, out);
}

} // namespace qntest
