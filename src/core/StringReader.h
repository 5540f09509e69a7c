// String::Reader, shared by String's implementation files, and the helpers for the core
// module's result codes and wide texts. Internal to the library.
#pragma once

#include "StringUnits.h"
#include "qn/core/Exception.h"
#include "qn/core/String.h"

#include <memory>

namespace qn {

namespace units {

inline void check(QNRESULT result) {
    if (QN_FAILED(result))
        throw ResultException(result);
}

inline const char16_t* fromCore(const QNWCHAR* text) {
    return reinterpret_cast<const char16_t*>(text);
}

} // namespace units

// A string's text for reading. Buffers of a String's own making are read where they lie; a
// foreign buffer's text is copied out under its read lock, so that no lock is held while the
// reader is used, whatever the caller changes meanwhile.
class String::Reader {
public:
    explicit Reader(const String& string) {
        const uintptr_t kind = string.m_buffer & KIND_MASK;
        if (kind == BUFFER_RW) {
            data = string.rw()->m_data;
            length = string.rw()->m_length;
        } else if (kind != BUFFER_FOREIGN) {
            data = string.ro()->m_data;
            length = string.ro()->m_length;
        } else {
            copyForeign(reinterpret_cast<IQNCharBuffer*>(string.m_buffer));
        }
    }
    explicit Reader(IQNCharBuffer* buffer) { copyForeign(buffer); }

    const char16_t* data = u"";
    int32_t length = 0;

private:
    void copyForeign(IQNCharBuffer* buffer);

    std::unique_ptr<char16_t[]> m_copy;
};

inline void String::Reader::copyForeign(IQNCharBuffer* buffer) {
    const QNWCHAR* text = nullptr;
    units::check(buffer->GetReadLock(&text));
    int32_t size = 0;
    const QNRESULT result = buffer->GetLength(&size);
    if (QN_SUCCEEDED(result) && text && size > 0) {
        try {
            m_copy.reset(new char16_t[static_cast<size_t>(size)]);
        } catch (...) {
            buffer->ReleaseReadLock();
            throw;
        }
        units::copy(m_copy.get(), units::fromCore(text), size);
        data = m_copy.get();
        length = size;
    }
    buffer->ReleaseReadLock();
    units::check(result);
}

} // namespace qn
