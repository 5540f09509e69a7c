// The collections against simple models: the first byte picks ArrayList, LinkedList, HashMap,
// HashSet, IntegerHashMap or StringHashMap, the rest drives a sequence of operations that run
// on the collection and on a std::vector, std::map or std::set beside it. Results, exceptions
// and the final contents must agree, and every object must be gone when the input is done.
#include "qn/collections/IntegerHashMap.h"
#include "qn/collections/StringHashMap.h"
#include "qn/collections/xcom/ArrayList.h"
#include "qn/collections/xcom/HashMap.h"
#include "qn/collections/xcom/HashSet.h"
#include "qn/collections/xcom/LinkedList.h"
#include "qn/core/Exception.h"
#include "qn/core/Number.h"

#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace qn;
using namespace qn::collections;
using namespace qn::collections::xcom;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
    bool more() const { return m_at < m_size; }
    uint8_t byte() { return m_at < m_size ? m_data[m_at++] : 0; }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_at = 0;
};

// Elements are small boxed integers or null (-1 in the models).
int elementValue(Input& in) {
    const uint8_t b = in.byte();
    return b >= 240 ? -1 : b % 16;
}

Reference<Object> box(int value) {
    if (value < 0)
        return nullptr;
    return Reference<Object>(new Integer32(value));
}

IQNUnknown* unknown(const Reference<Object>& o) {
    return o ? o->GetUnknown() : nullptr;
}

int unbox(const Reference<IQNUnknown>& element) {
    if (!element)
        return -1;
    const auto* value = dynamic_cast<const Integer32*>(element.get());
    check(value != nullptr);
    return value->int32Value();
}

int unbox(const Reference<Object>& value) {
    return unbox(Reference<IQNUnknown>(value ? value->GetUnknown() : nullptr));
}

template <class Body> bool refusesIndex(Body body) {
    try {
        body();
        return false;
    } catch (const RangeErrorException&) {
        return true;
    }
}

template <class L> void fuzzList(Input& in) {
    Reference<L> list(new L());
    std::vector<int> model;
    while (in.more()) {
        const uint8_t op = in.byte() % 10;
        const int size = static_cast<int>(model.size());
        const int index = static_cast<int>(in.byte() % (size + 4)) - 2;
        const bool inside = index >= 0 && index < size;
        const int v = elementValue(in);
        const Reference<Object> e = box(v);
        switch (op) {
        case 0:
            list->add(unknown(e));
            model.push_back(v);
            break;
        case 1: {
            const bool refused = refusesIndex([&] { list->add(index, unknown(e)); });
            check(refused == (index < 0 || index > size));
            if (!refused)
                model.insert(model.begin() + index, v);
            break;
        }
        case 2: {
            int got = 0;
            check(refusesIndex([&] { got = unbox(list->get(index)); }) == !inside);
            check(!inside || got == model[static_cast<size_t>(index)]);
            break;
        }
        case 3: {
            int old = 0;
            check(refusesIndex([&] { old = unbox(list->set(index, unknown(e))); }) == !inside);
            if (inside) {
                check(old == model[static_cast<size_t>(index)]);
                model[static_cast<size_t>(index)] = v;
            }
            break;
        }
        case 4: {
            int old = 0;
            check(refusesIndex([&] { old = unbox(list->remove(index)); }) == !inside);
            if (inside) {
                check(old == model[static_cast<size_t>(index)]);
                model.erase(model.begin() + index);
            }
            break;
        }
        case 5: {
            int first = -1, last = -1;
            for (int i = 0; i < size; ++i) {
                if (model[static_cast<size_t>(i)] == v) {
                    last = i;
                    if (first < 0)
                        first = i;
                }
            }
            check(list->indexOf(unknown(e)) == first);
            check(list->lastIndexOf(unknown(e)) == last);
            check(list->remove(unknown(e)) == (first >= 0));
            if (first >= 0)
                model.erase(model.begin() + first);
            break;
        }
        case 6:
            list->clear();
            model.clear();
            break;
        case 7: {
            // A walk with a list iterator, changing the list through it.
            if (index < 0 || index > size)
                break;
            Reference<ListIterator> it = list->createListIterator(index);
            int cursor = index;
            for (int steps = in.byte() % 8; steps > 0; --steps) {
                const uint8_t move = in.byte() % 5;
                if (move == 0 && it->hasNext()) {
                    check(unbox(it->next()) == model[static_cast<size_t>(cursor++)]);
                } else if (move == 1 && it->hasPrevious()) {
                    check(unbox(it->previous()) == model[static_cast<size_t>(--cursor)]);
                    if (in.byte() % 2) {
                        it->remove();
                        model.erase(model.begin() + cursor);
                    }
                } else if (move == 2) {
                    const int w = elementValue(in);
                    it->add(unknown(box(w)));
                    model.insert(model.begin() + cursor++, w);
                } else if (move == 3 && cursor > 0) {
                    check(unbox(it->previous()) == model[static_cast<size_t>(--cursor)]);
                    const int w = elementValue(in);
                    it->set(unknown(box(w)));
                    model[static_cast<size_t>(cursor)] = w;
                }
                check(it->nextIndex() == cursor);
            }
            break;
        }
        case 8: {
            // A change through a sub-list view.
            const int from = inside ? index : 0;
            const int to = from + in.byte() % (size - from + 1);
            Reference<List> sub = list->createSubList(from, to);
            check(sub->getSize() == to - from);
            if (to > from) {
                check(unbox(sub->remove(0)) == model[static_cast<size_t>(from)]);
                model.erase(model.begin() + from);
            }
            sub->add(unknown(e));
            model.insert(model.begin() + (to > from ? to - 1 : to), v);
            break;
        }
        default: {
            Reference<ArrayList> copy(new ArrayList());
            for (int m : model)
                copy->add(unknown(box(m)));
            check(list->equals(*copy) && list->hashCode() == copy->hashCode());
            check(list->compareTo(*copy) == 0);
            break;
        }
        }
    }
    check(list->getSize() == static_cast<int>(model.size()));
    size_t i = 0;
    for (Reference<Iterator> it = list->createIterator(); it->hasNext(); ++i)
        check(unbox(it->next()) == model[i]);
}

