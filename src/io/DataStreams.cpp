#include "qn/io/DataInputStream.h"
#include "qn/io/DataOutputStream.h"

#include "StreamSupport.h"

#include <cstring>

namespace qn::io {

namespace {

// Consecutive empty reads readFully accepts before it gives up on the wrapped stream.
constexpr int MAX_IDLE_READS = 1024;

// Reads the n bytes of a value, each with the wrapped stream's read(); all n are always read.
// False when any of them came back negative (the end of the stream, or, over a stream whose
// read() sign-extends, a byte 0x80-0xFF).
bool readValue(InputStream& in, int* out, int n) {
    bool complete = true;
    for (int i = 0; i < n; ++i) {
        out[i] = in.read();
        complete = complete && out[i] >= 0;
    }
    return complete;
}

template <class To, class From> To bitsOf(From v) {
    static_assert(sizeof(To) == sizeof(From));
    To to;
    std::memcpy(&to, &v, sizeof to);
    return to;
}

} // namespace

DataInputStream::DataInputStream(InputStream* in) : FilterInputStream(in) {}
DataInputStream::~DataInputStream() = default;

void DataInputStream::readFully(signed char* buf, long len) {
    checkBuffer(buf, len);
    int idle = 0;
    for (long done = 0; done < len;) {
        const long n = m_in->read(buf + done, len - done);
        if (n < 0)
            throw UnexpectedEOFException();
        if (n == 0 && ++idle >= MAX_IDLE_READS)
            throw TimeoutException(u"no progress");
        if (n > 0)
            idle = 0;
        done += n;
    }
}

bool DataInputStream::readBool() {
    return readByte() != 0;
}

signed char DataInputStream::readByte() {
    int b[1];
    if (!readValue(*m_in, b, 1))
        throw UnexpectedEOFException();
    return static_cast<signed char>(b[0]);
}

int16_t DataInputStream::readInt16() {
    int b[2];
    if (!readValue(*m_in, b, 2))
        throw UnexpectedEOFException();
    return static_cast<int16_t>(static_cast<uint16_t>(b[0] << 8 | b[1]));
}

int32_t DataInputStream::readInt32() {
    int b[4];
    if (!readValue(*m_in, b, 4))
        throw UnexpectedEOFException();
    return static_cast<int32_t>(static_cast<uint32_t>(b[0]) << 24 |
                                static_cast<uint32_t>(b[1]) << 16 |
                                static_cast<uint32_t>(b[2]) << 8 | static_cast<uint32_t>(b[3]));
}

int64_t DataInputStream::readInt64() {
    const int32_t high = readInt32();
    const int32_t low = readInt32();
    // The low word is sign-extended before it is or-ed in.
    return static_cast<int64_t>(static_cast<uint64_t>(static_cast<uint32_t>(high)) << 32 |
                                static_cast<uint64_t>(static_cast<int64_t>(low)));
}

char16_t DataInputStream::readChar16() {
    return static_cast<char16_t>(readInt16());
}
uint32_t DataInputStream::readChar32() {
    return static_cast<uint32_t>(readInt32());
}
float DataInputStream::readFloat() {
    return bitsOf<float>(readInt32());
}
double DataInputStream::readDouble() {
    return bitsOf<double>(readInt64());
}
String DataInputStream::readString() {
    return String();
}

DataOutputStream::DataOutputStream(OutputStream* out) : FilterOutputStream(out) {}
DataOutputStream::~DataOutputStream() = default;

void DataOutputStream::writeBool(bool v) {
    m_out->write(static_cast<signed char>(v ? 1 : 0));
}
void DataOutputStream::writeByte(signed char v) {
    m_out->write(v);
}
void DataOutputStream::writeInt16(short v) {
    const auto u = static_cast<uint16_t>(v);
    m_out->write(static_cast<signed char>(u >> 8));
    m_out->write(static_cast<signed char>(u));
}
void DataOutputStream::writeInt32(int v) {
    const auto u = static_cast<uint32_t>(v);
    for (int shift = 24; shift >= 0; shift -= 8)
        m_out->write(static_cast<signed char>(u >> shift));
}
void DataOutputStream::writeInt64(int64_t v) {
    const auto u = static_cast<uint64_t>(v);
    writeInt32(static_cast<int>(static_cast<uint32_t>(u >> 32)));
    writeInt32(static_cast<int>(static_cast<uint32_t>(u)));
}
void DataOutputStream::writeChar16(char16_t v) {
    writeInt16(static_cast<short>(v));
}
void DataOutputStream::writeChar32(unsigned int v) {
    writeInt32(static_cast<int>(v));
}
void DataOutputStream::writeFloat(float v) {
    writeInt32(bitsOf<int32_t>(v));
}
void DataOutputStream::writeDouble(double v) {
    writeInt64(bitsOf<int64_t>(v));
}
void DataOutputStream::writeString(const String&) {}

} // namespace qn::io
