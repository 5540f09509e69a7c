#include "TestSupport.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace qntest;

namespace {

QNFILE open(const WString& path, uint32_t access) {
    QNFILE file = QN_INVALID_FILE;
    EXPECT_EQ(QNFileOpen(path.c_str(), access, 0x1A4, &file), QN_S_OK);
    return file;
}

void write(QNFILE file, const std::string& content) {
    uint32_t done = 0;
    EXPECT_EQ(QNFileWrite(file, content.data(), static_cast<uint32_t>(content.size()), &done),
              QN_S_OK);
    EXPECT_EQ(done, content.size());
}

std::string readAll(const WString& path) {
    const QNFILE file = open(path, QN_FILE_READ);
    char buffer[256];
    uint32_t done = 0;
    EXPECT_EQ(QNFileRead(file, buffer, sizeof buffer, &done), QN_S_OK);
    EXPECT_EQ(QNFileClose(file), QN_S_OK);
    return std::string(buffer, done);
}

} // namespace

TEST(File, ReadWriteSeek) {
    ScratchDir dir;
    const WString path = dir.file(u"data");
    QNFILE file = QN_INVALID_FILE;
    EXPECT_EQ(QNFileOpen(path.c_str(), QN_FILE_READ, 0x1A4, &file), QN_E_FILENOTFOUND);
    file = open(path, QN_FILE_READ | QN_FILE_WRITE | QN_FILE_CREATE);
    write(file, "hello world");
    EXPECT_EQ(QNFileFlush(file), QN_S_OK);
    int64_t size = 0, position = -1;
    char buffer[64];
    uint32_t done = 0;
    EXPECT_EQ(QNFileSeek64(file, 0, QN_SEEK_BEGIN, &position), QN_S_OK);
    EXPECT_EQ(position, 0);
    EXPECT_EQ(QNFileRead(file, buffer, sizeof buffer, &done), QN_S_OK);
    EXPECT_EQ(std::string(buffer, done), "hello world");
    for (int i = 0; i < 2; ++i) { // the end of input is no error, however often it is met
        EXPECT_EQ(QNFileRead(file, buffer, sizeof buffer, &done), QN_S_OK);
        EXPECT_EQ(done, 0u);
    }
    EXPECT_EQ(QNFileSeek64(file, -5, QN_SEEK_END, &position), QN_S_OK);
    EXPECT_EQ(position, 6);
    EXPECT_EQ(QNFileSeek64(file, -2, QN_SEEK_CURRENT, &position), QN_S_OK);
    EXPECT_EQ(position, 4);
    EXPECT_EQ(QNFileSeek64(file, 2, QN_SEEK_CURRENT, nullptr), QN_S_OK);
    EXPECT_EQ(QNFileRead(file, buffer, 3, &done), QN_S_OK);
    EXPECT_EQ(std::string(buffer, done), "wor");
    EXPECT_TRUE(QN_FAILED(QNFileSeek64(file, -1, QN_SEEK_BEGIN, &position)));
    EXPECT_EQ(QNFileSeek64(file, 0, 7, &position), QN_E_INVALIDARG);
    EXPECT_EQ(QNFileSeek64(file, 20, QN_SEEK_BEGIN, &position), QN_S_OK); // past the end
    write(file, "!");
    EXPECT_EQ(QNFileGetSize(file, &size), QN_S_OK);
    EXPECT_EQ(size, 21);
    EXPECT_EQ(QNFileClose(file), QN_S_OK);
}

TEST(File, OpenModes) {
    ScratchDir dir;
    const WString path = dir.file(u"modes");
    const uint32_t exclusive = QN_FILE_WRITE | QN_FILE_CREATE | QN_FILE_EXCLUSIVE;
    QNFILE file = open(path, exclusive);
    write(file, "twelve bytes");
    EXPECT_EQ(QNFileClose(file), QN_S_OK);
    EXPECT_EQ(QNFileOpen(path.c_str(), exclusive, 0x1A4, &file), QN_E_ALREADYEXISTS);
    // The stream-mode bits are accepted and change nothing: the write lands at the start.
    file = open(path, QN_FILE_WRITE | QN_FILE_CREATE | QN_FILE_APPEND | QN_FILE_SHARED);
    write(file, "T");
    EXPECT_EQ(QNFileClose(file), QN_S_OK);
    EXPECT_EQ(readAll(path), "Twelve bytes");
    EXPECT_EQ(QNFileClose(open(path, QN_FILE_WRITE | QN_FILE_TRUNCATE)), QN_S_OK);
    EXPECT_EQ(readAll(path), "");
    for (uint32_t access : {0u, QN_FILE_CREATE, QN_FILE_TRUNCATE | QN_FILE_CREATE,
                            QN_FILE_READ | 0x100u, QN_FILE_WRITE | 0x20u, 0x20000000u})
        EXPECT_EQ(QNFileOpen(path.c_str(), access, 0x1A4, &file), QN_E_INVALIDARG) << access;
}

TEST(File, StatusAndDeletion) {
    ScratchDir dir;
    const std::u16string name = u"Gr\u00FC\u00DFe-\u65E5\u672C-\U0001F600";
    const WString path = dir.file(name);
    const int64_t before = std::time(nullptr);
    const QNFILE file = open(path, QN_FILE_WRITE | QN_FILE_CREATE);
    write(file, "0123456789");
    EXPECT_EQ(QNFileClose(file), QN_S_OK);
    // The name on disk is the same text: UTF-8 on POSIX, UTF-16 on Windows.
    ASSERT_TRUE(std::filesystem::exists(dir.path / name));
    EXPECT_EQ(std::filesystem::directory_iterator(dir.path)->path().filename().u16string(), name);

    STRUCT_QN_FILE_STATUS status{};
    ASSERT_EQ(QNFileGetStatus(path.c_str(), &status), QN_S_OK);
    EXPECT_EQ(status.size, 10);
    EXPECT_EQ(status.isDirectory, 0u);
    EXPECT_GE(status.modifiedPosix, before - 5);
    EXPECT_LE(status.modifiedPosix, std::time(nullptr) + 5);
    STRUCT_QN_TIME expected{};
    ASSERT_EQ(QNTimeFromPosix(status.modifiedPosix, &expected), QN_S_OK);
    EXPECT_LT(status.modifiedUtc.wMilliseconds, 1000);
    expected.wMilliseconds = status.modifiedUtc.wMilliseconds;
    EXPECT_EQ(std::memcmp(&expected, &status.modifiedUtc, sizeof expected), 0);

    ASSERT_EQ(QNFileGetStatus(widePath(dir.path).c_str(), &status), QN_S_OK);
    EXPECT_EQ(status.isDirectory, 1u);
    EXPECT_EQ(status.size, 0);

    EXPECT_EQ(QNFileDelete(path.c_str()), QN_S_OK);
    EXPECT_FALSE(std::filesystem::exists(dir.path / name));
    EXPECT_EQ(QNFileGetStatus(path.c_str(), &status), QN_E_FILENOTFOUND);
    EXPECT_EQ(QNFileDelete(path.c_str()), QN_E_FILENOTFOUND);
}
