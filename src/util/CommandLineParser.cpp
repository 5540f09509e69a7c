#include "qn/util/CommandLineParser.h"

#include "qn/core/Exception.h"

#include <algorithm>
#include <string>

namespace qn::util {

namespace {

using Text = std::u16string;

// Help lines put the descriptions in one column, unless the left part is wider than this; such a
// description starts on a line of its own.
constexpr size_t MAX_COLUMN = 30;

Text text(const String& s) {
    return Text(s.getData(), static_cast<size_t>(s.getLength()));
}

String string(const Text& t) {
    return String(t.data(), static_cast<int32_t>(t.size()));
}

struct Option {
    Text longName;
    char16_t shortName;
    Text help;
    CommandLineParser::ValueMode mode;
    Text valueName;
    int32_t count = 0;
    std::vector<Text> values;

    Text key() const { return longName.empty() ? Text(1, shortName) : longName; }
    Text shown() const { return (longName.empty() ? Text(u"-") + shortName : u"--" + longName); }
};

struct Positional {
    Text name;
    Text help;
    bool required;
    bool repeated;
};

[[noreturn]] void refuse(const Text& message) {
    throw ResultException(QN_E_INVALIDARG, string(message));
}

[[noreturn]] void misdeclared(const Text& message) {
    throw IllegalStateException(string(message));
}

} // namespace

struct CommandLineParser::Data {
    Text program;
    Text description;
    Text synopsis;
    bool stopAtPositional = false;
    std::vector<Option> options;
    std::vector<Positional> positionals;
    std::vector<Text> arguments;

    Option* findShort(char16_t c) {
        for (Option& o : options)
            if (c != 0 && o.shortName == c)
                return &o;
        return nullptr;
    }

    const Option& find(const String& name) const {
        const Text key = text(name);
        for (const Option& o : options)
            if (o.key() == key)
                return o;
        misdeclared(u"no option '" + key + u"' is declared");
    }

    // An exact long name, else the only one that begins with name.
    Option& findLong(const Text& name, const Text& argument) {
        std::vector<Option*> matches;
        for (Option& o : options) {
            if (o.longName.empty() || o.longName.compare(0, name.size(), name) != 0)
                continue;
            if (o.longName.size() == name.size())
                return o;
            matches.push_back(&o);
        }
        if (matches.empty())
            refuse(u"unrecognized option '" + argument + u"'");
        if (matches.size() > 1) {
            Text message = u"option '--" + name + u"' is ambiguous; possibilities:";
            for (const Option* o : matches)
                message += u" '--" + o->longName + u"'";
            refuse(message);
        }
        return *matches.front();
    }

    static void take(Option& o, const Text* value) {
        ++o.count;
        if (value)
            o.values.push_back(*value);
    }

    // "--name", "--name=value"; the value may come from the next argument (next, advanced).
    void parseLong(const Text& argument, const std::vector<Text>& all, size_t& next) {
        const size_t equals = argument.find(u'=');
        const Text name = argument.substr(2, equals == Text::npos ? Text::npos : equals - 2);
        if (name.empty())
            refuse(u"unrecognized option '" + argument + u"'");
        Option& o = findLong(name, argument.substr(0, equals));
        if (equals != Text::npos) {
            if (o.mode == NO_VALUE)
                refuse(u"option '--" + o.longName + u"' doesn't allow an argument");
            const Text value = argument.substr(equals + 1);
            take(o, &value);
        } else if (o.mode == REQUIRED_VALUE) {
            if (next >= all.size())
                refuse(u"option '--" + o.longName + u"' requires an argument");
            take(o, &all[next++]);
        } else {
            take(o, nullptr);
        }
    }

