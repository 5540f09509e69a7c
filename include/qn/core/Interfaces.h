// The component interfaces of the object model: the platform's base interface and class
// factory (shared with the core module), and IQNComparable, which every Object implements.
#pragma once

#include "qn/core/Config.h"

#include <cstring>

namespace qn {

using ::IQNCharBuffer;
using ::IQNClassFactory;
using ::IQNUnknown;

// Ordering and hashing across component boundaries; both operations return result codes.
struct IQNComparable : IQNUnknown {
    virtual QNRESULT QN_STDCALL CompareTo(IQNUnknown* other, int32_t* result) = 0;
    virtual QNRESULT QN_STDCALL HashCode(uint32_t* hash) = 0;

protected:
    ~IQNComparable() = default;
};

// 00000000-0000-0000-C000-000000000046
inline const QNGUID IID_IQNUnknown = QN_IID_IQNUnknown;
// 00000001-0000-0000-C000-000000000046
inline const QNGUID IID_IQNClassFactory = QN_IID_IQNClassFactory;
// 72038029-FA65-4255-A916-1C5680ACFEBF
inline const QNGUID IID_IQNComparable = {
    0x72038029, 0xFA65, 0x4255, {0xA9, 0x16, 0x1C, 0x56, 0x80, 0xAC, 0xFE, 0xBF}};
// 1F2639A2-1EBC-4E20-8560-0AA59F8ACB39
inline const QNGUID IID_IQNCharBuffer = QN_IID_IQNCharBuffer;

// All 16 bytes compared.
inline bool isEqualGuid(const QNGUID& a, const QNGUID& b) {
    return std::memcmp(&a, &b, sizeof(QNGUID)) == 0;
}

} // namespace qn
