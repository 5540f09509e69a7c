// Whole-text conversions between the 8-bit strings and String, through the codec manager's
// converters. Internal to the library.
#pragma once

#include "qn/core/StrBuf1.h"

namespace qn::text::charset {
class ByteToCharConverter;
class CharToByteConverter;
} // namespace qn::text::charset

namespace qn::str1 {

// The converters for an encoding name; the empty name gives the process default.
// UnknownEncodingException when no converter has the name.
Reference<text::charset::ByteToCharConverter> decoderFor(const String& encoding);
Reference<text::charset::CharToByteConverter> encoderFor(const String& encoding);

// All of text decoded by its encoding's decoder: an incomplete sequence at the end becomes one
// U+FFFD. The decoder's exceptions pass through.
String decode(const Str1& text);
// Appends text encoded by encoder to out, flushing the encoder at the end. A high surrogate that
// the encoder leaves unconsumed at the end throws InvalidCharacterException "leading surrogate
// without trailing"; the encoder's own exceptions pass through with their positions.
void encode(text::charset::CharToByteConverter& encoder, const char16_t* text, int32_t length,
            StrBuf1& out);

} // namespace qn::str1
