#include "qn/text/charset/BTCUTF16.h"
#include "qn/text/charset/BTCUTF32.h"
#include "qn/text/charset/BTCUTF8.h"
#include "qn/text/charset/CTBUTF16.h"
#include "qn/text/charset/CTBUTF32.h"
#include "qn/text/charset/CTBUTF8.h"

#include "text/charset/ConverterHarness.h"

#include <gtest/gtest.h>

using namespace qn;
using namespace qn::text::charset;
using charset_test::Bytes;
using charset_test::raw;
using charset_test::textOf;
using charset_test::Units;

namespace {

const char16_t FFFD = 0xFFFD;

// One call with room for everything, no flush: a pending surrogate stays pending.
Units decodeAll(ByteToCharConverter& converter, const Bytes& in) {
    Units out(in.size() * 2 + 8, u'\0');
    long inPos = 0, outPos = 0;
    EXPECT_EQ(converter.convert(raw(in), &inPos, static_cast<long>(in.size()), raw(out), &outPos,
                                static_cast<long>(out.size())),
              outPos);
    return out.substr(0, static_cast<size_t>(outPos));
}

Bytes encodeAll(CharToByteConverter& converter, const Units& in) {
    Bytes out(in.size() * 6 + 8);
    long inPos = 0, outPos = 0;
    EXPECT_EQ(converter.convert(raw(in), &inPos, static_cast<long>(in.size()), raw(out), &outPos,
                                static_cast<long>(out.size())),
              outPos);
    EXPECT_EQ(inPos, static_cast<long>(in.size()));
    out.resize(static_cast<size_t>(outPos));
    return out;
}

// The offending sequence's start and what was written before it, after an exception.
template <class Exception, class Converter, class In, class Out>
void expectThrowAt(Converter& converter, const In& in, long start, Out& out, long outStart,
                   long expectedIn, long expectedOut, const char16_t* message) {
    long inPos = start, outPos = outStart;
    try {
        converter.convert(raw(in), &inPos, static_cast<long>(in.size()), raw(out), &outPos,
                          static_cast<long>(out.size()));
        ADD_FAILURE() << "no exception";
    } catch (const Exception& e) {
        EXPECT_EQ(textOf(e.getDescription()), message);
    }
    EXPECT_EQ(inPos, expectedIn);
    EXPECT_EQ(outPos, expectedOut);
}

} // namespace

TEST(BTCUTF8, DecodesWhatTheLeadByteTableAllows) {
    const struct {
        Bytes in;
        Units out;
    } cases[] = {
        {{0x41, 0xC3, 0xA9, 0xE2, 0x82, 0xAC}, u"A\u00E9\u20AC"},
        {{0xC0, 0x80}, {FFFD, FFFD}},          // C0 and C1 never lead
        {{0xC2, 0x41}, {FFFD, u'A'}},          // a bad second byte costs one byte only
        {{0xE0, 0x80, 0x80}, Units(1, u'\0')}, // overlong three-byte forms are taken
        {{0xF0, 0x80, 0x80, 0x80}, Units(1, u'\0')},
        {{0xF0, 0x9F, 0x98, 0x80}, u"\U0001F600"},
        {{0xF0, 0xB0, 0x80, 0x80}, {FFFD, FFFD, FFFD, FFFD}}, // second byte above 0xAF
        {{0xF4, 0x8F, 0xBF, 0xBF}, u"\U0010FFFF"},
        {{0xF4, 0x90, 0x80, 0x80}, {FFFD}}, // U+110000: the substitution run
        {{0xF5, 0xFF, 0x80}, {FFFD, FFFD, FFFD}},
        {{0xE2, 0x82, 0x41}, {FFFD, FFFD, u'A'}},
        {{0xED, 0x9F, 0xBF, 0xEE, 0x80, 0x80}, u"\uD7FF\uE000"},
        {{0xEF, 0xBB, 0xBF}, u"\uFEFF"}, // no byte order mark is recognised
    };
    for (const auto& c : cases) {
        BTCUTF8 decoder;
        EXPECT_EQ(decodeAll(decoder, c.in), c.out) << "first byte " << int(c.in[0]);
    }
}

TEST(BTCUTF8, IncompleteSequenceWaitsForTheNextCall) {
    BTCUTF8 decoder;
    const Bytes in = {0x61, 0xE2, 0x82, 0xAC};
    char16_t out[4];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 3, out, &outPos, 4), 1);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 3, out, &outPos, 4), 0);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 4, out, &outPos, 4), 1);
    EXPECT_EQ(inPos, 4);
    EXPECT_EQ(out[1], u'\u20AC');
    // A byte that never leads is decided at once, even as the last one; an invalid sequence
    // is only judged once its whole length is in view.
    const Bytes tail = {0x80, 0xE2, 0x41};
    inPos = outPos = 0;
    EXPECT_EQ(decoder.convert(raw(tail), &inPos, 1, out, &outPos, 4), 1);
    EXPECT_EQ(decoder.convert(raw(tail), &inPos, 3, out, &outPos, 4), 0);
    EXPECT_EQ(inPos, 1);
}

