// InputStream: the abstract byte source every input stream derives from. A read returns the
// number of bytes it delivered, 0 when none are available now, and -1 at the end of the stream.
#pragma once

#include "qn/core/Exception.h"

namespace qn::io {

class QNCL_API InputStream : public Object {
public:
    ~InputStream() override;

    // Forward to read(signed char*, long).
    virtual long read(char* buf, long len);
    virtual long read(unsigned char* buf, long len);
    virtual long read(signed char* buf, long len) = 0;
    // One byte as 0-255 through read(signed char*, long); -1 when that gave 0 or less.
    virtual int read();
    // Reads and drops up to n bytes in chunks of at most 256. Stops early at the end of the
    // stream, or when a read delivers nothing now (0); returns the number skipped.
    virtual long skip(long n);
    // Bytes that can be read without blocking: 0 here.
    virtual long available();
    virtual void close();
    virtual bool markSupported();
    virtual void mark(long readLimit);
    // IoException "mark/reset not supported" here.
    virtual void reset();
};

} // namespace qn::io
