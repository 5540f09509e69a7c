#include "TestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using namespace qntest;
using namespace std::chrono_literals;

TEST(Sync, MutexIsRecursiveAndOwned) {
    QNHANDLE m = nullptr;
    ASSERT_EQ(QNMutexCreate(nullptr, 0, &m), QN_S_OK);
    auto tryOnce = [&] {
        const QNRESULT r = QNMutexTryAcquire(m);
        return r == QN_S_OK ? QNMutexRelease(m) : r;
    };
    EXPECT_EQ(QNMutexRelease(m), QN_E_NOTOWNER);
    EXPECT_EQ(QNMutexAcquire(m), QN_S_OK);
    EXPECT_EQ(QNMutexTryAcquire(m), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryOnce), QN_E_TIMEOUT);
    EXPECT_EQ(onOtherThread([&] { return QNMutexRelease(m); }), QN_E_NOTOWNER);
    EXPECT_EQ(QNMutexRelease(m), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryOnce), QN_E_TIMEOUT); // still held once
    EXPECT_EQ(QNMutexRelease(m), QN_S_OK);
    EXPECT_EQ(QNMutexRelease(m), QN_E_NOTOWNER);
    EXPECT_EQ(onOtherThread(tryOnce), QN_S_OK);
    EXPECT_EQ(QNMutexDestroy(m), QN_S_OK);
    ASSERT_EQ(QNMutexCreate(nullptr, QN_SYNC_INITIAL_SET, &m), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryOnce), QN_E_TIMEOUT);
    EXPECT_EQ(QNMutexRelease(m), QN_S_OK);
    EXPECT_EQ(QNMutexDestroy(m), QN_S_OK);
}

TEST(Sync, SemaphoreCounts) {
    QNHANDLE s = nullptr;
    int32_t value = -1;
    ASSERT_EQ(QNSemaphoreCreate(2, nullptr, QN_SYNC_INITIAL_SET, &s), QN_S_OK);
    EXPECT_EQ(QNSemaphoreGetValue(s, &value), QN_S_OK);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(QNSemaphoreTryWait(s), QN_S_OK);
    EXPECT_EQ(QNSemaphoreWait(s), QN_S_OK);
    EXPECT_EQ(QNSemaphoreTryWait(s), QN_E_TIMEOUT);
    EXPECT_EQ(QNSemaphoreTimedWait(s, 10), QN_E_TIMEOUT);
    auto waiter = std::async(std::launch::async, [&] { return QNSemaphoreWait(s); });
    EXPECT_EQ(QNSemaphorePost(s), QN_S_OK);
    EXPECT_EQ(waiter.get(), QN_S_OK);
    EXPECT_EQ(QNSemaphoreDestroy(s), QN_S_OK);

    ASSERT_EQ(QNSemaphoreCreate(0x7FFFFFFF, nullptr, 0, &s), QN_S_OK);
    EXPECT_EQ(QNSemaphorePost(s), QN_E_TOOMANYPOSTS);
    EXPECT_EQ(QNSemaphoreGetValue(s, &value), QN_S_OK);
    EXPECT_EQ(value, 0x7FFFFFFF);
    EXPECT_EQ(QNSemaphoreDestroy(s), QN_S_OK);
    EXPECT_TRUE(QN_FAILED(QNSemaphoreCreate(0x80000000u, nullptr, 0, &s)));
}

TEST(Sync, EventReleasesOneWaiterPerSignal) {
    QNHANDLE e = nullptr;
    ASSERT_EQ(QNEventCreate(nullptr, 0, &e), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(e, 0), QN_E_TIMEOUT);
    EXPECT_EQ(QNEventSignal(e), QN_S_OK);
    EXPECT_EQ(QNEventSignal(e), QN_S_OK); // signals do not add up
    EXPECT_EQ(QNEventTimedWait(e, 0), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(e, 0), QN_E_TIMEOUT);
    EXPECT_EQ(QNEventSignal(e), QN_S_OK);
    EXPECT_EQ(QNEventReset(e), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(e, 10), QN_E_TIMEOUT);

    std::atomic<int> through{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] { through += QNEventWait(e) == QN_S_OK; });
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(QNEventSignal(e), QN_S_OK);
        EXPECT_TRUE(eventually([&] { return through >= i; }));
        std::this_thread::sleep_for(20ms); // room for a wrongly released second waiter
        EXPECT_EQ(through, i);
    }
    for (std::thread& t : waiters)
        t.join();
    EXPECT_EQ(QNEventDestroy(e), QN_S_OK);
    ASSERT_EQ(QNEventCreate(nullptr, QN_SYNC_INITIAL_SET, &e), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(e, 0), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(e, 0), QN_E_TIMEOUT);
    EXPECT_EQ(QNEventDestroy(e), QN_S_OK);
}

