// Number parsing: whatever the text, parse returns or throws CastFailedException or
// RangeErrorException; a narrow integer type agrees with the 64-bit one of its sign on the same
// text; what toString prints parses back to the same value. The first byte picks the radix, the
// others are one UTF-16 unit each.
#include "qn/core/Exception.h"
#include "qn/core/Number.h"

#include <cstdlib>
#include <string>

using namespace qn;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

// 0 for a parsed value, 1 for text that is no number, 2 for a value out of range.
template <class T> int tryParse(const String& text, int radix, typename T::ValueType& value) {
    try {
        value = T::parse(text, radix);
        return 0;
    } catch (const CastFailedException&) {
        return 1;
    } catch (const RangeErrorException&) {
        return 2;
    }
}

template <class T, class Wide> void checkInteger(const String& text, int radix) {
    typename T::ValueType value{};
    typename Wide::ValueType wide{};
    const int outcome = tryParse<T>(text, radix, value);
    const int wideOutcome = tryParse<Wide>(text, radix, wide);
    if (outcome == 0) {
        check(wideOutcome == 0 && wide == value);
        check(T::parse(T(value).toString()) == value);
    } else if (outcome == 1) {
        check(wideOutcome == 1);
    } else {
        using Narrow = typename T::ValueType;
        check(wideOutcome == 2 || static_cast<decltype(wide)>(static_cast<Narrow>(wide)) != wide);
    }
}

template <class T> void checkFloating(const String& text) {
    try {
        const typename T::ValueType value = T::parse(text);
        const typename T::ValueType back = T::parse(T(value).toString());
        check(T(value).equals(T(back)));
    } catch (const CastFailedException&) {
    } catch (const RangeErrorException&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    // Mostly the valid radixes, some invalid ones.
    const int radix = data[0] % 40;
    const std::u16string units(data + 1, data + size);
    const String text(units.data(), static_cast<int32_t>(units.size()));
    checkInteger<Integer8, Integer64>(text, radix);
    checkInteger<Integer16, Integer64>(text, radix);
    checkInteger<Integer32, Integer64>(text, radix);
    checkInteger<UInteger8, UInteger64>(text, radix);
    checkInteger<UInteger16, UInteger64>(text, radix);
    checkInteger<UInteger32, UInteger64>(text, radix);
    checkFloating<Float>(text);
    checkFloating<Double>(text);
    return 0;
}
