// Core-module failures surface as ResultException carrying the core module's code.
#pragma once

#include "qn/core/Exception.h"

namespace qn::sync {

inline void check(QNRESULT r) {
    if (QN_FAILED(r))
        throw ResultException(r);
}

// The result of a timed wait of an event or a gate: true when signalled, false when the time ran
// out (or for any other success code); other failures are thrown.
inline bool timedWaitResult(QNRESULT r) {
    if (r == QN_S_OK)
        return true;
    if (r != QN_E_TIMEOUT)
        check(r);
    return false;
}

} // namespace qn::sync
