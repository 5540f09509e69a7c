// What the two converter bases share: finding a converter through the codec manager, the
// default converter, and the substitution settings' checks.
#pragma once

#include "qn/core/Class.h"
#include "qn/core/Exception.h"
#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"
#include "qn/text/charset/CodecManager.h"

#include <algorithm>
#include <type_traits>

namespace qn::text::charset::detail {

template <class Converter>
constexpr bool isDecoder = std::is_same_v<Converter, ByteToCharConverter>;

template <class Converter> Reference<Converter> fromManager(const char16_t* name) {
    const CodecManager* manager = CodecManager::getInstance();
    Reference<Object> made =
        isDecoder<Converter> ? manager->getDecoder(name) : manager->getEncoder(name);
    return Reference<Converter>(dynamic_cast<Converter*>(made.get()));
}

template <class Converter> Reference<Converter> converterFor(const char16_t* name) {
    if (!name)
        return Converter::getDefaultConverter();
    Reference<Converter> converter = fromManager<Converter>(name);
    if (!converter)
        throw UnknownEncodingException(String(name));
    return converter;
}

// The default encoding's converter; ASCII when there is none. Should the ASCII converters be
// missing from the class registry, UTF-8 stands in, so that a converter always comes back.
template <class Converter> Reference<Converter> defaultConverter() {
    QNWCHAR name[40] = {};
    if (QNGetDefaultCharEncoding(name, 40) >= 0 && name[0] != 0) {
        try {
            return Converter::getConverter(reinterpret_cast<const char16_t*>(name));
        } catch (const Exception&) {
        }
    }
    Reference<Converter> ascii = fromManager<Converter>(u"ASCII");
    return ascii ? ascii : fromManager<Converter>(u"UTF-8");
}

template <class Unit>
long copySubstitution(const Unit* units, int32_t length, Unit* buf, long size) {
    if (!buf)
        return length;
    const long count = std::max(0L, std::min(size, static_cast<long>(length)));
    std::copy(units, units + count, buf);
    return count;
}

template <class Unit, long Room>
void setSubstitution(Unit (&units)[Room], int32_t& length, const Unit* from, long count) {
    if (count < 0 || count > Room || (count > 0 && !from))
        throw RangeErrorException();
    std::copy(from, from + count, units);
    length = static_cast<int32_t>(count);
}

// Substitution in a converter's convert; see writeSubstitution in the converter headers.
template <class Unit>
bool writeSubstitution(bool mode, const Unit* units, int32_t length, Unit* out, long& outPos,
                       long outEnd, bool endBeforeOutEnd) {
    if (!mode)
        throw UnmappableCharacterException();
    const long end = outPos + length;
    if (end > outEnd || (endBeforeOutEnd && end == outEnd))
        return false;
    std::copy(units, units + length, out + outPos);
    outPos = end;
    return true;
}

} // namespace qn::text::charset::detail
