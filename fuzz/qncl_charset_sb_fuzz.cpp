// The single-byte and AMP-7 converters, both directions. The first bytes pick the converter, its
// substitution settings, the output room and the split points; the rest is the input (bytes for
// a decoder, UTF-16 units for an encoder). Checked: the pieces together equal the one-shot
// result, failure and position included; the single-byte fast paths equal the per-unit hooks;
// an exception leaves the input position inside the input, and converting again from there
// fails the same way.
#include "text/charset/ConverterHarness.h"

#include "qn/text/charset/BTCAMP7.h"
#include "qn/text/charset/BTCASCII.h"
#include "qn/text/charset/BTCCP1252.h"
#include "qn/text/charset/BTCCP437.h"
#include "qn/text/charset/BTCISO8859_1.h"
#include "qn/text/charset/CTBAMP7.h"
#include "qn/text/charset/CTBASCII.h"
#include "qn/text/charset/CTBCP1252.h"
#include "qn/text/charset/CTBCP437.h"
#include "qn/text/charset/CTBISO8859_1.h"

#include <algorithm>
#include <cstdlib>

using namespace charset_test;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

// The per-byte and per-unit hooks of a single-byte converter under the same settings.
class HookDecoder final : public BTCSingleByte {
public:
    explicit HookDecoder(const BTCSingleByte& real) : m_real(real) {
        char16_t sub[3];
        setSubstitutionChars(sub, real.getSubstitutionChars(sub, 3));
        setSubstitutionMode(real.getSubstitutionMode());
    }
    const char16_t* getEncodingName() const override { return m_real.getEncodingName(); }
    char16_t convertByte(signed char b) const override { return m_real.convertByte(b); }

private:
    const BTCSingleByte& m_real;
};

class HookEncoder final : public CTBSingleByte {
public:
    explicit HookEncoder(const CTBSingleByte& real) : m_real(real) {
        signed char sub[7];
        setSubstitutionBytes(sub, real.getSubstitutionBytes(sub, 7));
        setSubstitutionMode(real.getSubstitutionMode());
    }
    const char16_t* getEncodingName() const override { return m_real.getEncodingName(); }
    signed char convertChar(char16_t c) const override { return m_real.convertChar(c); }

private:
    const CTBSingleByte& m_real;
};

Reference<ByteToCharConverter> decoder(int which) {
    switch (which) {
    case 0:
        return new BTCASCII;
    case 1:
        return new BTCISO8859_1;
    case 2:
        return new BTCCP437;
    case 3:
        return new BTCCP1252;
    default:
        return new BTCAMP7;
    }
}

Reference<CharToByteConverter> encoder(int which) {
    switch (which) {
    case 0:
        return new CTBASCII;
    case 1:
        return new CTBISO8859_1;
    case 2:
        return new CTBCP437;
    case 3:
        return new CTBCP1252;
    default:
        return new CTBAMP7;
    }
}

bool isHigh(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

template <class Out, class In> void checkFailure(const Outcome<Out>& outcome, const In& in) {
    check(outcome.failedAt < 0 ||
          (outcome.failedAt <= static_cast<long>(in.size()) && !outcome.failure.empty()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4)
        return 0;
    const int which = data[0] % 5;
    const bool decoding = (data[0] / 5) % 2 == 0;
    const int setting = data[1] % 4; // substitution off, or on with 1, 2 or 0 units
    // AMP-7 needs room for a whole entity (8 bytes) or substitution run and one more slot.
    const long room = std::max(1L + data[2] % 24, which == 4 ? 9L : 1L);
    std::mt19937 random(data[3]);
    data += 4;
    size -= 4;
    const bool mode = setting != 0;
    const long subLength = setting == 1 ? 1 : setting == 2 ? 2 : 0;

    if (decoding) {
        Reference<ByteToCharConverter> d = decoder(which);
        const char16_t sub[] = {u'*', u'+'};
        d->setSubstitutionMode(mode);
        d->setSubstitutionChars(sub, subLength);
        const Bytes in(data, data + size);
        const Outcome<Units> whole = decodeAll(*d, in);
        checkFailure(whole, in);
        check(decodeAll(*d, in, randomSplits(random, static_cast<long>(in.size())), room) == whole);
        if (auto* single = dynamic_cast<BTCSingleByte*>(d.get())) {
            HookDecoder hooks(*single);
            check(decodeAll(hooks, in) == whole);
        }
        if (whole.failedAt >= 0) {
            // Resuming at the failure fails there again.
            const Bytes rest(in.begin() + whole.failedAt, in.end());
            const Outcome<Units> again = decodeAll(*d, rest);
            check(again.failure == whole.failure && again.failedAt == 0);
        }
        return 0;
    }

    Reference<CharToByteConverter> e = encoder(which);
    const signed char sub[] = {'#', '%'};
    e->setSubstitutionMode(mode);
    e->setSubstitutionBytes(sub, subLength);
    Units in;
    for (size_t k = 0; k + 1 < size; k += 2)
        in.push_back(static_cast<char16_t>(data[k] | (data[k + 1] << 8)));
    const Outcome<Bytes> whole = encodeAll(*e, in);
    checkFailure(whole, in);
    e->reset();
    Outcome<Bytes> pieces =
        encodeAll(*e, in, randomSplits(random, static_cast<long>(in.size())), room);
    // A high surrogate that ended an earlier call stays behind the position.
    if (pieces.failedAt == whole.failedAt + 1 && whole.failedAt >= 0 &&
        isHigh(in[static_cast<size_t>(whole.failedAt)]))
        pieces.failedAt = whole.failedAt;
    check(pieces == whole);
    if (auto* single = dynamic_cast<CTBSingleByte*>(e.get())) {
        HookEncoder hooks(*single);
        check(encodeAll(hooks, in) == whole);
    }
    // (A failure at the very end came from flush: a high surrogate left pending.)
    if (whole.failedAt >= 0 && whole.failedAt < static_cast<long>(in.size())) {
        e->reset();
        const Units rest(in.begin() + whole.failedAt, in.end());
        const Outcome<Bytes> again = encodeAll(*e, rest);
        check(again.failure == whole.failure && again.failedAt == 0);
    }
    return 0;
}
