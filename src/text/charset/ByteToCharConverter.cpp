#include "qn/text/charset/ByteToCharConverter.h"

#include "ConverterLookup.h"

namespace qn::text::charset {

ByteToCharConverter::~ByteToCharConverter() = default;

long ByteToCharConverter::flush(char16_t*, long*, long) {
    return 0;
}

void ByteToCharConverter::reset() {}

bool ByteToCharConverter::getSubstitutionMode() const {
    return m_substitutionMode;
}

void ByteToCharConverter::setSubstitutionMode(bool mode) {
    m_substitutionMode = mode;
}

long ByteToCharConverter::getSubstitutionChars(char16_t* buf, long size) const {
    return detail::copySubstitution(m_substitutionChars, m_substitutionLength, buf, size);
}

void ByteToCharConverter::setSubstitutionChars(const char16_t* chars, long count) {
    detail::setSubstitution(m_substitutionChars, m_substitutionLength, chars, count);
}

Reference<ByteToCharConverter> ByteToCharConverter::getConverter(const char16_t* name) {
    return detail::converterFor<ByteToCharConverter>(name);
}

Reference<ByteToCharConverter> ByteToCharConverter::getDefaultConverter() {
    return detail::defaultConverter<ByteToCharConverter>();
}

bool ByteToCharConverter::writeSubstitution(char16_t* out, long& outPos, long outEnd,
                                            bool endBeforeOutEnd) const {
    return detail::writeSubstitution(m_substitutionMode, m_substitutionChars, m_substitutionLength,
                                     out, outPos, outEnd, endBeforeOutEnd);
}

} // namespace qn::text::charset
