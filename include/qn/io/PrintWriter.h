// PrintWriter: writes values as text to the wrapped writer. Numbers, booleans and characters
// are written as String::valueOf gives them; 8-bit strings are decoded with the process's
// default encoding. A line ends with the single character LF on every platform, never CR LF;
// with auto-flush on, the wrapped writer is flushed after every line end. Failures of the
// wrapped writer pass through unchanged: nothing is reported or swallowed here.
#pragma once

#include "qn/io/FilterWriter.h"

namespace qn::io {

class QNCL_API PrintWriter : public FilterWriter {
public:
    // out must not be null: ResultException 0x80004003.
    explicit PrintWriter(Writer* out, bool autoFlush = false);
    ~PrintWriter() override;

    void print(const String& text);
    void print(const char16_t* text);
    // Zero-terminated 8-bit text in the default encoding (a null pointer prints nothing).
    void print(const char* text);
    void print(int value);
    void print(long value);
    void print(float value);
    void print(double value);
    void print(bool value);
    void print(char16_t c);

    // print, then the line end.
    void println();
    void println(const String& text);
    void println(const char16_t* text);
    void println(const char* text);
    void println(int value);
    void println(long value);
    void println(float value);
    void println(double value);
    void println(bool value);
    void println(char16_t c);

    bool getAutoFlush() const { return m_autoFlush; }

protected:
    // Writes LF, then flushes when auto-flush is on.
    virtual void newLine();

private:
    bool m_autoFlush;
};

} // namespace qn::io
