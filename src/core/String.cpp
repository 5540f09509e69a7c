// String's buffer handling: construction, copy on write, changes and the character-buffer role.
#include "qn/core/String.h"

#include "StringReader.h"
#include "StringUnits.h"
#include "qn/core/Exception.h"
#include "util/BufferSupport.h"

#include <algorithm>
#include <string>

namespace qn {

using units::check;
using units::fromCore;
using util::AbstractCharBuffer;
using util::ROCharBuffer;
using util::RWCharBuffer;

namespace {

// The buffers that live as long as the process: the shared empty buffer and the texts of
// valueOf(bool). They sit in static storage and are never destroyed, so that Strings still work
// during static destruction.
struct StaticBuffers {
    ROCharBuffer empty{u"", 0};
    ROCharBuffer falseText{u"false", 5};
    ROCharBuffer trueText{u"true", 4};
};

StaticBuffers& staticBuffers() noexcept {
    alignas(StaticBuffers) static unsigned char storage[sizeof(StaticBuffers)];
    static StaticBuffers* const buffers = new (storage) StaticBuffers();
    return *buffers;
}

// Made while the library loads, before any caller counts live objects.
[[maybe_unused]] StaticBuffers& s_madeAtLoad = staticBuffers();

} // namespace

// Write access in place, possible when this string is the only holder of a writable buffer.
// While open, a foreign buffer's write lock is held; commit releases it with the new length.
class String::Editor {
public:
    explicit Editor(String& string) : m_string(string) {}
    ~Editor() {
        if (m_locked)
            m_locked->ReleaseWriteLock(-1);
    }
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    bool open();
    // Room for capacity units; data may move.
    void reserve(int32_t capacity);
    // Ends the change with length units and a terminating zero (reserve room for it first).
    void commit(int32_t length);

