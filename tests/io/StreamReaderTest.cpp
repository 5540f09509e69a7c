#include "StreamTestSupport.h"

#include "qn/io/InputStreamReader.h"
#include "qn/io/OutputStreamWriter.h"

using namespace qn;
using namespace qn::io;
using namespace qn::text::charset;
using namespace qntest;

namespace {

Bytes utf8(const char* text) {
    return Bytes(text, text + std::strlen(text));
}

Reference<InputStreamReader> reader(const Bytes& data, std::vector<long> script = {},
                                    long size = 64) {
    return new InputStreamReader(new ScriptedInputStream(data, std::move(script)), u"UTF-8",
                                 size);
}

} // namespace

// read() hands out a surrogate pair one unit at a time, and -1 again after the end.
TEST(InputStreamReader, PairsSurviveUnitReadsAndShortArrays) {
    Reference<InputStreamReader> in = reader(utf8("\xF0\x9F\x98\x80!"));
    EXPECT_EQ(in->read(), 0xD83D);
    EXPECT_EQ(in->read(), 0xDE00);
    EXPECT_EQ(in->read(), u'!');
    EXPECT_EQ(in->read(), -1);
    EXPECT_EQ(in->read(), -1);
    // A caller's array that ends before a pair does not make the pair "cut off".
    in = reader(utf8("abcd\xF0\x9F\x98\x80"));
    char16_t buf[5];
    EXPECT_EQ(in->read(buf, 5), 5);
    EXPECT_EQ(std::u16string(buf, 5), u"abcd\xD83D");
    EXPECT_EQ(in->read(buf, 5), 1);
    EXPECT_EQ(buf[0], 0xDE00);
}

TEST(InputStreamReader, StopsWithWhatItHasWhenTheStreamHasNothingNow) {
    auto* stream = new ScriptedInputStream(utf8("abc\xE2\x82\xAC"), {4, 0, 10});
    stream->reportAvailable = false;
    Reference<InputStreamReader> in = new InputStreamReader(stream, u"UTF-8", 64);
    char16_t buf[16];
    EXPECT_EQ(in->read(buf, 16), 3); // abc, and E2 waits: nothing more is available
    EXPECT_EQ(stream->reads, 1);
    EXPECT_EQ(in->read(buf, 16), 0); // the stream's empty read
    EXPECT_EQ(in->read(buf, 16), 1);
    EXPECT_EQ(buf[0], 0x20AC);
    EXPECT_EQ(in->read(buf, 16), -1);
}

TEST(OutputStreamWriter, CarriedHighSurrogateFailsAtFlush) {
    for (const char16_t* encoding : {u"AMP-7", u"UTF-8"}) {
        auto* sink = new RecordingOutputStream;
        Reference<OutputStreamWriter> out = new OutputStreamWriter(sink, encoding, 64);
        out->write(u"a\xD83D", 2);
        EXPECT_EQ(messageOf([&] { out->flush(); }), u"leading surrogate without trailing");
        EXPECT_EQ(sink->flushes, 0);
        // The lone unit is gone; the writer goes on.
        out->write(u"b", 1);
        out->flush();
        EXPECT_EQ(sink->data, bytes({'a', 'b'})) << std::string(encoding, encoding + 5).c_str();
    }
}

TEST(OutputStreamWriter, BuffersUntilFullOrFlushAndDropsAtClose) {
    auto* sink = new RecordingOutputStream;
    EXPECT_EQ(OutputStreamWriter(new RecordingOutputStream, u"UTF-8", 0).getBufferSize(), 6);
    Reference<OutputStreamWriter> out = new OutputStreamWriter(sink, u"UTF-8", 12);
    out->write(u"abcdefg", 7);
    EXPECT_TRUE(sink->calls.empty());
    out->write(String(u"\u20ACz")); // 5 bytes free: too few for UTF-8's longest sequence
    EXPECT_EQ(sink->calls, (std::vector<long>{7}));
    out->write(u'!');
    out->flush();
    EXPECT_EQ(sink->data, utf8("abcdefg\xE2\x82\xAC" "z!"));
    EXPECT_EQ(sink->calls, (std::vector<long>{7, 5}));
    EXPECT_EQ(sink->flushes, 1);

    out->write(static_cast<const char16_t*>(nullptr));
    out->write(u"lost");
    out->close();
    EXPECT_EQ(sink->data.size(), 12u); // "lost" was still in the buffer
    EXPECT_EQ(sink->closes, 1);
    for (auto op : std::vector<std::function<void()>>{
             [&] { out->write(u"x", 1); }, [&] { out->flush(); }, [&] { out->getEncodingName(); }})
        EXPECT_EQ(messageOf(op), u"stream closed");
}
