// IntegerHashMap: a map from 32-bit integer keys to counted Object values. A key hashes to
// itself (as unsigned); its bucket is that hash modulo the number of buckets, 101 by default,
// growing to 2n + 1 when an insertion finds size >= capacity * load factor.
#pragma once

#include "qn/collections/HashChains.h"
#include "qn/collections/xcom/Collection.h"
#include "qn/core/Number.h"

namespace qn::collections {

class QNCL_API IntegerHashMap : public Object {
public:
    static const int32_t DEFAULT_CAPACITY;
    static const float DEFAULT_LOAD;

    explicit IntegerHashMap(int capacity = 101, float load = 0.75f);
    IntegerHashMap(const IntegerHashMap&) = delete;
    IntegerHashMap& operator=(const IntegerHashMap&) = delete;
    ~IntegerHashMap() override;

    // 11 for n <= 5, else 2n.
    static int calcCapacity(int n) noexcept { return n <= 5 ? 11 : 2 * n; }

    virtual void clear();
    virtual bool containsKey(int32_t key) const;
    // A snapshot of the keys as Integer32 objects, in the map's list order (a bucket's keys
    // together, the latest first).
    virtual Reference<const xcom::Set> createKeySet() const;
    virtual Reference<Object> get(int32_t key) const;
    virtual int getSize() const { return m_chains.getSize(); }
    virtual bool isEmpty() const { return m_chains.getSize() == 0; }
    // The previous value, or empty.
    virtual Reference<Object> put(int32_t key, Object* value);
    // The removed value, or empty.
    virtual Reference<Object> remove(int32_t key);

    int getCapacity() const noexcept { return m_chains.getCapacity(); }

    void allocTable(int n) { m_chains.allocTable(n); }
    void rehash() { m_chains.rehash(); }
    static uint32_t getKeyHashCode(int32_t key) noexcept { return static_cast<uint32_t>(key); }
    static bool keysEqual(int32_t a, int32_t b) noexcept { return a == b; }

private:
    struct Node;
    Node* find(int32_t key) const noexcept;

    HashChains m_chains;
};

} // namespace qn::collections
