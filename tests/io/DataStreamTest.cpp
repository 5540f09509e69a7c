#include "StreamTestSupport.h"

#include "qn/io/ByteArrayInputStream.h"
#include "qn/io/ByteArrayOutputStream.h"
#include "qn/io/DataInputStream.h"
#include "qn/io/DataOutputStream.h"

#include <cmath>
#include <functional>
#include <limits>

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

TEST(DataOutputStream, WritesBigEndian) {
    EXPECT_EQ(written([](DataOutputStream& o) { o.writeInt32(0x01020304); }), bytes({1, 2, 3, 4}));
    EXPECT_EQ(written([](DataOutputStream& o) { o.writeInt16(-2); }), bytes({0xFF, 0xFE}));
    EXPECT_EQ(written([](DataOutputStream& o) { o.writeInt64(0x0102030405060708LL); }),
              bytes({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(written([](DataOutputStream& o) {
                  o.writeBool(true);
                  o.writeBool(false);
                  o.writeByte(-1);
                  o.writeChar16(u'\u20AC');
                  o.writeChar32(0x1F600);
              }),
              bytes({1, 0, 0xFF, 0x20, 0xAC, 0, 1, 0xF6, 0}));
    EXPECT_EQ(written([](DataOutputStream& o) { o.writeFloat(1.0f); }), bytes({0x3F, 0x80, 0, 0}));
    EXPECT_EQ(written([](DataOutputStream& o) { o.writeDouble(-2.0); }),
              bytes({0xC0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(written([](DataOutputStream& o) { o.writeString(String(u"text")); }).empty());
}

TEST(DataInputStream, ReadsWhatWasWritten) {
    const Bytes b = written([](DataOutputStream& o) {
        o.writeBool(true);
        o.writeUnsignedByte(200);
        o.writeShort(-12345);
        o.writeUnsignedShort(65000);
        o.writeInt(-7);
        o.writeUnsignedInt(0xDEADBEEF);
        o.writeInt64(0x7FFFFFFF00000001LL);
        o.writeFloat(-0.5f);
        o.writeDouble(3.25);
        o.writeDouble(std::numeric_limits<double>::infinity());
    });
    Reference<DataInputStream> in = over(b);
    EXPECT_TRUE(in->readBool());
    EXPECT_EQ(in->readUnsignedByte(), 200);
    EXPECT_EQ(in->readShort(), -12345);
    EXPECT_EQ(in->readUnsignedShort(), 65000);
    EXPECT_EQ(in->readInt(), -7);
    EXPECT_EQ(in->readUnsignedInt(), 0xDEADBEEFu);
    EXPECT_EQ(in->readInt64(), 0x7FFFFFFF00000001LL);
    EXPECT_EQ(in->readFloat(), -0.5f);
    EXPECT_EQ(in->readDouble(), 3.25);
    EXPECT_TRUE(std::isinf(in->readDouble()));
    EXPECT_TRUE(in->readString().isEmpty());
    EXPECT_EQ(in->read(), -1);
}

TEST(DataInputStream, Int64SignExtendsItsLowWord) {
    EXPECT_EQ(over(bytes({0, 0, 0, 0, 0x80, 0, 0, 0}))->readInt64(),
              static_cast<int64_t>(0xFFFFFFFF80000000ULL));
    EXPECT_EQ(over(bytes({0x12, 0x34, 0x56, 0x78, 0xFF, 0, 0, 1}))->readUnsignedInt64(),
              0xFFFFFFFFFF000001ULL);
    EXPECT_EQ(over(bytes({0x12, 0x34, 0x56, 0x78, 0x7F, 0, 0, 1}))->readInt64(),
              0x123456787F000001LL);
    // A double whose low word has bit 31 set reads as a different value.
    const Bytes b =
        written([](DataOutputStream& o) { o.writeUnsignedInt64(0x3FF0000080000000ULL); });
    double expected;
    const uint64_t bits = 0xFFFFFFFF80000000ULL;
    std::memcpy(&expected, &bits, sizeof expected);
    EXPECT_TRUE(std::isnan(over(b)->readDouble()) && std::isnan(expected));
    EXPECT_EQ(over(bytes({0xFF, 0xFE}))->readInt16(), -2);
    EXPECT_EQ(over(bytes({0xFF, 0xFE}))->readChar16(), u'\uFFFE');
}

TEST(DataInputStream, EndOfInputInsideAValue) {
    // The lone last byte is consumed by the failed read.
    Reference<DataInputStream> in = over(bytes({0x01}));
    EXPECT_THROW(in->readInt16(), UnexpectedEOFException);
    EXPECT_EQ(in->read(), -1);

    Reference<DataInputStream> three = over(bytes({1, 2, 3}));
    EXPECT_THROW(three->readInt32(), UnexpectedEOFException);
    EXPECT_THROW(three->readByte(), UnexpectedEOFException);
    EXPECT_THROW(three->readBool(), UnexpectedEOFException);

    Reference<DataInputStream> seven = over(sequence(7));
    EXPECT_THROW(seven->readInt64(), UnexpectedEOFException);
    EXPECT_THROW(seven->readDouble(), UnexpectedEOFException);

    Bytes buf(10);
    Reference<DataInputStream> short_ = over(sequence(5));
    EXPECT_THROW(short_->readFully(buf.data(), 10), UnexpectedEOFException);
    // Not an I/O failure: a handler for those does not see it.
    try {
        over({})->readByte();
    } catch (const IoException&) {
        ADD_FAILURE() << "caught as IoException";
    } catch (const UnexpectedEOFException&) {
    }
}

TEST(DataInputStream, ReadFullyOverShortReads) {
    const Bytes data = sequence(64);
    // 1 byte, then 39, then nothing for a moment, then the rest.
    Reference<DataInputStream> in = over(data, {1, 39, 0, 0});
    Bytes buf(64);
    in->readFully(buf.data(), 64);
    EXPECT_EQ(buf, data);
    in->readFully(buf.data(), 0);
    in->readFully(static_cast<signed char*>(nullptr), -1);

    // A stream that never delivers is given up on.
    Reference<DataInputStream> stalled = over(data, std::vector<long>(5000, 0));
    EXPECT_THROW(stalled->readFully(buf.data(), 1), TimeoutException);
    stalled->readFully(buf.data(), 0);
}

TEST(DataInputStream, TypedReadsOverOneByteReads) {
    const Bytes b = written([](DataOutputStream& o) {
        o.writeInt32(-100000);
        o.writeInt16(300);
    });
    Reference<DataInputStream> in = over(b, std::vector<long>(b.size(), 1));
    EXPECT_EQ(in->readInt32(), -100000);
    EXPECT_EQ(in->readInt16(), 300);
}
