#include "qn/exec/Thread.h"
#include "qn/core/Exception.h"
#include "qn/sync/Event.h"
#include "qn/sync/Gate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

using namespace qn;

namespace {

class Task : public exec::IRunnable {
public:
    explicit Task(std::function<void()> body) : m_body(std::move(body)) {}
    void run() override { m_body(); }

private:
    std::function<void()> m_body;
};

// Records what the failure handler was told, and restores the default afterwards.
struct FailureLog {
    static inline QNRESULT result = QN_S_OK;
    static inline bool hadException = false;
    static inline uint32_t thread = 0;
    static void record(exec::Thread& t, const Exception* failure, QNRESULT r) {
        result = r;
        hadException = failure != nullptr;
        thread = t.getId();
    }
    FailureLog() { exec::Thread::setFailureHandler(&record); }
    ~FailureLog() { exec::Thread::setFailureHandler(nullptr); }
};

} // namespace

TEST(Thread, RunsItsTargetOnAThreadOfItsOwn) {
    uint32_t ranOn = 0;
    Task task([&] { ranOn = exec::Thread::currentId(); });
    Reference<exec::Thread> thread(new exec::Thread(&task, "qn-test-worker"));
    EXPECT_EQ(thread->getId(), 0u);
    EXPECT_FALSE(thread->isAlive());
    thread->start();
    thread->join();
    EXPECT_FALSE(thread->isAlive());
    EXPECT_NE(ranOn, 0u);
    EXPECT_EQ(ranOn, thread->getId());
    EXPECT_NE(ranOn, exec::Thread::currentId());
    EXPECT_EQ(thread->getExitResult(), QN_S_OK);
    EXPECT_STREQ(thread->getName(), "qn-test-worker");
    EXPECT_TRUE(thread->join(0u)); // joining again is allowed
    EXPECT_THROW(thread->start(), IllegalStateException);
}

TEST(Thread, JoinWithTimeOutAnswersWhileTheThreadRuns) {
    Reference<sync::Gate> gate(new sync::Gate);
    Task task([&] { gate->wait(); });
    Reference<exec::Thread> thread(new exec::Thread(&task));
    EXPECT_THROW(thread->join(), IllegalStateException);
    EXPECT_THROW(thread->join(0u), IllegalStateException);
    thread->start();
    EXPECT_FALSE(thread->join(0u));
    EXPECT_FALSE(thread->join(5u));
    EXPECT_TRUE(thread->isAlive());
    gate->open();
    EXPECT_TRUE(thread->join(QN_INFINITE));
    EXPECT_FALSE(thread->isAlive());
}

TEST(Thread, AnEscapingExceptionEndsOnlyTheThread) {
    FailureLog log;
    Task library([] { throw ResultException(QN_E_INVALIDARG); });
    Task foreign([] { throw std::runtime_error("not ours"); });
    Task memory([] { throw std::bad_alloc(); });
    struct Case {
        Task* task;
        QNRESULT result;
        bool hadException;
    } cases[] = {{&library, QN_E_INVALIDARG, true},
                 {&foreign, QN_E_FAIL, false},
                 {&memory, QN_E_OUTOFMEMORY, false}};
    for (const Case& c : cases) {
        Reference<exec::Thread> thread(new exec::Thread(c.task));
        thread->start();
        thread->join();
        EXPECT_EQ(thread->getExitResult(), c.result);
        EXPECT_EQ(FailureLog::result, c.result);
        EXPECT_EQ(FailureLog::hadException, c.hadException);
        EXPECT_EQ(FailureLog::thread, thread->getId());
    }
}

TEST(Thread, JoiningItselfIsRefused) {
    QNRESULT refused = QN_S_OK;
    exec::Thread* self = nullptr;
    Task task([&] {
        try {
            self->join();
        } catch (const ResultException& e) {
            refused = e.getResult();
        }
    });
    Reference<exec::Thread> thread(new exec::Thread(&task));
    self = thread.get();
    thread->start();
    thread->join();
    EXPECT_EQ(refused, QN_E_POSSIBLEDEADLOCK);
}

TEST(Thread, ARunningThreadOutlivesItsLastHolder) {
    // A subclass with its own run, telling when it is destroyed.
    static std::atomic<bool> gone{false};
    class Worker : public exec::Thread {
    public:
        explicit Worker(sync::Gate& go) : m_go(go) {}
        ~Worker() override { gone = true; }
        void run() override { m_go.wait(); }

    private:
        sync::Gate& m_go;
    };
    Reference<sync::Gate> go(new sync::Gate);
    Reference<Worker>(new Worker(*go))->start();
    EXPECT_FALSE(gone); // its thread holds it until run returns
    go->open();
    while (!gone)
        exec::Thread::sleep(1);
}

TEST(Thread, NamesTheThreadForDebuggers) {
#ifdef __linux__
    std::string seen;
    Task task([&] {
        std::ifstream comm("/proc/thread-self/comm");
        std::getline(comm, seen);
    });
    // 15 bytes at most, never half a character: the "ä" (2 bytes) at 14-15 is dropped whole.
    Reference<exec::Thread> thread(new exec::Thread(&task, "qn-test-namesxä-tail"));
    thread->start();
    thread->join();
    EXPECT_EQ(seen, "qn-test-namesx");
#else
    GTEST_SKIP() << "thread names are read back on Linux only";
#endif
}
