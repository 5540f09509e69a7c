#include "qn/util/FilePath.h"
#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;
using namespace qn::util;

namespace {

constexpr PathNormaliser::Style POSIX = PathNormaliser::POSIX_STYLE;
constexpr PathNormaliser::Style WINDOWS = PathNormaliser::WINDOWS_STYLE;

std::u16string units(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}
// For failure messages: the paths here are ASCII.
std::string shown(const String& s) {
    std::string narrow;
    for (int32_t i = 0; i < s.getLength(); ++i)
        narrow += static_cast<char>(s[i]);
    return narrow;
}

struct Case {
    const char16_t* in;
    const char16_t* clean;
    const char16_t* normal;
    const char16_t* root;
    bool absolute;
};

template <size_t N> void checkForms(const Case (&cases)[N], PathNormaliser::Style style) {
    for (const Case& c : cases) {
        const String in(c.in);
        EXPECT_EQ(units(PathNormaliser::clean(in, style)), c.clean) << shown(in);
        EXPECT_EQ(units(PathNormaliser::normalise(in, style)), c.normal) << shown(in);
        EXPECT_EQ(units(PathNormaliser::root(in, style)), c.root) << shown(in);
        EXPECT_EQ(PathNormaliser::isAbsolute(in, style), c.absolute) << shown(in);
    }
}

} // namespace

TEST(PathNormaliser, PosixForms) {
    const Case cases[] = {
        {u"", u"", u"", u"", false},
        {u"/", u"/", u"/", u"/", true},
        {u"//a//b/", u"/a/b", u"/a/b", u"/", true},
        {u"a/./b/../c", u"a/./b/../c", u"a/c", u"", false},
        {u"../../a", u"../../a", u"../../a", u"", false},
        {u"a/../..", u"a/../..", u"..", u"", false},
        {u"a/..", u"a/..", u".", u"", false},
        {u"/../a/..", u"/../a/..", u"/", u"/", true},
        {u"./", u".", u".", u"", false},
        {u"a\\b", u"a\\b", u"a\\b", u"", false}, // a backslash is a name's character here
    };
    checkForms(cases, POSIX);
}

TEST(PathNormaliser, WindowsForms) {
    const Case cases[] = {
        {u"C:/x//y/", u"C:\\x\\y", u"C:\\x\\y", u"C:\\", true},
        {u"c:", u"c:", u"c:", u"c:", false},
        {u"C:a\\..\\..\\b", u"C:a\\..\\..\\b", u"C:..\\b", u"C:", false},
        {u"C:\\..\\a", u"C:\\..\\a", u"C:\\a", u"C:\\", true},
        {u"\\x\\.\\y", u"\\x\\.\\y", u"\\x\\y", u"\\", false},
        {u"//server/share/dir/../f", u"\\\\server\\share\\dir\\..\\f", u"\\\\server\\share\\f",
         u"\\\\server\\share\\", true},
        {u"\\\\server\\share\\..", u"\\\\server\\share\\..", u"\\\\server\\share\\",
         u"\\\\server\\share\\", true},
        {u"a/b\\c", u"a\\b\\c", u"a\\b\\c", u"", false},
        {u"1:x", u"1:x", u"1:x", u"", false}, // not a drive letter
    };
    checkForms(cases, WINDOWS);
}

TEST(PathNormaliser, Joining) {
    struct Join {
        PathNormaliser::Style style;
        const char16_t *base, *other, *joined;
    };
    const Join joins[] = {
        {POSIX, u"/a/b", u"c/d", u"/a/b/c/d"},
        {POSIX, u"/a/b/", u"/c", u"/c"},
        {POSIX, u"", u"c//", u"c"},
        {POSIX, u"a", u"", u"a"},
        {WINDOWS, u"C:\\a", u"b", u"C:\\a\\b"},
        {WINDOWS, u"C:\\a", u"D:\\b", u"D:\\b"},
        {WINDOWS, u"C:\\a", u"\\b", u"C:\\b"}, // the root of base's drive
        {WINDOWS, u"\\\\s\\sh\\a", u"\\b", u"\\\\s\\sh\\b"},
        {WINDOWS, u"c:\\a", u"C:b", u"c:\\a\\b"}, // same drive: continues base
        {WINDOWS, u"C:\\a", u"D:b", u"D:b"},
    };
    for (const Join& j : joins)
        EXPECT_EQ(units(PathNormaliser::join(String(j.base), String(j.other), j.style)), j.joined)
            << shown(String(j.base)) << " + " << shown(String(j.other));
}

TEST(PathNormaliser, Relativising) {
    EXPECT_EQ(units(PathNormaliser::relativise(u"/a/b/c", u"/a/d/e", POSIX)), u"../../d/e");
    EXPECT_EQ(units(PathNormaliser::relativise(u"/a/b", u"/a/b/./", POSIX)), u".");
    EXPECT_EQ(units(PathNormaliser::relativise(u"a", u"a/b/c", POSIX)), u"b/c");
    EXPECT_EQ(units(PathNormaliser::relativise(u"../x", u"../y", POSIX)), u"../y");
    // Case differs on Windows only.
    EXPECT_EQ(units(PathNormaliser::relativise(u"C:\\Dir\\Sub", u"c:\\dir\\other", WINDOWS)),
              u"..\\other");
    EXPECT_EQ(units(PathNormaliser::relativise(u"/Dir/Sub", u"/dir/other", POSIX)),
              u"../../dir/other");
    EXPECT_THROW(PathNormaliser::relativise(u"/a", u"b", POSIX), InvalidPathException);
    EXPECT_THROW(PathNormaliser::relativise(u"C:\\a", u"D:\\a", WINDOWS), InvalidPathException);
    // Where ".." leads from a relative start is unknown.
    EXPECT_THROW(PathNormaliser::relativise(u"..", u"a", POSIX), InvalidPathException);
}

TEST(FilePath, PartsOfAPath) {
    const char16_t sep = FilePath::getSeparator();
    const String base = String(sep).append(u"data").append(sep).append(u"archive.tar.gz");
    const FilePath path(base);
    EXPECT_TRUE(path.isAbsolute() || sep == u'\\'); // "\data" has no drive on Windows
    EXPECT_EQ(units(path.getFileName()), u"archive.tar.gz");
    EXPECT_EQ(units(path.getExtension()), u"gz");
    EXPECT_EQ(units(path.getStem()), u"archive.tar");
    EXPECT_EQ(units(path.getParent().getFileName()), u"data");
    EXPECT_EQ(path.getParent().getParent(), path.getRoot());
    EXPECT_TRUE(path.getRoot().getParent().isEmpty());
    EXPECT_TRUE(path.getRoot().getFileName().isEmpty());
    EXPECT_TRUE(FilePath(u"name").getParent().isEmpty());

    const struct {
        const char16_t *name, *extension, *stem;
    } names[] = {{u".profile", u"", u".profile"},
                 {u"..", u"", u".."},
                 {u"a.", u"", u"a"},
                 {u"noext", u"", u"noext"},
                 {u"x.y", u"y", u"x"}};
    for (const auto& n : names) {
        EXPECT_EQ(units(FilePath(n.name).getExtension()), n.extension) << shown(String(n.name));
        EXPECT_EQ(units(FilePath(n.name).getStem()), n.stem) << shown(String(n.name));
    }
}
