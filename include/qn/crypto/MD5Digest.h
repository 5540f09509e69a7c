// MD5Digest: the MD5 message digest (RFC 1321), 16 bytes, behind the MessageDigest interface.
// Not for security: MD5 collisions are cheap to make. It serves checksums and the
// compatibility of file formats and protocols that use it.
#pragma once

#include "qn/crypto/MessageDigest.h"

#include <cstdint>

namespace qn::crypto {

class QNCL_API MD5Digest : public MessageDigest {
public:
    MD5Digest() noexcept;
    ~MD5Digest() override;

    using MessageDigest::getDigest;
    using MessageDigest::update;
    void update(const signed char* data, int len) override;
    // The state words in little-endian order, after the standard padding: 0x80, zeros up to
    // 56 bytes modulo 64, and the message length in bits as a 64-bit little-endian number.
    void getDigest(signed char* out, int size) override;
    void reset() override;
    // 16.
    int getLength() const override;
    // "MD5".
    String getName() const override;

    // A new digest in this one's state: the copy can finish a prefix while this one goes on.
    Reference<Object> clone() const override;

private:
    MD5Digest(const MD5Digest& other) noexcept;
    MD5Digest& operator=(const MD5Digest&) = delete;

    // The compression function over count consecutive 64-byte blocks.
    void transform(const unsigned char* blocks, size_t count);

    // Message length in bits, modulo 2^64: low word, then high word.
    uint32_t m_count[2];
    uint32_t m_state[4];
    // The bytes of the block not yet complete; m_count tells how many.
    unsigned char m_buffer[64];
};

} // namespace qn::crypto