TEST(Sync, GateLetsEveryoneThroughWhileOpen) {
    QNHANDLE g = nullptr;
    ASSERT_EQ(QNGateCreate(nullptr, 0, &g), QN_S_OK);
    EXPECT_EQ(QNGateTryWait(g), QN_E_TIMEOUT);
    EXPECT_EQ(QNGateTimedWait(g, 10), QN_E_TIMEOUT);
    std::vector<std::future<QNRESULT>> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.push_back(std::async(std::launch::async, [&] { return QNGateWait(g); }));
    EXPECT_EQ(QNGateOpen(g), QN_S_OK);
    for (auto& w : waiters)
        EXPECT_EQ(w.get(), QN_S_OK);
    EXPECT_EQ(QNGateTryWait(g), QN_S_OK);
    EXPECT_EQ(QNGateTimedWait(g, 0), QN_S_OK);
    EXPECT_EQ(QNGateClose(g), QN_S_OK);
    EXPECT_EQ(QNGateTimedWait(g, 10), QN_E_TIMEOUT);
    EXPECT_EQ(QNGateDestroy(g), QN_S_OK);
    ASSERT_EQ(QNGateCreate(nullptr, QN_SYNC_INITIAL_SET, &g), QN_S_OK);
    EXPECT_EQ(QNGateTryWait(g), QN_S_OK);
    EXPECT_EQ(QNGateDestroy(g), QN_S_OK);
}

TEST(Sync, ReaderWriterLock) {
    QNHANDLE l = nullptr;
    ASSERT_EQ(QNRWLockCreate(nullptr, 0, &l), QN_S_OK);
    auto tryRead = [&] {
        const QNRESULT r = QNRWLockTryAcquireRead(l);
        return r == QN_S_OK ? QNRWLockReleaseRead(l) : r;
    };
    auto tryWrite = [&] {
        const QNRESULT r = QNRWLockTryAcquireWrite(l);
        return r == QN_S_OK ? QNRWLockReleaseWrite(l) : r;
    };
    ASSERT_EQ(QNRWLockAcquireRead(l), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryRead), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryWrite), QN_E_TIMEOUT);
    // Once a writer waits, new readers are held back.
    auto writer = std::async(std::launch::async, [&] {
        const QNRESULT r = QNRWLockAcquireWrite(l);
        return r == QN_S_OK ? QNRWLockReleaseWrite(l) : r;
    });
    EXPECT_TRUE(eventually([&] { return onOtherThread(tryRead) == QN_E_TIMEOUT; }));
    EXPECT_EQ(QNRWLockReleaseRead(l), QN_S_OK);
    EXPECT_EQ(writer.get(), QN_S_OK);

    ASSERT_EQ(QNRWLockAcquireWrite(l), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryRead), QN_E_TIMEOUT);
    EXPECT_EQ(onOtherThread(tryWrite), QN_E_TIMEOUT);
    EXPECT_EQ(QNRWLockReleaseWrite(l), QN_S_OK);
    EXPECT_EQ(onOtherThread(tryWrite), QN_S_OK);
    EXPECT_EQ(QNRWLockDestroy(l), QN_S_OK);
}

TEST(Sync, ConditionWaitsForAPredicate) {
    QNHANDLE c = nullptr;
    ASSERT_EQ(QNConditionCreate(nullptr, 0, &c), QN_S_OK);
    bool go = false;
    int waiting = 0, passed = 0;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] {
            QNConditionAcquire(c);
            ++waiting;
            while (!go && QNConditionWait(c) == QN_S_OK) {
            }
            passed += go;
            QNConditionRelease(c);
        });
    auto locked = [&](auto f) {
        QNConditionAcquire(c);
        const auto r = f();
        QNConditionRelease(c);
        return r;
    };
    EXPECT_TRUE(eventually([&] { return locked([&] { return waiting == 4; }); }));
    EXPECT_EQ(locked([&] { return QNConditionSignal(c); }), QN_S_OK); // no predicate: back to sleep
    EXPECT_EQ(locked([&] { return go = true, QNConditionBroadcast(c); }), QN_S_OK);
    for (std::thread& t : waiters)
        t.join();
    EXPECT_EQ(passed, 4);

    ASSERT_EQ(QNConditionAcquire(c), QN_S_OK);
    QNRESULT r = QN_S_OK;
    for (int i = 0; i < 100 && r == QN_S_OK; ++i) // wakeups may be spurious
        r = QNConditionTimedWait(c, 10);
    EXPECT_EQ(r, QN_E_TIMEOUT);
    // The lock is held again after the time-out: nobody else gets in until it is released.
    std::atomic<bool> entered{false};
    std::thread other([&] { entered = locked([] { return true; }); });
    std::this_thread::sleep_for(50ms);
    EXPECT_FALSE(entered);
    EXPECT_EQ(QNConditionRelease(c), QN_S_OK);
    other.join();
    EXPECT_TRUE(entered);
    EXPECT_EQ(QNConditionDestroy(c), QN_S_OK);
}

