// The qncl tool as a user runs it: the built program is started through the command
// interpreter with its standard streams redirected to files, and its output, messages, exit
// status and the files it leaves are checked.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

#ifndef QNCL_TOOL_PATH
#error "the build defines QNCL_TOOL_PATH, the built qncl program"
#endif

namespace fs = std::filesystem;

namespace {

struct Result {
    int status;
    std::string out;
    std::string err;
};

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string quote(const std::string& s) {
    return "\"" + s + "\"";
}

std::string tool() {
    std::string path = QNCL_TOOL_PATH;
#if defined(_WIN32)
    // A Windows build tested under Wine was given the program's path on the Linux side; Wine
    // shows the Linux root as drive Z:.
    if (!path.empty() && path[0] == '/')
        path = "Z:" + path;
    for (char& c : path)
        if (c == '/')
            c = '\\';
#endif
    return path;
}

class QnclToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        m_dir = fs::temp_directory_path() / (std::string("qncl_tool_test_") + info->name());
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override { fs::remove_all(m_dir); }

    fs::path file(const std::string& name) const { return m_dir / name; }
    std::string arg(const std::string& name) const { return quote(file(name).string()); }

    // Runs "qncl ARGUMENTS" with standard input from the bytes given.
    Result qncl(const std::string& arguments, const std::string& input = std::string()) {
        writeFile(file("stdin"), input);
        std::string command = quote(tool()) + " " + arguments + " <" + arg("stdin") + " >" +
                              arg("stdout") + " 2>" + arg("stderr");
#if defined(_WIN32)
        // cmd.exe drops the first and the last quote of a line that begins with one.
        command = "\"" + command + "\"";
#endif
        int status = std::system(command.c_str());
#if !defined(_WIN32)
        status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
        Result run{status, readFile(file("stdout")), readFile(file("stderr"))};
        for (const char* name : {"stdin", "stdout", "stderr"})
            fs::remove(file(name));
        return run;
    }

    // Everything in the test's directory, to see that no temporary file is left behind.
    std::vector<std::string> entries() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_dir))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path m_dir;
};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

TEST_F(QnclToolTest, Md5PrintsLinesAsMd5sumDoes) {
    writeFile(file("abc.txt"), "abc");
    writeFile(file("empty"), "");
    Result r = qncl("md5 " + arg("abc.txt") + " - " + arg("empty"), "message digest");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "900150983cd24fb0d6963f7d28e17f72  " + file("abc.txt").string() + "\n" +
                         "f96b697d7cb7938d525a2f31aaf161d0  -\n" +
                         "d41d8cd98f00b204e9800998ecf8427e  " + file("empty").string() + "\n");
    EXPECT_EQ(r.err, "");

    r = qncl("md5", "abc");
    EXPECT_EQ(r.out, "900150983cd24fb0d6963f7d28e17f72  -\n");
    EXPECT_EQ(r.status, 0);
}

TEST_F(QnclToolTest, Md5GoesOnPastAFileItCannotRead) {
    writeFile(file("a"), "a");
    Result r = qncl("md5 " + arg("missing") + " " + arg("a"));
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "0cc175b9c0f1b6a831c399e269772661  " + file("a").string() + "\n");
    EXPECT_TRUE(contains(r.err, "qncl md5: " + file("missing").string() + ": cannot open: "))
        << r.err;
    EXPECT_TRUE(contains(r.err, "0x80070002")) << r.err;
}

#if !defined(_WIN32)
TEST_F(QnclToolTest, Md5EscapesBackslashesAndLineFeedsInNames) {
    writeFile(file("a\\b\nc"), "abc");
    Result r = qncl("md5 " + arg("a\\b\nc"));
    EXPECT_EQ(r.out, "\\900150983cd24fb0d6963f7d28e17f72  " + file("").string() + "a\\\\b\\nc\n");
}
#endif

