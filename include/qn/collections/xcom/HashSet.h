// HashSet: a Set whose elements are the keys of an inner HashMap (101 buckets, load 0.75), each
// mapped to one shared marker object. It inherits the map's behaviour: clear keeps the former
// size, iteration runs from the last bucket down, and the hashCode of every HashSet is 0.
#pragma once

#include "qn/collections/xcom/AbstractSet.h"
#include "qn/collections/xcom/HashMap.h"

namespace qn::collections::xcom {

class QNCL_API HashSet : public AbstractSet {
public:
    HashSet();
    // The element comparator, also the inner map's key comparator; null means the default.
    explicit HashSet(const IQNComparator* comparator);
    explicit HashSet(const Collection& elements);
    HashSet(const Collection& elements, const IQNComparator* comparator);
    // The same comparator and a copy of the inner map.
    HashSet(const HashSet& other);
    HashSet& operator=(const HashSet&) = delete;
    ~HashSet() override;

    // True when element was new.
    bool add(IQNUnknown* element) override;
    void clear() override;
    bool contains(const IQNUnknown* element) const override;
    Reference<Iterator> createIterator() override;
    Reference<ConstIterator> createConstIterator() const override;
    int getSize() const override { return m_map->getSize(); }
    bool remove(const IQNUnknown* element) override;

    // 0 for this set itself; CastFailedException when other is not a HashSet; otherwise the
    // inner maps compared (HashMap::compareToMap).
    int32_t compareTo(const Object& other) const override;
    // False for anything but a HashSet, else compareTo(other) == 0.
    bool equals(const Object& other) const override;
    // The inner map's, always 0.
    uint32_t hashCode() const override;

    Reference<Object> clone() const override;

private:
    Reference<HashMap> m_map;
};

} // namespace qn::collections::xcom
