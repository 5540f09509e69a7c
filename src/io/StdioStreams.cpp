#include "qn/io/StdioInputStream.h"
#include "qn/io/StdioOutputStream.h"

#include "StreamSupport.h"

#include <climits>
#include <cstring>

namespace qn::io {

StdioInputStream::StdioInputStream() : m_file(stdin) {}
StdioInputStream::StdioInputStream(std::FILE* file) : m_file(checkStream(file)) {}
StdioInputStream::~StdioInputStream() = default;

namespace {

// A runtime stream that gives nothing without reaching its end has failed; some runtimes do not
// set the error flag for a stream that cannot be read at all.
bool failed(std::FILE* file) {
    return std::ferror(file) || !std::feof(file);
}

} // namespace

int StdioInputStream::read() {
    const int c = std::fgetc(m_file);
    if (c == EOF && failed(m_file))
        throw IoException(u"stream read error");
    return c == EOF ? -1 : c;
}

long StdioInputStream::read(signed char* buf, long len) {
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    char* line = reinterpret_cast<char*>(buf);
    if (!std::fgets(line, len > INT_MAX ? INT_MAX : static_cast<int>(len), m_file)) {
        if (failed(m_file))
            throw IoException(u"stream read error");
        return -1;
    }
    return static_cast<long>(std::strlen(line));
}

long StdioInputStream::skip(long n) {
    if (n < 1)
        return 0;
    const long before = std::ftell(m_file);
    if (before < 0 || std::fseek(m_file, n, SEEK_CUR) != 0)
        throw IoException(u"stream seek error");
    const long after = std::ftell(m_file);
    if (after < 0)
        throw IoException(u"stream seek error");
    return after - before;
}

StdioOutputStream::StdioOutputStream() : m_file(stdout) {}
StdioOutputStream::StdioOutputStream(std::FILE* file) : m_file(checkStream(file)) {}
StdioOutputStream::~StdioOutputStream() = default;

Reference<StdioOutputStream> StdioOutputStream::getStdErrorStream() {
    return new StdioOutputStream(stderr);
}

void StdioOutputStream::write(const signed char* buf, long len) {
    if (len < 1)
        return;
    checkBuffer(buf, len);
    if (std::fwrite(buf, 1, static_cast<size_t>(len), m_file) != static_cast<size_t>(len))
        throw IoException(u"stream write error");
}

void StdioOutputStream::write(signed char b) {
    if (std::fputc(static_cast<unsigned char>(b), m_file) == EOF)
        throw IoException(u"stream write error");
}

void StdioOutputStream::flush() {
    if (std::fflush(m_file) != 0)
        throw IoException(u"stream flush error");
}

} // namespace qn::io
