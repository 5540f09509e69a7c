// The collections' use of a comparator: a negative status becomes a ResultException carrying it.
// Internal to the library.
#pragma once

#include "qn/collections/xcom/IQNComparator.h"
#include "qn/core/Exception.h"

namespace qn::collections::detail {

inline int compare(const xcom::IQNComparator* comparator, const IQNUnknown* a,
                   const IQNUnknown* b) {
    int result = 0;
    const QNRESULT status = const_cast<xcom::IQNComparator*>(comparator)->Compare(a, b, &result);
    if (status < 0)
        throw ResultException(status);
    return result;
}

inline uint32_t hash(const xcom::IQNComparator* comparator, const IQNUnknown* a) {
    unsigned long result = 0;
    const QNRESULT status = const_cast<xcom::IQNComparator*>(comparator)->Hash(a, &result);
    if (status < 0)
        throw ResultException(status);
    return static_cast<uint32_t>(result);
}

// The comparator to hold: the one given, or the default one for null.
Reference<xcom::IQNComparator> comparatorOrDefault(const xcom::IQNComparator* comparator);

} // namespace qn::collections::detail
