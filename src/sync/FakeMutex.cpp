#include "qn/sync/FakeMutex.h"

namespace qn::sync {

FakeMutex::~FakeMutex() = default;
void FakeMutex::wait() {}
bool FakeMutex::tryWait() {
    return true;
}
void FakeMutex::signal() {}

} // namespace qn::sync
