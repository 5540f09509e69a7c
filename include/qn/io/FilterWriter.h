// FilterWriter: a writer that forwards every operation to the writer it wraps, the base of
// writers that add something on the way. Closing the filter closes the wrapped writer.
#pragma once

#include "qn/io/Writer.h"

namespace qn::io {

class QNCL_API FilterWriter : public Writer {
public:
    // out must not be null: ResultException 0x80004003.
    explicit FilterWriter(Writer* out);
    ~FilterWriter() override;

    void write(const String& text) override;
    void write(const char16_t* text) override;
    void write(const char16_t* buf, long len) override;
    void write(char16_t c) override;
    void flush() override;
    void close() override;

protected:
    Reference<Writer> m_out;
};

} // namespace qn::io
