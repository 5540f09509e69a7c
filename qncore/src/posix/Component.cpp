// The POSIX side of the component layer: registrations in the store file, libraries by dlopen.
#include "ComponentStore.h"
#include "common/Platform.h"

#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace qncore::platform {
namespace {

constexpr QNRESULT E_MODNOTFOUND = static_cast<QNRESULT>(0x8007007E);
constexpr QNRESULT E_BADEXEFORMAT = static_cast<QNRESULT>(0x800700C1);

std::string guidKey(const QNGUID& clsid) {
    QNWCHAR text[39];
    QNGuidToStringW(&clsid, text, 39);
    return "CLSID\\" + toUtf8(text);
}

QNRESULT guidFromValue(const std::string& value, QNGUID* clsid) {
    const std::u16string text = toUtf16(value.c_str());
    return QNGuidFromStringW(qw(text.c_str()), clsid);
}

// Store lines cannot hold a line break, and a key cannot hold "=".
bool storable(const std::string& text, bool isKey) {
    return text.find_first_of(isKey ? "\r\n=" : "\r\n") == std::string::npos;
}

// Removes key and every key below it; true when something was removed.
bool eraseTree(StoreKeys* keys, const std::string& key) {
    bool erased = keys->erase(key) > 0;
    const std::string prefix = key + "\\";
    for (auto it = keys->lower_bound(prefix);
         it != keys->end() && it->first.compare(0, prefix.size(), prefix) == 0;) {
        it = keys->erase(it);
        erased = true;
    }
    return erased;
}

} // namespace

QNRESULT classIdFromProgId(const std::u16string& progId, QNGUID* clsid) {
    StoreKeys keys;
    QNRESULT r = ComponentStore::read(&keys);
    if (QN_FAILED(r))
        return r;
    const std::string id = toUtf8(qw(progId.c_str()));
    auto found = keys.find(id + "\\CLSID");
    if (found == keys.end()) {
        auto current = keys.find(id + "\\CurVer");
        if (current != keys.end())
            found = keys.find(current->second + "\\CLSID");
    }
    if (found == keys.end())
        return QN_E_CLASSNOTREGISTERED;
    return QN_SUCCEEDED(guidFromValue(found->second, clsid)) ? QN_S_OK : QN_E_CLASSNOTREGISTERED;
}

QNRESULT libraryPathOf(const QNGUID& clsid, std::u16string* path) {
    StoreKeys keys;
    QNRESULT r = ComponentStore::read(&keys);
    if (QN_FAILED(r))
        return r;
    auto found = keys.find(guidKey(clsid) + "\\InprocServer32");
    if (found == keys.end() || found->second.empty())
        return QN_E_CLASSNOTREGISTERED;
    *path = toUtf16(found->second.c_str());
    return QN_S_OK;
}

QNRESULT registerClass(const QNGUID& clsid, const std::u16string& progId,
                       const std::u16string& versionIndependentProgId,
                       const std::u16string& description, const std::u16string& libraryPath) {
    const std::string clsidKey = guidKey(clsid), clsidText = clsidKey.substr(6);
    const std::string id = toUtf8(qw(progId.c_str()));
    const std::string viId = toUtf8(qw(versionIndependentProgId.c_str()));
    const std::string text = toUtf8(qw(description.c_str()));
    const std::string path = toUtf8(qw(libraryPath.c_str()));
    if (!storable(id, true) || !storable(viId, true) || !storable(text, false) ||
        !storable(path, false))
        return QN_E_INVALIDARG;
    return ComponentStore::update([&](StoreKeys* keys) {
        (*keys)[clsidKey] = text;
        (*keys)[clsidKey + "\\InprocServer32"] = path;
        if (!id.empty()) {
            (*keys)[clsidKey + "\\ProgID"] = id;
            (*keys)[id] = text;
            (*keys)[id + "\\CLSID"] = clsidText;
        }
        if (!viId.empty()) {
            (*keys)[clsidKey + "\\VersionIndependentProgID"] = viId;
            (*keys)[viId] = text;
            (*keys)[viId + "\\CLSID"] = clsidText;
            if (!id.empty())
                (*keys)[viId + "\\CurVer"] = id;
        }
        return QN_S_OK;
    });
}

QNRESULT unregisterClass(const QNGUID& clsid) {
    const std::string clsidKey = guidKey(clsid);
    return ComponentStore::update([&](StoreKeys* keys) {
        bool erased = false;
        for (const char* link : {"\\ProgID", "\\VersionIndependentProgID"}) {
            auto found = keys->find(clsidKey + link);
            if (found != keys->end() && !found->second.empty()) {
                const std::string id = found->second;
                erased |= eraseTree(keys, id);
            }
        }
        erased |= eraseTree(keys, clsidKey);
        return erased ? QN_S_OK : QN_S_FALSE;
    });
}

void* loadLibrary(const std::u16string& path, QNRESULT* result) {
    const std::string file = toUtf8(qw(path.c_str()));
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        *result = ::access(file.c_str(), F_OK) == 0 ? E_BADEXEFORMAT : E_MODNOTFOUND;
    return library;
}

void* findSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

void freeLibrary(void* library) {
    dlclose(library);
}

QNRESULT moduleFileName(const void* address, std::u16string* path) {
    Dl_info info{};
    if (!address || dladdr(address, &info) == 0 || !info.dli_fname || !*info.dli_fname)
        return QN_E_FILENOTFOUND;
    // The loader keeps the name it was given, which may be relative to a directory since left.
    char* full = realpath(info.dli_fname, nullptr);
    *path = toUtf16(full ? full : info.dli_fname);
    std::free(full);
    return QN_S_OK;
}

} // namespace qncore::platform
