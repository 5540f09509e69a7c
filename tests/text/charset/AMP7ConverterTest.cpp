// AMP-7: entities both ways, entities cut by the input's end and by the output's, the
// reach-or-pass substitution stop, surrogates, and positions after exceptions.
#include "ConverterHarness.h"

#include "qn/text/charset/BTCAMP7.h"
#include "qn/text/charset/CTBAMP7.h"

#include <gtest/gtest.h>

using namespace charset_test;

TEST(AMP7ConverterTest, EncodesEntities) {
    CTBAMP7 encoder;
    const struct {
        Units text;
        std::string amp7;
    } cases[] = {
        {u"a&b", "a&AMP;b"},
        {u"\u00E9", "&_E9;"},
        {u"tab\there\r\n~", "tab\there\r\n~"},
        {Units(u"\0\u0001\u007F", 3), "&_0;&_1;&_7F;"},
        {u"'\"", "'\""},
        {u"\U0001F600", "&_1F600;"},
        {u"\xDC00", "&_DC00;"}, // a lone low surrogate is encoded like any character
        {u"\U000FFFFE", "&_FFFFE;"},
        {u"\U000FFFFF!", "?!"}, // U+FFFFF and above are unmappable
    };
    for (const auto& c : cases)
        EXPECT_EQ(encodeAll(encoder, c.text).out, bytes(c.amp7)) << c.amp7;

    EXPECT_EQ(encoder.getMaxBytesPerChar(), 8);
    EXPECT_EQ(encoder.getMaxCharsPerByte(), 1);
}

TEST(AMP7ConverterTest, DecodesEntities) {
    BTCAMP7 decoder;
    const struct {
        std::string amp7;
        Units text;
    } cases[] = {
        {"a&AMP;b&APOS;&QUOT;", u"a&b'\""},
        {"&_e9;&_E9;", u"\u00E9\u00E9"},
        {"&_;", Units(1, u'\0')},
        {"&_1F600;", u"\U0001F600"},
        {"&_FFFFF;", u"\U000FFFFF"},
        // Entity names are upper case only: the ampersand is substituted, the rest is text.
        {"&amp;", u"\uFFFDamp;"},
        {"&_123456;", u"\uFFFD_123456;"}, // a sixth digit
        {"&_12G;", u"\uFFFD_12G;"},
        {"&AMX;", u"\uFFFDAMX;"},
        {"\xC3\xA9", u"\uFFFD\uFFFD"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(decodeAll(decoder, bytes(c.amp7)).out, c.text) << c.amp7;
}

TEST(AMP7ConverterTest, FailuresLeaveTheirPositions) {
    BTCAMP7 decoder;
    Outcome<Units> decoded = decodeAll(decoder, bytes("ab&_D800;"));
    EXPECT_EQ(decoded.out, u"ab");
    EXPECT_EQ(decoded.failure,
              "invalid: Invalid AMP-7 sequence (decoded chars in surrogate range)");
    EXPECT_EQ(decoded.failedAt, 2);

    decoder.setSubstitutionMode(false);
    decoded = decodeAll(decoder, bytes("ab&x"));
    EXPECT_EQ(decoded.failure, "unmappable");
    EXPECT_EQ(decoded.failedAt, 2);

    CTBAMP7 encoder;
    Outcome<Bytes> encoded = encodeAll(encoder, u"ab\xD83D"
                                                u"c");
    EXPECT_EQ(encoded.out, bytes("ab"));
    EXPECT_EQ(encoded.failure, "invalid: leading surrogate without trailing");
    EXPECT_EQ(encoded.failedAt, 2);

    encoder.setSubstitutionMode(false);
    encoded = encodeAll(encoder, u"ab\U0010FFFF");
    EXPECT_EQ(encoded.failure, "unmappable");
    EXPECT_EQ(encoded.failedAt, 2);

    // A high surrogate at the end of the input waits for its partner; alone at the very end of
    // the text it is never consumed.
    encoder.setSubstitutionMode(true);
    encoded = encodeAll(encoder, u"ab\xD83D");
    EXPECT_EQ(encoded.out, bytes("ab"));
    EXPECT_EQ(encoded.failure, "incomplete");
}

TEST(AMP7ConverterTest, StopsBeforeWhatDoesNotFit) {
    BTCAMP7 decoder;
    // An entity cut by the end of the input stays whole for the next call.
    const Bytes in = bytes("x&_1F600;");
    for (long end = 2; end < static_cast<long>(in.size()); ++end) {
        char16_t out[8];
        long inPos = 0, outPos = 0;
        EXPECT_EQ(decoder.convert(raw(in), &inPos, end, out, &outPos, 8), 1) << end;
        EXPECT_EQ(inPos, 1) << end;
    }
    // A surrogate pair needs two slots.
    char16_t out[8];
    long inPos = 1, outPos = 0;
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 9, out, &outPos, 1), 0);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 9, out, &outPos, 2), 2);
    EXPECT_EQ(inPos, 9);

    // Substitution stops when the run would reach or pass the output end: a one-unit run with
    // one slot left stops too.
    const Bytes bad = bytes("\xFF");
    inPos = 0;
    outPos = 0;
    EXPECT_EQ(decoder.convert(raw(bad), &inPos, 1, out, &outPos, 1), 0);
    EXPECT_EQ(inPos, 0);
    EXPECT_EQ(decoder.convert(raw(bad), &inPos, 1, out, &outPos, 2), 1);

    CTBAMP7 encoder;
    const Units text = u"\u00E9&";
    signed char bytesOut[8];
    long textPos = 0, bytePos = 0;
    EXPECT_EQ(encoder.convert(text.data(), &textPos, 2, bytesOut, &bytePos, 4), 0);
    EXPECT_EQ(encoder.convert(text.data(), &textPos, 2, bytesOut, &bytePos, 8), 5);
    EXPECT_EQ(textPos, 1);
    EXPECT_EQ(encoder.convert(text.data(), &textPos, 2, bytesOut, &bytePos, 8), 0);
    EXPECT_EQ(textPos, 1);

    const Units unmappable = u"\U000FFFFF";
    textPos = 0;
    bytePos = 0;
    EXPECT_EQ(encoder.convert(unmappable.data(), &textPos, 2, bytesOut, &bytePos, 1), 0);
    EXPECT_EQ(encoder.convert(unmappable.data(), &textPos, 2, bytesOut, &bytePos, 2), 1);
    EXPECT_EQ(textPos, 2);
}
