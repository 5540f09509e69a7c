// The 8-bit strings: the hash shared with String over unsigned bytes, editing with self-aliasing
// and inline storage, case mapping through the encoding, conversion to and from String, and the
// byte-keyed hash map.
#include "qn/core/Str1.h"
#include "qn/core/Exception.h"
#include "qn/core/Str1HashMap.h"
#include "qn/core/StrBuf1.h"
#include "qn/core/StrBuf1N.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;

namespace {

std::string bytesOf(const Str1& s) {
    return std::string(s.getData(), static_cast<size_t>(s.getLength()));
}

} // namespace

TEST(Str1Test, HashesLikeString) {
    std::string longText;
    for (int i = 0; i < 300; ++i)
        longText += static_cast<char>('a' + i % 26);
    for (const std::string& s : {std::string(), std::string("a"), std::string("Hello"), longText}) {
        const String wide(std::u16string(s.begin(), s.end()).c_str());
        EXPECT_EQ(Str1(s.c_str()).hashCode(), wide.hashCode()) << s;
        EXPECT_EQ(Str1(s.c_str()).hashCode(true), wide.hashCode(true)) << s;
    }
    EXPECT_EQ(Str1("ABC").hashCode(true), Str1("abc").hashCode());
    // Bytes count unsigned.
    EXPECT_EQ(Str1("\xFF").hashCode(), 255u);
}

TEST(Str1Test, BuffersEditInPlaceAndSurviveAliasing) {
    StrBuf1 buffer("hello");
    buffer.append(Str1(" world")).insert(0, Str1(">> ")).replace(3, 5, Str1("HELLO"));
    EXPECT_EQ(bytesOf(buffer), ">> HELLO world");
    buffer.remove(0, 3).remove(5, 1);
    EXPECT_EQ(bytesOf(buffer), "HELLOworld");
    // Views of the buffer's own bytes, even when the change reallocates.
    buffer.append(buffer);
    EXPECT_EQ(bytesOf(buffer), "HELLOworldHELLOworld");
    buffer.insert(5, buffer.substring(0, 5));
    EXPECT_EQ(bytesOf(buffer), "HELLOHELLOworldHELLOworld");
    buffer.setTo(buffer.substring(10, 5));
    EXPECT_EQ(bytesOf(buffer), "world");
    buffer.resize(7, '!').append('?', 2);
    EXPECT_EQ(std::string(buffer.getData()), "world!!??"); // always zero-terminated
    EXPECT_THROW(buffer.setCharAt(9, 'x'), RangeErrorException);
    EXPECT_THROW(buffer.setLength(buffer.getCapacity() + 1), RangeErrorException);

    // Short text stays inside the object; longer text moves out, and back by assignment.
    StrBuf1N<8> small("12345678");
    const char* inside = small.getData();
    small.append('9');
    EXPECT_NE(small.getData(), inside);
    StrBuf1 moved(std::move(small));
    EXPECT_EQ(bytesOf(moved), "123456789");
    EXPECT_EQ(small.getLength(), 0);
    small.setTo("abc");
    EXPECT_EQ(small.getData(), inside);
    StrBuf1N<8> copy(small);
    EXPECT_EQ(bytesOf(copy), "abc");
    StrBuf1 fromInline(std::move(copy));
    EXPECT_EQ(bytesOf(fromInline), "abc");
    EXPECT_EQ(bytesOf(copy), "abc"); // inline bytes are copied, not taken
}

