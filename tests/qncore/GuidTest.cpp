#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace qntest;

TEST(Guid, TextForms) {
    const QNGUID guid = {
        0x6B29FC40, 0xCA47, 0x1067, {0xB3, 0x1D, 0x00, 0xDD, 0x01, 0x06, 0x62, 0xDA}};
    QNWCHAR text[39];
    ASSERT_EQ(QNGuidToStringW(&guid, text, 39), QN_S_OK);
    EXPECT_EQ(WString(text), W(u"{6B29FC40-CA47-1067-B31D-00DD010662DA}"));
    EXPECT_EQ(QNGuidToStringW(&guid, text, 38), QN_E_BUFFERTOOSMALL);

    const QNGUID high = {0xFFFFFFFF, 0xFFFF, 0x8000, {0xFF, 0x80, 0x7F, 0, 1, 0xFE, 0x10, 0xA0}};
    QNGUID back{};
    ASSERT_EQ(QNGuidToStringW(&high, text, 39), QN_S_OK);
    EXPECT_EQ(QNGuidFromStringW(text, &back), QN_S_OK);
    EXPECT_TRUE(sameGuid(back, high));

    for (const char16_t* form :
         {u"6B29FC40-CA47-1067-B31D-00DD010662DA", u"{6b29fc40-ca47-1067-b31d-00dd010662da}",
          u"6b29Fc40-cA47-1067-B31d-00dD010662Da"}) {
        QNGUID parsed{};
        EXPECT_EQ(QNGuidFromStringW(W(form).c_str(), &parsed), QN_S_OK);
        EXPECT_TRUE(sameGuid(parsed, guid));
    }
    for (const char16_t* form :
         {u"", u"{}", u"{6B29FC40-CA47-1067-B31D-00DD010662DA",
          u"6B29FC40-CA47-1067-B31D-00DD010662DA}", u"{6B29FC40-CA47-1067-B31D-00DD010662D}",
          u"{6B29FC40-CA47-1067-B31D-00DD010662DA0}", u"{6B29FC40-CA47-1067-B31D-00DD010662DA}x",
          u"{6B29FC40CA47-1067-B31D-00DD010662DA}", u"{6B29FC40-CA47-1067-B31D00-DD010662DA}",
          u"{6B29FC4G-CA47-1067-B31D-00DD010662DA}", u"{6B29FC40-CA47-1067-B31D-00DD010662D }",
          u" {6B29FC40-CA47-1067-B31D-00DD010662DA}", u"(6B29FC40-CA47-1067-B31D-00DD010662DA)",
          u"{+B29FC40-CA47-1067-B31D-00DD010662DA}"}) {
        QNGUID parsed{};
        EXPECT_EQ(QNGuidFromStringW(W(form).c_str(), &parsed), QN_E_INVALIDCLASSSTRING)
            << ::testing::PrintToString(std::u16string(form));
    }
}
