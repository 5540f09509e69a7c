// ArrayList and LinkedList through one typed suite: what they share is tested once for both.
#include "Elements.h"

#include "qn/collections/xcom/ArrayList.h"
#include "qn/collections/xcom/LinkedList.h"

#include <functional>
#include <typeinfo>
#include <vector>

namespace collections_test {
namespace {

template <class L> class ListTest : public Balanced {
protected:
    // A list holding the items of values, and those items.
    Reference<L> make(std::initializer_list<int> values) {
        Reference<L> list(new L());
        for (int v : values)
            list->add(unk(item(v)));
        return list;
    }
    static std::vector<int> values(const List& list) {
        std::vector<int> result;
        for (Reference<ConstIterator> it = list.createConstIterator(); it->hasNext();)
            result.push_back(valueOf(it->next()));
        return result;
    }
};

using ListTypes = ::testing::Types<ArrayList, LinkedList>;
TYPED_TEST_SUITE(ListTest, ListTypes);

// The count that clear adds: one per element removed plus one for an ArrayList, one in all
// for a LinkedList.
int clearCount(const ArrayList&, int size) {
    return size + 1;
}
int clearCount(const LinkedList&, int) {
    return 1;
}

TYPED_TEST(ListTest, IndexChecksComeBeforeAnyChange) {
    Reference<TypeParam> list = this->make({1, 2, 3});
    Reference<Item> x = item(9);
    const std::vector<std::function<void()>> refused = {
        [&] { list->add(-1, unk(x)); },
        [&] { list->add(4, unk(x)); },
        [&] { list->get(3); },
        [&] { list->get(-1); },
        [&] { list->set(3, unk(x)); },
        [&] { list->set(-1, unk(x)); },
        [&] { list->remove(3); },
        [&] { list->remove(-1); },
        [&] { list->createListIterator(4); },
        [&] { list->createSubList(2, 4); },
        [&] { list->createSubList(2, 1); },
        [&] { list->addAll(5, *this->make({7})); },
    };
    for (size_t i = 0; i < refused.size(); ++i) {
        const int32_t count = list->getModificationCount();
        EXPECT_THROW(refused[i](), RangeErrorException) << "case " << i;
        EXPECT_EQ(this->values(*list), (std::vector<int>{1, 2, 3})) << "case " << i;
        EXPECT_EQ(list->getModificationCount(), count) << "case " << i;
    }
    EXPECT_EQ(x->GetRefCount(), 1u);
    EXPECT_THROW(this->make({})->get(0), RangeErrorException);
    EXPECT_TRUE(list->add(3, unk(x)));
    EXPECT_EQ(this->values(*list), (std::vector<int>{1, 2, 3, 9}));
}

TYPED_TEST(ListTest, ModificationCountsEveryChangeButAppending) {
    Reference<TypeParam> list = this->make({1, 2, 3});
    const int32_t start = list->getModificationCount();
    list->add(unk(item(4)));
    EXPECT_EQ(list->getModificationCount(), start);
    list->add(4, unk(item(5)));
    list->set(0, unk(item(0)));
    list->remove(1);
    EXPECT_EQ(list->getModificationCount(), start + 3);
    EXPECT_EQ(this->values(*list), (std::vector<int>{0, 3, 4, 5}));
    const int32_t beforeClear = list->getModificationCount();
    list->clear();
    EXPECT_EQ(list->getModificationCount(), beforeClear + clearCount(*list, 4));
    EXPECT_TRUE(list->isEmpty());
}

TYPED_TEST(ListTest, IteratorsSurviveAppendingOnly) {
    Reference<TypeParam> list = this->make({1, 2});
    Reference<Iterator> it = list->createIterator();
    EXPECT_EQ(valueOf(it->next()), 1);
    EXPECT_EQ(valueOf(it->next()), 2);
    EXPECT_FALSE(it->hasNext());
    list->add(unk(item(3)));
    ASSERT_TRUE(it->hasNext());
    EXPECT_EQ(valueOf(it->next()), 3);

    const std::vector<std::function<void(TypeParam&)>> changes = {
        [](TypeParam& l) { l.add(l.getSize(), unk(item(4))); },
        [](TypeParam& l) { l.set(0, unk(item(0))); },
        [](TypeParam& l) { l.remove(0); },
        [](TypeParam& l) { l.clear(); },
    };
    for (size_t i = 0; i < changes.size(); ++i) {
        Reference<TypeParam> other = this->make({1, 2});
        Reference<ListIterator> li = other->createListIterator(1);
        changes[i](*other);
        // A plain Exception: there is no subclass for this failure.
        try {
            li->next();
            ADD_FAILURE() << "case " << i << " not detected";
        } catch (const Exception& e) {
            EXPECT_EQ(typeid(e), typeid(Exception)) << "case " << i;
        }
        EXPECT_THROW(li->previous(), Exception);
        EXPECT_THROW(li->remove(), Exception);
    }
}

// Walks that change the list through the iterator are checked against a model by the fuzzer;
// here, what it refuses.
TYPED_TEST(ListTest, ListIteratorRefusesChangesWithoutACurrentElement) {
    Reference<TypeParam> list = this->make({1, 2, 3});
    Reference<ListIterator> it = list->createListIterator(0);
    EXPECT_THROW(it->remove(), IllegalStateException);
    EXPECT_THROW(it->set(unk(item(0))), IllegalStateException);
    EXPECT_EQ(valueOf(it->next()), 1);
    it->remove();
    EXPECT_THROW(it->remove(), IllegalStateException);
    EXPECT_EQ(it->nextIndex(), 0);
    it->add(unk(item(10)));
    EXPECT_EQ(valueOf(it->next()), 2);
    EXPECT_EQ(valueOf(it->next()), 3);
    EXPECT_FALSE(it->hasNext());
    EXPECT_THROW(it->next(), RangeErrorException);
    EXPECT_EQ(this->values(*list), (std::vector<int>{10, 2, 3}));
}

TYPED_TEST(ListTest, SubListReadsAndWritesThrough) {
    Reference<TypeParam> list = this->make({0, 1, 2, 3, 4});
    Reference<List> sub = list->createSubList(1, 4);
    EXPECT_EQ(this->values(*sub), (std::vector<int>{1, 2, 3}));
    EXPECT_THROW(sub->get(3), RangeErrorException);
    sub->set(0, unk(item(10)));
    sub->add(unk(item(11)));
    EXPECT_EQ(valueOf(sub->remove(1)), 2);
    sub->add(0, unk(item(12)));
    EXPECT_EQ(this->values(*list), (std::vector<int>{0, 12, 10, 3, 11, 4}));
    Reference<List> inner = sub->createSubList(1, 3);
    inner->clear();
    EXPECT_EQ(this->values(*sub), (std::vector<int>{12, 11}));
    EXPECT_EQ(this->values(*list), (std::vector<int>{0, 12, 11, 4}));
    // Appending to the backing list keeps the view; any other change ends it.
    list->add(unk(item(5)));
    EXPECT_EQ(sub->getSize(), 2);
    list->remove(0);
    EXPECT_THROW(sub->getSize(), Exception);
    EXPECT_THROW(sub->get(0), Exception);
}

TYPED_TEST(ListTest, OrderEqualityAndHash) {
    Reference<TypeParam> empty = this->make({});
    EXPECT_EQ(empty->hashCode(), 1u);
    Reference<TypeParam> one = this->make({7});
    EXPECT_EQ(one->hashCode(), 38u + 7u);
    Reference<TypeParam> three = this->make({1, 2, 3});
    EXPECT_EQ(three->hashCode(), ((38u + 1u) * 38u + 2u) * 38u + 3u);

    Reference<TypeParam> prefix = this->make({1, 2});
    EXPECT_EQ(prefix->compareTo(*three), -1);
    EXPECT_EQ(three->compareTo(*prefix), 1);
    EXPECT_EQ(three->compareTo(*this->make({1, 3})), -1);
    // Either list class holding equal elements in order is equal.
    Reference<LinkedList> linked(new LinkedList(*three));
    Reference<ArrayList> array(new ArrayList(*three));
    EXPECT_TRUE(three->equals(*linked));
    EXPECT_TRUE(three->equals(*array));
    EXPECT_EQ(three->compareTo(*linked), 0);
    EXPECT_TRUE(three->equals(*three));
    Reference<HashSet> set(new HashSet(*three));
    EXPECT_FALSE(three->equals(*set));
    EXPECT_THROW(three->compareTo(*set), CastFailedException);
    EXPECT_FALSE(three->equals(*prefix));
}

TYPED_TEST(ListTest, BulkOperationsAndNulls) {
    Reference<TypeParam> list = this->make({1, 2, 1, 3});
    // One removal per element of the argument: one of the two 1s stays.
    EXPECT_TRUE(list->removeAll(*this->make({1, 4})));
    EXPECT_EQ(this->values(*list), (std::vector<int>{2, 1, 3}));
    EXPECT_TRUE(list->retainAll(*this->make({3, 1})));
    EXPECT_EQ(this->values(*list), (std::vector<int>{1, 3}));
    EXPECT_TRUE(list->containsAll(*this->make({3, 1, 3})));
    EXPECT_FALSE(list->containsAll(*this->make({2})));
    // A list may add itself.
    EXPECT_TRUE(list->addAll(*list));
    EXPECT_TRUE(list->addAll(1, *list));
    EXPECT_EQ(this->values(*list), (std::vector<int>{1, 1, 3, 1, 3, 3, 1, 3}));

    Reference<IQNUnknown> old = list->set(2, nullptr);
    EXPECT_EQ(valueOf(old), 3);
    EXPECT_EQ(list->indexOf(nullptr), 2);
    EXPECT_TRUE(list->contains(nullptr));
    EXPECT_FALSE(list->get(2));
    EXPECT_TRUE(list->remove(nullptr));
    EXPECT_EQ(list->indexOf(nullptr), -1);
}

TYPED_TEST(ListTest, CopiesShareTheComparatorAndTakeNewReferences) {
    Reference<Item> x = item(1);
    Reference<PoisonComparator> comparator(new PoisonComparator(nullptr));
    Reference<TypeParam> list(new TypeParam(comparator.get()));
    list->add(unk(x));
    list->add(nullptr);
    Reference<Object> copy = list->clone();
    auto* typed = dynamic_cast<TypeParam*>(copy.get());
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->getComparator(), comparator.get());
    EXPECT_EQ(x->GetRefCount(), 3u);
    list->clear();
    EXPECT_EQ(this->values(*typed), (std::vector<int>{1, -1}));
    // The comparator's failure reaches the caller as its result code.
    Reference<TypeParam> poisoned(new TypeParam(new PoisonComparator(x->GetUnknown())));
    poisoned->add(unk(item(2)));
    try {
        poisoned->contains(unk(x));
        ADD_FAILURE() << "no exception";
    } catch (const ResultException& e) {
        EXPECT_EQ(e.getResult(), QN_E_INVALIDARG);
    }
}

// Removing through one iterator invalidates every other iterator and view of the list.
TYPED_TEST(ListTest, OneIteratorsChangeEndsTheOthers) {
    Reference<TypeParam> list = this->make({1, 2, 3, 4});
    Reference<ListIterator> a = list->createListIterator(4);
    Reference<ConstIterator> b = list->createConstIterator();
    Reference<List> sub = list->createSubList(0, 2);
    EXPECT_EQ(valueOf(a->previous()), 4);
    EXPECT_EQ(valueOf(a->previous()), 3);
    a->remove();
    EXPECT_EQ(a->nextIndex(), 2);
    EXPECT_EQ(valueOf(a->next()), 4);
    EXPECT_THROW(b->next(), Exception);
    EXPECT_THROW(sub->get(0), Exception);
    EXPECT_EQ(this->values(*list), (std::vector<int>{1, 2, 4}));
}

class ArrayListTest : public Balanced {};

TEST_F(ArrayListTest, CapacityGrowsByHalf) {
    Reference<ArrayList> list(new ArrayList());
    EXPECT_EQ(list->getCapacity(), 0);
    std::vector<int> capacities;
    for (int i = 0; i < 28; ++i) {
        list->add(nullptr);
        if (capacities.empty() || capacities.back() != list->getCapacity())
            capacities.push_back(list->getCapacity());
    }
    EXPECT_EQ(capacities, (std::vector<int>{1, 2, 3, 4, 6, 9, 13, 19, 28}));
    list->clear();
    EXPECT_EQ(list->getCapacity(), 28);
}

} // namespace
} // namespace collections_test
