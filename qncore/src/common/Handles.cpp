#include "Internal.h"

#include <map>
#include <mutex>

struct QNHandleRecord {
    uint32_t magic;
    qncore::Kind kind;
    qncore::Shared* object;
};

namespace qncore {
namespace {

constexpr uint32_t LIVE = 0x514E484Cu;

std::mutex& tableLock() {
    static std::mutex lock;
    return lock;
}

// Names of live named objects; entries are removed when their object dies.
std::map<std::string, Shared*>& table() {
    static std::map<std::string, Shared*> names;
    return names;
}

} // namespace

QNRESULT NamedObjects::acquireImpl(const char* name, Kind kind, uint32_t flags, MakeFn make,
                                   void* context, Shared** out, bool* created) {
    *out = nullptr;
    *created = false;
    if (!name || !*name) {
        *out = make(context);
        *created = true;
        return QN_S_OK;
    }
    std::lock_guard<std::mutex> hold(tableLock());
    auto it = table().find(name);
    if (it != table().end()) {
        if (it->second->kind() != kind)
            return QN_E_HANDLE;
        if (flags & QN_SYNC_CREATE_NEW)
            return QN_E_ALREADYEXISTS;
        ++it->second->m_users;
        *out = it->second;
        return QN_S_OK;
    }
    Shared* object = make(context);
    try {
        object->m_name = name;
        table().emplace(object->m_name, object);
    } catch (...) {
        delete object;
        throw;
    }
    *out = object;
    *created = true;
    return QN_S_OK;
}

void NamedObjects::release(Shared* object) noexcept {
    if (!object)
        return;
    {
        std::lock_guard<std::mutex> hold(tableLock());
        if (--object->m_users > 0)
            return;
        if (!object->m_name.empty())
            table().erase(object->m_name);
    }
    delete object;
}

QNHANDLE makeHandle(Kind kind, Shared* object) {
    return new QNHandleRecord{LIVE, kind, object};
}

Shared* objectOf(QNHANDLE handle, Kind kind) noexcept {
    if (!handle || handle->magic != LIVE || handle->kind != kind)
        return nullptr;
    return handle->object;
}

void freeHandle(QNHANDLE handle) noexcept {
    if (!handle)
        return;
    handle->magic = 0;
    delete handle;
}

} // namespace qncore
