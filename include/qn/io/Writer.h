// Writer: the abstract sink of 16-bit characters (UTF-16 units) every writer derives from.
// Subclasses implement the array write; the others reach it.
#pragma once

#include "qn/core/String.h"

namespace qn::io {

class QNCL_API Writer : public Object {
public:
    ~Writer() override;

    // The string's characters through the array write. A failure of its buffer while they are
    // obtained or released is thrown as ResultException with the buffer's code.
    virtual void write(const String& text);
    // The characters of a zero-terminated string (a null pointer writes nothing).
    virtual void write(const char16_t* text);
    virtual void write(const char16_t* buf, long len) = 0;
    // One character through the array write.
    virtual void write(char16_t c);
    // Both do nothing here.
    virtual void flush();
    virtual void close();
};

} // namespace qn::io
