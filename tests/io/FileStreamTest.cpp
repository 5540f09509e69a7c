#include "StreamTestSupport.h"

#include "qn/io/FileInputStream.h"
#include "qn/io/FileOutputStream.h"
#include "qn/util/FilePath.h"

#include <fstream>
#include <functional>
#include <map>
#include <sstream>

using namespace qn;
using namespace qn::io;
using namespace qntest;

namespace {

String pathOf(const std::u16string& p) {
    return String(p.c_str());
}

std::string contents(const std::u16string& path) {
    std::ifstream in(std::filesystem::path(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeText(FileOutputStream& out, const std::string& text) {
    out.write(text.data(), static_cast<long>(text.size()));
}

} // namespace

TEST(FileStreams, WriteThenReadBack) {
    ScratchDir dir;
    const String path = pathOf(dir.file("data.bin"));
    const Bytes data = sequence(5000);
    Reference<FileOutputStream> out = new FileOutputStream(path, false);
    EXPECT_EQ(Reference<FileInputStream>(new FileInputStream(path))->read(), -1); // empty
    out->write(data.data(), 3000);
    out->write(data.data() + 3000, 2000);
    EXPECT_EQ(out->getSize(), 5000);
    out->close();
    EXPECT_FALSE(out->is_open());
    EXPECT_EQ(resultOf([&] { out->write("x", 1); }), QN_E_HANDLE);

    Reference<FileInputStream> in = new FileInputStream(util::FilePath(path));
    EXPECT_EQ(in->skip(1000), 1000);
    EXPECT_EQ(in->available(), 4000);
    EXPECT_EQ(in->read(), static_cast<unsigned char>(data[1000]));
    EXPECT_EQ(drain(*in, 333), Bytes(data.begin() + 1001, data.end()));
    in->close();
    in->close();
}

TEST(FileStreams, ModesCreateTruncateAppendAndClaim) {
    ScratchDir dir;
    const std::u16string file = dir.file("modes.txt");
    const String path = pathOf(file);
    // Without a creation bit the file must exist.
    EXPECT_EQ(resultOf([&] { FileOutputStream(path, FileOutputStream::APPEND); }),
              QN_E_FILENOTFOUND);
    {
        FileOutputStream out(path, true); // created
        writeText(out, "one ");
    }
    {
        FileOutputStream out(path, true); // kept, written at the end
        writeText(out, "two ");
    }
    EXPECT_EQ(contents(file), "one two ");
    EXPECT_EQ(resultOf([&] { FileOutputStream(path, FileOutputStream::EXCLUSIVE); }),
              QN_E_ALREADYEXISTS);
    {
        // Two appending writers each write at the end, whatever the other did.
        FileOutputStream a(path, FileOutputStream::APPEND);
        FileOutputStream b(path, FileOutputStream::APPEND);
        writeText(a, "a1 ");
        writeText(b, "b1 ");
        writeText(a, "a2 ");
        EXPECT_EQ(a.getSize(), 17);
    }
    EXPECT_EQ(contents(file), "one two a1 b1 a2 ");
    {
        FileOutputStream out(path, false);
        writeText(out, "new");
    }
    EXPECT_EQ(contents(file), "new");
    const String claimed = pathOf(dir.file("claimed"));
    FileOutputStream(claimed, FileOutputStream::EXCLUSIVE).close();
    EXPECT_EQ(FileInputStream(claimed).available(), 0);
}

TEST(FileStreams, FailuresCarryThePlatformCodes) {
    ScratchDir dir;
    const String missing = pathOf(dir.file("missing"));
    EXPECT_EQ(resultOf([&] { FileInputStream{missing}; }), QN_E_FILENOTFOUND);
    // POSIX cannot tell a missing directory from a missing file; Windows can.
#ifdef _WIN32
    const QNRESULT missingDirectory = QN_E_PATHNOTFOUND;
#else
    const QNRESULT missingDirectory = QN_E_FILENOTFOUND;
#endif
    EXPECT_EQ(resultOf([&] { FileInputStream{pathOf(dir.file("no/such/dir/file"))}; }),
              missingDirectory);
    EXPECT_EQ(resultOf([&] { FileOutputStream(pathOf(dir.file("no/such/file")), false); }),
              missingDirectory);
    // A directory is not a file to read or write.
    EXPECT_EQ(resultOf([&] { FileInputStream{pathOf(dir.path.u16string())}; }), QN_E_ACCESSDENIED);
    EXPECT_EQ(resultOf([&] { FileOutputStream(pathOf(dir.path.u16string()), true); }),
              QN_E_ACCESSDENIED);
    FileInputStream closed(QN_INVALID_FILE, false);
    signed char b;
    EXPECT_EQ(resultOf([&] { closed.read(&b, 1); }), QN_E_HANDLE);
}

TEST(FileStreams, BorrowedHandlesStayOpen) {
    ScratchDir dir;
    const String path = pathOf(dir.file("borrowed"));
    QNFILE handle = QN_INVALID_FILE;
    ASSERT_EQ(QNFileOpen(reinterpret_cast<const QNWCHAR*>(path.getData()),
                         QN_FILE_WRITE | QN_FILE_CREATE, 0x1C0, &handle),
              QN_S_OK);
    Reference<FileOutputStream> out = new FileOutputStream(handle, false);
    writeText(*out, "abc");
    out->close();
    Reference<FileInputStream> in = new FileInputStream(handle, false);
    in->close();
    uint32_t done = 0;
    EXPECT_EQ(QNFileWrite(handle, "def", 3, &done), QN_S_OK); // still open
    EXPECT_EQ(QNFileClose(handle), QN_S_OK);
    EXPECT_EQ(contents(dir.file("borrowed")), "abcdef");
}

TEST(FileStreams, SharedModeReopensAndSignals) {
    ScratchDir dir;
    const String path = pathOf(dir.file("shared.log"));
    const util::FilePath key(path);
    {
        Reference<FileOutputStream> a =
            new FileOutputStream(path, FileOutputStream::SHARED | FileOutputStream::TRUNCATE);
        Reference<FileOutputStream> b =
            new FileOutputStream(path, FileOutputStream::SHARED | FileOutputStream::CREATE);
        writeText(*a, "a1\n");
        a->flush(); // closes the handle; the next write opens the file again
        EXPECT_FALSE(a->is_open());
        EXPECT_EQ(a->getSize(), 3);
        writeText(*b, "b1\n");
        writeText(*a, "a2\n"); // written at the end, not where a stopped
        EXPECT_TRUE(a->is_open());
        EXPECT_FALSE(a->wait(0));
        b->signal();
        b->signal();
        EXPECT_TRUE(a->wait(0));
        a->wait();
        EXPECT_FALSE(b->wait(0));
        a->close();
        a->close();
        EXPECT_EQ(resultOf([&] { writeText(*a, "late"); }), QN_E_HANDLE);
    }
    EXPECT_EQ(contents(dir.file("shared.log")), "a1\nb1\na2\n");
    // Another spelling of the same file shares its lock.
    const util::FilePath other =
        key.getParent().resolve(util::FilePath(u"x")).resolve(util::FilePath(u"../shared.log"));
    EXPECT_EQ(FileOutputStream::sharedLockName(key), FileOutputStream::sharedLockName(other));
    EXPECT_NE(FileOutputStream::sharedLockName(key),
              FileOutputStream::sharedLockName(key.getParent().resolve(util::FilePath(u"b.log"))));
    FileOutputStream::removeSharedNames(key);

    EXPECT_THROW(FileOutputStream(path, true).wait(), IllegalStateException);
}

// Run as a child process: appends numbered records of varying length to a shared file.
TEST(FileStreamsChild, DISABLED_AppendRecords) {
    const std::vector<std::string> args = childArguments();
    ASSERT_EQ(args.size(), 3u);
    const int id = std::stoi(args[1]), count = std::stoi(args[2]);
    const std::u16string file = std::filesystem::path(args[0]).u16string();
    FileOutputStream out(String(file.c_str()), FileOutputStream::SHARED | FileOutputStream::CREATE);
    for (int i = 0; i < count; ++i) {
        std::ostringstream record;
        record << id << ':' << i << ':'
               << std::string(static_cast<size_t>(50 + (i * 397) % 4000),
                              static_cast<char>('a' + i % 26))
               << '\n';
        writeText(out, record.str());
        if (i % 10 == 9)
            out.flush();
    }
    out.close();
}

TEST(FileStreams, TwoProcessesAppendWithoutLosingOrInterleaving) {
    ScratchDir dir;
    const std::u16string file = dir.file("two-processes.log");
    const std::string name = std::filesystem::path(file).string();
    constexpr int COUNT = 300;
    {
        ChildProcess first("FileStreamsChild.DISABLED_AppendRecords",
                           {name, "1", std::to_string(COUNT)});
        ChildProcess second("FileStreamsChild.DISABLED_AppendRecords",
                            {name, "2", std::to_string(COUNT)});
        EXPECT_EQ(first.wait(), 0);
        EXPECT_EQ(second.wait(), 0);
    }
    FileOutputStream::removeSharedNames(util::FilePath(String(file.c_str())));
    std::istringstream lines(contents(file));
    std::map<int, int> next; // per writer, the record expected next
    int total = 0;
    for (std::string line; std::getline(lines, line); ++total) {
        int id = 0, i = 0;
        char c1 = 0, c2 = 0;
        std::istringstream fields(line);
        ASSERT_TRUE(fields >> id >> c1 >> i >> c2) << line.substr(0, 40);
        ASSERT_EQ(i, next[id]) << "writer " << id;
        ++next[id];
        const std::string body = line.substr(line.find(':', line.find(':') + 1) + 1);
        ASSERT_EQ(body, std::string(static_cast<size_t>(50 + (i * 397) % 4000),
                                    static_cast<char>('a' + i % 26)));
    }
    EXPECT_EQ(total, 2 * COUNT);
    EXPECT_EQ(next[1], COUNT);
    EXPECT_EQ(next[2], COUNT);
}
