// BlowFish and MD5Digest against OpenSSL on the same data: MD5 over large and small messages,
// Blowfish in electronic code book over a large buffer, and the Blowfish key schedule.
#include "qn/crypto/BlowFish.h"
#include "qn/crypto/MD5Digest.h"

#include <benchmark/benchmark.h>

#include <vector>

#ifdef QNCL_BENCH_OPENSSL
// Blowfish sits in OpenSSL 3's legacy provider; its low-level functions still work.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/blowfish.h>
#include <openssl/evp.h>
#include <openssl/md5.h>
#include <openssl/provider.h>
#endif

namespace {

constexpr size_t LARGE = 64 * 1024;
constexpr size_t SMALL = 64;
const unsigned char KEY[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                               0xF0, 0xE1, 0xD2, 0xC3, 0xB4, 0xA5, 0x96, 0x87};

std::vector<unsigned char> data(size_t length) {
    std::vector<unsigned char> out(length);
    uint32_t x = 2463534242u;
    for (unsigned char& b : out) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        b = static_cast<unsigned char>(x);
    }
    return out;
}

void setRate(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

void md5Ours(benchmark::State& state, size_t length) {
    const std::vector<unsigned char> message = data(length);
    qn::crypto::MD5Digest digest;
    unsigned char out[16];
    for (auto _ : state) {
        digest.update(message.data(), static_cast<int>(message.size()));
        digest.getDigest(out, 16);
        benchmark::DoNotOptimize(out);
    }
    setRate(state, length);
}

void BlowFishEcb_ours(benchmark::State& state) {
    const qn::crypto::BlowFish cipher(KEY, sizeof KEY);
    std::vector<unsigned char> buffer = data(LARGE);
    for (auto _ : state) {
        cipher.encrypt(buffer.data(), buffer.data(), static_cast<long>(buffer.size()));
        benchmark::DoNotOptimize(buffer.data());
    }
    setRate(state, LARGE);
}

void BlowFishKeySchedule_ours(benchmark::State& state) {
    for (auto _ : state) {
        const qn::crypto::BlowFish cipher(KEY, sizeof KEY);
        benchmark::DoNotOptimize(&cipher);
    }
}

void MD5_64KiB_ours(benchmark::State& state) {
    md5Ours(state, LARGE);
}
void MD5_64B_ours(benchmark::State& state) {
    md5Ours(state, SMALL);
}

BENCHMARK(MD5_64KiB_ours)->Name("MD5_64KiB/ours");
BENCHMARK(MD5_64B_ours)->Name("MD5_64B/ours");
BENCHMARK(BlowFishEcb_ours)->Name("BlowFishEcb_64KiB/ours");
BENCHMARK(BlowFishKeySchedule_ours)->Name("BlowFishKeySchedule/ours");

#ifdef QNCL_BENCH_OPENSSL

void md5OpenSsl(benchmark::State& state, size_t length) {
    const std::vector<unsigned char> message = data(length);
    unsigned char out[16];
    for (auto _ : state) {
        MD5_CTX context;
        MD5_Init(&context);
        MD5_Update(&context, message.data(), message.size());
        MD5_Final(out, &context);
        benchmark::DoNotOptimize(out);
    }
    setRate(state, length);
}

void MD5_64KiB_openssl(benchmark::State& state) {
    md5OpenSsl(state, LARGE);
}
void MD5_64B_openssl(benchmark::State& state) {
    md5OpenSsl(state, SMALL);
}

// OpenSSL's electronic code book works a block per call.
void BlowFishEcb_openssl(benchmark::State& state) {
    BF_KEY key;
    BF_set_key(&key, sizeof KEY, KEY);
    std::vector<unsigned char> buffer = data(LARGE);
    for (auto _ : state) {
        for (size_t at = 0; at < buffer.size(); at += 8)
            BF_ecb_encrypt(buffer.data() + at, buffer.data() + at, &key, BF_ENCRYPT);
        benchmark::DoNotOptimize(buffer.data());
    }
    setRate(state, LARGE);
}

// The same through the EVP interface with the legacy provider, one call for the buffer.
void BlowFishEcb_openssl_evp(benchmark::State& state) {
    OSSL_PROVIDER* legacy = OSSL_PROVIDER_load(nullptr, "legacy");
    OSSL_PROVIDER* base = OSSL_PROVIDER_load(nullptr, "default");
    EVP_CIPHER* cipher = EVP_CIPHER_fetch(nullptr, "BF-ECB", nullptr);
    if (!cipher) {
        state.SkipWithError("OpenSSL's legacy provider has no BF-ECB");
        return;
    }
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EVP_EncryptInit_ex2(context, cipher, nullptr, nullptr, nullptr);
    EVP_CIPHER_CTX_set_key_length(context, sizeof KEY);
    EVP_EncryptInit_ex2(context, nullptr, KEY, nullptr, nullptr);
    EVP_CIPHER_CTX_set_padding(context, 0);
    std::vector<unsigned char> buffer = data(LARGE);
    std::vector<unsigned char> out(LARGE);
    for (auto _ : state) {
        int written = 0;
        EVP_EncryptUpdate(context, out.data(), &written, buffer.data(),
                          static_cast<int>(buffer.size()));
        benchmark::DoNotOptimize(out.data());
    }
    setRate(state, LARGE);
    EVP_CIPHER_CTX_free(context);
    EVP_CIPHER_free(cipher);
    OSSL_PROVIDER_unload(base);
    OSSL_PROVIDER_unload(legacy);
}

void BlowFishKeySchedule_openssl(benchmark::State& state) {
    for (auto _ : state) {
        BF_KEY key;
        BF_set_key(&key, sizeof KEY, KEY);
        benchmark::DoNotOptimize(&key);
    }
}

BENCHMARK(MD5_64KiB_openssl)->Name("MD5_64KiB/openssl");
BENCHMARK(MD5_64B_openssl)->Name("MD5_64B/openssl");
BENCHMARK(BlowFishEcb_openssl)->Name("BlowFishEcb_64KiB/openssl");
BENCHMARK(BlowFishEcb_openssl_evp)->Name("BlowFishEcb_64KiB/openssl-evp");
BENCHMARK(BlowFishKeySchedule_openssl)->Name("BlowFishKeySchedule/openssl");

#endif

} // namespace
BENCHMARK_MAIN();
