#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace qntest;

namespace {

struct Shared {
    QNHANDLE gate = nullptr;
    std::atomic<uint32_t> ranOn{0};
};

uint32_t QN_STDCALL waitAtGate(void* raw) {
    auto* shared = static_cast<Shared*>(raw);
    shared->ranOn = QNThreadGetCurrentId();
    QNGateWait(shared->gate);
    return 42;
}

} // namespace

TEST(Thread, StartsJoinsWithAndWithoutTimeOutAndReportsItsExitCode) {
    Shared shared;
    ASSERT_EQ(QNGateCreate(nullptr, 0, &shared.gate), QN_S_OK);
    QNHANDLE thread = nullptr;
    uint32_t id = 0, code = 0;
    ASSERT_EQ(QNThreadCreate(&waitAtGate, &shared, &thread, &id), QN_S_OK);
    EXPECT_NE(id, 0u);
    EXPECT_NE(id, QNThreadGetCurrentId());
    EXPECT_EQ(QNThreadJoin(thread, 0, &code), QN_E_TIMEOUT);
    EXPECT_EQ(QNThreadJoin(thread, 5, &code), QN_E_TIMEOUT);
    QNGateOpen(shared.gate);
    EXPECT_EQ(QNThreadJoin(thread, QN_INFINITE, &code), QN_S_OK);
    EXPECT_EQ(code, 42u);
    EXPECT_EQ(shared.ranOn.load(), id);
    EXPECT_EQ(QNThreadJoin(thread, 0, nullptr), QN_S_OK); // again, once ended
    EXPECT_EQ(QNThreadClose(thread), QN_S_OK);
    QNGateDestroy(shared.gate);
}
