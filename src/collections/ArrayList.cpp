#include "qn/collections/xcom/ArrayList.h"

#include "qn/core/Exception.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace qn::collections::xcom {

namespace {

constexpr size_t MAX_ELEMENTS = 1073741823;

void acquire(IQNUnknown* element) noexcept {
    if (element)
        element->AddRef();
}

} // namespace

ArrayList::ArrayList() = default;

ArrayList::ArrayList(const IQNComparator* comparator) : AbstractList(comparator) {}

ArrayList::ArrayList(const Collection& elements) {
    fill(elements);
}

ArrayList::ArrayList(const Collection& elements, const IQNComparator* comparator)
    : AbstractList(comparator) {
    fill(elements);
}

void ArrayList::fill(const Collection& elements) {
    try {
        addAll(elements);
    } catch (...) {
        releaseAll();
        throw;
    }
}

void ArrayList::releaseAll() noexcept {
    for (IQNUnknown** p = m_begin; p != m_end; ++p) {
        if (*p)
            (*p)->Release();
    }
    std::free(m_begin);
    m_begin = m_end = m_capacityEnd = nullptr;
}

ArrayList::ArrayList(const ArrayList& other) : AbstractList(other) {
    const size_t size = static_cast<size_t>(other.m_end - other.m_begin);
    if (size == 0)
        return;
    m_begin = static_cast<IQNUnknown**>(std::malloc(size * sizeof(IQNUnknown*)));
    if (!m_begin)
        throw std::bad_alloc();
    for (size_t i = 0; i < size; ++i)
        acquire(m_begin[i] = other.m_begin[i]);
    m_end = m_capacityEnd = m_begin + size;
}

ArrayList::~ArrayList() {
    releaseAll();
}

Reference<Object> ArrayList::clone() const {
    return Reference<Object>(new ArrayList(*this));
}

void ArrayList::grow() {
    const size_t size = static_cast<size_t>(m_end - m_begin);
    const size_t capacity = static_cast<size_t>(m_capacityEnd - m_begin);
    if (size + 1 > MAX_ELEMENTS)
        throw std::length_error("ArrayList too long");
    size_t grown = capacity + capacity / 2;
    if (grown < size + 1)
        grown = size + 1;
    if (grown > MAX_ELEMENTS)
        grown = MAX_ELEMENTS;
    // Element references are plain pointers, so moving the block moves them.
    auto* block = static_cast<IQNUnknown**>(std::realloc(m_begin, grown * sizeof(IQNUnknown*)));
    if (!block)
        throw std::bad_alloc();
    m_begin = block;
    m_end = block + size;
    m_capacityEnd = block + grown;
}

bool ArrayList::add(IQNUnknown* element) {
    if (m_end == m_capacityEnd)
        grow();
    acquire(element);
    *m_end++ = element;
    return true;
}

bool ArrayList::add(int index, IQNUnknown* element) {
    checkIndex(index, true);
    if (m_end == m_capacityEnd)
        grow();
    IQNUnknown** at = m_begin + index;
    std::memmove(at + 1, at, static_cast<size_t>(m_end - at) * sizeof(IQNUnknown*));
    ++m_end;
    acquire(element);
    *at = element;
    modified();
    return true;
}

void ArrayList::clear() {
    for (int i = getSize() - 1; i >= 0; --i)
        remove(i);
    modified();
}

Reference<IQNUnknown> ArrayList::get(int index) const {
    checkIndex(index);
    return Reference<IQNUnknown>(m_begin[index]);
}

Reference<IQNUnknown> ArrayList::remove(int index) {
    checkIndex(index);
    IQNUnknown** at = m_begin + index;
    Reference<IQNUnknown> element;
    element.attach(*at);
    std::memmove(at, at + 1, static_cast<size_t>(m_end - at - 1) * sizeof(IQNUnknown*));
    --m_end;
    modified();
    return element;
}

Reference<IQNUnknown> ArrayList::set(int index, IQNUnknown* element) {
    checkIndex(index);
    Reference<IQNUnknown> previous;
    previous.attach(m_begin[index]);
    acquire(element);
    m_begin[index] = element;
    modified();
    return previous;
}

} // namespace qn::collections::xcom
