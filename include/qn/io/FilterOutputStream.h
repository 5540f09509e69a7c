// FilterOutputStream: an output stream that forwards every operation to the stream it wraps. It
// holds a counted reference to that stream; closing the filter closes it.
#pragma once

#include "qn/io/OutputStream.h"

namespace qn::io {

class QNCL_API FilterOutputStream : public OutputStream {
public:
    // out must not be null: ResultException 0x80004003.
    explicit FilterOutputStream(OutputStream* out);
    ~FilterOutputStream() override;

    using OutputStream::write;
    void write(const signed char* buf, long len) override;
    void write(signed char b) override;
    void flush() override;
    void close() override;

protected:
    Reference<OutputStream> m_out;
};

} // namespace qn::io