    // "-abc", "-fVALUE", "-f VALUE".
    void parseShort(const Text& argument, const std::vector<Text>& all, size_t& next) {
        for (size_t i = 1; i < argument.size(); ++i) {
            Option* o = findShort(argument[i]);
            if (!o)
                refuse(Text(u"invalid option -- '") + argument[i] + u"'");
            if (o->mode == NO_VALUE) {
                take(*o, nullptr);
                continue;
            }
            if (i + 1 < argument.size()) {
                const Text value = argument.substr(i + 1);
                take(*o, &value);
            } else if (o->mode == REQUIRED_VALUE) {
                if (next >= all.size())
                    refuse(Text(u"option requires an argument -- '") + argument[i] + u"'");
                take(*o, &all[next++]);
            } else {
                take(*o, nullptr);
            }
            return;
        }
    }

    void checkPositionals() const {
        size_t required = 0;
        for (const Positional& p : positionals)
            if (p.required)
                ++required;
        for (size_t i = arguments.size(); i < required; ++i)
            refuse(u"missing " + positionals[i].name + u" operand");
        const bool repeated = !positionals.empty() && positionals.back().repeated;
        if (!repeated && arguments.size() > positionals.size())
            refuse(u"extra operand '" + arguments[positionals.size()] + u"'");
    }

    Text usage() const {
        Text line = u"Usage: " + program;
        if (!synopsis.empty())
            return line + u" " + synopsis;
        if (!options.empty())
            line += u" [OPTION]...";
        for (const Positional& p : positionals) {
            const Text name = p.repeated ? p.name + u"..." : p.name;
            line += p.required ? u" " + name : u" [" + p.name + u"]" + (p.repeated ? u"..." : u"");
        }
        return line;
    }

