#include "StreamTestSupport.h"

#include "qn/io/BufferedOutputStream.h"

using namespace qn;
using namespace qn::io;
using namespace qntest;

TEST(BufferedOutputStream, HandsOnBlocksInOrder) {
    const Bytes data = sequence(100);
    RecordingOutputStream* sink = new RecordingOutputStream;
    Reference<BufferedOutputStream> out = new BufferedOutputStream(sink, 16);
    out->write(data.data(), 10);
    out->write(data.data() + 10, 6); // exactly fills the buffer: nothing written yet
    EXPECT_TRUE(sink->calls.empty());
    out->write(data[16]); // full: the buffer goes first
    out->write(data.data() + 17, 10);
    out->write(data.data() + 27, 10); // 11 + 10 > 16: the 11 buffered go first
    out->write(data.data() + 37, 16); // a buffer's worth: buffered bytes, then it directly
    out->write(data.data() + 53, 47);
    EXPECT_EQ(sink->calls, (std::vector<long>{16, 11, 10, 16, 47}));
    EXPECT_EQ(sink->data, data);
}
