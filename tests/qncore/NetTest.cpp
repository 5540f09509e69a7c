#include "TestSupport.h"

#include <gtest/gtest.h>

#include "qncore/QNNet.h"

namespace {

addrinfo hintsOf(int family, int flags) {
    addrinfo hints{};
    hints.ai_family = family;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    return hints;
}

} // namespace

TEST(Net, FailuresUseTheCoreNumbers) {
    addrinfo* result = nullptr;
    const addrinfo badFamily = hintsOf(12345, AI_NUMERICHOST);
    EXPECT_EQ(QNgetaddrinfo("127.0.0.1", nullptr, &badFamily, &result), QN_EAI_FAMILY);
    const addrinfo canonicalOfNothing = hintsOf(AF_INET, AI_CANONNAME);
    EXPECT_EQ(QNgetaddrinfo(nullptr, "80", &canonicalOfNothing, &result), QN_EAI_BADFLAGS);
    const addrinfo numeric = hintsOf(AF_INET, AI_NUMERICHOST);
    EXPECT_EQ(QNgetaddrinfo("localhost", nullptr, &numeric, &result), QN_EAI_NONAME);
}
