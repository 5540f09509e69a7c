#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace qntest;

TEST(Error, NativeErrorsMapToOneCodeOnBothSides) {
#ifdef _WIN32
    const uint32_t missing = 2, denied = 5, memory = 14, exists = 183; // Win32 error codes
#else
    const uint32_t missing = ENOENT, denied = EACCES, memory = ENOMEM, exists = EEXIST;
    EXPECT_EQ(QNResultFromNative(99999), QN_E_FAIL);
#endif
    EXPECT_EQ(QNResultFromNative(0), QN_S_OK);
    EXPECT_EQ(QNResultFromNative(missing), QN_E_FILENOTFOUND);
    EXPECT_EQ(QNResultFromNative(denied), QN_E_ACCESSDENIED);
    EXPECT_EQ(QNResultFromNative(memory), QN_E_OUTOFMEMORY);
    EXPECT_EQ(QNResultFromNative(exists), QN_E_ALREADYEXISTS);

    // The last native error explains a failed open.
    ScratchDir dir;
    const WString path = dir.file(u"file");
    QNFILE file = QN_INVALID_FILE;
    EXPECT_EQ(QNFileOpen(path.c_str(), QN_FILE_READ, 0, &file), QN_E_FILENOTFOUND);
    EXPECT_EQ(QNResultFromNative(QNGetLastNativeError()), QN_E_FILENOTFOUND);
    const uint32_t create = QN_FILE_WRITE | QN_FILE_CREATE | QN_FILE_EXCLUSIVE;
    ASSERT_EQ(QNFileOpen(path.c_str(), create, 0x1A4, &file), QN_S_OK);
    EXPECT_EQ(QNFileClose(file), QN_S_OK);
    EXPECT_EQ(QNFileOpen(path.c_str(), create, 0x1A4, &file), QN_E_ALREADYEXISTS);
    EXPECT_EQ(QNResultFromNative(QNGetLastNativeError()), QN_E_ALREADYEXISTS);
}
