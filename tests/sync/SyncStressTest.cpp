// Many threads on each primitive, each with the invariant it exists to keep.
#include "qn/sync/Event.h"
#include "qn/sync/Gate.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"
#include "qn/sync/Semaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace qn;

namespace {

constexpr int THREADS = 8;
constexpr int ROUNDS = 2000;

void onThreads(int count, const std::function<void(int)>& body) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(body, i);
    for (std::thread& t : threads)
        t.join();
}

} // namespace

TEST(SyncStress, MutexExcludesAndIsRecursiveForItsOwner) {
    Reference<sync::Mutex> mutex(new sync::Mutex);
    std::atomic<int> inside{0};
    long counter = 0; // guarded by the mutex alone
    onThreads(THREADS, [&](int) {
        for (int i = 0; i < ROUNDS; ++i) {
            mutex->wait();
            if (i % 7 == 0)
                mutex->wait();
            EXPECT_EQ(++inside, 1);
            ++counter;
            --inside;
            if (i % 7 == 0)
                mutex->signal();
            mutex->signal();
        }
    });
    EXPECT_EQ(counter, long(THREADS) * ROUNDS);
}

// Readers must hold the lock at the same time: each waits, holding it, for all the others.
TEST(SyncStress, ReadersHoldTheLockTogether) {
    Reference<sync::ReaderWriterLock> lock(new sync::ReaderWriterLock);
    std::atomic<int> arrived{0};
    onThreads(4, [&](int) {
        lock->waitShared();
        ++arrived;
        while (arrived < 4)
            std::this_thread::yield();
        lock->signalShared();
    });
}

TEST(SyncStress, GateLetsEveryoneThroughUntilClosed) {
    Reference<sync::Gate> gate(new sync::Gate);
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> through{0};
        std::thread opener([&] { gate->open(); });
        onThreads(THREADS, [&](int) {
            gate->wait();
            ++through;
            for (int i = 0; i < 10; ++i) // still open: it stays so until closed
                EXPECT_TRUE(gate->tryWait());
        });
        opener.join();
        EXPECT_EQ(through.load(), THREADS);
        gate->close();
        onThreads(THREADS, [&](int) { EXPECT_FALSE(gate->wait(0u)); });
    }
}

TEST(SyncStress, SemaphoreCountsAreConserved) {
    constexpr int UNITS = 3;
    Reference<sync::Semaphore> semaphore(new sync::Semaphore(UNITS));
    std::atomic<int> holders{0};
    onThreads(THREADS, [&](int id) {
        for (int i = 0; i < ROUNDS; ++i) {
            if (id % 2 ? semaphore->tryWait() : (semaphore->wait(), true)) {
                EXPECT_LE(++holders, UNITS);
                --holders;
                semaphore->signal();
            }
        }
    });
    EXPECT_EQ(semaphore->getValue(), UNITS);

    // Producers and consumers: every post is taken exactly once.
    Reference<sync::Semaphore> items(new sync::Semaphore(0));
    std::atomic<int> taken{0};
    onThreads(THREADS, [&](int id) {
        for (int i = 0; i < ROUNDS; ++i) {
            if (id % 2) {
                items->signal();
            } else {
                items->wait();
                ++taken;
            }
        }
    });
    EXPECT_EQ(taken.load(), THREADS / 2 * ROUNDS);
    EXPECT_EQ(items->getValue(), 0);
}

TEST(SyncStress, EventsHandOverEverySignal) {
    Reference<sync::Event> ping(new sync::Event), pong(new sync::Event);
    std::thread partner([&] {
        for (int i = 0; i < ROUNDS; ++i) {
            ping->wait();
            pong->signal();
        }
    });
    for (int i = 0; i < ROUNDS; ++i) {
        ping->signal();
        pong->wait();
    }
    partner.join();
    EXPECT_FALSE(ping->wait(0u));
    EXPECT_FALSE(pong->wait(0u));
}
