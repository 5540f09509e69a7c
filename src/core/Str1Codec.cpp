// Whole-text conversions of the 8-bit strings. Both loops hand the converter all the input and
// room for one output unit per input unit, plus slack for one whole result (a substitution run,
// a surrogate pair, an AMP-7 entity), and go round again while output fills up; so a call that
// consumes nothing although input is left has met the end of the text inside an incomplete
// sequence. Sizing by the converters' maximum rates would over-allocate most text several times.
#include "Str1Codec.h"

#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"

#include <string>

namespace qn::str1 {

using text::charset::ByteToCharConverter;
using text::charset::CharToByteConverter;

namespace {

// Room that always holds one more whole result of any converter.
constexpr long SLACK = 16;

std::u16string terminated(const String& encoding) {
    return std::u16string(encoding.getData(), static_cast<size_t>(encoding.getLength()));
}

long room(long units) {
    const int64_t total = static_cast<int64_t>(units) + SLACK;
    if (total >= INT32_MAX)
        throw std::bad_alloc();
    return static_cast<long>(total);
}

} // namespace

Reference<ByteToCharConverter> decoderFor(const String& encoding) {
    if (encoding.isEmpty())
        return ByteToCharConverter::getDefaultConverter();
    return ByteToCharConverter::getConverter(terminated(encoding).c_str());
}

Reference<CharToByteConverter> encoderFor(const String& encoding) {
    if (encoding.isEmpty())
        return CharToByteConverter::getDefaultConverter();
    return CharToByteConverter::getConverter(terminated(encoding).c_str());
}

String decode(const Str1& text) {
    if (text.isEmpty())
        return String();
    Reference<ByteToCharConverter> decoder = decoderFor(text.getEncoding());
    const long inEnd = text.getLength();
    String result;
    char16_t* out = result.getWriteLock();
    long inPos = 0;
    long outPos = 0;
    try {
        while (inPos < inEnd) {
            const long outEnd = outPos + room(inEnd - inPos);
            out = result.ensureCapacity(static_cast<int32_t>(outEnd));
            const long before = inPos;
            decoder->convert(text.getBytes(), &inPos, inEnd, out, &outPos, outEnd);
            if (inPos == before) {
                out[outPos++] = 0xFFFD;
                break;
            }
        }
        out = result.ensureCapacity(static_cast<int32_t>(outPos + SLACK));
        decoder->flush(out, &outPos, outPos + SLACK);
    } catch (...) {
        result.releaseWriteLock(0);
        throw;
    }
    result.releaseWriteLock(static_cast<int32_t>(outPos));
    return result;
}

void encode(CharToByteConverter& encoder, const char16_t* text, int32_t length, StrBuf1& out) {
    const long start = out.getLength();
    long inPos = 0;
    long outPos = start;
    try {
        while (inPos < length) {
            const long outEnd = outPos + room(length - inPos);
            out.reserve(static_cast<int32_t>(outEnd));
            const long before = inPos;
            encoder.convert(text, &inPos, length,
                            reinterpret_cast<signed char*>(out.getBuffer()), &outPos, outEnd);
            if (inPos == before)
                throw text::charset::InvalidCharacterException(
                    String(u"leading surrogate without trailing"));
        }
        out.reserve(static_cast<int32_t>(outPos + SLACK));
        encoder.flush(reinterpret_cast<signed char*>(out.getBuffer()), &outPos, outPos + SLACK);
    } catch (...) {
        out.setLength(static_cast<int32_t>(start));
        throw;
    }
    out.setLength(static_cast<int32_t>(outPos));
}

} // namespace qn::str1
