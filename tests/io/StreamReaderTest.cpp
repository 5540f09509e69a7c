#include "StreamTestSupport.h"

#include "qn/io/ByteArrayInputStream.h"
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

TEST(Reader, BaseSingleReadAndSkip) {
    // A reader over a fixed text that hands out at most 100 characters per call.
    struct Fixed : Reader {
        std::u16string text;
        size_t pos = 0;
        std::vector<long> asked;
        using Reader::read;
        long read(char16_t* buf, long len) override {
            asked.push_back(len);
            if (pos == text.size())
                return -1;
            const size_t n = std::min<size_t>({static_cast<size_t>(len), text.size() - pos, 100});
            text.copy(buf, n, pos);
            pos += n;
            return static_cast<long>(n);
        }
    };
    Reference<Fixed> in = new Fixed;
    in->text = std::u16string(u"\uFFFF\u0080") + std::u16string(600, u'x');
    EXPECT_EQ(in->read(), 0xFFFF); // zero-extended, not the end
    EXPECT_EQ(in->read(), 0x80);
    EXPECT_EQ(in->skip(0), 0);
    EXPECT_EQ(in->skip(599), 599);
    EXPECT_EQ(in->asked, (std::vector<long>{1, 1, 256, 256, 256, 256, 199, 99}));
    EXPECT_EQ(in->skip(5), 1);
    EXPECT_EQ(in->read(), -1);
    EXPECT_FALSE(in->markSupported());
    EXPECT_EQ(in->available(), 0);
    EXPECT_EQ(messageOf([&] { in->reset(); }), u"mark/reset not supported");
}

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

