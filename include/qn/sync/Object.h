// sync::Object: the abstract base of everything that can be waited on. Every primitive owns one
// handle of the core module; failures of the core module are thrown as ResultException with its
// code.
#pragma once

#include "qn/core/Object.h"

namespace qn::sync {

class QNCL_API Object : public qn::Object {
public:
    ~Object() override;

    // Blocks until acquired or signalled.
    virtual void wait() = 0;
    // Never blocks and never throws: true when acquired or signalled.
    virtual bool tryWait() = 0;
};

} // namespace qn::sync
