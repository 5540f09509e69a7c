#include "qn/core/Exception.h"

namespace qn {

Exception::Exception(const String& message) : m_message(message) {}
Exception::Exception(const Exception& other)
    : Object(static_cast<const Object*>(nullptr)), m_message(other.m_message) {}
Exception& Exception::operator=(const Exception& other) {
    m_message = other.m_message;
    return *this;
}
Exception::~Exception() = default;
String Exception::getDescription() const {
    return m_message;
}
QNRESULT Exception::getResult() const {
    return QN_E_FAIL;
}

ResultException::~ResultException() = default;
QNRESULT ResultException::getResult() const {
    return m_result;
}

ExternalException::~ExternalException() = default;

AccessViolationException::AccessViolationException(AccessViolationException&& other) noexcept
    : AccessViolationException(static_cast<const AccessViolationException&>(other)) {}
AccessViolationException&
AccessViolationException::operator=(AccessViolationException&& other) noexcept {
    return *this = static_cast<const AccessViolationException&>(other);
}
AccessViolationException::~AccessViolationException() = default;

#define QN_DESTRUCTOR(Name) Name::~Name() = default;
QN_DESTRUCTOR(ArrayBoundsException)
QN_DESTRUCTOR(IllegalInstructionException)
QN_DESTRUCTOR(IntDivByZeroException)
QN_DESTRUCTOR(IntErrorException)
QN_DESTRUCTOR(IntOverflowException)
QN_DESTRUCTOR(MathDivByZeroException)
QN_DESTRUCTOR(MathErrorException)
QN_DESTRUCTOR(MathInvalidOpException)
QN_DESTRUCTOR(MathOverflowException)
QN_DESTRUCTOR(MathUnderflowException)
QN_DESTRUCTOR(StackOverflowException)
QN_DESTRUCTOR(UserAbortException)
QN_DESTRUCTOR(CastFailedException)
QN_DESTRUCTOR(ClassNotFoundException)
QN_DESTRUCTOR(IllegalAccessException)
QN_DESTRUCTOR(IllegalStateException)
QN_DESTRUCTOR(InvalidPathException)
QN_DESTRUCTOR(RangeErrorException)
QN_DESTRUCTOR(ReadOnlyException)
QN_DESTRUCTOR(UnsupportedOperationException)
QN_DESTRUCTOR(OutOfMemoryException)
namespace io {
QN_DESTRUCTOR(IoException)
QN_DESTRUCTOR(TimeoutException)
QN_DESTRUCTOR(UnexpectedEOFException)
} // namespace io
namespace text::charset {
QN_DESTRUCTOR(InvalidCharacterException)
QN_DESTRUCTOR(UnmappableCharacterException)
QN_DESTRUCTOR(UnknownEncodingException)
} // namespace text::charset
namespace util {
QN_DESTRUCTOR(IniFileException)
} // namespace util
#undef QN_DESTRUCTOR

QNRESULT OutOfMemoryException::getResult() const {
    return QN_E_OUTOFMEMORY;
}
const char* OutOfMemoryException::what() const noexcept {
    return "bad allocation";
}

namespace text::charset {
QNRESULT InvalidCharacterException::getResult() const {
    return static_cast<QNRESULT>(0x8BB34101);
}
QNRESULT UnmappableCharacterException::getResult() const {
    return static_cast<QNRESULT>(0x8BB34102);
}
QNRESULT UnknownEncodingException::getResult() const {
    return static_cast<QNRESULT>(0x8BB34103);
}
} // namespace text::charset

} // namespace qn
