#include "qn/crypto/MD5Digest.h"

#include "qn/core/Exception.h"

#include <cstring>

namespace qn::crypto {

namespace {

constexpr int DIGEST_LENGTH = 16;
constexpr uint32_t INITIAL_STATE[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

inline uint32_t loadLittle(const unsigned char* p) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
#else
    return uint32_t{p[0]} | uint32_t{p[1]} << 8 | uint32_t{p[2]} << 16 | uint32_t{p[3]} << 24;
#endif
}

inline void storeLittle(unsigned char* p, uint32_t v) {
    p[0] = static_cast<unsigned char>(v);
    p[1] = static_cast<unsigned char>(v >> 8);
    p[2] = static_cast<unsigned char>(v >> 16);
    p[3] = static_cast<unsigned char>(v >> 24);
}

inline uint32_t rotl(uint32_t x, int s) {
    return x << s | x >> (32 - s);
}

// The round functions, each arranged so that b, the value the previous step has only just
// produced, enters as late as possible: whatever depends on c and d alone is ready early, and
// the message word and constant are added to a before the function's value is. G's two terms
// have no bit in common, so they may be added instead of or-ed, which lets the term without b
// join a's early sum.
#define MD5_F(a, b, c, d, x, s, t)                                                                 \
    a += (x) + (t);                                                                                \
    a += (d) ^ ((b) & ((c) ^ (d)));                                                                \
    a = rotl(a, s) + (b)
#define MD5_G(a, b, c, d, x, s, t)                                                                 \
    a += (x) + (t);                                                                                \
    a += (c) & ~(d);                                                                               \
    a += (b) & (d);                                                                                \
    a = rotl(a, s) + (b)
#define MD5_H(a, b, c, d, x, s, t)                                                                 \
    a += (x) + (t);                                                                                \
    a += (b) ^ ((c) ^ (d));                                                                        \
    a = rotl(a, s) + (b)
#define MD5_I(a, b, c, d, x, s, t)                                                                 \
    a += (x) + (t);                                                                                \
    a += (c) ^ ((b) | ~(d));                                                                       \
    a = rotl(a, s) + (b)

} // namespace

MD5Digest::MD5Digest() noexcept {
    reset();
}

MD5Digest::MD5Digest(const MD5Digest& other) noexcept : MessageDigest() {
    std::memcpy(m_count, other.m_count, sizeof m_count);
    std::memcpy(m_state, other.m_state, sizeof m_state);
    std::memcpy(m_buffer, other.m_buffer, sizeof m_buffer);
}

MD5Digest::~MD5Digest() = default;

void MD5Digest::reset() {
    m_count[0] = 0;
    m_count[1] = 0;
    std::memcpy(m_state, INITIAL_STATE, sizeof m_state);
    std::memset(m_buffer, 0, sizeof m_buffer);
}

int MD5Digest::getLength() const {
    return DIGEST_LENGTH;
}

String MD5Digest::getName() const {
    return QN_STR_LIT(u"MD5");
}

Reference<Object> MD5Digest::clone() const {
    return new MD5Digest(*this);
}

void MD5Digest::update(const signed char* data, int len) {
    if (len <= 0)
        return;
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    auto length = static_cast<uint32_t>(len);
    const uint32_t used = (m_count[0] >> 3) & 63;
    const uint32_t low = m_count[0] + (length << 3);
    m_count[1] += (length >> 29) + (low < m_count[0] ? 1 : 0);
    m_count[0] = low;
    if (used != 0) {
        const uint32_t room = 64 - used;
        if (length < room) {
            std::memcpy(m_buffer + used, bytes, length);
            return;
        }
        std::memcpy(m_buffer + used, bytes, room);
        transform(m_buffer, 1);
        bytes += room;
        length -= room;
    }
    // Whole blocks are taken straight from the caller's bytes.
    transform(bytes, length / 64);
    std::memcpy(m_buffer, bytes + (length & ~63u), length & 63);
}

void MD5Digest::getDigest(signed char* out, int size) {
    if (size < DIGEST_LENGTH)
        throw ResultException(QN_E_BUFFERTOOSMALL);
    unsigned char tail[8];
    storeLittle(tail, m_count[0]);
    storeLittle(tail + 4, m_count[1]);
    const uint32_t used = (m_count[0] >> 3) & 63;
    static const unsigned char PADDING[64] = {0x80};
    const int padding = static_cast<int>(used < 56 ? 56 - used : 120 - used);
    update(PADDING, padding);
    update(tail, 8);
    auto* digest = reinterpret_cast<unsigned char*>(out);
    for (int i = 0; i < 4; ++i)
        storeLittle(digest + 4 * i, m_state[i]);
    reset();
}

void MD5Digest::transform(const unsigned char* blocks, size_t count) {
    uint32_t a = m_state[0];
    uint32_t b = m_state[1];
    uint32_t c = m_state[2];
    uint32_t d = m_state[3];
    for (; count > 0; --count, blocks += 64) {
        uint32_t x[16];
        for (int i = 0; i < 16; ++i)
            x[i] = loadLittle(blocks + 4 * i);
        const uint32_t a0 = a, b0 = b, c0 = c, d0 = d;

        MD5_F(a, b, c, d, x[0], 7, 0xD76AA478);
        MD5_F(d, a, b, c, x[1], 12, 0xE8C7B756);
        MD5_F(c, d, a, b, x[2], 17, 0x242070DB);
        MD5_F(b, c, d, a, x[3], 22, 0xC1BDCEEE);
        MD5_F(a, b, c, d, x[4], 7, 0xF57C0FAF);
        MD5_F(d, a, b, c, x[5], 12, 0x4787C62A);
        MD5_F(c, d, a, b, x[6], 17, 0xA8304613);
        MD5_F(b, c, d, a, x[7], 22, 0xFD469501);
        MD5_F(a, b, c, d, x[8], 7, 0x698098D8);
        MD5_F(d, a, b, c, x[9], 12, 0x8B44F7AF);
        MD5_F(c, d, a, b, x[10], 17, 0xFFFF5BB1);
        MD5_F(b, c, d, a, x[11], 22, 0x895CD7BE);
        MD5_F(a, b, c, d, x[12], 7, 0x6B901122);
        MD5_F(d, a, b, c, x[13], 12, 0xFD987193);
        MD5_F(c, d, a, b, x[14], 17, 0xA679438E);
        MD5_F(b, c, d, a, x[15], 22, 0x49B40821);

        MD5_G(a, b, c, d, x[1], 5, 0xF61E2562);
        MD5_G(d, a, b, c, x[6], 9, 0xC040B340);
        MD5_G(c, d, a, b, x[11], 14, 0x265E5A51);
        MD5_G(b, c, d, a, x[0], 20, 0xE9B6C7AA);
        MD5_G(a, b, c, d, x[5], 5, 0xD62F105D);
        MD5_G(d, a, b, c, x[10], 9, 0x02441453);
        MD5_G(c, d, a, b, x[15], 14, 0xD8A1E681);
        MD5_G(b, c, d, a, x[4], 20, 0xE7D3FBC8);
        MD5_G(a, b, c, d, x[9], 5, 0x21E1CDE6);
        MD5_G(d, a, b, c, x[14], 9, 0xC33707D6);
        MD5_G(c, d, a, b, x[3], 14, 0xF4D50D87);
        MD5_G(b, c, d, a, x[8], 20, 0x455A14ED);
        MD5_G(a, b, c, d, x[13], 5, 0xA9E3E905);
        MD5_G(d, a, b, c, x[2], 9, 0xFCEFA3F8);
        MD5_G(c, d, a, b, x[7], 14, 0x676F02D9);
        MD5_G(b, c, d, a, x[12], 20, 0x8D2A4C8A);

        MD5_H(a, b, c, d, x[5], 4, 0xFFFA3942);
        MD5_H(d, a, b, c, x[8], 11, 0x8771F681);
        MD5_H(c, d, a, b, x[11], 16, 0x6D9D6122);
        MD5_H(b, c, d, a, x[14], 23, 0xFDE5380C);
        MD5_H(a, b, c, d, x[1], 4, 0xA4BEEA44);
        MD5_H(d, a, b, c, x[4], 11, 0x4BDECFA9);
        MD5_H(c, d, a, b, x[7], 16, 0xF6BB4B60);
        MD5_H(b, c, d, a, x[10], 23, 0xBEBFBC70);
        MD5_H(a, b, c, d, x[13], 4, 0x289B7EC6);
        MD5_H(d, a, b, c, x[0], 11, 0xEAA127FA);
        MD5_H(c, d, a, b, x[3], 16, 0xD4EF3085);
        MD5_H(b, c, d, a, x[6], 23, 0x04881D05);
        MD5_H(a, b, c, d, x[9], 4, 0xD9D4D039);
        MD5_H(d, a, b, c, x[12], 11, 0xE6DB99E5);
        MD5_H(c, d, a, b, x[15], 16, 0x1FA27CF8);
        MD5_H(b, c, d, a, x[2], 23, 0xC4AC5665);

        MD5_I(a, b, c, d, x[0], 6, 0xF4292244);
        MD5_I(d, a, b, c, x[7], 10, 0x432AFF97);
        MD5_I(c, d, a, b, x[14], 15, 0xAB9423A7);
        MD5_I(b, c, d, a, x[5], 21, 0xFC93A039);
        MD5_I(a, b, c, d, x[12], 6, 0x655B59C3);
        MD5_I(d, a, b, c, x[3], 10, 0x8F0CCC92);
        MD5_I(c, d, a, b, x[10], 15, 0xFFEFF47D);
        MD5_I(b, c, d, a, x[1], 21, 0x85845DD1);
        MD5_I(a, b, c, d, x[8], 6, 0x6FA87E4F);
        MD5_I(d, a, b, c, x[15], 10, 0xFE2CE6E0);
        MD5_I(c, d, a, b, x[6], 15, 0xA3014314);
        MD5_I(b, c, d, a, x[13], 21, 0x4E0811A1);
        MD5_I(a, b, c, d, x[4], 6, 0xF7537E82);
        MD5_I(d, a, b, c, x[11], 10, 0xBD3AF235);
        MD5_I(c, d, a, b, x[2], 15, 0x2AD7D2BB);
        MD5_I(b, c, d, a, x[9], 21, 0xEB86D391);

        a += a0;
        b += b0;
        c += c0;
        d += d0;
    }
    m_state[0] = a;
    m_state[1] = b;
    m_state[2] = c;
    m_state[3] = d;
}

#undef MD5_F
#undef MD5_G
#undef MD5_H
#undef MD5_I

} // namespace qn::crypto
