// AbstractList: a List built on five primitives that a concrete list supplies (add at an
// index, get, set, remove at an index, getSize). It adds appending, searching, ordering,
// hashing, sub-list views and one list iterator for all four iterator interfaces.
//
// The modification count rises with every structural change a concrete list makes (set
// included, appending with add(element) excluded); an iterator remembers it and fails with a
// plain Exception once the list has changed other than through that iterator (its own add,
// remove and set keep it valid).
#pragma once

#include "qn/collections/xcom/AbstractCollection.h"

namespace qn::collections::xcom {

class QNCL_API AbstractList : public AbstractCollection, public virtual List {
public:
    ~AbstractList() override;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;

    // Appends: add(getSize(), element).
    bool add(IQNUnknown* element) override;
    bool add(int index, IQNUnknown* element) override = 0;
    bool addAll(const Collection& elements) override;
    // Inserts a snapshot of elements at index, index + 1, ...; RangeErrorException before any
    // change unless 0 <= index <= getSize().
    bool addAll(int index, const Collection& elements) override;
    bool remove(const IQNUnknown* element) override;
    Reference<IQNUnknown> remove(int index) override = 0;

    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    // RangeErrorException unless 0 <= index <= getSize().
    Reference<ListIterator> createListIterator(int index) override;
    Reference<ConstListIterator> createConstListIterator(int index) const override;
    // The view checks its range against the list on every use: once the list has changed other
    // than through the view (appending with add(element) excepted), any use of the view fails
    // with a plain Exception.
    Reference<List> createSubList(int from, int to) override;
    Reference<const List> createSubList(int from, int to) const override;
    int indexOf(const IQNUnknown* element) const override;
    int lastIndexOf(const IQNUnknown* element) const override;

    // 0 for this list itself; CastFailedException when other is not a List; else compareToList.
    int32_t compareTo(const Object& other) const override;
    // True for this list itself, false for anything but a List of the same size, else
    // compareToList(other) == 0.
    bool equals(const Object& other) const override;
    // h = 1, then h = h * 38 + hash(element) for each element in order, wrapping in 32 bits.
    uint32_t hashCode() const override;
    // Walks both lists in step: the first comparison that is not 0, else 1 when this list is
    // longer, -1 when it is shorter, 0 when both end together.
    int32_t compareToList(const List& other) const;

    int32_t getModificationCount() const noexcept { return m_modCount; }

    static const qn::xcom::InterfaceData* GetComIntfMap();

protected:
    AbstractList() = default;
    explicit AbstractList(const IQNComparator* comparator) : AbstractCollection(comparator) {}
    // Shares other's comparator; the count starts at 0.
    AbstractList(const AbstractList& other) : AbstractCollection(other) {}

    void modified() noexcept { ++m_modCount; }
    // RangeErrorException unless 0 <= index < getSize() (or <= getSize() when inserting).
    void checkIndex(int index, bool inserting = false) const;

private:
    int32_t m_modCount = 0;
};

} // namespace qn::collections::xcom
