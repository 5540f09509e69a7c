#include "qn/text/charset/ByteToCharUTF.h"
#include "qn/text/charset/CharToByteUTF.h"

#include "UtfKernels.h"

namespace qn::text::charset {

ByteToCharUTF::~ByteToCharUTF() = default;

long ByteToCharUTF::sameEncodingConvert(const signed char* in, long* inPos, long inEnd,
                                        char16_t* out, long* outPos, long outEnd) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::copyUtf16In(reinterpret_cast<const uint8_t*>(in), i, inEnd, out, o, outEnd,
                         [this](char16_t unit) { return convertChar(unit); });
    });
}

CharToByteUTF::~CharToByteUTF() = default;

long CharToByteUTF::sameEncodingConvert(const char16_t* in, long* inPos, long inEnd,
                                        signed char* out, long* outPos, long outEnd) {
    return utf::runConvert(inPos, outPos, [&](long& i, long& o) {
        utf::copyUtf16Out(in, i, inEnd, reinterpret_cast<uint8_t*>(out), o, outEnd,
                          [this](char16_t unit) { return convertChar(unit); });
    });
}

} // namespace qn::text::charset
