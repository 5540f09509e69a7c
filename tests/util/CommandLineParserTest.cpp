#include "qn/util/CommandLineParser.h"

#include "qn/core/Exception.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace qn;
using qn::util::CommandLineParser;

namespace {

std::string ascii(const String& s) {
    std::string out;
    for (int32_t i = 0; i < s.getLength(); ++i)
        out += static_cast<char>(s.getData()[i]);
    return out;
}

// A parser shaped like a converter's command line.
struct Convert {
    CommandLineParser parser{String(u"conv"), String(u"Converts text.")};
    Convert() {
        parser
            .addOption(u"from", u'f', u"source encoding", CommandLineParser::REQUIRED_VALUE, u"ENC")
            .addOption(u"to", u't', u"target encoding", CommandLineParser::REQUIRED_VALUE, u"ENC")
            .addOption(u"strict", 0, u"fail on unmappable input")
            .addOption(u"verbose", u'v', u"say more")
            .addOption(u"", u'q', u"say less")
            .addOption(u"level", u'l', u"compression", CommandLineParser::OPTIONAL_VALUE, u"N")
            .addOption(u"encrypt", u'e', u"")
            .addOption(u"encoding", 0, u"")
            .addPositional(u"INPUT", u"file to read", false)
            .addPositional(u"OUTPUT", u"file to write", false);
    }
    void parse(const std::vector<const char16_t*>& arguments) {
        std::vector<String> all(arguments.begin(), arguments.end());
        parser.parse(static_cast<int32_t>(all.size()), all.data());
    }
    std::string error(const std::vector<const char16_t*>& arguments) {
        try {
            parse(arguments);
        } catch (const ResultException& e) {
            EXPECT_EQ(static_cast<uint32_t>(e.getResult()), 0x80070057u);
            return ascii(e.getDescription());
        }
        return "no error";
    }
};

TEST(CommandLineParserTest, ValuesInEveryForm) {
    const std::vector<std::vector<const char16_t*>> FORMS = {
        {u"-f", u"CP1252", u"-tUTF-8"},
        {u"-fCP1252", u"--to", u"UTF-8"},
        {u"--fr=CP1252", u"--t", u"UTF-8"},
    };
    for (const auto& form : FORMS) {
        Convert c;
        c.parse(form);
        EXPECT_EQ(c.parser.getValue(u"from"), u"CP1252");
        EXPECT_EQ(c.parser.getValue(u"to"), u"UTF-8");
        EXPECT_EQ(c.parser.getPositionalCount(), 0);
    }
    Convert c;
    // A required value is the next argument whatever it looks like; "--x=" is an empty value.
    c.parse({u"-f", u"-v", u"--to=", u"--from", u"--"});
    EXPECT_EQ(c.parser.getValue(u"from"), u"--");
    EXPECT_EQ(c.parser.getValues(u"from").size(), 2u);
    EXPECT_EQ(c.parser.getValue(u"to", u"unset"), u"");
    EXPECT_FALSE(c.parser.isSet(u"verbose"));
}

TEST(CommandLineParserTest, GroupedFlagsAndCounts) {
    Convert c;
    c.parse({u"-vqv", u"-vfX", u"in"});
    EXPECT_EQ(c.parser.getCount(u"verbose"), 3);
    EXPECT_EQ(c.parser.getCount(u"q"), 1);
    EXPECT_EQ(c.parser.getValue(u"from"), u"X");
    EXPECT_FALSE(c.parser.isSet(u"strict"));
    EXPECT_EQ(c.parser.getPositional(0), u"in");
    EXPECT_THROW(c.parser.getPositional(1), RangeErrorException);
    EXPECT_THROW(c.parser.isSet(u"nosuch"), IllegalStateException);
}

TEST(CommandLineParserTest, OptionalValuesOnlyWhenAttached) {
    Convert c;
    c.parse({u"--level", u"in", u"-l"});
    EXPECT_EQ(c.parser.getCount(u"level"), 2);
    EXPECT_EQ(c.parser.getValue(u"level", u"6"), u"6");
    EXPECT_EQ(c.parser.getPositional(0), u"in");
    c.parse({u"--level=9", u"-l3"});
    EXPECT_EQ(c.parser.getValue(u"level"), u"3");
    EXPECT_EQ(c.parser.getValues(u"level").size(), 2u);
}

TEST(CommandLineParserTest, PositionalsMixedWithOptionsAndAfterDoubleDash) {
    Convert c;
    c.parse({u"in", u"--strict", u"-", u"--"});
    EXPECT_TRUE(c.parser.isSet(u"strict"));
    ASSERT_EQ(c.parser.getPositionalCount(), 2);
    EXPECT_EQ(c.parser.getPositional(1), u"-");
    c.parse({u"--", u"-v", u"--strict"});
    EXPECT_FALSE(c.parser.isSet(u"verbose"));
    EXPECT_FALSE(c.parser.isSet(u"strict")) << "results of the earlier parse are forgotten";
    EXPECT_EQ(c.parser.getPositional(0), u"-v");

    // Stopping at the first positional leaves a command's own options to the command.
    CommandLineParser tool(u"tool");
    tool.addOption(u"version", 0, u"").addPositional(u"COMMAND", u"", true, true);
    tool.setStopAtPositional(true);
    const String ARGS[] = {u"--version", u"md5", u"--version", u"-x"};
    tool.parse(4, ARGS);
    EXPECT_EQ(tool.getCount(u"version"), 1);
    EXPECT_EQ(tool.getPositionalCount(), 3);
    EXPECT_EQ(tool.getPositional(2), u"-x");
}

TEST(CommandLineParserTest, ErrorsNameTheOffendingArgument) {
    struct Case {
        std::vector<const char16_t*> arguments;
        const char* message;
    };
    const Case CASES[] = {
        {{u"--frob"}, "unrecognized option '--frob'"},
        {{u"--frob=1"}, "unrecognized option '--frob'"},
        {{u"--=x"}, "unrecognized option '--=x'"},
        {{u"-vx"}, "invalid option -- 'x'"},
        {{u"--from"}, "option '--from' requires an argument"},
        {{u"-v", u"-f"}, "option requires an argument -- 'f'"},
        {{u"--strict=yes"}, "option '--strict' doesn't allow an argument"},
        {{u"--enc"}, "option '--enc' is ambiguous; possibilities: '--encrypt' '--encoding'"},
        {{u"a", u"b", u"c"}, "extra operand 'c'"},
    };
    for (const Case& c : CASES) {
        Convert convert;
        EXPECT_EQ(convert.error(c.arguments), c.message);
    }
    // An exact name wins over the longer names it begins.
    Convert exact;
    exact.parse({u"--encrypt"});
    EXPECT_TRUE(exact.parser.isSet(u"encrypt"));

    CommandLineParser needs(u"needs");
    needs.addPositional(u"KEY", u"", true).addPositional(u"FILE", u"", true, true);
    const String ONE[] = {u"k"};
    try {
        needs.parse(1, ONE);
        FAIL();
    } catch (const ResultException& e) {
        EXPECT_EQ(ascii(e.getDescription()), "missing FILE operand");
    }
}

TEST(CommandLineParserTest, DeclarationMistakesAreRefused) {
    CommandLineParser p(u"p");
    p.addOption(u"from", u'f', u"");
    EXPECT_THROW(p.addOption(u"from", 0, u""), IllegalStateException);
    EXPECT_THROW(p.addOption(u"other", u'f', u""), IllegalStateException);
    EXPECT_THROW(p.addOption(u"", 0, u""), IllegalStateException);
    EXPECT_THROW(p.addOption(u"a=b", 0, u""), IllegalStateException);
    p.addPositional(u"A", u"").addPositional(u"B", u"", false, true);
    EXPECT_THROW(p.addPositional(u"C", u""), IllegalStateException);
    CommandLineParser q(u"q");
    q.addPositional(u"A", u"");
    EXPECT_THROW(q.addPositional(u"B", u"", true), IllegalStateException);
}

TEST(CommandLineParserTest, HelpIsGeneratedFromTheDeclarations) {
    Convert c;
    EXPECT_EQ(ascii(c.parser.getUsage()), "Usage: conv [OPTION]... [INPUT] [OUTPUT]");
    EXPECT_EQ(ascii(c.parser.getHelp()), "Usage: conv [OPTION]... [INPUT] [OUTPUT]\n"
                                         "Converts text.\n"
                                         "\n"
                                         "Arguments:\n"
                                         "  INPUT            file to read\n"
                                         "  OUTPUT           file to write\n"
                                         "\n"
                                         "Options:\n"
                                         "  -f, --from=ENC   source encoding\n"
                                         "  -t, --to=ENC     target encoding\n"
                                         "      --strict     fail on unmappable input\n"
                                         "  -v, --verbose    say more\n"
                                         "  -q               say less\n"
                                         "  -l, --level[=N]  compression\n"
                                         "  -e, --encrypt\n"
                                         "      --encoding\n");
    CommandLineParser sum(u"sum");
    sum.addPositional(u"KEY", u"", true).addPositional(u"FILE", u"", false, true);
    EXPECT_EQ(ascii(sum.getHelp()), "Usage: sum KEY [FILE]...\n");
    sum.setUsage(u"KEY FILE...");
    EXPECT_EQ(ascii(sum.getUsage()), "Usage: sum KEY FILE...");
}

TEST(CommandLineParserTest, MainArgumentsAreUtf8) {
    Convert c;
    const char* const ARGV[] = {"conv", "-f", "K\xC3\xB6ln", "\xE6\x9D\xB1"};
    c.parser.parse(4, ARGV);
    EXPECT_EQ(c.parser.getValue(u"from"), u"K\u00F6ln");
    EXPECT_EQ(c.parser.getPositional(0), u"\u6771");
}

} // namespace
