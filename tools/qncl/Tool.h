// What every command of the qncl tool shares: the table of commands, the exit statuses, text
// on the console, and failures that carry their own message.
#pragma once

#include "qn/core/Exception.h"
#include "qn/util/CommandLineParser.h"

#include <string>

namespace qncl {

using qn::String;
using qn::util::CommandLineParser;

enum ExitStatus {
    EXIT_OK = 0,
    // The data could not be processed: a file that cannot be read or written, input the
    // library refuses.
    EXIT_FAILED = 1,
    // The command line is wrong.
    EXIT_USAGE = 2,
};

// A mistake on the command line that the parser cannot see (a key that is not hexadecimal, a
// missing mode); reported like a parse error, with the hint to try --help.
class UsageError : public qn::Exception {
public:
    explicit UsageError(const String& message) : qn::Exception(message) {}
};

struct Command {
    const char16_t* name;
    // One line for the tool's own help.
    const char16_t* summary;
    // Declares the command's options and arguments; the parser already has -h, --help.
    void (*declare)(CommandLineParser& parser);
    // Runs the parsed command; returns the exit status. program is "qncl NAME", the prefix of
    // every message.
    int (*run)(const CommandLineParser& parser, const std::string& program);
};

extern const Command MD5_COMMAND;
extern const Command BLOWFISH_COMMAND;
extern const Command CLASSES_COMMAND;
extern const Command CONVERT_COMMAND;
extern const Command ENCODINGS_COMMAND;
// Every command, in the order the help lists them; ends with null.
extern const Command* const COMMANDS[];

// Text as UTF-8.
std::string utf8(const String& text);
String wide(const std::string& utf8Text);
// Writes to standard output or standard error; output failures surface at flushOutput.
void printOut(const std::string& text);
void printError(const std::string& text);
// Flushes standard output; false when anything written to it was lost.
bool flushOutput();

// "0x80070002": a result code as the library prints it; describe adds a short explanation
// when the code is a common one ("file not found (0x80070002)").
std::string hexCode(QNRESULT code);
std::string describe(QNRESULT code);
// What a caught library exception says: its message, else its result code described.
std::string describe(const qn::Exception& e);

} // namespace qncl
