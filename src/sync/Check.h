// Core-module failures surface as ResultException carrying the core module's code.
#pragma once

#include "qn/core/Exception.h"

namespace qn::sync {

inline void check(QNRESULT r) {
    if (QN_FAILED(r))
        throw ResultException(r);
}

} // namespace qn::sync
