// HashChains: the table under IntegerHashMap and StringHashMap. All nodes live in one doubly
// linked list, and each bucket is a run of consecutive nodes in it: the bucket array holds the
// first node of each run, and every node records its bucket, so a run ends at the first node of
// another bucket. A look-up walks only its bucket's run and iteration walks the list. Nodes keep
// their key's hash: growing redistributes them without hashing a key again.
//
// One word per bucket keeps the array as small as the standard library's, which matters once
// it outgrows the caches.
#pragma once

#include "qn/core/Config.h"

#include <cstdint>
#include <memory>

namespace qn::collections {

class QNCL_API HashChains {
public:
    // The part of a node that the table owns; the maps derive their nodes from it.
    struct Node {
        Node* next;
        Node* previous;
        uint32_t hash;
        // Set by the table; never NO_BUCKET for a node.
        uint32_t bucket;
    };
    static const uint32_t NO_BUCKET = 0xFFFFFFFFu;

    static const int32_t MAX_CAPACITY = 536870911;

    // capacity empty buckets (at least 1); threshold = truncate(capacity * load). A load factor
    // not above 0 is taken as 0.75.
    HashChains(int32_t capacity, float load);
    HashChains(const HashChains&) = delete;
    HashChains& operator=(const HashChains&) = delete;
    ~HashChains();

    int32_t getSize() const noexcept { return m_size; }
    int32_t getCapacity() const noexcept { return m_capacity; }
    int32_t getThreshold() const noexcept { return m_threshold; }
    float getLoadFactor() const noexcept { return m_loadFactor; }

    uint32_t bucketOf(uint32_t hash) const noexcept {
        return hash % static_cast<uint32_t>(m_capacity);
    }
    // The first node of bucket's run, or null; the run goes on while node->bucket == bucket
    // (the end of the list has NO_BUCKET).
    Node* first(uint32_t bucket) const noexcept { return m_buckets[bucket]; }
    // The list in order: from begin() to end() (the sentinel, not a node).
    Node* begin() const noexcept { return m_list.next; }
    const Node* end() const noexcept { return &m_list; }

    // Links node (its hash set) at the head of its bucket's run, first growing the table when
    // the size has reached the threshold. A new bucket's run starts at the end of the list.
    void insert(Node* node);
    // Unlinks node; the caller frees it.
    void unlink(Node* node) noexcept;
    // Forgets every node (the caller frees them) and empties every bucket; the capacity stays.
    void reset() noexcept;
    // Deletes every node as the owner's node type N, then resets.
    template <class N> void deleteAll() noexcept {
        for (Node* node = begin(); node != end();) {
            Node* next = node->next;
            delete static_cast<N*>(node);
            node = next;
        }
        reset();
    }
    // 2n + 1 buckets, nodes redistributed by their stored hashes; std::length_error beyond
    // MAX_CAPACITY.
    void rehash();
    // n empty buckets; threshold = truncate(n * load). The nodes are not touched.
    void allocTable(int32_t n);

private:
    // Links node at the head of its bucket's run, or at the end of the list.
    void place(Node* node) noexcept;

    float m_loadFactor;
    int32_t m_capacity = 0;
    int32_t m_threshold = 0;
    int32_t m_size = 0;
    Node m_list;
    std::unique_ptr<Node*[]> m_buckets;
};

} // namespace qn::collections
