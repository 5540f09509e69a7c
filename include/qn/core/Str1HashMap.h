// Str1HashMap<V>: a hash map keyed by 8-bit strings, for tables looked up by byte text (the
// codec manager's registry by upper-cased encoding name, indexes by name or number). Keys are
// copied into the map; look-ups take any Str1 view and allocate nothing.
#pragma once

#include "qn/core/StrBuf1.h"

#include <utility>

namespace qn {

// Design:
// - Separate chaining over a bucket array whose size is fixed at construction (101 by default)
//   and grows to 2n + 1 buckets when the entry count would exceed buckets * load factor.
// - Keys are compared by bytes (Str1::equals, case-sensitive) and hashed with Str1::hashCode;
//   the encoding label of a key plays no part. Callers that want case-insensitive keys store
//   them folded, as the codec manager does with upper-cased names.
// - Values are held by value: V may be a Reference<T>, a pointer or any movable type.
// - Not safe for concurrent change; concurrent look-ups of a map that no one changes are safe.
template <class V> class Str1HashMap {
public:
    explicit Str1HashMap(int32_t buckets = 101, float loadFactor = 0.75f)
        : m_bucketCount(buckets > 0 ? buckets : 1),
          m_loadFactor(loadFactor > 0.0f ? loadFactor : 0.75f),
          m_buckets(new Node*[m_bucketCount]()) {}
    Str1HashMap(const Str1HashMap&) = delete;
    Str1HashMap& operator=(const Str1HashMap&) = delete;
    ~Str1HashMap() {
        clear();
        delete[] m_buckets;
    }

    int32_t size() const noexcept { return m_size; }
    bool isEmpty() const noexcept { return m_size == 0; }
    int32_t getBucketCount() const noexcept { return m_bucketCount; }

    // The value stored under key, or null; valid until the entry is removed.
    V* get(const Str1& key) noexcept { return find(key); }
    const V* get(const Str1& key) const noexcept {
        return const_cast<Str1HashMap*>(this)->find(key);
    }
    bool containsKey(const Str1& key) const noexcept { return get(key) != nullptr; }

    // Stores value under key, replacing an earlier value; true when the key was new.
    bool put(const Str1& key, V value) {
        if (V* present = find(key)) {
            *present = std::move(value);
            return false;
        }
        insert(key, std::move(value));
        return true;
    }
    // Stores value only when key is absent (the first entry wins); true when it was stored.
    bool putIfAbsent(const Str1& key, V value) {
        if (find(key))
            return false;
        insert(key, std::move(value));
        return true;
    }
    // True when an entry was removed.
    bool remove(const Str1& key) noexcept {
        const uint32_t hash = key.hashCode();
        for (Node** link = &m_buckets[hash % bucketCount()]; *link; link = &(*link)->next) {
            Node* node = *link;
            if (node->hash == hash && node->key.equals(key)) {
                *link = node->next;
                delete node;
                --m_size;
                return true;
            }
        }
        return false;
    }
    void clear() noexcept {
        for (int32_t i = 0; i < m_bucketCount; ++i) {
            while (Node* node = m_buckets[i]) {
                m_buckets[i] = node->next;
                delete node;
            }
        }
        m_size = 0;
    }
    // Calls visit(const Str1& key, V& value) for every entry, in no particular order.
    template <class Visit> void forEach(Visit visit) {
        for (int32_t i = 0; i < m_bucketCount; ++i) {
            for (Node* node = m_buckets[i]; node; node = node->next)
                visit(static_cast<const Str1&>(node->key), node->value);
        }
    }

private:
    struct Node {
        Node(const Str1& k, uint32_t h, V v) : key(k), hash(h), value(std::move(v)) {}
        Node* next = nullptr;
        StrBuf1 key;
        uint32_t hash;
        V value;
    };

    uint32_t bucketCount() const noexcept { return static_cast<uint32_t>(m_bucketCount); }

    V* find(const Str1& key) noexcept {
        const uint32_t hash = key.hashCode();
        for (Node* node = m_buckets[hash % bucketCount()]; node; node = node->next) {
            if (node->hash == hash && node->key.equals(key))
                return &node->value;
        }
        return nullptr;
    }
    void insert(const Str1& key, V value) {
        if (static_cast<float>(m_size + 1) > static_cast<float>(m_bucketCount) * m_loadFactor)
            rehash(m_bucketCount * 2 + 1);
        const uint32_t hash = key.hashCode();
        Node* node = new Node(key, hash, std::move(value));
        Node*& head = m_buckets[hash % bucketCount()];
        node->next = head;
        head = node;
        ++m_size;
    }
    void rehash(int32_t count) {
        Node** buckets = new Node*[count]();
        for (int32_t i = 0; i < m_bucketCount; ++i) {
            while (Node* node = m_buckets[i]) {
                m_buckets[i] = node->next;
                Node*& head = buckets[node->hash % static_cast<uint32_t>(count)];
                node->next = head;
                head = node;
            }
        }
        delete[] m_buckets;
        m_buckets = buckets;
        m_bucketCount = count;
    }

    int32_t m_bucketCount;
    float m_loadFactor;
    Node** m_buckets;
    int32_t m_size = 0;
};

} // namespace qn
