#include "qn/io/FilterReader.h"
#include "qn/io/FilterWriter.h"
#include "qn/io/NullWriter.h"
#include "qn/io/PrintWriter.h"
#include "qn/io/StringWriter.h"

#include "StreamSupport.h"

#include <climits>

namespace qn::io {

FilterReader::FilterReader(Reader* in) : m_in(checkStream(in)) {}
FilterReader::~FilterReader() = default;

long FilterReader::read(char16_t* buf, long len) {
    return m_in->read(buf, len);
}
int FilterReader::read() {
    return m_in->read();
}
long FilterReader::skip(long n) {
    return m_in->skip(n);
}
long FilterReader::available() {
    return m_in->available();
}
void FilterReader::close() {
    m_in->close();
}
bool FilterReader::markSupported() {
    return m_in->markSupported();
}
void FilterReader::mark(long readLimit) {
    m_in->mark(readLimit);
}
void FilterReader::reset() {
    m_in->reset();
}

FilterWriter::FilterWriter(Writer* out) : m_out(checkStream(out)) {}
FilterWriter::~FilterWriter() = default;

void FilterWriter::write(const String& text) {
    m_out->write(text);
}
void FilterWriter::write(const char16_t* text) {
    m_out->write(text);
}
void FilterWriter::write(const char16_t* buf, long len) {
    m_out->write(buf, len);
}
void FilterWriter::write(char16_t c) {
    m_out->write(c);
}
void FilterWriter::flush() {
    m_out->flush();
}
void FilterWriter::close() {
    m_out->close();
}

PrintWriter::PrintWriter(Writer* out, bool autoFlush) : FilterWriter(out), m_autoFlush(autoFlush) {}
PrintWriter::~PrintWriter() = default;

void PrintWriter::print(const String& text) {
    write(text);
}
void PrintWriter::print(const char16_t* text) {
    write(text);
}
void PrintWriter::print(const char* text) {
    if (text)
        write(String(text, -1, nullptr));
}
void PrintWriter::print(int value) {
    write(String::valueOf(value));
}
void PrintWriter::print(long value) {
    write(String::valueOf(value));
}
void PrintWriter::print(float value) {
    write(String::valueOf(value));
}
void PrintWriter::print(double value) {
    write(String::valueOf(value));
}
void PrintWriter::print(bool value) {
    write(String::valueOf(value));
}
void PrintWriter::print(char16_t c) {
    write(c);
}

void PrintWriter::newLine() {
    write(u'\n');
    if (m_autoFlush)
        flush();
}

void PrintWriter::println() {
    newLine();
}
void PrintWriter::println(const String& text) {
    print(text);
    newLine();
}
void PrintWriter::println(const char16_t* text) {
    print(text);
    newLine();
}
void PrintWriter::println(const char* text) {
    print(text);
    newLine();
}
void PrintWriter::println(int value) {
    print(value);
    newLine();
}
void PrintWriter::println(long value) {
    print(value);
    newLine();
}
void PrintWriter::println(float value) {
    print(value);
    newLine();
}
void PrintWriter::println(double value) {
    print(value);
    newLine();
}
void PrintWriter::println(bool value) {
    print(value);
    newLine();
}
void PrintWriter::println(char16_t c) {
    print(c);
    newLine();
}

StringWriter::StringWriter(int32_t capacity) : m_text(std::max<int32_t>(capacity, 0)) {}
StringWriter::~StringWriter() = default;

void StringWriter::write(const String& text) {
    m_text.append(text);
}
void StringWriter::write(const char16_t* buf, long len) {
    checkBuffer(buf, len);
    // A String holds at most INT32_MAX characters; longer arrays go in pieces.
    while (len > 0) {
        const long n = std::min<long>(len, INT32_MAX);
        m_text.append(buf, static_cast<int32_t>(n));
        buf += n;
        len -= n;
    }
}
void StringWriter::write(char16_t c) {
    m_text.append(c);
}
String StringWriter::toString() const {
    return m_text;
}

NullWriter::~NullWriter() = default;
void NullWriter::write(const String&) {}
void NullWriter::write(const char16_t*) {}
void NullWriter::write(const char16_t*, long) {}
void NullWriter::write(char16_t) {}

} // namespace qn::io
