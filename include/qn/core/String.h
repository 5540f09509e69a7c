// String: the library's text, a sequence of UTF-16 code units held in a shared, counted
// character buffer. A String is a handle: a copy shares the buffer (one atomic increment), and
// the first change through a handle that is not the buffer's only holder copies the text first.
// A String is itself an Object and a character buffer, so components can take it as an
// IQNCharBuffer.
#pragma once

#include "qn/util/IQNByteBuffer.h"
#include "qn/util/ROCharBuffer.h"
#include "qn/util/RWCharBuffer.h"

#include <cstdarg>
#include <type_traits>

namespace qn {

// A static literal: text that lives as long as the program, and its length in units. A String
// made from one wraps the text without copying it.
struct STRUCT_QN_STR_LIT_INFO {
    const char16_t* text;
    int32_t length;
};

// The descriptor of a u"..." literal, measured at compile time.
#define QN_STR_LIT(literal)                                                                        \
    ::qn::STRUCT_QN_STR_LIT_INFO {                                                                 \
        literal, static_cast<int32_t>(sizeof(literal) / sizeof(char16_t) - 1)                      \
    }

// Conventions of the whole interface:
// - A (text, length) pair takes length -1 to mean "up to the terminating zero"; a null text is
//   the empty text.
// - Start indices and lengths outside the string are clamped into it: a negative start counts
//   as 0 (as the end for the backward searches), a start past the end as the end, a negative or
//   too long length as "to the end". Only getCharAt, setCharAt and operator[] refuse an index
//   outside the string, with RangeErrorException.
// - Case-insensitive matching (ignoreCase) folds every unit with the core module's simple
//   lower-case mapping (QNToLowerW) and compares the folded units ordinally, which is what the
//   case-insensitive hash uses too.
// - getData is zero-terminated, except for text wrapped with WRAP and an explicit length, or a
//   buffer that the string adopted from elsewhere, which are handed out as they are.
// - Failures of a buffer adopted from elsewhere are thrown as ResultException with its code;
//   memory exhaustion as std::bad_alloc.
// - A String object is not safe for concurrent change, but separate Strings that share one
//   buffer may be used on different threads.
// - A String handed to code that counts it (AddRef/Release through IQNCharBuffer) must live on
//   the heap: see CQNString.
class QNCL_API String : public util::AbstractCharBuffer {
public:
    // How a source is taken.
    enum AcquireMode {
        // Text is copied into a buffer of the string's own. A buffer interface is read and its
        // text copied; the caller keeps its reference.
        COPY = 0,
        // A buffer interface is taken over with the caller's reference (no AddRef). Text is
        // copied, as with COPY.
        ADOPT = 1,
        // Text is wrapped read-only without a copy: the caller keeps it alive and unchanged for
        // the string's life, and the first change copies it. A buffer interface is shared
        // with a reference of the string's own (AddRef).
        WRAP = 2,
    };
    // With a String source, ADOPT and WRAP share its buffer when the whole string is asked for
    // and no larger capacity; any other range, or COPY, copies the range.

    enum TrimType { LEADING = 1, TRAILING = 2, BOTH = 3 };

    // The shared empty buffer; allocates nothing.
    String() noexcept;
    String(const String& other) noexcept : AbstractCharBuffer(other), m_buffer(other.m_buffer) {
        retain(m_buffer);
    }
    // Leaves other empty.
    String(String&& other) noexcept;
    // Copies text; a length and a capacity not above 0 give the shared empty buffer, otherwise
    // the capacity becomes at least length + 1.
    String(const char16_t* text, int32_t length = -1, int32_t capacity = 0);
    String(AcquireMode mode, const char16_t* text, int32_t length = -1, int32_t capacity = 0);
    // count copies of c.
    explicit String(char16_t c, int32_t count = 1, int32_t capacity = 0);
    // Empty, with room for capacity units.
    explicit String(int32_t capacity);
    // Adopts buffer (ADOPT): the string takes over the caller's reference.
    explicit String(IQNCharBuffer* buffer);
    String(AcquireMode mode, IQNCharBuffer* buffer);
    String(AcquireMode mode, const String& other, int32_t start = 0, int32_t length = -1,
           int32_t capacity = 0);
    // Wraps the literal's text without copying it.
    String(const STRUCT_QN_STR_LIT_INFO& literal);
    // Decodes length bytes of 8-bit text (-1: up to its terminating zero) in the encoding named
    // (any name, alias or code page getConverter knows; null: the process's default encoding).
    // Bytes the encoding does not map become its substitution characters (U+FFFD); a sequence
    // cut off by the end of the text becomes one U+FFFD. UnknownEncodingException for an unknown
    // name; the converter's InvalidCharacterException for input it refuses.
    String(const char* bytes, int32_t length, const char16_t* encoding);
    ~String() override;

