// Bytes as hexadecimal text, for comparing digests and cipher blocks with published values.
#pragma once

#include <cstddef>
#include <string>

inline std::string hexText(const unsigned char* data, size_t length,
                           const char* digits = "0123456789abcdef") {
    std::string text;
    for (size_t i = 0; i < length; ++i) {
        text += digits[data[i] >> 4];
        text += digits[data[i] & 15];
    }
    return text;
}
