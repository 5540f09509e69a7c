// ClassManagerBase: the process-wide class registry. Descriptors are found by name (ordinal,
// case-sensitive order) and by run-time type. The first registration of a name wins; later
// ones are ignored. Registration happens at library load, before other threads use it, so
// neither registration nor lookup takes a lock.
#pragma once

#include "qn/core/Class.h"

namespace qn {

class QNCL_API ClassManagerBase {
public:
    ClassManagerBase();
    ~ClassManagerBase();
    ClassManagerBase(const ClassManagerBase&) = delete;
    ClassManagerBase& operator=(const ClassManagerBase&) = delete;

    // name must outlive the registry (static text).
    void registerClass(const char16_t* name, const std::type_info& type, Class::Factory factory);
    const Class* lookupName(const char16_t* name) const;
    const Class* lookupType(const std::type_info& type) const;
    size_t size() const noexcept;
    // Calls visit for every descriptor in name order until it returns false.
    template <class Visit> void forEach(Visit visit) const {
        forEachImpl(&invokeVisit<Visit>, &visit);
    }

private:
    using VisitFn = bool (*)(void*, const Class&);
    template <class Visit> static bool invokeVisit(void* visit, const Class& c) {
        return (*static_cast<Visit*>(visit))(c);
    }
    void forEachImpl(VisitFn visit, void* context) const;

    struct Data;
    Data* m_data;
};

// The registry of this process (created on first use under the global lock).
QNCL_API ClassManagerBase& classRegistry();

} // namespace qn
