// The encoding name of an 8-bit string as the converters and String's encoding forms take it.
// Internal to the library.
#pragma once

#include "qn/core/String.h"

#include <string>

namespace qn::str1 {

// A zero-terminated copy of the name (a String need not be terminated), or null for the empty
// name, which stands for the process's default encoding.
class EncodingArgument {
public:
    explicit EncodingArgument(const String& encoding)
        : m_text(encoding.getData(), static_cast<size_t>(encoding.getLength())),
          m_default(encoding.isEmpty()) {}
    const char16_t* get() const noexcept { return m_default ? nullptr : m_text.c_str(); }

private:
    std::u16string m_text;
    bool m_default;
};

} // namespace qn::str1
