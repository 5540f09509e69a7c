// IntegerHashMap and StringHashMap, and the default comparator under every collection.
#include "Elements.h"

#include "qn/collections/IntegerHashMap.h"
#include "qn/collections/StringHashMap.h"
#include "qn/util/Comparator.h"

#include <string>
#include <vector>

namespace collections_test {
namespace {

// The default comparator and the sets' shared marker live as long as the library: make them
// before the program counts its live objects, so they are not taken for leaks.
const bool s_sharedObjectsMade = [] {
    Reference<HashSet> set(new HashSet());
    set->add(nullptr);
    return true;
}();

class KeyedMapTest : public Balanced {};

std::vector<int32_t> keysOf(const IntegerHashMap& map) {
    std::vector<int32_t> keys;
    for (Reference<ConstIterator> it = map.createKeySet()->createConstIterator(); it->hasNext();)
        keys.push_back(dynamic_cast<Integer32*>(it->next().get())->int32Value());
    return keys;
}

TEST_F(KeyedMapTest, StringKeysHashAsStringsDo) {
    EXPECT_EQ(StringHashMap::getKeyHashCode(u"", 0, false), 0u);
    EXPECT_EQ(StringHashMap::getKeyHashCode(u"a", -1, false), 97u);
    EXPECT_EQ(StringHashMap::getKeyHashCode(u"ab", 2, false), 97u * 37u + 98u);
    EXPECT_EQ(StringHashMap::getKeyHashCode(u"AB", 2, true), 97u * 37u + 98u);
    // 64 units: step 2, so only even positions count.
    std::u16string a(64, u'x');
    std::u16string b = a;
    b[33] = u'y';
    uint32_t even = 0;
    for (size_t i = 0; i < a.size(); i += 2)
        even = even * 37u + a[i];
    EXPECT_EQ(StringHashMap::getKeyHashCode(a.data(), 64, false), even);
    EXPECT_EQ(StringHashMap::getKeyHashCode(b.data(), 64, false), even);
    EXPECT_EQ(String(b.data(), 64).hashCode(), even);

    StringHashMap map;
    Reference<Item> va = item(1);
    Reference<Item> vb = item(2);
    map.put(String(a.data(), 64), va.get());
    map.put(String(b.data(), 64), vb.get());
    EXPECT_EQ(map.getSize(), 2);
    EXPECT_EQ(map.get(a.data(), 64).get(), va.get());
    EXPECT_EQ(map.get(String(b.data(), 64)).get(), vb.get());
    EXPECT_EQ(map.remove(String(a.data(), 64)).get(), va.get());
    EXPECT_FALSE(map.containsKey(a.data(), 64));
    EXPECT_TRUE(map.containsKey(b.data(), 64));
    map.clear();
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(vb->GetRefCount(), 1u);
}

TEST_F(KeyedMapTest, StringLookUpByPointerAndLength) {
    StringHashMap map;
    Reference<Item> v = item(1);
    EXPECT_FALSE(map.put(String(u"name"), v.get()));
    EXPECT_EQ(map.get(u"name", -1).get(), v.get());
    EXPECT_EQ(map.get(u"names", 4).get(), v.get());
    EXPECT_FALSE(map.get(u"nam", -1));
    EXPECT_FALSE(map.get(u"NAME", -1));
    EXPECT_FALSE(map.containsKey(u"", 0));
    map.put(String(), nullptr);
    EXPECT_TRUE(map.containsKey(nullptr, -1));
    EXPECT_EQ(map.put(String(u"name"), nullptr).get(), v.get());
    EXPECT_EQ(map.getSize(), 2);
    Reference<const Set> keys = map.createKeySet();
    std::vector<std::u16string> texts;
    for (Reference<ConstIterator> it = keys->createConstIterator(); it->hasNext();) {
        auto* s = dynamic_cast<String*>(it->next().get());
        texts.emplace_back(s->getData(), static_cast<size_t>(s->getLength()));
    }
    EXPECT_EQ(texts, (std::vector<std::u16string>{u"name", u""}));
    EXPECT_TRUE(keys->contains(String::CQNString(u"name")->GetUnknown()));
}

TEST_F(KeyedMapTest, StringMapGrowsAndKeepsEveryKey) {
    StringHashMap map(1);
    Reference<Item> v = item(0);
    std::vector<String> keys;
    for (int i = 0; i < 300; ++i) {
        keys.push_back(String::valueOf(i * 7).append(u"-key"));
        map.put(keys.back(), v.get());
    }
    // 1 -> 3 -> 7 -> 15 -> 31 -> 63 -> 127 -> 255 -> 511.
    EXPECT_EQ(map.getCapacity(), 511);
    for (const String& key : keys)
        ASSERT_TRUE(map.containsKey(key.getData(), key.getLength()));
    map.clear();
    EXPECT_EQ(v->GetRefCount(), 1u);
    EXPECT_EQ(map.getCapacity(), 511);
}

TEST_F(KeyedMapTest, IntegerKeysShareBucketsByRemainder) {
    IntegerHashMap map;
    Reference<Item> five = item(5);
    Reference<Item> other = item(106);
    map.put(5, five.get());
    map.put(-7, nullptr);
    map.put(106, other.get());
    // 5 and 106 share bucket 5 and stay together in the list, the latest first.
    EXPECT_EQ(keysOf(map), (std::vector<int32_t>{106, 5, -7}));
    EXPECT_EQ(map.get(106).get(), other.get());
    EXPECT_TRUE(map.containsKey(-7));
    EXPECT_EQ(map.remove(5).get(), five.get());
    EXPECT_EQ(map.get(106).get(), other.get());
    EXPECT_FALSE(map.remove(5));
    EXPECT_EQ(keysOf(map), (std::vector<int32_t>{106, -7}));
}

TEST_F(KeyedMapTest, GrowingKeepsEveryKey) {
    IntegerHashMap map(11);
    Reference<Item> v = item(0);
    for (int32_t k = 0; k < 1000; ++k)
        EXPECT_FALSE(map.put(k * 11 - 500, v.get()));
    EXPECT_EQ(map.getSize(), 1000);
    // 11 -> 23 -> 47 -> 95 -> 191 -> 383 -> 767 -> 1535.
    EXPECT_EQ(map.getCapacity(), 1535);
    for (int32_t k = 0; k < 1000; ++k)
        ASSERT_TRUE(map.containsKey(k * 11 - 500)) << k;
    EXPECT_EQ(v->GetRefCount(), 1001u);
}

TEST_F(KeyedMapTest, DefaultComparatorDelegatesOrUsesAddresses) {
    Reference<IQNComparator> comparator = GetDefaultComparator();
    EXPECT_EQ(comparator.get(), CQNCollections::getDefaultComparator().get());
    // Entries of a HashMap answer no IQNComparable: they are ordered and hashed by address.
    Reference<HashMap> map(new HashMap());
    map->put(nullptr, nullptr);
    map->put(unk(item(1)), nullptr);
    Reference<Iterator> it = map->createEntrySet()->createIterator();
    Reference<IQNUnknown> a = it->next();
    Reference<IQNUnknown> b = it->next();
    int order = 2;
    EXPECT_EQ(comparator->Compare(a.get(), b.get(), &order), QN_S_OK);
    EXPECT_EQ(order, a.get() < b.get() ? -1 : 1);
    EXPECT_EQ(comparator->Compare(a.get(), a.get(), &order), QN_S_OK);
    EXPECT_EQ(order, 0);
    unsigned long hash = 0;
    EXPECT_EQ(comparator->Hash(a.get(), &hash), QN_S_OK);
    EXPECT_EQ(hash, static_cast<unsigned long>(reinterpret_cast<uintptr_t>(a.get())));
    EXPECT_EQ(comparator->Compare(nullptr, a.get(), &order), QN_S_OK);
    EXPECT_EQ(order, -1);
    // A comparable element decides, and its failure passes through as a status.
    Reference<Item> x = item(3, 77);
    EXPECT_EQ(comparator->Hash(unk(x), &hash), QN_S_OK);
    EXPECT_EQ(hash, 77u);
    EXPECT_EQ(comparator->Compare(unk(x), map->GetUnknown(), &order), QN_E_FAIL);
    const util::Comparator& typed = dynamic_cast<const util::Comparator&>(*comparator);
    EXPECT_EQ(typed.compare(*x, *item(4)), -1);
    EXPECT_THROW(typed.compare(*x, *map), ResultException);
    EXPECT_TRUE(typed.equals(*Reference<util::Comparator>(new util::Comparator())));
    void* out = nullptr;
    EXPECT_EQ(comparator->QueryInterface(IID_IQNComparable, &out), QN_S_OK);
    static_cast<IQNUnknown*>(out)->Release();
}

} // namespace
} // namespace collections_test
