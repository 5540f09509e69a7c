#include "StreamTestSupport.h"

#include "qn/io/BufferedInputStream.h"
#include "qn/io/ByteArrayOutputStream.h"
#include "qn/io/DataInputStream.h"
#include "qn/io/DataOutputStream.h"

#include <cmath>

using namespace qn;
using namespace qn::io;
using namespace qntest;

namespace {

Reference<DataInputStream> over(const Bytes& b, std::vector<long> script = {}) {
    return new DataInputStream(new ScriptedInputStream(b, std::move(script)));
}

Bytes written(const std::function<void(DataOutputStream&)>& write) {
    ByteArrayOutputStream* sink = new ByteArrayOutputStream;
    Reference<DataOutputStream> out = new DataOutputStream(sink);
    write(*out);
    return Bytes(sink->getData(), sink->getData() + sink->size());
}

} // namespace

TEST(DataStreams, BigEndianBothWays) {
    const Bytes b = written([](DataOutputStream& o) {
        o.writeInt32(0x01020304);
        o.writeBool(true);
        o.writeShort(-2);
        o.writeChar32(0x1F600);
        o.writeInt64(0x7FFFFFFF00000001LL);
        o.writeFloat(1.0f);
        o.writeDouble(-2.0);
        o.writeString(String(u"not part of the format"));
    });
    EXPECT_EQ(b,
              bytes({1, 2, 3, 4,    1,    0xFF, 0xFE, 0,    1, 0xF6, 0, 0x7F, 0xFF, 0xFF, 0xFF, 0,
                     0, 0, 1, 0x3F, 0x80, 0,    0,    0xC0, 0, 0,    0, 0,    0,    0,    0}));
    // Every value comes back, each byte read on its own.
    Reference<DataInputStream> in = over(b, std::vector<long>(b.size(), 1));
    EXPECT_EQ(in->readInt(), 0x01020304);
    EXPECT_TRUE(in->readBool());
    EXPECT_EQ(in->readInt16(), -2);
    EXPECT_EQ(in->readUnsignedInt32(), 0x1F600u);
    EXPECT_EQ(in->readInt64(), 0x7FFFFFFF00000001LL);
    EXPECT_EQ(in->readFloat(), 1.0f);
    EXPECT_EQ(in->readDouble(), -2.0);
    EXPECT_TRUE(in->readString().isEmpty());
    EXPECT_EQ(in->read(), -1);
}

TEST(DataStreams, Int64SignExtendsItsLowWord) {
    EXPECT_EQ(over(bytes({0, 0, 0, 0, 0x80, 0, 0, 0}))->readUnsignedInt64(), 0xFFFFFFFF80000000ULL);
    EXPECT_EQ(over(bytes({0x12, 0x34, 0x56, 0x78, 0x7F, 0, 0, 1}))->readInt64(),
              0x123456787F000001LL);
    // So a double whose low word has bit 31 set does not come back.
    const Bytes b =
        written([](DataOutputStream& o) { o.writeUnsignedInt64(0x3FF0000080000000ULL); });
    EXPECT_TRUE(std::isnan(over(b)->readDouble()));
}

TEST(DataStreams, EndOfInputInsideAValue) {
    // The lone last byte is consumed by the failed read.
    Reference<DataInputStream> in = over(bytes({0x01}));
    EXPECT_THROW(in->readInt16(), UnexpectedEOFException);
    EXPECT_EQ(in->read(), -1);
    EXPECT_THROW(over(bytes({1, 2, 3}))->readInt32(), UnexpectedEOFException);
    EXPECT_THROW(over(sequence(7))->readDouble(), UnexpectedEOFException);
    EXPECT_THROW(over({})->readBool(), UnexpectedEOFException);
    Bytes buf(10);
    EXPECT_THROW(over(sequence(5))->readFully(buf.data(), 10), UnexpectedEOFException);
    // Not an I/O failure: a handler for those does not see it.
    EXPECT_EQ(messageOf([] {
                  try {
                      over({})->readByte();
                  } catch (const IoException&) {
                      ADD_FAILURE() << "caught as IoException";
                  }
              }),
              u"");
}

TEST(DataStreams, ReadFullyOverShortReads) {
    const Bytes data = sequence(64);
    // 1 byte, then 39, then nothing for a moment, then the rest.
    Reference<DataInputStream> in = over(data, {1, 39, 0, 0});
    Bytes buf(64);
    in->readFully(buf.data(), 64);
    EXPECT_EQ(buf, data);
    // A stream that never delivers is given up on.
    EXPECT_THROW(over(data, std::vector<long>(5000, 0))->readFully(buf.data(), 1),
                 TimeoutException);
}

TEST(DataStreams, HighBytesThroughABufferedStreamReadAsTheEnd) {
    // Bytes come one by one through read(), and BufferedInputStream::read() sign-extends: a
    // value holding a byte 0x80-0xFF fails although the stream goes on, after all its bytes.
    Reference<DataInputStream> in = new DataInputStream(new BufferedInputStream(
        new ScriptedInputStream(bytes({0x01, 0x7F, 0xFF, 0x02, 0x03, 0x04, 0x80, 0x05, 0x06})),
        16));
    EXPECT_EQ(in->readInt16(), 0x017F);
    EXPECT_THROW(in->readInt32(), UnexpectedEOFException);
    EXPECT_THROW(in->readByte(), UnexpectedEOFException);
    EXPECT_EQ(in->readInt16(), 0x0506);
    EXPECT_THROW(in->readBool(), UnexpectedEOFException); // the real end
}
