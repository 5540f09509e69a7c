// FilterReader: a reader that forwards every operation to the reader it wraps, the base of
// readers that add something on the way. Closing the filter closes the wrapped reader.
#pragma once

#include "qn/io/Reader.h"

namespace qn::io {

class QNCL_API FilterReader : public Reader {
public:
    // in must not be null: ResultException 0x80004003.
    explicit FilterReader(Reader* in);
    ~FilterReader() override;

    using Reader::read;
    long read(char16_t* buf, long len) override;
    int read() override;
    long skip(long n) override;
    long available() override;
    void close() override;
    bool markSupported() override;
    void mark(long readLimit) override;
    void reset() override;

protected:
    Reference<Reader> m_in;
};

} // namespace qn::io
