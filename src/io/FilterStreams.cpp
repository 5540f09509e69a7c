#include "qn/io/FilterInputStream.h"
#include "qn/io/FilterOutputStream.h"

#include "StreamSupport.h"

namespace qn::io {

FilterInputStream::FilterInputStream(InputStream* in) : m_in(checkStream(in)) {}
FilterInputStream::~FilterInputStream() = default;

long FilterInputStream::read(signed char* buf, long len) {
    return m_in->read(buf, len);
}
int FilterInputStream::read() {
    return m_in->read();
}
long FilterInputStream::skip(long n) {
    return m_in->skip(n);
}
long FilterInputStream::available() {
    return m_in->available();
}
void FilterInputStream::close() {
    m_in->close();
}
bool FilterInputStream::markSupported() {
    return m_in->markSupported();
}
void FilterInputStream::mark(long readLimit) {
    m_in->mark(readLimit);
}
void FilterInputStream::reset() {
    m_in->reset();
}

FilterOutputStream::FilterOutputStream(OutputStream* out) : m_out(checkStream(out)) {}
FilterOutputStream::~FilterOutputStream() = default;

void FilterOutputStream::write(const signed char* buf, long len) {
    m_out->write(buf, len);
}
void FilterOutputStream::write(signed char b) {
    m_out->write(b);
}
void FilterOutputStream::flush() {
    m_out->flush();
}
void FilterOutputStream::close() {
    m_out->close();
}

} // namespace qn::io
