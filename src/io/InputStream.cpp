#include "qn/io/InputStream.h"

#include <algorithm>

namespace qn::io {

InputStream::~InputStream() = default;

long InputStream::read(char* buf, long len) {
    return read(reinterpret_cast<signed char*>(buf), len);
}
long InputStream::read(unsigned char* buf, long len) {
    return read(reinterpret_cast<signed char*>(buf), len);
}

int InputStream::read() {
    signed char b = 0;
    return read(&b, 1) > 0 ? static_cast<unsigned char>(b) : -1;
}

long InputStream::skip(long n) {
    signed char scratch[256];
    long skipped = 0;
    while (skipped < n) {
        const long got = read(scratch, std::min<long>(n - skipped, sizeof scratch));
        if (got <= 0)
            break;
        skipped += got;
    }
    return skipped;
}

long InputStream::available() {
    return 0;
}
void InputStream::close() {}
bool InputStream::markSupported() {
    return false;
}
void InputStream::mark(long) {}
void InputStream::reset() {
    throw IoException(u"mark/reset not supported");
}

} // namespace qn::io
