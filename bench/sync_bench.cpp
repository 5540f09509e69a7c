// The sync primitives and threads against the standard library's, on the same work: an
// uncontended lock and release, a semaphore post and take, a shared-lock round, a condition
// hand-over between two threads, and starting and joining a thread. Times are the measuring
// thread's, as for every case of bench/run; the two-thread cases block alike on both sides.
#include "qn/exec/Thread.h"
#include "qn/sync/Condition.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"
#include "qn/sync/Semaphore.h"

#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>
#include <shared_mutex>
#include <thread>

namespace {

using qn::Reference;

void LockRelease_ours(benchmark::State& state) {
    Reference<qn::sync::Mutex> mutex(new qn::sync::Mutex);
    for (auto _ : state) {
        mutex->wait();
        mutex->signal();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(LockRelease_ours)->Name("sync.LockRelease/ours");

void LockRelease_std(benchmark::State& state) {
    std::recursive_mutex mutex; // ours is recursive too
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(LockRelease_std)->Name("sync.LockRelease/std::recursive_mutex");

void SharedRound_ours(benchmark::State& state) {
    Reference<qn::sync::ReaderWriterLock> lock(new qn::sync::ReaderWriterLock);
    for (auto _ : state) {
        lock->waitShared();
        lock->signalShared();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(SharedRound_ours)->Name("sync.SharedRound/ours");

void SharedRound_std(benchmark::State& state) {
    std::shared_mutex lock;
    for (auto _ : state) {
        lock.lock_shared();
        lock.unlock_shared();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(SharedRound_std)->Name("sync.SharedRound/std::shared_mutex");

void PostTake_ours(benchmark::State& state) {
    Reference<qn::sync::Semaphore> semaphore(new qn::sync::Semaphore(0));
    for (auto _ : state) {
        semaphore->signal();
        semaphore->wait();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(PostTake_ours)->Name("sync.PostTake/ours");

// The standard library's counting semaphore is C++20; a mutex and a condition variable are
// what a C++17 user writes instead.
void PostTake_std(benchmark::State& state) {
    std::mutex lock;
    std::condition_variable available;
    long count = 0;
    for (auto _ : state) {
        {
            std::lock_guard<std::mutex> hold(lock);
            ++count;
        }
        available.notify_one();
        std::unique_lock<std::mutex> hold(lock);
        available.wait(hold, [&] { return count > 0; });
        --count;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(PostTake_std)->Name("sync.PostTake/std::condition_variable");

constexpr int HANDOVERS = 1000;

void HandOver_ours(benchmark::State& state) {
    Reference<qn::sync::Condition> condition(new qn::sync::Condition);
    for (auto _ : state) {
        int turn = 0;
        std::thread partner([&] {
            for (int i = 0; i < HANDOVERS; ++i) {
                qn::sync::Condition::Holder hold(*condition);
                while (turn % 2 == 0)
                    condition->wait();
                ++turn;
                condition->signal();
            }
        });
        for (int i = 0; i < HANDOVERS; ++i) {
            qn::sync::Condition::Holder hold(*condition);
            while (turn % 2 == 1)
                condition->wait();
            ++turn;
            condition->signal();
        }
        partner.join();
    }
    state.SetItemsProcessed(state.iterations() * HANDOVERS * 2);
}
BENCHMARK(HandOver_ours)->Name("sync.HandOver/ours");

void HandOver_std(benchmark::State& state) {
    std::mutex lock;
    std::condition_variable changed;
    for (auto _ : state) {
        int turn = 0;
        std::thread partner([&] {
            for (int i = 0; i < HANDOVERS; ++i) {
                std::unique_lock<std::mutex> hold(lock);
                changed.wait(hold, [&] { return turn % 2 == 1; });
                ++turn;
                changed.notify_one();
            }
        });
        for (int i = 0; i < HANDOVERS; ++i) {
            std::unique_lock<std::mutex> hold(lock);
            changed.wait(hold, [&] { return turn % 2 == 0; });
            ++turn;
            changed.notify_one();
        }
        partner.join();
    }
    state.SetItemsProcessed(state.iterations() * HANDOVERS * 2);
}
BENCHMARK(HandOver_std)->Name("sync.HandOver/std::condition_variable");

class Nothing : public qn::exec::IRunnable {
public:
    void run() override {}
};

void StartJoin_ours(benchmark::State& state) {
    Nothing nothing;
    for (auto _ : state) {
        Reference<qn::exec::Thread> thread(new qn::exec::Thread(&nothing));
        thread->start();
        thread->join();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(StartJoin_ours)->Name("exec.StartJoin/ours");

void StartJoin_std(benchmark::State& state) {
    Nothing nothing;
    for (auto _ : state) {
        std::thread thread([&] { nothing.run(); });
        thread.join();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(StartJoin_std)->Name("exec.StartJoin/std::thread");

} // namespace

BENCHMARK_MAIN();
