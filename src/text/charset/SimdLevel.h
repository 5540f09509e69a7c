// The x86-64 block steps of the converters: the target attributes they are compiled with and
// what the processor allows of them, asked once. The 256-bit steps are left out on Windows: GCC
// on Win64 does not align the stack for spilled 32-byte vectors.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__)
#define QNCL_SIMD_BLOCKS 1
#define QNCL_SSE41 __attribute__((target("ssse3,sse4.1,popcnt")))
#ifndef _WIN32
#define QNCL_SIMD_WIDE 1
#define QNCL_AVX2 __attribute__((target("avx2")))
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace qn::text::charset {

#ifdef QNCL_SIMD_WIDE
// A vector constant hidden from the compiler. Made once before a loop and hidden, it stays in a
// register or, spilled, becomes a memory operand; otherwise GCC builds it again inside the loop
// from a general register (three instructions) for want of registers. Always inlined, so that
// steps compiled with other tuning can use it.
QNCL_AVX2 inline __attribute__((always_inline)) __m256i hidden(__m256i value) {
    __asm__("" : "+x"(value));
    return value;
}
#endif

// 0: no block steps; 1: SSSE3, SSE4.1 and POPCNT; 2: AVX2 as well (only where QNCL_SIMD_WIDE).
inline int simdLevel() {
    static const int level = [] {
        __builtin_cpu_init();
        if (!__builtin_cpu_supports("ssse3") || !__builtin_cpu_supports("sse4.1") ||
            !__builtin_cpu_supports("popcnt"))
            return 0;
#ifdef QNCL_SIMD_WIDE
        if (__builtin_cpu_supports("avx2"))
            return 2;
#endif
        return 1;
    }();
    return level;
}

#ifdef QNCL_SIMD_WIDE
// Whether the processor has BMI2 and deposits bits (pdep) in a cycle or so: Intel's since
// Haswell, AMD's from Zen 3 (family 19h) on. Earlier AMD processors run it as microcode, taking up
// to hundreds of cycles.
inline bool fastBitDeposit() {
    static const bool fast = [] {
        __builtin_cpu_init();
        if (!__builtin_cpu_supports("bmi2"))
            return false;
        if (__builtin_cpu_is("intel"))
            return true;
        unsigned a = 0, b = 0, c = 0, d = 0;
        if (!__builtin_cpu_is("amd") || !__get_cpuid(1, &a, &b, &c, &d))
            return false;
        const unsigned base = (a >> 8) & 0xF;
        return (base == 0xF ? base + ((a >> 20) & 0xFF) : base) >= 0x19;
    }();
    return fast;
}
#endif

} // namespace qn::text::charset

#endif
