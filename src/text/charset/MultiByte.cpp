// The multi-byte bases: one sequence or one code point at a time through the subclass's hook.
#include "qn/text/charset/BTCMultiByte.h"
#include "qn/text/charset/CTBMultiByte.h"

#include "SingleByteKernels.h"

namespace qn::text::charset {

BTCMultiByte::~BTCMultiByte() = default;

long BTCMultiByte::convert(const signed char* in, long* inPos, long inEnd, char16_t* out,
                           long* outPos, long outEnd) {
    long i = *inPos;
    long o = *outPos;
    const long start = o;
    if (m_pendingTrailSurrogate != 0 && o < outEnd) {
        out[o++] = m_pendingTrailSurrogate;
        m_pendingTrailSurrogate = 0;
    }
    while (i < inEnd && o < outEnd && m_pendingTrailSurrogate == 0) {
        long used = inEnd - i;
        uint32_t v;
        try {
            v = convertBytes(in + i, used);
        } catch (...) {
            *inPos = i;
            *outPos = o;
            throw;
        }
        if (used == 0)
            break;
        if (v == 0xFFFD || v >= 0x110000) {
            *inPos = i;
            *outPos = o;
            if (!writeSubstitution(out, o, outEnd, false))
                break;
        } else if (v >= 0xD800 && v <= 0xDFFF) {
            *inPos = i;
            *outPos = o;
            throw InvalidCharacterException(
                String(u"Invalid byte sequence (decoded chars in surrogate range)"));
        } else if (!kernels::writeCodePoint(v, out, o, outEnd)) {
            break;
        }
        i += used;
    }
    *inPos = i;
    *outPos = o;
    return o - start;
}

long BTCMultiByte::flush(char16_t* out, long* outPos, long outEnd) {
    if (m_pendingTrailSurrogate == 0)
        return 0;
    if (outEnd - *outPos < 2)
        throw InvalidCharacterException(
            String(u"Not enough room in buffer for trailing surrogate"));
    out[(*outPos)++] = m_pendingTrailSurrogate;
    m_pendingTrailSurrogate = 0;
    return 1;
}

void BTCMultiByte::reset() {
    m_pendingTrailSurrogate = 0;
}

const char16_t* BTCMultiByte::getEncodingName() const {
    return m_encodingName.getData();
}

long BTCMultiByte::getMaxBytesPerChar() const {
    return m_maxBytesPerChar;
}

long BTCMultiByte::getMaxCharsPerByte() const {
    return m_maxCharsPerByte;
}

CTBMultiByte::~CTBMultiByte() = default;

long CTBMultiByte::convert(const char16_t* in, long* inPos, long inEnd, signed char* out,
                           long* outPos, long outEnd) {
    long i = *inPos;
    long o = *outPos;
    const long start = o;
    char16_t& pending = m_pendingHighSurrogate;
    while (i < inEnd) {
        const char16_t c = in[i];
        uint32_t codePoint = c;
        if (pending != 0) {
            if (!kernels::isLowSurrogate(c)) {
                kernels::rewindPending(i - 1, pending, inPos, outPos, o);
                throw InvalidCharacterException(String(u"leading surrogate without trailing"));
            }
            codePoint = ((static_cast<uint32_t>(pending) - 0xD800) << 10) + (c - 0xDC00) + 0x10000;
        } else if (kernels::isHighSurrogate(c)) {
            pending = c;
            ++i;
            continue;
        } else if (kernels::isLowSurrogate(c)) {
            kernels::rewindPending(i, pending, inPos, outPos, o);
            throw InvalidCharacterException(String(u"trailing surrogate without leading"));
        }
        const long room = outEnd - o;
        long written = 0;
        try {
            if (room > 0)
                written = convertChar(codePoint, out + o, room);
        } catch (...) {
            kernels::rewindPending(pending != 0 ? i - 1 : i, pending, inPos, outPos, o);
            throw;
        }
        if (written > 0) {
            o += written;
        } else if (written == 0 && room < getMaxBytesPerChar()) {
            break;
        } else {
            const long at = pending != 0 ? i - 1 : i;
            if (!getSubstitutionMode()) {
                kernels::rewindPending(at, pending, inPos, outPos, o);
                throw UnmappableCharacterException();
            }
            if (!writeSubstitution(out, o, outEnd, false))
                break;
        }
        pending = 0;
        ++i;
    }
    *inPos = i;
    *outPos = o;
    return o - start;
}

long CTBMultiByte::flush(signed char*, long*, long) {
    if (m_pendingHighSurrogate != 0)
        throw InvalidCharacterException(String(u"leading surrogate without trailing"));
    return 0;
}

void CTBMultiByte::reset() {
    m_pendingHighSurrogate = 0;
}

const char16_t* CTBMultiByte::getEncodingName() const {
    return m_encodingName.getData();
}

long CTBMultiByte::getMaxBytesPerChar() const {
    return m_maxBytesPerChar;
}

long CTBMultiByte::getMaxCharsPerByte() const {
    return m_maxCharsPerByte;
}

} // namespace qn::text::charset
