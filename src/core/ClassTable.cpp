// The built-in class table: every class of the library with its registered name, run-time type
// and factory (null: createInstance refuses it), registered in this order at load. Names that
// begin with "CQN" are short component names; the others are qualified class names. Three fault
// exceptions stand twice, first with a factory: the first registration wins, so their
// descriptors have one.
#include "qn/collections/xcom/ArrayList.h"
#include "qn/collections/xcom/HashMap.h"
#include "qn/collections/xcom/LinkedList.h"
#include "qn/core/ClassManagerBase.h"
#include "qn/core/Exception.h"
#include "qn/core/Library.h"
#include "qn/core/Number.h"
#include "qn/core/String.h"
#include "qn/core/xcom/ClassFactory.h"
#include "qn/core/xcom/DllModule.h"
#include "qn/exec/Thread.h"
#include "qn/io/BufferedInputStream.h"
#include "qn/io/BufferedOutputStream.h"
#include "qn/io/BufferedReader.h"
#include "qn/io/BufferedWriter.h"
#include "qn/io/ByteArrayInputStream.h"
#include "qn/io/ByteArrayOutputStream.h"
#include "qn/io/DataInputStream.h"
#include "qn/io/DataOutputStream.h"
#include "qn/io/FilterReader.h"
#include "qn/io/FilterWriter.h"
#include "qn/io/InputStreamReader.h"
#include "qn/io/NullOutputStream.h"
#include "qn/io/NullWriter.h"
#include "qn/io/OutputStreamWriter.h"
#include "qn/io/PrintWriter.h"
#include "qn/io/StdioInputStream.h"
#include "qn/io/StdioOutputStream.h"
#include "qn/io/StringWriter.h"
#include "qn/math/BigDecimal.h"
#include "qn/sync/Event.h"
#include "qn/sync/FakeMutex.h"
#include "qn/sync/Gate.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"
#include "qn/sync/Semaphore.h"
#include "qn/text/charset/BTCAMP7.h"
#include "qn/text/charset/BTCASCII.h"
#include "qn/text/charset/BTCCP1252.h"
#include "qn/text/charset/BTCCP437.h"
#include "qn/text/charset/BTCISO8859_1.h"
#include "qn/text/charset/BTCUTF16.h"
#include "qn/text/charset/BTCUTF32.h"
#include "qn/text/charset/BTCUTF8.h"
#include "qn/text/charset/CTBAMP7.h"
#include "qn/text/charset/CTBASCII.h"
#include "qn/text/charset/CTBCP1252.h"
#include "qn/text/charset/CTBCP437.h"
#include "qn/text/charset/CTBISO8859_1.h"
#include "qn/text/charset/CTBUTF16.h"
#include "qn/text/charset/CTBUTF32.h"
#include "qn/text/charset/CTBUTF8.h"
#include "qn/util/Comparator.h"
#include "qn/util/FilePath.h"
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
    namespace coll = collections::xcom;
    static const ClassRow rows[] = {
        row<AbstractByteBuffer>(u"CQNAbstractByteBuffer"),
        row<AbstractCharBuffer>(u"CQNAbstractCharBuffer"),
        rowMade<coll::ArrayList>(u"CQNArrayList"),
        rowMade<math::BigDecimal>(u"CQNBigDecimal"),
        rowMade<math::BigInteger>(u"CQNBigInteger"),
        row<charset::BTCSingleByte>(u"CQNBTCSingleByte"),
        row<charset::BTCSingleByteTable>(u"CQNBTCSingleByteTable"),
        row<io::BufferedInputStream>(u"CQNBufferedInputStream"),
        row<io::BufferedOutputStream>(u"CQNBufferedOutputStream"),
        row<io::BufferedReader>(u"CQNBufferedReader"),
        row<io::BufferedWriter>(u"CQNBufferedWriter"),
        row<io::ByteArrayInputStream>(u"CQNByteArrayInputStream"),
        rowMade<io::ByteArrayOutputStream>(u"CQNByteArrayOutputStream"),
        row<charset::ByteToCharConverter>(u"CQNByteToCharConverter"),
        row<charset::CharToByteConverter>(u"CQNCharToByteConverter"),
        row<Class>(u"qn::Class"),
        row<charset::CTBSingleByte>(u"CQNCTBSingleByte"),
        row<charset::CTBSingleByteTable>(u"CQNCTBSingleByteTable"),
        row<coll::Collection>(u"CQNCollection"),
        row<xcom::ClassFactory>(u"qn::xcom::ClassFactory"),
        row<xcom::DllModule>(u"CQNComDllModule"),
        row<ComObject>(u"CQNComObject"),
        row<Comparator>(u"CQNComparator"),
        row<coll::ConstIterator>(u"CQNConstIterator"),
        row<coll::ConstListIterator>(u"CQNConstListIterator"),
        row<io::DataInputStream>(u"CQNDataInputStream"),
        row<io::DataOutputStream>(u"CQNDataOutputStream"),
        row<Double>(u"CQNDouble"),
        rowMade<sync::Event>(u"CQNEvent"),
        rowMade<sync::FakeMutex>(u"CQNFakeMutex"),
        row<FilePath>(u"CQNFilePath"),
        row<io::FilterInputStream>(u"CQNFilterInputStream"),
        row<io::FilterOutputStream>(u"CQNFilterOutputStream"),
        row<io::FilterReader>(u"CQNFilterReader"),
        row<io::FilterWriter>(u"CQNFilterWriter"),
        row<Float>(u"CQNFloat"),
        rowMade<sync::Gate>(u"CQNGate"),
        rowMade<coll::HashMap>(u"CQNHashMap"),
        row<io::InputStream>(u"CQNInputStream"),
        row<io::InputStreamReader>(u"CQNInputStreamReader"),
        row<Integer16>(u"CQNInteger16"),
        row<Integer32>(u"CQNInteger32"),
        row<Integer64>(u"CQNInteger64"),
        row<Integer8>(u"CQNInteger8"),
        row<coll::Iterator>(u"CQNIterator"),
        rowMade<coll::LinkedList>(u"CQNLinkedList"),
        row<coll::List>(u"CQNList"),
        row<coll::ListIterator>(u"CQNListIterator"),
        row<sync::LockObject>(u"CQNLockObject"),
        row<coll::Map>(u"CQNMap"),
        rowMade<MTByteBuffer>(u"CQNMTByteBuffer"),
        rowMade<MTCharBuffer>(u"CQNMTCharBuffer"),
        rowMade<sync::Mutex>(u"CQNMutex"),
        rowMade<io::NullOutputStream>(u"CQNNullOutputStream"),
        rowMade<io::NullWriter>(u"CQNNullWriter"),
        row<Number>(u"CQNNumber"),
        rowMade<Object>(u"CQNObject"),
        row<io::OutputStream>(u"CQNOutputStream"),
        row<io::OutputStreamWriter>(u"CQNOutputStreamWriter"),
        row<io::PrintWriter>(u"CQNPrintWriter"),
        row<io::Reader>(u"CQNReader"),
        rowMade<ROByteBuffer>(u"CQNROByteBuffer"),
        rowMade<ROCharBuffer>(u"CQNROCharBuffer"),
        row<exec::IRunnable>(u"CQNRunnable"),
        rowMade<RWByteBuffer>(u"CQNRWByteBuffer"),
        rowMade<RWCharBuffer>(u"CQNRWCharBuffer"),
        rowMade<sync::ReaderWriterLock>(u"CQNRWLock"),
        rowMade<sync::Semaphore>(u"CQNSemaphore"),
        row<coll::Set>(u"CQNSet"),
        row<SignedInteger>(u"CQNSignedInteger"),
        rowMade<io::StdioInputStream>(u"CQNStdioInputStream"),
        rowMade<io::StdioOutputStream>(u"CQNStdioOutputStream"),
        rowMade<String>(u"CQNString"),
        rowMade<io::StringWriter>(u"CQNStringWriter"),
        row<sync::Object>(u"CQNSyncObject"),
        row<exec::Thread>(u"CQNThread"),
        row<UInteger16>(u"CQNUInteger16"),
        row<UInteger32>(u"CQNUInteger32"),
        row<UInteger64>(u"CQNUInteger64"),
        row<UInteger8>(u"CQNUInteger8"),
        row<UnsignedInteger>(u"CQNUnsignedInteger"),
        row<io::Writer>(u"CQNWriter"),
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
        rowMade<charset::CTBASCII>(u"qn::text::charset::CTBASCII"),
        rowMade<charset::BTCASCII>(u"qn::text::charset::BTCASCII"),
        rowMade<charset::CTBISO8859_1>(u"qn::text::charset::CTBISO8859_1"),
        rowMade<charset::BTCISO8859_1>(u"qn::text::charset::BTCISO8859_1"),
        rowMade<charset::CTBCP437>(u"qn::text::charset::CTBCP437"),
        rowMade<charset::BTCCP437>(u"qn::text::charset::BTCCP437"),
        rowMade<charset::CTBCP1252>(u"qn::text::charset::CTBCP1252"),
        rowMade<charset::BTCCP1252>(u"qn::text::charset::BTCCP1252"),
        rowMade<charset::BTCUTF8>(u"qn::text::charset::BTCUTF8"),
        rowMade<charset::CTBUTF8>(u"qn::text::charset::CTBUTF8"),
        rowMade<charset::CTBUTF16LE>(u"qn::text::charset::CTBUTF16LE"),
        rowMade<charset::BTCUTF16LE>(u"qn::text::charset::BTCUTF16LE"),
        rowMade<charset::CTBUTF16BE>(u"qn::text::charset::CTBUTF16BE"),
        rowMade<charset::BTCUTF16BE>(u"qn::text::charset::BTCUTF16BE"),
        rowMade<charset::CTBUTF32LE>(u"qn::text::charset::CTBUTF32LE"),
        rowMade<charset::BTCUTF32LE>(u"qn::text::charset::BTCUTF32LE"),
        rowMade<charset::CTBUTF32BE>(u"qn::text::charset::CTBUTF32BE"),
        rowMade<charset::BTCUTF32BE>(u"qn::text::charset::BTCUTF32BE"),
        rowMade<charset::BTCAMP7>(u"qn::text::charset::BTCAMP7"),
        rowMade<charset::CTBAMP7>(u"qn::text::charset::CTBAMP7"),
    };
    ClassManagerBase& registry = classRegistry();
    for (const ClassRow& r : rows)
        registry.registerClass(r.name, *r.type, r.factory);
}

} // namespace qn
