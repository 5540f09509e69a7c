// StringHashMap: a map from wide-text keys to counted Object values, looked up either by String
// or by a character pointer with a length (-1: zero-terminated), so a caller need not build a
// String to search. Keys match exactly, unit by unit.
//
// A key hashes as String::hashCode does (h = h * 37 + unit, over every unit below length 64
// and over a sample of 32 to 63 units above), so long keys that differ only between the
// sampled units share a bucket and are told apart by comparison. The table starts at 101
// buckets and grows to 2n + 1 when an insertion finds size >= capacity * load factor.
#pragma once

#include "qn/collections/HashChains.h"
#include "qn/collections/xcom/Collection.h"
#include "qn/core/String.h"

namespace qn::collections {

class QNCL_API StringHashMap : public Object {
public:
    static const int32_t DEFAULT_CAPACITY;
    static const float DEFAULT_LOAD;

    explicit StringHashMap(int capacity = 101, float load = 0.75f);
    StringHashMap(const StringHashMap&) = delete;
    StringHashMap& operator=(const StringHashMap&) = delete;
    ~StringHashMap() override;

    // 11 for n <= 5, else 2n.
    static int calcCapacity(int n) noexcept { return n <= 5 ? 11 : 2 * n; }

    virtual void clear();
    virtual bool containsKey(const String& key) const;
    virtual bool containsKey(const char16_t* key, int32_t length = -1) const;
    // A snapshot of the keys as String objects, in the map's list order (a bucket's keys
    // together, the latest first).
    virtual Reference<const xcom::Set> createKeySet() const;
    virtual Reference<Object> get(const String& key) const;
    virtual Reference<Object> get(const char16_t* key, int32_t length = -1) const;
    virtual int getSize() const { return m_chains.getSize(); }
    virtual bool isEmpty() const { return m_chains.getSize() == 0; }
    // The previous value, or empty. The map keeps a copy of key (sharing its buffer).
    virtual Reference<Object> put(const String& key, Object* value);
    // The removed value, or empty.
    virtual Reference<Object> remove(const String& key);

    int getCapacity() const noexcept { return m_chains.getCapacity(); }

    void allocTable(int n) { m_chains.allocTable(n); }
    void rehash() { m_chains.rehash(); }
    // String's hash of the text, its units folded by QNToLowerW when ignoreCase is set.
    static uint32_t getKeyHashCode(const char16_t* text, int32_t length, bool ignoreCase);
    static bool keysEqual(const String& key, const char16_t* text, int32_t length, bool ignoreCase);

private:
    struct Node;
    // length -1: measured here.
    Node* find(const char16_t* key, int32_t length) const;
    Node* find(const char16_t* key, int32_t length, uint32_t hash) const;

    HashChains m_chains;
};

} // namespace qn::collections
