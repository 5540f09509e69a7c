// AbstractSet: the base of sets. It adds nothing to AbstractCollection but the Set interface;
// comparison, equality and hashing stay those of Object.
#pragma once

#include "qn/collections/xcom/AbstractCollection.h"

namespace qn::collections::xcom {

class QNCL_API AbstractSet : public AbstractCollection, public virtual Set {
public:
    ~AbstractSet() override;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;

    static const qn::xcom::InterfaceData* GetComIntfMap();

protected:
    AbstractSet() = default;
    explicit AbstractSet(const IQNComparator* comparator) : AbstractCollection(comparator) {}
    AbstractSet(const AbstractSet& other) : AbstractCollection(other) {}
};

} // namespace qn::collections::xcom
