#include "qn/crypto/BlowFish.h"
#include "crypto/HexText.h"

#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace qn;
using qn::crypto::BlowFish;

namespace {

// Opens the key schedule to the tests.
class Probe : public BlowFish {
public:
    using BlowFish::BlowFish;
    const uint32_t* p() const { return m_p; }
};

std::vector<unsigned char> hex(const char* text) {
    std::vector<unsigned char> out;
    for (; text[0] && text[1]; text += 2)
        out.push_back(static_cast<unsigned char>(std::stoi(std::string(text, 2), nullptr, 16)));
    return out;
}

std::string hexOf(const unsigned char* data, size_t length) {
    return hexText(data, length, "0123456789ABCDEF");
}

std::string encryptHex(const BlowFish& cipher, const char* plainHex) {
    std::vector<unsigned char> block = hex(plainHex);
    cipher.encrypt(block.data(), block.data(), static_cast<long>(block.size()));
    return hexOf(block.data(), block.size());
}

TEST(BlowFishTest, PublishedEcbVectors) {
    struct Vector {
        const char* key;
        const char* plain;
        const char* cipher;
    };
    const Vector VECTORS[] = {
        {"0000000000000000", "0000000000000000", "4EF997456198DD78"},
        {"FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF", "51866FD5B85ECB8A"},
        {"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
        {"1111111111111111", "1111111111111111", "2466DD878B963C9D"},
        {"0123456789ABCDEF", "1111111111111111", "61F9C3802281B096"},
        {"1111111111111111", "0123456789ABCDEF", "7D0CC630AFDA1EC7"},
        {"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
        {"7CA110454A1A6E57", "01A1D6D039776742", "59C68245EB05282B"},
        {"0131D9619DC1376E", "5CD54CA83DEF57DA", "B1B8CC0B250F09A0"},
        {"07A1133E4A0B2686", "0248D43806F67172", "1730E5778BEA1DA4"},
        {"3849674C2602319E", "51454B582DDF440A", "A25E7856CF2651EB"},
        {"04B915BA43FEB5B6", "42FD443059577FA2", "353882B109CE8F1A"},
        {"0113B970FD34F2CE", "059B5E0851CF143A", "48F4D0884C379918"},
        {"0170F175468FB5E6", "0756D8E0774761D2", "432193B78951FC98"},
        {"43297FAD38E373FE", "762514B829BF486A", "13F04154D69D1AE5"},
        {"07A7137045DA2A16", "3BDD119049372802", "2EEDDA93FFD39C79"},
        {"04689104C2FD3B2F", "26955F6835AF609A", "D887E0393C2DA6E3"},
        {"37D06BB516CB7546", "164D5E404F275232", "5F99D04F5B163969"},
        {"1F08260D1AC2465E", "6B056E18759F5CCA", "4A057A3B24D3977B"},
        {"584023641ABA6176", "004BD6EF09176062", "452031C1E4FADA8E"},
        {"025816164629B007", "480D39006EE762F2", "7555AE39F59B87BD"},
        {"49793EBC79B3258F", "437540C8698F3CFA", "53C55F9CB49FC019"},
        {"4FB05E1515AB73A7", "072D43A077075292", "7A8E7BFA937E89A3"},
        {"49E95D6D4CA229BF", "02FE55778117F12A", "CF9C5D7A4986ADB5"},
        {"018310DC409B26D6", "1D9D5C5018F728C2", "D1ABB290658BC778"},
        {"1C587F1C13924FEF", "305532286D6F295A", "55CB3774D13EF201"},
        {"0101010101010101", "0123456789ABCDEF", "FA34EC4847B268B2"},
        {"1F1F1F1F0E0E0E0E", "0123456789ABCDEF", "A790795108EA3CAE"},
        {"E0FEE0FEF1FEF1FE", "0123456789ABCDEF", "C39E072D9FAC631D"},
        {"0000000000000000", "FFFFFFFFFFFFFFFF", "014933E0CDAFF6E4"},
        {"FFFFFFFFFFFFFFFF", "0000000000000000", "F21E9A77B71C49BC"},
        {"0123456789ABCDEF", "0000000000000000", "245946885754369A"},
        {"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
    };
    for (const Vector& v : VECTORS) {
        const std::vector<unsigned char> key = hex(v.key);
        const BlowFish cipher(key.data(), static_cast<int>(key.size()));
        EXPECT_EQ(encryptHex(cipher, v.plain), v.cipher) << "key " << v.key;
        std::vector<unsigned char> block = hex(v.cipher);
        cipher.decrypt(block.data(), block.data(), 8);
        EXPECT_EQ(hexOf(block.data(), 8), v.plain) << "key " << v.key;
    }
}

// The variable-key set: the first n bytes of one key, n from 1 to 24, on one plaintext.
TEST(BlowFishTest, PublishedVariableKeyVectors) {
    const std::vector<unsigned char> key = hex("F0E1D2C3B4A5968778695A4B3C2D1E0F0011223344556677");
    const char* const CIPHERS[] = {
        "F9AD597C49DB005E", "E91D21C1D961A6D6", "E9C2B70A1BC65CF3", "BE1E639408640F05",
        "B39E44481BDB1E6E", "9457AA83B1928C0D", "8BB77032F960629D", "E87A244E2CC85E82",
        "15750E7A4F4EC577", "122BA70B3AB64AE0", "3A833C9AFFC537F6", "9409DA87A90F6BF2",
        "884F80625060B8B4", "1F85031C19E11968", "79D9373A714CA34F", "93142887EE3BE15C",
        "03429E838CE2D14B", "A4299E27469FF67B", "AFD5AED1C1BC96A8", "10851C0E3858DA9F",
        "E6F51ED79B9DB21F", "64A6E14AFD36B46F", "80C7D7D45A5479AD", "05044B62FA52D080",
    };
    for (int n = 1; n <= 24; ++n)
        EXPECT_EQ(encryptHex(BlowFish(key.data(), n), "FEDCBA9876543210"), CIPHERS[n - 1])
            << n << " key bytes";
}

TEST(BlowFishTest, EmptyKeyKeepsTheBareConstants) {
    const BlowFish empty(static_cast<const signed char*>(nullptr), 0);
    const BlowFish negative("ignored", -5);
    EXPECT_EQ(encryptHex(negative, "0123456789ABCDEF"), encryptHex(empty, "0123456789ABCDEF"));
    // A key of zero bytes leaves P as it is, so its schedule's first step enciphers the zero
    // block under the bare constants: what the unkeyed cipher gives for that block.
    const unsigned char zero = 0;
    const Probe scheduled(&zero, 1);
    char expected[17];
    std::snprintf(expected, sizeof expected, "%08X%08X", static_cast<unsigned>(scheduled.p()[0]),
                  static_cast<unsigned>(scheduled.p()[1]));
    EXPECT_EQ(encryptHex(empty, "0000000000000000"), expected);

    signed char block[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    empty.encrypt(block, block, 8);
    empty.decrypt(block, block, 8);
    EXPECT_EQ(std::memcmp(block, "\1\2\3\4\5\6\7\10", 8), 0);
}

TEST(BlowFishTest, LengthsOtherThanWholeBlocksAreRefusedUntouched) {
    const BlowFish cipher("secret", 6);
    signed char in[16] = {};
    signed char out[16];
    for (long len : {12L, 1L, 7L, 15L, -8L}) {
        std::memset(out, 0x33, sizeof out);
        try {
            cipher.encrypt(out, in, len);
            FAIL() << "encrypt accepted " << len;
        } catch (const Exception& e) {
            EXPECT_EQ(e.getDescription(), u"only supports 8 byte block boundaries");
            EXPECT_EQ(e.getResult(), QN_E_FAIL);
        }
        EXPECT_THROW(cipher.decrypt(out, in, len), Exception);
        for (signed char c : out)
            ASSERT_EQ(c, 0x33);
    }
    cipher.encrypt(out, in, 0);
    EXPECT_EQ(out[0], 0x33);
}

} // namespace
