#include "StreamTestSupport.h"

#include "qn/core/Class.h"

#include "qn/io/StdioInputStream.h"
#include "qn/io/StdioOutputStream.h"

#include <cstdio>
#include <fstream>

using namespace qn;
using namespace qn::io;
using namespace qntest;

namespace {

template <class F> std::u16string ioFailure(F operation) {
    try {
        operation();
    } catch (const IoException& e) {
        return messageOf(e);
    }
    return u"(none)";
}

// A runtime stream over a scratch file, closed with the test.
struct RuntimeFile {
    RuntimeFile(const std::filesystem::path& path, const char* mode)
        : file(std::fopen(path.string().c_str(), mode)) {}
    ~RuntimeFile() {
        if (file)
            std::fclose(file);
    }
    std::FILE* file;
};

} // namespace

TEST(StdioInputStream, LinesBytesAndSkips) {
    ScratchDir dir;
    const auto path = dir.path / "in.txt";
    std::ofstream(path, std::ios::binary) << "first line\nsecond\n\xFFlast";
    RuntimeFile f(path, "rb");
    ASSERT_NE(f.file, nullptr);
    Reference<StdioInputStream> in = new StdioInputStream(f.file);
    signed char buf[32];
    EXPECT_EQ(in->read(buf, 0), 0);
    EXPECT_EQ(in->read(buf, 6), 5); // at most len - 1 bytes
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buf), 5), "first");
    EXPECT_EQ(in->read(buf, 32), 6); // the rest of the line, line feed included
    EXPECT_EQ(in->skip(7), 7);
    EXPECT_EQ(in->read(), 0xFF);
    EXPECT_EQ(in->read(buf, 32), 4);
    EXPECT_EQ(in->read(buf, 32), -1);
    EXPECT_EQ(in->read(), -1);
    in->close(); // the runtime stream stays open
    EXPECT_EQ(std::fseek(f.file, 0, SEEK_SET), 0);
    EXPECT_EQ(in->read(), 'f');
}

TEST(StdioStreams, RuntimeFailuresBecomeIoExceptions) {
    ScratchDir dir;
    const auto path = dir.path / "out.txt";
    {
        RuntimeFile f(path, "wb");
        Reference<StdioOutputStream> out = new StdioOutputStream(f.file);
        out->write("abc", 3);
        out->write(static_cast<signed char>('\n'));
        out->flush();
        EXPECT_EQ(ioFailure([&] { StdioInputStream(f.file).read(); }), u"stream read error");
        signed char buf[8];
        std::clearerr(f.file);
        EXPECT_EQ(ioFailure([&] { StdioInputStream(f.file).read(buf, 8); }), u"stream read error");
    }
    std::ifstream check(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(check), {}), "abc\n");
    {
        RuntimeFile f(path, "rb");
        Reference<StdioOutputStream> out = new StdioOutputStream(f.file);
        EXPECT_EQ(ioFailure([&] {
                      out->write("abc", 3);
                      out->flush();
                  }),
                  u"stream write error");
        std::clearerr(f.file);
        EXPECT_EQ(ioFailure([&] {
                      out->write(static_cast<signed char>('x'));
                      out->flush();
                  }),
                  u"stream write error");
    }
}

TEST(StdioStreams, StandardStreamsAndFactories) {
    Reference<Object> in = Class::forName(u"CQNStdioInputStream")->createInstance();
    Reference<Object> out = Class::forName(u"CQNStdioOutputStream")->createInstance();
    EXPECT_NE(dynamic_cast<StdioInputStream*>(in.get()), nullptr);
    EXPECT_NE(dynamic_cast<StdioOutputStream*>(out.get()), nullptr);
    Reference<StdioOutputStream> error = StdioOutputStream::getStdErrorStream();
    EXPECT_NE(error, StdioOutputStream::getStdErrorStream());
    error->write(static_cast<const char*>(nullptr), 0);
    error->flush();
    EXPECT_THROW(StdioInputStream(nullptr), ResultException);
}
