// ByteArrayOutputStream: collects what is written in a heap buffer that grows on demand, to a
// quarter more than the size needed, so that a run of small writes copies rarely.
#pragma once

#include "qn/core/String.h"
#include "qn/io/OutputStream.h"

#include <memory>

namespace qn::io {

class QNCL_API ByteArrayOutputStream : public OutputStream {
public:
    // A negative capacity counts as 0.
    explicit ByteArrayOutputStream(long capacity = 32);
    ~ByteArrayOutputStream() override;

    using OutputStream::write;
    void write(const signed char* buf, long len) override;
    void write(signed char b) override;

    // Grows the buffer to (needed * 5) / 4 bytes when needed exceeds the capacity, keeping what
    // was written. A size the 32-bit count cannot hold throws std::bad_alloc.
    void ensureCapacity(long needed);
    // Sets the capacity to exactly size (0 at least), cutting the written bytes to it.
    void reallocBuffer(long size);
    // Copies the first min(size, size()) written bytes to buf and returns how many it copied.
    long getBytes(signed char* buf, long size) const;
    // Writes every written byte to out.
    void writeTo(OutputStream* out) const;

    // The written bytes decoded with the process's default encoding, or with the encoding named
    // (any name, alias or code page the converters know; null: the default). Unknown names
    // throw UnknownEncodingException; undecodable bytes fail or are substituted as String's
    // construction from bytes does.
    String toString() const override;
    String toString(const char16_t* encoding) const;

    long size() const { return m_count; }
    long getCapacity() const { return m_capacity; }
    // The written bytes, valid until the next write or reallocation.
    const signed char* getData() const { return m_buffer.get(); }

private:
    std::unique_ptr<signed char[]> m_buffer;
    long m_count = 0;
    long m_capacity;
};

} // namespace qn::io
