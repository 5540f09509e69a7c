// Command-line parsing: whatever the arguments (the input split at zero bytes, UTF-8), parse
// succeeds or throws ResultException 0x80070057 with a message; a successful parse never
// holds more values than uses of an option; and the arguments written back in their plainest
// form ("--name=value" for each value, bare names for the others, "--" and the positionals)
// parse to the same results.
#include "qn/core/Exception.h"
#include "qn/util/CommandLineParser.h"

#include <cstdlib>
#include <string>
#include <vector>

using namespace qn;
using qn::util::CommandLineParser;

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

const char16_t* const NAMES[] = {u"from", u"fresh", u"level", u"verbose", u"q"};

void declare(CommandLineParser& parser) {
    parser.addOption(u"from", u'f', u"", CommandLineParser::REQUIRED_VALUE)
        .addOption(u"fresh", 0, u"")
        .addOption(u"level", u'l', u"", CommandLineParser::OPTIONAL_VALUE)
        .addOption(u"verbose", u'v', u"")
        .addOption(u"", u'q', u"")
        .addPositional(u"A", u"", true)
        .addPositional(u"B", u"", false, true);
}

struct Results {
    std::vector<int32_t> counts;
    std::vector<std::vector<String>> values;
    std::vector<String> positionals;

    explicit Results(const CommandLineParser& parser) {
        for (const char16_t* name : NAMES) {
            counts.push_back(parser.getCount(name));
            values.push_back(parser.getValues(name));
            check(values.back().size() <= static_cast<size_t>(counts.back()));
        }
        for (int32_t i = 0; i < parser.getPositionalCount(); ++i)
            positionals.push_back(parser.getPositional(i));
    }

    // The plainest arguments that give these results.
    std::vector<String> arguments() const {
        std::vector<String> out;
        for (size_t n = 0; n < counts.size(); ++n) {
            String name(NAMES[n]);
            name.prepend(name.getLength() == 1 ? u"-" : u"--");
            const size_t bare = static_cast<size_t>(counts[n]) - values[n].size();
            for (size_t i = 0; i < bare; ++i)
                out.push_back(name);
            for (const String& value : values[n])
                out.push_back(String(name).append(u"=").append(value));
        }
        out.push_back(String(u"--"));
        out.insert(out.end(), positionals.begin(), positionals.end());
        return out;
    }

    bool operator==(const Results& o) const {
        return counts == o.counts && values == o.values && positionals == o.positionals;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> texts(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == 0)
            texts.emplace_back();
        else
            texts.back() += static_cast<char>(data[i]);
    }
    std::vector<const char*> argv{"fuzz"};
    for (const std::string& t : texts)
        argv.push_back(t.c_str());

    CommandLineParser parser(u"fuzz");
    declare(parser);
    try {
        parser.parse(static_cast<int>(argv.size()), argv.data());
    } catch (const ResultException& e) {
        check(e.getResult() == QN_E_INVALIDARG && !e.getDescription().isEmpty());
        return 0;
    }
    const Results first(parser);
    const std::vector<String> again = first.arguments();
    CommandLineParser second(u"fuzz");
    declare(second);
    second.parse(static_cast<int32_t>(again.size()), again.data());
    check(Results(second) == first);
    check(!parser.getHelp().isEmpty());
    return 0;
}
