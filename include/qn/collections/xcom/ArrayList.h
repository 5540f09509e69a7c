// ArrayList: a List over one growable array of counted element references (null allowed).
// get and set take constant time, appending amortised constant time; inserting and removing
// inside the list move the tail.
//
// When the array is full it grows to the larger of size + 1 and capacity * 3 / 2 (1, 2, 3, 4,
// 6, 9, 13, ...); it never shrinks, not even on clear. More than 1,073,741,823 elements fail
// with std::length_error. Appending with add(element) leaves the modification count alone, so
// iterators stay valid while elements are appended; add(index, element), set, remove(index)
// count one change each and clear counts one per element plus one.
#pragma once

#include "qn/collections/xcom/AbstractList.h"

namespace qn::collections::xcom {

class QNCL_API ArrayList : public AbstractList {
public:
    // Empty, no storage, the default comparator.
    ArrayList();
    // Null means the default comparator.
    explicit ArrayList(const IQNComparator* comparator);
    // The elements of elements in their iteration order.
    explicit ArrayList(const Collection& elements);
    ArrayList(const Collection& elements, const IQNComparator* comparator);
    // The same comparator and new references to the same elements.
    ArrayList(const ArrayList& other);
    ArrayList& operator=(const ArrayList&) = delete;
    ~ArrayList() override;

    using AbstractList::addAll;
    using AbstractList::remove;
    bool add(IQNUnknown* element) override;
    bool add(int index, IQNUnknown* element) override;
    void clear() override;
    Reference<IQNUnknown> get(int index) const override;
    int getSize() const override { return static_cast<int>(m_end - m_begin); }
    Reference<IQNUnknown> remove(int index) override;
    Reference<IQNUnknown> set(int index, IQNUnknown* element) override;

    // A new ArrayList, as the copy constructor makes it.
    Reference<Object> clone() const override;

    int getCapacity() const noexcept { return static_cast<int>(m_capacityEnd - m_begin); }

private:
    // Room for one more element; the growth rule above.
    void grow();
    // addAll for a constructor: on failure the elements taken so far are released.
    void fill(const Collection& elements);
    void releaseAll() noexcept;

    IQNUnknown** m_begin = nullptr;
    IQNUnknown** m_end = nullptr;
    IQNUnknown** m_capacityEnd = nullptr;
};

} // namespace qn::collections::xcom
