// FilterInputStream: an input stream that forwards every operation to the stream it wraps, the
// base of streams that add something on the way. It holds a counted reference to that stream;
// closing the filter closes it.
#pragma once

#include "qn/io/InputStream.h"

namespace qn::io {

class QNCL_API FilterInputStream : public InputStream {
public:
    // in must not be null: ResultException 0x80004003.
    explicit FilterInputStream(InputStream* in);
    ~FilterInputStream() override;

    using InputStream::read;
    long read(signed char* buf, long len) override;
    int read() override;
    long skip(long n) override;
    long available() override;
    void close() override;
    bool markSupported() override;
    void mark(long readLimit) override;
    void reset() override;

protected:
    Reference<InputStream> m_in;
};

} // namespace qn::io