    // A new String on the heap, count 0, for code that holds it by reference count.
    static Reference<String> CQNString(const String& text);
    static Reference<String> CQNString(const char16_t* text, int32_t length = -1,
                                       int32_t capacity = 0);
    static Reference<String> CQNString(const char* bytes, int32_t length, const char16_t* encoding);

    // The run-time library's "%d", "%u", "%ld", "%lu", "%lld", "%llu" and "%g" texts; "true"
    // and "false" are static literals; a character gives the one-unit string.
    static String valueOf(int value);
    static String valueOf(unsigned int value);
    static String valueOf(long value);
    static String valueOf(unsigned long value);
    static String valueOf(long long value);
    static String valueOf(unsigned long long value);
    static String valueOf(float value);
    static String valueOf(double value);
    static String valueOf(bool value);
    static String valueOf(char16_t c);

    // Reading.
    int32_t getLength() const final {
        const uintptr_t kind = m_buffer & KIND_MASK;
        if (kind == BUFFER_RW)
            return rw()->m_length;
        return kind == BUFFER_FOREIGN ? foreignLength() : ro()->m_length;
    }
    const char16_t* getData() const final {
        const uintptr_t kind = m_buffer & KIND_MASK;
        if (kind == BUFFER_RW)
            return rw()->m_data;
        return kind == BUFFER_FOREIGN ? foreignData() : ro()->m_data;
    }
    bool isEmpty() const { return getLength() == 0; }
    // RangeErrorException outside 0 to length - 1.
    char16_t getCharAt(int32_t index) const {
        const int32_t length = getLength();
        if (index < 0 || index >= length)
            throwIndexOutOfRange();
        return getData()[index];
    }
    char16_t operator[](int32_t index) const { return getCharAt(index); }
    // getData and getReadLock that also store the length when length is not null.
    const char16_t* getDataT(int32_t* length) const;
    const char16_t* getReadLockT(int32_t* length) const;

    // The text in 8-bit bytes of the encoding named (null: the process's default encoding).
    // Characters the encoding cannot represent become its substitution bytes ("?"); a high
    // surrogate at the very end throws the encoder's InvalidCharacterException. Unknown names
    // throw UnknownEncodingException.
    class AnsiBytes;
    // Writes as many whole characters as fit in size - 1 bytes and a terminating zero (nothing
    // when size is not above 0); returns the bytes written, without the zero. With a null
    // buffer, returns the bytes the whole text needs, without the zero.
    int32_t getBytes(signed char* buffer, int32_t size, const char16_t* encoding) const;
    int32_t getBytes(char* buffer, int32_t size, const char16_t* encoding) const {
        return getBytes(reinterpret_cast<signed char*>(buffer), size, encoding);
    }
    // The whole text, zero-terminated, as a new object the caller holds.
    Reference<AnsiBytes> getBytes(const char16_t* encoding) const;
    // Replaces the content of a writable byte buffer with the whole text (a terminating zero
    // follows it in the block, outside the length); returns its length. A failure of the buffer
    // is thrown as ResultException with its code.
    int32_t getBytes(util::IQNByteBuffer* buffer, const char16_t* encoding) const;
    // The whole text, zero-terminated, valid until releaseBytesReadLock, the next
    // getBytesReadLock or the string's end; converted anew on every call.
    const char* getBytesReadLock(const char16_t* encoding, int32_t* length = nullptr) const;
    void releaseBytesReadLock() const;