    char16_t* data = nullptr;
    int32_t length = 0;

private:
    String& m_string;
    IQNCharBuffer* m_locked = nullptr;
};

bool String::Editor::open() {
    if (!m_string.isSoleWriter())
        return false;
    if ((m_string.m_buffer & KIND_MASK) == BUFFER_RW) {
        data = m_string.rw()->m_data;
        length = m_string.rw()->m_length;
        return true;
    }
    auto* buffer = reinterpret_cast<IQNCharBuffer*>(m_string.m_buffer);
    QNWCHAR* text = nullptr;
    check(buffer->GetWriteLock(&text));
    m_locked = buffer;
    int32_t size = 0;
    check(buffer->GetLength(&size));
    data = reinterpret_cast<char16_t*>(text);
    length = std::max(size, 0);
    return true;
}

void String::Editor::reserve(int32_t capacity) {
    if (m_locked) {
        QNWCHAR* text = nullptr;
        check(m_locked->EnsureCapacity(capacity, &text));
        data = reinterpret_cast<char16_t*>(text);
        return;
    }
    RWCharBuffer* buffer = m_string.rw();
    if (buffer->m_capacity < capacity)
        data = buffer->RWCharBuffer::ensureCapacity(capacity);
}

void String::Editor::commit(int32_t newLength) {
    data[newLength] = 0;
    if (!m_locked) {
        m_string.rw()->m_length = newLength;
        return;
    }
    IQNCharBuffer* buffer = m_locked;
    m_locked = nullptr;
    check(buffer->ReleaseWriteLock(newLength));
}

// What a splice puts in: a copy of text, or a unit repeated.
struct String::CopySource {
    const char16_t* text;
    int32_t length;
    void write(char16_t* to) const { units::copy(to, text, length); }
};

struct String::FillSource {
    char16_t c;
    int32_t length;
    void write(char16_t* to) const { std::fill_n(to, length, c); }
};

// Construction.

String::String() noexcept : m_buffer(emptyBuffer()) {}

String::String(String&& other) noexcept : AbstractCharBuffer(other), m_buffer(other.m_buffer) {
    other.m_buffer = emptyBuffer();
}

String::String(const char16_t* text, int32_t length, int32_t capacity)
    : m_buffer(fromText(COPY, text, length, capacity)) {}

String::String(AcquireMode mode, const char16_t* text, int32_t length, int32_t capacity)
    : m_buffer(fromText(mode, text, length, capacity)) {}

String::String(char16_t c, int32_t count, int32_t capacity) : m_buffer(emptyBuffer()) {
    count = std::max(count, 0);
    if (count == 0 && capacity <= 0)
        return;
    RWCharBuffer* buffer = newBuffer(std::max(capacity, units::sum(count, 1)));
    std::fill_n(buffer->m_data, count, c);
    buffer->m_data[count] = 0;
    buffer->m_length = count;
    m_buffer = tag(buffer, BUFFER_RW);
}

String::String(int32_t capacity) : m_buffer(fromText(COPY, nullptr, 0, capacity)) {}

String::String(IQNCharBuffer* buffer) : m_buffer(fromBuffer(ADOPT, buffer)) {}

String::String(AcquireMode mode, IQNCharBuffer* buffer) : m_buffer(fromBuffer(mode, buffer)) {}

String::String(AcquireMode mode, const String& other, int32_t start, int32_t length,
               int32_t capacity)
    : m_buffer(fromString(mode, other, start, length, capacity)) {}

String::String(const STRUCT_QN_STR_LIT_INFO& literal)
    : m_buffer(fromText(WRAP, literal.text, literal.length, 0)) {}

String::~String() {
    drop(m_buffer);
}

Reference<String> String::CQNString(const String& text) {
    return Reference<String>(new String(text));
}

Reference<String> String::CQNString(const char16_t* text, int32_t length, int32_t capacity) {
    return Reference<String>(new String(text, length, capacity));
}

uintptr_t String::emptyBuffer() noexcept {
    return tag(&staticBuffers().empty, BUFFER_STATIC);
}

uintptr_t String::literalBuffer(bool value) noexcept {
    StaticBuffers& buffers = staticBuffers();
    return tag(value ? &buffers.trueText : &buffers.falseText, BUFFER_STATIC);
}

void String::drop(uintptr_t buffer) noexcept {
    const uintptr_t kind = buffer & KIND_MASK;
    if (kind == BUFFER_STATIC)
        return;
    if (kind == BUFFER_FOREIGN) {
        reinterpret_cast<IQNCharBuffer*>(buffer)->Release();
        return;
    }
    auto* object = reinterpret_cast<AbstractCharBuffer*>(buffer & ~uintptr_t{KIND_MASK});
    // A sole holder needs no atomic decrement: nobody else can take a new reference. Of two
    // holders letting go at once, the one that takes the count below 0 deletes.
    if (object->GetRefCount() == 0 || object->InternalRelease() == UINT32_MAX)
        delete object;
}

RWCharBuffer* String::newBuffer(int32_t capacity) {
    return RWCharBuffer::withBlock(capacity);
}

uintptr_t String::copyBuffer(const char16_t* text, int32_t length, int32_t capacity) {
    RWCharBuffer* buffer = newBuffer(std::max(capacity, units::sum(length, 1)));
    units::copy(buffer->m_data, text, length);
    buffer->m_data[length] = 0;
    buffer->m_length = length;
    return tag(buffer, BUFFER_RW);
}

uintptr_t String::fromText(AcquireMode mode, const char16_t* text, int32_t length,
                           int32_t capacity) {
    length = units::measure(text, length);
    if (length <= 0 && capacity <= 0)
        return emptyBuffer();
    if (mode != WRAP)
        return copyBuffer(text, length, capacity);
    return tag(new ROCharBuffer(text, length), BUFFER_RO);
}

uintptr_t String::fromBuffer(AcquireMode mode, IQNCharBuffer* buffer) {
    if (!buffer)
        return emptyBuffer();
    if (mode == COPY) {
        Reader reader(buffer);
        return reader.length > 0 ? copyBuffer(reader.data, reader.length, 0) : emptyBuffer();
    }
    if (mode == WRAP)
        buffer->AddRef();
    return reinterpret_cast<uintptr_t>(buffer);
}

uintptr_t String::fromString(AcquireMode mode, const String& other, int32_t start, int32_t length,
                             int32_t capacity) {
    Reader reader(other);
    units::clamp(reader.length, start, length);
    if (mode != COPY && length == reader.length && capacity <= length + 1) {
        retain(other.m_buffer);
        return other.m_buffer;
    }
    if (length == 0 && capacity <= 0)
        return emptyBuffer();
    return copyBuffer(reader.data + start, length, capacity);
}

void String::reset(uintptr_t buffer) noexcept {
    const uintptr_t old = m_buffer;
    m_buffer = buffer;
    drop(old);
}

bool String::isSoleWriter() const {
    const uintptr_t kind = m_buffer & KIND_MASK;
    if (kind == BUFFER_RW)
        return rw()->GetRefCount() == 0;
    if (kind != BUFFER_FOREIGN)
        return false;
    // A foreign buffer's count can only be read by taking a reference and dropping it again.
    auto* buffer = reinterpret_cast<IQNCharBuffer*>(m_buffer);
    buffer->AddRef();
    if (buffer->Release() >= 2)
        return false;
    int32_t writable = 0;
    check(buffer->IsWritable(&writable));
    return writable != 0;
}

void String::own() {
    if (isSoleWriter())
        return;
    uintptr_t copy;
    {
        Reader reader(*this);
        copy = copyBuffer(reader.data, reader.length, 0);
    }
    reset(copy);
}

int32_t String::foreignLength() const {
    int32_t length = 0;
    check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->GetLength(&length));
    return std::max(length, 0);
}

