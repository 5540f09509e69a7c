#include "qn/crypto/MessageDigest.h"

namespace qn::crypto {

MessageDigest::~MessageDigest() = default;

} // namespace qn::crypto
