#include "TestSupport.h"

#include <gtest/gtest.h>

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