    // The character-buffer role. Reads pass to the buffer. A String is always writable:
    // getWriteLock first makes the buffer this string's own (copy on write), and the write lock
    // is counted in the state word until releaseWriteLock. ensureCapacity under that lock grows
    // the locked buffer; outside it, it reserves room for later changes. releaseWriteLock
    // without a write lock throws IllegalStateException; with a length of the capacity it
    // grows the buffer by one unit for the terminating zero.
    const char16_t* getReadLock() const final;
    void releaseReadLock() const final;
    bool isWritable() const final;
    char16_t* getWriteLock() final;
    char16_t* ensureCapacity(int32_t capacity) final;
    void releaseWriteLock(int32_t length) final;
    // Shrinks a buffer that this string holds alone to its length and terminator.
    void freeExtra() final;

    // Writing in place, for code that fills one reused string again and again (a reader
    // splitting lines), without a call per piece: the block of the writable buffer this string
    // holds alone, outside any write lock, with its room in units (the terminating zero's
    // included) in capacity; null, with capacity untouched, for any other buffer. Units written
    // there replace the text's; setLengthInPlace, with a length below the capacity, then sets
    // the text's length and its terminating zero. Any other change of the string in between
    // makes the block invalid.
    char16_t* getBlockInPlace(int32_t& capacity) noexcept {
        if ((m_buffer & KIND_MASK) != BUFFER_RW || m_state != 0 || rw()->GetRefCount() != 0)
            return nullptr;
        capacity = rw()->m_capacity;
        return rw()->m_data;
    }
    void setLengthInPlace(int32_t length) noexcept {
        util::RWCharBuffer* buffer = rw();
        buffer->m_length = length;
        buffer->m_data[length] = 0;
    }

    // Comparing, ordinal by unsigned unit with a shorter prefix first: -1, 0 or 1.
    int32_t compare(const String& other, bool ignoreCase = false) const;
    int32_t compare(const char16_t* text, int32_t length, bool ignoreCase = false) const;
    bool equals(const String& other, bool ignoreCase = false) const;
    bool equals(const char16_t* text, int32_t length, bool ignoreCase = false) const;
    // This string's range (start, length) against other's (otherStart, otherLength).
    int32_t regionCompare(int32_t start, int32_t length, const String& other, int32_t otherStart,
                          int32_t otherLength, bool ignoreCase = false) const;
    bool regionMatches(int32_t start, int32_t length, const String& other, int32_t otherStart,
                       int32_t otherLength, bool ignoreCase = false) const;
    bool startsWith(const String& prefix, bool ignoreCase = false) const;
    bool startsWith(const char16_t* text, int32_t length, bool ignoreCase = false) const;
    bool endsWith(const String& suffix, bool ignoreCase = false) const;
    bool endsWith(const char16_t* text, int32_t length, bool ignoreCase = false) const;
    bool contains(const String& part, bool ignoreCase = false) const;
    bool contains(const char16_t* text, int32_t length, bool ignoreCase = false) const;

    // Searching: the index of the first match at or after start (indexOf), or of the last match
    // beginning at or before start (lastIndexOf; a negative start means from the end); -1 when
    // absent. An empty text matches at the (clamped) start.
    int32_t indexOf(const String& part, int32_t start = 0, bool ignoreCase = false) const;
    int32_t indexOf(const char16_t* text, int32_t length, int32_t start = 0,
                    bool ignoreCase = false) const;
    int32_t indexOf(char16_t c, int32_t start = 0, bool ignoreCase = false) const;
    int32_t lastIndexOf(const String& part, int32_t start = -1, bool ignoreCase = false) const;
    int32_t lastIndexOf(const char16_t* text, int32_t length, int32_t start = -1,
                        bool ignoreCase = false) const;
    int32_t lastIndexOf(char16_t c, int32_t start = -1, bool ignoreCase = false) const;