void fuzzHashMap(Input& in) {
    Reference<HashMap> map(new HashMap(1 + in.byte() % 5));
    std::map<int, int> model;
    // clear keeps the map's size: what it reports beyond the model.
    int cleared = 0;
    while (in.more()) {
        const uint8_t op = in.byte() % 8;
        const int k = elementValue(in);
        const int v = elementValue(in);
        const Reference<Object> key = box(k);
        switch (op) {
        case 0:
        case 1: {
            const Reference<IQNUnknown> old = map->put(unknown(key), unknown(box(v)));
            const auto found = model.find(k);
            check(found == model.end() ? !old : unbox(old) == found->second);
            model[k] = v;
            break;
        }
        case 2: {
            const auto found = model.find(k);
            check(map->containsKey(unknown(key)) == (found != model.end()));
            check(unbox(map->get(unknown(key))) == (found == model.end() ? -1 : found->second));
            break;
        }
        case 3: {
            const auto found = model.find(k);
            const Reference<IQNUnknown> old = map->remove(unknown(key));
            check(found == model.end() ? !old : unbox(old) == found->second);
            if (found != model.end())
                model.erase(found);
            break;
        }
        case 4: {
            bool present = false;
            for (const auto& [mk, mv] : model)
                present = present || mv == v;
            check(map->containsValue(unknown(box(v))) == present);
            check(map->createValueCollection()->contains(unknown(box(v))) == present);
            break;
        }
        case 5:
            map->clear();
            cleared += static_cast<int>(model.size());
            model.clear();
            break;
        case 6: {
            // Removal through the key set's iterator.
            for (Reference<Iterator> it = map->createKeySet()->createIterator(); it->hasNext();) {
                const int mk = unbox(it->next());
                if (mk % 3 == v % 3) {
                    it->remove();
                    model.erase(mk);
                }
            }
            break;
        }
        default: {
            // A copy holds the entries only, so it equals the map while no clear inflated the
            // map's size.
            Reference<HashMap> copy(new HashMap(*static_cast<const Map*>(map.get())));
            check(copy->getSize() == static_cast<int>(model.size()));
            check(copy->equals(*map) == (cleared == 0));
            check(map->hashCode() == 0);
            break;
        }
        }
        check(map->getSize() == static_cast<int>(model.size()) + cleared);
    }
    std::map<int, int> seen;
    for (Reference<Iterator> it = map->createEntrySet()->createIterator(); it->hasNext();) {
        const Reference<IQNUnknown> entry = it->next();
        const auto* e = dynamic_cast<const MapEntry*>(entry.get());
        check(e && seen.emplace(unbox(e->getKey()), unbox(e->getValue())).second);
    }
    check(seen == model);
}

void fuzzHashSet(Input& in) {
    Reference<HashSet> set(new HashSet());
    std::set<int> model;
    int cleared = 0;
    while (in.more()) {
        const uint8_t op = in.byte() % 4;
        const int v = elementValue(in);
        const Reference<Object> e = box(v);
        if (op == 0)
            check(set->add(unknown(e)) == model.insert(v).second);
        else if (op == 1)
            check(set->remove(unknown(e)) == (model.erase(v) == 1));
        else if (op == 2)
            check(set->contains(unknown(e)) == (model.count(v) == 1));
        else {
            set->clear();
            cleared += static_cast<int>(model.size());
            model.clear();
        }
        check(set->getSize() == static_cast<int>(model.size()) + cleared);
    }
    std::set<int> seen;
    for (Reference<Iterator> it = set->createIterator(); it->hasNext();)
        check(seen.insert(unbox(it->next())).second);
    check(seen == model);
}

