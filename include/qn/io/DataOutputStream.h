// DataOutputStream: writes fixed-width numbers in big-endian (network) byte order, each byte with
// the wrapped stream's single-byte write; DataInputStream reads them back. Strings are not part
// of the format: writeString writes nothing.
#pragma once

#include "qn/io/FilterOutputStream.h"

namespace qn::io {

class QNCL_API DataOutputStream : public FilterOutputStream {
public:
    explicit DataOutputStream(OutputStream* out);
    ~DataOutputStream() override;

    // One byte, 0 or 1.
    virtual void writeBool(bool v);
    virtual void writeByte(signed char v);
    virtual void writeChar16(char16_t v);
    virtual void writeChar32(unsigned int v);
    virtual void writeInt16(short v);
    virtual void writeInt32(int v);
    virtual void writeInt64(int64_t v);
    virtual void writeFloat(float v);
    virtual void writeDouble(double v);
    virtual void writeString(const String& v);

    void writeShort(short v) { writeChar16(static_cast<char16_t>(v)); }
    void writeUnsignedShort(unsigned short v) { writeChar16(static_cast<char16_t>(v)); }
    void writeUnsignedInt16(uint16_t v) { writeChar16(static_cast<char16_t>(v)); }
    void writeInt(int v) { writeChar32(static_cast<unsigned int>(v)); }
    void writeLong(long v) { writeChar32(static_cast<unsigned int>(v)); }
    void writeUnsignedInt(unsigned int v) { writeChar32(v); }
    void writeUnsignedInt32(uint32_t v) { writeChar32(v); }
    void writeUnsignedLong(unsigned long v) { writeChar32(static_cast<unsigned int>(v)); }
    void writeChar(char16_t v) { writeChar16(v); }
    void writeUnsignedByte(unsigned char v) { writeByte(static_cast<signed char>(v)); }
    void writeUnsignedInt64(uint64_t v) { writeInt64(static_cast<int64_t>(v)); }
};

} // namespace qn::io
