#include "qn/collections/xcom/HashSet.h"

#include "qn/core/Exception.h"

namespace qn::collections::xcom {

namespace {

// The value every set maps its elements to: one plain Object for the whole process.
IQNUnknown* marker() {
    static const Reference<Object> object(new Object());
    return object->GetUnknown();
}

} // namespace

HashSet::HashSet() : m_map(new HashMap(getComparator(), nullptr)) {}

HashSet::HashSet(const IQNComparator* comparator)
    : AbstractSet(comparator), m_map(new HashMap(getComparator(), nullptr)) {}

HashSet::HashSet(const Collection& elements) : HashSet() {
    addAll(elements);
}

HashSet::HashSet(const Collection& elements, const IQNComparator* comparator)
    : HashSet(comparator) {
    addAll(elements);
}

HashSet::HashSet(const HashSet& other) : AbstractSet(other), m_map(new HashMap(*other.m_map)) {}

HashSet::~HashSet() = default;

Reference<Object> HashSet::clone() const {
    return Reference<Object>(new HashSet(*this));
}

bool HashSet::add(IQNUnknown* element) {
    return !m_map->put(element, marker());
}

void HashSet::clear() {
    m_map->clear();
}

bool HashSet::contains(const IQNUnknown* element) const {
    return m_map->containsKey(element);
}

Reference<Iterator> HashSet::createIterator() {
    return m_map->createKeySet()->createIterator();
}

Reference<ConstIterator> HashSet::createConstIterator() const {
    return m_map->createKeySet()->createConstIterator();
}

bool HashSet::remove(const IQNUnknown* element) {
    return static_cast<bool>(m_map->remove(element));
}

int32_t HashSet::compareTo(const Object& other) const {
    if (&other == this)
        return 0;
    const auto* set = dynamic_cast<const HashSet*>(&other);
    if (!set)
        throw CastFailedException();
    return m_map->compareTo(*set->m_map);
}

bool HashSet::equals(const Object& other) const {
    if (&other == this)
        return true;
    const auto* set = dynamic_cast<const HashSet*>(&other);
    return set && m_map->compareTo(*set->m_map) == 0;
}

uint32_t HashSet::hashCode() const {
    return m_map->hashCode();
}

} // namespace qn::collections::xcom