TEST(BTCUTF8, StopsBeforeWhatDoesNotFit) {
    BTCUTF8 decoder;
    const Bytes pair = {0x41, 0xF0, 0x9F, 0x98, 0x80};
    char16_t out[3];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(decoder.convert(raw(pair), &inPos, 5, out, &outPos, 2), 1);
    EXPECT_EQ(inPos, 1); // a pair never splits
    // The substitution run must end before the output's end: with one free unit and a
    // one-unit run, the call stops; with two free units it is written.
    decoder.setSubstitutionChars(u"?", 1);
    const Bytes beyond = {0xF4, 0x90, 0x80, 0x80};
    inPos = outPos = 0;
    EXPECT_EQ(decoder.convert(raw(beyond), &inPos, 4, out, &outPos, 1), 0);
    EXPECT_EQ(inPos, 0);
    EXPECT_EQ(decoder.convert(raw(beyond), &inPos, 4, out, &outPos, 2), 1);
    EXPECT_EQ(inPos, 4);
    EXPECT_EQ(out[0], u'?');
    // An empty run drops the code point.
    decoder.setSubstitutionChars(nullptr, 0);
    inPos = outPos = 0;
    EXPECT_EQ(decoder.convert(raw(beyond), &inPos, 4, out, &outPos, 3), 0);
    EXPECT_EQ(inPos, 4);
}

TEST(BTCUTF8, ExceptionsLeavePositionsAtTheOffendingSequence) {
    BTCUTF8 decoder;
    const Bytes surrogate = {0x61, 0x62, 0xED, 0xA0, 0x80, 0x63};
    Units out(8, u'\0');
    expectThrowAt<InvalidCharacterException>(
        decoder, surrogate, 0, out, 3, 2, 5,
        u"Invalid UTF-8 sequence (decoded chars in surrogate range)");
    EXPECT_EQ(out.substr(3, 2), u"ab");
    // Resuming after the offending sequence goes on.
    long inPos = 5, outPos = 0;
    EXPECT_EQ(decoder.convert(raw(surrogate), &inPos, 6, &out[0], &outPos, 8), 1);

    decoder.setSubstitutionMode(false);
    const Bytes beyond = {0x61, 0xF4, 0x90, 0x80, 0x80};
    long in = 0, at = 0;
    try {
        decoder.convert(raw(beyond), &in, 5, &out[0], &at, 8);
        ADD_FAILURE() << "no exception";
    } catch (const UnmappableCharacterException& e) {
        EXPECT_EQ(e.getDescription().getLength(), 0);
        EXPECT_EQ(e.getResult(), static_cast<QNRESULT>(0x8BB34102));
    }
    EXPECT_EQ(in, 1);
    EXPECT_EQ(at, 1);
    // Invalid bytes never consult the substitution mode.
    EXPECT_EQ(decodeAll(decoder, {0xFF}), Units(1, FFFD));
}

TEST(CTBUTF8, EncodesPairsAndLoneLowSurrogates) {
    const struct {
        Units in;
        Bytes out;
    } cases[] = {
        {u"A\u00E9\u20AC", {0x41, 0xC3, 0xA9, 0xE2, 0x82, 0xAC}},
        {u"\U0001F600", {0xF0, 0x9F, 0x98, 0x80}},
        {Units(1, char16_t(0xDE00)), {0xED, 0xB8, 0x80}},
        {Units(1, u'\0'), {0x00}},
        {u"\u07FF\u0800\uFFFF", {0xDF, 0xBF, 0xE0, 0xA0, 0x80, 0xEF, 0xBF, 0xBF}},
    };
    for (const auto& c : cases) {
        CTBUTF8 encoder;
        EXPECT_EQ(encodeAll(encoder, c.in), c.out);
    }
}

