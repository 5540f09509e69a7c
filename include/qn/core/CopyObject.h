// CopyObject: the base of value-like classes that may be copied. Identity and ownership never
// travel with a value: a copy starts with count 0 and no module, and assignment leaves the
// target's count and module as they were. It is an Object in every other respect.
#pragma once

#include "qn/core/Object.h"

namespace qn {

class QNCL_API CopyObject : public Object {
public:
    CopyObject() noexcept = default;
    CopyObject(const CopyObject&) noexcept : Object(static_cast<const Object*>(nullptr)) {}
    CopyObject& operator=(const CopyObject&) noexcept { return *this; }
    ~CopyObject() override;
};

} // namespace qn