const char16_t* String::foreignData() const {
    const QNWCHAR* data = nullptr;
    check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->GetData(&data));
    return data ? fromCore(data) : u"";
}

void String::throwIndexOutOfRange() {
    throw RangeErrorException(String(u"index out of range"));
}

const char16_t* String::getDataT(int32_t* length) const {
    if (length)
        *length = getLength();
    return getData();
}

const char16_t* String::getReadLockT(int32_t* length) const {
    const char16_t* data = getReadLock();
    if (length)
        *length = getLength();
    return data;
}

// The character-buffer role.

const char16_t* String::getReadLock() const {
    if ((m_buffer & KIND_MASK) != BUFFER_FOREIGN)
        return getData();
    const QNWCHAR* data = nullptr;
    check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->GetReadLock(&data));
    return fromCore(data);
}

void String::releaseReadLock() const {
    if ((m_buffer & KIND_MASK) == BUFFER_FOREIGN)
        check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->ReleaseReadLock());
}

bool String::isWritable() const {
    return true;
}

char16_t* String::getWriteLock() {
    own();
    char16_t* data;
    if ((m_buffer & KIND_MASK) == BUFFER_RW) {
        data = rw()->m_data;
    } else {
        QNWCHAR* text = nullptr;
        check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->GetWriteLock(&text));
        data = reinterpret_cast<char16_t*>(text);
    }
    ++m_state;
    return data;
}

char16_t* String::ensureCapacity(int32_t capacity) {
    if (m_state == 0) {
        // Outside a write lock: reserve room for later changes.
        own();
        Editor editor(*this);
        editor.open();
        editor.reserve(std::max(capacity, units::sum(editor.length, 1)));
        editor.commit(editor.length);
        return editor.data;
    }
    if ((m_buffer & KIND_MASK) == BUFFER_RW)
        return rw()->RWCharBuffer::ensureCapacity(capacity);
    QNWCHAR* data = nullptr;
    check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->EnsureCapacity(capacity, &data));
    return reinterpret_cast<char16_t*>(data);
}

void String::releaseWriteLock(int32_t length) {
    if (m_state == 0)
        throw IllegalStateException(String(u"no write lock to release"));
    --m_state;
    if ((m_buffer & KIND_MASK) != BUFFER_RW) {
        check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->ReleaseWriteLock(length));
        return;
    }
    RWCharBuffer* buffer = rw();
    buffer->setLength(length);
    if (buffer->m_length == buffer->m_capacity)
        buffer->RWCharBuffer::ensureCapacity(units::sum(buffer->m_length, 1));
    buffer->m_data[buffer->m_length] = 0;
}