void fuzzIntegerMap(Input& in) {
    IntegerHashMap map(1 + in.byte() % 5);
    std::map<int32_t, int> model;
    while (in.more()) {
        const uint8_t op = in.byte() % 5;
        const int32_t k = static_cast<int8_t>(in.byte()) * 101 + in.byte() % 3;
        const int v = elementValue(in);
        if (op <= 1) {
            const Reference<Object> old = map.put(k, box(v).get());
            const auto found = model.find(k);
            check(found == model.end() ? !old : unbox(old) == found->second);
            model[k] = v;
        } else if (op == 2) {
            const auto found = model.find(k);
            check(map.containsKey(k) == (found != model.end()));
            check(unbox(map.get(k)) == (found == model.end() ? -1 : found->second));
        } else if (op == 3) {
            const auto found = model.find(k);
            const Reference<Object> old = map.remove(k);
            check(found == model.end() ? !old : unbox(old) == found->second);
            if (found != model.end())
                model.erase(found);
        } else {
            map.clear();
            model.clear();
        }
        check(map.getSize() == static_cast<int>(model.size()));
    }
    std::set<int32_t> seen;
    for (Reference<ConstIterator> it = map.createKeySet()->createConstIterator(); it->hasNext();)
        check(seen.insert(unbox(it->next())).second);
    check(seen.size() == model.size());
    for (const auto& [k, v] : model)
        check(seen.count(k) == 1);
}

// Short keys, and keys of 64 to 100 units that differ where the hash samples nothing.
std::u16string textKey(Input& in) {
    const uint8_t shape = in.byte();
    std::u16string key(shape % 4 == 0 ? 64 + shape % 37 : shape % 6, u'a');
    if (!key.empty())
        key[in.byte() % key.size()] = static_cast<char16_t>(u'b' + in.byte() % 3);
    return key;
}

void fuzzStringMap(Input& in) {
    StringHashMap map(1 + in.byte() % 5);
    std::map<std::u16string, int> model;
    while (in.more()) {
        const uint8_t op = in.byte() % 5;
        const std::u16string k = textKey(in);
        const String key(k.data(), static_cast<int32_t>(k.size()));
        const int v = elementValue(in);
        if (op <= 1) {
            const Reference<Object> old = map.put(key, box(v).get());
            const auto found = model.find(k);
            check(found == model.end() ? !old : unbox(old) == found->second);
            model[k] = v;
        } else if (op == 2) {
            const auto found = model.find(k);
            const int expected = found == model.end() ? -1 : found->second;
            check(map.containsKey(key) == (found != model.end()));
            check(map.containsKey(k.c_str(), -1) == (found != model.end()));
            check(unbox(map.get(k.data(), static_cast<int32_t>(k.size()))) == expected);
            check(unbox(map.get(key)) == expected);
        } else if (op == 3) {
            const auto found = model.find(k);
            const Reference<Object> old = map.remove(key);
            check(found == model.end() ? !old : unbox(old) == found->second);
            if (found != model.end())
                model.erase(found);
        } else {
            map.clear();
            model.clear();
        }
        check(map.getSize() == static_cast<int>(model.size()));
    }
    size_t count = 0;
    for (Reference<ConstIterator> it = map.createKeySet()->createConstIterator(); it->hasNext();
         ++count) {
        const Reference<IQNUnknown> element = it->next();
        const auto* s = dynamic_cast<const String*>(element.get());
        check(s && model.count(std::u16string(s->getData(), static_cast<size_t>(s->getLength()))));
    }
    check(count == model.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The default comparator and the sets' marker live on once made.
    static const bool warm = [] {
        Reference<HashSet> set(new HashSet());
        set->add(nullptr);
        return true;
    }();
    (void)warm;
    const long before = ComObject::liveObjects();
    Input in(data, size);
    switch (in.byte() % 6) {
    case 0:
        fuzzList<ArrayList>(in);
        break;
    case 1:
        fuzzList<LinkedList>(in);
        break;
    case 2:
        fuzzHashMap(in);
        break;
    case 3:
        fuzzHashSet(in);
        break;
    case 4:
        fuzzIntegerMap(in);
        break;
    default:
        fuzzStringMap(in);
        break;
    }
    check(ComObject::liveObjects() == before);
    return 0;
}
