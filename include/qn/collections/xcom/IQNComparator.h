// IQNComparator: the component interface that decides equality, order and hash of the elements
// and keys of a collection. Both operations return a result code; the collections raise a
// ResultException with any negative one.
#pragma once

#include "qn/core/Interfaces.h"

namespace qn::collections::xcom {

struct IQNComparator : IQNUnknown {
    // *result < 0, 0 or > 0 as a orders before, equal to or after b.
    virtual QNRESULT QN_STDCALL Compare(const IQNUnknown* a, const IQNUnknown* b, int* result) = 0;
    virtual QNRESULT QN_STDCALL Hash(const IQNUnknown* a, unsigned long* result) = 0;

protected:
    ~IQNComparator() = default;
};

// 176573E2-C217-4F04-AD8E-E677CA683245
inline const QNGUID IID_IQNComparator = {
    0x176573E2, 0xC217, 0x4F04, {0xAD, 0x8E, 0xE6, 0x77, 0xCA, 0x68, 0x32, 0x45}};

} // namespace qn::collections::xcom
