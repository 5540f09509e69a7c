// BlowFish: the Blowfish block cipher (64-bit blocks, keys of up to 56 bytes) applied block by
// block, with no chaining and no padding (electronic code book). The caller brings whole 8-byte
// blocks and, for anything beyond single independent blocks, its own mode of operation.
#pragma once

#include "qn/core/Object.h"

#include <cstdint>

namespace qn::crypto {

class QNCL_API BlowFish : public Object {
public:
    // Schedules the key: at most the first 56 bytes count, a longer key is cut to them. A key
    // length not above 0 keeps the bare initial constants (the hexadecimal digits of pi), so
    // the cipher works, unkeyed; key may then be null.
    BlowFish(const signed char* key, int keyLength);
    BlowFish(const char* key, int keyLength)
        : BlowFish(reinterpret_cast<const signed char*>(key), keyLength) {}
    BlowFish(const unsigned char* key, int keyLength)
        : BlowFish(reinterpret_cast<const signed char*>(key), keyLength) {}
    ~BlowFish() override;

    // Enciphers (deciphers) len bytes of in into out at the same offsets. Each 8-byte block is
    // read as two big-endian 32-bit words, left then right, and written back the same way.
    // len must be a non-negative multiple of 8, otherwise Exception "only supports 8 byte block
    // boundaries" is thrown and out is untouched; 0 does nothing. out may be in itself (the
    // work is done in place); otherwise the two must not overlap.
    void encrypt(signed char* out, const signed char* in, long len) const;
    void decrypt(signed char* out, const signed char* in, long len) const;
    void encrypt(char* out, const char* in, long len) const {
        encrypt(reinterpret_cast<signed char*>(out), reinterpret_cast<const signed char*>(in), len);
    }
    void decrypt(char* out, const char* in, long len) const {
        decrypt(reinterpret_cast<signed char*>(out), reinterpret_cast<const signed char*>(in), len);
    }
    void encrypt(unsigned char* out, const unsigned char* in, long len) const {
        encrypt(reinterpret_cast<signed char*>(out), reinterpret_cast<const signed char*>(in), len);
    }
    void decrypt(unsigned char* out, const unsigned char* in, long len) const {
        decrypt(reinterpret_cast<signed char*>(out), reinterpret_cast<const signed char*>(in), len);
    }

protected:
    // The 16-round block function on one block held as its two words.
    void encryptBlock(unsigned int& left, unsigned int& right) const;
    // The inverse: the same rounds with the P-array taken in reverse.
    void decryptBlock(unsigned int& left, unsigned int& right) const;

    // The schedule: 18 subkeys, then four substitution boxes of 256 words each.
    uint32_t m_p[18];
    uint32_t m_s[4][256];
};

} // namespace qn::crypto
