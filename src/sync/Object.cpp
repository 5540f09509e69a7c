#include "qn/sync/LockObject.h"

namespace qn::sync {

Object::~Object() = default;
LockObject::~LockObject() = default;

} // namespace qn::sync
