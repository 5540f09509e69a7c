// Copies of one String used and changed on many threads: every change copies first, so each
// thread sees only its own changes and the shared text never moves; and a holder left alone by
// another thread's release changes the text in place only after that thread's last read.
#include "qn/core/String.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using namespace qn;

TEST(StringStressTest, CopiesChangedOnManyThreadsStayIndependent) {
    const String base(u"The quick brown fox jumps over the lazy dog, again and again.");
    const std::u16string expected(base.getData(), static_cast<size_t>(base.getLength()));
    const uint32_t baseHash = base.hashCode();
    constexpr int THREADS = 8;
    constexpr int ROUNDS = 2000;
    std::vector<int> failures(THREADS, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([&, t] {
            const char16_t mark = static_cast<char16_t>(u'A' + t);
            String mine = base;
            for (int round = 0; round < ROUNDS; ++round) {
                String copy = base;
                String second = copy;
                copy.append(mark).setCharAt(0, mark);
                mine = copy;
                const bool intact =
                    second.getData() == base.getData() && second.hashCode() == baseHash &&
                    copy.getLength() == base.getLength() + 1 && copy.getCharAt(0) == mark &&
                    copy.getCharAt(copy.getLength() - 1) == mark;
                if (!intact)
                    ++failures[static_cast<size_t>(t)];
            }
            if (mine.substring(1, mine.getLength() - 2) != base.substring(1, base.getLength() - 1))
                ++failures[static_cast<size_t>(t)];
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < THREADS; ++t)
        EXPECT_EQ(failures[static_cast<size_t>(t)], 0) << "thread " << t;
    EXPECT_EQ(std::u16string(base.getData(), static_cast<size_t>(base.getLength())), expected);
}

TEST(StringStressTest, ChangesInPlaceOnlyAfterTheOtherHolderLetGo) {
    constexpr int ROUNDS = 20000;
    String own(u"0123456789abcdef");
    std::atomic<String*> mailbox{nullptr};
    std::atomic<bool> done{false};
    std::atomic<int> badReads{0};
    std::thread reader([&] {
        while (!done.load() || mailbox.load()) {
            String* copy = mailbox.exchange(nullptr);
            if (!copy)
                continue;
            // Each unit is a digit or a letter whatever the writer does after this copy.
            for (int32_t i = 0; i < copy->getLength(); ++i) {
                if (copy->getCharAt(i) == u'\0')
                    ++badReads;
            }
            delete copy;
        }
    });
    for (int round = 0; round < ROUNDS; ++round) {
        auto* copy = new String(own);
        while (mailbox.load())
            std::this_thread::yield();
        mailbox.store(copy);
        own.setCharAt(round % 16, static_cast<char16_t>(u'a' + round % 26));
    }
    done = true;
    reader.join();
    EXPECT_EQ(badReads.load(), 0);
    EXPECT_EQ(own.getLength(), 16);
}
