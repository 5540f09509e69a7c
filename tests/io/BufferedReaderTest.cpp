#include "StreamTestSupport.h"

#include "qn/core/Class.h"
#include "qn/io/BufferedReader.h"
#include "qn/io/BufferedWriter.h"
#include "qn/io/FilterReader.h"
#include "qn/io/InputStreamReader.h"
#include "qn/io/NullWriter.h"
#include "qn/io/PrintWriter.h"
#include "qn/io/StringWriter.h"

using namespace qn;
using namespace qn::io;
using namespace qntest;

namespace {

std::u16string textOf(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

// Every line readLine gives, then "<end>" for its -1; lengths are checked on the way.
std::vector<std::u16string> lines(BufferedReader& in) {
    std::vector<std::u16string> out;
    String line;
    for (;;) {
        const long n = in.readLine(line);
        if (n == -1)
            break;
        EXPECT_EQ(n, line.getLength());
        out.push_back(textOf(line));
    }
    out.push_back(u"<end>");
    return out;
}

} // namespace

TEST(BufferedReader, ReadLineEndsAtLfCrAndCrLfWhereverTheFillsEnd) {
    const std::u16string input = u"a\r\nb\rc\n\n";
    const std::vector<std::u16string> expected = {u"a", u"b", u"c", u"", u"<end>"};
    // Pieces of one character put every CR at the end of a fill and its LF at the next.
    for (const auto& script : {std::vector<long>{}, std::vector<long>(input.size(), 1),
                               std::vector<long>{2, 1, 2}}) {
        BufferedReader in(new ScriptedReader(input, script), 16);
        EXPECT_EQ(lines(in), expected);
    }
    // A CR that is the last character of a full buffer, with its LF behind the refill.
    const std::u16string longLine(15, u'x');
    BufferedReader split(new ScriptedReader(longLine + u"\r\n" + u"y\r"), 16);
    EXPECT_EQ(lines(split), (std::vector<std::u16string>{longLine, u"y", u"<end>"}));

    // Lines longer than the buffer, a last line without terminator, a CR LF pair kept apart by
    // a reader that has nothing now (0).
    const std::u16string big(100, u'\u00E9');
    BufferedReader longer(new ScriptedReader(big + u"\n" + big + u"\r\n\r\nlast"), 16);
    EXPECT_EQ(lines(longer), (std::vector<std::u16string>{big, big, u"", u"last", u"<end>"}));
    BufferedReader empty(new ScriptedReader(u""), 16);
    EXPECT_EQ(lines(empty), std::vector<std::u16string>{u"<end>"});
}

TEST(BufferedReader, DecodedLinesFromShortByteReads) {
    // The bytes come one at a time: sequences and CR LF pairs are split across every read.
    const char raw[] = "\xC3\xA9t\xC3\xA9\r\n\xF0\x9F\x98\x80\r\xE2\x82\xAC\n\xE2\x82";
    Bytes data(raw, raw + sizeof raw - 1);
    auto* stream = new ScriptedInputStream(data, std::vector<long>(data.size(), 1));
    BufferedReader in(new InputStreamReader(stream, u"UTF-8", 6), 16);
    EXPECT_EQ(lines(in), (std::vector<std::u16string>{u"\u00E9t\u00E9", u"\U0001F600",
                                                      u"\u20AC", u"\uFFFD\uFFFD", u"<end>"}));
}

TEST(BufferedReader, MarkResetAndCharacters) {
    auto ch = [](int i) { return static_cast<char16_t>(0xFFC0 + i); }; // ch(63) is 0xFFFF
    std::u16string input;
    for (int i = 0; i < 100; ++i)
        input += ch(i);
    EXPECT_EQ(BufferedReader(new ScriptedReader(u""), 3).getBufferSize(), 16);

    BufferedReader in(new ScriptedReader(input), 16);
    EXPECT_EQ(messageOf([&] { in.reset(); }), u"stream not marked");
    EXPECT_TRUE(in.markSupported());
    EXPECT_EQ(in.skip(14), 14);
    in.mark(4);
    char16_t buf[5];
    EXPECT_EQ(in.read(buf, 5), 5); // across a refill that keeps the marked characters
    EXPECT_EQ(in.skip(11), 11);    // the mark is only judged at the next refill
    in.reset();
    EXPECT_EQ(in.read(), ch(14));
    EXPECT_EQ(in.skip(15), 15);
    EXPECT_EQ(in.read(), ch(30)); // this refill passes the limit
    EXPECT_EQ(messageOf([&] { in.reset(); }), u"mark invalid");

    in.mark(40); // more than the buffer holds: a refill grows it
    EXPECT_EQ(in.skip(35), 35);
    in.reset();
    EXPECT_EQ(in.read(), ch(31));
    EXPECT_EQ(in.getBufferSize(), 40);
    EXPECT_EQ(in.skip(100), 68);
    EXPECT_EQ(in.read(), -1);
    EXPECT_EQ(in.skip(-3), 0);

    // A large read with nothing buffered goes straight to the wrapped reader.
    auto* source = new ScriptedReader(input);
    BufferedReader direct(source, 16);
    char16_t big[40];
    EXPECT_EQ(direct.read(big, 40), 40);
    EXPECT_EQ(source->reads, 1);
    EXPECT_EQ(big[39], ch(39));
    EXPECT_EQ(direct.read(), ch(40));
    EXPECT_EQ(direct.available(), 59);

    direct.close();
    String line;
    for (auto op : std::vector<std::function<void()>>{
             [&] { direct.read(); }, [&] { direct.read(big, 2); }, [&] { direct.skip(1); },
             [&] { direct.available(); }, [&] { direct.mark(1); }, [&] { direct.reset(); },
             [&] { direct.readLine(line); }})
        EXPECT_EQ(messageOf(op), u"stream closed");
    direct.close();
    EXPECT_EQ(source->closes, 2);
}

TEST(BufferedWriter, BuffersWritesThroughLargeArraysAndDropsAtClose) {
    auto* sink = new RecordingWriter;
    Reference<BufferedWriter> out = new BufferedWriter(sink, 16);
    out->write(u"0123456789", 10);
    out->write(u"abcdef", 6); // exactly fills the buffer
    EXPECT_TRUE(sink->calls.empty());
    out->write(u'!'); // full: written out first
    EXPECT_EQ(sink->calls, (std::vector<long>{16}));
    out->write(String(u"0123456789abcdef")); // as long as the buffer: straight through
    EXPECT_EQ(sink->calls, (std::vector<long>{16, 1, 16}));
    out->write(u"xyz");
    out->flush();
    EXPECT_EQ(sink->text, u"0123456789abcdef!0123456789abcdefxyz");
    EXPECT_EQ(sink->flushes, 1);

    out->write(u"lost");
    out->close();
    EXPECT_EQ(sink->text.size(), 36u);
    EXPECT_EQ(sink->closes, 1);
    EXPECT_EQ(messageOf([&] { out->write(u'x'); }), u"stream closed");
    EXPECT_EQ(messageOf([&] { out->flush(); }), u"stream closed");
}

TEST(PrintWriter, ValuesLfAndAutoFlush) {
    for (bool autoFlush : {false, true}) {
        auto* sink = new RecordingWriter;
        Reference<PrintWriter> out = new PrintWriter(sink, autoFlush);
        out->println(String(u"x"));
        out->print(42);
        out->print(-7L);
        out->print(true);
        out->print(u'\u00E9');
        out->print("8-bit");
        out->print(static_cast<const char*>(nullptr));
        out->println(u"!");
        out->println();
        EXPECT_EQ(sink->text, u"x\n42-7true\u00E98-bit!\n\n");
        if (autoFlush)
            EXPECT_EQ(sink->flushedAt, (std::vector<size_t>{2, 18, 19}));
        else
            EXPECT_EQ(sink->flushes, 0);
    }
    // Failures of the wrapped writer pass through.
    struct Failing : Writer {
        using Writer::write;
        void write(const char16_t*, long) override { throw IoException(u"disk full"); }
    };
    PrintWriter failing(new Failing, true);
    EXPECT_EQ(messageOf([&] { failing.println(1.5); }), u"disk full");
}

TEST(Writers, SinksFiltersAndRegistry) {
    StringWriter collected(0);
    collected.write(u"ab", 2);
    collected.write(u'c');
    collected.close();
    collected.write(String(u"d")); // close does nothing here
    EXPECT_EQ(textOf(collected.toString()), u"abcd");

    // Filters forward everything, closing included.
    auto* source = new ScriptedReader(u"xyz");
    FilterReader filtered(source);
    EXPECT_FALSE(filtered.markSupported());
    EXPECT_EQ(filtered.read(), u'x');
    EXPECT_EQ(filtered.skip(1), 1);
    EXPECT_EQ(filtered.available(), 1);
    EXPECT_EQ(messageOf([&] { filtered.reset(); }), u"mark/reset not supported");
    filtered.close();
    EXPECT_EQ(source->closes, 1);

    for (const char16_t* name : {u"CQNNullWriter", u"CQNStringWriter"}) {
        Reference<Object> made = Class::forName(name)->createInstance();
        Writer* writer = dynamic_cast<Writer*>(made.get());
        ASSERT_NE(writer, nullptr);
        writer->write(u"dropped or kept");
        writer->flush();
    }
    for (const char16_t* name :
         {u"CQNReader", u"CQNWriter", u"CQNBufferedReader", u"CQNBufferedWriter",
          u"CQNFilterReader", u"CQNFilterWriter", u"CQNInputStreamReader",
          u"CQNOutputStreamWriter", u"CQNPrintWriter"})
        EXPECT_THROW(Class::forName(name)->createInstance(), IllegalAccessException) << name;
    EXPECT_STREQ(reinterpret_cast<const char*>(Class::forName(u"CQNPrintWriter")->getName()),
                 reinterpret_cast<const char*>(u"CQNPrintWriter"));
}
