#include "StreamTestSupport.h"

#include "qn/io/BufferedOutputStream.h"

#include <functional>

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
    EXPECT_EQ(sink->calls, (std::vector<long>{16}));
    out->write(data.data() + 17, 10);
    out->write(data.data() + 27, 10); // 11 + 10 > 16: the 11 buffered go first
    EXPECT_EQ(sink->calls, (std::vector<long>{16, 11}));
    out->write(data.data() + 37, 16); // a buffer's worth: buffered bytes, then it directly
    EXPECT_EQ(sink->calls, (std::vector<long>{16, 11, 10, 16}));
    out->write(data.data() + 53, 47);
    EXPECT_EQ(sink->calls, (std::vector<long>{16, 11, 10, 16, 47}));
    EXPECT_EQ(sink->data, data);
    out->write(data[0]);
    out->flush();
    EXPECT_EQ(sink->calls.back(), 1);
    EXPECT_EQ(sink->flushes, 1);
    out->flush(); // nothing buffered: only the wrapped stream is flushed
    EXPECT_EQ(sink->calls.size(), 6u);
    EXPECT_EQ(sink->flushes, 2);
}

TEST(BufferedOutputStream, CloseDropsWhatWasNotFlushed) {
    RecordingOutputStream* sink = new RecordingOutputStream;
    Reference<BufferedOutputStream> out = new BufferedOutputStream(sink, 0);
    EXPECT_EQ(out->getBufferSize(), 16);
    out->write("kept", 4);
    out->flush();
    out->write("lost", 4);
    out->close();
    EXPECT_EQ(sink->data, bytes({'k', 'e', 'p', 't'}));
    EXPECT_EQ(sink->closes, 1);
    EXPECT_EQ(sink->flushes, 1);

    const std::function<void()> operations[] = {
        [&] { out->write("x", 1); },
        [&] { out->write(static_cast<signed char>(1)); },
        [&] { out->flush(); },
    };
    for (const auto& operation : operations)
        EXPECT_THROW(operation(), IoException);
    out->close();
    EXPECT_EQ(sink->closes, 2);
}

// A sink that fails its first write.
class FailingOnce : public RecordingOutputStream {
public:
    using RecordingOutputStream::write;
    void write(const signed char* buf, long len) override {
        if (!failed) {
            failed = true;
            throw IoException(String(u"device full"));
        }
        RecordingOutputStream::write(buf, len);
    }
    bool failed = false;
};

TEST(BufferedOutputStream, FailedBlockIsNotWrittenTwice) {
    FailingOnce* sink = new FailingOnce;
    Reference<BufferedOutputStream> out = new BufferedOutputStream(sink, 16);
    out->write("0123456789", 10);
    EXPECT_THROW(out->flush(), IoException);
    out->write("ab", 2);
    out->flush();
    EXPECT_EQ(sink->data, bytes({'a', 'b'}));
}
