#include "StreamTestSupport.h"

#include "qn/io/BufferedReader.h"

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

TEST(BufferedReader, ReadLineLeavesEarlierLinesAndCopiesAlone) {
    // The caller keeps the earlier lines: the next line must go to a block of the line's own,
    // not over the shared one, also for a line longer than the buffer.
    const std::u16string big(70, u'b');
    BufferedReader in(new ScriptedReader(u"first line\nsecond\n" + big + u"\r\nx"), 16);
    String line(u"a literal the line starts from");
    std::vector<String> kept;
    while (in.readLine(line) >= 0)
        kept.push_back(line);
    ASSERT_EQ(kept.size(), 4u);
    EXPECT_EQ(textOf(kept[0]), u"first line");
    EXPECT_EQ(textOf(kept[1]), u"second");
    EXPECT_EQ(textOf(kept[2]), big);
    EXPECT_EQ(textOf(kept[3]), u"x");
    EXPECT_EQ(line.getLength(), 0); // -1 leaves the line empty

    // Lines of every length to past two rounds of the search, growing and then shrinking, into
    // one reused string whose room is now too small, now just enough, now far too large; units
    // whose low byte is LF or CR end nothing. Every third line is kept, so the next finds its
    // block shared. The buffer sizes end fills at every offset of a round.
    std::u16string all;
    std::vector<std::u16string> expected;
    const char16_t odd[] = {u'\u010A', u'\u0D0D', u'\uFF0A', u'\u800D', u'\u7F0A', u'z', u'\t'};
    for (size_t i = 0; i < 160; ++i) {
        const size_t n = i < 80 ? i : 159 - i;
        std::u16string one;
        for (size_t k = 0; k < n; ++k)
            one += odd[(i + k) % 7];
        expected.push_back(one);
        all += one + (i % 3 == 0 ? u"\r\n" : i % 3 == 1 ? u"\n" : u"\r");
    }
    for (long size : {16L, 37L, 100L, 4096L}) {
        BufferedReader in(new ScriptedReader(all), size);
        String reused;
        std::vector<String> shared;
        std::vector<std::u16string> got;
        for (long n; (n = in.readLine(reused)) >= 0;) {
            ASSERT_EQ(n, reused.getLength());
            EXPECT_EQ(reused.getData()[n], 0);
            got.push_back(textOf(reused));
            if (got.size() % 3 == 0)
                shared.push_back(reused);
        }
        EXPECT_EQ(got, expected) << size;
        for (size_t i = 0; i < shared.size(); ++i)
            EXPECT_EQ(textOf(shared[i]), expected[3 * i + 2]) << size;
    }

    // A mark set before long lines keeps them for reset: the same lines again. (The limit
    // counts the refill that finds the end too.)
    const std::u16string text = big + u"\n" + big + u"\rshort\r\n";
    BufferedReader marked(new ScriptedReader(text, {5, 7, 1}), 16);
    marked.mark(static_cast<long>(text.size()) + 1);
    const std::vector<std::u16string> once = lines(marked);
    marked.reset();
    EXPECT_EQ(lines(marked), once);
    EXPECT_EQ(once, (std::vector<std::u16string>{big, big, u"short", u"<end>"}));
}

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
