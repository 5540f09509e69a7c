// Component registration in the registry's class root, and component libraries as DLLs.
#include "Win32.h"

#include "common/Platform.h"

#include <utility>
#include <vector>

namespace {

class Key {
public:
    Key() = default;
    ~Key() {
        if (m_key)
            RegCloseKey(m_key);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY* out() { return &m_key; }
    HKEY get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

// A class root: the registry key and the path of the classes below it.
struct Root {
    HKEY key;
    const wchar_t* prefix;
};

// The user's classes come before the machine's, as in the merged view of the class root.
const Root USER_CLASSES{HKEY_CURRENT_USER, L"Software\\Classes\\"};
const Root CLASS_ROOT{HKEY_CLASSES_ROOT, L""};
const Root ROOTS[] = {USER_CLASSES, CLASS_ROOT};

std::wstring wide(const std::u16string& text) {
    return std::wstring(text.begin(), text.end());
}

std::wstring guidText(const QNGUID& guid) {
    wchar_t text[39];
    QNGuidToStringW(&guid, text, 39);
    return text;
}

QNRESULT resultOf(LSTATUS status) {
    return QNResultFromNative(static_cast<uint32_t>(status));
}

// The default value of root\subkey as text.
LSTATUS readDefault(HKEY root, const std::wstring& subkey, std::wstring* value) {
    for (;;) {
        DWORD bytes = 0;
        LSTATUS status =
            RegGetValueW(root, subkey.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &bytes);
        if (status != ERROR_SUCCESS)
            return status;
        std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
        bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        status =
            RegGetValueW(root, subkey.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, &text[0], &bytes);
        if (status == ERROR_MORE_DATA) // the value grew in between
            continue;
        if (status != ERROR_SUCCESS)
            return status;
        text.resize(bytes / sizeof(wchar_t));
        while (!text.empty() && text.back() == L'\0')
            text.pop_back();
        *value = std::move(text);
        return ERROR_SUCCESS;
    }
}

// The default value of a key of the class root, looked up as the merged view would.
bool lookup(const std::wstring& subkey, std::wstring* value) {
    for (const Root& root : ROOTS) {
        if (readDefault(root.key, root.prefix + subkey, value) == ERROR_SUCCESS)
            return true;
    }
    return false;
}

// Creates root\subkey and sets its default value, unless value is empty.
LSTATUS writeDefault(const Root& root, const std::wstring& subkey, const std::wstring& value) {
    Key key;
    const LSTATUS status = RegCreateKeyExW(root.key, (root.prefix + subkey).c_str(), 0, nullptr, 0,
                                           KEY_SET_VALUE, nullptr, key.out(), nullptr);
    if (status != ERROR_SUCCESS || value.empty())
        return status;
    return RegSetValueExW(key.get(), nullptr, 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

// Whether root\id is a program identifier of the class.
bool namesClass(const Root& root, const std::wstring& id, const QNGUID& clsid) {
    std::wstring text;
    QNGUID named;
    return readDefault(root.key, root.prefix + id + L"\\CLSID", &text) == ERROR_SUCCESS &&
           QN_SUCCEEDED(QNGuidFromStringW(text.c_str(), &named)) &&
           std::memcmp(&named, &clsid, sizeof named) == 0;
}

} // namespace

namespace qncore::platform {

QNRESULT classIdFromProgId(const std::u16string& progId, QNGUID* clsid) {
    const std::wstring id = wide(progId);
    std::wstring text, current;
    if (!lookup(id + L"\\CLSID", &text) &&
        !(lookup(id + L"\\CurVer", &current) && !current.empty() &&
          lookup(current + L"\\CLSID", &text)))
        return QN_E_CLASSNOTREGISTERED;
    return QN_SUCCEEDED(QNGuidFromStringW(text.c_str(), clsid)) ? QN_S_OK : QN_E_CLASSNOTREGISTERED;
}

QNRESULT libraryPathOf(const QNGUID& clsid, std::u16string* path) {
    std::wstring text;
    if (!lookup(L"CLSID\\" + guidText(clsid) + L"\\InprocServer32", &text) || text.empty())
        return QN_E_CLASSNOTREGISTERED;
    path->assign(text.begin(), text.end());
    return QN_S_OK;
}

QNRESULT registerClass(const QNGUID& clsid, const std::u16string& progId,
                       const std::u16string& versionIndependentProgId,
                       const std::u16string& description, const std::u16string& libraryPath) {
    const std::wstring id = guidText(clsid), base = L"CLSID\\" + id;
    const std::wstring current = wide(progId), independent = wide(versionIndependentProgId);
    // The machine's class root when the caller may write it, else the user's.
    Root root = CLASS_ROOT;
    LSTATUS status = writeDefault(root, base, wide(description));
    if (status == ERROR_ACCESS_DENIED) {
        root = USER_CLASSES;
        status = writeDefault(root, base, wide(description));
    }
    if (status != ERROR_SUCCESS)
        return resultOf(status);
    std::vector<std::pair<std::wstring, std::wstring>> values{
        {base + L"\\InprocServer32", wide(libraryPath)}};
    if (!current.empty()) {
        values.emplace_back(base + L"\\ProgID", current);
        values.emplace_back(current + L"\\CLSID", id);
    }
    if (!independent.empty()) {
        values.emplace_back(base + L"\\VersionIndependentProgID", independent);
        values.emplace_back(independent + L"\\CLSID", id);
        if (!current.empty())
            values.emplace_back(independent + L"\\CurVer", current);
    }
    for (const auto& value : values) {
        status = writeDefault(root, value.first, value.second);
        if (status != ERROR_SUCCESS)
            return resultOf(status);
    }
    return QN_S_OK;
}

QNRESULT unregisterClass(const QNGUID& clsid) {
    const std::wstring base = L"CLSID\\" + guidText(clsid);
    bool found = false;
    for (const Root& root : ROOTS) {
        const std::wstring key = root.prefix + base;
        std::wstring ids[2];
        {
            Key opened;
            if (RegOpenKeyExW(root.key, key.c_str(), 0, KEY_READ, opened.out()) != ERROR_SUCCESS)
                continue;
            readDefault(opened.get(), L"ProgID", &ids[0]);
            readDefault(opened.get(), L"VersionIndependentProgID", &ids[1]);
        }
        found = true;
        const LSTATUS status = RegDeleteTreeW(root.key, key.c_str());
        if (status != ERROR_SUCCESS)
            return resultOf(status);
        // An identifier registered again for another class since is no longer this class's.
        for (const std::wstring& id : ids) {
            if (!id.empty() && namesClass(root, id, clsid))
                RegDeleteTreeW(root.key, (root.prefix + id).c_str());
        }
    }
    return found ? QN_S_OK : QN_S_FALSE;
}

void* loadLibrary(const std::u16string& path, QNRESULT* result) {
    const HMODULE library = LoadLibraryW(wide(path).c_str());
    if (!library)
        *result = win32::lastResult();
    return library;
}

void* findSymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void freeLibrary(void* library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

QNRESULT moduleFileName(const void* address, std::u16string* path) {
    HMODULE module = nullptr;
    if (!address || !GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                             GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                         static_cast<LPCWSTR>(address), &module))
        return QN_E_FILENOTFOUND;
    std::vector<wchar_t> name(MAX_PATH);
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
        if (length == 0)
            return win32::lastResult();
        if (length < name.size()) {
            path->assign(reinterpret_cast<const char16_t*>(name.data()), length);
            return QN_S_OK;
        }
        name.resize(name.size() * 2);
    }
}

} // namespace qncore::platform
