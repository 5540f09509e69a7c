#include "StreamTestSupport.h"

#include "qn/io/ByteArrayInputStream.h"
#include "qn/io/ByteArrayOutputStream.h"

using namespace qn;
using namespace qn::io;
using namespace qntest;

TEST(InputStream, BaseReadIsUnsignedAndSkipStopsWhereTheStreamStops) {
    Reference<ScriptedInputStream> in = new ScriptedInputStream(bytes({0xFF, 0x80}), {1, 0});
    EXPECT_EQ(in->read(), 255);
    EXPECT_EQ(in->read(), -1); // a read that delivers nothing now reads as the end
    EXPECT_EQ(in->read(), 0x80);
    EXPECT_EQ(in->read(), -1);
    EXPECT_EQ(messageOf([&] { in->reset(); }), u"mark/reset not supported");

    Reference<ScriptedInputStream> chunks = new ScriptedInputStream(sequence(1000));
    EXPECT_EQ(chunks->skip(600), 600);
    EXPECT_EQ(chunks->reads, 3); // 256 + 256 + 88
    EXPECT_EQ(chunks->skip(1000), 400);
    Reference<ScriptedInputStream> stalled = new ScriptedInputStream(sequence(100), {10, 0});
    EXPECT_EQ(stalled->skip(50), 10);
    EXPECT_EQ(stalled->skip(50), 50);
}

TEST(ByteArrayStreams, CopyInAndGrowToFiveQuartersOfTheNeed) {
    Bytes data = sequence(300);
    Reference<ByteArrayInputStream> in = new ByteArrayInputStream(data.data(), 10);
    data[0] = 99; // the stream holds its own copy
    signed char buf[8];
    EXPECT_EQ(in->read(buf, 0), 0);
    EXPECT_EQ(in->read(buf, 8), 8);
    EXPECT_EQ(buf[0], sequence(1)[0]);
    EXPECT_EQ(in->read(buf, 8), 2);
    EXPECT_EQ(in->read(buf, 0), -1);
    data[0] = sequence(1)[0];

    Reference<ByteArrayOutputStream> out = new ByteArrayOutputStream(4);
    out->write(data.data(), 5);
    EXPECT_EQ(out->getCapacity(), 6);
    out->write(data[5]);
    out->write(data[6]);
    EXPECT_EQ(out->getCapacity(), 8); // (7 * 5) / 4
    out->write(data.data() + 7, 293);
    EXPECT_EQ(out->getCapacity(), 375);
    EXPECT_EQ(Bytes(out->getData(), out->getData() + out->size()), data);
    RecordingOutputStream* sink = new RecordingOutputStream;
    Reference<OutputStream> hold = sink;
    out->writeTo(sink);
    EXPECT_EQ(sink->data, data);
    out->reallocBuffer(3);
    EXPECT_EQ(out->size(), 3);
    EXPECT_EQ(out->getBytes(buf, 8), 3);
    EXPECT_THROW(out->write(static_cast<const char*>(nullptr), 2), ResultException);
}
