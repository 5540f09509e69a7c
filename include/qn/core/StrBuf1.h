// StrBuf1: an owned, growable 8-bit string in a named encoding. It is a Str1 (every reading,
// comparing and searching operation of the view applies) that holds its bytes in a block of its
// own, changes them in place, maps their case through their encoding, and converts to and from
// String through the codec manager's converters.
#pragma once

#include "qn/core/Str1.h"

namespace qn {

// Design:
// - The bytes are always followed by a zero byte, so getData is a C string (which may hold
//   zero bytes of its own before the end).
// - The block grows geometrically (at least doubling), so appending byte by byte is amortised
//   constant; reserve asks for room in advance. StrBuf1N<N> starts with N bytes inside the
//   object and allocates only when the text outgrows them.
// - Copying copies the bytes and the encoding name; moving takes the block over when it is on the
//   heap. Assigning or appending a view of the buffer's own bytes is safe.
// - Changing operations return the buffer, so calls chain; indices are clamped as for Str1.
// - Case mapping: ASCII letters map directly. Other bytes map as the characters they encode:
//   for "ISO8859_1" (and its aliases) the byte is the code point; for any other encoding the
//   text is decoded, mapped with the core module's simple case mapping, and encoded again, and a
//   character whose other case the encoding cannot represent keeps its case. So "stra\xDFe"
//   stays as it is (no one-to-many mappings), and in ISO8859_1 y-diaeresis keeps its lower
//   case. Text that does not decode and encode back to the same bytes is left alone, and so is
//   everything but ASCII letters when no converter knows the encoding.
// - A failed allocation throws std::bad_alloc and leaves the buffer unchanged.
class QNCL_API StrBuf1 : public Str1 {
public:
    // Empty, in the default encoding, with no block.
    StrBuf1() noexcept;
    // A copy of text's bytes, in its encoding.
    explicit StrBuf1(const Str1& text);
    StrBuf1(const char* text, int32_t length = -1, const String& encoding = String());
    // text encoded in encoding (empty: the default) through the codec manager's encoder, with
    // its substitution byte for what the encoding cannot represent. UnknownEncodingException
    // when no converter has the name.
    StrBuf1(const String& text, const String& encoding);
    StrBuf1(const StrBuf1& other);
    StrBuf1(StrBuf1&& other);
    StrBuf1& operator=(const StrBuf1& other);
    StrBuf1& operator=(StrBuf1&& other);
    StrBuf1& operator=(const Str1& text) { return setTo(text); }
    ~StrBuf1();

    // The bytes that fit without a new block (the terminating zero not counted).
    int32_t getCapacity() const noexcept { return m_capacity; }
    void reserve(int32_t capacity);
    // The bytes, for changing in place: up to getCapacity() of them may be written, then
    // setLength says how many are text. Valid until the next change of size.
    char* getBuffer() noexcept { return m_block; }
    // RangeErrorException outside 0 to the capacity; writes the terminator.
    StrBuf1& setLength(int32_t length);

    // Takes text's bytes and its encoding.
    StrBuf1& setTo(const Str1& text);
    // Keeps the encoding.
    StrBuf1& setTo(const char* text, int32_t length = -1);
    // Replaces the bytes by text encoded in this buffer's encoding (see the constructor).
    StrBuf1& setTo(const String& text);
    // Narrows each unit to one byte (units above U+00FF become '?') and labels the bytes
    // "ISO8859_1". It needs no converter, so it serves the codec manager's own keys.
    StrBuf1& setLatin1(const char16_t* text, int32_t length = -1);
    // Relabels the bytes; nothing is converted.
    StrBuf1& setEncoding(const String& encoding);

    StrBuf1& append(const Str1& text);
    StrBuf1& append(const char* text, int32_t length = -1);
    StrBuf1& append(char c, int32_t count = 1);
    StrBuf1& insert(int32_t position, const Str1& text);
    StrBuf1& remove(int32_t start, int32_t count = -1);
    StrBuf1& replace(int32_t start, int32_t count, const Str1& text);
    // Keeps the block.
    StrBuf1& clear() noexcept;
    // Cuts to length, or pads with fill up to it.
    StrBuf1& resize(int32_t length, char fill = '\0');
    // RangeErrorException outside 0 to length - 1.
    StrBuf1& setCharAt(int32_t index, char c);
    StrBuf1& toUpper();
    StrBuf1& toLower();

    StrBuf1& operator+=(const Str1& text) { return append(text); }
    StrBuf1& operator+=(char c) { return append(c); }

protected:
    // Starts empty in a block that the derived object holds inside itself.
    StrBuf1(char* inlineBlock, int32_t inlineCapacity) noexcept;

private:
    bool isInline() const noexcept { return m_block == m_inline; }
    // Makes room for capacity bytes and the terminator, keeping the content.
    void grow(int32_t capacity);
    // Replaces [start, start + removed) by length bytes of text (which may lie in this buffer).
    StrBuf1& splice(int32_t start, int32_t removed, const char* text, int32_t length);
    void storeLength(int32_t length) noexcept;
    StrBuf1& mapCase(bool upper);
    // Frees a heap block.
    void release() noexcept;

    char* m_block;
    int32_t m_capacity;
    // The derived object's own block and its size, or null and 0.
    char* m_inline;
    int32_t m_inlineCapacity;
};

} // namespace qn
