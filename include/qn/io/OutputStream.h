// OutputStream: the abstract byte sink every output stream derives from.
#pragma once

#include "qn/core/Exception.h"

namespace qn::io {

class QNCL_API OutputStream : public Object {
public:
    ~OutputStream() override;

    // Forward to write(const signed char*, long).
    virtual void write(const char* buf, long len);
    virtual void write(const unsigned char* buf, long len);
    virtual void write(const signed char* buf, long len) = 0;
    // Writes the one byte through the array write.
    virtual void write(signed char b);
    // Both do nothing here.
    virtual void flush();
    virtual void close();
};

} // namespace qn::io
