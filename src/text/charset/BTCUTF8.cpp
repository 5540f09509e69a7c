#include "qn/text/charset/BTCUTF8.h"

#include "UtfKernels.h"

namespace qn::text::charset {

BTCUTF8::~BTCUTF8() = default;

long BTCUTF8::convert(const signed char* in, long* inPos, long inEnd, char16_t* out, long* outPos,
                      long outEnd) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::decodeUtf8<true>(reinterpret_cast<const uint8_t*>(in), i, inEnd, out, o, outEnd,
                              [this](char16_t* to, long& at, long end) {
                                  return writeSubstitution(to, at, end, true);
                              });
    });
}

const char16_t* BTCUTF8::getEncodingName() const {
    return u"UTF-8";
}

long BTCUTF8::getMaxBytesPerChar() const {
    return 6;
}

long BTCUTF8::getMaxCharsPerByte() const {
    return 4;
}

} // namespace qn::text::charset
