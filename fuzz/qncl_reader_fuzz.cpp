// InputStreamReader under a BufferedReader against decoding the same bytes in one call. The
// wrapped byte stream gives short reads of sizes the input picks, and the caller mixes read(),
// array reads of chosen sizes and readLine. Whatever the pieces, the characters delivered are
// those of the one-shot decoding (where a sequence cut off by the end of the input becomes one
// U+FFFD per byte), and readLine splits them at LF, CR and CR LF, into one reused string of which
// some lines are kept as copies (which must not change after). When the decoder refuses the
// input, the reader fails too, after delivering no character the one-shot decoding does not.
//
// Input: byte 0 = encoding, byte 1 = byte-buffer size, byte 2 = whether available() tells,
// byte 3 = number n of size bytes (at most 32), then n bytes of read sizes (the stream's, in
// turn), then n bytes of operations, then the data.
#include "ShortReads.h"
#include "qn/io/BufferedReader.h"
#include "qn/io/InputStreamReader.h"

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

const char16_t* const ENCODINGS[] = {u"UTF-8", u"UTF-16LE", u"UTF-16BE", u"UTF-32LE",
                                     u"AMP-7", u"CP1252",   u"ASCII",    u"UTF-32BE"};

// The whole input decoded in one call; refused is set when the decoder threw.
std::u16string decodeWhole(const char16_t* encoding, const uint8_t* data, size_t size,
                           bool& refused) {
    Reference<ByteToCharConverter> converter = ByteToCharConverter::getConverter(encoding);
    const auto* in = reinterpret_cast<const signed char*>(data);
    std::vector<char16_t> out(size * 3 + 16);
    long pos = 0, o = 0;
    const long end = static_cast<long>(size), outEnd = static_cast<long>(out.size());
    refused = false;
    try {
        for (;;) {
            converter->convert(in, &pos, end, out.data(), &o, outEnd);
            if (pos >= end)
                break;
            out[static_cast<size_t>(o++)] = 0xFFFD; // cut off by the end of the input
            ++pos;
        }
        converter->flush(out.data(), &o, outEnd);
    } catch (const Exception&) {
        refused = true;
    }
    return std::u16string(out.data(), static_cast<size_t>(o));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* input, size_t size) {
    if (size < 4)
        return 0;
    const char16_t* encoding = ENCODINGS[input[0] % (sizeof ENCODINGS / sizeof *ENCODINGS)];
    const long byteBuffer = input[1] % 40;
    const bool tells = input[2] & 1;
    const size_t count = std::min<size_t>(input[3] % 33, (size - 4) / 2);
    const uint8_t* sizes = input + 4;
    const uint8_t* ops = sizes + count;
    const uint8_t* data = ops + count;
    const size_t dataSize = size - 4 - 2 * count;

    bool refused = false;
    const std::u16string expected = decodeWhole(encoding, data, dataSize, refused);

    Reference<BufferedReader> reader = new BufferedReader(
        new InputStreamReader(new fuzzsupport::ShortReads(data, dataSize, sizes, count, tells, 32),
                              encoding, byteBuffer),
        16 + (count ? ops[0] % 80 : 0));
    size_t at = 0; // the model: how far into expected the reader is
    bool threw = false;
    String line;
    std::vector<std::pair<String, std::u16string>> kept;
    try {
        for (size_t step = 0;; ++step) {
            const uint8_t op = count ? ops[step % count] : 0;
            if (op % 3 == 0) {
                const long n = reader->readLine(line);
                if (n < 0) {
                    check(at == expected.size());
                    break;
                }
                size_t end = at;
                while (end < expected.size() && expected[end] != u'\n' && expected[end] != u'\r')
                    ++end;
                check(static_cast<size_t>(n) == end - at &&
                      std::equal(line.getData(), line.getData() + n, expected.data() + at));
                if (op & 8)
                    kept.emplace_back(line, std::u16string(line.getData(), static_cast<size_t>(n)));
                at = end;
                if (at < expected.size() && expected[at++] == u'\r' && at < expected.size() &&
                    expected[at] == u'\n')
                    ++at;
            } else if (op % 3 == 1) {
                const int c = reader->read();
                if (c < 0) {
                    check(at == expected.size());
                    break;
                }
                check(at < expected.size() && c == expected[at++]);
            } else {
                char16_t buf[64];
                const long len = 1 + op / 3 % 64;
                const long n = reader->read(buf, len);
                if (n < 0) {
                    check(at == expected.size());
                    break;
                }
                check(n > 0 && n <= len && at + static_cast<size_t>(n) <= expected.size() &&
                      std::equal(buf, buf + n, expected.data() + at));
                at += static_cast<size_t>(n);
            }
        }
    } catch (const Exception&) {
        threw = true;
    }
    check(threw == refused);
    for (const auto& [copy, text] : kept)
        check(copy.getLength() == static_cast<int32_t>(text.size()) &&
              std::equal(text.begin(), text.end(), copy.getData()));
    return 0;
}
