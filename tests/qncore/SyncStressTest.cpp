// Many threads on each kind of lock or signal, with bounded counts. Also run under
// ThreadSanitizer: the plain (non-atomic) data below are what it watches.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <deque>
#include <vector>

using namespace qntest;

namespace {

template <class F> void runThreads(int count, F body) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(body, i);
    for (std::thread& t : threads)
        t.join();
}

} // namespace

TEST(SyncStress, MutexExcludes) {
    QNHANDLE m = nullptr;
    ASSERT_EQ(QNMutexCreate(nullptr, 0, &m), QN_S_OK);
    long counter = 0;
    runThreads(8, [&](int) {
        for (int i = 0; i < 1000; ++i) {
            const int depth = 1 + i % 3; // recursion on the way
            for (int d = 0; d < depth; ++d)
                QNMutexAcquire(m);
            ++counter;
            for (int d = 0; d < depth; ++d)
                QNMutexRelease(m);
        }
    });
    EXPECT_EQ(counter, 8 * 1000);
    EXPECT_EQ(QNMutexDestroy(m), QN_S_OK);
}

TEST(SyncStress, ReadersTogetherWritersAlone) {
    QNHANDLE l = nullptr;
    ASSERT_EQ(QNRWLockCreate(nullptr, 0, &l), QN_S_OK);
    std::atomic<int> readers{0}, writers{0}, violations{0};
    long data[4] = {};
    runThreads(10, [&](int id) {
        for (int i = 0; i < 2000; ++i) {
            if (id < 3) {
                if ((i % 2 ? QNRWLockAcquireWrite(l) : QNRWLockTryAcquireWrite(l)) != QN_S_OK)
                    continue;
                violations += (++writers != 1) + (readers != 0);
                for (long& d : data)
                    ++d;
                --writers;
                QNRWLockReleaseWrite(l);
            } else {
                if ((i % 3 ? QNRWLockAcquireRead(l) : QNRWLockTryAcquireRead(l)) != QN_S_OK)
                    continue;
                ++readers;
                violations += (writers != 0) + (data[0] != data[3]); // updates are seen whole
                --readers;
                QNRWLockReleaseRead(l);
            }
        }
    });
    EXPECT_EQ(violations, 0);
    EXPECT_GE(data[0], 3 * 1000);
    EXPECT_EQ(QNRWLockDestroy(l), QN_S_OK);
}

TEST(SyncStress, SemaphoreBoundsAResource) {
    QNHANDLE s = nullptr;
    ASSERT_EQ(QNSemaphoreCreate(3, nullptr, 0, &s), QN_S_OK);
    std::atomic<int> inUse{0}, tooMany{0};
    runThreads(10, [&](int id) {
        for (int i = 0; i < 1000; ++i) {
            if ((id % 2 ? QNSemaphoreWait(s) : QNSemaphoreTimedWait(s, 1)) != QN_S_OK)
                continue;
            tooMany += ++inUse > 3;
            --inUse;
            QNSemaphorePost(s);
        }
    });
    EXPECT_EQ(tooMany, 0);
    int32_t value = -1;
    EXPECT_EQ(QNSemaphoreGetValue(s, &value), QN_S_OK);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(QNSemaphoreDestroy(s), QN_S_OK);
}

TEST(SyncStress, ConditionProducersAndConsumers) {
    QNHANDLE c = nullptr;
    ASSERT_EQ(QNConditionCreate(nullptr, 0, &c), QN_S_OK);
    std::deque<int> queue; // at most 8 items
    int producing = 2;
    long long consumed = 0;
    constexpr int kItems = 5000;
    runThreads(5, [&](int id) {
        QNConditionAcquire(c);
        if (id < 2) {
            for (int i = 1; i <= kItems; ++i) {
                while (queue.size() >= 8)
                    QNConditionWait(c);
                queue.push_back(i);
                QNConditionBroadcast(c);
            }
            --producing;
        } else {
            while (!queue.empty() || producing > 0) {
                if (!queue.empty()) {
                    consumed += queue.front();
                    queue.pop_front();
                } else if (id == 4) {
                    QNConditionTimedWait(c, 1); // either outcome: the loop looks again
                } else {
                    QNConditionWait(c);
                }
                QNConditionBroadcast(c);
            }
        }
        QNConditionBroadcast(c);
        QNConditionRelease(c);
    });
    EXPECT_EQ(consumed, 2LL * kItems * (kItems + 1) / 2);
    EXPECT_EQ(QNConditionDestroy(c), QN_S_OK);
}

TEST(SyncStress, GateReleasesManyWaiters) {
    QNHANDLE g = nullptr;
    ASSERT_EQ(QNGateCreate(nullptr, 0, &g), QN_S_OK);
    for (int round = 0; round < 10; ++round) {
        std::atomic<int> arrived{0}, through{0};
        std::thread opener([&] {
            EXPECT_TRUE(eventually([&] { return arrived == 16; }));
            QNGateOpen(g);
        });
        runThreads(16, [&](int) {
            ++arrived;
            through += QNGateWait(g) == QN_S_OK;
        });
        opener.join();
        EXPECT_EQ(through, 16);
        EXPECT_EQ(QNGateClose(g), QN_S_OK);
    }
    EXPECT_EQ(QNGateDestroy(g), QN_S_OK);
}
