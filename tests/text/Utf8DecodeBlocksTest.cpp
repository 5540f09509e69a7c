// The UTF-8 decoder's block path (64-byte chunks of mixed text, taken only when a call has
// about a hundred bytes of input and units of output left) against the same decoder given a
// dozen bytes and units per call, which never takes it: faults at every offset of a chunk,
// input and output that end at every offset, calls that start anywhere, and long mixed texts.
#include "qn/text/charset/BTCUTF8.h"

#include "text/Utf8Faults.h"
#include "text/charset/ConverterHarness.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using namespace qn;
using namespace qn::text::charset;
using namespace charsettest;
using charset_test::Bytes;
using charset_test::raw;
using charset_test::Units;

namespace {

// How a decoding ended: the units written, the position reached, the exception's result (0 if
// none).
struct Outcome {
    Units out;
    long inPos = 0;
    QNRESULT failure = 0;
    bool operator==(const Outcome& o) const {
        return out == o.out && inPos == o.inPos && failure == o.failure;
    }
};

std::ostream& operator<<(std::ostream& os, const Outcome& o) {
    return os << "in " << o.inPos << " out " << o.out.size() << " failure " << o.failure;
}

void configure(BTCUTF8& decoder, bool substitute) {
    decoder.setSubstitutionMode(substitute);
    decoder.setSubstitutionChars(u"<?>", 3);
}

// Decodes text[start, inEnd) into at most cap units, one call with everything in view.
// Nothing may be written at or past cap.
Outcome decodeOnce(const Bytes& text, long start, long inEnd, long cap, bool substitute = true) {
    BTCUTF8 decoder;
    configure(decoder, substitute);
    Units buffer(static_cast<size_t>(cap) + 16, u'#');
    Outcome outcome;
    outcome.inPos = start;
    long outPos = 0;
    try {
        decoder.convert(raw(text), &outcome.inPos, inEnd, &buffer[0], &outPos, cap);
    } catch (const Exception& e) {
        outcome.failure = e.getResult();
    }
    EXPECT_EQ(buffer.substr(static_cast<size_t>(cap)), Units(16, u'#')) << "written past cap";
    outcome.out = buffer.substr(0, static_cast<size_t>(outPos));
    return outcome;
}

// The same in calls that each see twelve more bytes and twelve units of room (less near cap).
Outcome decodeSmall(const Bytes& text, long start, long inEnd, long cap, bool substitute = true) {
    BTCUTF8 decoder;
    configure(decoder, substitute);
    Units buffer(static_cast<size_t>(cap), u'\0');
    Outcome outcome;
    outcome.inPos = start;
    long outPos = 0;
    long available = start;
    try {
        for (;;) {
            available = std::min(inEnd, std::max(available, outcome.inPos) + 12);
            const long before = outcome.inPos, written = outPos;
            decoder.convert(raw(text), &outcome.inPos, available, buffer.data(), &outPos,
                            std::min(cap, outPos + 12));
            if (outcome.inPos == before && outPos == written && available == inEnd)
                break;
        }
    } catch (const Exception& e) {
        outcome.failure = e.getResult();
    }
    outcome.out = buffer.substr(0, static_cast<size_t>(outPos));
    return outcome;
}

void expectSame(const Bytes& text, long start, long inEnd, long cap, bool substitute,
                const std::string& what) {
    EXPECT_EQ(decodeOnce(text, start, inEnd, cap, substitute),
              decodeSmall(text, start, inEnd, cap, substitute))
        << what << " start " << start << " end " << inEnd << " cap " << cap;
}

Bytes bytesOf(const char* utf8) {
    const std::string s(utf8);
    return Bytes(s.begin(), s.end());
}

Bytes repeat(const char* utf8, size_t size) {
    const Bytes unit = bytesOf(utf8);
    Bytes text;
    while (text.size() < size)
        text.insert(text.end(), unit.begin(), unit.end());
    return text;
}

// Text of each kind of chunk: two-byte only (with runs of ASCII longer than a block, too; and
// dense enough for the dense steps), three-byte (dense, with the odd letter and two-byte form),
// four-byte, all mixed.
const char* const SAMPLES[] = {
    "The quick brown fox jumps over the lazy dog; naïve. ",
    "Grüße aus Köln und Zürich; café crème. ",
    "Съешь же ещё этих мягких французских булок, да выпей чаю Z. ",
    "我能吞下玻璃而不伤身体。东京都 Zé中文文本，字符集转换。",
    "😀😃😄 🚀 ok 👍🏽 🎉🎊 ❤️ 🌍. ",
    "aé中😀ß\xE0\x80\x80Ж字\xF4\x8F\xBF\xBF€ \xF1\x80\x80\x80",
};

} // namespace

TEST(Utf8DecodeBlocks, FaultAtEveryOffsetOfAChunk) {
    for (const char* sample : SAMPLES) {
        const Bytes base = repeat(sample, 260);
        for (const char* fault : UTF8_FAULTS) {
            const Bytes bad = bytesOf(fault);
            for (size_t at = 0; at <= 140; ++at) {
                Bytes text = base;
                std::copy(bad.begin(), bad.end(), text.begin() + static_cast<long>(at));
                const long size = static_cast<long>(text.size());
                const std::string what =
                    std::string("fault ") + fault + " at " + std::to_string(at);
                expectSame(text, 0, size, size + 8, true, what);
                if (at % 7 == 0)
                    expectSame(text, 0, size, size + 8, false, what);
            }
        }
    }
}

TEST(Utf8DecodeBlocks, InputAndOutputEndAtEveryOffset) {
    for (const char* sample : SAMPLES) {
        const Bytes text = repeat(sample, 300);
        const long size = static_cast<long>(text.size());
        for (long end = 0; end <= size; ++end)
            expectSame(text, 0, end, size + 8, true, "input end");
        for (long cap = 0; cap <= size; ++cap)
            expectSame(text, 0, size, cap, true, "output cap");
        // Calls that start anywhere, so that chunks fall on every alignment.
        for (long start = 0; start <= 70; ++start)
            expectSame(text, start, size, size + 8, true, "start");
    }
}