    // The first (last) unit at or after (at or before) start that is (is not) one of set's; for
    // the findLast forms a negative start means from the end.
    int32_t findFirstOf(const String& set, int32_t start = 0, bool ignoreCase = false) const;
    int32_t findFirstOf(const char16_t* set, int32_t length, int32_t start = 0,
                        bool ignoreCase = false) const;
    int32_t findFirstNotOf(const String& set, int32_t start = 0, bool ignoreCase = false) const;
    int32_t findFirstNotOf(const char16_t* set, int32_t length, int32_t start = 0,
                           bool ignoreCase = false) const;
    int32_t findLastOf(const String& set, int32_t start = -1, bool ignoreCase = false) const;
    int32_t findLastOf(const char16_t* set, int32_t length, int32_t start = -1,
                       bool ignoreCase = false) const;
    int32_t findLastNotOf(const String& set, int32_t start = -1, bool ignoreCase = false) const;
    int32_t findLastNotOf(const char16_t* set, int32_t length, int32_t start = -1,
                          bool ignoreCase = false) const;
    int32_t findFirstOfCase(const String& set, int32_t start = 0) const;
    int32_t findFirstOfCase(const char16_t* set, int32_t length, int32_t start = 0) const;

    // Changing; each returns this string.
    String& append(const String& other);
    String& append(const char16_t* text, int32_t length = -1);
    String& append(char16_t c, int32_t count = 1);
    String& prepend(const String& other);
    String& prepend(const char16_t* text, int32_t length = -1);
    String& prepend(char16_t c, int32_t count = 1);
    String& insert(int32_t position, const String& other);
    String& insert(int32_t position, const char16_t* text, int32_t length = -1);
    String& insert(int32_t position, char16_t c, int32_t count = 1);
    String& remove(int32_t start, int32_t count = -1);
    String& replace(int32_t start, int32_t count, const String& other);
    String& replace(int32_t start, int32_t count, const char16_t* text, int32_t length = -1);
    String& replace(int32_t start, int32_t count, char16_t c, int32_t repeat = 1);

    // Shares other's buffer (as setAddRef).
    String& setTo(const String& other);
    String& setTo(AcquireMode mode, const String& other, int32_t start = 0, int32_t length = -1,
                  int32_t capacity = 0);
    // Copies text, in place when this string holds a writable buffer alone.
    String& setTo(const char16_t* text, int32_t length = -1);
    String& setTo(AcquireMode mode, const char16_t* text, int32_t length = -1,
                  int32_t capacity = 0);
    String& setTo(char16_t c, int32_t count);
    String& setTo(AcquireMode mode, IQNCharBuffer* buffer);
    String& setTo(const STRUCT_QN_STR_LIT_INFO& literal);
    // Decodes 8-bit text as the constructor from 8-bit text does.
    String& setTo(const char* bytes, int32_t length, const char16_t* encoding);
    String& setAddRef(const String& other);
    // Empty: keeps the block of a writable buffer held alone, else takes the shared empty one.
    String& clear();
    // Cuts to length, or pads with fill up to it.
    String& resize(int32_t length, char16_t fill);
    // RangeErrorException outside 0 to length - 1.
    String& setCharAt(int32_t index, char16_t c);
    // Case mapping through the core module; a string that would not change is not copied.
    String& toLower();
    String& toUpper();
    // Replaces each unit found in from by the unit at the same index of to; units found beyond
    // the end of to stay as they are. The first occurrence in from counts.
    String& translate(const String& from, const String& to);
    // Removes units of the default blank set (space, tab, LF, VT, FF, CR, U+00A0 no-break space
    // and U+3000 ideographic space), of set, or c, from the ends that type names.
    String& trim(TrimType type = BOTH);
    String& trim(const String& set, TrimType type = BOTH);
    String& trim(const char16_t* set, int32_t length, TrimType type = BOTH);
    String& trim(char16_t c, TrimType type = BOTH);
    // A new string of the range; the whole string shares this one's buffer.
    String substring(int32_t start, int32_t length = -1) const;

    String& operator=(const String& other) noexcept;
    String& operator=(String&& other) noexcept;
    String& operator=(const char16_t* text) { return setTo(text); }
    String& operator+=(const String& other) { return append(other); }
    String& operator+=(const char16_t* text) { return append(text); }
    String& operator+=(char16_t c) { return append(c); }
    // Exchanges the buffers only.
    void swap(String& other) noexcept;

