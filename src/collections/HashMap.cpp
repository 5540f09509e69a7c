#include "qn/collections/xcom/HashMap.h"

#include "Compare.h"
#include "MapView.h"
#include "qn/core/Exception.h"

#include <utility>

namespace qn::collections::xcom {

const int32_t HashMap::DEFAULT_CAPACITY = 101;
const float HashMap::DEFAULT_LOAD = 0.75f;

// One key with its value, its stored hash and the next entry of its chain. Entries compare 0
// with anything, equal anything and hash 0.
class HashMapEntry final : public ComObject, public MapEntry {
public:
    HashMapEntry(IQNUnknown* key, IQNUnknown* value, uint32_t hash,
                 Reference<HashMapEntry> next) noexcept
        : m_key(key), m_value(value), m_hash(hash), m_next(std::move(next)) {}

    // Releases the rest of the chain one entry at a time, so a long chain cannot exhaust the
    // stack.
    ~HashMapEntry() override {
        HashMapEntry* next = m_next.detach();
        while (next && next->GetRefCount() == 1) {
            HashMapEntry* after = next->m_next.detach();
            next->Release();
            next = after;
        }
        if (next)
            next->Release();
    }

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        static const qn::xcom::InterfaceData map[] = {
            {&IID_MapEntry, qn::xcom::handler(&castInterface<MapEntry>), 0}, {nullptr, 0, 0}};
        return qn::xcom::QueryInterfaceMap(map, this, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    int32_t compareTo(const Object&) const override { return 0; }
    bool equals(const Object&) const override { return true; }
    uint32_t hashCode() const override { return 0; }
    Reference<IQNUnknown> getKey() const override { return m_key; }
    Reference<IQNUnknown> getValue() const override { return m_value; }
    Reference<IQNUnknown> setValue(IQNUnknown* value) override {
        Reference<IQNUnknown> previous(std::move(m_value));
        m_value = value;
        return previous;
    }

    IQNUnknown* key() const noexcept { return m_key.get(); }
    IQNUnknown* value() const noexcept { return m_value.get(); }
    // The entry's own reference to itself as the element an iterator yields.
    IQNUnknown* asElement() noexcept { return static_cast<MapEntry*>(this); }

    Reference<IQNUnknown> m_key;
    Reference<IQNUnknown> m_value;
    const uint32_t m_hash;
    Reference<HashMapEntry> m_next;
};

// Walks the buckets from the last down, each chain from its head. hasNext finds the next entry
// ahead of time, so the entry it found stays reachable even when the map changes meanwhile.
class HashMap::EntryIterator final : public ComObject, public Iterator {
public:
    EntryIterator(const HashMap& map, ViewKind kind)
        : m_map(const_cast<HashMap*>(&map)), m_expected(map.getModificationCount()), m_kind(kind),
          m_bucket(map.m_capacity) {}

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        static const qn::xcom::InterfaceData map[] = {
            {&IID_Iterator, qn::xcom::handler(&castInterface<Iterator>), 0},
            {&IID_ConstIterator, qn::xcom::handler(&castInterface<ConstIterator>), 0},
            {nullptr, 0, 0}};
        return qn::xcom::QueryInterfaceMap(map, this, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    bool hasNext() const override {
        if (m_current)
            return true;
        const std::vector<Reference<HashMapEntry>>& table = m_map->m_table;
        while (m_bucket >= 1) {
            --m_bucket;
            if (static_cast<size_t>(m_bucket) < table.size() && table[m_bucket]) {
                m_current = table[m_bucket];
                return true;
            }
        }
        return false;
    }

    Reference<IQNUnknown> next() override {
        if (m_expected != m_map->getModificationCount())
            throw Exception();
        if (!hasNext())
            throw RangeErrorException();
        m_last = std::move(m_current);
        m_current = m_last->m_next;
        switch (m_kind) {
        case VIEW_KEYS:
            return m_last->m_key;
        case VIEW_VALUES:
            return m_last->m_value;
        default:
            return Reference<IQNUnknown>(m_last->asElement());
        }
    }

    void remove() override {
        if (m_expected != m_map->getModificationCount())
            throw Exception();
        if (!m_last)
            throw IllegalStateException();
        const uint32_t bucket = m_map->bucketOf(m_last->m_hash);
        HashMapEntry* previous = nullptr;
        HashMapEntry* entry = m_map->m_table[bucket].get();
        while (entry && entry != m_last.get()) {
            previous = entry;
            entry = entry->m_next.get();
        }
        // Absent when the map was cleared since: nothing left to unlink.
        if (entry) {
            m_map->removeEntry(entry, previous, bucket);
            ++m_expected;
        }
        m_last = nullptr;
    }

private:
    Reference<HashMap> m_map;
    int32_t m_expected;
    ViewKind m_kind;
    mutable int32_t m_bucket;
    mutable Reference<HashMapEntry> m_current;
    Reference<HashMapEntry> m_last;
};

namespace {

// A load factor that is not above 0 (or NaN) would grow the table on every insertion.
float usableLoad(float load) {
    return load > 0.0f ? load : HashMap::DEFAULT_LOAD;
}

int usableCapacity(int capacity) {
    return capacity < 1 ? 1 : capacity;
}

} // namespace

HashMap::HashMap(int capacity, float load) : m_loadFactor(usableLoad(load)) {
    allocTable(usableCapacity(capacity));
}

HashMap::HashMap(const IQNComparator* keyComparator, const IQNComparator* valueComparator,
                 int capacity, float load)
    : AbstractMap(keyComparator, valueComparator), m_loadFactor(usableLoad(load)) {
    allocTable(usableCapacity(capacity));
}

HashMap::HashMap(const Map& map, float load) : m_loadFactor(usableLoad(load)) {
    allocTable(calcCapacity(map.getSize()));
    putAll(map);
}

HashMap::HashMap(const Map& map, const IQNComparator* keyComparator,
                 const IQNComparator* valueComparator, float load)
    : AbstractMap(keyComparator, valueComparator), m_loadFactor(usableLoad(load)) {
    allocTable(calcCapacity(map.getSize()));
    putAll(map);
}

HashMap::HashMap(const HashMap& other)
    : AbstractMap(other), m_loadFactor(other.m_loadFactor), m_size(other.m_size) {
    allocTable(other.m_capacity);
    for (size_t bucket = 0; bucket < other.m_table.size(); ++bucket) {
        // Rebuilt from the tail of each chain, so the copy keeps the chain's order.
        std::vector<HashMapEntry*> chain;
        for (HashMapEntry* e = other.m_table[bucket].get(); e; e = e->m_next.get())
            chain.push_back(e);
        Reference<HashMapEntry> head;
        for (auto it = chain.rbegin(); it != chain.rend(); ++it)
            head = new HashMapEntry((*it)->key(), (*it)->value(), (*it)->m_hash, std::move(head));
        m_table[bucket] = std::move(head);
    }
}

HashMap::~HashMap() = default;

Reference<Object> HashMap::clone() const {
    return Reference<Object>(new HashMap(*this));
}

void HashMap::allocTable(int n) {
    std::vector<Reference<HashMapEntry>> table(static_cast<size_t>(n));
    m_table.swap(table);
    m_capacity = n;
    m_threshold = static_cast<int32_t>(static_cast<float>(n) * m_loadFactor);
}

void HashMap::rehash() {
    std::vector<Reference<HashMapEntry>> old;
    old.swap(m_table);
    const int32_t oldCapacity = m_capacity;
    allocTable(2 * oldCapacity + 1);
    for (int32_t bucket = oldCapacity - 1; bucket >= 0; --bucket) {
        Reference<HashMapEntry> entry = std::move(old[static_cast<size_t>(bucket)]);
        while (entry) {
            Reference<HashMapEntry> rest = std::move(entry->m_next);
            Reference<HashMapEntry>& head = m_table[bucketOf(entry->m_hash)];
            entry->m_next = std::move(head);
            head = std::move(entry);
            entry = std::move(rest);
        }
    }
}

HashMapEntry* HashMap::find(const IQNUnknown* key, uint32_t hash, HashMapEntry** previous) const {
    HashMapEntry* before = nullptr;
    for (HashMapEntry* e = m_table[bucketOf(hash)].get(); e; e = e->m_next.get()) {
        if (e->m_hash == hash && compareKeys(e->key(), key) == 0) {
            if (previous)
                *previous = before;
            return e;
        }
        before = e;
    }
    return nullptr;
}

Reference<IQNUnknown> HashMap::put(IQNUnknown* key, IQNUnknown* value) {
    const uint32_t hash = hashKey(key);
    if (HashMapEntry* e = find(key, hash, nullptr))
        return e->setValue(value);
    modified();
    if (m_size >= m_threshold)
        rehash();
    Reference<HashMapEntry>& head = m_table[bucketOf(hash)];
    head = new HashMapEntry(key, value, hash, std::move(head));
    ++m_size;
    return Reference<IQNUnknown>();
}

Reference<IQNUnknown> HashMap::get(const IQNUnknown* key) const {
    if (HashMapEntry* e = find(key, hashKey(key), nullptr))
        return e->m_value;
    return Reference<IQNUnknown>();
}

bool HashMap::containsKey(const IQNUnknown* key) const {
    return find(key, hashKey(key), nullptr) != nullptr;
}

bool HashMap::containsValue(const IQNUnknown* value) const {
    for (const Reference<HashMapEntry>& head : m_table) {
        for (HashMapEntry* e = head.get(); e; e = e->m_next.get()) {
            if (valuesEqual(e->value(), value))
                return true;
        }
    }
    return false;
}

bool HashMap::containsEntry(const IQNUnknown* entry) const {
    const auto* candidate = dynamic_cast<const MapEntry*>(entry);
    if (!candidate)
        return false;
    const Reference<IQNUnknown> key = candidate->getKey();
    const HashMapEntry* e = find(key.get(), hashKey(key.get()), nullptr);
    return e && valuesEqual(e->value(), candidate->getValue().get());
}

Reference<IQNUnknown> HashMap::remove(const IQNUnknown* key) {
    const uint32_t hash = hashKey(key);
    HashMapEntry* previous = nullptr;
    HashMapEntry* e = find(key, hash, &previous);
    if (!e)
        return Reference<IQNUnknown>();
    Reference<IQNUnknown> value = e->m_value;
    removeEntry(e, previous, bucketOf(hash));
    return value;
}

void HashMap::removeEntry(HashMapEntry* entry, HashMapEntry* previous, uint32_t bucket) {
    modified();
    Reference<HashMapEntry>& link = previous ? previous->m_next : m_table[bucket];
    // Keep the entry alive while its successor moves up into its place.
    Reference<HashMapEntry> removed(entry);
    link = std::move(entry->m_next);
    --m_size;
}

void HashMap::clear() {
    allocTable(m_capacity);
}

uint32_t HashMap::getValueHashCode(const IQNUnknown* value) const {
    return detail::hash(getValueComparator(), value);
}

Reference<Iterator> HashMap::createViewIterator(ViewKind kind) const {
    return Reference<Iterator>(new EntryIterator(*this, kind));
}

Reference<Set> HashMap::createEntrySet() {
    return Reference<Set>(new MapView<AbstractSet>(*this, VIEW_ENTRIES));
}

Reference<const Set> HashMap::createEntrySet() const {
    return Reference<const Set>(new MapView<AbstractSet>(*this, VIEW_ENTRIES));
}

} // namespace qn::collections::xcom