TEST_F(QnclToolTest, ConvertTranslatesBetweenEncodings) {
    // CP1252's own characters in 0x80-0x9F (euro, curly quotes, dash) and Latin-1 letters.
    const std::string cp1252("caf\xE9 \x80 \x93x\x94 \x97 \xFF\n");
    const std::string utf8("caf\xC3\xA9 \xE2\x82\xAC \xE2\x80\x9Cx\xE2\x80\x9D \xE2\x80\x94 "
                           "\xC3\xBF\n");
    Result r = qncl("convert --from CP1252 --to UTF-8", cp1252);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, utf8);
    EXPECT_EQ(r.err, "");
    // Code pages and aliases in any case name the same converters; files both ways.
    writeFile(file("in"), utf8);
    r = qncl("convert -f utf8 -t windows-1252 " + arg("in") + " " + arg("out"));
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(readFile(file("out")), cp1252);
    r = qncl("convert --from=65001 --to=1252 - " + arg("out"), utf8);
    EXPECT_EQ(readFile(file("out")), cp1252);

    // A supplementary character through every UTF: a surrogate pair in the middle.
    const std::string emoji("a\xF0\x9F\x98\x80"
                            "b");
    r = qncl("convert -f utf-8 -t utf-16le", emoji);
    EXPECT_EQ(r.out, std::string("a\0\x3D\xD8\x00\xDE"
                                 "b\0",
                                 8));
    r = qncl("convert -f utf-8 -t utf-32be", emoji);
    EXPECT_EQ(r.out, std::string("\0\0\0a\0\x01\xF6\x00\0\0\0b", 12));
    writeFile(file("utf16"), std::string("a\0\x3D\xD8\x00\xDE"
                                         "b\0",
                                         8));
    r = qncl("convert -f UTF-16LE -t UTF-8 " + arg("utf16"));
    EXPECT_EQ(r.out, emoji);
    // Long input crosses the converters' chunks without losing a character at a seam.
    std::string longText;
    for (int i = 0; i < 120000; ++i)
        longText += "\xE2\x82\xAC\xC3\xA9x";
    r = qncl("convert -f utf-8 -t cp1252", longText);
    EXPECT_EQ(r.status, 0) << r.err;
    std::string expected;
    for (int i = 0; i < 120000; ++i)
        expected += "\x80\xE9x";
    EXPECT_TRUE(r.out == expected) << r.out.size();
    EXPECT_EQ(entries(), (std::vector<std::string>{"in", "out", "utf16"}));
}

#if !defined(_WIN32)
TEST_F(QnclToolTest, ConvertReadsAPipe) {
    // More than a pipe holds, so the reader waits on it between reads; then a fault behind it.
    std::string text, expected;
    for (int i = 0; i < 50000; ++i) {
        text += "\xC3\xA9z";
        expected += std::string("\xE9\0z\0", 4);
    }
    for (const std::string& tail : {std::string(), std::string("\xED\xA0\x80")}) {
        writeFile(file("in"), text + tail);
        const std::string command = "cat " + arg("in") + " | " + quote(tool()) +
                                    " convert --from UTF-8 --to UTF-16LE >" + arg("out") +
                                    " 2>" + arg("err");
        const int status = std::system(command.c_str());
        ASSERT_TRUE(WIFEXITED(status));
        if (tail.empty()) {
            EXPECT_EQ(WEXITSTATUS(status), 0) << readFile(file("err"));
            EXPECT_TRUE(readFile(file("out")) == expected) << readFile(file("out")).size();
        } else {
            EXPECT_EQ(WEXITSTATUS(status), 1);
            EXPECT_TRUE(contains(readFile(file("err")),
                                 "-: cannot decode UTF-8 at input byte offset 150000: "))
                << readFile(file("err"));
        }
    }
}
#endif

TEST_F(QnclToolTest, ConvertSubstitutesUnlessStrict) {
    Result r = qncl("convert -f utf-8 -t ascii", "a\xE2\x82\xAC"
                                                 "b");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "a?b");
    // A sequence cut off by the end of the input: one U+FFFD per byte.
    r = qncl("convert -f utf-8 -t utf-16be", "ab\xE2\x82");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, std::string("\0a\0b\xFF\xFD\xFF\xFD", 8));

    // Strict: the character offset counts UTF-16 units, not bytes of input.
    std::string text;
    for (int i = 0; i < 200000; ++i)
        text += "\xC3\xA9";
    writeFile(file("in"), text + "\xE2\x82\xAC");
    writeFile(file("out"), "keep me");
    r = qncl("convert --strict -f utf-8 -t iso-8859-1 " + arg("in") + " " + arg("out"));
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "qncl convert: " + file("in").string() +
                         ": cannot encode ISO8859_1 at character offset 200000: unmappable "
                         "character (0x8BB34102)\n");
    EXPECT_EQ(readFile(file("out")), "keep me");
    EXPECT_EQ(entries(), (std::vector<std::string>{"in", "out"}));

    r = qncl("convert -s -f utf-8 -t utf-16le", "ab\xE2\x82");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "qncl convert: -: cannot decode UTF-8 at input byte offset 2: incomplete "
                     "sequence at the end of the input\n");
    r = qncl("convert -s -f utf-32be -t utf-8", std::string("\0\0\0a\0\x11\0\0", 8));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, "cannot decode UTF-32BE at input byte offset 4: unmappable"))
        << r.err;
}

