// Elements for the collection tests: counted items whose order and hash the test chooses, a
// comparator that fails on request, and a fixture that checks every object a test made is gone
// when it ends.
#pragma once

#include "qn/collections/CQNCollections.h"
#include "qn/collections/xcom/HashSet.h"
#include "qn/core/Exception.h"

#include <gtest/gtest.h>

namespace collections_test {

using namespace qn;
using namespace qn::collections;
using namespace qn::collections::xcom;

// Ordered by value; hashed by the hash it was given (its value by default), so tests can put
// different items into one chain.
class Item : public Object {
public:
    explicit Item(int value) : m_value(value), m_hash(static_cast<uint32_t>(value)) {}
    Item(int value, uint32_t hash) : m_value(value), m_hash(hash) {}

    int value() const { return m_value; }
    int32_t compareTo(const Object& other) const override {
        const auto* item = dynamic_cast<const Item*>(&other);
        if (!item)
            throw CastFailedException();
        return m_value < item->m_value ? -1 : m_value > item->m_value ? 1 : 0;
    }
    uint32_t hashCode() const override { return m_hash; }

private:
    int m_value;
    uint32_t m_hash;
};

inline Reference<Item> item(int value) {
    return Reference<Item>(new Item(value));
}
inline Reference<Item> item(int value, uint32_t hash) {
    return Reference<Item>(new Item(value, hash));
}
inline IQNUnknown* unk(const Reference<Item>& i) {
    return i->GetUnknown();
}
// The value of an Item element; -1 for null.
inline int valueOf(const Reference<IQNUnknown>& element) {
    if (!element)
        return -1;
    return dynamic_cast<Item*>(element.get())->value();
}

// The default comparator, except that comparing or hashing the poisoned element fails with
// 0x80070057.
class PoisonComparator : public Object, public IQNComparator {
public:
    explicit PoisonComparator(const IQNUnknown* poison) : m_poison(poison) {}
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return Object::QueryInterface(iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return Object::AddRef(); }
    uint32_t QN_STDCALL Release() override { return Object::Release(); }
    QNRESULT QN_STDCALL Compare(const IQNUnknown* a, const IQNUnknown* b, int* result) override {
        if (a == m_poison || b == m_poison)
            return QN_E_INVALIDARG;
        return GetDefaultComparator()->Compare(a, b, result);
    }
    QNRESULT QN_STDCALL Hash(const IQNUnknown* a, unsigned long* result) override {
        if (a == m_poison)
            return QN_E_INVALIDARG;
        return GetDefaultComparator()->Hash(a, result);
    }

private:
    const IQNUnknown* m_poison;
};

// Checks that a test leaves as many live objects as it found: every element reference a
// collection took has been given back.
class Balanced : public ::testing::Test {
protected:
    void SetUp() override { m_before = ComObject::liveObjects(); }
    void TearDown() override {
        if (m_before >= 0) {
            EXPECT_EQ(ComObject::liveObjects(), m_before) << "objects left alive by this test";
        }
    }

private:
    long m_before = -1;
};

} // namespace collections_test
