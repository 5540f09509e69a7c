// Comparator: the default IQNComparator of the collections. An element that answers
// IQNComparable decides for itself; anything else (and null) is ordered by address and hashed
// as its address.
#pragma once

#include "qn/collections/xcom/IQNComparator.h"
#include "qn/core/Object.h"

namespace qn::util {

class QNCL_API Comparator : public Object, public collections::xcom::IQNComparator {
public:
    Comparator() noexcept = default;
    ~Comparator() override;

    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override;
    uint32_t QN_STDCALL AddRef() override { return ComObject::AddRef(); }
    uint32_t QN_STDCALL Release() override { return ComObject::Release(); }

    // Compare asks a for IQNComparable and passes its CompareTo's status on; otherwise the
    // addresses decide (-1, 0 or 1). Hash likewise, with the address as the hash.
    QNRESULT QN_STDCALL Compare(const IQNUnknown* a, const IQNUnknown* b, int* result) override;
    QNRESULT QN_STDCALL Hash(const IQNUnknown* a, unsigned long* result) override;

    // Compare and Hash on two objects, a failure status thrown as ResultException.
    int compare(const Object& a, const Object& b) const;
    unsigned long hash(const Object& a) const;

    // Every Comparator decides alike, so any two are equal (compareTo 0); against any other
    // object the addresses decide, as for Object.
    int32_t compareTo(const Object& other) const override;
    bool equals(const Object& other) const override;

    static const xcom::InterfaceData* GetComIntfMap();
};

} // namespace qn::util
