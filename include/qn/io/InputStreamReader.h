// InputStreamReader: decodes the bytes of an input stream into characters through a
// ByteToCharConverter, reading the stream in blocks through a heap byte buffer.
//
// The characters do not depend on how the stream delivers its bytes or how large the caller's
// arrays are: a sequence split across two reads of the stream is completed by the next read, and
// a surrogate pair or substitution run that does not fit the caller's room is kept and delivered
// by the next call (so read() returns a pair one unit at a time). Only a sequence truly cut off
// by the end of the stream is substituted, one U+FFFD for each of its bytes; after that the
// converter's flush emits what it still holds. Malformed input and unmappable characters fail
// as the converter fails (its exceptions pass through unchanged).
//
// A read stops early, with what it has, when the stream reports nothing available or delivers
// nothing now (0); it returns 0 when that happens before any character was produced.
#pragma once

#include "qn/io/InputStream.h"
#include "qn/io/Reader.h"
#include "qn/text/charset/ByteToCharConverter.h"

#include <cstddef>
#include <memory>

namespace qn::io {

class QNCL_API InputStreamReader : public Reader {
public:
    static constexpr long DEFAULT_BUFFER_SIZE = 8192;

    // The decoder for encoding (null: the process default encoding); an unknown name throws
    // UnknownEncodingException. The byte buffer holds at least 6 bytes (the longest UTF-8 form)
    // and at least the converter's longest sequence. in must not be null: ResultException
    // 0x80004003.
    InputStreamReader(InputStream* in, const char16_t* encoding = nullptr,
                      long size = DEFAULT_BUFFER_SIZE);
    // Decodes through the caller's converter (a counted reference is taken), so its settings
    // hold: with substitution off, unmappable input throws, and so does a sequence cut off by
    // the end of the stream, InvalidCharacterException "incomplete sequence at the end of the
    // input", with getBytesDecoded() at its first byte. A converter in the middle of a sequence
    // goes on with it. in or converter null: ResultException 0x80004003.
    InputStreamReader(InputStream* in, text::charset::ByteToCharConverter* converter,
                      long size = DEFAULT_BUFFER_SIZE);
    // A bare null still means the default encoding.
    InputStreamReader(InputStream* in, std::nullptr_t, long size = DEFAULT_BUFFER_SIZE)
        : InputStreamReader(in, static_cast<const char16_t*>(nullptr), size) {}
    ~InputStreamReader() override;

    // Every operation on a closed reader but close throws IoException "stream closed".
    using Reader::read;
    long read(char16_t* buf, long len) override;
    // (in->available() + the buffered bytes) / the converter's longest sequence, plus the
    // characters already decoded and kept for the next read.
    long available() override;
    // Releases the converter and the buffer and closes the stream (again, on a second close).
    void close() override;

    // The converter's canonical name, e.g. "UTF-8".
    const char16_t* getEncodingName() const;
    long getBufferSize() const { return m_size; }
    // The bytes read from the stream that the converter has taken in, excluding those still in
    // the buffer. After a decoding exception it is the offset of the offending sequence in the
    // stream (counted from where the reader started), since the converter stops at its start.
    long long getBytesDecoded() const { return m_read - (m_count - m_pos); }

private:
    void checkOpen() const;
    // The converter's flush at the end of the input, into buf or, for lack of room, the kept
    // characters.
    void flushConverter(char16_t* buf, long& produced, long len);
    // Delivers kept characters into buf; true when some are still kept.
    bool deliverKept(char16_t* buf, long& produced, long len);

    // Room for the largest single result of a conversion: a substitution run of three units
    // (a surrogate pair is two).
    static constexpr long MAX_RESULT = text::charset::ByteToCharConverter::MAX_SUBSTITUTION_CHARS;

    Reference<InputStream> m_in;
    Reference<text::charset::ByteToCharConverter> m_converter;
    long m_size;
    std::unique_ptr<signed char[]> m_buffer;
    long m_pos = 0;
    long m_count = 0;
    bool m_eof = false;
    // Every byte read from the stream so far.
    long long m_read = 0;
    // Decoded characters the caller had no room for.
    char16_t m_kept[MAX_RESULT] = {};
    long m_keptPos = 0;
    long m_keptCount = 0;
};

} // namespace qn::io
