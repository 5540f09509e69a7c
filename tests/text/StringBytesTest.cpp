#include "qn/core/String.h"
#include "qn/util/RWByteBuffer.h"

#include "text/charset/ConverterHarness.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace qn;
using namespace qn::text::charset;
using charset_test::textOf;

TEST(StringBytes, DecodesEightBitTextInTheNamedEncoding) {
    EXPECT_EQ(textOf(String("h\xC3\xA9llo", -1, u"UTF-8")), u"h\u00E9llo");
    EXPECT_EQ(textOf(String("h\xC3\xA9llo", 2, u"utf8")), u"h\uFFFD"); // cut inside é
    EXPECT_EQ(textOf(String("A\0B\0", 4, u"UTF-16LE")), u"AB");
    EXPECT_EQ(textOf(String("A\0B", 3, u"UTF-16LE")), u"A\uFFFD");
    EXPECT_EQ(textOf(String(nullptr, 5, u"UTF-8")), u"");
    EXPECT_EQ(textOf(String("plain", -1, nullptr)), u"plain"); // any default keeps ASCII
    EXPECT_THROW(String("x", 1, u"no-such"), UnknownEncodingException);
    EXPECT_THROW(String("\xED\xA0\x80", -1, u"UTF-8"), InvalidCharacterException);
    String s(u"old");
    s.setTo("\xF0\x9F\x98\x80!", -1, u"65001");
    EXPECT_EQ(textOf(s), u"\U0001F600!");
    EXPECT_EQ(textOf(*String::CQNString("abc", 2, u"UTF-8")), u"ab");
}

TEST(StringBytes, IntoACallerArrayWholeCharactersOnly) {
    const String s(u"h\u20ACllo");
    char buffer[16];
    EXPECT_EQ(s.getBytes(static_cast<char*>(nullptr), 0, u"UTF-8"), 7);
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(s.getBytes(buffer, 4, u"UTF-8"), 1); // the euro sign needs three more
    EXPECT_STREQ(buffer, "h");
    EXPECT_EQ(s.getBytes(buffer, 5, u"UTF-8"), 4);
    EXPECT_STREQ(buffer, "h\xE2\x82\xAC");
    EXPECT_EQ(s.getBytes(buffer, 8, u"UTF-8"), 7);
    EXPECT_STREQ(buffer, "h\xE2\x82\xAC"
                         "llo");
    buffer[0] = 'x';
    EXPECT_EQ(s.getBytes(buffer, 0, u"UTF-8"), 0);
    EXPECT_EQ(buffer[0], 'x');
    // A high surrogate at the very end has no partner.
    EXPECT_THROW(String(u"a\xD83D").getBytes(buffer, 16, u"UTF-8"), InvalidCharacterException);
}

TEST(StringBytes, AnsiBytesAndTheReadLock) {
    const String s(u"\u00E9t\u00E9");
    Reference<String::AnsiBytes> bytes = s.getBytes(u"utf8");
    EXPECT_EQ(bytes->getLength(), 5);
    EXPECT_STREQ(bytes->getData(), "\xC3\xA9t\xC3\xA9");
    EXPECT_TRUE(bytes->encodingEquals(u"UTF8"));
    EXPECT_TRUE(bytes->encodingEquals(u"utf-8"));
    EXPECT_FALSE(bytes->encodingEquals(u"UTF-16LE"));
    EXPECT_FALSE(bytes->encodingEquals(nullptr));
    EXPECT_TRUE(String::AnsiBytes(u"x", nullptr).encodingEquals(nullptr));

    int32_t length = 0;
    const char* locked = s.getBytesReadLock(u"UTF-16BE", &length);
    EXPECT_EQ(length, 6);
    EXPECT_EQ(std::memcmp(locked, "\0\xE9\0t\0\xE9", 6), 0);
    EXPECT_EQ(locked[6], 0);
    locked = s.getBytesReadLock(u"UTF-8");
    EXPECT_STREQ(locked, "\xC3\xA9t\xC3\xA9");
    s.releaseBytesReadLock();
}

TEST(StringBytes, IntoAByteBuffer) {
    util::RWByteBuffer* buffer = new util::RWByteBuffer("previous content", 16);
    Reference<util::RWByteBuffer> hold(buffer);
    EXPECT_EQ(String(u"\U0001F600").getBytes(buffer, u"UTF-32LE"), 4);
    EXPECT_EQ(buffer->getLength(), 4);
    EXPECT_EQ(std::memcmp(buffer->getData(), "\x00\xF6\x01\x00", 4), 0);
}
