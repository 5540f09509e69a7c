// ByteArrayInputStream: reads a copy of the caller's bytes, taken when it is made. No mark
// support, and available() stays the base's 0.
#pragma once

#include "qn/io/InputStream.h"

#include <memory>

namespace qn::io {

class QNCL_API ByteArrayInputStream : public InputStream {
public:
    // A negative length counts as 0; bytes may be null only with length 0 or less.
    ByteArrayInputStream(const signed char* bytes, long length);
    ByteArrayInputStream(const char* bytes, long length);
    ByteArrayInputStream(const unsigned char* bytes, long length);
    ~ByteArrayInputStream() override;

    using InputStream::read;
    // -1 at the end; len below 1 gives 0.
    long read(signed char* buf, long len) override;

private:
    std::unique_ptr<signed char[]> m_data;
    long m_length;
    long m_position = 0;
};

} // namespace qn::io