    // Sets this string to format, then fills the placeholders "{0}", "{1}", ... with the
    // arguments, zero-terminated wide texts taken in order. An argument is taken for index n only
    // when every index below n has its placeholder, and it fills every occurrence of its
    // placeholder; everything else, argument text included, stays as it is. The caller passes at
    // least as many texts as there are consecutive placeholders.
    String& format(const char16_t* format, int32_t length, ...);
    template <
        class... Texts,
        std::enable_if_t<(std::is_convertible_v<const Texts&, const char16_t*> && ...), int> = 0>
    String& format(const String& format, const Texts&... texts) {
        const char16_t* const arguments[] = {static_cast<const char16_t*>(texts)..., nullptr};
        return formatArray(format, arguments, static_cast<int32_t>(sizeof...(texts)));
    }
    String& formatv(const char16_t* format, int32_t length, va_list arguments);
    String& formatv(const String& format, va_list arguments);

    // Object.
    // CastFailedException when other is not a String; otherwise compare(other).
    int32_t compareTo(const Object& other) const override;
    // False when other is not a String; otherwise equals(other).
    bool equals(const Object& other) const override;
    uint32_t hashCode() const override { return hashCode(false); }
    // h = h * 37 + unit over a sample of the units (every one below length 64, then every
    // (length - 32) / 32 + 1-th from the first), in wrapping 32-bit arithmetic; 0 when empty.
    uint32_t hashCode(bool ignoreCase) const;
    // A copy sharing the buffer.
    String toString() const override;

private:
    // The low two bits of m_buffer say what the rest points to. Buffers of a String's own
    // making are read and counted without virtual calls, and never leave the Strings that share
    // them; their count is that of the holders beyond the first, so that making one needs no
    // atomic operation, and 0 means a sole holder.
    enum : uintptr_t {
        BUFFER_FOREIGN = 0, // an IQNCharBuffer from elsewhere: only its interface is used
        BUFFER_RW = 1,      // an RWCharBuffer made by a String, with no module
        BUFFER_RO = 2,      // an ROCharBuffer made by a String, with no module
        BUFFER_STATIC = 3,  // an ROCharBuffer that lives as long as the process; never counted
        KIND_MASK = 3,
    };
    class Reader;
    class Editor;
    struct FillSource;
    struct CopySource;

    // Takes over a buffer value already held for the new string.
    struct Counted {};
    String(uintptr_t buffer, Counted) noexcept : m_buffer(buffer) {}

    util::RWCharBuffer* rw() const noexcept {
        return static_cast<util::RWCharBuffer*>(
            reinterpret_cast<util::AbstractCharBuffer*>(m_buffer & ~uintptr_t{KIND_MASK}));
    }
    util::ROCharBuffer* ro() const noexcept {
        return static_cast<util::ROCharBuffer*>(
            reinterpret_cast<util::AbstractCharBuffer*>(m_buffer & ~uintptr_t{KIND_MASK}));
    }
    static void retain(uintptr_t buffer) noexcept {
        const uintptr_t kind = buffer & KIND_MASK;
        if (kind == BUFFER_FOREIGN)
            reinterpret_cast<IQNCharBuffer*>(buffer)->AddRef();
        else if (kind != BUFFER_STATIC)
            reinterpret_cast<util::AbstractCharBuffer*>(buffer & ~uintptr_t{KIND_MASK})
                ->InternalAddRef();
    }
    static void drop(uintptr_t buffer) noexcept;
    static uintptr_t tag(util::AbstractCharBuffer* buffer, uintptr_t kind) noexcept {
        return reinterpret_cast<uintptr_t>(buffer) | kind;
    }
    static uintptr_t emptyBuffer() noexcept;
    static uintptr_t literalBuffer(bool value) noexcept;
    // A new read-write buffer with its first block, for one holder.
    static util::RWCharBuffer* newBuffer(int32_t capacity);
    // Buffer values held for one new holder, for the constructors and setTo.
    static uintptr_t copyBuffer(const char16_t* text, int32_t length, int32_t capacity);
    static uintptr_t fromText(AcquireMode mode, const char16_t* text, int32_t length,
                              int32_t capacity);
    static uintptr_t fromBuffer(AcquireMode mode, IQNCharBuffer* buffer);
    static uintptr_t fromString(AcquireMode mode, const String& other, int32_t start,
                                int32_t length, int32_t capacity);
    // Replaces the buffer with one already held for this string.
    void reset(uintptr_t buffer) noexcept;
    // True when this string may change its buffer in place: its only holder, and writable.
    bool isSoleWriter() const;
    // Copy on write: makes the buffer one that this string may change in place.
    void own();

