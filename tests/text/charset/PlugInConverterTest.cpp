// Converters over a codec plug-in: found by the codec manager through the registration store,
// converting through BTCCom/CTBCom under the full contract (incomplete sequences, pairs,
// substitution, the surrogate-range refusal, a failing plug-in), plus the multi-byte decoder's
// pending trailing surrogate.
#include "ConverterHarness.h"

#include "qn/text/charset/BTCCom.h"
#include "qn/text/charset/CTBCom.h"
#include "qn/text/charset/CodecManager.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

using namespace charset_test;

namespace {

// The plug-in's class, as registered by its library.
const QNGUID kCodecClsid = {
    0x5B0C2E1A, 0x7D43, 0x4F96, {0xA2, 0xB8, 0xC4, 0x1E, 0x9D, 0x07, 0xF3, 0xA5}};
const char16_t kName[] = u"QNCL-TEST-UTF8";

std::filesystem::path programDir() {
#ifdef _WIN32
    std::wstring self(32768, L'\0');
    self.resize(GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size())));
    return std::filesystem::path(self).parent_path();
#else
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
#endif
}

std::basic_string<QNWCHAR> wide(const std::u16string& text) {
    return std::basic_string<QNWCHAR>(text.begin(), text.end());
}

class PlugInConverterTest : public ::testing::Test {
protected:
    void SetUp() override {
#ifndef _WIN32
        m_store = std::filesystem::temp_directory_path() /
                  ("qncl-codec-" + std::to_string(getpid()) + ".reg");
        setenv("QNCL_COMPONENT_REGISTRY", m_store.c_str(), 1);
#endif
        QNComUnregisterClass(&kCodecClsid);
        const std::u16string library = (programDir() / QNCL_TEST_CODEC_PLUGIN).u16string();
        ASSERT_EQ(QNComRegisterClass(&kCodecClsid,
                                     wide(std::u16string(u"Solvantic.CharCodec.") + kName).c_str(),
                                     nullptr, nullptr, wide(library).c_str()),
                  QN_S_OK);
    }
    void TearDown() override {
        QNComUnregisterClass(&kCodecClsid);
#ifndef _WIN32
        unsetenv("QNCL_COMPONENT_REGISTRY");
        std::filesystem::remove(m_store);
#endif
    }

    std::filesystem::path m_store;
};

// A multi-byte decoder that decodes every byte as 'x' followed by a unit it leaves pending.
class SplittingDecoder : public BTCMultiByte {
public:
    uint32_t convertBytes(const signed char* bytes, long& length) override {
        length = 1;
        m_pendingTrailSurrogate =
            static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(*bytes));
        return u'x';
    }
};

} // namespace

TEST_F(PlugInConverterTest, FoundByNameAndConverting) {
    EXPECT_EQ(std::memcmp(&IID_IQNCharCodec, &CodecManager::PLUGIN_IID, sizeof(QNGUID)), 0);
    Reference<ByteToCharConverter> decoder = ByteToCharConverter::getConverter(kName);
    ASSERT_NE(dynamic_cast<BTCCom*>(decoder.get()), nullptr);
    EXPECT_EQ(String(decoder->getEncodingName()), kName);
    EXPECT_EQ(decoder->getMaxBytesPerChar(), 4);
    EXPECT_EQ(decoder->getMaxCharsPerByte(), 1);
    Reference<CharToByteConverter> encoder = CharToByteConverter::getConverter(kName);
    ASSERT_NE(dynamic_cast<CTBCom*>(encoder.get()), nullptr);

    const Units text = u"a\u00E9\u20AC\U0001F600z";
    const Outcome<Bytes> encoded = encodeAll(*encoder, text);
    EXPECT_EQ(encoded.out, bytes("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z"));
    EXPECT_EQ(decodeAll(*decoder, encoded.out).out, text);

    // Every split, and tight output, gives the same: sequences and pairs are never cut.
    for (long split = 0; split <= static_cast<long>(encoded.out.size()); ++split) {
        EXPECT_EQ(decodeAll(*decoder, encoded.out, {split}, 2).out, text) << split;
        EXPECT_EQ(encodeAll(*encoder, text, {std::min(split, 6L)}, 4), encoded) << split;
    }
    // An incomplete sequence at the end stays unconsumed.
    const Outcome<Units> cut = decodeAll(*decoder, bytes({'a', 0xE2, 0x82}));
    EXPECT_EQ(cut.out, u"a");
    EXPECT_EQ(cut.failure, "incomplete");
}

