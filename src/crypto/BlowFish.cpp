#include "qn/crypto/BlowFish.h"

#include "qn/core/Exception.h"

#include <cstring>

namespace qn::crypto {

namespace {

#include "BlowFishTables.inc"

constexpr int MAX_KEY_LENGTH = 56;
constexpr int BLOCK = 8;
// Blocks enciphered side by side: their rounds are independent, so the processor overlaps the
// table loads of one block with the arithmetic of the others.
constexpr int LANES = 4;

inline uint32_t loadBig(const signed char* p) {
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    return uint32_t{b[0]} << 24 | uint32_t{b[1]} << 16 | uint32_t{b[2]} << 8 | b[3];
}

inline void storeBig(signed char* p, uint32_t v) {
    auto* b = reinterpret_cast<unsigned char*>(p);
    b[0] = static_cast<unsigned char>(v >> 24);
    b[1] = static_cast<unsigned char>(v >> 16);
    b[2] = static_cast<unsigned char>(v >> 8);
    b[3] = static_cast<unsigned char>(v);
}

// The round function over the S-boxes.
inline uint32_t f(const uint32_t (&s)[4][256], uint32_t x) {
    return ((s[0][x >> 24] + s[1][(x >> 16) & 0xFF]) ^ s[2][(x >> 8) & 0xFF]) + s[3][x & 0xFF];
}

// N blocks through the 16 rounds at once. Written without the swaps: a and b take turns as the
// half that changes, and the result leaves as (b, a). Deciphering is the same walk over the
// P-array from its other end (step -1).
template <int N>
inline void rounds(const uint32_t* p, int step, const uint32_t (&s)[4][256], uint32_t (&a)[N],
                   uint32_t (&b)[N]) {
    for (int k = 0; k < N; ++k)
        a[k] ^= p[0];
    for (int i = 1; i < 16; i += 2) {
        const uint32_t odd = p[i * step];
        const uint32_t even = p[(i + 1) * step];
        for (int k = 0; k < N; ++k)
            b[k] ^= f(s, a[k]) ^ odd;
        for (int k = 0; k < N; ++k)
            a[k] ^= f(s, b[k]) ^ even;
    }
    for (int k = 0; k < N; ++k)
        b[k] ^= p[17 * step];
}

template <int N>
inline void blocks(const uint32_t* p, int step, const uint32_t (&s)[4][256], signed char* out,
                   const signed char* in) {
    uint32_t a[N];
    uint32_t b[N];
    for (int k = 0; k < N; ++k) {
        a[k] = loadBig(in + k * BLOCK);
        b[k] = loadBig(in + k * BLOCK + 4);
    }
    rounds<N>(p, step, s, a, b);
    for (int k = 0; k < N; ++k) {
        storeBig(out + k * BLOCK, b[k]);
        storeBig(out + k * BLOCK + 4, a[k]);
    }
}

void run(const uint32_t* p, int step, const uint32_t (&s)[4][256], signed char* out,
         const signed char* in, long len) {
    if (len < 0 || len % BLOCK != 0)
        throw Exception(String(u"only supports 8 byte block boundaries"));
    long done = 0;
    for (; len - done >= LANES * BLOCK; done += LANES * BLOCK)
        blocks<LANES>(p, step, s, out + done, in + done);
    for (; done < len; done += BLOCK)
        blocks<1>(p, step, s, out + done, in + done);
}

} // namespace

BlowFish::BlowFish(const signed char* key, int keyLength) {
    std::memcpy(m_p, INITIAL_P, sizeof m_p);
    std::memcpy(m_s, INITIAL_S, sizeof m_s);
    if (keyLength > MAX_KEY_LENGTH)
        keyLength = MAX_KEY_LENGTH;
    if (keyLength <= 0)
        return;
    const auto* bytes = reinterpret_cast<const unsigned char*>(key);
    int next = 0;
    for (uint32_t& subkey : m_p) {
        uint32_t word = 0;
        for (int i = 0; i < 4; ++i) {
            word = word << 8 | bytes[next];
            next = next + 1 == keyLength ? 0 : next + 1;
        }
        subkey ^= word;
    }
    // Each step's zero-started chain of blocks replaces the tables in order, so later entries
    // are enciphered with the ones already replaced.
    unsigned int left = 0;
    unsigned int right = 0;
    for (int i = 0; i < 18; i += 2) {
        encryptBlock(left, right);
        m_p[i] = left;
        m_p[i + 1] = right;
    }
    for (auto& box : m_s) {
        for (int i = 0; i < 256; i += 2) {
            encryptBlock(left, right);
            box[i] = left;
            box[i + 1] = right;
        }
    }
}

BlowFish::~BlowFish() = default;

void BlowFish::encrypt(signed char* out, const signed char* in, long len) const {
    run(m_p, 1, m_s, out, in, len);
}

void BlowFish::decrypt(signed char* out, const signed char* in, long len) const {
    run(m_p + 17, -1, m_s, out, in, len);
}

void BlowFish::encryptBlock(unsigned int& left, unsigned int& right) const {
    uint32_t a[1] = {left};
    uint32_t b[1] = {right};
    rounds<1>(m_p, 1, m_s, a, b);
    left = b[0];
    right = a[0];
}

void BlowFish::decryptBlock(unsigned int& left, unsigned int& right) const {
    uint32_t a[1] = {left};
    uint32_t b[1] = {right};
    rounds<1>(m_p + 17, -1, m_s, a, b);
    left = b[0];
    right = a[0];
}

} // namespace qn::crypto
