// The CP437 and CP1252 tables, all 256 bytes and all 65,536 units of each direction, against
// ICU's converters where ICU is there. ICU differs from the published tables in a few known
// places, listed here; everything else must agree exactly. Without ICU the two directions are
// still checked against each other.
#include "qn/text/charset/BTCCP1252.h"
#include "qn/text/charset/BTCCP437.h"
#include "qn/text/charset/CTBCP1252.h"
#include "qn/text/charset/CTBCP437.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>

#ifdef QNCL_TEST_HAVE_ICU
#include <unicode/ucnv.h>
#endif

using namespace qn;
using namespace qn::text::charset;

namespace {

constexpr int NONE = -1;

struct CodePage {
    const char* icuName;
    std::unique_ptr<BTCSingleByte> decoder;
    std::unique_ptr<CTBSingleByte> encoder;
    // Bytes where ICU's table is not the published one: byte -> ICU's character.
    std::map<int, int> icuDiffers;
};

std::vector<CodePage> codePages() {
    std::vector<CodePage> pages;
    // ICU's ibm-437 keeps IBM's control rotation (0x1A, 0x1C, 0x7F) and reads 0xE6 as the Greek
    // mu rather than the micro sign.
    pages.push_back({"ibm-437_P100-1995",
                     std::make_unique<BTCCP437>(),
                     std::make_unique<CTBCP437>(),
                     {{0x1A, 0x001C}, {0x1C, 0x007F}, {0x7F, 0x001A}, {0xE6, 0x03BC}}});
    // ICU's windows-1252 gives the five undefined bytes the C1 controls of the same value.
    pages.push_back({"ibm-5348_P100-1997",
                     std::make_unique<BTCCP1252>(),
                     std::make_unique<CTBCP1252>(),
                     {{0x81, 0x81}, {0x8D, 0x8D}, {0x8F, 0x8F}, {0x90, 0x90}, {0x9D, 0x9D}}});
    return pages;
}

// A two-unit substitution makes the single-byte converters drop what they cannot map, so an
// empty output means "unmapped".
int ourDecode(BTCSingleByte& decoder, int byte) {
    const char16_t drop[] = {u'<', u'>'};
    decoder.setSubstitutionChars(drop, 2);
    const signed char in = static_cast<signed char>(byte);
    char16_t out = 0;
    long inPos = 0, outPos = 0;
    return decoder.convert(&in, &inPos, 1, &out, &outPos, 1) == 1 ? out : NONE;
}

int ourEncode(CTBSingleByte& encoder, char16_t c) {
    const signed char drop[] = {'<', '>'};
    encoder.setSubstitutionBytes(drop, 2);
    signed char out = 0;
    long inPos = 0, outPos = 0;
    return encoder.convert(&c, &inPos, 1, &out, &outPos, 1) == 1 ? static_cast<unsigned char>(out)
                                                                 : NONE;
}

bool isSurrogate(int c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

} // namespace

TEST(CodePageTableTest, DirectionsAreExactInverses) {
    for (CodePage& page : codePages()) {
        std::map<int, int> byteOf;
        for (int b = 0; b < 256; ++b) {
            const int c = ourDecode(*page.decoder, b);
            if (c != NONE)
                byteOf[c] = b;
        }
        for (int c = 0; c < 0x10000; ++c) {
            if (isSurrogate(c))
                continue;
            const auto found = byteOf.find(c);
            EXPECT_EQ(ourEncode(*page.encoder, static_cast<char16_t>(c)),
                      found == byteOf.end() ? NONE : found->second)
                << page.icuName << " U+" << std::hex << c;
        }
    }
}

#ifdef QNCL_TEST_HAVE_ICU
TEST(CodePageTableTest, AgreesWithIcu) {
    for (CodePage& page : codePages()) {
        UErrorCode status = U_ZERO_ERROR;
        UConverter* icu = ucnv_open(page.icuName, &status);
        ASSERT_TRUE(U_SUCCESS(status)) << page.icuName;
        ucnv_setToUCallBack(icu, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setFromUCallBack(icu, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        ucnv_setFallback(icu, false);

        // Characters whose encoding ICU sees differently because of the bytes above.
        std::map<int, bool> skipped;
        for (const auto& [byte, icuChar] : page.icuDiffers) {
            skipped[icuChar] = true;
            skipped[ourDecode(*page.decoder, byte)] = true;
        }
        for (int b = 0; b < 256; ++b) {
            const char in = static_cast<char>(b);
            UChar out[4];
            status = U_ZERO_ERROR;
            const int32_t n = ucnv_toUChars(icu, out, 4, &in, 1, &status);
            const int icuChar = U_SUCCESS(status) && n == 1 ? out[0] : NONE;
            const auto differs = page.icuDiffers.find(b);
            EXPECT_EQ(icuChar, differs == page.icuDiffers.end() ? ourDecode(*page.decoder, b)
                                                                : differs->second)
                << page.icuName << " byte " << b;
        }
        for (int c = 0; c < 0x10000; ++c) {
            if (isSurrogate(c) || skipped.count(c))
                continue;
            const UChar in = static_cast<UChar>(c);
            char out[4];
            status = U_ZERO_ERROR;
            const int32_t n = ucnv_fromUChars(icu, out, 4, &in, 1, &status);
            const int icuByte =
                U_SUCCESS(status) && n == 1 ? static_cast<unsigned char>(out[0]) : NONE;
            EXPECT_EQ(ourEncode(*page.encoder, static_cast<char16_t>(c)), icuByte)
                << page.icuName << " U+" << std::hex << c;
        }
        ucnv_close(icu);
    }
}
#endif