TEST_F(PlugInConverterTest, FailuresAndSubstitution) {
    Reference<ByteToCharConverter> decoder = ByteToCharConverter::getConverter(kName);
    // Bytes that are no character, and values beyond U+10FFFF, are substituted.
    EXPECT_EQ(decodeAll(*decoder, bytes({'a', 0x80, 0xF4, 0x90, 0x80, 0x80, 'b'})).out,
              u"a\uFFFD\uFFFDb");
    Outcome<Units> decoded = decodeAll(*decoder, bytes({'a', 0xED, 0xA0, 0x80}));
    EXPECT_EQ(decoded.failure, "invalid: Invalid byte sequence (decoded chars in surrogate range)");
    EXPECT_EQ(decoded.failedAt, 1);
    decoded = decodeAll(*decoder, bytes({'a', 'b', 0xFE}));
    EXPECT_EQ(decoded.out, u"ab");
    EXPECT_EQ(decoded.failure, "other");
    EXPECT_EQ(decoded.failedAt, 2);
    decoder->setSubstitutionMode(false);
    decoded = decodeAll(*decoder, bytes({'a', 0x80}));
    EXPECT_EQ(decoded.failure, "unmappable");
    EXPECT_EQ(decoded.failedAt, 1);

    Reference<CharToByteConverter> encoder = CharToByteConverter::getConverter(kName);
    EXPECT_EQ(encodeAll(*encoder, u"a\uFFFEb").out, bytes("a?b"));
    const signed char two[] = {'<', '>'};
    encoder->setSubstitutionBytes(two, 2);
    EXPECT_EQ(encodeAll(*encoder, u"a\uFFFEb").out, bytes("a<>b"));
    encoder->setSubstitutionMode(false);
    Outcome<Bytes> encoded = encodeAll(*encoder, u"ab\uFFFE");
    EXPECT_EQ(encoded.failure, "unmappable");
    EXPECT_EQ(encoded.failedAt, 2);
    encoded = encodeAll(*encoder, u"ab\xDC00");
    EXPECT_EQ(encoded.failure, "invalid: trailing surrogate without leading");
    encoded = encodeAll(*encoder, u"ab\xD800x");
    EXPECT_EQ(encoded.failure, "invalid: leading surrogate without trailing");
    EXPECT_EQ(encoded.failedAt, 2);
}

TEST_F(PlugInConverterTest, UnknownWithoutThePlugIn) {
    QNComUnregisterClass(&kCodecClsid);
    EXPECT_THROW(ByteToCharConverter::getConverter(kName), UnknownEncodingException);
}

TEST(MultiByteConverterTest, PendingTrailingSurrogateIsWrittenFirstAndFlushed) {
    SplittingDecoder decoder;
    const Bytes in = bytes({0x01, 0x02});
    char16_t out[4];
    long inPos = 0, outPos = 0;
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 2, out, &outPos, 4), 1);
    EXPECT_EQ(inPos, 1);
    EXPECT_EQ(decoder.convert(raw(in), &inPos, 2, out, &outPos, 4), 2);
    EXPECT_EQ(Units(out, 3), u"x\xDC01x");
    // The last trailing surrogate needs two slots to be flushed, deliberately.
    outPos = 3;
    EXPECT_THROW(decoder.flush(out, &outPos, 4), InvalidCharacterException);
    outPos = 2;
    EXPECT_EQ(decoder.flush(out, &outPos, 4), 1);
    EXPECT_EQ(out[2], 0xDC02);
    EXPECT_EQ(decoder.flush(out, &outPos, 4), 0);
}
