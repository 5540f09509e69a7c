#include "qn/io/InputStreamReader.h"
#include "qn/io/OutputStreamWriter.h"

#include "StreamSupport.h"

#include <algorithm>
#include <cstring>

namespace qn::io {

using text::charset::ByteToCharConverter;
using text::charset::CharToByteConverter;

namespace {
// The longest UTF-8 form.
constexpr long MIN_BYTE_BUFFER = 6;
} // namespace

InputStreamReader::InputStreamReader(InputStream* in, const char16_t* encoding, long size)
    : m_in(checkStream(in)), m_converter(ByteToCharConverter::getConverter(encoding)),
      m_size(std::max({size, MIN_BYTE_BUFFER, m_converter->getMaxBytesPerChar()})),
      m_buffer(new signed char[m_size]) {}

InputStreamReader::InputStreamReader(InputStream* in, ByteToCharConverter* converter, long size)
    : m_in(checkStream(in)), m_converter(checkStream(converter)),
      m_size(std::max({size, MIN_BYTE_BUFFER, m_converter->getMaxBytesPerChar()})),
      m_buffer(new signed char[m_size]) {}

InputStreamReader::~InputStreamReader() = default;

void InputStreamReader::checkOpen() const {
    if (!m_converter)
        throw IoException(u"stream closed");
}

bool InputStreamReader::deliverKept(char16_t* buf, long& produced, long len) {
    const long n = std::min(len - produced, m_keptCount - m_keptPos);
    std::copy(m_kept + m_keptPos, m_kept + m_keptPos + n, buf + produced);
    m_keptPos += n;
    produced += n;
    return m_keptPos < m_keptCount;
}

void InputStreamReader::flushConverter(char16_t* buf, long& produced, long len) {
    if (len - produced >= MAX_RESULT) {
        m_converter->flush(buf, &produced, len);
        return;
    }
    long keptEnd = 0;
    m_converter->flush(m_kept, &keptEnd, MAX_RESULT);
    m_keptPos = 0;
    m_keptCount = keptEnd;
    deliverKept(buf, produced, len);
}

long InputStreamReader::read(char16_t* buf, long len) {
    checkOpen();
    if (len < 1)
        return 0;
    checkBuffer(buf, len);
    long produced = 0;
    if (deliverKept(buf, produced, len))
        return produced;
    // The last conversion stopped inside a sequence although it had room for any result: only
    // more bytes, or the end of the input, can settle it.
    bool incomplete = false;
    while (produced < len) {
        if ((m_pos >= m_count || incomplete) && !m_eof) {
            if (produced > 0 && m_in->available() == 0)
                return produced;
            if (m_pos > 0) {
                std::memmove(m_buffer.get(), m_buffer.get() + m_pos,
                             static_cast<size_t>(m_count - m_pos));
                m_count -= m_pos;
                m_pos = 0;
            }
            const long n = m_in->read(m_buffer.get() + m_count, m_size - m_count);
            if (n < 0) {
                m_eof = true;
            } else if (n == 0) {
                return produced; // nothing now; the caller may come back
            } else {
                m_count += n;
                m_read += n;
                incomplete = false;
            }
        }
        if (m_eof) {
            if (m_pos >= m_count)
                break;
            if (incomplete) {
                if (!m_converter->getSubstitutionMode())
                    throw text::charset::InvalidCharacterException(
                        String(u"incomplete sequence at the end of the input"));
                // Cut off by the end of the input: each byte stands for one lost character.
                buf[produced++] = 0xFFFD;
                ++m_pos;
                incomplete = false;
                continue;
            }
        }
        if (len - produced >= MAX_RESULT) {
            m_converter->convert(m_buffer.get(), &m_pos, m_count, buf, &produced, len);
            // A stop for lack of room is not a cut-off sequence: the next round decodes
            // through the kept characters.
            incomplete = m_pos < m_count && len - produced >= MAX_RESULT;
        } else {
            long keptEnd = 0;
            m_converter->convert(m_buffer.get(), &m_pos, m_count, m_kept, &keptEnd, MAX_RESULT);
            m_keptPos = 0;
            m_keptCount = keptEnd;
            if (keptEnd == 0)
                incomplete = m_pos < m_count;
            else if (deliverKept(buf, produced, len))
                return produced;
        }
    }
    if (m_eof && m_pos >= m_count && produced < len)
        flushConverter(buf, produced, len);
    return produced > 0 ? produced : -1;
}

long InputStreamReader::available() {
    checkOpen();
    const long bytes = m_in->available() + (m_count > 0 ? m_count - m_pos : 0);
    return bytes / m_converter->getMaxBytesPerChar() + (m_keptCount - m_keptPos);
}

void InputStreamReader::close() {
    m_converter = nullptr;
    m_buffer.reset();
    m_pos = m_count = 0;
    m_keptPos = m_keptCount = 0;
    m_in->close();
}

const char16_t* InputStreamReader::getEncodingName() const {
    checkOpen();
    return m_converter->getEncodingName();
}

OutputStreamWriter::OutputStreamWriter(OutputStream* out, const char16_t* encoding, long size)
    : m_out(checkStream(out)), m_converter(CharToByteConverter::getConverter(encoding)),
      m_size(std::max({size, MIN_BYTE_BUFFER, m_converter->getMaxBytesPerChar()})),
      m_buffer(new signed char[m_size]) {}

OutputStreamWriter::OutputStreamWriter(OutputStream* out, CharToByteConverter* converter,
                                       long size)
    : m_out(checkStream(out)), m_converter(checkStream(converter)),
      m_size(std::max({size, MIN_BYTE_BUFFER, m_converter->getMaxBytesPerChar()})),
      m_buffer(new signed char[m_size]) {}

OutputStreamWriter::~OutputStreamWriter() = default;

void OutputStreamWriter::checkOpen() const {
    if (!m_converter)
        throw IoException(u"stream closed");
}

void OutputStreamWriter::writeBuffered() {
    m_out->write(m_buffer.get(), m_count);
    m_count = 0;
}

void OutputStreamWriter::write(const char16_t* buf, long len) {
    checkOpen();
    if (len < 1)
        return;
    checkBuffer(buf, len);
    if (m_carried.empty()) {
        encode(buf, len);
        return;
    }
    std::u16string joined;
    joined.swap(m_carried);
    joined.append(buf, static_cast<size_t>(len));
    encode(joined.data(), static_cast<long>(joined.size()));
}

void OutputStreamWriter::encode(const char16_t* in, long len) {
    // Each call of the converter gets no more characters than the free room surely takes (and
    // at least two, a whole pair), so it never runs out of room in the middle of a pair: an
    // encoder that has consumed a high surrogate need not keep it when the pair does not fit.
    // The buffer counts as full once it cannot take the longest sequence.
    const long longest = m_converter->getMaxBytesPerChar();
    long pos = 0;
    while (pos < len) {
        if (m_size - m_count < longest)
            writeBuffered();
        const long end = std::min(len, pos + std::max(2L, (m_size - m_count) / longest));
        const long before = pos;
        long n = 0;
        try {
            n = m_converter->convert(in, &pos, end, m_buffer.get(), &m_count, m_size);
        } catch (const Exception&) {
            taken(in, before, pos);
            // An encoder holding a high surrogate fails at the unit after it: the fault is the
            // surrogate's.
            const char16_t previous = pos > 0 ? in[pos - 1] : m_last;
            if (previous >= 0xD800 && previous <= 0xDBFF &&
                (pos == len || in[pos] < 0xDC00 || in[pos] > 0xDFFF) && m_encoded > 0)
                --m_encoded;
            throw;
        }
        taken(in, before, pos);
        if (n == 0 && pos == before) {
            if (m_count > 0) {
                writeBuffered();
            } else {
                // Nothing consumed with the whole buffer free: the converter waits for what
                // follows (the low half of a pair), so the rest goes with the next write.
                m_carried.assign(in + pos, static_cast<size_t>(len - pos));
                return;
            }
        }
    }
}

void OutputStreamWriter::taken(const char16_t* in, long from, long to) {
    m_encoded += to - from;
    if (to > from)
        m_last = in[to - 1];
}

void OutputStreamWriter::flush() {
    checkOpen();
    if (!m_carried.empty()) {
        m_carried.clear();
        throw text::charset::InvalidCharacterException(
            String(u"leading surrogate without trailing"));
    }
    for (;;) {
        try {
            m_converter->flush(m_buffer.get(), &m_count, m_size);
        } catch (const Exception&) {
            // What the converter still held is the last unit taken in.
            if (m_encoded > 0)
                --m_encoded;
            throw;
        }
        if (m_count == 0)
            break;
        writeBuffered();
    }
    m_out->flush();
}

void OutputStreamWriter::close() {
    m_converter = nullptr;
    m_buffer.reset();
    m_count = 0;
    m_carried.clear();
    m_out->close();
}

const char16_t* OutputStreamWriter::getEncodingName() const {
    checkOpen();
    return m_converter->getEncodingName();
}

} // namespace qn::io