TEST(InputStreamReader, EncodingsAvailableAndClose) {
    Reference<ByteToCharConverter> fallback = ByteToCharConverter::getDefaultConverter();
    Reference<InputStreamReader> byDefault =
        new InputStreamReader(new ScriptedInputStream({}), nullptr, 64);
    EXPECT_EQ(std::u16string(byDefault->getEncodingName()), fallback->getEncodingName());
    EXPECT_EQ(messageOf([] { InputStreamReader(new ScriptedInputStream({}), u"no-such", 64); }),
              u"no-such");
    EXPECT_THROW(InputStreamReader(new ScriptedInputStream({}), u"no-such", 64),
                 UnknownEncodingException);
    EXPECT_EQ(reader({}, {}, 0)->getBufferSize(), 6);
    EXPECT_EQ(InputStreamReader(new ScriptedInputStream({}), u"A7", 0).getBufferSize(), 8);

    auto* stream = new ScriptedInputStream(utf8("0123456789abcde"));
    stream->reportAvailable = false;
    Reference<InputStreamReader> in = new InputStreamReader(stream, u"utf8", 64);
    EXPECT_EQ(std::u16string(in->getEncodingName()), u"UTF-8");
    char16_t buf[3];
    EXPECT_EQ(in->read(buf, 3), 3);
    EXPECT_EQ(in->available(), 2); // 12 bytes buffered / 6 per character at most

    // Malformed input fails as the converter fails.
    Reference<InputStreamReader> bad = reader(utf8("ok\xED\xA0\x80"));
    char16_t big[16];
    EXPECT_THROW(bad->read(big, 16), InvalidCharacterException);

    in->close();
    EXPECT_EQ(stream->closes, 1);
    for (auto op : std::vector<std::function<void()>>{
             [&] { in->read(buf, 3); }, [&] { in->read(); }, [&] { in->available(); },
             [&] { in->getEncodingName(); }})
        EXPECT_EQ(messageOf(op), u"stream closed");
    in->close();
    EXPECT_EQ(stream->closes, 2);
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

TEST(InputStreamReader, OwnConverterReportsWhereDecodingStopped) {
    struct Case {
        Bytes data;
        bool substitute;
        std::u16string before; // what the reads deliver up to the failure
        long long offset;      // -1: no failure
        std::u16string problem;
    };
    const Bytes ascii(300, 'a');
    Bytes invalid = ascii;
    for (int b : {0xED, 0xA0, 0x80, 0x7A})
        invalid.push_back(static_cast<signed char>(b));
    const Case cases[] = {
        // Far into the input, past several buffers and uneven reads.
        {invalid, true, {}, 300, u"Invalid UTF-8 sequence (decoded chars in surrogate range)"},
        // Cut off by the end: substituted, or a failure at its first byte without substitution.
        {utf8("ab\xE2\x82"), true, u"ab\uFFFD\uFFFD", -1, {}},
        {utf8("ab\xE2\x82"), false, {}, 2, u"incomplete sequence at the end of the input"},
        // A sequence split across reads is no failure.
        {utf8("ab\xE2\x82\xAC"), false, u"ab\u20AC", -1, {}},
    };
    for (const Case& c : cases) {
        Reference<ByteToCharConverter> converter = ByteToCharConverter::getConverter(u"UTF-8");
        converter->setSubstitutionMode(c.substitute);
        Reference<InputStreamReader> in = new InputStreamReader(
            new ScriptedInputStream(c.data, {50, 3, 1, 64, 64, 64, 64, 64}), converter.get(), 16);
        EXPECT_EQ(in->getBytesDecoded(), 0);
        if (c.offset < 0) {
            EXPECT_EQ(readAll(*in, 8), c.before);
            EXPECT_EQ(in->getBytesDecoded(), static_cast<long long>(c.data.size()));
            continue;
        }
        EXPECT_EQ(messageOf([&] { readAll(*in, 8); }), c.problem);
        EXPECT_EQ(in->getBytesDecoded(), c.offset) << c.data.size();
    }

    // Unmappable input without substitution: the offset of the unit, in a multi-byte encoding.
    Reference<ByteToCharConverter> utf32 = ByteToCharConverter::getConverter(u"UTF-32BE");
    utf32->setSubstitutionMode(false);
    Reference<InputStreamReader> in = new InputStreamReader(
        new ScriptedInputStream(bytes({0, 0, 0, 'a', 0, 0x11, 0, 0}), {5, 3}), utf32.get());
    EXPECT_THROW(readAll(*in, 8), UnmappableCharacterException);
    EXPECT_EQ(in->getBytesDecoded(), 4);
    // The stream is released when the converter is missing.
    try {
        InputStreamReader(new ScriptedInputStream({}), static_cast<ByteToCharConverter*>(nullptr));
        ADD_FAILURE();
    } catch (const ResultException& e) {
        EXPECT_EQ(e.getResult(), static_cast<QNRESULT>(0x80004003));
    }
}

TEST(OutputStreamWriter, OwnConverterCountsTheCharactersItTookIn) {
    // Unmappable after characters written in several writes, across full buffers.
    Reference<CharToByteConverter> latin1 = CharToByteConverter::getConverter(u"ISO8859_1");
    latin1->setSubstitutionMode(false);
    auto* sink = new RecordingOutputStream;
    Reference<OutputStreamWriter> out = new OutputStreamWriter(sink, latin1.get(), 8);
    for (int i = 0; i < 5; ++i)
        out->write(u"\u00E9bcdefg", 7);
    EXPECT_EQ(out->getCharsEncoded(), 35);
    EXPECT_THROW(out->write(u"ab\u20ACc", 4), UnmappableCharacterException);
    EXPECT_EQ(out->getCharsEncoded(), 37);

    // Substitution on: nothing fails and everything counts.
    Reference<OutputStreamWriter> lenient =
        new OutputStreamWriter(new RecordingOutputStream, CharToByteConverter::getConverter(u"ISO8859_1").get());
    lenient->write(u"a\u20ACb", 3);
    lenient->flush();
    EXPECT_EQ(lenient->getCharsEncoded(), 3);

    // A lone high surrogate fails at its own place: followed by another unit, or at the end.
    struct Case {
        std::vector<std::u16string> writes;
        long long offset;
    };
    for (const char16_t* encoding : {u"UTF-8", u"AMP-7"}) {
        for (const Case& c : {Case{{u"a", u"\xD800" u"b"}, 1}, Case{{u"a\xD800", u"b"}, 1},
                              Case{{u"ab", u"\xD800"}, 2}, Case{{u"ab\xD800"}, 2}}) {
            Reference<OutputStreamWriter> w = new OutputStreamWriter(
                new RecordingOutputStream, CharToByteConverter::getConverter(encoding).get());
            EXPECT_EQ(messageOf([&] {
                          for (const std::u16string& text : c.writes)
                              w->write(text.data(), static_cast<long>(text.size()));
                          w->flush();
                      }),
                      u"leading surrogate without trailing");
            EXPECT_EQ(w->getCharsEncoded(), c.offset)
                << std::string(encoding, encoding + 5).c_str() << " " << c.writes.size();
        }
    }
}
