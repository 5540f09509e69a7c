// DataInputStream: reads fixed-width numbers in big-endian (network) byte order. Each byte of
// a value is read with the wrapped stream's single-byte read(), and a negative result means the
// end of the stream: all bytes of the value are read, then UnexpectedEOFException (no message)
// is thrown if any was negative; the bytes read up to there are consumed.
//
// Wrap a stream whose read() returns 0-255 (InputStream's own read(), ByteArrayInputStream,
// FileInputStream). Over a BufferedInputStream, whose read() sign-extends, every byte 0x80-0xFF
// reads as the end of the stream, so a value with such a byte throws UnexpectedEOFException
// although the stream has not ended. readFully uses the array read and is not affected.
//
// readInt64 is the high word shifted left 32, or-ed with the low word sign-extended: when bit 31
// of the low word is set the high word reads as all ones (00 00 00 00 80 00 00 00 reads as
// 0xFFFFFFFF80000000). Streams written by DataOutputStream depend on this; readDouble inherits
// it. Strings are not part of the format: readString reads nothing.
#pragma once

#include "qn/io/FilterInputStream.h"

namespace qn::io {

class QNCL_API DataInputStream : public FilterInputStream {
public:
    explicit DataInputStream(InputStream* in);
    ~DataInputStream() override;

    // Reads exactly len bytes (nothing for len below 1). A wrapped stream that keeps giving 0
    // bytes for 1024 reads in a row throws TimeoutException "no progress".
    virtual void readFully(signed char* buf, long len);
    virtual bool readBool();
    virtual signed char readByte();
    virtual char16_t readChar16();
    virtual uint32_t readChar32();
    virtual int16_t readInt16();
    virtual int32_t readInt32();
    virtual int64_t readInt64();
    virtual float readFloat();
    virtual double readDouble();
    // An empty String; consumes nothing.
    virtual String readString();

    void readFully(char* buf, long len) { readFully(reinterpret_cast<signed char*>(buf), len); }
    void readFully(unsigned char* buf, long len) {
        readFully(reinterpret_cast<signed char*>(buf), len);
    }
    short readShort() { return readInt16(); }
    unsigned short readUnsignedShort() { return readChar16(); }
    uint16_t readUnsignedInt16() { return readChar16(); }
    int readInt() { return readInt32(); }
    long readLong() { return static_cast<long>(readInt32()); }
    unsigned int readUnsignedInt() { return readChar32(); }
    uint32_t readUnsignedInt32() { return readChar32(); }
    unsigned long readUnsignedLong() { return readChar32(); }
    char16_t readChar() { return readChar16(); }
    unsigned char readUnsignedByte() { return static_cast<unsigned char>(readByte()); }
    uint64_t readUnsignedInt64() { return static_cast<uint64_t>(readInt64()); }
};

} // namespace qn::io
