#include "qn/text/charset/CodecManager.h"
#include "qn/core/Library.h"
#include "qn/text/charset/BTCUTF8.h"
#include "qn/text/charset/CTBUTF8.h"
#include "qn/text/charset/QnEncInfo.h"

#include "text/charset/ConverterHarness.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace qn;
using namespace qn::text::charset;
using charset_test::textOf;

namespace {

std::u16string nameOf(const QnEncInfo& info) {
    return reinterpret_cast<const char16_t*>(info.name);
}

const QNWCHAR* w(const char16_t* text) {
    return reinterpret_cast<const QNWCHAR*>(text);
}

} // namespace

TEST(CodecManager, FindsConvertersByNameAliasAndCodePage) {
    const struct {
        const char16_t* asked;
        const char16_t* found;
    } cases[] = {
        {u"utf-8", u"UTF-8"},       {u"UTF8", u"UTF-8"},        {u"utf_8", u"UTF-8"},
        {u"65001", u"UTF-8"},       {u"utf-16le", u"UTF-16LE"}, {u"UTF-16BE", u"UTF-16BE"},
        {u"Utf-32Le", u"UTF-32LE"}, {u"utf-32be", u"UTF-32BE"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(std::u16string(ByteToCharConverter::getConverter(c.asked)->getEncodingName()),
                  c.found);
        EXPECT_EQ(std::u16string(CharToByteConverter::getConverter(c.asked)->getEncodingName()),
                  c.found);
    }
    // Each call makes a new converter.
    EXPECT_NE(ByteToCharConverter::getConverter(u"UTF-8"),
              ByteToCharConverter::getConverter(u"UTF-8"));
    EXPECT_TRUE(dynamic_cast<BTCUTF8*>(ByteToCharConverter::getConverter(u"utf8").get()));
    EXPECT_TRUE(dynamic_cast<CTBUTF8*>(CharToByteConverter::getConverter(u"65001").get()));
}

TEST(CodecManager, UnknownNamesCarryTheNameAsked) {
    // No byte-order-less UTF-16, and a code page that has only an information record.
    for (const char16_t* name : {u"UTF-16", u"cp1250", u"", u"no such codec"}) {
        try {
            ByteToCharConverter::getConverter(name);
            ADD_FAILURE() << "no exception";
        } catch (const UnknownEncodingException& e) {
            EXPECT_EQ(textOf(e.getDescription()), name);
            EXPECT_EQ(e.getResult(), static_cast<QNRESULT>(0x8BB34103));
        }
        EXPECT_THROW(CharToByteConverter::getConverter(name), UnknownEncodingException);
        EXPECT_EQ(CodecManager::getInstance()->getDecoder(name), nullptr);
    }
    QnEncInfo info{};
    EXPECT_EQ(QNGetEncInfoByName(w(u"cp1250"), &info), QN_S_OK);
    EXPECT_EQ(info.codePage, 1250);
}

TEST(CodecManager, FirstRegistrationWinsAndMissingClassesGiveNothing) {
    CodecManager* manager = CodecManager::getInstance();
    manager->registerCodec(u"utf-8", u"qn::text::charset::CTBUTF16LE",
                           u"qn::text::charset::BTCUTF16LE");
    EXPECT_TRUE(dynamic_cast<BTCUTF8*>(manager->getDecoder(u"UTF-8").get()));
    manager->registerCodec(u"x-half", u"no::such::Class", u"qn::text::charset::BTCUTF8");
    EXPECT_TRUE(dynamic_cast<BTCUTF8*>(manager->getDecoder(u"X-Half").get()));
    EXPECT_EQ(manager->getEncoder(u"x-half"), nullptr);
    EXPECT_THROW(CharToByteConverter::getConverter(u"x-half"), UnknownEncodingException);
    manager->registerCodec(u"x-none", nullptr, nullptr);
    EXPECT_EQ(manager->getDecoder(u"x-none"), nullptr);
    EXPECT_THROW(manager->registerCodec(nullptr, nullptr, nullptr), RangeErrorException);

    // forEach: each name once, upper case, in the order registered; false stops it.
    std::vector<std::u16string> names;
    manager->forEach([&names](const char16_t* name, const CodecClasses&) {
        names.emplace_back(name);
        return true;
    });
    ASSERT_EQ(names.size(), 46u);
    EXPECT_EQ(names[0], u"ASCII");
    EXPECT_EQ(names[1], u"ANSI_X3.4-1968");
    EXPECT_EQ(names[43], u"A7");
    EXPECT_EQ(names[44], u"X-HALF");
    EXPECT_EQ(names[45], u"X-NONE");
    int visited = 0;
    manager->forEach([&visited](const char16_t*, const CodecClasses& classes) {
        EXPECT_NE(classes.getDecoderClass(), nullptr);
        return ++visited < 3;
    });
    EXPECT_EQ(visited, 3);

    // Unloading frees the manager and the information table; loading builds both again from
    // the tables alone.
    EXPECT_EQ(QNCLLibUninit(), QN_S_OK);
    uint32_t count = 5;
    QnEncInfo none[5];
    EXPECT_EQ(QNEnumerateEncInfo(&count, none), QN_S_OK);
    EXPECT_EQ(count, 0u);
    ASSERT_EQ(QNCLLibInit(), QN_S_OK);
    EXPECT_EQ(CodecManager::getInstance()->getDecoder(u"x-half"), nullptr);
    EXPECT_TRUE(dynamic_cast<BTCUTF8*>(CodecManager::getInstance()->getDecoder(u"utf8").get()));
    EXPECT_EQ(QNEnumerateEncInfo(&count, nullptr), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(count, 28u);
}

TEST(EncInfo, EnumerationAndItsSizeQuery) {
    uint32_t count = 0;
    EXPECT_EQ(QNEnumerateEncInfo(&count, nullptr), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(count, 28u);
    EXPECT_EQ(QNEnumerateEncInfo(nullptr, nullptr), QN_E_INVALIDARG);
    count = 3;
    EXPECT_EQ(QNEnumerateEncInfo(&count, nullptr), QN_E_INVALIDARG);
    QnEncInfo records[30] = {};
    count = 27;
    EXPECT_EQ(QNEnumerateEncInfo(&count, records), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(count, 28u);
    EXPECT_EQ(records[0].name, nullptr); // nothing copied
    count = 30;
    EXPECT_EQ(QNEnumerateEncInfo(&count, records), QN_S_OK);
    EXPECT_EQ(count, 28u);
    const std::pair<const char16_t*, int32_t> expected[] = {
        {u"ASCII", 20127}, {u"ISO8859_1", 28591}, {u"CP437", 437}, {u"CP1252", 1252},
        {u"UTF-8", 65001}, {u"CP1250", 1250},     {u"CP720", 720}, {u"EUCJP", 20932}};
    const int at[] = {0, 1, 2, 3, 4, 5, 13, 27};
    for (int k = 0; k < 8; ++k) {
        EXPECT_EQ(nameOf(records[at[k]]), expected[k].first);
        EXPECT_EQ(records[at[k]].codePage, expected[k].second);
    }
    for (uint32_t k = 0; k < count; ++k)
        EXPECT_EQ(records[k].reserved, 0);
}

TEST(EncInfo, LookupsByNameAliasAndCodePage) {
    const struct {
        const char16_t* name;
        const char16_t* record;
    } found[] = {
        {u"euc-jp", u"EUCJP"},        {u"EUC_JP", u"EUCJP"},  {u"20932", u"EUCJP"},
        {u"windows-1252", u"CP1252"}, {u"819", u"ISO8859_1"}, {u"latin1", u"ISO8859_1"},
        {u"us-ascii", u"ASCII"},      {u"utf_8", u"UTF-8"},   {u"ks_c_5601-1987", u"CP949"},
        {u"Big5", u"CP950"},          {u"ibm-437", u"CP437"},
    };
    for (const auto& f : found) {
        QnEncInfo info{};
        EXPECT_EQ(QNGetEncInfoByName(w(f.name), &info), QN_S_OK) << textOf(String(f.name)).size();
        EXPECT_EQ(nameOf(info), f.record);
    }
    QnEncInfo info{};
    // AMP-7 has no code page, so neither it nor its alias has a record.
    for (const char16_t* missing : {u"A7", u"AMP-7", u"UTF-16LE", u"", u"0"})
        EXPECT_EQ(QNGetEncInfoByName(w(missing), &info), QN_E_FAIL);
    EXPECT_EQ(QNGetEncInfoByName(nullptr, &info), QN_E_INVALIDARG);
    EXPECT_EQ(QNGetEncInfoByName(w(u"UTF-8"), nullptr), QN_E_INVALIDARG);

    EXPECT_EQ(QNGetEncInfoByCodePage(20932, &info), QN_S_OK);
    EXPECT_EQ(nameOf(info), u"EUCJP");
    EXPECT_EQ(QNGetEncInfoByCodePage(65001, &info), QN_S_OK);
    EXPECT_EQ(nameOf(info), u"UTF-8");
    for (int32_t missing : {0, -1, 1200, 65000})
        EXPECT_EQ(QNGetEncInfoByCodePage(missing, &info), QN_E_FAIL);
    EXPECT_EQ(QNGetEncInfoByCodePage(1252, nullptr), QN_E_INVALIDARG);
}
