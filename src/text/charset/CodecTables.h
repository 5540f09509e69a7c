// The static tables of the character-set layer: the codec table (every name the codec manager
// registers, with its code page and the name it is an alias of), the code pages known without a
// converter, and further alias pairs that only the encoding-information index knows.
#pragma once

#include <cstdint>

namespace qn::text::charset::tables {

struct CodecRow {
    const char16_t* name;
    int32_t codePage;        // 0: none
    const char16_t* aliasOf; // null: a canonical row
    const char16_t* encoderClass;
    const char16_t* decoderClass;
};

struct CodePageRow {
    const char16_t* name;
    int32_t codePage;
};

struct AliasPair {
    const char16_t* alias;
    const char16_t* target;
};

constexpr int CODEC_COUNT = 45;
constexpr int CODE_PAGE_COUNT = 23;
constexpr int ALIAS_COUNT = 15;

extern const CodecRow CODECS[CODEC_COUNT];
extern const CodePageRow CODE_PAGES[CODE_PAGE_COUNT];
extern const AliasPair ALIASES[ALIAS_COUNT];

} // namespace qn::text::charset::tables
