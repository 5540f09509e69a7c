// The entry set, key set and value collection of a map: views that read and change the map.
// Internal to the library.
#pragma once

#include "qn/collections/xcom/AbstractMap.h"
#include "qn/core/Exception.h"

namespace qn::collections::xcom {

// Base is AbstractSet for entries and keys, AbstractCollection for values. Elements are told
// apart by the key comparator (entries and keys) or the value comparator (values).
template <class Base> class MapView final : public Base {
public:
    using ViewKind = AbstractMap::ViewKind;

    MapView(const AbstractMap& map, ViewKind kind)
        : Base(kind == AbstractMap::VIEW_VALUES ? map.getValueComparator()
                                                : map.getKeyComparator()),
          m_map(const_cast<AbstractMap*>(&map)), m_kind(kind) {}

    int getSize() const override { return m_map->getSize(); }
    Reference<Iterator> createIterator() override { return m_map->createViewIterator(m_kind); }
    Reference<ConstIterator> createConstIterator() const override {
        return m_map->createViewIterator(m_kind);
    }
    void clear() override { m_map->clear(); }

    bool contains(const IQNUnknown* element) const override {
        switch (m_kind) {
        case AbstractMap::VIEW_KEYS:
            return m_map->containsKey(element);
        case AbstractMap::VIEW_VALUES:
            return m_map->containsValue(element);
        default:
            return m_map->containsEntry(element);
        }
    }

    bool remove(const IQNUnknown* element) override {
        switch (m_kind) {
        case AbstractMap::VIEW_KEYS:
            if (!m_map->containsKey(element))
                return false;
            m_map->remove(element);
            return true;
        case AbstractMap::VIEW_VALUES:
            return Base::remove(element);
        default:
            if (!m_map->containsEntry(element))
                return false;
            m_map->remove(dynamic_cast<const MapEntry*>(element)->getKey().get());
            return true;
        }
    }

private:
    Reference<AbstractMap> m_map;
    ViewKind m_kind;
};

} // namespace qn::collections::xcom
