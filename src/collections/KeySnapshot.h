// The key set of IntegerHashMap and StringHashMap: a read-only set over a list of the keys,
// boxed when the set was made. Internal to the library.
#pragma once

#include "qn/collections/xcom/AbstractSet.h"
#include "qn/collections/xcom/ArrayList.h"

namespace qn::collections::detail {

class KeySnapshot final : public xcom::AbstractSet {
public:
    KeySnapshot() : m_keys(new xcom::ArrayList()) {}

    // Appends a key while the snapshot is being built.
    void append(IQNUnknown* key) { m_keys->add(key); }

    int getSize() const override { return m_keys->getSize(); }
    Reference<xcom::Iterator> createIterator() override { return m_keys->createIterator(); }
    Reference<xcom::ConstIterator> createConstIterator() const override {
        return m_keys->createConstIterator();
    }

private:
    Reference<xcom::ArrayList> m_keys;
};

} // namespace qn::collections::detail
