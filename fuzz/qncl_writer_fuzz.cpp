// OutputStreamWriter with writes split where the input says against encoding the same text in
// one call. Whatever the split and the byte-buffer size, the stream receives exactly the
// one-shot bytes; when the one-shot encoding refuses the text (or leaves a lone high surrogate
// at its end), the writer fails too, in a write or at flush, having passed on no byte the
// one-shot encoding does not produce.
//
// Input: byte 0 = encoding, byte 1 = byte-buffer size, byte 2 = number n of split bytes (at
// most 32), then n bytes of write lengths (used in turn), then the text as 16-bit units.
#include "qn/io/OutputStreamWriter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace qn;
using namespace qn::io;
using namespace qn::text::charset;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

const char16_t* const ENCODINGS[] = {u"UTF-8",  u"UTF-16LE",  u"UTF-32BE", u"AMP-7",
                                     u"ISO8859_1", u"CP1252", u"CP437",    u"ASCII"};

class Sink : public OutputStream {
public:
    using OutputStream::write;
    void write(const signed char* buf, long len) override { bytes.append(buf, buf + len); }
    std::basic_string<signed char> bytes;
};

// The whole text encoded in one call; refused is set when the encoder threw or left units.
std::basic_string<signed char> encodeWhole(const char16_t* encoding, const std::u16string& text,
                                           bool& refused) {
    Reference<CharToByteConverter> converter = CharToByteConverter::getConverter(encoding);
    std::vector<signed char> out(text.size() * 8 + 16);
    long pos = 0, o = 0;
    const long end = static_cast<long>(text.size()), outEnd = static_cast<long>(out.size());
    refused = false;
    try {
        converter->convert(text.data(), &pos, end, out.data(), &o, outEnd);
        refused = pos < end;
        if (!refused)
            converter->flush(out.data(), &o, outEnd);
    } catch (const Exception&) {
        refused = true;
    }
    return std::basic_string<signed char>(out.data(), static_cast<size_t>(o));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
    if (size < 3)
        return 0;
    const char16_t* encoding = ENCODINGS[input[0] % (sizeof ENCODINGS / sizeof *ENCODINGS)];
    const long byteBuffer = input[1] % 64;
    const size_t count = std::min<size_t>(input[2] % 33, size - 3);
    const uint8_t* splits = input + 3;
    std::u16string text;
    for (size_t i = 3 + count; i + 1 < size; i += 2)
        text += static_cast<char16_t>(input[i] | input[i + 1] << 8);

    bool refused = false;
    const auto expected = encodeWhole(encoding, text, refused);

    Sink* sink = new Sink;
    Reference<OutputStream> hold = sink;
    Reference<OutputStreamWriter> writer = new OutputStreamWriter(sink, encoding, byteBuffer);
    bool threw = false;
    try {
        size_t at = 0;
        for (size_t step = 0; at < text.size(); ++step) {
            size_t n = count ? static_cast<size_t>(splits[step % count]) % 48 : 9;
            if (n == 0) {
                writer->write(text.data() + at, 0); // writes nothing; then one character
                n = 1;
            }
            n = std::min(n, text.size() - at);
            writer->write(text.data() + at, static_cast<long>(n));
            at += n;
        }
        writer->flush();
    } catch (const Exception&) {
        threw = true;
    }
    check(threw == refused);
    if (threw)
        check(sink->bytes.size() <= expected.size() &&
              std::equal(sink->bytes.begin(), sink->bytes.end(), expected.begin()));
    else
        check(sink->bytes == expected);
    return 0;
}
