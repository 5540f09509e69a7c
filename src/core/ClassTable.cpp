// The built-in class table: every class of the library with its registered name, run-time type
// and factory (null: createInstance refuses it), registered in this order at load. Names that
// begin with "CQN" are short component names; the others are qualified class names. Three fault
// exceptions stand twice, first with a factory: the first registration wins, so their
// descriptors have one.
#include "qn/core/ClassManagerBase.h"
#include "qn/core/Exception.h"
#include "qn/core/Library.h"
#include "qn/core/Number.h"
#include "qn/core/String.h"
#include "qn/math/BigDecimal.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"
#include "qn/util/MTByteBuffer.h"
#include "qn/util/MTCharBuffer.h"
#include "qn/util/ROByteBuffer.h"
#include "qn/util/ROCharBuffer.h"

namespace qn {

namespace {

struct ClassRow {
    const char16_t* name;
    const std::type_info* type;
    Class::Factory factory;
};

template <class T> Object* make() {
    return new T();
}

template <class T> ClassRow row(const char16_t* name) {
    return {name, &typeid(T), nullptr};
}
template <class T> ClassRow rowMade(const char16_t* name) {
    return {name, &typeid(T), &make<T>};
}

} // namespace

void registerBuiltinClasses() {
    using namespace util;
    namespace charset = text::charset;
    static const ClassRow rows[] = {
        row<AbstractByteBuffer>(u"CQNAbstractByteBuffer"),
        row<AbstractCharBuffer>(u"CQNAbstractCharBuffer"),
        rowMade<math::BigDecimal>(u"CQNBigDecimal"),
        rowMade<math::BigInteger>(u"CQNBigInteger"),
        row<Class>(u"qn::Class"),
        row<ComObject>(u"CQNComObject"),
        row<Double>(u"CQNDouble"),
        row<Float>(u"CQNFloat"),
        row<Integer16>(u"CQNInteger16"),
        row<Integer32>(u"CQNInteger32"),
        row<Integer64>(u"CQNInteger64"),
        row<Integer8>(u"CQNInteger8"),
        row<sync::LockObject>(u"CQNLockObject"),
        rowMade<MTByteBuffer>(u"CQNMTByteBuffer"),
        rowMade<MTCharBuffer>(u"CQNMTCharBuffer"),
        rowMade<sync::Mutex>(u"CQNMutex"),
        row<Number>(u"CQNNumber"),
        rowMade<Object>(u"CQNObject"),
        rowMade<ROByteBuffer>(u"CQNROByteBuffer"),
        rowMade<ROCharBuffer>(u"CQNROCharBuffer"),
        rowMade<RWByteBuffer>(u"CQNRWByteBuffer"),
        rowMade<RWCharBuffer>(u"CQNRWCharBuffer"),
        rowMade<sync::ReaderWriterLock>(u"CQNRWLock"),
        row<SignedInteger>(u"CQNSignedInteger"),
        rowMade<String>(u"CQNString"),
        row<sync::Object>(u"CQNSyncObject"),
        row<UInteger16>(u"CQNUInteger16"),
        row<UInteger32>(u"CQNUInteger32"),
        row<UInteger64>(u"CQNUInteger64"),
        row<UInteger8>(u"CQNUInteger8"),
        row<UnsignedInteger>(u"CQNUnsignedInteger"),
        row<AccessViolationException>(u"qn::AccessViolationException"),
        row<ArrayBoundsException>(u"qn::ArrayBoundsException"),
        rowMade<CastFailedException>(u"qn::CastFailedException"),
        rowMade<ClassNotFoundException>(u"qn::ClassNotFoundException"),
        rowMade<Exception>(u"qn::Exception"),
        row<ExternalException>(u"qn::ExternalException"),
        rowMade<IllegalAccessException>(u"qn::IllegalAccessException"),
        row<IllegalInstructionException>(u"qn::IllegalInstructionException"),
        rowMade<IllegalStateException>(u"qn::IllegalStateException"),
        rowMade<IntDivByZeroException>(u"qn::IntDivByZeroException"),
        rowMade<IntErrorException>(u"qn::IntErrorException"),
        rowMade<IntOverflowException>(u"qn::IntOverflowException"),
        rowMade<charset::InvalidCharacterException>(
            u"qn::text::charset::InvalidCharacterException"),
        rowMade<InvalidPathException>(u"qn::InvalidPathException"),
        row<IntDivByZeroException>(u"qn::IntDivByZeroException"),
        row<IntErrorException>(u"qn::IntErrorException"),
        row<IntOverflowException>(u"qn::IntOverflowException"),
        rowMade<io::IoException>(u"qn::io::IoException"),
        rowMade<io::TimeoutException>(u"qn::io::TimeoutException"),
        row<MathDivByZeroException>(u"qn::MathDivByZeroException"),
        row<MathErrorException>(u"qn::MathErrorException"),
        row<MathInvalidOpException>(u"qn::MathInvalidOpException"),
        row<MathOverflowException>(u"qn::MathOverflowException"),
        row<MathUnderflowException>(u"qn::MathUnderflowException"),
        rowMade<OutOfMemoryException>(u"qn::OutOfMemoryException"),
        rowMade<RangeErrorException>(u"qn::RangeErrorException"),
        rowMade<ReadOnlyException>(u"qn::ReadOnlyException"),
        row<StackOverflowException>(u"qn::StackOverflowException"),
        rowMade<io::UnexpectedEOFException>(u"qn::io::UnexpectedEOFException"),
        rowMade<charset::UnknownEncodingException>(u"qn::text::charset::UnknownEncodingException"),
        rowMade<charset::UnmappableCharacterException>(
            u"qn::text::charset::UnmappableCharacterException"),
        rowMade<UnsupportedOperationException>(u"qn::UnsupportedOperationException"),
        row<UserAbortException>(u"qn::UserAbortException"),
    };
    ClassManagerBase& registry = classRegistry();
    for (const ClassRow& r : rows)
        registry.registerClass(r.name, *r.type, r.factory);
}

} // namespace qn
