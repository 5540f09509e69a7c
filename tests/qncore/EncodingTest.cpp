#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace qntest;

namespace {

std::string defaultEncoding() {
    QNWCHAR buffer[64];
    EXPECT_EQ(QNGetDefaultCharEncoding(buffer, 64), QN_S_OK);
    const std::basic_string_view<QNWCHAR> name(buffer, QNStrLenW(buffer));
    EXPECT_TRUE(!name.empty() && name.size() < 64);
    return std::string(name.begin(), name.end());
}

} // namespace

TEST(Encoding, NamesTheDefaultCodec) {
    const std::string name = defaultEncoding();
#ifdef _WIN32
    const bool codePage = name.size() > 2 && name.compare(0, 2, "CP") == 0 &&
                          name.find_first_not_of("0123456789", 2) == std::string::npos;
    EXPECT_TRUE(codePage || name == "UTF-8" || name == "ISO8859_1" || name == "ASCII") << name;
#else
    // The user's locale comes from the environment at each call; LC_ALL rules, an empty one
    // counts as unset, then LC_CTYPE, then LANG.
    const char* names[] = {"LC_ALL", "LC_CTYPE", "LANG"};
    std::string saved[3];
    bool present[3];
    for (int i = 0; i < 3; ++i)
        if ((present[i] = std::getenv(names[i]) != nullptr))
            saved[i] = std::getenv(names[i]);
    const struct {
        const char* values[3];
        const char* expected;
    } cases[] = {
        {{"C.UTF-8", nullptr, "C"}, "UTF-8"},   {{"C", "C.UTF-8", "C.UTF-8"}, "ASCII"},
        {{nullptr, "C.UTF-8", "C"}, "UTF-8"},   {{"", nullptr, "C.UTF-8"}, "UTF-8"},
        {{nullptr, nullptr, nullptr}, "ASCII"},
    };
    for (const auto& c : cases) {
        for (int i = 0; i < 3; ++i)
            c.values[i] ? setenv(names[i], c.values[i], 1) : unsetenv(names[i]);
        EXPECT_EQ(defaultEncoding(), c.expected) << ::testing::PrintToString(c.values);
    }
    for (int i = 0; i < 3; ++i)
        present[i] ? setenv(names[i], saved[i].c_str(), 1) : unsetenv(names[i]);
#endif
    QNWCHAR small[64];
    const auto size = static_cast<int32_t>(name.size());
    EXPECT_EQ(QNGetDefaultCharEncoding(small, size), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(QNGetDefaultCharEncoding(small, 0), QN_E_BUFFERTOOSMALL);
    EXPECT_EQ(QNGetDefaultCharEncoding(small, size + 1), QN_S_OK);
    EXPECT_EQ(QNStrLenW(small), size);
}
