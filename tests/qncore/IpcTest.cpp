#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace qntest;

namespace {

// Closes the handle and removes the name at the end of a test.
struct Named {
    explicit Named(const char* stem) : name(uniqueName(stem)) {}
    ~Named() {
        if (handle)
            QNIpcSemaphoreClose(handle);
        QNIpcSemaphoreUnlink(name.c_str());
    }
    std::string name;
    QNIPCSEMAPHORE handle = nullptr;
};

} // namespace

TEST(IpcSemaphore, CountsAcrossHandles) {
    Named s("count");
    ASSERT_EQ(QNIpcSemaphoreCreate(s.name.c_str(), 2, 0, &s.handle), QN_S_OK);
    QNIPCSEMAPHORE other = nullptr;
    ASSERT_EQ(QNIpcSemaphoreOpen(s.name.c_str(), &other), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreTryWait(other), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreWait(s.handle), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreTryWait(s.handle), QN_E_TIMEOUT);
    EXPECT_EQ(QNIpcSemaphoreTimedWait(other, 10), QN_E_TIMEOUT);
    EXPECT_EQ(QNIpcSemaphorePost(other), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreTimedWait(s.handle, 10), QN_S_OK);
    // Opening an existing name keeps its count; the initial count is for a new one.
    QNIPCSEMAPHORE again = nullptr;
    ASSERT_EQ(QNIpcSemaphoreCreate(s.name.c_str(), 5, 0, &again), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreTryWait(again), QN_E_TIMEOUT);
    // A post on one thread releases a wait on another.
    auto waiter = std::async(std::launch::async, [&] { return QNIpcSemaphoreWait(again); });
    EXPECT_EQ(QNIpcSemaphorePost(s.handle), QN_S_OK);
    EXPECT_EQ(waiter.get(), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreClose(again), QN_S_OK);
    EXPECT_EQ(QNIpcSemaphoreClose(other), QN_S_OK);
}

TEST(IpcSemaphore, RefusalsAndLimits) {
    Named s("limits");
    ASSERT_EQ(
        QNIpcSemaphoreCreate(s.name.c_str(), QN_IPC_SEMAPHORE_MAX, QN_IPC_CREATE_NEW, &s.handle),
        QN_S_OK);
    EXPECT_EQ(QNIpcSemaphorePost(s.handle), QN_E_TOOMANYPOSTS);
    QNIPCSEMAPHORE h = nullptr;
    EXPECT_EQ(QNIpcSemaphoreCreate(s.name.c_str(), 0, QN_IPC_CREATE_NEW, &h), QN_E_ALREADYEXISTS);
    EXPECT_EQ(h, nullptr);
    EXPECT_EQ(QNIpcSemaphoreOpen(uniqueName("absent").c_str(), &h), QN_E_FILENOTFOUND);
    const std::string tooLong(201, 'n');
    for (const char* bad : {"", "a/b", "a\\b", tooLong.c_str(), static_cast<const char*>(nullptr)})
        EXPECT_EQ(QNIpcSemaphoreCreate(bad, 0, 0, &h), QN_E_INVALIDARG);
    EXPECT_EQ(QNIpcSemaphoreUnlink("a/b"), QN_E_INVALIDARG);
    EXPECT_EQ(QNIpcSemaphoreCreate(s.name.c_str(), 0x80000000u, 0, &h), QN_E_INVALIDARG);
    EXPECT_EQ(QNIpcSemaphoreWait(nullptr), QN_E_HANDLE);
}
