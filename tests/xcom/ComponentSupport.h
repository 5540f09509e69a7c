// What the xcom tests share: a registration store of their own, the paths of this program and
// of the test component, and the component library loaded by hand.
#pragma once

#include <qncore/QNCore.h>

#include <string>

namespace qntest {

// On POSIX points the registration store at a fresh temporary file for its lifetime; on
// Windows registrations go to the registry and each test removes its own.
class ScratchRegistry {
public:
    ScratchRegistry();
    ~ScratchRegistry();
    ScratchRegistry(const ScratchRegistry&) = delete;
    ScratchRegistry& operator=(const ScratchRegistry&) = delete;

private:
    std::string m_path;
};

// The file of this test program, and the test component beside it.
std::u16string programPath();
std::u16string componentPath();

// The component library, loaded for the test's own calls of its entry points.
class ComponentLibrary {
public:
    ComponentLibrary();
    ~ComponentLibrary();
    ComponentLibrary(const ComponentLibrary&) = delete;
    ComponentLibrary& operator=(const ComponentLibrary&) = delete;

    bool loaded() const { return m_handle != nullptr; }
    QNRESULT registerServer() const;
    QNRESULT unregisterServer() const;
    QNRESULT canUnloadNow() const;
    QNRESULT getClassObject(const QNGUID& clsid, const QNGUID& iid, void** out) const;

private:
    void* symbol(const char* name) const;
    void* m_handle = nullptr;
};

inline const QNWCHAR* W(const char16_t* text) {
    return reinterpret_cast<const QNWCHAR*>(text);
}

} // namespace qntest
