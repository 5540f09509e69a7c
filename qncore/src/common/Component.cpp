// The component layer common to both sides: class objects registered inside the process, the
// initialised modules, and the component libraries loaded on their behalf.
#include "Platform.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <vector>

namespace {

struct GuidLess {
    bool operator()(const QNGUID& a, const QNGUID& b) const {
        return std::memcmp(&a, &b, sizeof(QNGUID)) < 0;
    }
};

struct ClassObject {
    IQNUnknown* object;
    std::u16string progId;
};

struct Library {
    void* handle = nullptr;
    QNPFN_DllGetClassObject getClassObject = nullptr;
    QNPFN_DllCanUnloadNow canUnloadNow = nullptr;
    std::set<QNMODULE> users;
};

struct State {
    std::recursive_mutex lock;
    std::map<QNGUID, ClassObject, GuidLess> classObjects;
    std::set<QNMODULE> initialized;
    std::map<std::u16string, Library> libraries;
};

State& state() {
    static State s;
    return s;
}

// The class factory of clsid, with one reference for the caller.
QNRESULT classFactoryOf(QNMODULE module, const QNGUID& clsid, IQNClassFactory** factory) {
    State& s = state();
    std::lock_guard<std::recursive_mutex> hold(s.lock);
    auto found = s.classObjects.find(clsid);
    if (found != s.classObjects.end())
        return found->second.object->QueryInterface(QN_IID_IQNClassFactory,
                                                    reinterpret_cast<void**>(factory));
    std::u16string path;
    QNRESULT r = qncore::platform::libraryPathOf(clsid, &path);
    if (QN_FAILED(r))
        return r;
    auto it = s.libraries.find(path);
    if (it == s.libraries.end()) {
        Library library;
        library.handle = qncore::platform::loadLibrary(path, &r);
        if (!library.handle)
            return r;
        library.getClassObject = reinterpret_cast<QNPFN_DllGetClassObject>(
            qncore::platform::findSymbol(library.handle, "DllGetClassObject"));
        library.canUnloadNow = reinterpret_cast<QNPFN_DllCanUnloadNow>(
            qncore::platform::findSymbol(library.handle, "DllCanUnloadNow"));
        if (!library.getClassObject) {
            qncore::platform::freeLibrary(library.handle);
            return QN_E_CLASSNOTREGISTERED;
        }
        it = s.libraries.emplace(path, library).first;
    }
    it->second.users.insert(module);
    return it->second.getClassObject(&clsid, &QN_IID_IQNClassFactory,
                                     reinterpret_cast<void**>(factory));
}

} // namespace

QN_EXTERN_C QNRESULT QN_STDCALL QNComClassIDFromProgID(const QNWCHAR* progId, QNGUID* clsid) {
    if (!progId || !clsid)
        return QN_E_POINTER;
    return qncore::guard([&] {
        const std::u16string id(qncore::u16(progId));
        State& s = state();
        {
            std::lock_guard<std::recursive_mutex> hold(s.lock);
            for (const auto& entry : s.classObjects) {
                if (!entry.second.progId.empty() && entry.second.progId == id) {
                    *clsid = entry.first;
                    return QN_S_OK;
                }
            }
        }
        if (id.empty())
            return QN_E_CLASSNOTREGISTERED;
        return qncore::platform::classIdFromProgId(id, clsid);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNModuleComCreateObject(QNMODULE module, const QNGUID* clsid,
                                                        IQNUnknown* outer, const QNGUID* iid,
                                                        void** out) {
    if (!out)
        return QN_E_POINTER;
    *out = nullptr;
    if (!clsid || !iid)
        return QN_E_POINTER;
    return qncore::guard([&] {
        if (module) {
            std::lock_guard<std::recursive_mutex> hold(state().lock);
            if (!state().initialized.count(module))
                return QN_E_UNEXPECTED;
        }
        IQNClassFactory* factory = nullptr;
        QNRESULT r = classFactoryOf(module, *clsid, &factory);
        if (QN_FAILED(r))
            return r;
        r = factory->CreateInstance(outer, *iid, out);
        factory->Release();
        if (QN_FAILED(r))
            *out = nullptr;
        return r;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNModuleSetInitialized(QNMODULE module, int32_t initialized) {
    return qncore::guard([&] {
        State& s = state();
        std::lock_guard<std::recursive_mutex> hold(s.lock);
        if (!module)
            return QN_S_OK;
        if (initialized) {
            s.initialized.insert(module);
            return QN_S_OK;
        }
        s.initialized.erase(module);
        for (auto it = s.libraries.begin(); it != s.libraries.end();) {
            Library& library = it->second;
            library.users.erase(module);
            const bool idle = library.users.empty() &&
                              (!library.canUnloadNow || library.canUnloadNow() == QN_S_OK);
            if (idle && library.canUnloadNow) {
                qncore::platform::freeLibrary(library.handle);
                it = s.libraries.erase(it);
            } else {
                ++it;
            }
        }
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNComRegisterClass(const QNGUID* clsid, const QNWCHAR* progId,
                                                   const QNWCHAR* versionIndependentProgId,
                                                   const QNWCHAR* description,
                                                   const QNWCHAR* libraryPath) {
    if (!clsid || !libraryPath)
        return QN_E_POINTER;
    return qncore::guard([&] {
        auto text = [](const QNWCHAR* p) { return p ? std::u16string(qncore::u16(p)) : u""; };
        const std::u16string path = text(libraryPath);
        if (path.empty())
            return QN_E_INVALIDARG;
        return qncore::platform::registerClass(*clsid, text(progId), text(versionIndependentProgId),
                                               text(description), path);
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNComUnregisterClass(const QNGUID* clsid) {
    if (!clsid)
        return QN_E_POINTER;
    return qncore::guard([&] { return qncore::platform::unregisterClass(*clsid); });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNComRegisterClassObject(const QNGUID* clsid, const QNWCHAR* progId,
                                                         IQNUnknown* classObject) {
    if (!clsid || !classObject)
        return QN_E_POINTER;
    return qncore::guard([&] {
        State& s = state();
        std::lock_guard<std::recursive_mutex> hold(s.lock);
        if (s.classObjects.count(*clsid))
            return QN_E_ALREADYEXISTS;
        s.classObjects.emplace(*clsid,
                               ClassObject{classObject, progId ? qncore::u16(progId) : u""});
        classObject->AddRef();
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNComRevokeClassObject(const QNGUID* clsid) {
    if (!clsid)
        return QN_E_POINTER;
    return qncore::guard([&] {
        IQNUnknown* object = nullptr;
        {
            State& s = state();
            std::lock_guard<std::recursive_mutex> hold(s.lock);
            auto it = s.classObjects.find(*clsid);
            if (it == s.classObjects.end())
                return QN_S_FALSE;
            object = it->second.object;
            s.classObjects.erase(it);
        }
        object->Release();
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNModuleGetFileNameW(const void* address, QNWCHAR* buffer,
                                                     int32_t size) {
    if (!buffer)
        return QN_E_POINTER;
    if (size <= 0)
        return QN_E_BUFFERTOOSMALL;
    buffer[0] = 0;
    return qncore::guard([&] {
        std::u16string path;
        const QNRESULT r = qncore::platform::moduleFileName(address, &path);
        if (QN_FAILED(r))
            return r;
        if (path.size() >= static_cast<size_t>(size))
            return QN_E_BUFFERTOOSMALL;
        std::copy(path.begin(), path.end(), buffer);
        buffer[path.size()] = 0;
        return QN_S_OK;
    });
}
