// MessageDigest: the interface of a message digest fed in pieces. update adds bytes, getDigest
// finishes the message, hands out its digest and starts a new message.
#pragma once

#include "qn/core/String.h"

namespace qn::crypto {

class QNCL_API MessageDigest : public Object {
public:
    ~MessageDigest() override;

    // Appends len bytes of data to the message; len not above 0 adds nothing.
    virtual void update(const signed char* data, int len) = 0;
    // Finishes the message, writes its getLength() bytes of digest to out and resets the digest
    // for a new message. A size below getLength() throws ResultException 0x80004009 and
    // leaves the message as it was.
    virtual void getDigest(signed char* out, int size) = 0;
    // Forgets the message: the digest starts again from the empty message.
    virtual void reset() = 0;
    // Bytes of digest.
    virtual int getLength() const = 0;
    // The algorithm's name.
    virtual String getName() const = 0;

    void update(const char* data, int len) {
        update(reinterpret_cast<const signed char*>(data), len);
    }
    void update(const unsigned char* data, int len) {
        update(reinterpret_cast<const signed char*>(data), len);
    }
    void getDigest(char* out, int size) { getDigest(reinterpret_cast<signed char*>(out), size); }
    void getDigest(unsigned char* out, int size) {
        getDigest(reinterpret_cast<signed char*>(out), size);
    }

protected:
    MessageDigest() noexcept = default;
};

} // namespace qn::crypto
