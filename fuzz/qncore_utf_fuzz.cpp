// UTF-8 and UTF-16 conversion: whatever the input, decoding yields well-formed UTF-16, encoding it
// again and decoding gives the same units, and size queries agree with the filled conversions.
#include "qncore/QNWideText.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

bool wellFormed(const std::u16string& s) {
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] >= 0xD800 && s[i] <= 0xDBFF) {
            if (i + 1 == s.size() || s[i + 1] < 0xDC00 || s[i + 1] > 0xDFFF)
                return false;
            ++i;
        } else if (s[i] >= 0xDC00 && s[i] <= 0xDFFF) {
            return false;
        }
    }
    return true;
}

std::u16string decode(const char* bytes, int32_t length) {
    std::u16string out(static_cast<size_t>(QNUtf8ToWide(bytes, length, nullptr, 0)), u'\0');
    const int32_t n = QNUtf8ToWide(bytes, length, out.data(), static_cast<int32_t>(out.size()));
    check(n == static_cast<int32_t>(out.size()));
    return out;
}

std::string encode(const std::u16string& wide) {
    const auto* text = wide.data();
    const auto length = static_cast<int32_t>(wide.size());
    std::string out(static_cast<size_t>(QNWideToUtf8(text, length, nullptr, 0)), '\0');
    check(QNWideToUtf8(text, length, out.data(), static_cast<int32_t>(out.size())) ==
          static_cast<int32_t>(out.size()));
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto* bytes = reinterpret_cast<const char*>(data);
    const auto length = static_cast<int32_t>(size);
    const std::u16string wide = decode(bytes, length);
    check(wellFormed(wide));
    check(decode(encode(wide).data(), static_cast<int32_t>(encode(wide).size())) == wide);

    // The same bytes read as UTF-16: encoding replaces only unpaired surrogates.
    std::u16string units(size / 2, u'\0');
    for (size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
    const std::string utf8 = encode(units);
    const std::u16string back = decode(utf8.data(), static_cast<int32_t>(utf8.size()));
    check(back.size() == units.size());
    check(wellFormed(back));
    return 0;
}