    int32_t foreignLength() const;
    const char16_t* foreignData() const;
    [[noreturn]] static void throwIndexOutOfRange();

    template <class Source> String& splice(int32_t start, int32_t removed, const Source& source);
    String& replaceText(int32_t start, int32_t removed, const char16_t* text, int32_t length);
    String& replaceText(int32_t start, int32_t removed, const String& other);
    // Applies change(data + first, length - first) to this string's own copy; nothing when
    // first is negative.
    template <class Change> String& changeUnits(int32_t first, Change change);
    String& trimUnits(const char16_t* set, int32_t length, TrimType type);
    String& formatArray(const String& format, const char16_t* const* arguments, int32_t count);
    // Fills format's placeholders with the texts that next() gives; shared, when not null, is
    // format as a String, taken over as it is when nothing is filled.
    template <class Next>
    String& fill(const char16_t* format, int32_t length, const String* shared, Next next);

    uintptr_t m_buffer;
    // Reserved for the 8-bit text that the encoding conversions hand out under a read lock; it
    // is null until they exist, and released with the string.
    mutable Reference<Object> m_auxiliary;
    // Write locks taken through this string's own buffer interface and not yet released.
    uint32_t m_state = 0;

#ifdef _WIN32
public:
    // The same constructors for the platform's wide text, which has the same 16-bit units.
    String(const wchar_t* text, int32_t length = -1, int32_t capacity = 0)
        : String(reinterpret_cast<const char16_t*>(text), length, capacity) {}
    String(AcquireMode mode, const wchar_t* text, int32_t length = -1, int32_t capacity = 0)
        : String(mode, reinterpret_cast<const char16_t*>(text), length, capacity) {}
#endif
};

// 8-bit text in a named encoding, zero-terminated, made from wide text: what String::getBytes
// and String::getBytesReadLock hand out.
class QNCL_API String::AnsiBytes : public Object {
public:
    // Encodes text (length -1: up to its terminating zero; null: empty) in the encoding named
    // (null: the process's default encoding), as String::getBytes does.
    AnsiBytes(const char16_t* text, const char16_t* encoding);
    AnsiBytes(const char16_t* text, int32_t length, const char16_t* encoding);
    ~AnsiBytes() override;
    AnsiBytes(const AnsiBytes&) = delete;
    AnsiBytes& operator=(const AnsiBytes&) = delete;

    const char* getData() const noexcept { return m_bytes; }
    int32_t getLength() const noexcept { return m_length; }
    // The canonical name of the encoding it was made in, e.g. "UTF-8".
    const String& getEncoding() const noexcept { return m_encoding; }
    // True when encoding names the encoding these bytes were made in: the name they were made
    // with or the encoding's canonical name, compared without case (null: the default encoding).
    bool encodingEquals(const char16_t* encoding) const;

private:
    char* m_bytes = nullptr;
    int32_t m_length = 0;
    String m_requested;
    String m_encoding;
};

inline bool operator==(const String& a, const String& b) {
    return a.equals(b);
}
inline bool operator!=(const String& a, const String& b) {
    return !a.equals(b);
}
inline bool operator==(const String& a, const char16_t* b) {
    return a.equals(b, -1);
}
inline bool operator!=(const String& a, const char16_t* b) {
    return !a.equals(b, -1);
}
inline bool operator==(const char16_t* a, const String& b) {
    return b.equals(a, -1);
}
inline bool operator!=(const char16_t* a, const String& b) {
    return !b.equals(a, -1);
}
inline bool operator<(const String& a, const String& b) {
    return a.compare(b) < 0;
}

} // namespace qn
