// What the stream classes share: core-module failures and bad arguments as exceptions.
#pragma once

#include "qn/core/Exception.h"

namespace qn::io {

inline void check(QNRESULT r) {
    if (QN_FAILED(r))
        throw ResultException(r);
}

// A caller's array must exist wherever bytes are to be moved.
inline void checkBuffer(const void* buf, long len) {
    if (!buf && len > 0)
        throw ResultException(QN_E_POINTER);
}

template <class T> T* checkStream(T* stream) {
    if (!stream)
        throw ResultException(QN_E_POINTER);
    return stream;
}

} // namespace qn::io
