#include "qn/collections/xcom/AbstractList.h"

#include "ListIterators.h"
#include "qn/core/Exception.h"

#include <vector>

namespace qn::collections::xcom {

namespace iteration {

const qn::xcom::InterfaceData* listIteratorMap() {
    static const qn::xcom::InterfaceData map[] = {
        {&IID_ListIterator, qn::xcom::handler(&castInterface<ListIterator>), 0},
        {&IID_ConstListIterator, qn::xcom::handler(&castInterface<ConstListIterator>), 0},
        {&IID_Iterator, qn::xcom::handler(&castInterface<Iterator>), 0},
        {&IID_ConstIterator, qn::xcom::handler(&castInterface<ConstIterator>), 0},
        {nullptr, 0, 0}};
    return map;
}

} // namespace iteration

namespace {

// A cursor over a list by index, through the list's primitives.
class IndexIterator final : public iteration::ListIteratorBase {
public:
    IndexIterator(const AbstractList& list, int index)
        : m_list(const_cast<AbstractList*>(&list)), m_expected(list.getModificationCount()),
          m_cursor(index) {}

    bool hasNext() const override { return m_cursor < m_list->getSize(); }
    bool hasPrevious() const override { return m_cursor > 0; }
    int nextIndex() const override { return m_cursor; }
    int previousIndex() const override { return m_cursor - 1; }

    Reference<IQNUnknown> next() override {
        check();
        Reference<IQNUnknown> element = m_list->get(m_cursor);
        m_last = m_cursor++;
        return element;
    }

    Reference<IQNUnknown> previous() override {
        check();
        Reference<IQNUnknown> element = m_list->get(m_cursor - 1);
        m_last = --m_cursor;
        return element;
    }

    void remove() override {
        check();
        if (m_last < 0)
            throw IllegalStateException();
        m_list->remove(m_last);
        if (m_cursor > m_last)
            --m_cursor;
        ++m_expected;
        m_last = -1;
    }

    void add(IQNUnknown* element) override {
        check();
        if (m_list->add(m_cursor, element)) {
            ++m_cursor;
            ++m_expected;
        }
        m_last = -1;
    }

    void set(IQNUnknown* element) override {
        check();
        if (m_last < 0)
            throw IllegalStateException();
        m_list->set(m_last, element);
        // The list counts set as a change; this iterator made it.
        m_expected = m_list->getModificationCount();
    }

private:
    void check() const { iteration::checkModification(m_expected, m_list->getModificationCount()); }

    Reference<AbstractList> m_list;
    int32_t m_expected;
    int m_cursor;
    int m_last = -1;
};

// A range of a backing list, read and changed through it with the offset added.
class SubList final : public AbstractList {
public:
    SubList(const AbstractList& backing, int from, int to)
        : AbstractList(backing.getComparator()), m_backing(const_cast<AbstractList*>(&backing)),
          m_offset(from), m_size(to - from), m_expected(backing.getModificationCount()) {}

    using AbstractList::addAll;
    using AbstractList::remove;

    bool add(int index, IQNUnknown* element) override {
        checkIndex(index, true);
        const bool added = m_backing->add(m_offset + index, element);
        if (added)
            ++m_size;
        changed();
        return added;
    }

    Reference<IQNUnknown> get(int index) const override {
        checkIndex(index);
        return m_backing->get(m_offset + index);
    }

    Reference<IQNUnknown> set(int index, IQNUnknown* element) override {
        checkIndex(index);
        Reference<IQNUnknown> previous = m_backing->set(m_offset + index, element);
        changed();
        return previous;
    }

    Reference<IQNUnknown> remove(int index) override {
        checkIndex(index);
        Reference<IQNUnknown> element = m_backing->remove(m_offset + index);
        --m_size;
        changed();
        return element;
    }

    int getSize() const override {
        iteration::checkModification(m_expected, m_backing->getModificationCount());
        return m_size;
    }

private:
    void changed() {
        m_expected = m_backing->getModificationCount();
        modified();
    }

