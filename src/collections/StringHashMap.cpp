#include "qn/collections/StringHashMap.h"

#include "KeySnapshot.h"
#include "core/StringUnits.h"

namespace qn::collections {

const int32_t StringHashMap::DEFAULT_CAPACITY = 101;
const float StringHashMap::DEFAULT_LOAD = 0.75f;

struct StringHashMap::Node : HashChains::Node {
    String key;
    Reference<Object> value;
};

StringHashMap::StringHashMap(int capacity, float load) : m_chains(capacity, load) {}

StringHashMap::~StringHashMap() {
    m_chains.deleteAll<Node>();
}

uint32_t StringHashMap::getKeyHashCode(const char16_t* text, int32_t length, bool ignoreCase) {
    return units::hash(text, units::measure(text, length), ignoreCase);
}

bool StringHashMap::keysEqual(const String& key, const char16_t* text, int32_t length,
                              bool ignoreCase) {
    return key.equals(text, length, ignoreCase);
}

StringHashMap::Node* StringHashMap::find(const char16_t* key, int32_t length, uint32_t hash) const {
    const uint32_t bucket = m_chains.bucketOf(hash);
    HashChains::Node* node = m_chains.first(bucket);
    if (!node)
        return nullptr;
    for (; node->bucket == bucket; node = node->next) {
        if (node->hash == hash) {
            const String& candidate = static_cast<Node*>(node)->key;
            if (candidate.getLength() == length &&
                (length == 0 ||
                 std::memcmp(candidate.getData(), key, sizeof(char16_t) * length) == 0))
                return static_cast<Node*>(node);
        }
    }
    return nullptr;
}

StringHashMap::Node* StringHashMap::find(const char16_t* key, int32_t length) const {
    length = units::measure(key, length);
    return find(key, length, units::hash(key, length, false));
}

void StringHashMap::clear() {
    m_chains.deleteAll<Node>();
}

bool StringHashMap::containsKey(const String& key) const {
    return find(key.getData(), key.getLength()) != nullptr;
}

bool StringHashMap::containsKey(const char16_t* key, int32_t length) const {
    return find(key, length) != nullptr;
}

Reference<Object> StringHashMap::get(const String& key) const {
    const Node* node = find(key.getData(), key.getLength());
    return node ? node->value : Reference<Object>();
}

Reference<Object> StringHashMap::get(const char16_t* key, int32_t length) const {
    const Node* node = find(key, length);
    return node ? node->value : Reference<Object>();
}

Reference<Object> StringHashMap::put(const String& key, Object* value) {
    const uint32_t hash = units::hash(key.getData(), key.getLength(), false);
    if (Node* node = find(key.getData(), key.getLength(), hash)) {
        Reference<Object> previous = std::move(node->value);
        node->value = value;
        return previous;
    }
    std::unique_ptr<Node> node(
        new Node{{nullptr, nullptr, hash, HashChains::NO_BUCKET}, key, value});
    m_chains.insert(node.get());
    node.release();
    return Reference<Object>();
}

Reference<Object> StringHashMap::remove(const String& key) {
    Node* node = find(key.getData(), key.getLength());
    if (!node)
        return Reference<Object>();
    m_chains.unlink(node);
    Reference<Object> value = std::move(node->value);
    delete node;
    return value;
}

Reference<const xcom::Set> StringHashMap::createKeySet() const {
    Reference<detail::KeySnapshot> keys(new detail::KeySnapshot());
    for (const HashChains::Node* node = m_chains.begin(); node != m_chains.end(); node = node->next)
        keys->append(String::CQNString(static_cast<const Node*>(node)->key)->GetUnknown());
    return keys;
}

} // namespace qn::collections