TEST(Sync, NamedObjectsShareState) {
    const std::string event = uniqueName("event"), semaphore = uniqueName("semaphore");
    QNHANDLE a = nullptr, b = nullptr;
    ASSERT_EQ(QNEventCreate(event.c_str(), 0, &a), QN_S_OK);
    ASSERT_EQ(QNEventCreate(event.c_str(), QN_SYNC_INITIAL_SET, &b), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(b, 0), QN_E_TIMEOUT); // the flag is ignored for an existing name
    EXPECT_EQ(QNEventSignal(a), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(b, 10000), QN_S_OK);
    EXPECT_EQ(QNEventTimedWait(a, 0), QN_E_TIMEOUT);
    EXPECT_EQ(QNEventDestroy(a), QN_S_OK);
    EXPECT_EQ(QNEventSignal(b), QN_S_OK); // alive through the other handle
    EXPECT_EQ(QNEventDestroy(b), QN_S_OK);

    int32_t value = -1;
    ASSERT_EQ(QNSemaphoreCreate(3, semaphore.c_str(), 0, &a), QN_S_OK);
    ASSERT_EQ(QNSemaphoreCreate(0, semaphore.c_str(), 0, &b), QN_S_OK);
    EXPECT_EQ(QNSemaphoreWait(b), QN_S_OK);
    EXPECT_EQ(QNSemaphoreGetValue(a, &value), QN_S_OK);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(QNSemaphoreDestroy(a), QN_S_OK);
    EXPECT_EQ(QNSemaphoreDestroy(b), QN_S_OK);
}

TEST(Sync, NamesBelongToOneObjectOfOneKind) {
    using Create = std::function<QNRESULT(const char*, uint32_t, QNHANDLE*)>;
    auto semaphore = [](const char* n, uint32_t f, QNHANDLE* h) {
        return QNSemaphoreCreate(1, n, f, h);
    };
    // clang-format off
    const struct { const char* kind; Create create; std::function<QNRESULT(QNHANDLE)> destroy; } kinds[] = {
        {"mutex", QNMutexCreate, QNMutexDestroy}, {"semaphore", semaphore, QNSemaphoreDestroy},
        {"event", QNEventCreate, QNEventDestroy}, {"gate", QNGateCreate, QNGateDestroy},
        {"rwlock", QNRWLockCreate, QNRWLockDestroy}, {"condition", QNConditionCreate, QNConditionDestroy},
    };
    // clang-format on
    for (size_t i = 0; i < std::size(kinds); ++i) {
        const auto& kind = kinds[i];
        const auto& other = kinds[(i + 1) % std::size(kinds)];
        SCOPED_TRACE(kind.kind);
        const std::string name = uniqueName(kind.kind);
        QNHANDLE h = nullptr, h2 = nullptr;
        ASSERT_EQ(kind.create(name.c_str(), QN_SYNC_CREATE_NEW, &h), QN_S_OK);
        EXPECT_EQ(kind.create(name.c_str(), QN_SYNC_CREATE_NEW, &h2), QN_E_ALREADYEXISTS);
        EXPECT_EQ(h2, nullptr);
        EXPECT_EQ(other.create(name.c_str(), 0, &h2), QN_E_HANDLE);
        EXPECT_EQ(kind.create(name.c_str(), 0x4, &h2), QN_E_INVALIDARG);
        EXPECT_EQ(kind.create(nullptr, 0x80000000u, &h2), QN_E_INVALIDARG);
        EXPECT_TRUE(QN_FAILED(other.destroy(h))) << "accepted a handle of another kind";
        EXPECT_EQ(kind.destroy(h), QN_S_OK);
        ASSERT_EQ(kind.create(name.c_str(), QN_SYNC_CREATE_NEW, &h), QN_S_OK); // free again
        EXPECT_EQ(kind.destroy(h), QN_S_OK);
    }
}
