#include "qn/collections/xcom/AbstractCollection.h"

#include "Compare.h"
#include "qn/collections/CQNCollections.h"
#include "qn/collections/xcom/AbstractSet.h"

#include <vector>

namespace qn::collections {

Reference<xcom::IQNComparator> detail::comparatorOrDefault(const xcom::IQNComparator* comparator) {
    if (comparator)
        return Reference<xcom::IQNComparator>(const_cast<xcom::IQNComparator*>(comparator));
    return GetDefaultComparator();
}

namespace xcom {

namespace {

// New references to the elements of a collection, in iteration order: what the bulk operations
// walk, so that a collection may be their own argument.
std::vector<Reference<IQNUnknown>> snapshot(const Collection& elements) {
    std::vector<Reference<IQNUnknown>> result;
    result.reserve(static_cast<size_t>(elements.getSize()));
    for (Reference<ConstIterator> it = elements.createConstIterator(); it->hasNext();)
        result.push_back(it->next());
    return result;
}

} // namespace

AbstractCollection::AbstractCollection() : m_comparator(GetDefaultComparator()) {}

AbstractCollection::AbstractCollection(const IQNComparator* comparator)
    : m_comparator(detail::comparatorOrDefault(comparator)) {}

AbstractCollection::AbstractCollection(const AbstractCollection& other)
    : Collection(), Object(), m_comparator(other.m_comparator) {}

AbstractCollection::~AbstractCollection() = default;

const qn::xcom::InterfaceData* AbstractCollection::GetComIntfMap() {
    static const qn::xcom::InterfaceData map[] = {
        {&IID_Collection, qn::xcom::handler(&castInterface<Collection>), 0},
        {nullptr, qn::xcom::handler(&chainToObjectMap), 0},
        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL AbstractCollection::QueryInterface(const QNGUID& iid, void** out) {
    return qn::xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

int AbstractCollection::compareElements(const IQNUnknown* a, const IQNUnknown* b) const {
    return detail::compare(m_comparator.get(), a, b);
}

uint32_t AbstractCollection::hashElement(const IQNUnknown* element) const {
    return detail::hash(m_comparator.get(), element);
}

bool AbstractCollection::add(IQNUnknown*) {
    throw UnsupportedOperationException();
}

bool AbstractCollection::addAll(const Collection& elements) {
    bool changed = false;
    for (const Reference<IQNUnknown>& element : snapshot(elements)) {
        if (add(element.get()))
            changed = true;
    }
    return changed;
}

void AbstractCollection::clear() {
    for (Reference<Iterator> it = createIterator(); it->hasNext();) {
        it->next();
        it->remove();
    }
}

int32_t AbstractCollection::compareTo(const Object& other) const {
    return Object::compareTo(other);
}

bool AbstractCollection::contains(const IQNUnknown* element) const {
    for (Reference<ConstIterator> it = createConstIterator(); it->hasNext();) {
        if (compareElements(it->next().get(), element) == 0)
            return true;
    }
    return false;
}

bool AbstractCollection::containsAll(const Collection& elements) const {
    for (Reference<ConstIterator> it = elements.createConstIterator(); it->hasNext();) {
        if (!contains(it->next().get()))
            return false;
    }
    return true;
}

bool AbstractCollection::equals(const Object& other) const {
    return Object::equals(other);
}

uint32_t AbstractCollection::hashCode() const {
    return Object::hashCode();
}

bool AbstractCollection::remove(const IQNUnknown* element) {
    for (Reference<Iterator> it = createIterator(); it->hasNext();) {
        if (compareElements(it->next().get(), element) == 0) {
            it->remove();
            return true;
        }
    }
    return false;
}

bool AbstractCollection::removeAll(const Collection& elements) {
    bool changed = false;
    for (const Reference<IQNUnknown>& element : snapshot(elements)) {
        if (remove(element.get()))
            changed = true;
    }
    return changed;
}

bool AbstractCollection::retainAll(const Collection& elements) {
    // Through the iterator, so the walk survives its own removals.
    bool changed = false;
    for (Reference<Iterator> it = createIterator(); it->hasNext();) {
        if (!elements.contains(it->next().get())) {
            it->remove();
            changed = true;
        }
    }
    return changed;
}

AbstractSet::~AbstractSet() = default;

const qn::xcom::InterfaceData* AbstractSet::GetComIntfMap() {
    static const qn::xcom::InterfaceData map[] = {
        {&IID_Set, qn::xcom::handler(&castInterface<Set>), 0},
        {&IID_Collection, qn::xcom::handler(&castInterface<Collection>), 0},
        {nullptr, qn::xcom::handler(&chainToObjectMap), 0},
        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL AbstractSet::QueryInterface(const QNGUID& iid, void** out) {
    return qn::xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

} // namespace xcom
} // namespace qn::collections