    static Text optionColumn(const Option& o) {
        Text left = o.shortName ? Text(u"  -") + o.shortName : Text(u"    ");
        if (!o.longName.empty())
            left += (o.shortName ? u", --" : u"  --") + o.longName;
        if (o.mode == NO_VALUE)
            return left;
        const Text value = o.valueName.empty() ? Text(u"VALUE") : o.valueName;
        if (o.longName.empty())
            return left + (o.mode == REQUIRED_VALUE ? u" " + value : u"[" + value + u"]");
        return left + (o.mode == REQUIRED_VALUE ? u"=" + value : u"[=" + value + u"]");
    }
};

namespace {

using Rows = std::vector<std::pair<Text, Text>>;

// The column where descriptions start: past the widest left part that is not too wide.
size_t descriptionColumn(const Rows& a, const Rows& b) {
    size_t column = 0;
    for (const Rows* rows : {&a, &b})
        for (const auto& row : *rows)
            if (row.first.size() + 2 <= MAX_COLUMN)
                column = std::max(column, row.first.size() + 2);
    return column;
}

// Rows of (left, help) as aligned lines under a heading.
Text table(const Text& heading, const Rows& rows, size_t column) {
    if (rows.empty())
        return Text();
    Text out = u"\n" + heading + u"\n";
    for (const auto& [left, help] : rows) {
        out += left;
        if (!help.empty()) {
            if (left.size() + 2 > column)
                out.append(u"\n").append(column, u' ');
            else
                out += Text(column - left.size(), u' ');
            out += help;
        }
        out += u"\n";
    }
    return out;
}

} // namespace

CommandLineParser::CommandLineParser(const String& program, const String& description)
    : m_data(new Data) {
    m_data->program = text(program);
    m_data->description = text(description);
}

CommandLineParser::~CommandLineParser() = default;

CommandLineParser& CommandLineParser::addOption(const String& longName, char16_t shortName,
                                                const String& help, ValueMode mode,
                                                const String& valueName) {
    Option o{text(longName), shortName, text(help), mode, text(valueName), 0, {}};
    if (o.longName.empty() && shortName == 0)
        misdeclared(u"an option needs a long or a short name");
    if (shortName == u'-' || o.longName.find(u'=') != Text::npos)
        misdeclared(u"option name '" + o.shown() + u"' cannot be parsed");
    for (const Option& other : m_data->options) {
        if ((!o.longName.empty() && other.longName == o.longName) ||
            (shortName != 0 && other.shortName == shortName))
            misdeclared(u"option '" + o.shown() + u"' is declared twice");
    }
    m_data->options.push_back(std::move(o));
    return *this;
}

CommandLineParser& CommandLineParser::addPositional(const String& name, const String& help,
                                                    bool required, bool repeated) {
    auto& positionals = m_data->positionals;
    if (!positionals.empty() && positionals.back().repeated)
        misdeclared(u"no positional argument can follow the repeated " + positionals.back().name);
    if (required && !positionals.empty() && !positionals.back().required)
        misdeclared(Text(u"required ") + text(name) + u" cannot follow an optional argument");
    positionals.push_back({text(name), text(help), required, repeated});
    return *this;
}

CommandLineParser& CommandLineParser::setUsage(const String& synopsis) {
    m_data->synopsis = text(synopsis);
    return *this;
}

CommandLineParser& CommandLineParser::setStopAtPositional(bool stop) {
    m_data->stopAtPositional = stop;
    return *this;
}

void CommandLineParser::parse(int32_t count, const String* arguments) {
    Data& d = *m_data;
    d.arguments.clear();
    for (Option& o : d.options) {
        o.count = 0;
        o.values.clear();
    }
    std::vector<Text> all;
    for (int32_t i = 0; i < count; ++i)
        all.push_back(text(arguments[i]));

    bool optionsEnded = false;
    for (size_t next = 0; next < all.size();) {
        const Text& argument = all[next++];
        if (optionsEnded || argument.size() < 2 || argument[0] != u'-') {
            d.arguments.push_back(argument);
            optionsEnded = optionsEnded || d.stopAtPositional;
        } else if (argument == u"--") {
            optionsEnded = true;
        } else if (argument[1] == u'-') {
            d.parseLong(argument, all, next);
        } else {
            d.parseShort(argument, all, next);
        }
    }
    d.checkPositionals();
}

void CommandLineParser::parse(int argc, const char* const* argv) {
    std::vector<String> arguments;
    for (int i = 1; i < argc; ++i) {
        const int32_t length = QNUtf8ToWide(argv[i], -1, nullptr, 0);
        Text wide(static_cast<size_t>(length), u'\0');
        QNUtf8ToWide(argv[i], -1, reinterpret_cast<QNWCHAR*>(wide.data()), length + 1);
        arguments.push_back(string(wide));
    }
    parse(static_cast<int32_t>(arguments.size()), arguments.data());
}

bool CommandLineParser::isSet(const String& name) const {
    return m_data->find(name).count > 0;
}

int32_t CommandLineParser::getCount(const String& name) const {
    return m_data->find(name).count;
}

String CommandLineParser::getValue(const String& name, const String& fallback) const {
    const Option& o = m_data->find(name);
    return o.values.empty() ? fallback : string(o.values.back());
}

std::vector<String> CommandLineParser::getValues(const String& name) const {
    std::vector<String> out;
    for (const Text& value : m_data->find(name).values)
        out.push_back(string(value));
    return out;
}

int32_t CommandLineParser::getPositionalCount() const {
    return static_cast<int32_t>(m_data->arguments.size());
}

String CommandLineParser::getPositional(int32_t index) const {
    if (index < 0 || index >= getPositionalCount())
        throw RangeErrorException(String(u"index out of range"));
    return string(m_data->arguments[static_cast<size_t>(index)]);
}

String CommandLineParser::getUsage() const {
    return string(m_data->usage());
}

String CommandLineParser::getHelp() const {
    const Data& d = *m_data;
    Text out = d.usage() + u"\n";
    if (!d.description.empty())
        out += d.description + u"\n";
    Rows arguments;
    for (const Positional& p : d.positionals)
        if (!p.help.empty())
            arguments.emplace_back(u"  " + p.name, p.help);
    Rows options;
    for (const Option& o : d.options)
        options.emplace_back(Data::optionColumn(o), o.help);
    const size_t column = descriptionColumn(arguments, options);
    out += table(u"Arguments:", arguments, column);
    out += table(u"Options:", options, column);
    return string(out);
}

} // namespace qn::util
