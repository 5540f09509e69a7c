#include "StreamTestSupport.h"

#include "qn/io/BufferedInputStream.h"

using namespace qn;
using namespace qn::io;
using namespace qntest;

namespace {

Bytes readBytes(BufferedInputStream& in, int n) {
    Bytes out;
    for (int i = 0; i < n; ++i)
        out.push_back(static_cast<signed char>(in.read()));
    return out;
}

Bytes slice(const Bytes& b, size_t from, size_t n) {
    return Bytes(b.begin() + static_cast<long>(from), b.begin() + static_cast<long>(from + n));
}

Reference<BufferedInputStream> buffered(const Bytes& data, std::vector<long> script = {}) {
    return new BufferedInputStream(new ScriptedInputStream(data, std::move(script)), 16);
}

} // namespace

TEST(BufferedInputStream, MarkLimitDecidesAtTheRefill) {
    const Bytes data = sequence(100);
    Reference<BufferedInputStream> in = buffered(data);
    EXPECT_EQ(messageOf([&] { in->reset(); }), u"stream not marked");
    // Marked at 13, three bytes are kept at the refill (below the limit of 4): the same bytes
    // come again, although the refill moved them to the buffer's start.
    readBytes(*in, 13);
    in->mark(4);
    EXPECT_EQ(readBytes(*in, 5), slice(data, 13, 5));
    in->reset();
    EXPECT_EQ(readBytes(*in, 5), slice(data, 13, 5));

    // Marked at 12 of the next buffer, four bytes would have to be kept: the mark is gone.
    in = buffered(data);
    readBytes(*in, 12);
    in->mark(4);
    EXPECT_EQ(readBytes(*in, 5), slice(data, 12, 5));
    EXPECT_EQ(messageOf([&] { in->reset(); }), u"mark invalid");
    EXPECT_EQ(readBytes(*in, 3), slice(data, 17, 3)); // reading goes on
    in->mark(8);                                      // a new mark heals it
    readBytes(*in, 2);
    in->reset();
    EXPECT_EQ(readBytes(*in, 1), slice(data, 20, 1));
}

TEST(BufferedInputStream, MarkLimitBeyondTheBufferGrowsIt) {
    const Bytes data = sequence(300);
    Reference<BufferedInputStream> in = buffered(data);
    readBytes(*in, 10);
    in->mark(100);
    EXPECT_EQ(readBytes(*in, 90), slice(data, 10, 90));
    EXPECT_EQ(in->getBufferSize(), 100);
    in->reset();
    Bytes again(99);
    EXPECT_EQ(in->read(again.data(), 99), 99);
    EXPECT_EQ(again, slice(data, 10, 99));
    in->reset();
    // At the refill after 100 bytes past the mark, the mark is invalidated.
    EXPECT_EQ(in->skip(101), 101);
    EXPECT_EQ(in->read(), data[111]);
    EXPECT_EQ(messageOf([&] { in->reset(); }), u"mark invalid");
}

TEST(BufferedInputStream, ShortReadsFromTheWrappedStream) {
    const Bytes data = sequence(40);
    // The wrapped stream gives 1 byte, then 15, then nothing for a moment, then the rest.
    Reference<BufferedInputStream> in = buffered(data, {1, 15, 0});
    Bytes buf(10);
    EXPECT_EQ(in->read(buf.data(), 10), 10); // goes on while more is available
    EXPECT_EQ(buf, slice(data, 0, 10));
    EXPECT_EQ(in->read(buf.data(), 10), 6); // the empty read ends this one
    EXPECT_EQ(slice(buf, 0, 6), slice(data, 10, 6));
    EXPECT_EQ(drain(*in, 7), slice(data, 16, 24));

    // Without available(), a read returns what it has as soon as the buffer runs dry, and an
    // empty read of the wrapped stream reads as the end, once.
    ScriptedInputStream* quiet = new ScriptedInputStream(data, {1, 15, 0});
    quiet->reportAvailable = false;
    in = new BufferedInputStream(quiet, 16);
    EXPECT_EQ(in->read(buf.data(), 10), 1);
    EXPECT_EQ(in->read(buf.data(), 10), 10);
    EXPECT_EQ(in->read(buf.data(), 10), 5);
    EXPECT_EQ(in->read(buf.data(), 10), -1);
    EXPECT_EQ(in->available(), 0);
    EXPECT_EQ(drain(*in, 3), slice(data, 16, 24));
}

TEST(BufferedInputStream, LargeReadsBypassTheBufferUnlessMarked) {
    const Bytes data = sequence(200);
    ScriptedInputStream* raw = new ScriptedInputStream(data);
    Reference<BufferedInputStream> in = new BufferedInputStream(raw, 16);
    Bytes buf(64);
    EXPECT_EQ(in->read(buf.data(), 64), 64);
    EXPECT_EQ(raw->reads, 1);
    EXPECT_EQ(in->read(), data[64]);
    EXPECT_EQ(in->available(), 135);
    EXPECT_EQ(in->read(buf.data(), 40), 40); // 15 buffered, then 25 directly
    EXPECT_EQ(slice(buf, 0, 40), slice(data, 65, 40));
    in->mark(8);
    const int before = raw->reads;
    EXPECT_EQ(in->read(buf.data(), 64), 64);
    EXPECT_GT(raw->reads - before, 1); // through the buffer
    EXPECT_EQ(buf, slice(data, 105, 64));
}
