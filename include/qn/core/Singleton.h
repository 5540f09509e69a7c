// Singleton<T, Lock>: holder of one lazily created instance of T. Creation is double-checked
// under the lock object that the pointer Lock (a LockObject*) points to; freeInstance destroys it
// under the same lock.
#pragma once

#include <atomic>

namespace qn {

template <class T, auto& Lock> class Singleton {
public:
    static T* getInstance() {
        T* instance = s_instance.load(std::memory_order_acquire);
        if (instance)
            return instance;
        Lock->lock();
        try {
            instance = s_instance.load(std::memory_order_relaxed);
            if (!instance) {
                instance = new T();
                s_instance.store(instance, std::memory_order_release);
            }
        } catch (...) {
            Lock->unlock();
            throw;
        }
        Lock->unlock();
        return instance;
    }

    static void freeInstance() {
        if (!s_instance.load(std::memory_order_acquire))
            return;
        Lock->lock();
        T* instance = s_instance.exchange(nullptr, std::memory_order_acq_rel);
        Lock->unlock();
        delete instance;
    }

private:
    Singleton() = delete;
    ~Singleton() = delete;
    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

    static std::atomic<T*> s_instance;
};

template <class T, auto& Lock> std::atomic<T*> Singleton<T, Lock>::s_instance{nullptr};

} // namespace qn
