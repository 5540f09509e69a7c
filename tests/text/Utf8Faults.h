// Byte strings the UTF-8 decoder's simple loop treats as anything but a sequence to take, shared
// by the block-path tests and the UTF-8 fuzzer: substitutions (stray continuation, C0/C1,
// F5-FF, refused second bytes, cut-off leads), values beyond U+10FFFF, three-byte surrogates
// (which throw), overlong four-byte forms (which may throw), and overlong three-byte forms,
// which every path must decode alike.
#pragma once

namespace charsettest {

inline const char* const UTF8_FAULTS[16] = {
    "\x80",         "\xBF\xBF",     "\xC0\x80",         "\xC1\xBF",         "\xF5",
    "\xFF",         "\xE4\xB8",     "\xC3",             "\xF0\x9F\x98",     "\xED\xA0\x80",
    "\xED\xBF\xBF", "\xE0\x80\x80", "\xF0\x8F\xBF\xBF", "\xF0\x8D\xA0\x80", "\xF4\x90\x80\x80",
    "\xF1\xB0\x80\x80",
};

} // namespace charsettest
