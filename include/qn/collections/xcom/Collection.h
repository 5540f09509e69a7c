// The collection interfaces: Collection (a group of counted elements, null allowed), Set (a
// Collection without duplicates, with the same operations) and List (a Collection in index
// order). Equality of elements is decided by the collection's IQNComparator.
//
// Iterators see the collection itself, not a copy. Members that take a const collection only
// read it; createConstIterator and the const sub-list are available on const collections.
#pragma once

#include "qn/collections/xcom/Iterator.h"

#include <cstdint>

namespace qn {
class Object;
}

namespace qn::collections::xcom {

class Collection : public IQNUnknown {
public:
    // True when the collection changed.
    virtual bool add(IQNUnknown* element) = 0;
    virtual bool addAll(const Collection& elements) = 0;
    virtual void clear() = 0;
    virtual int32_t compareTo(const Object& other) const = 0;
    virtual bool contains(const IQNUnknown* element) const = 0;
    virtual bool containsAll(const Collection& elements) const = 0;
    virtual Reference<Iterator> createIterator() = 0;
    virtual Reference<ConstIterator> createConstIterator() const = 0;
    virtual bool equals(const Object& other) const = 0;
    virtual int getSize() const = 0;
    virtual uint32_t hashCode() const = 0;
    virtual bool remove(const IQNUnknown* element) = 0;
    virtual bool removeAll(const Collection& elements) = 0;
    virtual bool retainAll(const Collection& elements) = 0;

    bool isEmpty() const { return getSize() == 0; }

protected:
    ~Collection() = default;
};

class Set : public virtual Collection {
protected:
    ~Set() = default;
};

class List : public virtual Collection {
public:
    using Collection::add;
    using Collection::addAll;
    using Collection::remove;

    // RangeErrorException unless 0 <= index <= getSize().
    virtual bool add(int index, IQNUnknown* element) = 0;
    virtual bool addAll(int index, const Collection& elements) = 0;
    // The removed element; RangeErrorException unless 0 <= index < getSize().
    virtual Reference<IQNUnknown> remove(int index) = 0;
    virtual Reference<ListIterator> createListIterator(int index) = 0;
    virtual Reference<ConstListIterator> createConstListIterator(int index) const = 0;
    // A view of the elements from (inclusive) to to (exclusive) that reads and changes this
    // list; RangeErrorException unless 0 <= from <= to <= getSize().
    virtual Reference<List> createSubList(int from, int to) = 0;
    virtual Reference<const List> createSubList(int from, int to) const = 0;
    virtual Reference<IQNUnknown> get(int index) const = 0;
    // The first (last) index whose element compares 0 with element, or -1.
    virtual int indexOf(const IQNUnknown* element) const = 0;
    virtual int lastIndexOf(const IQNUnknown* element) const = 0;
    // The previous element.
    virtual Reference<IQNUnknown> set(int index, IQNUnknown* element) = 0;

protected:
    ~List() = default;
};

// 695502D6-FEE2-4F78-AF2D-04503DA2583E
inline const QNGUID IID_Collection = {
    0x695502D6, 0xFEE2, 0x4F78, {0xAF, 0x2D, 0x04, 0x50, 0x3D, 0xA2, 0x58, 0x3E}};
// E9B4D6A7-4F60-4363-AB0B-EA2A4A546BAF
inline const QNGUID IID_List = {
    0xE9B4D6A7, 0x4F60, 0x4363, {0xAB, 0x0B, 0xEA, 0x2A, 0x4A, 0x54, 0x6B, 0xAF}};
// 5FD9C120-A78C-4CDD-B608-DA713242EAB6
inline const QNGUID IID_Set = {
    0x5FD9C120, 0xA78C, 0x4CDD, {0xB6, 0x08, 0xDA, 0x71, 0x32, 0x42, 0xEA, 0xB6}};

} // namespace qn::collections::xcom
