#include "StreamTestSupport.h"

#include "qn/io/StdioInputStream.h"
#include "qn/io/StdioOutputStream.h"

#include <cstdio>
#include <fstream>

using namespace qn;
using namespace qn::io;
using namespace qntest;

TEST(StdioStreams, LinesBytesSkipsAndRuntimeFailures) {
    ScratchDir dir;
    const std::string path = (dir.path / "stdio.txt").string();
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    {
        Reference<StdioOutputStream> out = new StdioOutputStream(file);
        out->write("first line\nsecond\n\xFFlast", 23);
        out->flush();
        EXPECT_EQ(messageOf([&] { StdioInputStream(file).read(); }), u"stream read error");
    }
    std::fclose(file);

    file = std::fopen(path.c_str(), "rb");
    Reference<StdioInputStream> in = new StdioInputStream(file);
    signed char buf[32];
    EXPECT_EQ(in->read(buf, 6), 5);  // at most len - 1 bytes
    EXPECT_EQ(in->read(buf, 32), 6); // the rest of the line, line feed included
    EXPECT_EQ(in->skip(7), 7);
    EXPECT_EQ(in->read(), 0xFF);
    EXPECT_EQ(in->read(buf, 32), 4);
    EXPECT_EQ(in->read(buf, 32), -1);
    in->close(); // the runtime stream stays open
    EXPECT_EQ(messageOf([&] {
                  Reference<StdioOutputStream> out = new StdioOutputStream(file);
                  out->write("x", 1);
                  out->flush();
              }),
              u"stream write error");
    std::fclose(file);
}