TEST(CTBUTF8, PendingHighSurrogateAcrossCallsAndFlush) {
    CTBUTF8 encoder;
    const Units high(1, char16_t(0xD83D)), low(1, char16_t(0xDE00));
    EXPECT_EQ(encodeAll(encoder, high), Bytes{});
    EXPECT_EQ(encodeAll(encoder, low), (Bytes{0xF0, 0x9F, 0x98, 0x80}));
    EXPECT_EQ(encodeAll(encoder, high), Bytes{});
    signed char out[8];
    long outPos = 0;
    try {
        encoder.flush(out, &outPos, 8);
        ADD_FAILURE() << "no exception";
    } catch (const InvalidCharacterException& e) {
        EXPECT_EQ(textOf(e.getDescription()), u"leading surrogate without trailing");
    }
    EXPECT_EQ(encoder.flush(out, &outPos, 8), 0); // the failure dropped it
    EXPECT_EQ(encodeAll(encoder, high), Bytes{});
    encoder.reset();
    EXPECT_EQ(encoder.flush(out, &outPos, 8), 0);
}

TEST(CTBUTF8, HighSurrogateFollowedByAnythingElse) {
    CTBUTF8 encoder;
    const Units in = u"x\xD83Dy";
    Bytes out(8);
    expectThrowAt<InvalidCharacterException>(encoder, in, 0, out, 2, 2, 3,
                                             u"leading surrogate without trailing");
    EXPECT_EQ(out[2], 'x');
    long inPos = 2, outPos = 0;
    EXPECT_EQ(encoder.convert(raw(in), &inPos, 3, raw(out), &outPos, 8), 1);
    EXPECT_EQ(out[0], 'y');
}

TEST(CTBUTF8, StopsBeforeWhatDoesNotFit) {
    CTBUTF8 encoder;
    const Units e = u"\u00E9";
    signed char out[4];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(encoder.convert(raw(e), &inPos, 1, out, &outPos, 1), 0);
    EXPECT_EQ(inPos, 0);
    // A completed pair that does not fit forgets its high surrogate: resumed, the low one is
    // encoded alone.
    const Units pair = u"\U0001F600";
    inPos = outPos = 0;
    EXPECT_EQ(encoder.convert(raw(pair), &inPos, 2, out, &outPos, 3), 0);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(encoder.convert(raw(pair), &inPos, 2, out, &outPos, 4), 3);
    EXPECT_EQ(Bytes(out, out + 3), (Bytes{0xED, 0xB8, 0x80}));
}

TEST(UTF16, CopiesUnitsInTheNamedOrder) {
    CTBUTF16BE be;
    CTBUTF16LE le;
    const Units text = u"A\xD800\uFEFF";
    EXPECT_EQ(encodeAll(be, text), (Bytes{0x00, 0x41, 0xD8, 0x00, 0xFE, 0xFF}));
    EXPECT_EQ(encodeAll(le, text), (Bytes{0x41, 0x00, 0x00, 0xD8, 0xFF, 0xFE}));
    BTCUTF16BE fromBe;
    BTCUTF16LE fromLe;
    EXPECT_EQ(decodeAll(fromBe, {0x00, 0x41, 0xDC, 0x00}), u"A\xDC00");
    EXPECT_EQ(decodeAll(fromLe, {0x41, 0x00, 0x00, 0xDC}), u"A\xDC00");
    // An odd trailing byte stays; an odd free output byte stays unused.
    const Bytes three = {0x41, 0x00, 0x42};
    char16_t units[4];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(fromLe.convert(raw(three), &inPos, 3, units, &outPos, 4), 1);
    EXPECT_EQ(inPos, 2);
    signed char bytes[3];
    inPos = outPos = 0;
    EXPECT_EQ(le.convert(text.data(), &inPos, 3, bytes, &outPos, 3), 2);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(outPos, 2);
}

namespace {

// A UTF-16 decoder of its own byte order (swapped), so that the base class's
// sameEncodingConvert runs through the virtual hook.
class SwappingUTF16 : public BTCUTF16 {
public:
    const char16_t* getEncodingName() const override { return u"TEST"; }
    char16_t convertChar(char16_t unit) const override {
        return static_cast<char16_t>((unit >> 8) | (unit << 8));
    }
    uint32_t convertUTF32(uint32_t unit) const override { return unit; }
};

} // namespace

TEST(UTF16, BasePathAgreesWithTheByteOrderClasses) {
    Bytes text;
    for (int i = 0; i < 77; ++i)
        text.push_back(static_cast<unsigned char>(i * 37));
    SwappingUTF16 viaHook;
    BTCUTF16BE be;
    const std::vector<long> splits = {5, 10, 15, 20, 25, 30, 35, 40, 45, 50, 55, 60, 65, 70, 75};
    for (long room = 1; room <= 9; ++room)
        EXPECT_EQ(charset_test::decodeAll(viaHook, text, splits, room),
                  charset_test::decodeAll(be, text, splits, room));
}

