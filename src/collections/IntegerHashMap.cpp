#include "qn/collections/IntegerHashMap.h"

#include "KeySnapshot.h"

namespace qn::collections {

const int32_t IntegerHashMap::DEFAULT_CAPACITY = 101;
const float IntegerHashMap::DEFAULT_LOAD = 0.75f;

struct IntegerHashMap::Node : HashChains::Node {
    int32_t key;
    Reference<Object> value;
};

IntegerHashMap::IntegerHashMap(int capacity, float load) : m_chains(capacity, load) {}

IntegerHashMap::~IntegerHashMap() {
    m_chains.deleteAll<Node>();
}

IntegerHashMap::Node* IntegerHashMap::find(int32_t key) const noexcept {
    const uint32_t hash = getKeyHashCode(key);
    const uint32_t bucket = m_chains.bucketOf(hash);
    HashChains::Node* node = m_chains.first(bucket);
    if (!node)
        return nullptr;
    for (; node->bucket == bucket; node = node->next) {
        if (node->hash == hash && keysEqual(static_cast<Node*>(node)->key, key))
            return static_cast<Node*>(node);
    }
    return nullptr;
}

void IntegerHashMap::clear() {
    m_chains.deleteAll<Node>();
}

bool IntegerHashMap::containsKey(int32_t key) const {
    return find(key) != nullptr;
}

Reference<Object> IntegerHashMap::get(int32_t key) const {
    const Node* node = find(key);
    return node ? node->value : Reference<Object>();
}

Reference<Object> IntegerHashMap::put(int32_t key, Object* value) {
    if (Node* node = find(key)) {
        Reference<Object> previous = std::move(node->value);
        node->value = value;
        return previous;
    }
    std::unique_ptr<Node> node(
        new Node{{nullptr, nullptr, getKeyHashCode(key), HashChains::NO_BUCKET}, key, value});
    m_chains.insert(node.get());
    node.release();
    return Reference<Object>();
}

Reference<Object> IntegerHashMap::remove(int32_t key) {
    Node* node = find(key);
    if (!node)
        return Reference<Object>();
    m_chains.unlink(node);
    Reference<Object> value = std::move(node->value);
    delete node;
    return value;
}

Reference<const xcom::Set> IntegerHashMap::createKeySet() const {
    Reference<detail::KeySnapshot> keys(new detail::KeySnapshot());
    for (const HashChains::Node* node = m_chains.begin(); node != m_chains.end(); node = node->next)
        keys->append(
            Reference<Integer32>(new Integer32(static_cast<const Node*>(node)->key))->GetUnknown());
    return keys;
}

} // namespace qn::collections
