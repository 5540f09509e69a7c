// Object: the root of every class handed between components. A counted ComObject that also
// answers IQNComparable, with identity-based defaults for comparison, equality and hashing, and
// a run-time class descriptor found in the class registry.
#pragma once

#include "qn/core/ComObject.h"
#include "qn/core/Reference.h"

namespace qn {

class Class;
class String;

class QNCL_API Object : public ComObject, public IQNComparable {
public:
    Object() noexcept = default;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }
    ~Object() override;

    // Classes that can be copied override this; here it throws Exception with an empty message.
    virtual Reference<Object> clone() const;
    // Orders by address as unsigned numbers: 1 if this is greater, -1 if smaller, 0 for itself.
    virtual int32_t compareTo(const Object& other) const;
    // True only for the same object.
    virtual bool equals(const Object& other) const;
    // The descriptor of this object's most derived type; ClassNotFoundException when that type is
    // not registered.
    virtual const Class* getClass() const;
    // The object's address (its low 32 bits).
    virtual uint32_t hashCode() const;
    // The class name, "@", and the address in base 16; "Object" stands in for a name that cannot
    // be found.
    virtual String toString() const;

    // IQNComparable. CompareTo stores compareTo of another Object; for a foreign interface it
    // compares addresses in the reverse sense (1 when the other's address is greater), as
    // components have always relied on. Neither lets an exception escape.
    QNRESULT QN_STDCALL CompareTo(IQNUnknown* other, int32_t* result) override;
    QNRESULT QN_STDCALL HashCode(uint32_t* hash) override;

    static const xcom::InterfaceData* GetComIntfMap();

protected:
    // Value-like subclasses copy nothing of the base.
    explicit Object(const Object*) noexcept : ComObject(static_cast<const ComObject*>(nullptr)) {}
};

// Chaining entry for subclasses' maps: answers from Object's map, so IQNComparable stays
// reachable after the subclass's own entries.
QNCL_API QNRESULT chainToObjectMap(ComObject* object, const QNGUID& iid, void** out, uintptr_t);

} // namespace qn