    Reference<AbstractList> m_backing;
    int m_offset;
    int m_size;
    int32_t m_expected;
};

} // namespace

AbstractList::~AbstractList() = default;

const qn::xcom::InterfaceData* AbstractList::GetComIntfMap() {
    static const qn::xcom::InterfaceData map[] = {
        {&IID_List, qn::xcom::handler(&castInterface<List>), 0},
        {&IID_Collection, qn::xcom::handler(&castInterface<Collection>), 0},
        {nullptr, qn::xcom::handler(&chainToObjectMap), 0},
        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL AbstractList::QueryInterface(const QNGUID& iid, void** out) {
    return qn::xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

void AbstractList::checkIndex(int index, bool inserting) const {
    const int size = getSize();
    if (index < 0 || (inserting ? index > size : index >= size))
        throw RangeErrorException();
}

bool AbstractList::add(IQNUnknown* element) {
    return add(getSize(), element);
}

bool AbstractList::addAll(const Collection& elements) {
    return AbstractCollection::addAll(elements);
}

bool AbstractList::addAll(int index, const Collection& elements) {
    checkIndex(index, true);
    std::vector<Reference<IQNUnknown>> items;
    items.reserve(static_cast<size_t>(elements.getSize()));
    for (Reference<ConstIterator> it = elements.createConstIterator(); it->hasNext();)
        items.push_back(it->next());
    bool changed = false;
    for (const Reference<IQNUnknown>& item : items) {
        if (add(index, item.get())) {
            ++index;
            changed = true;
        }
    }
    return changed;
}

bool AbstractList::remove(const IQNUnknown* element) {
    return AbstractCollection::remove(element);
}

Reference<Iterator> AbstractList::createIterator() {
    return Reference<Iterator>(new IndexIterator(*this, 0));
}

Reference<ConstIterator> AbstractList::createConstIterator() const {
    return Reference<ConstIterator>(new IndexIterator(*this, 0));
}

Reference<ListIterator> AbstractList::createListIterator(int index) {
    checkIndex(index, true);
    return Reference<ListIterator>(new IndexIterator(*this, index));
}

Reference<ConstListIterator> AbstractList::createConstListIterator(int index) const {
    checkIndex(index, true);
    return Reference<ConstListIterator>(new IndexIterator(*this, index));
}

Reference<List> AbstractList::createSubList(int from, int to) {
    if (from < 0 || from > to || to > getSize())
        throw RangeErrorException();
    return Reference<List>(new SubList(*this, from, to));
}

Reference<const List> AbstractList::createSubList(int from, int to) const {
    return const_cast<AbstractList*>(this)->createSubList(from, to);
}

int AbstractList::indexOf(const IQNUnknown* element) const {
    int index = 0;
    for (Reference<ConstIterator> it = createConstIterator(); it->hasNext(); ++index) {
        if (compareElements(it->next().get(), element) == 0)
            return index;
    }
    return -1;
}

int AbstractList::lastIndexOf(const IQNUnknown* element) const {
    for (Reference<ConstListIterator> it = createConstListIterator(getSize()); it->hasPrevious();) {
        if (compareElements(it->previous().get(), element) == 0)
            return it->nextIndex();
    }
    return -1;
}

int32_t AbstractList::compareToList(const List& other) const {
    Reference<ConstIterator> mine = createConstIterator();
    Reference<ConstIterator> theirs = other.createConstIterator();
    while (mine->hasNext() && theirs->hasNext()) {
        const Reference<IQNUnknown> a = mine->next();
        const Reference<IQNUnknown> b = theirs->next();
        const int order = compareElements(a.get(), b.get());
        if (order != 0)
            return order;
    }
    if (mine->hasNext())
        return 1;
    return theirs->hasNext() ? -1 : 0;
}

int32_t AbstractList::compareTo(const Object& other) const {
    if (&other == this)
        return 0;
    const auto* list = dynamic_cast<const List*>(&other);
    if (!list)
        throw CastFailedException();
    return compareToList(*list);
}

bool AbstractList::equals(const Object& other) const {
    if (&other == this)
        return true;
    const auto* list = dynamic_cast<const List*>(&other);
    if (!list || list->getSize() != getSize())
        return false;
    return compareToList(*list) == 0;
}

uint32_t AbstractList::hashCode() const {
    uint32_t h = 1;
    for (Reference<ConstIterator> it = createConstIterator(); it->hasNext();)
        h = h * 38u + hashElement(it->next().get());
    return h;
}

} // namespace qn::collections::xcom
