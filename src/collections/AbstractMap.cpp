#include "qn/collections/xcom/AbstractMap.h"

#include "Compare.h"
#include "MapView.h"
#include "qn/collections/CQNCollections.h"

#include <utility>
#include <vector>

namespace qn::collections::xcom {

namespace {

const MapEntry* asEntry(const IQNUnknown* element) {
    return dynamic_cast<const MapEntry*>(element);
}

// The entry set's iterator, yielding the keys or the values of the entries.
class MappedIterator final : public ComObject, public Iterator {
public:
    MappedIterator(Reference<Iterator> entries, bool keys)
        : m_entries(std::move(entries)), m_keys(keys) {}

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        static const qn::xcom::InterfaceData map[] = {
            {&IID_Iterator, qn::xcom::handler(&castInterface<Iterator>), 0},
            {&IID_ConstIterator, qn::xcom::handler(&castInterface<ConstIterator>), 0},
            {nullptr, 0, 0}};
        return qn::xcom::QueryInterfaceMap(map, this, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    bool hasNext() const override { return m_entries->hasNext(); }
    Reference<IQNUnknown> next() override {
        const Reference<IQNUnknown> entry = m_entries->next();
        const MapEntry* e = asEntry(entry.get());
        if (!e)
            throw CastFailedException();
        return m_keys ? e->getKey() : e->getValue();
    }
    void remove() override { m_entries->remove(); }

private:
    Reference<Iterator> m_entries;
    bool m_keys;
};

} // namespace

AbstractMap::AbstractMap()
    : m_keyComparator(GetDefaultComparator()), m_valueComparator(m_keyComparator) {}

AbstractMap::AbstractMap(const IQNComparator* keyComparator, const IQNComparator* valueComparator)
    : m_keyComparator(detail::comparatorOrDefault(keyComparator)),
      m_valueComparator(detail::comparatorOrDefault(valueComparator)) {}

AbstractMap::AbstractMap(const AbstractMap& other)
    : Map(), Object(), m_keyComparator(other.m_keyComparator),
      m_valueComparator(other.m_valueComparator) {}

AbstractMap::~AbstractMap() = default;

const qn::xcom::InterfaceData* AbstractMap::GetComIntfMap() {
    static const qn::xcom::InterfaceData map[] = {
        {&IID_Map, qn::xcom::handler(&castInterface<Map>), 0},
        {nullptr, qn::xcom::handler(&chainToObjectMap), 0},
        {nullptr, 0, 0}};
    return map;
}

QNRESULT QN_STDCALL AbstractMap::QueryInterface(const QNGUID& iid, void** out) {
    return qn::xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
}

int AbstractMap::compareKeys(const IQNUnknown* a, const IQNUnknown* b) const {
    return detail::compare(m_keyComparator.get(), a, b);
}

int AbstractMap::compareValues(const IQNUnknown* a, const IQNUnknown* b) const {
    return detail::compare(m_valueComparator.get(), a, b);
}

uint32_t AbstractMap::hashKey(const IQNUnknown* key) const {
    return detail::hash(m_keyComparator.get(), key);
}

Reference<Iterator> AbstractMap::createViewIterator(ViewKind kind) const {
    Reference<Iterator> entries =
        const_cast<AbstractMap*>(this)->createEntrySet()->createIterator();
    if (kind == VIEW_ENTRIES)
        return entries;
    return Reference<Iterator>(new MappedIterator(std::move(entries), kind == VIEW_KEYS));
}

bool AbstractMap::containsEntry(const IQNUnknown* entry) const {
    const MapEntry* e = asEntry(entry);
    if (!e)
        return false;
    const Reference<IQNUnknown> key = e->getKey();
    if (!containsKey(key.get()))
        return false;
    return compareValues(get(key.get()).get(), e->getValue().get()) == 0;
}

void AbstractMap::clear() {
    for (Reference<Iterator> it = createViewIterator(VIEW_ENTRIES); it->hasNext();) {
        it->next();
        it->remove();
    }
}

bool AbstractMap::containsKey(const IQNUnknown* key) const {
    for (Reference<Iterator> it = createViewIterator(VIEW_KEYS); it->hasNext();) {
        if (compareKeys(it->next().get(), key) == 0)
            return true;
    }
    return false;
}

bool AbstractMap::containsValue(const IQNUnknown* value) const {
    for (Reference<Iterator> it = createViewIterator(VIEW_VALUES); it->hasNext();) {
        if (compareValues(it->next().get(), value) == 0)
            return true;
    }
    return false;
}

Reference<IQNUnknown> AbstractMap::get(const IQNUnknown* key) const {
    for (Reference<Iterator> it = createViewIterator(VIEW_ENTRIES); it->hasNext();) {
        const Reference<IQNUnknown> entry = it->next();
        const MapEntry* e = asEntry(entry.get());
        if (e && compareKeys(e->getKey().get(), key) == 0)
            return e->getValue();
    }
    return Reference<IQNUnknown>();
}

Reference<IQNUnknown> AbstractMap::remove(const IQNUnknown* key) {
    for (Reference<Iterator> it = createViewIterator(VIEW_ENTRIES); it->hasNext();) {
        const Reference<IQNUnknown> entry = it->next();
        const MapEntry* e = asEntry(entry.get());
        if (e && compareKeys(e->getKey().get(), key) == 0) {
            Reference<IQNUnknown> value = e->getValue();
            it->remove();
            return value;
        }
    }
    return Reference<IQNUnknown>();
}

Reference<IQNUnknown> AbstractMap::put(IQNUnknown*, IQNUnknown*) {
    throw UnsupportedOperationException();
}

void AbstractMap::putAll(const Map& map) {
    // A snapshot first, so that a map may put itself.
    std::vector<std::pair<Reference<IQNUnknown>, Reference<IQNUnknown>>> entries;
    entries.reserve(static_cast<size_t>(map.getSize()));
    for (Reference<ConstIterator> it = map.createEntrySet()->createConstIterator();
         it->hasNext();) {
        const Reference<IQNUnknown> entry = it->next();
        const MapEntry* e = asEntry(entry.get());
        if (!e)
            throw CastFailedException();
        entries.emplace_back(e->getKey(), e->getValue());
    }
    for (const auto& entry : entries)
        put(entry.first.get(), entry.second.get());
}

Reference<Set> AbstractMap::createKeySet() {
    return Reference<Set>(new MapView<AbstractSet>(*this, VIEW_KEYS));
}

Reference<const Set> AbstractMap::createKeySet() const {
    return Reference<const Set>(new MapView<AbstractSet>(*this, VIEW_KEYS));
}

Reference<Collection> AbstractMap::createValueCollection() {
    return Reference<Collection>(new MapView<AbstractCollection>(*this, VIEW_VALUES));
}

Reference<const Collection> AbstractMap::createValueCollection() const {
    return Reference<const Collection>(new MapView<AbstractCollection>(*this, VIEW_VALUES));
}

uint32_t AbstractMap::hashCode() const {
    uint32_t sum = 0;
    for (Reference<Iterator> it = createViewIterator(VIEW_ENTRIES); it->hasNext();) {
        const Reference<IQNUnknown> entry = it->next();
        const MapEntry* e = asEntry(entry.get());
        if (!e)
            throw CastFailedException();
        sum += e->hashCode();
    }
    return sum;
}

int32_t AbstractMap::compareToMap(const Map& other) const {
    const int size = getSize();
    const int otherSize = other.getSize();
    if (size != otherSize)
        return size < otherSize ? -1 : 1;
    for (Reference<Iterator> it = createViewIterator(VIEW_ENTRIES); it->hasNext();) {
        const Reference<IQNUnknown> entry = it->next();
        const MapEntry* e = asEntry(entry.get());
        if (!e)
            throw CastFailedException();
        const Reference<IQNUnknown> key = e->getKey();
        if (!other.containsKey(key.get()))
            return 1;
        const int order = compareValues(e->getValue().get(), other.get(key.get()).get());
        if (order != 0)
            return order;
    }
    return 0;
}

int32_t AbstractMap::compareTo(const Object& other) const {
    if (&other == this)
        return 0;
    const auto* map = dynamic_cast<const Map*>(&other);
    if (!map)
        throw CastFailedException();
    return compareToMap(*map);
}

bool AbstractMap::equals(const Object& other) const {
    if (&other == this)
        return true;
    const auto* map = dynamic_cast<const Map*>(&other);
    return map && compareToMap(*map) == 0;
}

} // namespace qn::collections::xcom
