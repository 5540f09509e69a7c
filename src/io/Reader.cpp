#include "qn/io/Reader.h"
#include "qn/io/Writer.h"

#include <algorithm>

namespace qn::io {

Reader::~Reader() = default;

int Reader::read() {
    char16_t c = 0;
    return read(&c, 1) > 0 ? c : -1;
}

long Reader::skip(long n) {
    char16_t scratch[256];
    long skipped = 0;
    while (skipped < n) {
        const long got = read(scratch, std::min<long>(n - skipped, 256));
        if (got <= 0)
            break;
        skipped += got;
    }
    return skipped;
}

long Reader::available() {
    return 0;
}
void Reader::close() {}
bool Reader::markSupported() {
    return false;
}
void Reader::mark(long) {}
void Reader::reset() {
    throw IoException(u"mark/reset not supported");
}

Writer::~Writer() = default;

void Writer::write(const String& text) {
    int32_t length = 0;
    const char16_t* data = text.getReadLockT(&length);
    try {
        write(data, length);
    } catch (...) {
        text.releaseReadLock();
        throw;
    }
    text.releaseReadLock();
}

void Writer::write(const char16_t* text) {
    if (!text)
        return;
    long length = 0;
    while (text[length] != 0)
        ++length;
    write(text, length);
}

void Writer::write(char16_t c) {
    write(&c, 1);
}

void Writer::flush() {}
void Writer::close() {}

} // namespace qn::io
