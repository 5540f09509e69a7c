// The collections against the standard containers a user would otherwise pick, on the same
// elements: ArrayList and LinkedList against std::vector and std::list of counted references;
// HashMap (hashing and comparing through the default comparator) against std::unordered_map
// calling the same hashCode and equals; IntegerHashMap and StringHashMap against
// std::unordered_map keyed by int32_t and std::u16string.
#include "qn/collections/IntegerHashMap.h"
#include "qn/collections/StringHashMap.h"
#include "qn/collections/xcom/ArrayList.h"
#include "qn/collections/xcom/HashMap.h"
#include "qn/collections/xcom/LinkedList.h"
#include "qn/core/Number.h"

#include <benchmark/benchmark.h>

#include <list>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using namespace qn;
using namespace qn::collections;
using namespace qn::collections::xcom;

constexpr int LIST_SIZE = 10000;
const int MAP_SIZES[] = {1000, 10000, 100000, 1000000};

// n boxed integers, spread so that neighbouring keys do not fall into neighbouring buckets.
const std::vector<Reference<Object>>& boxedKeys(int n) {
    static std::map<int, std::vector<Reference<Object>>> cache;
    std::vector<Reference<Object>>& keys = cache[n];
    if (keys.empty()) {
        for (int i = 0; i < n; ++i)
            keys.emplace_back(new Integer32(static_cast<int32_t>(i * 2654435761u)));
    }
    return keys;
}

std::vector<int32_t> integerKeys(int n) {
    std::vector<int32_t> keys;
    for (int i = 0; i < n; ++i)
        keys.push_back(static_cast<int32_t>(i * 2654435761u));
    return keys;
}

// Keys as property and bundle keys look: "section.entry-" and a number.
const std::vector<std::u16string>& textKeys(int n) {
    static std::map<int, std::vector<std::u16string>> cache;
    std::vector<std::u16string>& keys = cache[n];
    if (keys.empty()) {
        for (int i = 0; i < n; ++i) {
            std::u16string key = u"section.entry-";
            for (int v = i; v; v /= 10)
                key += static_cast<char16_t>(u'0' + v % 10);
            keys.push_back(key);
        }
    }
    return keys;
}

Object* sharedValue() {
    static Reference<Object> value(new Object());
    return value.get();
}

void perItem(benchmark::State& state, int64_t items) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * items);
}

// The standard containers' counterparts of the default comparator's calls.
struct ObjectHash {
    size_t operator()(const Reference<Object>& key) const { return key->hashCode(); }
};
struct ObjectEqual {
    bool operator()(const Reference<Object>& a, const Reference<Object>& b) const {
        return a->equals(*b);
    }
};
using ObjectMap = std::unordered_map<Reference<Object>, Reference<Object>, ObjectHash, ObjectEqual>;

// Lists: append LIST_SIZE elements, read each by index, iterate.

template <class L> void listAppend(benchmark::State& state) {
    const auto& elements = boxedKeys(LIST_SIZE);
    for (auto _ : state) {
        Reference<L> list(new L());
        for (const auto& e : elements)
            list->add(e->GetUnknown());
        benchmark::DoNotOptimize(list->getSize());
    }
    perItem(state, LIST_SIZE);
}

template <class C> void stdAppend(benchmark::State& state) {
    const auto& elements = boxedKeys(LIST_SIZE);
    for (auto _ : state) {
        C list;
        for (const auto& e : elements)
            list.push_back(e);
        benchmark::DoNotOptimize(list.size());
    }
    perItem(state, LIST_SIZE);
}

template <class L> void listIterate(benchmark::State& state) {
    Reference<L> list(new L());
    for (const auto& e : boxedKeys(LIST_SIZE))
        list->add(e->GetUnknown());
    for (auto _ : state) {
        for (Reference<Iterator> it = list->createIterator(); it->hasNext();)
            benchmark::DoNotOptimize(it->next().get());
    }
    perItem(state, LIST_SIZE);
}

template <class C> void stdIterate(benchmark::State& state) {
    const auto& elements = boxedKeys(LIST_SIZE);
    C list(elements.begin(), elements.end());
    for (auto _ : state) {
        for (const auto& e : list) {
            Reference<Object> held = e;
            benchmark::DoNotOptimize(held.get());
        }
    }
    perItem(state, LIST_SIZE);
}

