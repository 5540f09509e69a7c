#include "qn/collections/xcom/LinkedList.h"

#include "ListIterators.h"
#include "qn/core/Exception.h"

namespace qn::collections::xcom {

// Keeps the node before the cursor (the sentinel at index 0), so that elements appended with
// add(element) while it is open are still reached.
class LinkedList::NodeIterator final : public iteration::ListIteratorBase {
public:
    NodeIterator(const LinkedList& list, Node* before, int index)
        : m_list(const_cast<LinkedList*>(&list)), m_expected(list.getModificationCount()),
          m_before(before), m_cursor(index) {}

    bool hasNext() const override { return m_cursor < m_list->m_size; }
    bool hasPrevious() const override { return m_cursor > 0; }
    int nextIndex() const override { return m_cursor; }
    int previousIndex() const override { return m_cursor - 1; }

    Reference<IQNUnknown> next() override {
        check();
        if (m_cursor >= m_list->m_size)
            throw RangeErrorException();
        m_before = m_before->next;
        m_last = m_before;
        ++m_cursor;
        return Reference<IQNUnknown>(m_before->element);
    }

    Reference<IQNUnknown> previous() override {
        check();
        if (m_cursor <= 0)
            throw RangeErrorException();
        m_last = m_before;
        m_before = m_before->previous;
        --m_cursor;
        return Reference<IQNUnknown>(m_last->element);
    }

    void remove() override {
        check();
        if (!m_last)
            throw IllegalStateException();
        if (m_last == m_before) {
            m_before = m_before->previous;
            --m_cursor;
        }
        Reference<IQNUnknown> element;
        element.attach(m_list->unlink(m_last));
        m_list->modified();
        ++m_expected;
        m_last = nullptr;
    }

    void add(IQNUnknown* element) override {
        check();
        m_list->linkBefore(m_before->next, element);
        m_list->modified();
        m_before = m_before->next;
        ++m_cursor;
        ++m_expected;
        m_last = nullptr;
    }

    void set(IQNUnknown* element) override {
        check();
        if (!m_last)
            throw IllegalStateException();
        if (element)
            element->AddRef();
        IQNUnknown* old = m_last->element;
        m_last->element = element;
        if (old)
            old->Release();
        m_list->modified();
        ++m_expected;
    }

private:
    void check() const { iteration::checkModification(m_expected, m_list->getModificationCount()); }

    Reference<LinkedList> m_list;
    int32_t m_expected;
    Node* m_before;
    Node* m_last = nullptr;
    int m_cursor;
};

LinkedList::LinkedList() : m_sentinel{&m_sentinel, &m_sentinel, nullptr} {}

LinkedList::LinkedList(const IQNComparator* comparator)
    : AbstractList(comparator), m_sentinel{&m_sentinel, &m_sentinel, nullptr} {}

LinkedList::LinkedList(const Collection& elements) : LinkedList() {
    addAll(elements);
}

LinkedList::LinkedList(const Collection& elements, const IQNComparator* comparator)
    : LinkedList(comparator) {
    addAll(elements);
}

LinkedList::LinkedList(const LinkedList& other)
    : AbstractList(other), m_sentinel{&m_sentinel, &m_sentinel, nullptr} {
    try {
        for (Node* node = other.m_sentinel.next; node != &other.m_sentinel; node = node->next)
            linkBefore(&m_sentinel, node->element);
    } catch (...) {
        releaseAll();
        throw;
    }
}

LinkedList::~LinkedList() {
    releaseAll();
}

void LinkedList::releaseAll() noexcept {
    Node* node = m_sentinel.next;
    while (node != &m_sentinel) {
        Node* next = node->next;
        if (node->element)
            node->element->Release();
        delete node;
        node = next;
    }
    m_sentinel.next = m_sentinel.previous = &m_sentinel;
    m_size = 0;
}

Reference<Object> LinkedList::clone() const {
    return Reference<Object>(new LinkedList(*this));
}

LinkedList::Node* LinkedList::nodeAt(int index) const {
    Node* node = m_sentinel.next;
    while (index-- > 0)
        node = node->next;
    return node;
}

void LinkedList::linkBefore(Node* position, IQNUnknown* element) {
    Node* node = new Node{position, position->previous, element};
    if (element)
        element->AddRef();
    position->previous->next = node;
    position->previous = node;
    ++m_size;
}

IQNUnknown* LinkedList::unlink(Node* node) noexcept {
    node->previous->next = node->next;
    node->next->previous = node->previous;
    IQNUnknown* element = node->element;
    delete node;
    --m_size;
    return element;
}

bool LinkedList::add(IQNUnknown* element) {
    linkBefore(&m_sentinel, element);
    return true;
}

bool LinkedList::add(int index, IQNUnknown* element) {
    checkIndex(index, true);
    linkBefore(nodeAt(index), element);
    modified();
    return true;
}

void LinkedList::clear() {
    releaseAll();
    modified();
}

Reference<IQNUnknown> LinkedList::get(int index) const {
    checkIndex(index);
    return Reference<IQNUnknown>(nodeAt(index)->element);
}

Reference<IQNUnknown> LinkedList::remove(int index) {
    checkIndex(index);
    Reference<IQNUnknown> element;
    element.attach(unlink(nodeAt(index)));
    modified();
    return element;
}

Reference<IQNUnknown> LinkedList::set(int index, IQNUnknown* element) {
    checkIndex(index);
    Node* node = nodeAt(index);
    Reference<IQNUnknown> previous;
    previous.attach(node->element);
    if (element)
        element->AddRef();
    node->element = element;
    modified();
    return previous;
}

LinkedList::NodeIterator* LinkedList::newIterator(int index) const {
    checkIndex(index, true);
    Node* before = const_cast<Node*>(&m_sentinel);
    for (int i = 0; i < index; ++i)
        before = before->next;
    return new NodeIterator(*this, before, index);
}

Reference<Iterator> LinkedList::createIterator() {
    return Reference<Iterator>(newIterator(0));
}

Reference<ConstIterator> LinkedList::createConstIterator() const {
    return Reference<ConstIterator>(newIterator(0));
}

Reference<ListIterator> LinkedList::createListIterator(int index) {
    return Reference<ListIterator>(newIterator(index));
}

Reference<ConstListIterator> LinkedList::createConstListIterator(int index) const {
    return Reference<ConstListIterator>(newIterator(index));
}

} // namespace qn::collections::xcom