void String::freeExtra() {
    if (!isSoleWriter())
        return;
    if ((m_buffer & KIND_MASK) == BUFFER_FOREIGN) {
        check(reinterpret_cast<IQNCharBuffer*>(m_buffer)->FreeExtra());
        return;
    }
    RWCharBuffer* buffer = rw();
    if (buffer->m_length == 0) {
        reset(emptyBuffer());
        return;
    }
    util::buffer::reallocate(buffer->m_data, buffer->m_capacity, buffer->m_length,
                             buffer->m_length + 1, buffer->m_fixedBlock);
}

// Changing.

template <class Source>
String& String::splice(int32_t start, int32_t removed, const Source& source) {
    if ((m_buffer & KIND_MASK) == BUFFER_RW && rw()->GetRefCount() == 0) {
        RWCharBuffer* buffer = rw();
        units::clamp(buffer->m_length, start, removed);
        const int32_t tail = buffer->m_length - start - removed;
        const int32_t newLength = units::sum(buffer->m_length - removed, source.length);
        if (newLength >= buffer->m_capacity)
            buffer->RWCharBuffer::ensureCapacity(newLength + 1);
        char16_t* data = buffer->m_data;
        if (source.length != removed && tail > 0)
            std::memmove(data + start + source.length, data + start + removed,
                         static_cast<size_t>(tail) * sizeof(char16_t));
        source.write(data + start);
        data[newLength] = 0;
        buffer->m_length = newLength;
        return *this;
    }
    Editor editor(*this);
    if (editor.open()) {
        units::clamp(editor.length, start, removed);
        const int32_t tail = editor.length - start - removed;
        const int32_t newLength = units::sum(editor.length - removed, source.length);
        editor.reserve(newLength + 1);
        char16_t* data = editor.data;
        if (source.length != removed && tail > 0)
            std::memmove(data + start + source.length, data + start + removed,
                         static_cast<size_t>(tail) * sizeof(char16_t));
        source.write(data + start);
        editor.commit(newLength);
        return *this;
    }
    // Copy on write: the new buffer is built from the old one, which stays alive until reset.
    uintptr_t fresh;
    {
        Reader reader(*this);
        units::clamp(reader.length, start, removed);
        const int32_t tail = reader.length - start - removed;
        const int32_t newLength = units::sum(reader.length - removed, source.length);
        RWCharBuffer* buffer = newBuffer(newLength + 1);
        char16_t* data = buffer->m_data;
        units::copy(data, reader.data, start);
        source.write(data + start);
        units::copy(data + start + source.length, reader.data + start + removed, tail);
        data[newLength] = 0;
        buffer->m_length = newLength;
        fresh = tag(buffer, BUFFER_RW);
    }
    reset(fresh);
    return *this;
}

String& String::replaceText(int32_t start, int32_t removed, const char16_t* text, int32_t length) {
    length = units::measure(text, length);
    // Text from this string's own block would move under an in-place change: use a copy. A
    // foreign block is not read outside its lock, so text for one is always copied.
    if (length > 0 &&
        ((m_buffer & KIND_MASK) == BUFFER_FOREIGN || units::within(text, getData(), getLength()))) {
        const std::u16string copy(text, static_cast<size_t>(length));
        return splice(start, removed, CopySource{copy.data(), length});
    }
    return splice(start, removed, CopySource{text, length});
}

String& String::replaceText(int32_t start, int32_t removed, const String& other) {
    Reader reader(other);
    return replaceText(start, removed, reader.data, reader.length);
}

