#include "qn/core/Class.h"

#include "LibraryInternal.h"
#include "qn/core/ClassManagerBase.h"
#include "qn/core/Exception.h"
#include "qn/core/Library.h"
#include "qn/core/Singleton.h"
#include "qn/sync/LockObject.h"

#include <cxxabi.h>

#include <cstdlib>
#include <map>
#include <string>
#include <typeindex>

namespace qn {

namespace {

using Registry = Singleton<ClassManagerBase, g_pGlobalLock>;

struct NameLess {
    bool operator()(const char16_t* a, const char16_t* b) const {
        return QNStrCmpW(reinterpret_cast<const QNWCHAR*>(a), reinterpret_cast<const QNWCHAR*>(b)) <
               0;
    }
};

// The platform's printable name of a type ("qn::io::IoException").
String printableName(const std::type_info& type) {
    int status = 0;
    char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    const char* name = status == 0 && demangled ? demangled : type.name();
    std::u16string wide(static_cast<size_t>(QNUtf8ToWide(name, -1, nullptr, 0)), u'\0');
    QNUtf8ToWide(name, -1, reinterpret_cast<QNWCHAR*>(wide.data()),
                 static_cast<int32_t>(wide.size()));
    std::free(demangled);
    return String(wide.data(), static_cast<int32_t>(wide.size()));
}

} // namespace

struct ClassManagerBase::Data {
    std::map<const char16_t*, Class*, NameLess> byName;
    std::map<std::type_index, Class*> byType;
};

Class::~Class() = default;

const char16_t* Class::getName() const {
    return m_name;
}

bool Class::isInstance(const Object& object) const {
    return typeid(object) == *m_type;
}

Reference<Object> Class::createInstance() const {
    if (!m_factory)
        throw IllegalAccessException();
    return Reference<Object>(m_factory());
}

const Class* Class::forName(const char16_t* name) {
    return classRegistry().lookupName(name);
}

const Class* Class::forType(const std::type_info& type) {
    return classRegistry().lookupType(type);
}

ClassManagerBase::ClassManagerBase() : m_data(new Data) {}

ClassManagerBase::~ClassManagerBase() {
    for (auto& entry : m_data->byName)
        entry.second->Release();
    for (auto& entry : m_data->byType)
        entry.second->Release();
    delete m_data;
}

void ClassManagerBase::registerClass(const char16_t* name, const std::type_info& type,
                                     Class::Factory factory) {
    if (m_data->byName.count(name))
        return; // the first registration of a name wins
    Reference<Class> descriptor(new Class(name, &type, factory));
    m_data->byName.emplace(name, descriptor.get());
    descriptor->AddRef();
    if (m_data->byType.emplace(std::type_index(type), descriptor.get()).second)
        descriptor->AddRef();
}

const Class* ClassManagerBase::lookupName(const char16_t* name) const {
    auto found = m_data->byName.lower_bound(name);
    if (found == m_data->byName.end() || NameLess()(name, found->first))
        throw ClassNotFoundException(String(name));
    return found->second;
}

const Class* ClassManagerBase::lookupType(const std::type_info& type) const {
    auto found = m_data->byType.lower_bound(std::type_index(type));
    if (found == m_data->byType.end() || found->first != std::type_index(type))
        throw ClassNotFoundException(printableName(type));
    return found->second;
}

size_t ClassManagerBase::size() const noexcept {
    return m_data->byName.size();
}

void ClassManagerBase::forEachImpl(VisitFn visit, void* context) const {
    for (const auto& entry : m_data->byName)
        if (!visit(context, *entry.second))
            return;
}

ClassManagerBase& classRegistry() {
    return *Registry::getInstance();
}

void freeClassRegistry() {
    Registry::freeInstance();
}

} // namespace qn