TEST(Str1Test, CaseMappingFollowsTheEncoding) {
    const struct {
        const char* encoding;
        const char* text;
        const char* upper;
        const char* lower;
    } cases[] = {
        // Latin-1: the byte is the code point; y-diaeresis and micro have no Latin-1 capital.
        {"ISO8859_1",
         "stra\xDF"
         "e \xE9t\xE9 \xFF\xB5",
         "STRA\xDF"
         "E \xC9T\xC9 \xFF\xB5",
         "stra\xDF"
         "e \xE9t\xE9 \xFF\xB5"},
        // CP1252 through its table: s-caron 9A and S-caron 8A, y-diaeresis FF and 9F.
        {"windows-1252", "\x9A\xFF\xE9x", "\x8A\x9F\xC9X", "\x9A\xFF\xE9x"},
        // UTF-8 changes bytes, not just letters.
        {"utf-8", "\xC3\xA9t\xC3\xA9", "\xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9"},
        // Undecodable bytes leave the text alone rather than be rewritten.
        {"UTF-8", "ab\xFF", "ab\xFF", "ab\xFF"},
        // AMP-7 maps characters, never the entity syntax.
        {"AMP-7", "&AMP;&_E9;x", "&AMP;&_C9;X", "&AMP;&_E9;x"},
        // Without a converter only ASCII letters map.
        {"CP1250", "abc\xE9", "ABC\xE9", "abc\xE9"},
    };
    for (const auto& c : cases) {
        const std::string name(c.encoding);
        const String encoding(std::u16string(name.begin(), name.end()).c_str());
        StrBuf1 text(c.text, -1, encoding);
        EXPECT_EQ(bytesOf(text.toUpper()), c.upper) << c.encoding;
        EXPECT_EQ(bytesOf(text.toLower()), c.lower) << c.encoding;
    }
}

TEST(Str1Test, ConvertsToAndFromString) {
    const StrBuf1 cp1252(String(u"\u20AC5 caf\u00E9 \u4E2D"), String(u"CP1252"));
    EXPECT_EQ(bytesOf(cp1252), "\x80"
                               "5 caf\xE9 ?");
    EXPECT_EQ(cp1252.toString(), u"\u20AC5 caf\u00E9 ?");
    const Str1 utf8("\xE2\x82\xAC\xF0\x9F\x98\x80\xE2\x82", -1, String(u"UTF-8"));
    // A sequence cut off at the end becomes one U+FFFD.
    EXPECT_EQ(utf8.toString(), u"\u20AC\U0001F600\uFFFD");
    StrBuf1 latin1;
    latin1.setLatin1(u"Gr\u00FC\u00DF \u0100");
    EXPECT_EQ(bytesOf(latin1), "Gr\xFC\xDF ?");
    EXPECT_EQ(latin1.getEncoding(), u"ISO8859_1");
    EXPECT_THROW(Str1("x", 1, String(u"no-such-encoding")).toString(),
                 text::charset::UnknownEncodingException);
}

TEST(Str1Test, HashMapKeysByBytes) {
    Str1HashMap<int> map(3, 0.75f);
    EXPECT_TRUE(map.put(Str1("UTF-8"), 1));
    EXPECT_FALSE(map.put(Str1("UTF-8"), 2)); // replaced
    EXPECT_FALSE(map.putIfAbsent(Str1("UTF-8"), 3));
    ASSERT_NE(map.get(Str1("UTF-8")), nullptr);
    EXPECT_EQ(*map.get(Str1("UTF-8")), 2);
    EXPECT_EQ(map.get(Str1("utf-8")), nullptr);
    // Keys are copied: the caller's bytes may change afterwards.
    char key[] = "key-0";
    for (int i = 0; i < 200; ++i) {
        key[4] = static_cast<char>('0' + i % 10);
        StrBuf1 k(key);
        k.append(static_cast<char>('A' + i / 10));
        map.put(k, i);
    }
    EXPECT_EQ(map.size(), 201);
    EXPECT_GT(map.getBucketCount(), 201);
    EXPECT_EQ(*map.get(Str1("key-7T")), 197);
    EXPECT_TRUE(map.remove(Str1("key-7T")));
    EXPECT_FALSE(map.remove(Str1("key-7T")));
    int sum = 0;
    map.forEach([&](const Str1&, int& value) { sum += value; });
    EXPECT_EQ(sum, 2 + 199 * 200 / 2 - 197);
    map.clear();
    EXPECT_TRUE(map.isEmpty());
}
