// qncl: the library's services from the command line. The first argument names a command; each
// command is a row of the table in Tool.h, with its own options, help and exit statuses.
#include "Tool.h"

#include <vector>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

#ifndef QNCL_TOOL_VERSION
#error "the build defines QNCL_TOOL_VERSION"
#endif

namespace qncl {

const Command* const COMMANDS[] = {&CONVERT_COMMAND,  &ENCODINGS_COMMAND, &MD5_COMMAND,
                                   &BLOWFISH_COMMAND, &CLASSES_COMMAND,   nullptr};

namespace {

const char* const TOOL = "qncl";

void addHelpOption(CommandLineParser& parser) {
    parser.addOption(u"help", u'h', u"show this help and exit");
}

int usageError(const std::string& program, const qn::Exception& e) {
    printError(program + ": " + describe(e) + "\nTry '" + program +
               " --help' for more information.\n");
    return EXIT_USAGE;
}

std::string toolHelp(const CommandLineParser& parser) {
    std::string help = utf8(parser.getHelp());
    help += "\nCommands:\n";
    for (const Command* const* c = COMMANDS; *c; ++c) {
        std::string name = "  " + utf8(String((*c)->name));
        name.resize(14, ' ');
        help += name + utf8(String((*c)->summary)) + "\n";
    }
    return help + "\nAn INPUT or OUTPUT that is absent or \"-\" is standard input or output.\n"
                  "Exit status: 0 success, 1 the data could not be processed, 2 a usage error.\n";
}

int runCommand(const Command& command, const std::vector<String>& arguments) {
    const std::string program = std::string(TOOL) + " " + utf8(String(command.name));
    CommandLineParser parser(wide(program));
    addHelpOption(parser);
    command.declare(parser);
    try {
        parser.parse(static_cast<int32_t>(arguments.size()), arguments.data());
    } catch (const qn::Exception& e) {
        return usageError(program, e);
    }
    if (parser.isSet(u"help")) {
        printOut(utf8(parser.getHelp()));
        return flushOutput() ? EXIT_OK : EXIT_FAILED;
    }
    try {
        return command.run(parser, program);
    } catch (const UsageError& e) {
        return usageError(program, e);
    }
}

int run(const std::vector<String>& arguments) {
    CommandLineParser parser(String(u"qncl"), String(u"The qncl library's services from the "
                                                     u"command line."));
    addHelpOption(parser);
    parser.addOption(u"version", 0, u"show the version and exit")
        .addPositional(u"COMMAND", u"", true, true)
        .setUsage(u"[--help | --version] COMMAND [ARGUMENT]...\n       qncl COMMAND --help")
        .setStopAtPositional(true);
    try {
        parser.parse(static_cast<int32_t>(arguments.size()), arguments.data());
    } catch (const qn::Exception& e) {
        if (!parser.isSet(u"help") && !parser.isSet(u"version"))
            return usageError(TOOL, e);
    }
    if (parser.isSet(u"help")) {
        printOut(toolHelp(parser));
        return flushOutput() ? EXIT_OK : EXIT_FAILED;
    }
    if (parser.isSet(u"version")) {
        printOut(std::string(TOOL) + " " QNCL_TOOL_VERSION "\n");
        return flushOutput() ? EXIT_OK : EXIT_FAILED;
    }
    // Options end at the command's name: what follows it is the command's.
    const String name = parser.getPositional(0);
    std::vector<String> rest;
    for (int32_t i = 1; i < parser.getPositionalCount(); ++i)
        rest.push_back(parser.getPositional(i));
    for (const Command* const* c = COMMANDS; *c; ++c)
        if (name == (*c)->name)
            return runCommand(**c, rest);
    return usageError(TOOL, UsageError(wide("unknown command '" + utf8(name) + "'")));
}

// Nothing may escape main: a failure nobody expected still gets a message and a status.
int guarded(const std::vector<String>& arguments) {
    try {
        return run(arguments);
    } catch (const qn::Exception& e) {
        printError(std::string(TOOL) + ": " + describe(e) + "\n");
    } catch (const std::bad_alloc&) {
        printError(std::string(TOOL) + ": " + describe(QN_E_OUTOFMEMORY) + "\n");
    }
    return EXIT_FAILED;
}

} // namespace

} // namespace qncl

#if defined(_WIN32)
// The wide entry point sees file names in every script, not only the ANSI code page's.
int wmain(int argc, wchar_t** argv) {
    // Text leaves with line feeds alone, as on every other platform.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<qn::String> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.emplace_back(argv[i]);
    return qncl::guarded(arguments);
}
#else
int main(int argc, char** argv) {
    std::vector<qn::String> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(qncl::wide(argv[i]));
    return qncl::guarded(arguments);
}
#endif
