#include "qn/io/BufferedReader.h"
#include "qn/io/BufferedWriter.h"

#include "StreamSupport.h"
#include "UnitScan.h"

namespace qn::io {

namespace {
constexpr long MIN_BUFFER = 16;
}

BufferedReader::BufferedReader(Reader* in, long size)
    : m_in(checkStream(in)), m_size(std::max(size, MIN_BUFFER)), m_buffer(new char16_t[m_size]) {}

BufferedReader::~BufferedReader() = default;

void BufferedReader::checkOpen() const {
    if (!m_buffer)
        throw IoException(u"stream closed");
}

MarkedBuffer<char16_t> BufferedReader::state() {
    return {m_buffer, m_size, m_pos, m_count, m_markLimit, m_markPos};
}

int BufferedReader::read() {
    // A closed reader holds no characters (close empties it), so the common case needs one test.
    if (m_pos < m_count)
        return m_buffer[m_pos++];
    return readAfterFill();
}

int BufferedReader::readAfterFill() {
    checkOpen();
    state().fill(*m_in);
    return m_pos < m_count ? m_buffer[m_pos++] : -1;
}

long BufferedReader::read(char16_t* buf, long len) {
    checkOpen();
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    return state().read(*m_in, buf, len);
}

long BufferedReader::skip(long n) {
    checkOpen();
    return state().skip(*m_in, n);
}

long BufferedReader::available() {
    checkOpen();
    return m_in->available() + (m_count - m_pos);
}

void BufferedReader::close() {
    m_buffer.reset();
    m_pos = m_count = 0;
    m_in->close();
}

bool BufferedReader::markSupported() {
    return true;
}

void BufferedReader::mark(long readLimit) {
    checkOpen();
    m_markLimit = readLimit;
    m_markPos = m_pos;
}

void BufferedReader::reset() {
    checkOpen();
    state().reset();
}

long BufferedReader::readLine(String& line) {
    checkOpen();
    if (m_pos >= m_count) {
        line.clear();
        state().fill(*m_in);
        if (m_pos >= m_count)
            return -1;
    }
    // Most lines end inside the buffer. A reused line's own block takes the units while they
    // are searched; otherwise one scan and one copy into the line's block.
    const char16_t* const start = m_buffer.get() + m_pos;
    const char16_t* const end = m_buffer.get() + m_count;
    const char16_t* stop;
    int32_t room = 0;
    if (char16_t* const block = line.getBlockInPlace(room)) {
        bool found;
        const char16_t* const copied = scan::copyToLineEnd(start, end, block, room, found);
        stop = copied;
        if (!found) {
            // Near the end of the buffer or of the room: the few units left one by one.
            stop = scan::findLineEnd(copied, end);
            if (stop - start < room)
                std::memcpy(block + (copied - start), copied,
                            static_cast<size_t>(stop - copied) * sizeof(char16_t));
        }
        if (stop - start < room)
            line.setLengthInPlace(static_cast<int32_t>(stop - start));
        else
            line.setTo(start, static_cast<int32_t>(stop - start));
    } else {
        stop = scan::findLineEnd(start, end);
        line.setTo(start, static_cast<int32_t>(stop - start));
    }
    const long n = static_cast<long>(stop - start);
    if (stop < end && *stop == u'\n') {
        m_pos += n + 1;
        return n;
    }
    m_pos += n;
    // A last line may end without a terminator.
    if (stop < end || readLineRest(line, n))
        skipTerminator();
    return line.getLength();
}

bool BufferedReader::readLineRest(String& line, long total) {
    // The line goes on past the buffer. Its room grows by half at a time, so a line of many
    // fills is not moved to a new block at every fill.
    long reserved = total;
    for (;;) {
        state().fill(*m_in);
        if (m_pos >= m_count)
            return false;
        const char16_t* const start = m_buffer.get() + m_pos;
        const char16_t* const end = m_buffer.get() + m_count;
        const char16_t* const stop = scan::findLineEnd(start, end);
        const long n = static_cast<long>(stop - start);
        if (total + n > reserved) {
            reserved = std::max(total + n, reserved + reserved / 2);
            line.ensureCapacity(static_cast<int32_t>(std::min<long>(reserved, INT32_MAX - 1)) + 1);
        }
        line.append(start, static_cast<int32_t>(n));
        total += n;
        m_pos += n;
        if (stop < end)
            return true;
    }
}

void BufferedReader::skipTerminator() {
    if (m_buffer[m_pos++] == u'\r') {
        if (m_pos >= m_count)
            state().fill(*m_in);
        if (m_pos < m_count && m_buffer[m_pos] == u'\n')
            ++m_pos;
    }
}

BufferedWriter::BufferedWriter(Writer* out, long size)
    : m_out(checkStream(out)), m_size(std::max(size, MIN_BUFFER)), m_buffer(new char16_t[m_size]) {}

BufferedWriter::~BufferedWriter() = default;

void BufferedWriter::checkOpen() const {
    if (!m_buffer)
        throw IoException(u"stream closed");
}

void BufferedWriter::writeBuffered() {
    if (m_count > 0) {
        m_out->write(m_buffer.get(), m_count);
        m_count = 0;
    }
}

void BufferedWriter::write(const char16_t* buf, long len) {
    checkOpen();
    if (len < 1)
        return;
    checkBuffer(buf, len);
    if (len >= m_size) {
        writeBuffered();
        m_out->write(buf, len);
        return;
    }
    if (m_count + len > m_size)
        writeBuffered();
    std::memcpy(m_buffer.get() + m_count, buf, static_cast<size_t>(len) * sizeof(char16_t));
    m_count += len;
}

void BufferedWriter::write(char16_t c) {
    checkOpen();
    if (m_count >= m_size)
        writeBuffered();
    m_buffer[m_count++] = c;
}

void BufferedWriter::flush() {
    checkOpen();
    writeBuffered();
    m_out->flush();
}

void BufferedWriter::close() {
    m_buffer.reset();
    m_count = 0;
    m_out->close();
}

} // namespace qn::io
