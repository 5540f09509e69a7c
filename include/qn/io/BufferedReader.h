// BufferedReader: reads the wrapped reader in blocks through a heap buffer of characters,
// supports mark and reset, and splits text into lines.
//
// Buffering and the mark work as in BufferedInputStream, counted in characters: a mark keeps up
// to the mark limit of characters read after it (the buffer grows to the limit when a refill
// needs the room); once more were read, reset() throws "mark invalid". read() returns the
// character as 0-65535. A read from the wrapped reader that gives 0 characters ends a read here
// as if the reader had ended.
#pragma once

#include "qn/core/String.h"
#include "qn/io/Reader.h"

#include <memory>

namespace qn::io {

template <class T> struct MarkedBuffer;

class QNCL_API BufferedReader : public Reader {
public:
    static constexpr long DEFAULT_BUFFER_SIZE = 8192;

    // size below 16 gives 16. in must not be null: ResultException 0x80004003.
    explicit BufferedReader(Reader* in, long size = DEFAULT_BUFFER_SIZE);
    ~BufferedReader() override;

    // Every operation on a closed reader but close throws IoException "stream closed".
    using Reader::read;
    long read(char16_t* buf, long len) override;
    int read() override;
    long skip(long n) override;
    long available() override;
    // Frees the buffer and closes the wrapped reader (again, on a second close).
    void close() override;
    bool markSupported() override;
    void mark(long readLimit) override;
    // Back to the mark: IoException "stream not marked" without one, "mark invalid" after more
    // than the mark limit was read past it.
    void reset() override;

    // Reads one line into line, without its terminator, and returns its length; -1 at the end
    // of the input with nothing read. LF, CR and CR LF each end a line, also when the CR is the
    // last character of one fill and the LF the first of the next. A last line without a
    // terminator is returned whole. The fastest use passes the same String for every line and
    // keeps no copy of it: a line that fits its block is written straight into the block while
    // it is searched for, without an allocation; a string that shares its block gets one of its
    // own, so copies kept of earlier lines never change.
    virtual long readLine(String& line);

    long getBufferSize() const { return m_size; }

private:
    void checkOpen() const;
    MarkedBuffer<char16_t> state();
    int readAfterFill();
    // The part of a line that goes on past the buffer, appended to line (total units so far);
    // false when the input ended (or had nothing now) before a terminator.
    bool readLineRest(String& line, long total);
    // Steps over the LF or CR at m_pos, and an LF after a CR, also behind a refill.
    void skipTerminator();

    Reference<Reader> m_in;
    long m_size;
    std::unique_ptr<char16_t[]> m_buffer;
    long m_pos = 0;
    long m_count = 0;
    long m_markLimit = 0;
    long m_markPos = -1; // -1: no mark; -2: mark invalidated
};

} // namespace qn::io
