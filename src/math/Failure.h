// Throwing the library's exceptions with a message, for the arithmetic classes.
#pragma once

#include "qn/core/Exception.h"

namespace qn::math::detail {

// The fault classes (MathDivByZeroException and its kin) have no message constructor; their
// Exception part takes one by assignment, which copies the message and nothing else.
template <class E> [[noreturn]] void fail(const char16_t* message) {
    E e;
    static_cast<Exception&>(e) = Exception(String(message));
    throw e;
}

} // namespace qn::math::detail
