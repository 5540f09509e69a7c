// Many threads on the reader-writer lock and the condition, with bounded counts. Also run under
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
