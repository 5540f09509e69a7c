#include "common/Internal.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

QN_EXTERN_C QNRESULT QN_STDCALL QNPathGetCurrentDirectory(QNWCHAR* buffer, int32_t size,
                                                          int32_t* needed) {
    if (needed)
        *needed = 0;
    if (!buffer && size > 0)
        return QN_E_POINTER;
    return qncore::guard([&] {
        std::vector<char> name(256);
        while (!getcwd(name.data(), name.size())) {
            if (errno != ERANGE)
                return QNResultFromNative(static_cast<uint32_t>(errno));
            name.resize(name.size() * 2);
        }
        const std::u16string wide = qncore::toUtf16(name.data());
        const int32_t total = static_cast<int32_t>(wide.size()) + 1;
        if (needed)
            *needed = total;
        if (size < total)
            return QN_E_BUFFERTOOSMALL;
        std::copy(wide.begin(), wide.end(), buffer);
        buffer[total - 1] = 0;
        return QN_S_OK;
    });
}
