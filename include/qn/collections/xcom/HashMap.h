// HashMap: a Map by separate chaining. A key's bucket is its key-comparator hash modulo the
// number of buckets; each entry keeps that hash, so look-ups call Compare only on entries whose
// hash matches and growing never hashes a key again. The table starts at 101 buckets and, when
// an insertion finds size >= capacity * load factor, grows to 2n + 1 buckets.
//
// Deliberate behaviour to know about:
//  - put of a key already present replaces the value and keeps the first key object; it changes
//    neither the size nor the modification count.
//  - clear empties the buckets but keeps the size and the modification count: getSize() still
//    reports the former count afterwards, later puts count on from it, and iterators opened
//    before clear stay valid. Use a new map to start from nothing.
//  - Entries compare 0 with anything, equal anything and hash 0, so the hashCode of every
//    HashMap is 0.
//  - Iteration runs from the last bucket down to bucket 0 and, inside a bucket, from the most
//    recently inserted key.
//  - A capacity below 1 is taken as 1, and a load factor not above 0 as 0.75.
#pragma once

#include "qn/collections/xcom/AbstractMap.h"

#include <vector>

namespace qn::collections::xcom {

class HashMapEntry;

class QNCL_API HashMap : public AbstractMap {
public:
    static const int32_t DEFAULT_CAPACITY;
    static const float DEFAULT_LOAD;

    explicit HashMap(int capacity = 101, float load = 0.75f);
    // Null comparators mean the default one.
    HashMap(const IQNComparator* keyComparator, const IQNComparator* valueComparator,
            int capacity = 101, float load = 0.75f);
    // calcCapacity(map.getSize()) buckets, then putAll(map); the default comparators.
    explicit HashMap(const Map& map, float load = 0.75f);
    HashMap(const Map& map, const IQNComparator* keyComparator,
            const IQNComparator* valueComparator, float load = 0.75f);
    // The same comparators, capacity, size and chains, with new entries.
    HashMap(const HashMap& other);
    HashMap& operator=(const HashMap&) = delete;
    ~HashMap() override;

    // 11 for n <= 5, else 2n.
    static int calcCapacity(int n) noexcept { return n <= 5 ? 11 : 2 * n; }

    void clear() override;
    bool containsKey(const IQNUnknown* key) const override;
    bool containsValue(const IQNUnknown* value) const override;
    Reference<Set> createEntrySet() override;
    Reference<const Set> createEntrySet() const override;
    Reference<IQNUnknown> get(const IQNUnknown* key) const override;
    int getSize() const override { return m_size; }
    Reference<IQNUnknown> put(IQNUnknown* key, IQNUnknown* value) override;
    Reference<IQNUnknown> remove(const IQNUnknown* key) override;

    Reference<Object> clone() const override;

    int getCapacity() const noexcept { return m_capacity; }
    int getThreshold() const noexcept { return m_threshold; }
    float getLoadFactor() const noexcept { return m_loadFactor; }

protected:
    Reference<Iterator> createViewIterator(ViewKind kind) const override;
    bool containsEntry(const IQNUnknown* entry) const override;

    // n empty buckets; threshold = truncate(n * load factor). The size is not touched.
    void allocTable(int n);
    // 2n + 1 buckets, the entries pushed onto them by their stored hashes from the last old
    // bucket down.
    void rehash();
    uint32_t getKeyHashCode(const IQNUnknown* key) const { return hashKey(key); }
    uint32_t getValueHashCode(const IQNUnknown* value) const;
    bool keysEqual(const IQNUnknown* a, const IQNUnknown* b) const {
        return compareKeys(a, b) == 0;
    }
    bool valuesEqual(const IQNUnknown* a, const IQNUnknown* b) const {
        return compareValues(a, b) == 0;
    }
    // Unlinks entry (after previous, or as the head of bucket) and counts the change.
    void removeEntry(HashMapEntry* entry, HashMapEntry* previous, uint32_t bucket);

private:
    class EntryIterator;
    friend class EntryIterator;

    uint32_t bucketOf(uint32_t hash) const noexcept {
        return hash % static_cast<uint32_t>(m_capacity);
    }
    // The entry for key (whose hash is given) and its predecessor in the chain, or null.
    HashMapEntry* find(const IQNUnknown* key, uint32_t hash, HashMapEntry** previous) const;

    float m_loadFactor;
    int32_t m_size = 0;
    int32_t m_capacity = 0;
    int32_t m_threshold = 0;
    std::vector<Reference<HashMapEntry>> m_table;
};

} // namespace qn::collections::xcom
