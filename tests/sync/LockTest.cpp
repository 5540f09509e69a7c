#include "qn/core/Exception.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"

#include <gtest/gtest.h>

#include <thread>

using namespace qn;

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
