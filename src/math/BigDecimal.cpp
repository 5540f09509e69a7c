#include "qn/math/BigDecimal.h"

#include "math/Failure.h"
#include "qn/core/Number.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>

namespace qn::math {

using detail::fail;

namespace {

const int64_t POWERS_OF_TEN[] = {1,
                                 10,
                                 100,
                                 1000,
                                 10000,
                                 100000,
                                 1000000,
                                 10000000,
                                 100000000,
                                 1000000000,
                                 10000000000,
                                 100000000000,
                                 1000000000000,
                                 10000000000000,
                                 100000000000000,
                                 1000000000000000,
                                 10000000000000000,
                                 100000000000000000,
                                 1000000000000000000};

int32_t checkedScale(int64_t scale) {
    if (scale > INT32_MAX || scale < INT32_MIN)
        fail<MathOverflowException>(u"BigDecimal: scale out of range");
    return static_cast<int32_t>(scale);
}

BigInteger tenPow(int64_t n) {
    if (n < 19)
        return BigInteger(POWERS_OF_TEN[n]);
    if (n > INT32_MAX)
        fail<MathOverflowException>(u"BigDecimal: power of ten beyond range");
    return BigInteger(10).pow(static_cast<int32_t>(n));
}

// Decimal digits of |x|; 1 for zero.
int64_t digitCount(const BigInteger& x) {
    const BigInteger a = x.abs();
    const int32_t bits = a.bitLength();
    if (bits <= 62) {
        const int64_t v = a.int64Value();
        int64_t n = 1;
        while (n < 19 && v >= POWERS_OF_TEN[n])
            ++n;
        return n;
    }
    // 2^(bits-1) <= a < 2^bits: the count is this estimate or one more.
    const int64_t estimate = static_cast<int64_t>((bits - 1) * 0.30102999566398120) + 1;
    return a.compareTo(tenPow(estimate)) >= 0 ? estimate + 1 : estimate;
}

// Whether a truncated quotient moves one unit away from zero. sign is the exact quotient's,
// half compares the discarded part with one half unit (-1, 0, 1).
bool roundsAway(RoundingMode mode, int sign, bool odd, int half) {
    switch (mode) {
    case RoundingMode::UP:
        return true;
    case RoundingMode::DOWN:
        return false;
    case RoundingMode::CEILING:
        return sign > 0;
    case RoundingMode::FLOOR:
        return sign < 0;
    case RoundingMode::HALF_UP:
        return half >= 0;
    case RoundingMode::HALF_DOWN:
        return half > 0;
    case RoundingMode::HALF_EVEN:
        return half > 0 || (half == 0 && odd);
    case RoundingMode::UNNECESSARY:
        break;
    }
    fail<MathErrorException>(u"Rounding necessary");
}

// q (truncated, signed), with r the remainder of |numerator| / |denominator|.
BigInteger applyRounding(const BigInteger& q, const BigInteger& r, const BigInteger& denominator,
                         int sign, RoundingMode mode) {
    if (!r.signum())
        return q;
    const int half = r.abs().shiftLeft(1).compareTo(denominator.abs());
    return roundsAway(mode, sign, q.testBit(0), half) ? q.add(BigInteger(sign)) : q;
}

// numerator / denominator rounded to an integer.
BigInteger roundedQuotient(const BigInteger& numerator, const BigInteger& denominator,
                           RoundingMode mode) {
    const auto qr = numerator.divideAndRemainder(denominator);
    return applyRounding(qr.first, qr.second, denominator,
                         numerator.signum() * denominator.signum(), mode);
}

// Drops trailing zeros of u while the scale stays at or above minScale, in growing steps.
void stripZeros(BigInteger& u, int64_t& scale, int64_t minScale) {
    if (!u.signum())
        return;
    int64_t step = 1;
    while (scale > minScale) {
        step = std::min(step, scale - minScale);
        const auto qr = u.divideAndRemainder(tenPow(step));
        if (qr.second.signum()) {
            if (step == 1)
                return;
            step /= 2;
            continue;
        }
        u = qr.first;
        scale -= step;
        step *= 2;
    }
}

// u at scale rounded to precision digits (0: as it is).
BigDecimal roundTo(BigInteger u, int64_t scale, const MathContext& mc) {
    const int64_t digits = digitCount(u);
    if (mc.precision > 0 && digits > mc.precision) {
        const int64_t drop = digits - mc.precision;
        u = roundedQuotient(u, tenPow(drop), mc.roundingMode);
        scale -= drop;
        // Rounding up to a power of ten gains a digit, a zero that goes.
        if (digitCount(u) > mc.precision) {
            u = u.divide(BigInteger(10));
            --scale;
        }
    }
    return BigDecimal(u, checkedScale(scale));
}

[[noreturn]] void throwMalformed(const char16_t* text, int32_t length) {
    String message(u"BigDecimal: not a number: \"");
    const int32_t shown = std::min(length, int32_t{40});
    message.append(text, shown);
    message.append(shown < length ? u"...\"" : u"\"");
    throw CastFailedException(message);
}

void parse(const char16_t* text, int32_t length, BigInteger& unscaled, int32_t& scale) {
    std::u16string digits;
    int32_t i = 0;
    if (i < length && (text[i] == u'-' || text[i] == u'+')) {
        if (text[i] == u'-')
            digits += u'-';
        ++i;
    }
    int64_t fraction = 0;
    bool point = false, any = false;
    for (; i < length; ++i) {
        const char16_t c = text[i];
        if (c >= u'0' && c <= u'9') {
            digits += c;
            any = true;
            fraction += point ? 1 : 0;
        } else if (c == u'.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (!any)
        throwMalformed(text, length);
    int64_t exponent = 0;
    if (i < length && (text[i] == u'e' || text[i] == u'E')) {
        ++i;
        bool negative = false;
        if (i < length && (text[i] == u'-' || text[i] == u'+'))
            negative = text[i++] == u'-';
        if (i >= length)
            throwMalformed(text, length);
        for (; i < length; ++i) {
            if (text[i] < u'0' || text[i] > u'9')
                throwMalformed(text, length);
            exponent = std::min<int64_t>(exponent * 10 + (text[i] - u'0'), INT64_C(1) << 40);
        }
        exponent = negative ? -exponent : exponent;
    }
    if (i != length)
        throwMalformed(text, length);
    const int64_t s = fraction - exponent;
    if (s > INT32_MAX || s < INT32_MIN) {
        String message(u"BigDecimal: scale out of range: ");
        throw CastFailedException(message.append(text, std::min(length, int32_t{40})));
    }
    unscaled = BigInteger(String(digits.data(), static_cast<int32_t>(digits.size())));
    scale = static_cast<int32_t>(s);
}

// The digits of |u|.
std::u16string magnitudeDigits(const BigInteger& u) {
    const String text = u.abs().toString();
    return std::u16string(text.getData(), static_cast<size_t>(text.getLength()));
}

// digits with a point before the last scale of them (scale > 0), zero-padded in front.
std::u16string withPoint(std::u16string digits, int64_t scale) {
    const auto s = static_cast<size_t>(scale);
    if (digits.size() <= s)
        digits.insert(0, s - digits.size() + 1, u'0');
    digits.insert(digits.size() - s, 1, u'.');
    return digits;
}

String toText(int signum, const std::u16string& body) {
    std::u16string text = signum < 0 ? u"-" + body : body;
    return String(text.data(), static_cast<int32_t>(text.size()));
}

} // namespace

MathContext::MathContext(int32_t digits, RoundingMode mode)
    : precision(digits), roundingMode(mode) {
    if (digits < 0)
        fail<MathInvalidOpException>(u"MathContext: negative precision");
}

BigDecimal::BigDecimal(const BigInteger& unscaled, int32_t scale)
    : m_unscaled(unscaled), m_scale(scale) {}

BigDecimal::BigDecimal(double value) : m_scale(0) {
    if (!std::isfinite(value))
        fail<MathInvalidOpException>(u"BigDecimal: NaN or infinity has no decimal value");
    if (value == 0)
        return;
    int exponent;
    const double fraction = std::frexp(std::fabs(value), &exponent);
    auto mantissa = static_cast<long long>(std::ldexp(fraction, 53));
    exponent -= 53;
    while (!(mantissa & 1) && exponent < 0) {
        mantissa >>= 1;
        ++exponent;
    }
    // m 2^e = m 5^-e / 10^-e for e < 0.
    BigInteger u = exponent >= 0 ? BigInteger(mantissa).shiftLeft(exponent)
                                 : BigInteger(mantissa).multiply(BigInteger(5).pow(-exponent));
    m_unscaled = value < 0 ? u.negate() : u;
    m_scale = exponent >= 0 ? 0 : -exponent;
}

BigDecimal::BigDecimal(const String& text) : m_scale(0) {
    parse(text.getData(), text.getLength(), m_unscaled, m_scale);
}

BigDecimal::BigDecimal(const char16_t* text) : m_scale(0) {
    int32_t length = 0;
    while (text && text[length])
        ++length;
    parse(text ? text : u"", length, m_unscaled, m_scale);
}

BigDecimal::BigDecimal(const BigDecimal& other) noexcept
    : CopyObject(other), m_unscaled(other.m_unscaled), m_scale(other.m_scale) {}

BigDecimal& BigDecimal::operator=(const BigDecimal& other) noexcept {
    m_unscaled = other.m_unscaled;
    m_scale = other.m_scale;
    return *this;
}

BigDecimal::BigDecimal(BigDecimal&& other) noexcept
    : CopyObject(other), m_unscaled(std::move(other.m_unscaled)), m_scale(other.m_scale) {}

BigDecimal& BigDecimal::operator=(BigDecimal&& other) noexcept {
    m_unscaled = std::move(other.m_unscaled);
    m_scale = other.m_scale;
    return *this;
}

BigDecimal::~BigDecimal() = default;

BigDecimal BigDecimal::valueOf(double value) {
    if (!std::isfinite(value))
        fail<MathInvalidOpException>(u"BigDecimal: NaN or infinity has no decimal value");
    return BigDecimal(Double(value).toString());
}

Reference<BigDecimal> BigDecimal::create(const BigDecimal& value) {
    return Reference<BigDecimal>(new BigDecimal(value));
}

BigDecimal BigDecimal::add(const BigDecimal& other) const {
    if (m_scale == other.m_scale)
        return BigDecimal(m_unscaled.add(other.m_unscaled), m_scale);
    const BigDecimal& low = m_scale < other.m_scale ? *this : other;
    const BigDecimal& high = m_scale < other.m_scale ? other : *this;
    const int64_t diff = int64_t{high.m_scale} - low.m_scale;
    return BigDecimal(low.m_unscaled.multiply(tenPow(diff)).add(high.m_unscaled), high.m_scale);
}

BigDecimal BigDecimal::add(const BigDecimal& other, const MathContext& mc) const {
    if (mc.precision == 0 || !signum() || !other.signum())
        return add(other).round(mc);
    // An operand entirely below the rounding position of the other only decides which way the
    // sum rounds: a single digit further down does the same, without aligning huge scales.
    const BigDecimal* big = this;
    const BigDecimal* small = &other;
    const int64_t thisHigh = int64_t{m_scale} - digitCount(m_unscaled);
    const int64_t otherHigh = int64_t{other.m_scale} - digitCount(other.m_unscaled);
    if (otherHigh < thisHigh)
        std::swap(big, small);
    const int64_t smallHigh = std::max(thisHigh, otherHigh) + 1;
    const int64_t resultLow = int64_t{big->m_scale} - digitCount(big->m_unscaled) + mc.precision;
    if (smallHigh > int64_t{big->m_scale} + 2 && smallHigh > resultLow + 2) {
        const int64_t scale = std::max(int64_t{big->m_scale}, resultLow) + 3;
        if (scale <= INT32_MAX) {
            const BigDecimal tiny(BigInteger(small->signum()), static_cast<int32_t>(scale));
            return big->add(tiny).round(mc);
        }
    }
    return add(other).round(mc);
}

BigDecimal BigDecimal::subtract(const BigDecimal& other) const {
    return add(other.negate());
}

BigDecimal BigDecimal::subtract(const BigDecimal& other, const MathContext& mc) const {
    return add(other.negate(), mc);
}

BigDecimal BigDecimal::multiply(const BigDecimal& other) const {
    return BigDecimal(m_unscaled.multiply(other.m_unscaled),
                      checkedScale(int64_t{m_scale} + other.m_scale));
}

BigDecimal BigDecimal::multiply(const BigDecimal& other, const MathContext& mc) const {
    return roundTo(m_unscaled.multiply(other.m_unscaled), int64_t{m_scale} + other.m_scale, mc);
}

BigDecimal BigDecimal::divide(const BigDecimal& divisor) const {
    if (!divisor.signum())
        fail<MathDivByZeroException>(u"BigDecimal: division by zero");
    const int64_t preferred = int64_t{m_scale} - divisor.m_scale;
    if (!signum())
        return BigDecimal(BigInteger(), checkedScale(preferred));
    // The quotient terminates when the reduced divisor has no prime factors but 2 and 5.
    const BigInteger g = m_unscaled.gcd(divisor.m_unscaled);
    BigInteger denominator = divisor.m_unscaled.abs().divide(g);
    const int32_t twos = denominator.getLowestSetBit();
    denominator = denominator.shiftRight(twos);
    int32_t fives = 0;
    const BigInteger five(5);
    for (;;) {
        const auto qr = denominator.divideAndRemainder(five);
        if (qr.second.signum())
            break;
        denominator = qr.first;
        ++fives;
    }
    if (!denominator.equals(BigInteger(1)))
        fail<MathErrorException>(
            u"Non-terminating decimal expansion; no exact representable decimal result.");
    // n / (2^t 5^f) = n 2^(m-t) 5^(m-f) / 10^m with m = max(t, f).
    const int32_t m = std::max(twos, fives);
    BigInteger u = m_unscaled.divide(g).multiply(five.pow(m - fives)).shiftLeft(m - twos);
    if (divisor.signum() < 0)
        u = u.negate();
    int64_t scale = preferred + m;
    stripZeros(u, scale, preferred);
    if (scale < preferred) {
        u = u.multiply(tenPow(preferred - scale));
        scale = preferred;
    }
    return BigDecimal(u, checkedScale(scale));
}

BigDecimal BigDecimal::divide(const BigDecimal& divisor, const MathContext& mc) const {
    if (mc.precision == 0)
        return divide(divisor);
    if (!divisor.signum())
        fail<MathDivByZeroException>(u"BigDecimal: division by zero");
    const int64_t preferred = int64_t{m_scale} - divisor.m_scale;
    if (!signum())
        return BigDecimal(BigInteger(), checkedScale(preferred));
    // Scale the dividend so that the quotient has precision or precision + 1 digits.
    const BigInteger a = m_unscaled.abs(), b = divisor.m_unscaled.abs();
    const int64_t k = mc.precision - digitCount(a) + digitCount(b);
    const BigInteger numerator = k >= 0 ? a.multiply(tenPow(k)) : a;
    const BigInteger denominator = k >= 0 ? b : b.multiply(tenPow(-k));
    const int sign = signum() * divisor.signum();
    auto qr = numerator.divideAndRemainder(denominator);
    int64_t scale = preferred + k;
    BigInteger q;
    bool exact;
    if (digitCount(qr.first) > mc.precision) {
        // One digit too many: it and the remainder decide the rounding.
        const auto last = qr.first.divideAndRemainder(BigInteger(10));
        const int64_t digit = last.second.int64Value();
        const bool rest = qr.second.signum() != 0;
        exact = digit == 0 && !rest;
        const int half = digit != 5 ? (digit > 5 ? 1 : -1) : rest ? 1 : 0;
        q = last.first;
        if (!exact && roundsAway(mc.roundingMode, sign, q.testBit(0), half))
            q = q.add(BigInteger(1));
        --scale;
    } else {
        exact = !qr.second.signum();
        q = qr.first;
        const int half = qr.second.shiftLeft(1).compareTo(denominator);
        if (!exact && roundsAway(mc.roundingMode, sign, q.testBit(0), half))
            q = q.add(BigInteger(1));
    }
    if (digitCount(q) > mc.precision) {
        q = q.divide(BigInteger(10));
        --scale;
    }
    if (exact)
        stripZeros(q, scale, preferred);
    return BigDecimal(sign < 0 ? q.negate() : q, checkedScale(scale));
}

BigDecimal BigDecimal::divide(const BigDecimal& divisor, int32_t scale, RoundingMode mode) const {
    if (!divisor.signum())
        fail<MathDivByZeroException>(u"BigDecimal: division by zero");
    // this / divisor at scale: u 10^(scale - this scale + divisor scale) / v.
    const int64_t shift = int64_t{scale} - m_scale + divisor.m_scale;
    const BigInteger numerator = shift >= 0 ? m_unscaled.multiply(tenPow(shift)) : m_unscaled;
    const BigInteger denominator =
        shift >= 0 ? divisor.m_unscaled : divisor.m_unscaled.multiply(tenPow(-shift));
    return BigDecimal(roundedQuotient(numerator, denominator, mode), scale);
}

BigDecimal BigDecimal::divide(const BigDecimal& divisor, RoundingMode mode) const {
    return divide(divisor, m_scale, mode);
}

BigDecimal BigDecimal::divideToIntegralValue(const BigDecimal& divisor) const {
    const int64_t preferred = int64_t{m_scale} - divisor.m_scale;
    BigInteger q = divide(divisor, 0, RoundingMode::DOWN).m_unscaled;
    int64_t scale = 0;
    if (preferred > 0) {
        q = q.multiply(tenPow(preferred));
        scale = preferred;
    } else {
        stripZeros(q, scale, preferred);
    }
    return BigDecimal(q, checkedScale(scale));
}

BigDecimal BigDecimal::remainder(const BigDecimal& divisor) const {
    return divideAndRemainder(divisor).second;
}

std::pair<BigDecimal, BigDecimal> BigDecimal::divideAndRemainder(const BigDecimal& divisor) const {
    BigDecimal q = divideToIntegralValue(divisor);
    BigDecimal r = subtract(q.multiply(divisor));
    return {std::move(q), std::move(r)};
}

BigDecimal BigDecimal::pow(int32_t n) const {
    if (n < 0 || n > 999999999)
        fail<MathInvalidOpException>(u"BigDecimal: exponent out of range 0 to 999999999");
    return BigDecimal(m_unscaled.pow(n), checkedScale(int64_t{m_scale} * n));
}

BigDecimal BigDecimal::pow(int32_t n, const MathContext& mc) const {
    if (mc.precision == 0)
        return pow(n);
    if (n < -999999999 || n > 999999999)
        fail<MathInvalidOpException>(u"BigDecimal: exponent out of range -999999999 to 999999999");
    if (n == 0)
        return BigDecimal(1);
    // Square and multiply at a few more digits than asked for, then round once more.
    int32_t magnitude = n < 0 ? -n : n;
    const int32_t extra = static_cast<int32_t>(digitCount(BigInteger(magnitude))) + 1;
    const MathContext work(mc.precision + extra, RoundingMode::HALF_UP);
    BigDecimal result(1), base = *this;
    for (;;) {
        if (magnitude & 1)
            result = result.multiply(base, work);
        magnitude >>= 1;
        if (!magnitude)
            break;
        base = base.multiply(base, work);
    }
    if (n < 0)
        result = BigDecimal(1).divide(result, work);
    return result.round(mc);
}

BigDecimal BigDecimal::abs() const {
    return signum() < 0 ? negate() : *this;
}

BigDecimal BigDecimal::negate() const {
    return BigDecimal(m_unscaled.negate(), m_scale);
}

BigDecimal BigDecimal::round(const MathContext& mc) const {
    return roundTo(m_unscaled, m_scale, mc);
}

BigDecimal BigDecimal::setScale(int32_t scale, RoundingMode mode) const {
    if (scale == m_scale)
        return *this;
    if (scale > m_scale)
        return BigDecimal(m_unscaled.multiply(tenPow(int64_t{scale} - m_scale)), scale);
    return BigDecimal(roundedQuotient(m_unscaled, tenPow(int64_t{m_scale} - scale), mode), scale);
}

BigDecimal BigDecimal::movePointLeft(int32_t n) const {
    const BigDecimal moved(m_unscaled, checkedScale(int64_t{m_scale} + n));
    return moved.m_scale < 0 ? moved.setScale(0) : moved;
}

BigDecimal BigDecimal::movePointRight(int32_t n) const {
    const BigDecimal moved(m_unscaled, checkedScale(int64_t{m_scale} - n));
    return moved.m_scale < 0 ? moved.setScale(0) : moved;
}

BigDecimal BigDecimal::scaleByPowerOfTen(int32_t n) const {
    return BigDecimal(m_unscaled, checkedScale(int64_t{m_scale} - n));
}

BigDecimal BigDecimal::stripTrailingZeros() const {
    if (!signum())
        return BigDecimal();
    BigInteger u = m_unscaled;
    int64_t scale = m_scale;
    stripZeros(u, scale, INT32_MIN);
    return BigDecimal(u, checkedScale(scale));
}

BigDecimal BigDecimal::min(const BigDecimal& other) const {
    return compareTo(other) <= 0 ? *this : other;
}

BigDecimal BigDecimal::max(const BigDecimal& other) const {
    return compareTo(other) >= 0 ? *this : other;
}

BigDecimal BigDecimal::ulp() const {
    return BigDecimal(BigInteger(1), m_scale);
}

int32_t BigDecimal::precision() const {
    return static_cast<int32_t>(digitCount(m_unscaled));
}

BigInteger BigDecimal::toBigInteger() const {
    if (m_scale <= 0)
        return m_unscaled.multiply(tenPow(-int64_t{m_scale}));
    return m_unscaled.divide(tenPow(m_scale));
}

BigInteger BigDecimal::toBigIntegerExact() const {
    return setScale(0, RoundingMode::UNNECESSARY).m_unscaled;
}

int64_t BigDecimal::int64ValueExact() const {
    return toBigIntegerExact().int64ValueExact();
}

double BigDecimal::doubleValue() const {
    if (!signum())
        return 0.0;
    const int64_t adjusted = digitCount(m_unscaled) - 1 - m_scale;
    if (adjusted > 310)
        return signum() * HUGE_VAL;
    if (adjusted < -400)
        return signum() * 0.0;
    if (m_scale <= 0)
        return m_unscaled.multiply(tenPow(-int64_t{m_scale})).doubleValue();
    // u / 10^s with at least 64 significant bits in the quotient and a sticky bit for the
    // remainder: the conversion then rounds once, as the exact quotient would.
    const BigInteger denominator = tenPow(m_scale);
    const int32_t shift = std::max(0, 66 + denominator.bitLength() - m_unscaled.abs().bitLength());
    const auto qr = m_unscaled.abs().shiftLeft(shift).divideAndRemainder(denominator);
    BigInteger q = qr.first;
    if (qr.second.signum())
        q = q.setBit(0);
    return signum() * std::ldexp(q.doubleValue(), -shift);
}

String BigDecimal::toPlainString() const {
    if (m_scale == 0)
        return m_unscaled.toString();
    if (m_scale < 0) {
        if (!signum())
            return String(u"0");
        std::u16string digits = magnitudeDigits(m_unscaled);
        digits.append(static_cast<size_t>(-int64_t{m_scale}), u'0');
        return toText(signum(), digits);
    }
    return toText(signum(), withPoint(magnitudeDigits(m_unscaled), m_scale));
}

String BigDecimal::toString() const {
    const std::u16string digits = magnitudeDigits(m_unscaled);
    const int64_t adjusted = static_cast<int64_t>(digits.size()) - 1 - m_scale;
    if (m_scale >= 0 && adjusted >= -6)
        return m_scale == 0 ? toText(signum(), digits)
                            : toText(signum(), withPoint(digits, m_scale));
    std::u16string text = digits.substr(0, 1);
    if (digits.size() > 1)
        text += u'.' + digits.substr(1);
    text += adjusted >= 0 ? u"E+" : u"E-";
    const std::string exponent = std::to_string(adjusted >= 0 ? adjusted : -adjusted);
    text.append(exponent.begin(), exponent.end());
    return toText(signum(), text);
}

Reference<Object> BigDecimal::clone() const {
    return Reference<Object>(new BigDecimal(*this));
}

int32_t BigDecimal::compareTo(const Object& other) const {
    const auto* that = dynamic_cast<const BigDecimal*>(&other);
    if (!that)
        throw CastFailedException(String(u"compareTo needs another BigDecimal"));
    return compareTo(*that);
}

int32_t BigDecimal::compareTo(const BigDecimal& other) const {
    const int a = signum(), b = other.signum();
    if (a != b)
        return a > b ? 1 : -1;
    if (!a)
        return 0;
    // The position of the leading digit decides unless it is the same.
    const int64_t thisTop = digitCount(m_unscaled) - m_scale;
    const int64_t otherTop = digitCount(other.m_unscaled) - other.m_scale;
    if (thisTop != otherTop)
        return (thisTop > otherTop ? 1 : -1) * a;
    if (m_scale == other.m_scale)
        return m_unscaled.compareTo(other.m_unscaled);
    if (m_scale < other.m_scale)
        return m_unscaled.multiply(tenPow(int64_t{other.m_scale} - m_scale))
            .compareTo(other.m_unscaled);
    return m_unscaled.compareTo(
        other.m_unscaled.multiply(tenPow(int64_t{m_scale} - other.m_scale)));
}

bool BigDecimal::equals(const Object& other) const {
    const auto* that = dynamic_cast<const BigDecimal*>(&other);
    return that && equals(*that);
}

uint32_t BigDecimal::hashCode() const {
    return 31 * m_unscaled.hashCode() + static_cast<uint32_t>(m_scale);
}

} // namespace qn::math
