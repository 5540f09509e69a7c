// exec::IRunnable: work that a thread runs. Implemented by any class, counted or not; a Thread
// runs either its target's run or, in a subclass, its own.
#pragma once

#include "qn/core/Config.h"

namespace qn::exec {

class QNCL_API IRunnable {
public:
    virtual ~IRunnable();
    virtual void run() = 0;
};

} // namespace qn::exec
