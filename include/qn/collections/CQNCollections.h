// The process-wide default comparator of the collections: one util::Comparator, created on the
// first request under the global lock and released when the library is unloaded.
#pragma once

#include "qn/collections/xcom/IQNComparator.h"
#include "qn/core/Reference.h"

namespace qn::collections {

// A new reference to the one default comparator.
QNCL_API Reference<xcom::IQNComparator> GetDefaultComparator();

class QNCL_API CQNCollections {
public:
    CQNCollections() = delete;

    static Reference<xcom::IQNComparator> getDefaultComparator() { return GetDefaultComparator(); }
};

} // namespace qn::collections
