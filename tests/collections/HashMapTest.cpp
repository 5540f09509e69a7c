#include "Elements.h"

#include "qn/collections/xcom/ArrayList.h"
#include "qn/collections/xcom/HashMap.h"
#include "qn/core/Class.h"

#include <string>
#include <vector>

namespace collections_test {
namespace {

class HashMapTest : public Balanced {
protected:
    // Keys (or values) in iteration order.
    static std::vector<int> walk(const Collection& view) {
        std::vector<int> result;
        for (Reference<ConstIterator> it = view.createConstIterator(); it->hasNext();)
            result.push_back(valueOf(it->next()));
        return result;
    }
};

TEST_F(HashMapTest, GrowsAtTheThresholdAndFindsEveryKey) {
    EXPECT_EQ(HashMap::calcCapacity(0), 11);
    EXPECT_EQ(HashMap::calcCapacity(5), 11);
    EXPECT_EQ(HashMap::calcCapacity(6), 12);
    Reference<HashMap> map(new HashMap());
    EXPECT_EQ(map->getThreshold(), 75);
    std::vector<Reference<Item>> keys;
    const std::vector<std::pair<int, int>> growth = {{75, 101},  {76, 203},  {152, 203},
                                                     {153, 407}, {305, 407}, {306, 815}};
    for (const auto& [count, capacity] : growth) {
        while (static_cast<int>(keys.size()) < count) {
            keys.push_back(item(static_cast<int>(keys.size()) * 7919));
            map->put(unk(keys.back()), unk(item(static_cast<int>(keys.size()))));
        }
        EXPECT_EQ(map->getCapacity(), capacity) << count << " keys";
    }
    EXPECT_EQ(map->getSize(), 306);
    // A capacity and a load factor that would divide by zero or grow on every put are taken as
    // 1 and 0.75.
    Reference<HashMap> tiny(new HashMap(0, -1.0f));
    for (int i = 0; i < 10; ++i)
        tiny->put(unk(item(i)), nullptr);
    EXPECT_EQ(tiny->getCapacity(), 15);
    EXPECT_EQ(tiny->getSize(), 10);
}

TEST_F(HashMapTest, PutOfAPresentKeyReplacesOnlyTheValue) {
    Reference<HashMap> map(new HashMap());
    Reference<Item> first = item(1);
    Reference<Item> equal = item(1);
    EXPECT_FALSE(map->put(unk(first), unk(item(10))));
    const int32_t count = map->getModificationCount();
    EXPECT_EQ(valueOf(map->put(unk(equal), unk(item(11)))), 10);
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(map->getModificationCount(), count);
    Reference<IQNUnknown> key = map->createKeySet()->createIterator()->next();
    EXPECT_EQ(key.get(), unk(first));
    EXPECT_EQ(equal->GetRefCount(), 1u);
}

TEST_F(HashMapTest, ClearKeepsTheSizeAndOpenIterators) {
    Reference<HashMap> map(new HashMap());
    for (int i = 0; i < 3; ++i)
        map->put(unk(item(i)), unk(item(i)));
    Reference<Iterator> it = map->createKeySet()->createIterator();
    const int32_t count = map->getModificationCount();
    map->clear();
    EXPECT_EQ(map->getSize(), 3);
    EXPECT_EQ(map->getModificationCount(), count);
    EXPECT_EQ(map->getCapacity(), 101);
    EXPECT_FALSE(it->hasNext());
}

TEST_F(HashMapTest, EqualHashesShareOneChain) {
    Reference<HashMap> map(new HashMap(11));
    // All in bucket 3, iterated from the latest; then bucket 1.
    for (int v : {1, 2, 3})
        map->put(unk(item(v, 3)), unk(item(v * 10)));
    map->put(unk(item(4, 1)), unk(item(40)));
    EXPECT_EQ(walk(*map->createKeySet()), (std::vector<int>{3, 2, 1, 4}));
    EXPECT_EQ(walk(*map->createValueCollection()), (std::vector<int>{30, 20, 10, 40}));
    for (int v : {1, 2, 3})
        EXPECT_EQ(valueOf(map->get(unk(item(v, 3)))), v * 10);
    EXPECT_FALSE(map->containsKey(unk(item(5, 3))));
    // A key that equals by comparison but hashes elsewhere is another key.
    EXPECT_FALSE(map->containsKey(unk(item(2, 4))));
    EXPECT_EQ(valueOf(map->remove(unk(item(2, 3)))), 20);
    EXPECT_EQ(walk(*map->createKeySet()), (std::vector<int>{3, 1, 4}));
    EXPECT_EQ(valueOf(map->get(unk(item(1, 3)))), 10);
    // Growing keeps every entry findable and reverses each chain it visits.
    for (int v = 100; v < 110; ++v)
        map->put(unk(item(v, 3)), nullptr);
    EXPECT_EQ(map->getCapacity(), 23);
    for (int v : {1, 3})
        EXPECT_EQ(valueOf(map->get(unk(item(v, 3)))), v * 10);
    EXPECT_EQ(map->getSize(), 13);
}

TEST_F(HashMapTest, ViewsWriteThrough) {
    Reference<HashMap> map(new HashMap());
    for (int i = 0; i < 5; ++i)
        map->put(unk(item(i)), unk(item(i * 10)));
    Reference<Set> keys = map->createKeySet();
    Reference<Collection> values = map->createValueCollection();
    Reference<Set> entries = map->createEntrySet();
    EXPECT_TRUE(keys->remove(unk(item(0))));
    EXPECT_FALSE(keys->remove(unk(item(0))));
    EXPECT_TRUE(values->remove(unk(item(10))));
    EXPECT_FALSE(map->containsKey(unk(item(1))));
    EXPECT_TRUE(values->contains(unk(item(20))));
    EXPECT_THROW(keys->add(unk(item(9))), UnsupportedOperationException);
    for (Reference<Iterator> it = entries->createIterator(); it->hasNext();) {
        Reference<IQNUnknown> element = it->next();
        auto* entry = dynamic_cast<MapEntry*>(element.get());
        ASSERT_NE(entry, nullptr);
        const int key = valueOf(entry->getKey());
        if (key == 2)
            it->remove();
        else
            EXPECT_EQ(valueOf(entry->setValue(unk(item(key + 100)))), key * 10);
    }
    EXPECT_EQ(map->getSize(), 2);
    EXPECT_EQ(keys->getSize(), 2);
    EXPECT_EQ(valueOf(map->get(unk(item(4)))), 104);
    values->clear();
    EXPECT_FALSE(map->containsKey(unk(item(3))));
}

TEST_F(HashMapTest, IteratorsFailAfterOtherChanges) {
    Reference<HashMap> map(new HashMap());
    map->put(unk(item(1)), nullptr);
    map->put(unk(item(2)), nullptr);
    Reference<Iterator> it = map->createKeySet()->createIterator();
    it->next();
    map->put(unk(item(1)), unk(item(5)));
    EXPECT_NO_THROW(it->next());
    EXPECT_NO_THROW(it->remove());
    map->put(unk(item(3)), nullptr);
    EXPECT_THROW(it->next(), Exception);
    Reference<Iterator> other = map->createKeySet()->createIterator();
    other->next();
    other->remove();
    EXPECT_THROW(other->remove(), IllegalStateException);
    map->put(unk(item(50)), nullptr);
    EXPECT_THROW(other->next(), Exception);
}

TEST_F(HashMapTest, ComparatorFailureLeavesTheMapUnchanged) {
    Reference<Item> poison = item(7);
    Reference<HashMap> map(new HashMap(new PoisonComparator(poison->GetUnknown()), nullptr));
    map->put(unk(item(1)), unk(item(1)));
    Reference<Item> value = item(2);
    try {
        map->put(unk(poison), unk(value));
        ADD_FAILURE() << "no exception";
    } catch (const ResultException& e) {
        EXPECT_EQ(e.getResult(), QN_E_INVALIDARG);
    }
    EXPECT_EQ(map->getSize(), 1);
    EXPECT_EQ(value->GetRefCount(), 1u);
    EXPECT_EQ(poison->GetRefCount(), 1u);
    EXPECT_THROW(map->get(unk(poison)), ResultException);
}

TEST_F(HashMapTest, ComparisonHashAndCopies) {
    Reference<HashMap> a(new HashMap());
    Reference<HashMap> b(new HashMap(11));
    EXPECT_EQ(a->hashCode(), 0u);
    for (int i = 0; i < 20; ++i) {
        a->put(unk(item(i)), unk(item(i)));
        b->put(unk(item(19 - i)), unk(item(19 - i)));
    }
    EXPECT_EQ(a->hashCode(), 0u);
    // Same keys and values in another order: equal.
    EXPECT_TRUE(a->equals(*b));
    EXPECT_EQ(a->compareTo(*b), 0);
    b->put(unk(item(5)), unk(item(6)));
    EXPECT_EQ(a->compareTo(*b), -1);
    b->remove(unk(item(5)));
    EXPECT_EQ(a->compareTo(*b), 1);
    EXPECT_FALSE(a->equals(*b));
    Reference<ArrayList> list(new ArrayList());
    EXPECT_THROW(a->compareTo(*list), CastFailedException);
    EXPECT_FALSE(a->equals(*list));

    Reference<Object> copy = a->clone();
    auto* typed = dynamic_cast<HashMap*>(copy.get());
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(walk(*typed->createKeySet()), walk(*a->createKeySet()));
    Reference<HashMap> fromMap(new HashMap(*static_cast<const Map*>(b.get())));
    EXPECT_EQ(fromMap->getCapacity(), 38);
    EXPECT_TRUE(fromMap->equals(*b));
}

TEST_F(HashMapTest, HashSetIsTheKeysOfItsMap) {
    Reference<HashSet> set(new HashSet());
    EXPECT_TRUE(set->add(unk(item(1))));
    EXPECT_TRUE(set->add(nullptr));
    EXPECT_TRUE(set->contains(nullptr));
    EXPECT_EQ(set->hashCode(), 0u);
    Reference<HashSet> other(new HashSet(*set));
    EXPECT_TRUE(set->equals(*other));
    EXPECT_TRUE(other->remove(unk(item(1))));
    EXPECT_FALSE(set->equals(*other));
    Reference<ArrayList> list(new ArrayList(*set));
    EXPECT_THROW(set->compareTo(*list), CastFailedException);
    EXPECT_FALSE(set->equals(*list));
}

// Each object answers exactly the interfaces it implements, and IQNComparable through Object.
TEST_F(HashMapTest, InterfaceQueries) {
    Reference<ArrayList> list(new ArrayList());
    Reference<HashMap> map(new HashMap());
    Reference<HashSet> set(new HashSet());
    Reference<Iterator> listIt = list->createIterator();
    Reference<Iterator> mapIt = map->createEntrySet()->createIterator();
    struct Case {
        IQNUnknown* object;
        const QNGUID* iid;
        bool answered;
    };
    const Case cases[] = {
        {list->GetUnknown(), &IID_List, true},
        {list->GetUnknown(), &IID_Collection, true},
        {list->GetUnknown(), &IID_IQNComparable, true},
        {list->GetUnknown(), &IID_Set, false},
        {map->GetUnknown(), &IID_Map, true},
        {map->GetUnknown(), &IID_Collection, false},
        {set->GetUnknown(), &IID_Set, true},
        {set->GetUnknown(), &IID_List, false},
        {listIt.get(), &IID_ListIterator, true},
        {listIt.get(), &IID_ConstIterator, true},
        {mapIt.get(), &IID_Iterator, true},
        {mapIt.get(), &IID_ListIterator, false},
    };
    for (size_t i = 0; i < sizeof cases / sizeof cases[0]; ++i) {
        void* out = nullptr;
        const QNRESULT result = cases[i].object->QueryInterface(*cases[i].iid, &out);
        EXPECT_EQ(result == QN_S_OK, cases[i].answered) << "case " << i;
        EXPECT_EQ(out != nullptr, cases[i].answered) << "case " << i;
        if (out)
            static_cast<IQNUnknown*>(out)->Release();
    }
    void* out = nullptr;
    ASSERT_EQ(list->GetUnknown()->QueryInterface(IID_Collection, &out), QN_S_OK);
    Reference<Collection> viaQuery;
    viaQuery.attach(static_cast<Collection*>(out));
    viaQuery->add(nullptr);
    EXPECT_EQ(list->getSize(), 1);
}

TEST_F(HashMapTest, RegisteredClasses) {
    Reference<Object> list(Class::forName(u"CQNArrayList")->createInstance());
    EXPECT_NE(dynamic_cast<ArrayList*>(list.get()), nullptr);
    Reference<Object> map(Class::forName(u"CQNHashMap")->createInstance());
    EXPECT_EQ(dynamic_cast<HashMap*>(map.get())->getCapacity(), 101);
    EXPECT_THROW(Class::forName(u"CQNList")->createInstance(), IllegalAccessException);
    EXPECT_TRUE(Class::forName(u"CQNComparator")
                    ->isInstance(*dynamic_cast<Object*>(GetDefaultComparator().get())));
    EXPECT_EQ(std::u16string(map->getClass()->getName()), u"CQNHashMap");
}

} // namespace
} // namespace collections_test
