#include "qn/crypto/MD5Digest.h"
#include "crypto/HexText.h"

#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qn;
using qn::crypto::MD5Digest;
using qn::crypto::MessageDigest;

namespace {

std::string finish(MessageDigest& digest) {
    unsigned char out[16];
    digest.getDigest(out, 16);
    return hexText(out, 16);
}

std::string md5(const std::string& message) {
    MD5Digest digest;
    digest.update(message.data(), static_cast<int>(message.size()));
    return finish(digest);
}

const char EMPTY[] = "d41d8cd98f00b204e9800998ecf8427e";

TEST(MD5DigestTest, KnownDigests) {
    struct Case {
        std::string message;
        const char* digest;
    };
    const Case CASES[] = {
        // The RFC 1321 suite.
        {"", EMPTY},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
        {"The quick brown fox jumps over the lazy dog", "9e107d9d372bb6826bd81d3542a419d6"},
        // Many blocks, and bytes above 0x7F.
        {std::string(1000000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"},
        {std::string(1, '\xFF'), "00594fd4f42ba43fc1ca0427a0576295"},
    };
    for (const Case& c : CASES)
        EXPECT_EQ(md5(c.message), c.digest) << c.message.size() << " bytes";
}

TEST(MD5DigestTest, GetDigestStartsANewMessage) {
    MD5Digest digest;
    digest.update("abc", 3);
    EXPECT_EQ(finish(digest), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(finish(digest), EMPTY);
    digest.update("abc", 3);
    EXPECT_EQ(finish(digest), "900150983cd24fb0d6963f7d28e17f72");

    digest.update(std::string(100, 'x').data(), 100);
    digest.reset();
    digest.update("a", 1);
    digest.update("bc", 2);
    EXPECT_EQ(finish(digest), "900150983cd24fb0d6963f7d28e17f72");

    digest.update("abc", 0);
    digest.update("abc", -3);
    EXPECT_EQ(finish(digest), EMPTY);
}

TEST(MD5DigestTest, ShortBufferIsRefusedAndTheMessageKept) {
    MD5Digest digest;
    digest.update("ab", 2);
    signed char out[16];
    std::memset(out, 0x44, sizeof out);
    for (int size : {15, 0, -1}) {
        try {
            digest.getDigest(out, size);
            FAIL() << "getDigest accepted " << size;
        } catch (const ResultException& e) {
            EXPECT_EQ(static_cast<uint32_t>(e.getResult()), 0x80004009u);
        }
    }
    EXPECT_EQ(out[0], 0x44);
    digest.update("c", 1);
    // A larger buffer is fine; the bytes beyond the digest are left alone.
    signed char wide[20];
    std::memset(wide, 0x44, sizeof wide);
    digest.getDigest(wide, 20);
    EXPECT_EQ(static_cast<unsigned char>(wide[0]), 0x90);
    EXPECT_EQ(static_cast<unsigned char>(wide[15]), 0x72);
    EXPECT_EQ(wide[16], 0x44);
}

TEST(MD5DigestTest, CloneFinishesAPrefixWhileTheOriginalGoesOn) {
    MD5Digest digest;
    digest.update("message", 7);
    Reference<Object> copy = digest.clone();
    auto* prefix = dynamic_cast<MD5Digest*>(copy.get());
    ASSERT_NE(prefix, nullptr);
    EXPECT_EQ(copy->GetRefCount(), 1u);
    digest.update(" digest", 7);
    EXPECT_EQ(finish(*prefix), md5("message"));
    EXPECT_EQ(finish(digest), "f96b697d7cb7938d525a2f31aaf161d0");
}

} // namespace
