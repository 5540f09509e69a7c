// NullOutputStream: a sink that accepts every write, flush and close and keeps nothing.
#pragma once

#include "qn/io/OutputStream.h"

namespace qn::io {

class QNCL_API NullOutputStream : public OutputStream {
public:
    NullOutputStream() = default;
    ~NullOutputStream() override;

    using OutputStream::write;
    void write(const signed char* buf, long len) override;
    void write(signed char b) override;
};

} // namespace qn::io
