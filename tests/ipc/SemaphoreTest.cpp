#include "io/StreamTestSupport.h"

#include "qn/ipc/Semaphore.h"

#include <fstream>

using namespace qn;
using namespace qntest;

namespace {

long readCounter(const std::filesystem::path& path) {
    long value = -1;
    std::ifstream(path) >> value;
    return value;
}

} // namespace

TEST(IpcSemaphoreClass, ModesAndWaits) {
    const std::string name = uniqueName("modes");
    {
        Reference<ipc::Semaphore> first =
            new ipc::Semaphore(name.c_str(), 1, ipc::Semaphore::CREATE_ONLY);
        EXPECT_EQ(first->getName(), name);
        EXPECT_EQ(resultOf([&] { ipc::Semaphore(name.c_str(), 1, ipc::Semaphore::CREATE_ONLY); }),
                  QN_E_ALREADYEXISTS);
        Reference<ipc::Semaphore> second =
            new ipc::Semaphore(name.c_str(), 0, ipc::Semaphore::OPEN_ONLY);
        {
            sync::LockGuard guard(*first);
            EXPECT_FALSE(second->tryWait());
            EXPECT_FALSE(second->wait(5));
        }
        EXPECT_TRUE(second->wait(1000));
        second->signal();
    }
    EXPECT_EQ(resultOf([] { ipc::Semaphore("bad/name"); }), QN_E_INVALIDARG);
    ipc::Semaphore::unlink(name.c_str());
    EXPECT_EQ(resultOf([&] { ipc::Semaphore(name.c_str(), 0, ipc::Semaphore::OPEN_ONLY); }),
              QN_E_FILENOTFOUND);
#ifndef _WIN32
    EXPECT_FALSE(ipc::Semaphore::unlink(name.c_str()));
#endif
}

// Run as a child process: adds 1 to the counter in a file, count times, under the semaphore.
TEST(IpcSemaphoreChild, DISABLED_Increment) {
    const std::vector<std::string> args = childArguments();
    ASSERT_EQ(args.size(), 3u);
    Reference<ipc::Semaphore> lock =
        new ipc::Semaphore(args[0].c_str(), 0, ipc::Semaphore::OPEN_ONLY);
    const int count = std::stoi(args[2]);
    for (int i = 0; i < count; ++i) {
        sync::LockGuard guard(*lock);
        const long value = readCounter(args[1]);
        ASSERT_GE(value, 0);
        std::ofstream(args[1], std::ios::trunc) << value + 1;
    }
}

TEST(IpcSemaphoreClass, SerialisesTwoProcesses) {
    ScratchDir dir;
    const std::string name = uniqueName("counter");
    const std::string counter = (dir.path / "counter").string();
    std::ofstream(counter) << 0;
    constexpr int COUNT = 300;
    {
        Reference<ipc::Semaphore> lock =
            new ipc::Semaphore(name.c_str(), 1, ipc::Semaphore::CREATE_ONLY);
        ChildProcess a("IpcSemaphoreChild.DISABLED_Increment",
                       {name, counter, std::to_string(COUNT)});
        ChildProcess b("IpcSemaphoreChild.DISABLED_Increment",
                       {name, counter, std::to_string(COUNT)});
        EXPECT_EQ(a.wait(), 0);
        EXPECT_EQ(b.wait(), 0);
    }
    ipc::Semaphore::unlink(name.c_str());
    EXPECT_EQ(readCounter(counter), 2 * COUNT);
}
