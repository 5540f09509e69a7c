// classes: the class registry as the library filled it at load, by name, with whether each
// class can be created by name.
#include "Tool.h"

#include "qn/core/Class.h"
#include "qn/core/ClassManagerBase.h"

#include <algorithm>
#include <vector>

namespace qncl {

namespace {

// The registry answers lookups but cannot be walked, so the command asks it for every name the
// library's built-in class table can hold, and checks against the registry's size that no
// registered class was missed.
const char16_t* const BUILTIN_NAMES[] = {
    u"CQNAbstractByteBuffer",
    u"CQNAbstractCharBuffer",
    u"CQNAlphaNumInputStream",
    u"CQNAlphaNumOutputStream",
    u"CQNArrayList",
    u"CQNAtomic",
    u"CQNBigDecimal",
    u"CQNBigInteger",
    u"CQNBitInputStream",
    u"CQNBitOutputStream",
    u"CQNBTCSingleByte",
    u"CQNBTCSingleByteTable",
    u"CQNBufferedInputStream",
    u"CQNBufferedOutputStream",
    u"CQNBufferedReader",
    u"CQNBufferedWriter",
    u"CQNByteArrayInputStream",
    u"CQNByteArrayOutputStream",
    u"CQNByteToCharConverter",
    u"CQNCharToByteConverter",
    u"qn::Class",
    u"CQNCTBSingleByte",
    u"CQNCTBSingleByteTable",
    u"CQNCollection",
    u"qn::xcom::ClassFactory",
    u"CQNComDllModule",
    u"CQNComObject",
    u"CQNComparator",
    u"CQNConstIterator",
    u"CQNConstListIterator",
    u"CQNDataInputStream",
    u"CQNDataOutputStream",
    u"CQNDouble",
    u"CQNEvent",
    u"qn::sync::FakeAtomic",
    u"CQNFakeMutex",
    u"CQNFilePath",
    u"CQNFilterInputStream",
    u"CQNFilterOutputStream",
    u"CQNFilterReader",
    u"CQNFilterWriter",
    u"CQNFloat",
    u"CQNGate",
    u"CQNGuid",
    u"CQNHashMap",
    u"CQNInputStream",
    u"CQNInputStreamReader",
    u"CQNInteger16",
    u"CQNInteger32",
    u"CQNInteger64",
    u"CQNInteger8",
    u"CQNIterator",
    u"CQNLinkedList",
    u"CQNList",
    u"CQNListIterator",
    u"CQNLocale",
    u"CQNLockObject",
    u"CQNMap",
    u"CQNMTByteBuffer",
    u"CQNMTCharBuffer",
    u"CQNMutex",
    u"CQNNullOutputStream",
    u"CQNNullWriter",
    u"CQNNumber",
    u"CQNObject",
    u"CQNOutputStream",
    u"CQNOutputStreamWriter",
    u"CQNPrintWriter",
    u"CQNReader",
    u"CQNResourceBundle",
    u"CQNROByteBuffer",
    u"CQNROCharBuffer",
    u"CQNRunnable",
    u"CQNRWByteBuffer",
    u"CQNRWCharBuffer",
    u"CQNRWLock",
    u"CQNSemaphore",
    u"CQNSet",
    u"CQNSignedInteger",
    u"CQNStdioInputStream",
    u"CQNStdioOutputStream",
    u"CQNString",
    u"qn::i18n::StringMapBundle",
    u"CQNStringWriter",
    u"CQNSyncObject",
    u"qn::net::TcpServerSocket",
    u"qn::net::TcpSocket",
    u"CQNThread",
    u"CQNUInteger16",
    u"CQNUInteger32",
    u"CQNUInteger64",
    u"CQNUInteger8",
    u"CQNUnsignedInteger",
    u"CQNWriter",
    u"qn::AccessViolationException",
    u"qn::ArrayBoundsException",
    u"qn::CastFailedException",
    u"qn::ClassNotFoundException",
    u"qn::Exception",
    u"qn::ExternalException",
    u"qn::IllegalAccessException",
    u"qn::IllegalInstructionException",
    u"qn::IllegalStateException",
    u"qn::IntDivByZeroException",
    u"qn::IntErrorException",
    u"qn::IntOverflowException",
    u"qn::text::charset::InvalidCharacterException",
    u"qn::InvalidPathException",
    u"qn::io::IoException",
    u"qn::io::TimeoutException",
    u"qn::MathDivByZeroException",
    u"qn::MathErrorException",
    u"qn::MathInvalidOpException",
    u"qn::MathOverflowException",
    u"qn::MathUnderflowException",
    u"qn::OutOfMemoryException",
    u"qn::RangeErrorException",
    u"qn::ReadOnlyException",
    u"qn::StackOverflowException",
    u"qn::io::UnexpectedEOFException",
    u"qn::text::charset::UnknownEncodingException",
    u"qn::text::charset::UnmappableCharacterException",
    u"qn::UnsupportedOperationException",
    u"qn::UserAbortException",
    u"qn::text::charset::CTBASCII",
    u"qn::text::charset::BTCASCII",
    u"qn::text::charset::CTBISO8859_1",
    u"qn::text::charset::BTCISO8859_1",
    u"qn::text::charset::CTBCP437",
    u"qn::text::charset::BTCCP437",
    u"qn::text::charset::CTBCP1252",
    u"qn::text::charset::BTCCP1252",
    u"qn::text::charset::BTCUTF8",
    u"qn::text::charset::CTBUTF8",
    u"qn::text::charset::CTBUTF16LE",
    u"qn::text::charset::BTCUTF16LE",
    u"qn::text::charset::CTBUTF16BE",
    u"qn::text::charset::BTCUTF16BE",
    u"qn::text::charset::CTBUTF32LE",
    u"qn::text::charset::BTCUTF32LE",
    u"qn::text::charset::CTBUTF32BE",
    u"qn::text::charset::BTCUTF32BE",
    u"qn::text::charset::BTCAMP7",
    u"qn::text::charset::CTBAMP7",
};

void declareClasses(CommandLineParser&) {}

int runClasses(const CommandLineParser&, const std::string& program) {
    std::vector<const qn::Class*> found;
    for (const char16_t* name : BUILTIN_NAMES) {
        try {
            found.push_back(qn::Class::forName(name));
        } catch (const qn::ClassNotFoundException&) {
        }
    }
    // The registry's own order: ordinal, case-sensitive.
    std::sort(found.begin(), found.end(), [](const qn::Class* a, const qn::Class* b) {
        return QNStrCmpW(reinterpret_cast<const QNWCHAR*>(a->getName()),
                         reinterpret_cast<const QNWCHAR*>(b->getName())) < 0;
    });
    for (const qn::Class* c : found) {
        bool creates = false;
        try {
            creates = c->createInstance() != nullptr;
        } catch (const qn::Exception&) {
        } catch (const std::bad_alloc&) {
        }
        printOut(utf8(String(c->getName())) + (creates ? "\tyes\n" : "\tno\n"));
    }
    const bool written = flushOutput();
    const size_t registered = qn::classRegistry().size();
    if (registered != found.size()) {
        printError(program + ": " + std::to_string(registered - found.size()) +
                   " registered classes have names outside the built-in table and are not "
                   "listed\n");
        return EXIT_FAILED;
    }
    return written ? EXIT_OK : EXIT_FAILED;
}

} // namespace

const Command CLASSES_COMMAND = {u"classes",
                                 u"list the registered classes and whether each can be created",
                                 declareClasses, runClasses};

} // namespace qncl
