#include "StreamTestSupport.h"

#include "qn/core/Class.h"

#include "qn/io/ByteArrayInputStream.h"
#include "qn/io/ByteArrayOutputStream.h"
#include "qn/io/FilterInputStream.h"
#include "qn/io/FilterOutputStream.h"
#include "qn/io/NullOutputStream.h"

using namespace qn;
using namespace qn::io;
using namespace qntest;

TEST(InputStream, SingleByteReadIsUnsignedAndZeroDeliveryIsTheEnd) {
    Reference<ScriptedInputStream> in = new ScriptedInputStream(bytes({0xFF, 0x80, 0x01}), {1, 0});
    EXPECT_EQ(in->read(), 255);
    // A read that delivers nothing now reads as the end through read().
    EXPECT_EQ(in->read(), -1);
    EXPECT_EQ(in->read(), 0x80);
    EXPECT_EQ(in->read(), 1);
    EXPECT_EQ(in->read(), -1);
}

TEST(InputStream, SkipReadsInChunksAndStopsWhereTheStreamStops) {
    Reference<ScriptedInputStream> in = new ScriptedInputStream(sequence(1000));
    EXPECT_EQ(in->skip(0), 0);
    EXPECT_EQ(in->skip(-5), 0);
    EXPECT_EQ(in->skip(600), 600);
    EXPECT_EQ(in->reads, 3); // 256 + 256 + 88
    EXPECT_EQ(in->read(), static_cast<unsigned char>(sequence(1000)[600]));
    EXPECT_EQ(in->skip(1000), 399);

    Reference<ScriptedInputStream> stalled = new ScriptedInputStream(sequence(100), {10, 0});
    EXPECT_EQ(stalled->skip(50), 10);
    EXPECT_EQ(stalled->skip(50), 50);
}

TEST(InputStream, MarkAndResetAreNotSupportedByDefault) {
    Reference<ScriptedInputStream> in = new ScriptedInputStream(sequence(4));
    EXPECT_FALSE(in->markSupported());
    in->mark(10);
    try {
        in->reset();
        FAIL() << "reset succeeded";
    } catch (const IoException& e) {
        EXPECT_EQ(messageOf(e), u"mark/reset not supported");
    }
    EXPECT_EQ(in->available(), 4);
}

TEST(ByteArrayInputStream, ReadsACopyToTheEnd) {
    Bytes data = sequence(10);
    Reference<ByteArrayInputStream> in = new ByteArrayInputStream(data.data(), 10);
    data[0] = 99; // the stream holds its own copy
    signed char buf[8];
    EXPECT_EQ(in->read(buf, 0), 0);
    EXPECT_EQ(in->read(buf, -1), 0);
    EXPECT_EQ(in->read(buf, 8), 8);
    EXPECT_EQ(buf[0], sequence(10)[0]);
    EXPECT_EQ(in->read(buf, 8), 2);
    EXPECT_EQ(in->read(buf, 0), -1);
    EXPECT_EQ(in->read(buf, 8), -1);
    EXPECT_EQ(in->available(), 0);
    EXPECT_FALSE(in->markSupported());

    Reference<ByteArrayInputStream> empty =
        new ByteArrayInputStream(static_cast<const char*>(nullptr), -3);
    EXPECT_EQ(empty->read(), -1);
    EXPECT_THROW(ByteArrayInputStream(static_cast<const char*>(nullptr), 3), ResultException);
}

TEST(ByteArrayOutputStream, GrowsToFiveQuartersOfTheNeed) {
    Reference<ByteArrayOutputStream> out = new ByteArrayOutputStream(4);
    const Bytes data = sequence(300);
    out->write(data.data(), 5);
    EXPECT_EQ(out->getCapacity(), 6);
    out->write(data[5]);
    EXPECT_EQ(out->getCapacity(), 6);
    out->write(data[6]);
    EXPECT_EQ(out->getCapacity(), 8); // (7 * 5) / 4
    out->write(data.data() + 7, 293);
    EXPECT_EQ(out->getCapacity(), 375);
    EXPECT_EQ(out->size(), 300);
    EXPECT_EQ(Bytes(out->getData(), out->getData() + 300), data);

    Bytes copy(400);
    EXPECT_EQ(out->getBytes(copy.data(), 10), 10);
    EXPECT_EQ(out->getBytes(copy.data(), 400), 300);
    EXPECT_EQ(Bytes(copy.begin(), copy.begin() + 300), data);

    RecordingOutputStream* sink = new RecordingOutputStream;
    Reference<OutputStream> hold = sink;
    out->writeTo(sink);
    EXPECT_EQ(sink->data, data);

    out->reallocBuffer(3);
    EXPECT_EQ(out->getCapacity(), 3);
    EXPECT_EQ(out->size(), 3);
    out->write(data[99]);
    EXPECT_EQ(out->size(), 4);
    EXPECT_EQ(out->getData()[3], data[99]);
}

TEST(ByteArrayOutputStream, ZeroCapacityAndEmptyWrites) {
    Reference<ByteArrayOutputStream> out = new ByteArrayOutputStream(0);
    out->write(static_cast<const char*>(nullptr), 0);
    EXPECT_EQ(out->size(), 0);
    EXPECT_THROW(out->write(static_cast<const char*>(nullptr), 2), ResultException);
    out->write(static_cast<signed char>(7));
    EXPECT_EQ(out->getCapacity(), 1); // (1 * 5) / 4
    EXPECT_EQ(Class::forName(u"CQNByteArrayOutputStream")->createInstance()->GetRefCount(), 1u);
}

TEST(FilterStreams, ForwardEverythingAndCloseTheWrappedStream) {
    ScriptedInputStream* raw = new ScriptedInputStream(sequence(20));
    Reference<FilterInputStream> in = new FilterInputStream(raw);
    EXPECT_EQ(in->read(), 1);
    EXPECT_EQ(in->skip(4), 4);
    EXPECT_EQ(in->available(), 15);
    EXPECT_THROW(in->reset(), IoException);
    in->close();
    EXPECT_EQ(raw->closes, 1);

    RecordingOutputStream* sink = new RecordingOutputStream;
    Reference<FilterOutputStream> out = new FilterOutputStream(sink);
    out->write("abc", 3);
    out->write(static_cast<signed char>('d'));
    out->flush();
    out->close();
    EXPECT_EQ(sink->calls, (std::vector<long>{3, 1}));
    EXPECT_EQ(sink->flushes, 1);
    EXPECT_EQ(sink->closes, 1);
    EXPECT_THROW(FilterInputStream(nullptr), ResultException);
}

TEST(NullOutputStream, AcceptsEverything) {
    Reference<Object> made = Class::forName(u"CQNNullOutputStream")->createInstance();
    auto* out = dynamic_cast<NullOutputStream*>(made.get());
    ASSERT_NE(out, nullptr);
    out->write("abc", 3);
    out->write(static_cast<const char*>(nullptr), 1000);
    out->flush();
    out->close();
    out->write(static_cast<signed char>(1));
}
