// Names of inter-process objects, checked alike on both sides.
#pragma once

#include <cstring>

namespace qncore {

inline bool validIpcName(const char* name) {
    if (!name)
        return false;
    const size_t length = std::strlen(name);
    return length >= 1 && length <= 200 && !std::strpbrk(name, "/\\");
}

} // namespace qncore
