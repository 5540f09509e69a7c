#include "crypto/HexText.h"
#include "qn/crypto/MD5Digest.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Past 2^32 bits (512 MiB) the bit count carries into its high word, which the padding then
// carries into the digest.
TEST(MD5DigestStressTest, BitCountCarriesIntoItsHighWord) {
    const std::vector<unsigned char> zeros(1 << 20);
    qn::crypto::MD5Digest digest;
    for (int i = 0; i < 512; ++i)
        digest.update(zeros.data(), static_cast<int>(zeros.size()));
    digest.update("a", 1);
    unsigned char out[16];
    digest.getDigest(out, 16);
    EXPECT_EQ(hexText(out, 16), "a79eb9bfb583692856d38e44324fde91");
}

} // namespace
