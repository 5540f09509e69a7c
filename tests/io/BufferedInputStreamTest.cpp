#include "StreamTestSupport.h"

#include "qn/io/BufferedInputStream.h"

#include <functional>

using namespace qn;
using namespace qn::io;
using namespace qntest;

namespace {

// Reads n bytes with read() and returns them.
Bytes readBytes(BufferedInputStream& in, int n) {
    Bytes out;
    for (int i = 0; i < n; ++i)
        out.push_back(static_cast<signed char>(in.read()));
    return out;
}

Bytes slice(const Bytes& b, size_t from, size_t n) {
    return Bytes(b.begin() + static_cast<long>(from), b.begin() + static_cast<long>(from + n));
}

} // namespace

TEST(BufferedInputStream, SizesBelowTheFloorBecomeSixteen) {
    const std::pair<long, long> sizes[] = {{-5, 16}, {0, 16}, {1, 16}, {16, 16}, {17, 17}};
    for (const auto& [asked, got] : sizes) {
        Reference<BufferedInputStream> in =
            new BufferedInputStream(new ScriptedInputStream({}), asked);
        EXPECT_EQ(in->getBufferSize(), got) << asked;
    }
    EXPECT_THROW(BufferedInputStream(nullptr, 16), ResultException);
}

TEST(BufferedInputStream, SingleByteReadSignExtends) {
    Reference<BufferedInputStream> in =
        new BufferedInputStream(new ScriptedInputStream(bytes({0x41, 0xFF, 0x80, 0x42})), 16);
    EXPECT_EQ(in->read(), 0x41);
    EXPECT_EQ(in->read(), -1); // 0xFF, not the end
    EXPECT_EQ(in->read(), -128);
    EXPECT_EQ(in->read(), 0x42);
    EXPECT_EQ(in->read(), -1);
    signed char buf[4];
    EXPECT_EQ(in->read(buf, 4), -1);
}

TEST(BufferedInputStream, MarkLimitDecidesAtTheRefill) {
    const Bytes data = sequence(100);
    // Marked at 13, three bytes are kept at the refill (below the limit of 4): reset works and
    // the same bytes come again, also after the refill moved them to the buffer's start.
    {
        Reference<BufferedInputStream> in =
            new BufferedInputStream(new ScriptedInputStream(data), 16);
        readBytes(*in, 13);
        in->mark(4);
        EXPECT_EQ(readBytes(*in, 5), slice(data, 13, 5));
        in->reset();
        EXPECT_EQ(readBytes(*in, 5), slice(data, 13, 5));
    }
    // Marked at 12, four bytes would have to be kept: the mark is gone, reading goes on.
    {
        Reference<BufferedInputStream> in =
            new BufferedInputStream(new ScriptedInputStream(data), 16);
        readBytes(*in, 12);
        in->mark(4);
        EXPECT_EQ(readBytes(*in, 5), slice(data, 12, 5));
        try {
            in->reset();
            FAIL() << "reset succeeded";
        } catch (const IoException& e) {
            EXPECT_EQ(messageOf(e), u"mark invalid");
        }
        EXPECT_EQ(readBytes(*in, 3), slice(data, 17, 3));
        // A new mark heals it.
        in->mark(8);
        readBytes(*in, 2);
        in->reset();
        EXPECT_EQ(readBytes(*in, 1), slice(data, 20, 1));
    }
}

TEST(BufferedInputStream, MarkLimitBeyondTheBufferGrowsIt) {
    const Bytes data = sequence(300);
    Reference<BufferedInputStream> in = new BufferedInputStream(new ScriptedInputStream(data), 16);
    readBytes(*in, 10);
    in->mark(100);
    EXPECT_EQ(in->getBufferSize(), 16); // not before a refill needs the room
    EXPECT_EQ(readBytes(*in, 90), slice(data, 10, 90));
    EXPECT_EQ(in->getBufferSize(), 100);
    in->reset();
    Bytes again(99);
    EXPECT_EQ(in->read(again.data(), 99), 99);
    EXPECT_EQ(again, slice(data, 10, 99));
    in->reset();
    // 100 bytes past the mark have been delivered at the next refill: the mark is invalidated.
    EXPECT_EQ(in->skip(100), 100);
    EXPECT_EQ(readBytes(*in, 1), slice(data, 110, 1));
    EXPECT_THROW(in->reset(), IoException);
}

TEST(BufferedInputStream, ResetWithoutMark) {
    Reference<BufferedInputStream> in =
        new BufferedInputStream(new ScriptedInputStream(sequence(4)), 16);
    EXPECT_TRUE(in->markSupported());
    try {
        in->reset();
        FAIL() << "reset succeeded";
    } catch (const IoException& e) {
        EXPECT_EQ(messageOf(e), u"stream not marked");
    }
}

