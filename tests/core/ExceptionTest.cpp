#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;

namespace {

std::u16string textOf(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

} // namespace

TEST(Exception, DefaultsAndCarriedCodes) {
    EXPECT_EQ(Exception().getDescription().getLength(), 0);
    EXPECT_EQ(Exception().getResult(), QN_E_FAIL);
    EXPECT_EQ(ResultException().getResult(), QN_E_FAIL);
    EXPECT_EQ(ResultException(QN_E_CLASSNOTAVAILABLE).getResult(), QN_E_CLASSNOTAVAILABLE);
    ResultException withMessage(QN_E_ACCESSDENIED, String(u"denied"));
    ResultException copy(withMessage);
    EXPECT_EQ(copy.getResult(), QN_E_ACCESSDENIED);
    EXPECT_EQ(textOf(copy.getDescription()), u"denied");
    EXPECT_EQ(copy.GetRefCount(), 0u);
    EXPECT_EQ(text::charset::InvalidCharacterException().getResult(),
              static_cast<QNRESULT>(0x8BB34101));
    EXPECT_EQ(text::charset::UnmappableCharacterException().getResult(),
              static_cast<QNRESULT>(0x8BB34102));
    EXPECT_EQ(text::charset::UnknownEncodingException().getResult(),
              static_cast<QNRESULT>(0x8BB34103));
    EXPECT_EQ(
        util::IniFileException(util::IniFileException::TYPE_OPEN_READ, String(u"a.ini")).GetType(),
        util::IniFileException::TYPE_OPEN_READ);
}

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

TEST(Exception, FaultRecordIsSharedByCopies) {
    int record = 0;
    AccessViolationException fault(&record);
    AccessViolationException copy(fault);
    AccessViolationException moved(std::move(copy));
    EXPECT_EQ(moved.getFaultRecord(), &record);
    EXPECT_EQ(fault.getFaultRecord(), &record);
    EXPECT_EQ(StackOverflowException().getFaultRecord(), nullptr);
    EXPECT_EQ(moved.getResult(), QN_E_FAIL);
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
