// The exception tree. Every exception is an Object with a message (empty unless the thrower
// gives one) and a 32-bit result code, the only part that crosses a component boundary
// (0x80004005 unless a class says otherwise). Thrown by value, caught by reference.
#pragma once

#include "qn/core/String.h"

#include <new>
#include <type_traits>

namespace qn {

class QNCL_API Exception : public Object {
public:
    Exception() = default;
    explicit Exception(const String& message);
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception() override;

    // A copy of the message.
    virtual String getDescription() const;
    virtual QNRESULT getResult() const;

private:
    String m_message;
};

// Carries any result code: how a code from the core module or the platform is thrown.
class QNCL_API ResultException : public Exception {
public:
    ResultException() = default;
    explicit ResultException(QNRESULT result) : m_result(result) {}
    ResultException(QNRESULT result, const String& message)
        : Exception(message), m_result(result) {}
    ResultException(const ResultException&) = default;
    ResultException& operator=(const ResultException&) = default;
    ~ResultException() override;

    QNRESULT getResult() const override;

private:
    QNRESULT m_result = QN_E_FAIL;
};

// A hardware or system fault, built from the platform's fault record by a fault translator the
// application installs (the library installs none). The record is not owned; copies share it,
// and it is valid only while the fault is handled.
class QNCL_API ExternalException : public Exception {
public:
    explicit ExternalException(void* faultRecord) noexcept : m_faultRecord(faultRecord) {}
    ExternalException(const ExternalException&) = default;
    ExternalException& operator=(const ExternalException&) = default;
    ~ExternalException() override;

    void* getFaultRecord() const noexcept { return m_faultRecord; }

protected:
    ExternalException() noexcept = default;

private:
    void* m_faultRecord = nullptr;
};

#define QN_FAULT_EXCEPTION(Name)                                                                   \
    class QNCL_API Name : public ExternalException {                                               \
    public:                                                                                        \
        Name() noexcept = default;                                                                 \
        explicit Name(void* faultRecord) noexcept : ExternalException(faultRecord) {}              \
        Name(const Name&) = default;                                                               \
        Name& operator=(const Name&) = default;                                                    \
        ~Name() override;                                                                          \
    }

class QNCL_API AccessViolationException : public ExternalException {
public:
    AccessViolationException() noexcept = default;
    explicit AccessViolationException(void* faultRecord) noexcept
        : ExternalException(faultRecord) {}
    AccessViolationException(const AccessViolationException&) = default;
    AccessViolationException(AccessViolationException&& other) noexcept;
    AccessViolationException& operator=(const AccessViolationException&) = default;
    AccessViolationException& operator=(AccessViolationException&& other) noexcept;
    ~AccessViolationException() override;
};
QN_FAULT_EXCEPTION(ArrayBoundsException);
QN_FAULT_EXCEPTION(IllegalInstructionException);
QN_FAULT_EXCEPTION(IntDivByZeroException);
QN_FAULT_EXCEPTION(IntErrorException);
QN_FAULT_EXCEPTION(IntOverflowException);
QN_FAULT_EXCEPTION(MathDivByZeroException);
QN_FAULT_EXCEPTION(MathErrorException);
QN_FAULT_EXCEPTION(MathInvalidOpException);
QN_FAULT_EXCEPTION(MathOverflowException);
QN_FAULT_EXCEPTION(MathUnderflowException);
QN_FAULT_EXCEPTION(StackOverflowException);
QN_FAULT_EXCEPTION(UserAbortException);
#undef QN_FAULT_EXCEPTION

// Exceptions that add nothing but their type (and, for some, their result code).
#define QN_PLAIN_EXCEPTION(Name, Base)                                                             \
    class QNCL_API Name : public Base {                                                            \
    public:                                                                                        \
        Name() = default;                                                                          \
        explicit Name(const String& message) : Base(message) {}                                    \
        Name(const Name&) = default;                                                               \
        Name& operator=(const Name&) = default;                                                    \
        ~Name() override;                                                                          \
    }

QN_PLAIN_EXCEPTION(CastFailedException, Exception);
QN_PLAIN_EXCEPTION(ClassNotFoundException, Exception);
QN_PLAIN_EXCEPTION(IllegalAccessException, Exception);
QN_PLAIN_EXCEPTION(IllegalStateException, Exception);
QN_PLAIN_EXCEPTION(InvalidPathException, Exception);
QN_PLAIN_EXCEPTION(RangeErrorException, Exception);
QN_PLAIN_EXCEPTION(ReadOnlyException, Exception);
QN_PLAIN_EXCEPTION(UnsupportedOperationException, Exception);

// Also the run time's bad-allocation exception, so either handler catches it.
class QNCL_API OutOfMemoryException : public Exception, public std::bad_alloc {
public:
    OutOfMemoryException() = default;
    OutOfMemoryException(const OutOfMemoryException&) = default;
    OutOfMemoryException& operator=(const OutOfMemoryException&) = default;
    ~OutOfMemoryException() override;

    QNRESULT getResult() const override;
    // "bad allocation"
    const char* what() const noexcept override;
};

namespace io {
QN_PLAIN_EXCEPTION(IoException, Exception);
QN_PLAIN_EXCEPTION(TimeoutException, IoException);
// Deliberately not an IoException: a handler for I/O failures does not catch an unexpected end
// of input.
QN_PLAIN_EXCEPTION(UnexpectedEOFException, Exception);
} // namespace io

namespace text::charset {
#define QN_CODED_EXCEPTION(Name)                                                                   \
    class QNCL_API Name : public Exception {                                                       \
    public:                                                                                        \
        Name() = default;                                                                          \
        explicit Name(const String& message) : Exception(message) {}                               \
        Name(const Name&) = default;                                                               \
        Name& operator=(const Name&) = default;                                                    \
        ~Name() override;                                                                          \
        QNRESULT getResult() const override;                                                       \
    }
// 0x8BB34101: malformed input.
QN_CODED_EXCEPTION(InvalidCharacterException);
// 0x8BB34102: a character the encoding cannot represent.
QN_CODED_EXCEPTION(UnmappableCharacterException);
// 0x8BB34103: an encoding name nobody knows.
QN_CODED_EXCEPTION(UnknownEncodingException);
#undef QN_CODED_EXCEPTION
} // namespace text::charset

namespace util {
// A failure reading, querying or writing an INI file; GetType tells which.
class QNCL_API IniFileException : public Exception {
public:
    enum TYPE {
        TYPE_OPEN_READ = 0, // the file could not be opened for reading
        TYPE_WRITE = 1,     // the file could not be written back
        TYPE_LOCK = 2,      // the inter-process lock could not be taken
    };
    IniFileException(TYPE type, const String& message) : Exception(message), m_type(type) {}
    IniFileException(const IniFileException&) = default;
    IniFileException& operator=(const IniFileException&) = default;
    ~IniFileException() override;

    TYPE GetType() const noexcept { return m_type; }

private:
    TYPE m_type;
};
} // namespace util

#undef QN_PLAIN_EXCEPTION

// Runs body at a component boundary: 0 on success, a caught Exception's getResult(), 0x8007000E
// for the run time's out-of-memory exception, 0x80004005 for anything else. Nothing escapes.
// A body that returns a result code has that code passed on.
template <class Body> QNRESULT translateExceptions(Body&& body) noexcept {
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            body();
            return QN_S_OK;
        } else {
            return body();
        }
    } catch (const Exception& e) {
        return e.getResult();
    } catch (const std::bad_alloc&) {
        return QN_E_OUTOFMEMORY;
    } catch (...) {
        return QN_E_FAIL;
    }
}

} // namespace qn
