#include "qn/core/Exception.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

using namespace qn;

namespace {

std::string uniqueName(const char* base) {
    return std::string(base) + "::" + std::to_string(reinterpret_cast<uintptr_t>(&base)) +
           std::to_string(std::hash<std::thread::id>()(std::this_thread::get_id()));
}

// Tries the lock from a fresh thread, which gives it back when it got it.
bool tryFromOtherThread(sync::LockObject& lock) {
    bool acquired = false;
    std::thread([&] {
        acquired = lock.tryWait();
        if (acquired)
            lock.signal();
    }).join();
    return acquired;
}

} // namespace

TEST(Mutex, TryWaitFromAnotherThreadFailsWithoutThrowing) {
    Reference<sync::Mutex> mutex(new sync::Mutex);
    mutex->wait();
    EXPECT_TRUE(mutex->tryWait()); // recursive for its owner
    EXPECT_FALSE(tryFromOtherThread(*mutex));
    mutex->signal();
    mutex->signal();
    EXPECT_TRUE(tryFromOtherThread(*mutex));
}

TEST(Mutex, OneNameIsOneLock) {
    const std::string name = uniqueName("qn.test.mutex");
    Reference<sync::Mutex> a(new sync::Mutex(name.c_str())), b(new sync::Mutex(name.c_str()));
    a->wait();
    EXPECT_FALSE(tryFromOtherThread(*b));
    a->signal();
}

TEST(Mutex, CoreFailuresAreResultExceptions) {
    try {
        sync::Mutex bad(nullptr, 0x80);
        FAIL();
    } catch (const ResultException& e) {
        EXPECT_EQ(e.getResult(), QN_E_INVALIDARG);
    }
    Reference<sync::Mutex> mutex(new sync::Mutex);
    try {
        mutex->signal(); // not owned
        FAIL();
    } catch (const ResultException& e) {
        EXPECT_EQ(e.getResult(), QN_E_NOTOWNER);
    }
    mutex->wait(); // still usable
    mutex->signal();
}

TEST(ReaderWriterLock, ReadersShareWritersExclude) {
    Reference<sync::ReaderWriterLock> lock(new sync::ReaderWriterLock);
    lock->waitShared();
    EXPECT_TRUE(lock->tryWaitShared());
    bool writer = true, reader = false;
    std::thread([&] {
        writer = lock->tryWait();
        reader = lock->tryWaitShared();
        if (reader)
            lock->signalShared();
    }).join();
    EXPECT_FALSE(writer);
    EXPECT_TRUE(reader);
    lock->signalShared();
    lock->signalShared();
    lock->wait();
    std::thread([&] { reader = lock->tryWaitShared(); }).join();
    EXPECT_FALSE(reader);
    lock->signal();
    EXPECT_THROW(lock->signalShared(), ResultException);
}
