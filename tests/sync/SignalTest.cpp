#include "qn/core/Class.h"
#include "qn/core/Exception.h"
#include "qn/sync/Condition.h"
#include "qn/sync/Event.h"
#include "qn/sync/FakeMutex.h"
#include "qn/sync/Gate.h"
#include "qn/sync/Semaphore.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

using namespace qn;

namespace {

// The code of the ResultException that f throws; 0 when it throws none.
template <class F> QNRESULT thrown(F&& f) {
    try {
        f();
    } catch (const ResultException& e) {
        return e.getResult();
    }
    return QN_S_OK;
}

std::string name(const char* stem) {
    return std::string("qn.test.signal.") + stem + "." +
           std::to_string(reinterpret_cast<uintptr_t>(&stem));
}

} // namespace

TEST(Event, CannotBePolledButTimedWaitsAnswer) {
    Reference<sync::Event> event(new sync::Event);
    EXPECT_FALSE(event->wait(0u));
    event->signal();
    EXPECT_FALSE(event->tryWait()); // not even when signalled: only a wait takes the signal
    EXPECT_TRUE(event->wait(0u));
    EXPECT_FALSE(event->wait(1u)); // the wait reset it

    Reference<sync::Event> set(new sync::Event(nullptr, QN_SYNC_INITIAL_SET));
    set->wait();
    std::thread([&] { set->signal(); }).join();
    set->wait();
}

TEST(Semaphore, CountsAreKeptAndRefusalsDoNotThrow) {
    Reference<sync::Semaphore> semaphore(new sync::Semaphore(0));
    EXPECT_FALSE(semaphore->tryWait());
    Reference<sync::Semaphore> full(new sync::Semaphore(0x7FFFFFFF));
    EXPECT_EQ(thrown([&] { full->signal(); }), QN_E_TOOMANYPOSTS);
    EXPECT_EQ(full->getValue(), 0x7FFFFFFF); // unchanged and still usable
    full->wait();
    full->signal();
}

TEST(Condition, TimeOutIsAnExceptionAndTheLockIsHeldAgain) {
    Reference<sync::Condition> condition(new sync::Condition);
    {
        sync::Condition::Holder hold(*condition);
        EXPECT_EQ(thrown([&] { condition->wait(1u); }), QN_E_TIMEOUT);
        // Held again after the time-out: a second acquire by the holder is refused.
        EXPECT_EQ(thrown([&] { condition->acquire(); }), QN_E_POSSIBLEDEADLOCK);
        condition->signal(); // nobody waits: nothing happens
        condition->broadcast();
    }
    bool acquired = false;
    std::thread([&] {
        condition->acquire();
        acquired = true;
        condition->release();
    }).join();
    EXPECT_TRUE(acquired);
    EXPECT_EQ(thrown([&] { condition->release(); }), QN_E_NOTOWNER);
}

TEST(FakeMutex, NeverBlocksNorRefuses) {
    Reference<sync::FakeMutex> fake(new sync::FakeMutex);
    fake->wait();
    EXPECT_TRUE(fake->tryWait());
    bool other = false;
    std::thread([&] { other = fake->tryWait(); }).join();
    EXPECT_TRUE(other);
    fake->signal();
    fake->signal(); // more releases than takes are no fault either
}

TEST(SyncObjects, CreationFailuresAreResultExceptions) {
    EXPECT_EQ(thrown([] { sync::Event(nullptr, 0x80); }), QN_E_INVALIDARG);
    EXPECT_EQ(thrown([] { sync::Gate(nullptr, 0x80); }), QN_E_INVALIDARG);
    EXPECT_EQ(thrown([] { sync::Semaphore(0x80000000u); }), QN_E_INVALIDARG);
    EXPECT_EQ(thrown([] { sync::Condition(nullptr, 0x80); }), QN_E_INVALIDARG);

    const std::string shared = name("kind");
    Reference<sync::Gate> gate(new sync::Gate(shared.c_str()));
    EXPECT_EQ(thrown([&] { sync::Event other(shared.c_str()); }), QN_E_HANDLE);
    EXPECT_EQ(thrown([&] { sync::Gate other(shared.c_str(), QN_SYNC_CREATE_NEW); }),
              QN_E_ALREADYEXISTS);
    // One name is one gate.
    Reference<sync::Gate> same(new sync::Gate(shared.c_str()));
    gate->open();
    EXPECT_TRUE(same->tryWait());
}

TEST(SyncObjects, ConcreteClassesAreCreatedByName) {
    const char16_t* made[] = {u"CQNEvent", u"CQNFakeMutex", u"CQNGate",
                              u"CQNMutex", u"CQNRWLock",    u"CQNSemaphore"};
    for (const char16_t* n : made) {
        Reference<Object> object(Class::forName(n)->createInstance());
        EXPECT_TRUE(Class::forName(n)->isInstance(*object));
        EXPECT_NE(dynamic_cast<sync::Object*>(object.get()), nullptr);
    }
    for (const char16_t* n : {u"CQNSyncObject", u"CQNLockObject"})
        EXPECT_THROW(Class::forName(n)->createInstance(), IllegalAccessException);
}
