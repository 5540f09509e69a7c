// The code-page tables: the decoder tables as published (CodePageTables.inc), and the encoder
// tables built from them at compile time, so the two directions cannot disagree.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qn::text::charset::tables {

#include "CodePageTables.inc"

// Pages of 256 bytes an inverse table needs: one per high byte that some mapped character
// has, and the shared page of zeros.
constexpr size_t inversePages(const char16_t (&decode)[256]) {
    bool used[256] = {};
    size_t pages = 1;
    for (char16_t c : decode) {
        if (c != 0xFFFD && !used[c >> 8]) {
            used[c >> 8] = true;
            ++pages;
        }
    }
    return pages;
}

template <size_t PAGES> struct InverseTable {
    uint16_t pageIndex[256] = {};
    unsigned char bytes[PAGES * 256] = {};
};

// Every mapped character of decode leads back to its byte; U+FFFD (undefined bytes) leads
// nowhere, and so does every character that no byte maps to.
template <size_t PAGES> constexpr InverseTable<PAGES> invert(const char16_t (&decode)[256]) {
    InverseTable<PAGES> table;
    uint16_t next = 256;
    for (char16_t c : decode) {
        if (c != 0xFFFD && table.pageIndex[c >> 8] == 0) {
            table.pageIndex[c >> 8] = next;
            next = static_cast<uint16_t>(next + 256);
        }
    }
    for (int b = 0; b < 256; ++b) {
        const char16_t c = decode[b];
        if (c != 0xFFFD)
            table.bytes[table.pageIndex[c >> 8] + (c & 0xFF)] = static_cast<unsigned char>(b);
    }
    return table;
}

inline constexpr auto CP437_FROM_UNICODE = invert<inversePages(CP437_TO_UNICODE)>(CP437_TO_UNICODE);
inline constexpr auto CP1252_FROM_UNICODE =
    invert<inversePages(CP1252_TO_UNICODE)>(CP1252_TO_UNICODE);

} // namespace qn::text::charset::tables
