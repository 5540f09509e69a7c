#include "qn/text/charset/CharToByteConverter.h"

#include "ConverterLookup.h"

namespace qn::text::charset {

CharToByteConverter::~CharToByteConverter() = default;

long CharToByteConverter::flush(signed char*, long*, long) {
    return 0;
}

void CharToByteConverter::reset() {}

bool CharToByteConverter::getSubstitutionMode() const {
    return m_substitutionMode;
}

void CharToByteConverter::setSubstitutionMode(bool mode) {
    m_substitutionMode = mode;
}

long CharToByteConverter::getSubstitutionBytes(signed char* buf, long size) const {
    return detail::copySubstitution(m_substitutionBytes, m_substitutionLength, buf, size);
}

void CharToByteConverter::setSubstitutionBytes(const signed char* bytes, long count) {
    detail::setSubstitution(m_substitutionBytes, m_substitutionLength, bytes, count);
}

Reference<CharToByteConverter> CharToByteConverter::getConverter(const char16_t* name) {
    return detail::converterFor<CharToByteConverter>(name);
}

Reference<CharToByteConverter> CharToByteConverter::getDefaultConverter() {
    return detail::defaultConverter<CharToByteConverter>();
}

bool CharToByteConverter::writeSubstitution(signed char* out, long& outPos, long outEnd,
                                            bool endBeforeOutEnd) const {
    return detail::writeSubstitution(m_substitutionMode, m_substitutionBytes, m_substitutionLength,
                                     out, outPos, outEnd, endBeforeOutEnd);
}

} // namespace qn::text::charset
