// The library's own view of a BigInteger's limbs, for the arithmetic classes.
#pragma once

#include "math/Natural.h"
#include "qn/math/BigInteger.h"

namespace qn::math {

struct BigIntegerAccess {
    using Block = BigInteger::Block;

    // A block of limbs with one reference; MathOverflowException beyond the size limit.
    static Block* allocate(size_t limbs);
    static void release(Block* block) noexcept;
    static nat::Limb* limbs(Block* block) noexcept;
    // Takes over block, of which used limbs are written, as a number of the given sign (zero
    // when they are all 0).
    static BigInteger make(Block* block, size_t used, int signum);
    static BigInteger fromLimbs(const nat::Limb* limbs, size_t n, int signum);

    static const nat::Limb* limbs(const BigInteger& x) noexcept { return x.limbs(); }
    static size_t size(const BigInteger& x) noexcept { return x.size(); }
};

} // namespace qn::math
