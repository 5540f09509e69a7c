// Blowfish and MD5 against OpenSSL on random keys and data, when the build found OpenSSL.
#include "qn/crypto/BlowFish.h"
#include "qn/crypto/MD5Digest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#if defined(QNCL_TEST_OPENSSL)
// Blowfish sits in OpenSSL 3's legacy provider; its low-level functions still work.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/blowfish.h>
#include <openssl/evp.h>
#endif

namespace {

#if defined(QNCL_TEST_OPENSSL)

using Bytes = std::vector<unsigned char>;

Bytes randomBytes(std::mt19937& random, size_t length) {
    Bytes out(length);
    for (unsigned char& b : out)
        b = static_cast<unsigned char>(random());
    return out;
}

// Keys of every length from 1 to 57: beyond 56 bytes ours counts the first 56, so the 57-byte
// key is compared with OpenSSL keyed with those 56.
TEST(OpenSslDifferentialTest, BlowFishAgreesForEveryKeyLength) {
    std::mt19937 random(20260522);
    for (int length = 1; length <= 57; ++length) {
        const Bytes key = randomBytes(random, static_cast<size_t>(length));
        const Bytes plain = randomBytes(random, 8 * static_cast<size_t>(1 + random() % 40));
        BF_KEY theirs;
        BF_set_key(&theirs, length > 56 ? 56 : length, key.data());
        Bytes expected(plain.size());
        for (size_t at = 0; at < plain.size(); at += 8)
            BF_ecb_encrypt(plain.data() + at, expected.data() + at, &theirs, BF_ENCRYPT);

        const qn::crypto::BlowFish ours(key.data(), length);
        Bytes actual(plain.size());
        ours.encrypt(actual.data(), plain.data(), static_cast<long>(plain.size()));
        ASSERT_EQ(actual, expected) << length << "-byte key";
        ours.decrypt(actual.data(), actual.data(), static_cast<long>(actual.size()));
        ASSERT_EQ(actual, plain) << length << "-byte key";
    }
}

TEST(OpenSslDifferentialTest, MD5AgreesOnRandomMessagesAndPieces) {
    std::mt19937 random(1321);
    for (int round = 0; round < 300; ++round) {
        const size_t length = round < 200 ? static_cast<size_t>(round) : random() % 5000;
        const Bytes message = randomBytes(random, length);
        unsigned char expected[16];
        unsigned int size = 0;
        ASSERT_EQ(EVP_Digest(message.data(), message.size(), expected, &size, EVP_md5(), nullptr),
                  1);

        qn::crypto::MD5Digest ours;
        for (size_t at = 0; at < length;) {
            const size_t piece = std::min<size_t>(length - at, random() % 150);
            ours.update(message.data() + at, static_cast<int>(piece));
            at += piece;
        }
        unsigned char actual[16];
        ours.getDigest(actual, 16);
        ASSERT_EQ(Bytes(actual, actual + 16), Bytes(expected, expected + 16)) << length << " bytes";
    }
}

#else

TEST(OpenSslDifferentialTest, BlowFishAgreesForEveryKeyLength) {
    GTEST_SKIP() << "OpenSSL was not found when this program was built";
}

TEST(OpenSslDifferentialTest, MD5AgreesOnRandomMessagesAndPieces) {
    GTEST_SKIP() << "OpenSSL was not found when this program was built";
}

#endif

} // namespace
