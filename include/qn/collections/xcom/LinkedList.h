// LinkedList: a List over a doubly linked ring of nodes with one sentinel (an empty list is the
// sentinel linked to itself). Appending takes constant time; get, set, add and remove at an
// index walk forward from the first node, index steps, even near the end.
//
// Its iterators follow the nodes instead of walking from the front for each element, with the
// positions and failures of every list iterator. Appending with add(element) leaves the
// modification count alone; add(index, element), set and remove(index) count one change each,
// clear counts one.
#pragma once

#include "qn/collections/xcom/AbstractList.h"

namespace qn::collections::xcom {

class QNCL_API LinkedList : public AbstractList {
public:
    LinkedList();
    // Null means the default comparator.
    explicit LinkedList(const IQNComparator* comparator);
    explicit LinkedList(const Collection& elements);
    LinkedList(const Collection& elements, const IQNComparator* comparator);
    // The same comparator and new references to the same elements.
    LinkedList(const LinkedList& other);
    LinkedList& operator=(const LinkedList&) = delete;
    ~LinkedList() override;

    using AbstractList::addAll;
    using AbstractList::remove;
    bool add(IQNUnknown* element) override;
    bool add(int index, IQNUnknown* element) override;
    void clear() override;
    Reference<IQNUnknown> get(int index) const override;
    int getSize() const override { return m_size; }
    Reference<IQNUnknown> remove(int index) override;
    Reference<IQNUnknown> set(int index, IQNUnknown* element) override;

    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    Reference<ListIterator> createListIterator(int index) override;
    Reference<ConstListIterator> createConstListIterator(int index) const override;

    Reference<Object> clone() const override;

private:
    struct Node {
        Node* next;
        Node* previous;
        IQNUnknown* element;
    };
    class NodeIterator;

    // The node at index, index steps from the first.
    Node* nodeAt(int index) const;
    // Links a new node holding a new reference to element before position.
    void linkBefore(Node* position, IQNUnknown* element);
    // Unlinks and frees node, handing its element reference to the caller.
    IQNUnknown* unlink(Node* node) noexcept;
    NodeIterator* newIterator(int index) const;
    // Frees every node and releases its element; the count is not touched.
    void releaseAll() noexcept;

    Node m_sentinel;
    int32_t m_size = 0;
};

} // namespace qn::collections::xcom
