// AbstractCollection: a Collection built on createIterator, createConstIterator and getSize.
// Everything else walks the elements: add is refused (UnsupportedOperationException) until a
// subclass allows it, and elements are told apart by the collection's comparator. Comparison,
// equality and hashing are Object's (identity).
#pragma once

#include "qn/collections/xcom/Collection.h"
#include "qn/collections/xcom/IQNComparator.h"
#include "qn/core/Object.h"

namespace qn::collections::xcom {

class QNCL_API AbstractCollection : public Object, public virtual Collection {
public:
    ~AbstractCollection() override;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    bool add(IQNUnknown* element) override;
    // Adds the elements of a snapshot of elements, so a collection may add itself.
    bool addAll(const Collection& elements) override;
    // Removes every element through an iterator.
    void clear() override;
    int32_t compareTo(const Object& other) const override;
    bool contains(const IQNUnknown* element) const override;
    bool containsAll(const Collection& elements) const override;
    bool equals(const Object& other) const override;
    uint32_t hashCode() const override;
    // Removes the first element that compares 0 with element.
    bool remove(const IQNUnknown* element) override;
    // One remove per element of elements: an element held twice here and once there loses one
    // occurrence only.
    bool removeAll(const Collection& elements) override;
    // Removes, through an iterator, every element that elements does not contain.
    bool retainAll(const Collection& elements) override;

    const IQNComparator* getComparator() const noexcept { return m_comparator.get(); }

    static const qn::xcom::InterfaceData* GetComIntfMap();

protected:
    // The default comparator.
    AbstractCollection();
    // Takes a reference to comparator; null means the default comparator.
    explicit AbstractCollection(const IQNComparator* comparator);
    // Shares other's comparator.
    AbstractCollection(const AbstractCollection& other);
    AbstractCollection& operator=(const AbstractCollection&) = delete;

    // The comparator's verdicts; a failure status is thrown as ResultException.
    int compareElements(const IQNUnknown* a, const IQNUnknown* b) const;
    uint32_t hashElement(const IQNUnknown* element) const;

private:
    Reference<IQNComparator> m_comparator;
};

// QueryInterface for an interface that a class reaches by dynamic cast (the collection
// interfaces are virtual bases, so their offsets are not fixed).
template <class Interface>
QNRESULT castInterface(ComObject* object, const QNGUID&, void** out, uintptr_t) {
    Interface* answer = dynamic_cast<Interface*>(object);
    if (!answer)
        return QN_E_NOINTERFACE;
    answer->AddRef();
    *out = answer;
    return QN_S_OK;
}

} // namespace qn::collections::xcom
