#include "qn/collections/HashChains.h"

#include <stdexcept>

namespace qn::collections {

HashChains::HashChains(int32_t capacity, float load)
    : m_loadFactor(load > 0.0f ? load : 0.75f), m_list{&m_list, &m_list, 0, NO_BUCKET} {
    allocTable(capacity < 1 ? 1 : capacity);
}

HashChains::~HashChains() = default;

void HashChains::allocTable(int32_t n) {
    if (n > MAX_CAPACITY)
        throw std::length_error("hash table too large");
    m_buckets.reset(new Node*[static_cast<size_t>(n)]());
    m_capacity = n;
    m_threshold = static_cast<int32_t>(static_cast<float>(n) * m_loadFactor);
}

void HashChains::place(Node* node) noexcept {
    node->bucket = bucketOf(node->hash);
    Node*& first = m_buckets[node->bucket];
    Node* after = first ? first : &m_list;
    node->next = after;
    node->previous = after->previous;
    after->previous->next = node;
    after->previous = node;
    first = node;
}

void HashChains::insert(Node* node) {
    if (m_size >= m_threshold)
        rehash();
    place(node);
    ++m_size;
}

void HashChains::unlink(Node* node) noexcept {
    Node*& first = m_buckets[node->bucket];
    if (first == node)
        first = node->next->bucket == node->bucket ? node->next : nullptr;
    node->previous->next = node->next;
    node->next->previous = node->previous;
    --m_size;
}

void HashChains::reset() noexcept {
    m_list.next = m_list.previous = &m_list;
    for (int32_t i = 0; i < m_capacity; ++i)
        m_buckets[static_cast<size_t>(i)] = nullptr;
    m_size = 0;
}

void HashChains::rehash() {
    if (m_capacity > (MAX_CAPACITY - 1) / 2)
        throw std::length_error("hash table too large");
    allocTable(2 * m_capacity + 1);
    Node* node = m_list.next;
    m_list.next = m_list.previous = &m_list;
    while (node != &m_list) {
        Node* next = node->next;
        place(node);
        node = next;
    }
}

} // namespace qn::collections
