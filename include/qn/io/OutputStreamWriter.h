// OutputStreamWriter: encodes characters into the bytes of an output stream through a
// CharToByteConverter, collecting them in a heap byte buffer that is written to the stream when
// it has no room left for the converter's longest sequence, at flush, and never at close. The
// converter is fed in pieces that the free room surely takes, so a surrogate pair is never cut
// by a full buffer.
//
// A unit the converter leaves unconsumed at the end of a write (a high surrogate before an
// encoder that only takes whole pairs) is carried to the next write, which completes it. If
// flush still finds one carried (or the converter still holds one), it throws
// InvalidCharacterException "leading surrogate without trailing", like any lone high surrogate,
// before writing anything; the unit is dropped, so the writer can go on.
#pragma once

#include "qn/io/OutputStream.h"
#include "qn/io/Writer.h"
#include "qn/text/charset/CharToByteConverter.h"

#include <cstddef>
#include <memory>
#include <string>

namespace qn::io {

class QNCL_API OutputStreamWriter : public Writer {
public:
    static constexpr long DEFAULT_BUFFER_SIZE = 8192;

    // The encoder for encoding (null: the process default encoding); an unknown name throws
    // UnknownEncodingException. The byte buffer holds at least 6 bytes and at least the
    // converter's longest sequence. out must not be null: ResultException 0x80004003.
    OutputStreamWriter(OutputStream* out, const char16_t* encoding = nullptr,
                       long size = DEFAULT_BUFFER_SIZE);
    // Encodes through the caller's converter (a counted reference is taken), so its settings
    // hold: with substitution off, an unmappable character throws. out or converter null:
    // ResultException 0x80004003.
    OutputStreamWriter(OutputStream* out, text::charset::CharToByteConverter* converter,
                       long size = DEFAULT_BUFFER_SIZE);
    // A bare null still means the default encoding.
    OutputStreamWriter(OutputStream* out, std::nullptr_t, long size = DEFAULT_BUFFER_SIZE)
        : OutputStreamWriter(out, static_cast<const char16_t*>(nullptr), size) {}
    ~OutputStreamWriter() override;

    // Every operation on a closed writer but close throws IoException "stream closed".
    using Writer::write;
    void write(const char16_t* buf, long len) override;
    // Writes the converter's last bytes and the buffered ones, then flushes the stream.
    void flush() override;
    // Releases the converter and the buffer and closes the stream. Buffered bytes that were not
    // flushed are lost: flush before closing.
    void close() override;

    const char16_t* getEncodingName() const;
    long getBufferSize() const { return m_size; }
    // The characters (UTF-16 units) of all writes so far that the converter has taken in; a
    // unit carried to the next write is not counted yet. After an encoding exception from
    // write or flush it is the offset of the offending character: a lone high surrogate counts
    // at its own place, not at the unit after it that showed it was alone.
    long long getCharsEncoded() const { return m_encoded; }

private:
    void checkOpen() const;
    void encode(const char16_t* in, long len);
    void writeBuffered();
    // Counts in[from, to) as taken in by the converter.
    void taken(const char16_t* in, long from, long to);

    Reference<OutputStream> m_out;
    Reference<text::charset::CharToByteConverter> m_converter;
    long m_size;
    std::unique_ptr<signed char[]> m_buffer;
    long m_count = 0;
    std::u16string m_carried;
    long long m_encoded = 0;
    // The last unit the converter took in, to place a lone high surrogate's failure.
    char16_t m_last = 0;
};

} // namespace qn::io