void arrayGet(benchmark::State& state) {
    Reference<ArrayList> list(new ArrayList());
    for (const auto& e : boxedKeys(LIST_SIZE))
        list->add(e->GetUnknown());
    for (auto _ : state) {
        for (int i = 0; i < LIST_SIZE; ++i)
            benchmark::DoNotOptimize(list->get(i).get());
    }
    perItem(state, LIST_SIZE);
}

void vectorGet(benchmark::State& state) {
    const std::vector<Reference<Object>> list = boxedKeys(LIST_SIZE);
    for (auto _ : state) {
        for (int i = 0; i < LIST_SIZE; ++i) {
            Reference<Object> held = list[static_cast<size_t>(i)];
            benchmark::DoNotOptimize(held.get());
        }
    }
    perItem(state, LIST_SIZE);
}

// HashMap: put n keys into a new map, get each, put and remove each.

void hashMapPut(benchmark::State& state, int n) {
    const auto& keys = boxedKeys(n);
    for (auto _ : state) {
        Reference<HashMap> map(new HashMap());
        for (const auto& k : keys)
            map->put(k->GetUnknown(), sharedValue()->GetUnknown());
        benchmark::DoNotOptimize(map->getSize());
    }
    perItem(state, n);
}

void stdObjectPut(benchmark::State& state, int n) {
    const auto& keys = boxedKeys(n);
    for (auto _ : state) {
        ObjectMap map;
        for (const auto& k : keys)
            map[k] = sharedValue();
        benchmark::DoNotOptimize(map.size());
    }
    perItem(state, n);
}

void hashMapGet(benchmark::State& state, int n) {
    const auto& keys = boxedKeys(n);
    Reference<HashMap> map(new HashMap());
    for (const auto& k : keys)
        map->put(k->GetUnknown(), sharedValue()->GetUnknown());
    for (auto _ : state) {
        for (const auto& k : keys)
            benchmark::DoNotOptimize(map->get(k->GetUnknown()).get());
    }
    perItem(state, n);
}

void stdObjectGet(benchmark::State& state, int n) {
    const auto& keys = boxedKeys(n);
    ObjectMap map;
    for (const auto& k : keys)
        map[k] = sharedValue();
    for (auto _ : state) {
        for (const auto& k : keys) {
            auto found = map.find(k);
            Reference<Object> value = found == map.end() ? nullptr : found->second;
            benchmark::DoNotOptimize(value.get());
        }
    }
    perItem(state, n);
}

void hashMapRemove(benchmark::State& state, int n) {
    const auto& keys = boxedKeys(n);
    for (auto _ : state) {
        Reference<HashMap> map(new HashMap());
        for (const auto& k : keys)
            map->put(k->GetUnknown(), sharedValue()->GetUnknown());
        for (const auto& k : keys)
            benchmark::DoNotOptimize(map->remove(k->GetUnknown()).get());
    }
    perItem(state, 2 * n);
}

void stdObjectRemove(benchmark::State& state, int n) {
    const auto& keys = boxedKeys(n);
    for (auto _ : state) {
        ObjectMap map;
        for (const auto& k : keys)
            map[k] = sharedValue();
        for (const auto& k : keys)
            benchmark::DoNotOptimize(map.erase(k));
    }
    perItem(state, 2 * n);
}

// IntegerHashMap and StringHashMap: look-ups of n present keys.

void integerGet(benchmark::State& state, int n) {
    const std::vector<int32_t> keys = integerKeys(n);
    IntegerHashMap map;
    for (int32_t k : keys)
        map.put(k, sharedValue());
    for (auto _ : state) {
        for (int32_t k : keys)
            benchmark::DoNotOptimize(map.get(k).get());
    }
    perItem(state, n);
}

void stdIntegerGet(benchmark::State& state, int n) {
    const std::vector<int32_t> keys = integerKeys(n);
    std::unordered_map<int32_t, Reference<Object>> map;
    for (int32_t k : keys)
        map[k] = sharedValue();
    for (auto _ : state) {
        for (int32_t k : keys) {
            auto found = map.find(k);
            Reference<Object> value = found == map.end() ? nullptr : found->second;
            benchmark::DoNotOptimize(value.get());
        }
    }
    perItem(state, n);
}

void integerPut(benchmark::State& state, int n) {
    const std::vector<int32_t> keys = integerKeys(n);
    for (auto _ : state) {
        IntegerHashMap map;
        for (int32_t k : keys)
            map.put(k, sharedValue());
        benchmark::DoNotOptimize(map.getSize());
    }
    perItem(state, n);
}