TEST_F(QnclToolTest, ConvertReportsWhereInvalidInputIs) {
    // Malformed input fails with or without --strict, at the byte offset of the sequence, also
    // far into the input.
    writeFile(file("in"), std::string(300001, 'a') + "\xED\xA0\x80z");
    writeFile(file("out"), "keep me");
    Result r = qncl("convert -f utf-8 -t utf-16le " + arg("in") + " " + arg("out"));
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "qncl convert: " + file("in").string() +
                         ": cannot decode UTF-8 at input byte offset 300001: Invalid UTF-8 "
                         "sequence (decoded chars in surrogate range)\n");
    EXPECT_EQ(readFile(file("out")), "keep me");
    // A lone high surrogate is the encoder's fault: at its place, or at the end of the input.
    r = qncl("convert -f utf-16le -t utf-8", std::string("a\0\x00\xD8"
                                                         "b\0",
                                                         6));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, "-: cannot encode UTF-8 at character offset 1: leading "
                                "surrogate without trailing\n"))
        << r.err;
    r = qncl("convert -f utf-16le -t utf-8", std::string("a\0b\0\x00\xD8", 6));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, "at character offset 2: leading surrogate")) << r.err;
    r = qncl("convert -f utf-8 -t ascii " + arg("missing") + " " + arg("out"));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, file("missing").string() + ": cannot open: file not found"))
        << r.err;
    EXPECT_EQ(entries(), (std::vector<std::string>{"in", "out"}));
}

TEST_F(QnclToolTest, EncodingsListsNamesCodePagesAndAliases) {
    const Result r = qncl("encodings");
    EXPECT_EQ(r.status, 0) << r.err;
    const size_t infoOnly = r.out.find("information only");
    ASSERT_NE(infoOnly, std::string::npos) << r.out;
    const std::string withConverters = r.out.substr(0, infoOnly);
    const std::string without = r.out.substr(infoOnly);
    for (const char* line :
         {"\n  CP1252     1252   WINDOWS-1252\n", "\n  UTF-8      65001  UTF8 UTF_8\n",
          "\n  UTF-16LE   -\n", "\n  AMP-7      -      A7\n"})
        EXPECT_TRUE(contains(withConverters, line)) << line;
    // ASCII stands twice in the registration; it is listed once, as the canonical name.
    EXPECT_TRUE(contains(withConverters, "\n  ASCII      20127  ANSI_X3.4-1968 ISO-IR-6 "));
    EXPECT_EQ(withConverters.find(" ASCII "), withConverters.rfind(" ASCII "));
    EXPECT_TRUE(contains(without, "\n  CP1250     1250\n"));
    EXPECT_TRUE(contains(without, "\n  EUCJP      20932\n"));
    EXPECT_FALSE(contains(without, "  CP1252 "));
}

TEST_F(QnclToolTest, BlowfishEnciphersAndDeciphers) {
    const std::string plain("\x11\x11\x11\x11\x11\x11\x11\x11", 8);
    Result r = qncl("blowfish --encrypt --key 0123456789ABCDEF", plain);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, std::string("\x61\xF9\xC3\x80\x22\x81\xB0\x96", 8));

    std::string data;
    for (int i = 0; i < 4000; ++i)
        data += static_cast<char>(i * 7 + i / 256);
    writeFile(file("plain"), data);
    r = qncl("blowfish -e -k00ff " + arg("plain") + " " + arg("cipher"));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_NE(readFile(file("cipher")), data);
    // Deciphering over an existing file replaces it; a file may be its own output.
    writeFile(file("again"), "old contents");
    r = qncl("blowfish --decrypt --key=00FF " + arg("cipher") + " " + arg("again"));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(readFile(file("again")), data);
    r = qncl("blowfish -d -k 00ff " + arg("cipher") + " " + arg("cipher"));
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(readFile(file("cipher")), data);
    EXPECT_EQ(entries(), (std::vector<std::string>{"again", "cipher", "plain"}));
}

TEST_F(QnclToolTest, FailedRunLeavesTheOutputFileAsItWas) {
    writeFile(file("odd"), std::string(8 * 40000 + 5, 'x'));
    writeFile(file("target"), "keep me");
    Result r = qncl("blowfish -e -k 01 " + arg("odd") + " " + arg("target"));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, "qncl blowfish: " + file("odd").string() +
                                    ": only supports 8 byte block boundaries (input of 320005 "
                                    "bytes)"))
        << r.err;
    EXPECT_EQ(readFile(file("target")), "keep me");
    EXPECT_EQ(entries(), (std::vector<std::string>{"odd", "target"}));

    r = qncl("blowfish -e -k 01 " + arg("missing") + " " + arg("target"));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, file("missing").string() + ": cannot open")) << r.err;
    EXPECT_EQ(readFile(file("target")), "keep me");

    writeFile(file("whole"), "12345678");
    r = qncl("blowfish -e -k 01 " + arg("whole") + " " + quote((m_dir / "no" / "out").string()));
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(contains(r.err, (m_dir / "no" / "out").string() + ": cannot create")) << r.err;
}

