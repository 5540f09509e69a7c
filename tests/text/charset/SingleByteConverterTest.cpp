// The single-byte converters: substitution settings (including the deliberate dropping when
// the substitution is not one unit long), surrogate pairing and its positions after exceptions,
// the block path against the per-byte hook, and
// creation by name and through the class registry.
#include "ConverterHarness.h"

#include "qn/core/Class.h"
#include "qn/text/charset/BTCASCII.h"
#include "qn/text/charset/BTCCP1252.h"
#include "qn/text/charset/BTCCP437.h"
#include "qn/text/charset/BTCISO8859_1.h"
#include "qn/text/charset/BTCSingleByteTable.h"
#include "qn/text/charset/CTBASCII.h"
#include "qn/text/charset/CTBCP1252.h"
#include "qn/text/charset/CTBCP437.h"
#include "qn/text/charset/CTBISO8859_1.h"

#include <gtest/gtest.h>

using namespace charset_test;

namespace {

// The per-byte hook of the base class, for comparison with the block path.
class HookDecoder : public BTCSingleByte {
public:
    explicit HookDecoder(BTCSingleByte& real) : m_real(real) {
        char16_t sub[3];
        const long n = real.getSubstitutionChars(sub, 3);
        setSubstitutionChars(sub, n);
        setSubstitutionMode(real.getSubstitutionMode());
    }
    const char16_t* getEncodingName() const override { return m_real.getEncodingName(); }
    char16_t convertByte(signed char b) const override { return m_real.convertByte(b); }

private:
    BTCSingleByte& m_real;
};

} // namespace

TEST(SingleByteConverterTest, UnmappedBytesFollowTheSubstitutionSettings) {
    BTCASCII ascii;
    const Bytes in = bytes({'a', 0xC3, 'b'});
    EXPECT_EQ(decodeAll(ascii, in).out, u"a\uFFFDb");

    const char16_t star = u'*';
    ascii.setSubstitutionChars(&star, 1);
    EXPECT_EQ(decodeAll(ascii, in).out, u"a*b");

    // Any other length drops the byte: these decoders only substitute one unit.
    const char16_t two[] = {u'<', u'>'};
    ascii.setSubstitutionChars(two, 2);
    EXPECT_EQ(decodeAll(ascii, in).out, u"ab");
    ascii.setSubstitutionChars(nullptr, 0);
    EXPECT_EQ(decodeAll(ascii, in).out, u"ab");

    ascii.setSubstitutionMode(false);
    const Outcome<Units> refused = decodeAll(ascii, in);
    EXPECT_EQ(refused.out, u"a");
    EXPECT_EQ(refused.failure, "unmappable");
    EXPECT_EQ(refused.failedAt, 1);

    BTCCP1252 cp1252;
    EXPECT_EQ(decodeAll(cp1252, bytes({0x80, 0x81, 0x9F})).out, u"\u20AC\uFFFD\u0178");
    BTCISO8859_1 latin1;
    latin1.setSubstitutionMode(false);
    EXPECT_EQ(decodeAll(latin1, bytes({0x00, 0x80, 0xFF})).out, Units(u"\0\u0080\u00FF", 3));
}

TEST(SingleByteConverterTest, UnmappableCharactersFollowTheSubstitutionSettings) {
    CTBISO8859_1 latin1;
    const Units in = u"a\u0100b\u00FF";
    EXPECT_EQ(encodeAll(latin1, in).out, bytes({'a', '?', 'b', 0xFF}));

    const signed char two[] = {'<', '>'};
    latin1.setSubstitutionBytes(two, 2);
    EXPECT_EQ(encodeAll(latin1, in).out, bytes({'a', 'b', 0xFF}));

    latin1.setSubstitutionMode(false);
    const Outcome<Bytes> refused = encodeAll(latin1, in);
    EXPECT_EQ(refused.out, bytes({'a'}));
    EXPECT_EQ(refused.failure, "unmappable");
    EXPECT_EQ(refused.failedAt, 1);

    // U+0000 is a character of its own, not the "unmapped" answer of the hook.
    CTBCP1252 cp1252;
    EXPECT_EQ(encodeAll(cp1252, Units(u"\u20AC\0\u0178", 3)).out, bytes({0x80, 0x00, 0x9F}));
    // Undefined bytes decode to U+FFFD, which no byte encodes to.
    EXPECT_EQ(encodeAll(cp1252, u"\uFFFD\u0081").out, bytes({'?', '?'}));
}

TEST(SingleByteConverterTest, SurrogatesArePairedAcrossCalls) {
    CTBASCII ascii;
    // A pair is one character, never representable: one substitution byte, in one call or two.
    EXPECT_EQ(encodeAll(ascii, u"a\U0001F600b").out, bytes({'a', '?', 'b'}));
    EXPECT_EQ(encodeAll(ascii, u"a\U0001F600b", {2}).out, bytes({'a', '?', 'b'}));

    // Output full at the pair: the low surrogate waits with the high one pending.
    const Units pair = u"\U0001F600";
    signed char out[4] = {};
    long inPos = 0, outPos = 0;
    EXPECT_EQ(ascii.convert(pair.data(), &inPos, 2, out, &outPos, 0), 0);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(ascii.convert(pair.data(), &inPos, 2, out, &outPos, 1), 1);
    EXPECT_EQ(inPos, 2);
    EXPECT_EQ(out[0], '?');

    // A pending surrogate left at the end is reported by flush, and reset drops it.
    inPos = 0;
    outPos = 0;
    ascii.convert(pair.data(), &inPos, 1, out, &outPos, 4);
    EXPECT_THROW(ascii.flush(out, &outPos, 4), InvalidCharacterException);
    ascii.reset();
    EXPECT_EQ(ascii.flush(out, &outPos, 4), 0);
}

