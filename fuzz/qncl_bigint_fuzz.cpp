// BigInteger and BigDecimal from arbitrary input: text either parses or throws
// CastFailedException, and what parses prints back to the same value in its own radix and in
// another; bytes read as two's complement survive toByteArray; the two halves of the input, as
// numbers, satisfy a = q b + r with |r| < |b| and r of a's sign. The first byte picks the radix
// and the second one; the rest are the text, one unit per byte.
#include "qn/core/Exception.h"
#include "qn/math/BigDecimal.h"

#include <cstdlib>
#include <string>

using namespace qn;
using qn::math::BigDecimal;
using qn::math::BigInteger;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

void checkText(const String& text, int radix, int otherRadix) {
    BigInteger x;
    try {
        x = BigInteger(text, radix);
    } catch (const CastFailedException&) {
        return;
    }
    check(BigInteger(x.toString(radix), radix).equals(x));
    check(BigInteger(x.toString(otherRadix), otherRadix).equals(x));
}

void checkDecimal(const String& text) {
    BigDecimal x;
    try {
        x = BigDecimal(text);
    } catch (const CastFailedException&) {
        return;
    }
    check(BigDecimal(x.toString()).equals(x));
    if (x.scale() > -5000 && x.scale() < 5000)
        check(BigDecimal(x.toPlainString()).compareTo(x) == 0);
    check(x.stripTrailingZeros().compareTo(x) == 0);
}

void checkDivision(const uint8_t* data, size_t size) {
    if (size < 2)
        return;
    const size_t half = size / 2;
    const BigInteger a(reinterpret_cast<const signed char*>(data), static_cast<int32_t>(half));
    const BigInteger b(reinterpret_cast<const signed char*>(data + half),
                       static_cast<int32_t>(size - half));
    const std::vector<signed char> bytes = a.toByteArray();
    check(BigInteger(bytes.data(), static_cast<int32_t>(bytes.size())).equals(a));
    if (!b.signum())
        return;
    const auto qr = a.divideAndRemainder(b);
    check(qr.first.multiply(b).add(qr.second).equals(a));
    check(qr.second.abs().compareTo(b.abs()) < 0);
    check(qr.second.signum() == 0 || qr.second.signum() == a.signum());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const int radix = 2 + data[0] % 35;
    const int otherRadix = 2 + data[1] % 35;
    std::u16string units(data + 2, data + size);
    const String text(units.data(), static_cast<int32_t>(units.size()));
    checkText(text, radix, otherRadix);
    checkDecimal(text);
    checkDivision(data + 2, size - 2);
    return 0;
}
