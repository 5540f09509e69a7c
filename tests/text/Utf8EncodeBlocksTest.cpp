// The UTF-8 encoder's block paths (eight or sixteen units a step, whatever their mix) against a
// unit-at-a-time reference written here: every class of unit at every lane, surrogate faults at
// every offset of a block, and the output running out at every byte.
#include "qn/text/charset/CTBUTF8.h"

#include "text/charset/ConverterHarness.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace qn;
using namespace qn::text::charset;
using charset_test::Bytes;
using charset_test::raw;
using charset_test::Units;

namespace {

// What encoding in[0 ..) into room bytes gives: the bytes, where the input stops, and whether it
// stops at a high surrogate followed by anything but a low one (which throws).
struct Expected {
    Bytes out;
    long inPos = 0;
    bool fault = false;
};

Expected reference(const Units& in, long room = 1L << 30) {
    Expected e;
    const long size = static_cast<long>(in.size());
    while (e.inPos < size) {
        uint32_t value = in[static_cast<size_t>(e.inPos)];
        long units = 1;
        if (value - 0xD800u < 0x400u) {
            if (e.inPos + 1 == size)
                return ++e.inPos, e; // pending
            const uint32_t low = in[static_cast<size_t>(e.inPos + 1)];
            if (low - 0xDC00u >= 0x400u) {
                e.inPos++; // the high one is consumed, the exception names the next unit
                e.fault = true;
                return e;
            }
            value = 0x10000u + ((value - 0xD800u) << 10) + (low - 0xDC00u);
            units = 2;
        }
        const long length = value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
        if (static_cast<long>(e.out.size()) + length > room) {
            e.inPos += units - 1; // a pair that does not fit loses its high surrogate
            return e;
        }
        static const uint8_t LEAD[5] = {0, 0x00, 0xC0, 0xE0, 0xF0};
        e.out.push_back(static_cast<unsigned char>(LEAD[length] | (value >> (6 * (length - 1)))));
        for (long k = length - 2; k >= 0; --k)
            e.out.push_back(static_cast<unsigned char>(0x80u | ((value >> (6 * k)) & 0x3Fu)));
        e.inPos += units;
    }
    return e;
}

// One call of a fresh encoder with room bytes of output (plus a guard that must stay untouched).
void expectOneCall(const Units& in, long room, const char* what) {
    const Expected e = reference(in, room);
    CTBUTF8 encoder;
    Bytes out(static_cast<size_t>(room) + 16, 0x5A);
    long inPos = 0, outPos = 0;
    bool fault = false;
    try {
        encoder.convert(raw(in), &inPos, static_cast<long>(in.size()), raw(out), &outPos, room);
    } catch (const InvalidCharacterException&) {
        fault = true;
    }
    ASSERT_EQ(fault, e.fault) << what << " room " << room;
    ASSERT_EQ(inPos, e.inPos) << what << " room " << room;
    ASSERT_EQ(Bytes(out.begin(), out.begin() + outPos), e.out) << what << " room " << room;
    for (size_t k = static_cast<size_t>(room); k < out.size(); ++k)
        ASSERT_EQ(out[k], 0x5A) << what << " room " << room;
}

} // namespace

// A lone low surrogate (encoded alone), a high one followed by a non-surrogate or by another
// high one (an exception, positions after the high one), and a high one ending the input
// (pending) at every offset of the blocks around it; the output running out at every byte.
TEST(Utf8EncodeBlocks, FaultsAndFullOutputAtEveryOffset) {
    const Units backgrounds[] = {
        u"Gr\u00FC\u00DFe aus K\u00F6ln und Z\u00FCrich; caf\u00E9 cr\u00E8me br\u00FBl\u00E9e",
        u"\u6211\u80FD\u541E\u4E0B\u73BB\u7483\u800C\u4E0D\u4F24\u8EAB\u4F53\u3002 \u4E1C\u4EAC"
        u"\u90FD\u4E2D\u6587\u6587\u672C\uFF0C\u6027\u80FD",
        u"\U0001F600\U0001F603\U0001F604 \U0001F680 ok \U0001F44D\U0001F3FD \u2764\uFE0F "
        u"\U0001F30D. \U0001F389\U0001F38A",
        u"\u041F\u0440\u0438\u0432\u0435\u0442, \u043C\u0438\u0440! abcdefghijklmnopqrstuvwxyz"
        u"ABCDEFGHIJKLMNOPQRSTUVWXYZ \u201CCr\u00E8me\u201D \u20AC14.50 \u2014 ok"};
    const Units faults[] = {Units(1, char16_t(0xDC00)), Units(1, char16_t(0xDFFF)),
                            u"\xD83D"
                            u"x",
                            u"\xDBFF\xD800\xDC00", u"\xD800\x4E2D"};
    for (const Units& once : backgrounds) {
        // Three times over: the sixteen-unit steps need 32 units ahead, and see every lane.
        const Units background = once + once + once;
        for (size_t at = 0; at <= background.size(); ++at) {
            for (const Units& fault : faults) {
                Units text = background;
                text.insert(at, fault);
                expectOneCall(text, 4 * static_cast<long>(text.size()), "fault");
            }
            // A high surrogate ending the input stays pending.
            expectOneCall(background.substr(0, at) + Units(1, char16_t(0xD83D)),
                          4 * static_cast<long>(at) + 4, "pending");
        }
        const long full = static_cast<long>(reference(background).out.size());
        for (long room = 0; room <= full; ++room)
            expectOneCall(background, room, "room");
    }
}
