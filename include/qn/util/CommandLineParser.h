// util::CommandLineParser: reads a program's arguments with the conventions users know from GNU
// tools, keeps what it found for the program to ask, and writes the program's --help text from
// the same declarations.
#pragma once

#include "qn/core/String.h"

#include <memory>
#include <vector>

namespace qn::util {

// What the parser accepts:
// - Short options: "-v"; several flags grouped, "-vq"; a value attached, "-fX", or in the next
//   argument, "-f X" (even one that begins with "-"). In a group, an option that takes a value
//   takes the rest of the argument, so "-vfX" is "-v -f X".
// - Long options: "--from X" or "--from=X"; "--from=" gives the empty value. A long name may
//   be shortened to any prefix that no other long name shares ("--enc" for "--encrypt");
//   an exact name always wins.
// - Optional values are taken only when attached ("-fX", "--from=X"): the next argument is
//   never one, so "--level INPUT" leaves INPUT a positional argument.
// - "--" ends the options: every later argument is positional. "-" alone is positional (the
//   usual name of standard input or output).
// - Options and positional arguments may come in any order, unless setStopAtPositional is on:
//   then the first positional argument and everything after it are positional, which lets a
//   program read its own options before a command name and leave the command's arguments
//   alone.
// - An option may be given more than once; getCount counts, getValues lists every value and
//   getValue gives the last.
//
// Failures while parsing throw ResultException 0x80070057 (bad argument) whose message names
// the offending argument in the words GNU tools use: "unrecognized option '--frob'", "invalid
// option -- 'x'", "option '--from' requires an argument", "option requires an argument --
// 'f'", "option '--help' doesn't allow an argument", "option '--e' is ambiguous;
// possibilities: '--encrypt' '--encoding'", "missing INPUT operand", "extra operand 'b'". A
// program shows it after its own name with a hint to try --help.
//
// Mistakes in the declarations (no name, a name declared twice, a positional after a repeated
// one) throw IllegalStateException when they are made. Names are looked up by the long name
// without its dashes, or, for an option without one, by its one-letter short name; asking for
// an undeclared name throws IllegalStateException too, since it is the program's own mistake.
class QNCL_API CommandLineParser : public Object {
public:
    enum ValueMode {
        NO_VALUE = 0,       // a flag
        REQUIRED_VALUE = 1, // "-f X", "-fX", "--from X", "--from=X"
        OPTIONAL_VALUE = 2, // "-f", "-fX", "--from", "--from=X"
    };

    // program: how usage lines and messages name the program ("qncl md5"). description: the
    // text shown under the usage line in the help.
    explicit CommandLineParser(const String& program, const String& description = String());
    ~CommandLineParser() override;
    CommandLineParser(const CommandLineParser&) = delete;
    CommandLineParser& operator=(const CommandLineParser&) = delete;

    // Declares an option by its long name (without dashes; empty for none) and its short name
    // (0 for none). valueName is what the help shows for the value ("ENC"; "VALUE" when empty).
    // Options are listed in the help in the order declared.
    CommandLineParser& addOption(const String& longName, char16_t shortName, const String& help,
                                 ValueMode mode = NO_VALUE, const String& valueName = String());
    // Declares the next positional argument as the help shows it ("INPUT"). Required ones must
    // all be present after parsing; a repeated one takes every argument left and must be the
    // last declared. Arguments beyond the declared ones are refused with "extra operand".
    CommandLineParser& addPositional(const String& name, const String& help, bool required = false,
                                     bool repeated = false);
    // Replaces the generated synopsis that follows the program's name in the usage line.
    CommandLineParser& setUsage(const String& synopsis);
    // With stop on, options end at the first positional argument (see above).
    CommandLineParser& setStopAtPositional(bool stop);

    // Parses count arguments (the program's own name not among them), forgetting the results of
    // an earlier parse first. After a failure the results are those of the arguments before the
    // offending one.
    void parse(int32_t count, const String* arguments);
    // The same for a main function's argc and argv: argv[0] is the program and is skipped, the
    // others are UTF-8 text.
    void parse(int argc, const char* const* argv);

    // Whether the option was given, and how many times.
    bool isSet(const String& name) const;
    int32_t getCount(const String& name) const;
    // The last value given to the option; fallback when it was not given or, for an optional
    // value, given without one.
    String getValue(const String& name, const String& fallback = String()) const;
    // Every value given, in order (an optional value given without one is not listed).
    std::vector<String> getValues(const String& name) const;
    // The positional arguments in order, whatever positional declarations they matched.
    int32_t getPositionalCount() const;
    // RangeErrorException outside 0 to getPositionalCount() - 1.
    String getPositional(int32_t index) const;

    // "Usage: " with the program and its synopsis: the generated one is "[OPTION]..." when
    // options are declared, then each positional, optional ones in brackets, a repeated one
    // followed by "...".
    String getUsage() const;
    // The usage line, the description, and a table of the positional arguments and of the
    // options ("  -f, --from=ENC  help"), one line each, ending with a line feed.
    String getHelp() const;

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

} // namespace qn::util