String& String::append(const String& other) {
    return replaceText(INT32_MAX, 0, other);
}
String& String::append(const char16_t* text, int32_t length) {
    return replaceText(INT32_MAX, 0, text, length);
}
String& String::append(char16_t c, int32_t count) {
    return splice(INT32_MAX, 0, FillSource{c, std::max(count, 0)});
}
String& String::prepend(const String& other) {
    return replaceText(0, 0, other);
}
String& String::prepend(const char16_t* text, int32_t length) {
    return replaceText(0, 0, text, length);
}
String& String::prepend(char16_t c, int32_t count) {
    return splice(0, 0, FillSource{c, std::max(count, 0)});
}
String& String::insert(int32_t position, const String& other) {
    return replaceText(position, 0, other);
}
String& String::insert(int32_t position, const char16_t* text, int32_t length) {
    return replaceText(position, 0, text, length);
}
String& String::insert(int32_t position, char16_t c, int32_t count) {
    return splice(position, 0, FillSource{c, std::max(count, 0)});
}
String& String::remove(int32_t start, int32_t count) {
    return splice(start, count, CopySource{nullptr, 0});
}
String& String::replace(int32_t start, int32_t count, const String& other) {
    return replaceText(start, count, other);
}
String& String::replace(int32_t start, int32_t count, const char16_t* text, int32_t length) {
    return replaceText(start, count, text, length);
}
String& String::replace(int32_t start, int32_t count, char16_t c, int32_t repeat) {
    return splice(start, count, FillSource{c, std::max(repeat, 0)});
}

String& String::setTo(const String& other) {
    return *this = other;
}
String& String::setAddRef(const String& other) {
    return *this = other;
}
String& String::setTo(AcquireMode mode, const String& other, int32_t start, int32_t length,
                      int32_t capacity) {
    reset(fromString(mode, other, start, length, capacity));
    return *this;
}
String& String::setTo(const char16_t* text, int32_t length) {
    // A string reused for one piece of text after another (a line, a field) holds its block
    // alone with room to spare: one copy, nothing else. Nothing follows the copied text, so text
    // from the block itself may overlap it.
    if (text && length >= 0 && (m_buffer & KIND_MASK) == BUFFER_RW) {
        RWCharBuffer* buffer = rw();
        if (length < buffer->m_capacity && buffer->GetRefCount() == 0) {
            std::memmove(buffer->m_data, text, static_cast<size_t>(length) * sizeof(char16_t));
            buffer->m_data[length] = 0;
            buffer->m_length = length;
            return *this;
        }
    }
    return replaceText(0, -1, text, length);
}
String& String::setTo(AcquireMode mode, const char16_t* text, int32_t length, int32_t capacity) {
    reset(fromText(mode, text, length, capacity));
    return *this;
}
String& String::setTo(char16_t c, int32_t count) {
    return splice(0, -1, FillSource{c, std::max(count, 0)});
}
String& String::setTo(AcquireMode mode, IQNCharBuffer* buffer) {
    reset(fromBuffer(mode, buffer));
    return *this;
}
String& String::setTo(const STRUCT_QN_STR_LIT_INFO& literal) {
    reset(fromText(WRAP, literal.text, literal.length, 0));
    return *this;
}

String& String::clear() {
    Editor editor(*this);
    if (editor.open()) {
        editor.reserve(1);
        editor.commit(0);
        return *this;
    }
    reset(emptyBuffer());
    return *this;
}

String& String::resize(int32_t length, char16_t fill) {
    length = std::max(length, 0);
    const int32_t present = getLength();
    if (length <= present)
        return remove(length);
    return append(fill, length - present);
}

String& String::setCharAt(int32_t index, char16_t c) {
    if ((m_buffer & KIND_MASK) != BUFFER_FOREIGN && (index < 0 || index >= getLength()))
        throwIndexOutOfRange();
    own();
    Editor editor(*this);
    editor.open();
    if (index < 0 || index >= editor.length)
        throwIndexOutOfRange();
    editor.data[index] = c;
    editor.commit(editor.length);
    return *this;
}

template <class Change> String& String::changeUnits(int32_t first, Change change) {
    if (first < 0)
        return *this;
    own();
    Editor editor(*this);
    editor.open();
    change(editor.data + first, editor.length - first);
    editor.commit(editor.length);
    return *this;
}

