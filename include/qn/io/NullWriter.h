// NullWriter: a sink that accepts every write, flush and close and keeps nothing.
#pragma once

#include "qn/io/Writer.h"

namespace qn::io {

class QNCL_API NullWriter : public Writer {
public:
    NullWriter() = default;
    ~NullWriter() override;

    void write(const String& text) override;
    void write(const char16_t* text) override;
    void write(const char16_t* buf, long len) override;
    void write(char16_t c) override;
};

} // namespace qn::io
