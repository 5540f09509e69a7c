// Reader: the abstract source of 16-bit characters (UTF-16 units) every reader derives from. A
// read returns the number of characters it delivered, 0 when none are available now, and -1 at
// the end of the stream.
#pragma once

#include "qn/core/Exception.h"

namespace qn::io {

class QNCL_API Reader : public Object {
public:
    ~Reader() override;

    virtual long read(char16_t* buf, long len) = 0;
    // One character as 0-65535 through read(buf, 1); -1 when that gave 0 or less.
    virtual int read();
    // Reads and drops up to n characters in chunks of at most 256. Stops early at the end of the
    // stream, or when a read delivers nothing now (0); returns the number skipped.
    virtual long skip(long n);
    // Characters that can be read without blocking: 0 here.
    virtual long available();
    virtual void close();
    virtual bool markSupported();
    virtual void mark(long readLimit);
    // IoException "mark/reset not supported" here.
    virtual void reset();
};

} // namespace qn::io
