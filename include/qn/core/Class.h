// Class: the run-time descriptor of a registered class: its name, its run-time type and the
// factory that creates an instance (null for abstract classes and interfaces). Descriptors are
// made by the class registry only.
#pragma once

#include "qn/core/Object.h"

#include <typeinfo>

namespace qn {

class QNCL_API Class : public Object {
public:
    using Factory = Object* (*)();

    ~Class() override;

    // The registered name; static text that outlives the descriptor.
    virtual const char16_t* getName() const;
    // True when the most derived type of object is exactly this class: an instance of a
    // subclass is not an instance of its base here.
    virtual bool isInstance(const Object& object) const;
    // A new instance from the factory; IllegalAccessException when the class has none.
    virtual Reference<Object> createInstance() const;

    const std::type_info& getType() const noexcept { return *m_type; }
    bool hasFactory() const noexcept { return m_factory != nullptr; }

    // Registry lookups; ClassNotFoundException when nothing is registered under the name (exact
    // case) or for the type.
    static const Class* forName(const char16_t* name);
    static const Class* forType(const std::type_info& type);

private:
    friend class ClassManagerBase;
    Class(const char16_t* name, const std::type_info* type, Factory factory) noexcept
        : m_name(name), m_type(type), m_factory(factory) {}

    const char16_t* m_name;
    const std::type_info* m_type;
    Factory m_factory;
};

} // namespace qn
