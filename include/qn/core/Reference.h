// Reference<T>: the owning handle of one counted reference. Holding takes a reference with
// AddRef, dropping the holder gives it back with Release. T may be const: counting does not
// change what the object is, so a Reference<const T> counts it as Reference<T> does.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace qn {

template <class T> class Reference {
public:
    Reference() noexcept = default;
    Reference(std::nullptr_t) noexcept {}
    // Takes a new reference on object (which may be a new object with count 0).
    Reference(T* object) noexcept : m_object(object) { acquire(); }
    Reference(const Reference& other) noexcept : m_object(other.m_object) { acquire(); }
    Reference(Reference&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
    template <class U> Reference(const Reference<U>& other) noexcept : m_object(other.get()) {
        acquire();
    }
    template <class U> Reference(Reference<U>&& other) noexcept : m_object(other.detach()) {}
    ~Reference() { drop(); }

    Reference& operator=(const Reference& other) noexcept { return reset(other.m_object); }
    Reference& operator=(Reference&& other) noexcept {
        if (this != &other) {
            T* old = m_object;
            m_object = other.m_object;
            other.m_object = nullptr;
            if (old)
                counted(old)->Release();
        }
        return *this;
    }
    Reference& operator=(T* object) noexcept { return reset(object); }
    Reference& operator=(std::nullptr_t) noexcept { return reset(nullptr); }

    // Replaces the held object; the new one is acquired before the old one is released, so
    // resetting to the object already held is safe.
    Reference& reset(T* object = nullptr) noexcept {
        if (object)
            counted(object)->AddRef();
        T* old = m_object;
        m_object = object;
        if (old)
            counted(old)->Release();
        return *this;
    }
    // Takes over a reference the caller already owns, without AddRef.
    void attach(T* object) noexcept {
        drop();
        m_object = object;
    }
    // Gives up the held reference to the caller, without Release.
    T* detach() noexcept {
        T* object = m_object;
        m_object = nullptr;
        return object;
    }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    template <class U> bool operator==(const Reference<U>& o) const { return m_object == o.get(); }
    template <class U> bool operator!=(const Reference<U>& o) const { return m_object != o.get(); }
    bool operator==(std::nullptr_t) const noexcept { return m_object == nullptr; }
    bool operator!=(std::nullptr_t) const noexcept { return m_object != nullptr; }

private:
    static std::remove_const_t<T>* counted(T* object) noexcept {
        return const_cast<std::remove_const_t<T>*>(object);
    }
    void acquire() noexcept {
        if (m_object)
            counted(m_object)->AddRef();
    }
    void drop() noexcept {
        if (m_object) {
            T* old = m_object;
            m_object = nullptr;
            counted(old)->Release();
        }
    }

    T* m_object = nullptr;
};

} // namespace qn
