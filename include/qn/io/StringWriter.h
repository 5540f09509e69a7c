// StringWriter: collects what is written in a String; flush and close do nothing, so writing
// after close goes on collecting.
#pragma once

#include "qn/io/Writer.h"

namespace qn::io {

class QNCL_API StringWriter : public Writer {
public:
    // capacity: the characters the String holds before it first grows.
    explicit StringWriter(int32_t capacity = 16);
    ~StringWriter() override;

    using Writer::write;
    void write(const String& text) override;
    void write(const char16_t* buf, long len) override;
    void write(char16_t c) override;

    // The text collected so far.
    String toString() const override;

private:
    String m_text;
};

} // namespace qn::io
