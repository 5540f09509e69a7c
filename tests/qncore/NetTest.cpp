#include "TestSupport.h"

#include <gtest/gtest.h>

#include "qncore/QNNet.h"

#ifndef _WIN32
#include <arpa/inet.h>
#include <netinet/in.h>
#endif

namespace {

addrinfo hintsOf(int family, int flags) {
    addrinfo hints{};
    hints.ai_family = family;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    return hints;
}

} // namespace

TEST(Net, LoopbackLookups) {
    addrinfo hints = hintsOf(AF_UNSPEC, AI_NUMERICHOST | AI_NUMERICSERV);
    addrinfo* result = nullptr;
    ASSERT_EQ(QNgetaddrinfo("127.0.0.1", "80", &hints, &result), 0);
    ASSERT_EQ(result->ai_family, AF_INET);
    const auto* in = reinterpret_cast<const sockaddr_in*>(result->ai_addr);
    EXPECT_EQ(ntohl(in->sin_addr.s_addr), 0x7F000001u);
    EXPECT_EQ(ntohs(in->sin_port), 80);
    QNfreeaddrinfo(result);

    hints = hintsOf(AF_INET, 0);
    ASSERT_EQ(QNgetaddrinfo("localhost", "80", &hints, &result), 0);
    for (const addrinfo* a = result; a; a = a->ai_next)
        EXPECT_EQ(ntohl(reinterpret_cast<const sockaddr_in*>(a->ai_addr)->sin_addr.s_addr) >> 24,
                  127u);
    QNfreeaddrinfo(result);
}

TEST(Net, FailuresUseTheCoreNumbers) {
    addrinfo* result = nullptr;
    const addrinfo badFamily = hintsOf(12345, AI_NUMERICHOST);
    EXPECT_EQ(QNgetaddrinfo("127.0.0.1", nullptr, &badFamily, &result), QN_EAI_FAMILY);
    const addrinfo canonicalOfNothing = hintsOf(AF_INET, AI_CANONNAME);
    EXPECT_EQ(QNgetaddrinfo(nullptr, "80", &canonicalOfNothing, &result), QN_EAI_BADFLAGS);
    const addrinfo numeric = hintsOf(AF_INET, AI_NUMERICHOST);
    EXPECT_EQ(QNgetaddrinfo("localhost", nullptr, &numeric, &result), QN_EAI_NONAME);
}