void stdIntegerPut(benchmark::State& state, int n) {
    const std::vector<int32_t> keys = integerKeys(n);
    for (auto _ : state) {
        std::unordered_map<int32_t, Reference<Object>> map;
        for (int32_t k : keys)
            map[k] = sharedValue();
        benchmark::DoNotOptimize(map.size());
    }
    perItem(state, n);
}

void stringGet(benchmark::State& state, int n) {
    const auto& keys = textKeys(n);
    StringHashMap map;
    for (const auto& k : keys)
        map.put(String(k.data(), static_cast<int32_t>(k.size())), sharedValue());
    for (auto _ : state) {
        for (const auto& k : keys)
            benchmark::DoNotOptimize(map.get(k.data(), static_cast<int32_t>(k.size())).get());
    }
    perItem(state, n);
}

void stdStringGet(benchmark::State& state, int n) {
    const auto& keys = textKeys(n);
    std::unordered_map<std::u16string, Reference<Object>> map;
    for (const auto& k : keys)
        map[k] = sharedValue();
    for (auto _ : state) {
        for (const auto& k : keys) {
            auto found = map.find(k);
            Reference<Object> value = found == map.end() ? nullptr : found->second;
            benchmark::DoNotOptimize(value.get());
        }
    }
    perItem(state, n);
}

void stringPut(benchmark::State& state, int n) {
    const auto& keys = textKeys(n);
    for (auto _ : state) {
        StringHashMap map;
        for (const auto& k : keys)
            map.put(String(k.data(), static_cast<int32_t>(k.size())), sharedValue());
        benchmark::DoNotOptimize(map.getSize());
    }
    perItem(state, n);
}

void stdStringPut(benchmark::State& state, int n) {
    const auto& keys = textKeys(n);
    for (auto _ : state) {
        std::unordered_map<std::u16string, Reference<Object>> map;
        for (const auto& k : keys)
            map[k] = sharedValue();
        benchmark::DoNotOptimize(map.size());
    }
    perItem(state, n);
}

void registerAll() {
    benchmark::RegisterBenchmark("list.ArrayAppend/ours", listAppend<ArrayList>);
    benchmark::RegisterBenchmark("list.ArrayAppend/std::vector",
                                 stdAppend<std::vector<Reference<Object>>>);
    benchmark::RegisterBenchmark("list.ArrayGet/ours", arrayGet);
    benchmark::RegisterBenchmark("list.ArrayGet/std::vector", vectorGet);
    benchmark::RegisterBenchmark("list.ArrayIterate/ours", listIterate<ArrayList>);
    benchmark::RegisterBenchmark("list.ArrayIterate/std::vector",
                                 stdIterate<std::vector<Reference<Object>>>);
    benchmark::RegisterBenchmark("list.LinkedAppend/ours", listAppend<LinkedList>);
    benchmark::RegisterBenchmark("list.LinkedAppend/std::list",
                                 stdAppend<std::list<Reference<Object>>>);
    benchmark::RegisterBenchmark("list.LinkedIterate/ours", listIterate<LinkedList>);
    benchmark::RegisterBenchmark("list.LinkedIterate/std::list",
                                 stdIterate<std::list<Reference<Object>>>);
    const std::string peer = "std::unordered_map";
    for (int n : MAP_SIZES) {
        const std::string size = std::to_string(n);
        const auto add = [&](const std::string& name, void (*ours)(benchmark::State&, int),
                             void (*theirs)(benchmark::State&, int)) {
            benchmark::RegisterBenchmark((name + "." + size + "/ours").c_str(), ours, n);
            benchmark::RegisterBenchmark((name + "." + size + "/" + peer).c_str(), theirs, n);
        };
        add("hashmap.Put", hashMapPut, stdObjectPut);
        add("hashmap.Get", hashMapGet, stdObjectGet);
        add("hashmap.PutRemove", hashMapRemove, stdObjectRemove);
        add("intmap.Put", integerPut, stdIntegerPut);
        add("intmap.Get", integerGet, stdIntegerGet);
        add("strmap.Put", stringPut, stdStringPut);
        add("strmap.Get", stringGet, stdStringGet);
    }
}

} // namespace

int main(int argc, char** argv) {
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
