// Threads started, joined and dropped from many threads at once.
#include "qn/exec/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace qn;

namespace {

class Counting : public exec::IRunnable {
public:
    explicit Counting(std::atomic<long>& total) : m_total(total) {}
    void run() override {
        for (int i = 0; i < 100; ++i)
            ++m_total;
    }

private:
    std::atomic<long>& m_total;
};

} // namespace

TEST(ThreadStress, EveryRunCountsOnceWhateverJoinsIt) {
    constexpr int STARTERS = 4, PER_STARTER = 50;
    std::atomic<long> total{0};
    Counting task(total);
    std::vector<std::thread> starters;
    for (int s = 0; s < STARTERS; ++s) {
        starters.emplace_back([&, s] {
            for (int i = 0; i < PER_STARTER; ++i) {
                Reference<exec::Thread> thread(new exec::Thread(&task, "qn-stress"));
                thread->start();
                // A second joiner races the first; both see the end.
                std::thread other([&] { EXPECT_TRUE(thread->join(QN_INFINITE)); });
                while (!thread->join(s))
                    std::this_thread::yield();
                other.join();
                EXPECT_FALSE(thread->isAlive());
            }
        });
    }
    for (std::thread& t : starters)
        t.join();
    EXPECT_EQ(total.load(), long(STARTERS) * PER_STARTER * 100);
}
