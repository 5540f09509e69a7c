// The map interfaces: Map (keys mapped to values, both counted elements, null allowed) and
// MapEntry (one key with its value, as the entry set yields them). Keys are told apart by the
// map's key comparator, values by its value comparator.
#pragma once

#include "qn/collections/xcom/Collection.h"

namespace qn::collections::xcom {

class Map : public IQNUnknown {
public:
    virtual void clear() = 0;
    virtual int32_t compareTo(const Object& other) const = 0;
    virtual bool containsKey(const IQNUnknown* key) const = 0;
    virtual bool containsValue(const IQNUnknown* value) const = 0;
    // Views: they read and change this map; their elements are MapEntry objects, keys or values.
    virtual Reference<Set> createEntrySet() = 0;
    virtual Reference<const Set> createEntrySet() const = 0;
    virtual Reference<Set> createKeySet() = 0;
    virtual Reference<const Set> createKeySet() const = 0;
    virtual Reference<Collection> createValueCollection() = 0;
    virtual Reference<const Collection> createValueCollection() const = 0;
    virtual bool equals(const Object& other) const = 0;
    // Empty when the key is absent (and when it maps to null).
    virtual Reference<IQNUnknown> get(const IQNUnknown* key) const = 0;
    virtual int getSize() const = 0;
    virtual uint32_t hashCode() const = 0;
    // The previous value, empty if there was none.
    virtual Reference<IQNUnknown> put(IQNUnknown* key, IQNUnknown* value) = 0;
    virtual void putAll(const Map& map) = 0;
    // The removed value, empty if the key was absent.
    virtual Reference<IQNUnknown> remove(const IQNUnknown* key) = 0;

    bool isEmpty() const { return getSize() == 0; }

protected:
    ~Map() = default;
};

class MapEntry : public IQNUnknown {
public:
    virtual int32_t compareTo(const Object& other) const = 0;
    virtual bool equals(const Object& other) const = 0;
    virtual Reference<IQNUnknown> getKey() const = 0;
    virtual Reference<IQNUnknown> getValue() const = 0;
    virtual uint32_t hashCode() const = 0;
    // The previous value.
    virtual Reference<IQNUnknown> setValue(IQNUnknown* value) = 0;

protected:
    ~MapEntry() = default;
};

// B04C9489-AD0A-4AD4-B118-2B762D909D31
inline const QNGUID IID_Map = {
    0xB04C9489, 0xAD0A, 0x4AD4, {0xB1, 0x18, 0x2B, 0x76, 0x2D, 0x90, 0x9D, 0x31}};
// E85D6BA4-99D6-402E-8260-66AB1390ED89
inline const QNGUID IID_MapEntry = {
    0xE85D6BA4, 0x99D6, 0x402E, {0x82, 0x60, 0x66, 0xAB, 0x13, 0x90, 0xED, 0x89}};

} // namespace qn::collections::xcom
