// The iterator interfaces of the collections: forward reading (ConstIterator), forward reading
// with removal (Iterator), and the list forms that also move backwards and, for ListIterator,
// insert and replace at the cursor.
//
// The collection interfaces use the compiler's ordinary member convention rather than
// QN_STDCALL: compareTo, equals and hashCode share their final overriders with Object's
// virtuals, and the interfaces hand out Reference holders, so they are for C++ callers.
#pragma once

#include "qn/core/Interfaces.h"
#include "qn/core/Reference.h"

namespace qn::collections::xcom {

class ConstIterator : public IQNUnknown {
public:
    virtual bool hasNext() const = 0;
    // The next element (which may be null) as a new reference.
    virtual Reference<IQNUnknown> next() = 0;

protected:
    ~ConstIterator() = default;
};

class Iterator : public virtual ConstIterator {
public:
    // Removes the element that next (or previous) returned last.
    virtual void remove() = 0;

protected:
    ~Iterator() = default;
};

class ConstListIterator : public virtual ConstIterator {
public:
    virtual bool hasPrevious() const = 0;
    virtual int nextIndex() const = 0;
    virtual Reference<IQNUnknown> previous() = 0;
    virtual int previousIndex() const = 0;

protected:
    ~ConstListIterator() = default;
};

class ListIterator : public ConstListIterator, public Iterator {
public:
    // Inserts before the cursor; a following next is not affected, previous returns it.
    virtual void add(IQNUnknown* element) = 0;
    // Replaces the element that next or previous returned last.
    virtual void set(IQNUnknown* element) = 0;

protected:
    ~ListIterator() = default;
};

// 8D4C3256-4309-45D1-B0E5-CC7F60FEACFB
inline const QNGUID IID_ConstIterator = {
    0x8D4C3256, 0x4309, 0x45D1, {0xB0, 0xE5, 0xCC, 0x7F, 0x60, 0xFE, 0xAC, 0xFB}};
// 3D6363F6-04C8-4305-A610-18CA4D8D451E
inline const QNGUID IID_Iterator = {
    0x3D6363F6, 0x04C8, 0x4305, {0xA6, 0x10, 0x18, 0xCA, 0x4D, 0x8D, 0x45, 0x1E}};
// F728BE7E-C2F4-4F30-B19F-479ACB401CA9
inline const QNGUID IID_ConstListIterator = {
    0xF728BE7E, 0xC2F4, 0x4F30, {0xB1, 0x9F, 0x47, 0x9A, 0xCB, 0x40, 0x1C, 0xA9}};
// 09F90657-63D1-43BE-86A7-2AC865EC5344
inline const QNGUID IID_ListIterator = {
    0x09F90657, 0x63D1, 0x43BE, {0x86, 0xA7, 0x2A, 0xC8, 0x65, 0xEC, 0x53, 0x44}};

} // namespace qn::collections::xcom
