// AbstractMap: a Map built on createEntrySet (and put, which is refused until a subclass allows
// it). Look-ups walk the entry set, comparing keys with the key comparator and values with the
// value comparator. The key set and value collection are views that read and change the map.
#pragma once

#include "qn/collections/xcom/AbstractSet.h"
#include "qn/collections/xcom/Map.h"

namespace qn::collections::xcom {

class QNCL_API AbstractMap : public Object, public virtual Map {
public:
    ~AbstractMap() override;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    // Removes every entry through an entry-set iterator.
    void clear() override;
    bool containsKey(const IQNUnknown* key) const override;
    bool containsValue(const IQNUnknown* value) const override;
    Reference<Set> createKeySet() override;
    Reference<const Set> createKeySet() const override;
    Reference<Collection> createValueCollection() override;
    Reference<const Collection> createValueCollection() const override;
    Reference<IQNUnknown> get(const IQNUnknown* key) const override;
    // UnsupportedOperationException.
    Reference<IQNUnknown> put(IQNUnknown* key, IQNUnknown* value) override;
    void putAll(const Map& map) override;
    Reference<IQNUnknown> remove(const IQNUnknown* key) override;

    // 0 for this map itself; CastFailedException when other is not a Map; else compareToMap.
    int32_t compareTo(const Object& other) const override;
    // True for this map itself, false for anything but a Map, else compareToMap(other) == 0.
    bool equals(const Object& other) const override;
    // The sum of the entries' hashCode, wrapping in 32 bits.
    uint32_t hashCode() const override;
    // 0 exactly when both maps hold the same keys with equal values. Otherwise: the smaller map
    // orders first; between maps of one size, the first entry of this map (in its iteration
    // order) whose key the other lacks makes this map greater (1), and the first whose values
    // differ gives the value comparator's verdict on the two values.
    int32_t compareToMap(const Map& other) const;

    const IQNComparator* getKeyComparator() const noexcept { return m_keyComparator.get(); }
    const IQNComparator* getValueComparator() const noexcept { return m_valueComparator.get(); }
    int32_t getModificationCount() const noexcept { return m_modCount; }

    static const qn::xcom::InterfaceData* GetComIntfMap();

protected:
    enum ViewKind { VIEW_ENTRIES, VIEW_KEYS, VIEW_VALUES };

    // The default comparator for keys and values.
    AbstractMap();
    // Null means the default comparator.
    AbstractMap(const IQNComparator* keyComparator, const IQNComparator* valueComparator);
    // Shares other's comparators; the count starts at 0.
    AbstractMap(const AbstractMap& other);
    AbstractMap& operator=(const AbstractMap&) = delete;

    // An iterator that yields the entries, keys or values of the map; here the entry set's
    // iterator, mapped. Its remove removes the entry.
    virtual Reference<Iterator> createViewIterator(ViewKind kind) const;
    // True when entry is a MapEntry whose key is here with an equal value.
    virtual bool containsEntry(const IQNUnknown* entry) const;

    int compareKeys(const IQNUnknown* a, const IQNUnknown* b) const;
    int compareValues(const IQNUnknown* a, const IQNUnknown* b) const;
    uint32_t hashKey(const IQNUnknown* key) const;
    void modified() noexcept { ++m_modCount; }

private:
    template <class Base> friend class MapView;

    Reference<IQNComparator> m_keyComparator;
    Reference<IQNComparator> m_valueComparator;
    int32_t m_modCount = 0;
};

} // namespace qn::collections::xcom
