#include "qn/core/xcom/Module.h"

#include "qn/core/Exception.h"

#include <string>

namespace qn::xcom {

namespace {

const QNWCHAR* wide(const char16_t* text) {
    return reinterpret_cast<const QNWCHAR*>(text);
}

bool hasRows(const ClassData* classes) {
    return classes && classes->clsid;
}

// Runs step on each row until one fails; that failure, or 0.
template <class Step> QNRESULT forEachRow(ClassData* classes, Step step) {
    if (!hasRows(classes))
        return QN_S_OK;
    for (ClassData* row = classes; row->clsid; ++row) {
        const QNRESULT r = step(*row);
        if (QN_FAILED(r))
            return r;
    }
    return QN_S_OK;
}

} // namespace

Module::Module(ClassData* classes) : m_classes(classes), m_lock("qn::xcom::Module::m_lock") {}

Module::~Module() {
    if (!hasRows(m_classes))
        return;
    for (ClassData* row = m_classes; row->clsid; ++row) {
        if (IQNUnknown* object = row->classObject.exchange(nullptr))
            object->Release();
    }
}

QNRESULT Module::CanUnloadNow() {
    return GetRefCount() == 0 ? QN_S_OK : QN_S_FALSE;
}

QNRESULT Module::GetClassObject(const QNGUID& clsid, const QNGUID& iid, void** out) {
    if (!out)
        return QN_E_POINTER;
    *out = nullptr;
    if (!hasRows(m_classes))
        return QN_E_CLASSNOTAVAILABLE;
    QNRESULT r = QN_E_CLASSNOTAVAILABLE;
    for (ClassData* row = m_classes; row->clsid; ++row) {
        r = TryGetClassObject(clsid, iid, out, *row);
        if (QN_SUCCEEDED(r))
            break;
    }
    return r;
}

QNRESULT Module::TryGetClassObject(const QNGUID& clsid, const QNGUID& iid, void** out,
                                   ClassData& row) {
    if (!row.clsid || !isEqualGuid(*row.clsid, clsid))
        return QN_E_CLASSNOTAVAILABLE;
    IQNUnknown* object = row.classObject.load(std::memory_order_acquire);
    QNRESULT created = QN_S_OK;
    if (!object) {
        created = translateExceptions([&] {
            sync::LockGuard hold(m_lock);
            object = row.classObject.load(std::memory_order_relaxed);
            if (object)
                return QN_S_OK;
            void* made = nullptr;
            const QNRESULT r = row.createClassObject(this, row.parameter, IID_IQNUnknown, &made);
            object = static_cast<IQNUnknown*>(made);
            if (object)
                row.classObject.store(object, std::memory_order_release);
            return r;
        });
    }
    if (!object)
        return QN_FAILED(created) ? created : QN_E_CLASSNOTAVAILABLE;
    return object->QueryInterface(iid, out);
}

QNRESULT Module::RegisterServer(const void* instance) {
    QNWCHAR path[261];
    if (QN_FAILED(QNModuleGetFileNameW(instance, path, 261)))
        return QN_E_FAIL;
    return RegisterServer(reinterpret_cast<const char16_t*>(path));
}

QNRESULT Module::RegisterServer(const char16_t* path) {
    return forEachRow(m_classes, [&](ClassData& row) { return RegisterClassEntry(row, path); });
}

QNRESULT Module::UnregisterServer() {
    return forEachRow(m_classes, [&](ClassData& row) { return UnregisterClassEntry(row); });
}

QNRESULT Module::RegisterClassEntry(ClassData& row, const char16_t* path) {
    if (!path)
        return QN_E_POINTER;
    return translateExceptions([&] {
        std::u16string progId(row.progId ? row.progId : u"");
        if (progId.empty() && row.versionIndependentProgId && row.version)
            progId = std::u16string(row.versionIndependentProgId) + u"." + row.version;
        return QNComRegisterClass(row.clsid, wide(progId.c_str()),
                                  wide(row.versionIndependentProgId), wide(row.description),
                                  wide(path));
    });
}

QNRESULT Module::UnregisterClassEntry(ClassData& row) {
    return QNComUnregisterClass(row.clsid);
}

} // namespace qn::xcom
