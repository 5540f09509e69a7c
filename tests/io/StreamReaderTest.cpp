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

// ASCII, two-, three- and four-byte forms, lines of mixed length.
const char* const MIXED = "plain ascii\n\xC3\xA9t\xC3\xA9 \xE2\x82\xAC 42\r\n\xF0\x9F\x98\x80"
                          "\xE4\xB8\xAD\xE6\x96\x87\xF0\x90\x8D\x88z\xC2\xA0" "end";
const std::u16string MIXED_UTF16 = u"plain ascii\n\u00E9t\u00E9 \u20AC 42\r\n\U0001F600"
                                   u"\u4E2D\u6587\U00010348z\u00A0end";

std::u16string readAll(Reader& in, long size) {
    std::u16string text;
    std::vector<char16_t> buf(static_cast<size_t>(size));
    for (long n; (n = in.read(buf.data(), size)) != -1;)
        text.append(buf.data(), static_cast<size_t>(n));
    return text;
}

Reference<InputStreamReader> reader(const Bytes& data, std::vector<long> script = {},
                                    long size = 64) {
    return new InputStreamReader(new ScriptedInputStream(data, std::move(script)), u"UTF-8",
                                 size);
}

Bytes encodeWhole(const char16_t* encoding, const std::u16string& text) {
    Reference<CharToByteConverter> converter = CharToByteConverter::getConverter(encoding);
    Bytes out(text.size() * 8 + 16);
    long in = 0, o = 0;
    converter->convert(text.data(), &in, static_cast<long>(text.size()), out.data(), &o,
                       static_cast<long>(out.size()));
    converter->flush(out.data(), &o, static_cast<long>(out.size()));
    out.resize(static_cast<size_t>(o));
    return out;
}

} // namespace

TEST(InputStreamReader, SameTextWhateverTheReadSizes) {
    const Bytes data = utf8(MIXED);
    const std::vector<std::vector<long>> scripts = {
        {},
        {1, static_cast<long>(data.size()) - 1},
        {1, 5, 0, 1000},      // the stream's pieces: 1, then N-1, then nothing now, then the rest
        {13, 1, 1, 1, 1, 2, 3},
        std::vector<long>(data.size(), 1),
    };
    for (const auto& script : scripts) {
        for (long size : {1L, 2L, 3L, 4L, 7L, 64L}) {
            Reference<InputStreamReader> in = reader(data, script, 6);
            std::u16string got;
            std::vector<char16_t> buf(static_cast<size_t>(size));
            // A read may deliver nothing now (the stream's 0); keep asking until the end.
            for (long n; (n = in->read(buf.data(), size)) != -1;)
                got.append(buf.data(), static_cast<size_t>(n));
            EXPECT_EQ(got, MIXED_UTF16) << "read size " << size << ", script " << script.size();
        }
    }
    // read() hands out a surrogate pair one unit at a time.
    Reference<InputStreamReader> in = reader(utf8("\xF0\x9F\x98\x80!"));
    EXPECT_EQ(in->read(), 0xD83D);
    EXPECT_EQ(in->read(), 0xDE00);
    EXPECT_EQ(in->read(), u'!');
    EXPECT_EQ(in->read(), -1);
    EXPECT_EQ(in->read(), -1);
}

TEST(InputStreamReader, OnlyACutOffSequenceBecomesOneReplacementPerByte) {
    const std::pair<const char*, std::u16string> cases[] = {
        {"\xE2\x82", u"\uFFFD\uFFFD"},
        {"ab\xF0\x9F\x98", u"ab\uFFFD\uFFFD\uFFFD"},
        {"\xE2\x82\xAC", u"\u20AC"},
    };
    for (const auto& [bytesIn, expected] : cases) {
        for (const auto& script : {std::vector<long>{}, std::vector<long>{1, 1, 1, 1, 1}}) {
            for (long size : {1L, 64L}) {
                Reference<InputStreamReader> in = reader(utf8(bytesIn), script);
                EXPECT_EQ(readAll(*in, size), expected) << bytesIn << " size " << size;
            }
        }
    }
    // A caller's array that ends before a pair does not make the pair "cut off".
    Reference<InputStreamReader> in = reader(utf8("abcd\xF0\x9F\x98\x80"));
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

TEST(OutputStreamWriter, SameBytesWhateverTheWriteSplits) {
    const std::u16string text = MIXED_UTF16 + u"\U0001F600\U0001F600x\U00010348";
    for (const char16_t* encoding : {u"UTF-8", u"AMP-7", u"UTF-16BE"}) {
        const Bytes whole = encodeWhole(encoding, text);
        for (size_t step : {size_t{1}, size_t{2}, size_t{3}, size_t{5}, text.size()}) {
            auto* sink = new RecordingOutputStream;
            Reference<OutputStreamWriter> out = new OutputStreamWriter(sink, encoding, 7);
            for (size_t at = 0; at < text.size(); at += step)
                out->write(text.data() + at, static_cast<long>(std::min(step, text.size() - at)));
            out->flush();
            EXPECT_EQ(sink->data, whole) << "step " << step;
            EXPECT_EQ(sink->flushes, 1);
        }
    }
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