TEST(BufferedInputStream, ShortReadsFromTheWrappedStream) {
    const Bytes data = sequence(40);
    // The wrapped stream gives 1 byte, then 15, then nothing for a moment, then the rest.
    ScriptedInputStream* raw = new ScriptedInputStream(data, {1, 15, 0});
    Reference<BufferedInputStream> in = new BufferedInputStream(raw, 16);
    Bytes buf(10);
    EXPECT_EQ(in->read(buf.data(), 10), 10); // goes on while more is available
    EXPECT_EQ(buf, slice(data, 0, 10));
    EXPECT_EQ(in->read(buf.data(), 10), 6); // the empty read ends this one
    EXPECT_EQ(slice(buf, 0, 6), slice(data, 10, 6));
    EXPECT_EQ(in->read(buf.data(), 10), 10);
    EXPECT_EQ(buf, slice(data, 16, 10));
    EXPECT_EQ(drain(*in, 7), slice(data, 26, 14));

    // Without available(), a read returns what it has as soon as the buffer runs dry.
    ScriptedInputStream* quiet = new ScriptedInputStream(data, {1, 15, 0});
    quiet->reportAvailable = false;
    Reference<BufferedInputStream> q = new BufferedInputStream(quiet, 16);
    EXPECT_EQ(q->read(buf.data(), 10), 1);
    EXPECT_EQ(q->read(buf.data(), 10), 10);
    EXPECT_EQ(q->read(buf.data(), 10), 5);
    // An empty read of the wrapped stream reads as the end here, once.
    EXPECT_EQ(q->read(buf.data(), 10), -1);
    EXPECT_EQ(drain(*q, 3), slice(data, 16, 24));

    Reference<BufferedInputStream> single =
        new BufferedInputStream(new ScriptedInputStream(data, {1, 0}), 16);
    EXPECT_EQ(single->read(), data[0]);
    EXPECT_EQ(single->read(), -1);
    EXPECT_EQ(single->read(), data[1]);
}

TEST(BufferedInputStream, LargeReadsBypassTheBufferUnlessMarked) {
    const Bytes data = sequence(200);
    ScriptedInputStream* raw = new ScriptedInputStream(data);
    Reference<BufferedInputStream> in = new BufferedInputStream(raw, 16);
    Bytes buf(64);
    EXPECT_EQ(in->read(buf.data(), 64), 64);
    EXPECT_EQ(raw->reads, 1);
    EXPECT_EQ(buf, slice(data, 0, 64));
    // Buffered bytes first, then the rest directly.
    EXPECT_EQ(in->read(), data[64]);
    EXPECT_EQ(in->read(buf.data(), 40), 40);
    EXPECT_EQ(slice(buf, 0, 40), slice(data, 65, 40));
    in->mark(8);
    const int before = raw->reads;
    EXPECT_EQ(in->read(buf.data(), 64), 64);
    EXPECT_GT(raw->reads - before, 1); // through the buffer
    EXPECT_EQ(buf, slice(data, 105, 64));
}

TEST(BufferedInputStream, SkipAndAvailable) {
    const Bytes data = sequence(50);
    Reference<BufferedInputStream> in = new BufferedInputStream(new ScriptedInputStream(data), 16);
    EXPECT_EQ(in->skip(0), 0);
    EXPECT_EQ(in->available(), 50);
    EXPECT_EQ(in->read(), data[0]);
    EXPECT_EQ(in->available(), 49); // 15 buffered + 34 in the wrapped stream
    EXPECT_EQ(in->skip(30), 30);
    EXPECT_EQ(in->read(), data[31]);
    EXPECT_EQ(in->skip(100), 18);
    EXPECT_EQ(in->skip(1), 0);
}

TEST(BufferedInputStream, ClosedStreamRefusesEverything) {
    ScriptedInputStream* raw = new ScriptedInputStream(sequence(10));
    Reference<BufferedInputStream> in = new BufferedInputStream(raw, 16);
    in->close();
    EXPECT_EQ(raw->closes, 1);
    signed char buf[4];
    const std::function<void()> operations[] = {
        [&] { in->read(); },  [&] { in->read(buf, 4); }, [&] { in->read(buf, 0); },
        [&] { in->skip(1); }, [&] { in->available(); },  [&] { in->mark(1); },
        [&] { in->reset(); },
    };
    for (const auto& operation : operations) {
        try {
            operation();
            ADD_FAILURE() << "operation on a closed stream succeeded";
        } catch (const IoException& e) {
            EXPECT_EQ(messageOf(e), u"stream closed");
        }
    }
    in->close();
    EXPECT_EQ(raw->closes, 2);
}