TEST(UTF32, DecodesValuesPairsAndSubstitutions) {
    BTCUTF32BE be;
    EXPECT_EQ(decodeAll(be, {0x00, 0x00, 0x00, 0x41, 0x00, 0x01, 0xF6, 0x00}), u"A\U0001F600");
    EXPECT_EQ(decodeAll(be, {0x00, 0x11, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}), (Units{FFFD, FFFD}));
    BTCUTF32LE le;
    EXPECT_EQ(decodeAll(le, {0xFF, 0xFE, 0x00, 0x00, 0x41, 0x00, 0x00}), u"\uFEFF");
    // The partial unit stays; a pair needs two free units.
    const Bytes pair = {0x00, 0xF6, 0x01, 0x00, 0x42};
    char16_t out[2];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(le.convert(raw(pair), &inPos, 5, out, &outPos, 1), 0);
    EXPECT_EQ(inPos, 0);
    EXPECT_EQ(le.convert(raw(pair), &inPos, 5, out, &outPos, 2), 2);
    EXPECT_EQ(inPos, 4);

    be.setSubstitutionMode(false);
    const Bytes beyond = {0x00, 0x00, 0x00, 0x41, 0x00, 0x11, 0x00, 0x00};
    Units units(4, u'\0');
    expectThrowAt<UnmappableCharacterException>(be, beyond, 0, units, 0, 4, 1, u"");
    const Bytes surrogate = {0x00, 0x00, 0x00, 0x41, 0x00, 0x00, 0xD8, 0x00};
    expectThrowAt<InvalidCharacterException>(be, surrogate, 0, units, 1, 4, 2,
                                             u"Illegal UTF-32 char in surrogate range");
}

TEST(UTF32, EncodesWholeUnitsOnly) {
    CTBUTF32BE be;
    EXPECT_EQ(encodeAll(be, u"A\U0001F600\xDC00"),
              (Bytes{0, 0, 0, 0x41, 0, 0x01, 0xF6, 0, 0, 0, 0xDC, 0}));
    CTBUTF32LE le;
    EXPECT_EQ(encodeAll(le, u"\u20AC"), (Bytes{0xAC, 0x20, 0, 0}));
    // Fewer than four free bytes stop the call, even before a high surrogate.
    const Units high = u"\xD83D\xDE00";
    signed char out[7];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(le.convert(raw(high), &inPos, 2, out, &outPos, 3), 0);
    EXPECT_EQ(inPos, 0);
    EXPECT_EQ(le.convert(raw(high), &inPos, 1, out, &outPos, 7), 0);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(le.convert(raw(high), &inPos, 2, out, &outPos, 7), 4);
    EXPECT_EQ(Bytes(out, out + 4), (Bytes{0x00, 0xF6, 0x01, 0x00}));

    const Units broken = u"\xD83Dz";
    Bytes bytes(8);
    expectThrowAt<InvalidCharacterException>(le, broken, 0, bytes, 0, 1, 0,
                                             u"leading surrogate without trailing");
    EXPECT_EQ(encodeAll(le, u"z"), (Bytes{0x7A, 0, 0, 0}));
}

TEST(Converters, SubstitutionSettings) {
    BTCUTF8 decoder;
    EXPECT_TRUE(decoder.getSubstitutionMode());
    EXPECT_EQ(decoder.getSubstitutionChars(nullptr, 0), 1);
    char16_t chars[4] = {};
    EXPECT_EQ(decoder.getSubstitutionChars(chars, 4), 1);
    EXPECT_EQ(chars[0], FFFD);
    EXPECT_THROW(decoder.setSubstitutionChars(u"abcd", 4), RangeErrorException);
    EXPECT_THROW(decoder.setSubstitutionChars(nullptr, 1), RangeErrorException);
    EXPECT_EQ(decoder.getSubstitutionChars(nullptr, 0), 1); // unchanged
    decoder.setSubstitutionChars(u"abc", 3);
    EXPECT_EQ(decoder.getSubstitutionChars(chars, 2), 2);
    EXPECT_EQ(decoder.getSubstitutionChars(chars, -1), 0);

    CTBUTF8 encoder;
    signed char bytes[8] = {};
    EXPECT_EQ(encoder.getSubstitutionBytes(bytes, 1), 1);
    EXPECT_EQ(bytes[0], 0x3F);
    EXPECT_THROW(encoder.setSubstitutionBytes(reinterpret_cast<const signed char*>("12345678"), 8),
                 RangeErrorException);
    encoder.setSubstitutionBytes(reinterpret_cast<const signed char*>("1234567"), 7);
    EXPECT_EQ(encoder.getSubstitutionBytes(nullptr, 0), 7);
    encoder.setSubstitutionMode(false);
    EXPECT_FALSE(encoder.getSubstitutionMode());
}
