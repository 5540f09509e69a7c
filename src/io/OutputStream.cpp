#include "qn/io/NullOutputStream.h"

namespace qn::io {

OutputStream::~OutputStream() = default;

void OutputStream::write(const char* buf, long len) {
    write(reinterpret_cast<const signed char*>(buf), len);
}
void OutputStream::write(const unsigned char* buf, long len) {
    write(reinterpret_cast<const signed char*>(buf), len);
}
void OutputStream::write(signed char b) {
    write(&b, 1);
}
void OutputStream::flush() {}
void OutputStream::close() {}

NullOutputStream::~NullOutputStream() = default;
void NullOutputStream::write(const signed char*, long) {}
void NullOutputStream::write(signed char) {}

} // namespace qn::io