TEST_F(QnclToolTest, UsageErrorsExitWithTwoAndAHint) {
    struct Case {
        const char* arguments;
        const char* message;
    };
    const Case CASES[] = {
        {"", "qncl: missing COMMAND operand\nTry 'qncl --help' for more information.\n"},
        {"frobnicate", "qncl: unknown command 'frobnicate'\nTry 'qncl --help'"},
        {"--frob", "qncl: unrecognized option '--frob'\n"},
        {"md5 --binary", "qncl md5: unrecognized option '--binary'\nTry 'qncl md5 --help'"},
        {"blowfish -k 00", "qncl blowfish: give one of --encrypt and --decrypt\n"},
        {"blowfish -e -d -k 00", "qncl blowfish: give one of --encrypt and --decrypt\n"},
        {"blowfish -e", "qncl blowfish: missing --key\n"},
        {"blowfish -e --key", "qncl blowfish: option '--key' requires an argument\n"},
        {"blowfish -e -k 123", "qncl blowfish: invalid key '123': an odd number"},
        {"blowfish -e -k 12zz", "qncl blowfish: invalid key '12zz': not hexadecimal"},
        {"blowfish -e -k 00 a b c", "qncl blowfish: extra operand 'c'\n"},
        {"classes extra", "qncl classes: extra operand 'extra'\n"},
        {"convert --to utf-8", "qncl convert: missing --from\n"},
        {"convert -f utf-8", "qncl convert: missing --to\n"},
        {"convert -f UTF-16 -t utf-8",
         "qncl convert: unknown encoding 'UTF-16' (see 'qncl encodings'"},
        // A code page known by information only has no converter.
        {"convert -f utf-8 -t cp1250", "qncl convert: unknown encoding 'cp1250'"},
        {"convert -f utf-8 -t ascii a b c", "qncl convert: extra operand 'c'\n"},
        {"encodings x", "qncl encodings: extra operand 'x'\n"},
    };
    for (const Case& c : CASES) {
        const Result r = qncl(c.arguments);
        EXPECT_EQ(r.status, 2) << c.arguments;
        EXPECT_EQ(r.out, "") << c.arguments;
        EXPECT_TRUE(startsWith(r.err, c.message)) << c.arguments << ": " << r.err;
    }
    const Result longKey = qncl("blowfish -e -k " + std::string(114, 'a'));
    EXPECT_EQ(longKey.status, 2);
    EXPECT_TRUE(contains(longKey.err, "longer than 56 bytes")) << longKey.err;
}

TEST_F(QnclToolTest, HelpAndVersion) {
    Result r = qncl("--help");
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(startsWith(r.out, "Usage: qncl ")) << r.out;
    for (const char* command :
         {"\n  convert ", "\n  encodings ", "\n  md5 ", "\n  blowfish ", "\n  classes "})
        EXPECT_TRUE(contains(r.out, command)) << command;

    r = qncl("blowfish --help");
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(startsWith(
        r.out, "Usage: qncl blowfish (--encrypt | --decrypt) --key HEX [INPUT [OUTPUT]]\n"))
        << r.out;
    EXPECT_TRUE(contains(r.out, "  -k, --key=HEX")) << r.out;
    r = qncl("md5 -h");
    EXPECT_TRUE(startsWith(r.out, "Usage: qncl md5 [OPTION]... [FILE]...\n")) << r.out;

    r = qncl("--version");
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(startsWith(r.out, "qncl ")) << r.out;
}

TEST_F(QnclToolTest, ClassesListsTheRegistryInNameOrder) {
    const Result r = qncl("classes");
    EXPECT_EQ(r.status, 0) << r.err;
    std::vector<std::string> lines;
    std::istringstream in(r.out);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end()));
    for (const std::string& line : lines) {
        const size_t tab = line.find('\t');
        ASSERT_NE(tab, std::string::npos) << line;
        const std::string answer = line.substr(tab + 1);
        EXPECT_TRUE(answer == "yes" || answer == "no") << line;
    }
    const auto has = [&](const char* line) {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    };
    EXPECT_TRUE(has("CQNObject\tyes"));
    EXPECT_TRUE(has("qn::Class\tno"));
    EXPECT_TRUE(has("qn::IntDivByZeroException\tyes"));
}

} // namespace
