#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;

TEST(Exception, HandlersCatchWhatTheTreeSays) {
    // An unexpected end of input is not an I/O failure; a time-out is.
    EXPECT_THROW(
        {
            try {
                throw io::UnexpectedEOFException();
            } catch (const io::IoException&) {
                FAIL() << "caught as IoException";
            }
        },
        io::UnexpectedEOFException);
    EXPECT_THROW(throw io::TimeoutException(String(u"slow")), io::IoException);
    EXPECT_THROW(throw IntDivByZeroException(), ExternalException);
    EXPECT_THROW(throw ReadOnlyException(), Exception);

    try {
        throw OutOfMemoryException();
    } catch (const std::bad_alloc& e) {
        EXPECT_STREQ(e.what(), "bad allocation");
        const auto* ours = dynamic_cast<const OutOfMemoryException*>(&e);
        ASSERT_NE(ours, nullptr);
        EXPECT_EQ(ours->getResult(), QN_E_OUTOFMEMORY);
    }
}

TEST(Exception, BoundaryTranslation) {
    EXPECT_EQ(translateExceptions([] {}), QN_S_OK);
    EXPECT_EQ(translateExceptions([] { return QN_S_FALSE; }), QN_S_FALSE);
    EXPECT_EQ(translateExceptions([] { throw ResultException(QN_E_HANDLE); }), QN_E_HANDLE);
    EXPECT_EQ(translateExceptions([] { throw OutOfMemoryException(); }), QN_E_OUTOFMEMORY);
    EXPECT_EQ(translateExceptions([] { throw std::bad_alloc(); }), QN_E_OUTOFMEMORY);
    EXPECT_EQ(translateExceptions([] { throw 42; }), QN_E_FAIL);
    EXPECT_EQ(translateExceptions([] { throw text::charset::UnknownEncodingException(); }),
              static_cast<QNRESULT>(0x8BB34103));
}