namespace {

template <class Map> int32_t firstChanged(const char16_t* data, int32_t length, Map map) {
    for (int32_t i = 0; i < length; ++i) {
        if (map(data[i]) != data[i])
            return i;
    }
    return -1;
}

} // namespace

String& String::toLower() {
    int32_t first;
    {
        Reader reader(*this);
        first = firstChanged(reader.data, reader.length, [](char16_t c) { return units::fold(c); });
    }
    return changeUnits(first, [](char16_t* data, int32_t length) {
        QNStrToLowerW(reinterpret_cast<QNWCHAR*>(data), length);
    });
}

String& String::toUpper() {
    int32_t first;
    {
        Reader reader(*this);
        first = firstChanged(reader.data, reader.length, [](char16_t c) {
            return static_cast<char16_t>(QNToUpperW(static_cast<QNWCHAR>(c)));
        });
    }
    return changeUnits(first, [](char16_t* data, int32_t length) {
        QNStrToUpperW(reinterpret_cast<QNWCHAR*>(data), length);
    });
}

String& String::translate(const String& from, const String& to) {
    // Copies: either set may share this string's buffer.
    const Reader fromReader(from);
    const Reader toReader(to);
    const std::u16string sources(fromReader.data, static_cast<size_t>(fromReader.length));
    const std::u16string targets(toReader.data, static_cast<size_t>(toReader.length));
    const auto map = [&](char16_t c) {
        const size_t at = sources.find(c);
        return at < targets.size() ? targets[at] : c;
    };
    int32_t first;
    {
        Reader reader(*this);
        first = firstChanged(reader.data, reader.length, map);
    }
    return changeUnits(first, [&](char16_t* data, int32_t length) {
        for (int32_t i = 0; i < length; ++i)
            data[i] = map(data[i]);
    });
}

String& String::trimUnits(const char16_t* set, int32_t length, TrimType type) {
    int32_t begin;
    int32_t end;
    {
        const units::UnitSet members(set, length, false);
        Reader reader(*this);
        begin = 0;
        end = reader.length;
        if (type & LEADING) {
            while (begin < end && members.contains(reader.data[begin]))
                ++begin;
        }
        if (type & TRAILING) {
            while (end > begin && members.contains(reader.data[end - 1]))
                --end;
        }
        if (begin == 0 && end == reader.length)
            return *this;
    }
    return remove(end).remove(0, begin);
}

String& String::trim(TrimType type) {
    static const char16_t blanks[] = u" \t\n\v\f\r\u00A0\u3000";
    return trimUnits(blanks, 8, type);
}
String& String::trim(const String& set, TrimType type) {
    const Reader reader(set);
    return trimUnits(reader.data, reader.length, type);
}
String& String::trim(const char16_t* set, int32_t length, TrimType type) {
    return trimUnits(set, units::measure(set, length), type);
}
String& String::trim(char16_t c, TrimType type) {
    return trimUnits(&c, 1, type);
}

String String::substring(int32_t start, int32_t length) const {
    Reader reader(*this);
    units::clamp(reader.length, start, length);
    if (length == reader.length)
        return *this;
    if (length == 0)
        return String();
    return String(copyBuffer(reader.data + start, length, 0), Counted{});
}

String& String::operator=(const String& other) noexcept {
    if (m_buffer != other.m_buffer) {
        retain(other.m_buffer);
        reset(other.m_buffer);
    }
    return *this;
}

String& String::operator=(String&& other) noexcept {
    if (this != &other) {
        const uintptr_t taken = other.m_buffer;
        other.m_buffer = emptyBuffer();
        reset(taken);
    }
    return *this;
}

void String::swap(String& other) noexcept {
    std::swap(m_buffer, other.m_buffer);
}

// Object.

int32_t String::compareTo(const Object& other) const {
    const auto* string = dynamic_cast<const String*>(&other);
    if (!string)
        throw CastFailedException(String(u"compareTo needs another String"));
    return compare(*string);
}

bool String::equals(const Object& other) const {
    const auto* string = dynamic_cast<const String*>(&other);
    return string && equals(*string);
}

String String::toString() const {
    return *this;
}

} // namespace qn