TEST(SingleByteConverterTest, UnpairedSurrogatesLeaveTheirPositions) {
    const Units input = u"ab\xD83D"
                        u"c";
    CTBCP437 cp437;
    Outcome<Bytes> result = encodeAll(cp437, input);
    EXPECT_EQ(result.out, bytes({'a', 'b'}));
    EXPECT_EQ(result.failure, "invalid: leading surrogate without trailing");
    // The high surrogate came in the same call: the position is back at it, nothing pending.
    EXPECT_EQ(result.failedAt, 2);
    signed char out[4];
    long outPos = 0;
    EXPECT_EQ(cp437.flush(out, &outPos, 4), 0);

    // It came in an earlier call: the position stays at this call's start, still pending.
    result = encodeAll(cp437, input, {3});
    EXPECT_EQ(result.failedAt, 3);
    EXPECT_THROW(cp437.flush(out, &outPos, 4), InvalidCharacterException);
    cp437.reset();

    result = encodeAll(cp437, u"ab\xDE00");
    EXPECT_EQ(result.failure, "invalid: trailing surrogate without leading");
    EXPECT_EQ(result.failedAt, 2);

    // Substitution off: a pair is refused at its high surrogate.
    cp437.setSubstitutionMode(false);
    result = encodeAll(cp437, u"ab\U0001F600");
    EXPECT_EQ(result.failure, "unmappable");
    EXPECT_EQ(result.failedAt, 2);
    EXPECT_EQ(cp437.flush(out, &outPos, 4), 0);
}

// A table like code page 1252's (ASCII and 0xA0-0xFF themselves) whose bytes 0x80-0x9F take
// every kind of unit: none (U+FFFD), themselves, other units with a high byte of 0xFF, and
// letters and symbols elsewhere; the block path looks them up sixteen at a time.
TEST(SingleByteConverterTest, UpperHalfLookupsMatchTheHooks) {
    static const char16_t* const table = [] {
        static char16_t units[256];
        for (int b = 0; b < 256; ++b)
            units[b] = static_cast<char16_t>(b);
        const char16_t upper[32] = {0xFFFD, 0x0081, 0xFF01, 0x20AC, 0xFFFF, 0x0192, 0xFFFD, 0x2122,
                                    0xFF80, 0x0100, 0x008A, 0xFFFE, 0x0160, 0xFFFD, 0x017D, 0x0000,
                                    0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0xFF9F, 0x2013, 0x2014,
                                    0x02DC, 0x0099, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};
        std::copy(upper, upper + 32, units + 0x80);
        return units;
    }();
    BTCSingleByteTable decoder(u"Test", table);
    std::mt19937 random(13);
    for (int round = 0; round < 400; ++round) {
        decoder.setSubstitutionMode(round % 3 != 2);
        Bytes in(std::uniform_int_distribution<size_t>(0, 120)(random));
        for (unsigned char& b : in) {
            const unsigned kind = random() % 8;
            b = static_cast<unsigned char>(kind < 4   ? random() % 0x80
                                           : kind < 7 ? 0x80 + random() % 0x20
                                                      : random() % 0x100);
        }
        HookDecoder hook(decoder);
        const long room = std::uniform_int_distribution<long>(1, 140)(random);
        EXPECT_EQ(decodeAll(decoder, in, randomSplits(random, static_cast<long>(in.size())), room),
                  decodeAll(hook, in))
            << "round " << round;
    }
}

TEST(SingleByteConverterTest, MadeByNameAndByClass) {
    const char16_t* const names[][2] = {{u"ascii", u"ASCII"},         {u"us-ascii", u"ASCII"},
                                        {u"819", u"ISO8859_1"},       {u"latin1", u"ISO8859_1"},
                                        {u"ibm437", u"CP437"},        {u"437", u"CP437"},
                                        {u"windows-1252", u"CP1252"}, {u"1252", u"CP1252"}};
    for (const auto& n : names) {
        EXPECT_EQ(String(ByteToCharConverter::getConverter(n[0])->getEncodingName()), n[1]);
        EXPECT_EQ(String(CharToByteConverter::getConverter(n[0])->getEncodingName()), n[1]);
    }
    for (const char16_t* name :
         {u"qn::text::charset::BTCCP437", u"qn::text::charset::CTBCP1252",
          u"qn::text::charset::BTCASCII", u"qn::text::charset::CTBISO8859_1"}) {
        Reference<Object> made(Class::forName(name)->createInstance());
        EXPECT_TRUE(Class::forName(name)->isInstance(*made));
    }
    // The bases are registered but cannot be made.
    for (const char16_t* name : {u"CQNBTCSingleByte", u"CQNBTCSingleByteTable", u"CQNCTBSingleByte",
                                 u"CQNCTBSingleByteTable"})
        EXPECT_THROW(Class::forName(name)->createInstance(), IllegalAccessException);
    BTCCP437 decoder;
    EXPECT_EQ(decoder.getMaxBytesPerChar(), 1);
    EXPECT_EQ(decoder.getMaxCharsPerByte(), 1);
}
