// convert and encodings: the library's readers and writers over files or the standard streams,
// and the names the codec manager and the encoding-information table know.
#include "ByteFiles.h"

#include "qn/io/InputStreamReader.h"
#include "qn/io/OutputStreamWriter.h"
#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"
#include "qn/text/charset/CodecManager.h"
#include "qn/text/charset/QnEncInfo.h"

#include <memory>
#include <vector>

namespace qncl {

namespace {

using qn::Reference;
using qn::text::charset::ByteToCharConverter;
using qn::text::charset::CharToByteConverter;
using qn::text::charset::CodecClasses;
using qn::text::charset::CodecManager;

// The reader's and the writer's byte buffers, and how many characters go from one to the
// other at a time.
constexpr long BYTE_BUFFER = 256 * 1024;
constexpr long CHAR_CHUNK = 64 * 1024;

bool isDataFault(const qn::Exception& e) {
    return dynamic_cast<const qn::text::charset::InvalidCharacterException*>(&e) ||
           dynamic_cast<const qn::text::charset::UnmappableCharacterException*>(&e);
}

// Data the converters refuse, with where in the input or output it happened.
class ConversionFailure : public qn::Exception {
public:
    explicit ConversionFailure(const std::string& message) : qn::Exception(wide(message)) {}
};

template <class Converter> Reference<Converter> converterFor(const String& name) {
    try {
        return Converter::getConverter(name.getData());
    } catch (const qn::text::charset::UnknownEncodingException&) {
        throw UsageError(wide("unknown encoding '" + utf8(name) +
                              "' (see 'qncl encodings' for the names known)"));
    }
}

// The tool's output as a stream for the writer: its bytes go to the target's temporary file or
// to standard output, and only commit() makes them final.
class ToolOutputStream : public qn::io::OutputStream {
public:
    explicit ToolOutputStream(ByteOutput& output) : m_output(output) {}

    using qn::io::OutputStream::write;
    void write(const signed char* buf, long len) override {
        if (len > 0)
            m_output.write(reinterpret_cast<const unsigned char*>(buf), static_cast<size_t>(len));
    }

private:
    ByteOutput& m_output;
};

// Decodes the input through an InputStreamReader and encodes the characters through an
// OutputStreamWriter, flushed at the end; a failure names the input byte offset (decoding) or
// the character offset (encoding) the reader or the writer stopped at.
class Conversion {
public:
    Conversion(ByteInput& input, ByteOutput& output, ByteToCharConverter* decoder,
               CharToByteConverter* encoder)
        : m_input(input), m_decoder(decoder), m_encoder(encoder),
          m_reader(new qn::io::InputStreamReader(&input.stream(), decoder, BYTE_BUFFER)),
          m_writer(new qn::io::OutputStreamWriter(new ToolOutputStream(output), encoder,
                                                  BYTE_BUFFER)),
          m_chars(new char16_t[CHAR_CHUNK]) {}

    void run() {
        for (;;) {
            const long count = read();
            if (count < 0)
                break;
            write(m_chars.get(), count);
        }
        write(nullptr, 0);
    }

private:
    long read() {
        try {
            return m_reader->read(m_chars.get(), CHAR_CHUNK);
        } catch (const qn::ResultException& e) {
            if (isDataFault(e))
                throw ConversionFailure(
                    decodingMessage(describe(e), m_reader->getBytesDecoded()));
            throw qn::ResultException(e.getResult(), wide(utf8(m_input.name()) +
                                                          ": cannot read: " + describe(e)));
        } catch (const qn::Exception& e) {
            if (!isDataFault(e))
                throw;
            throw ConversionFailure(decodingMessage(describe(e), m_reader->getBytesDecoded()));
        }
    }

    // Writes count characters; with none, flushes the writer at the end of the input.
    void write(const char16_t* chars, long count) {
        try {
            if (chars)
                m_writer->write(chars, count);
            else
                m_writer->flush();
        } catch (const qn::Exception& e) {
            if (!isDataFault(e))
                throw;
            throw ConversionFailure(encodingMessage(describe(e), m_writer->getCharsEncoded()));
        }
    }

    std::string decodingMessage(const std::string& problem, long long offset) const {
        return utf8(m_input.name()) + ": cannot decode " + utf8(m_decoder->getEncodingName()) +
               " at input byte offset " + std::to_string(offset) + ": " + problem;
    }

    std::string encodingMessage(const std::string& problem, long long offset) const {
        return utf8(m_input.name()) + ": cannot encode " + utf8(m_encoder->getEncodingName()) +
               " at character offset " + std::to_string(offset) + ": " + problem;
    }

    ByteInput& m_input;
    ByteToCharConverter* m_decoder;
    CharToByteConverter* m_encoder;
    Reference<qn::io::InputStreamReader> m_reader;
    Reference<qn::io::OutputStreamWriter> m_writer;
    std::unique_ptr<char16_t[]> m_chars;
};

void declareConvert(CommandLineParser& parser) {
    parser.setUsage(u"--from ENC --to ENC [--strict] [INPUT [OUTPUT]]")
        .addOption(u"from", u'f', u"the encoding INPUT is in", CommandLineParser::REQUIRED_VALUE,
                   u"ENC")
        .addOption(u"to", u't', u"the encoding OUTPUT is written in",
                   CommandLineParser::REQUIRED_VALUE, u"ENC")
        .addOption(u"strict", u's',
                   u"fail where a character cannot be converted, rather than substitute")
        .addPositional(u"INPUT", u"the text to convert; standard input when absent or \"-\"")
        .addPositional(u"OUTPUT", u"where the result goes; standard output when absent or \"-\"");
}

int runConvert(const CommandLineParser& parser, const std::string& program) {
    if (!parser.isSet(u"from"))
        throw UsageError(String(u"missing --from"));
    if (!parser.isSet(u"to"))
        throw UsageError(String(u"missing --to"));
    Reference<ByteToCharConverter> decoder =
        converterFor<ByteToCharConverter>(parser.getValue(u"from"));
    Reference<CharToByteConverter> encoder =
        converterFor<CharToByteConverter>(parser.getValue(u"to"));
    if (parser.isSet(u"strict")) {
        decoder->setSubstitutionMode(false);
        encoder->setSubstitutionMode(false);
    }
    const String inputName = parser.getPositionalCount() > 0 ? parser.getPositional(0) : String();
    const String outputName = parser.getPositionalCount() > 1 ? parser.getPositional(1) : String();
    try {
        ByteInput input(inputName);
        ByteOutput output(outputName);
        Conversion(input, output, decoder.get(), encoder.get()).run();
        input.close();
        output.commit();
    } catch (const qn::Exception& e) {
        printError(program + ": " + describe(e) + "\n");
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

void declareEncodings(CommandLineParser&) {}

std::string column(std::string text, size_t width) {
    if (text.size() < width)
        text.resize(width, ' ');
    return text + " ";
}

// One encoding with a converter: every registered name of the same pair of classes.
struct Encoding {
    const qn::Class* encoderClass;
    const qn::Class* decoderClass;
    std::string name;
    std::vector<std::string> aliases;
};

int runEncodings(const CommandLineParser&, const std::string&) {
    CodecManager* manager = CodecManager::getInstance();
    std::vector<Encoding> encodings;
    manager->forEach([&encodings](const char16_t* name, const CodecClasses& classes) {
        for (Encoding& e : encodings) {
            if (e.encoderClass == classes.getEncoderClass() &&
                e.decoderClass == classes.getDecoderClass()) {
                e.aliases.push_back(utf8(String(name)));
                return true;
            }
        }
        encodings.push_back(
            {classes.getEncoderClass(), classes.getDecoderClass(), utf8(String(name)), {}});
        return true;
    });

    printOut("Encodings with converters: name, code page, aliases\n");
    for (Encoding& e : encodings) {
        // The converter knows its canonical name; the first name registered stands in for a
        // pair whose converter cannot be made.
        Reference<qn::Object> converter = manager->getDecoder(wide(e.name).getData());
        if (auto* decoder = dynamic_cast<ByteToCharConverter*>(converter.get())) {
            const std::string canonical = utf8(String(decoder->getEncodingName()));
            if (canonical != e.name) {
                e.aliases.insert(e.aliases.begin(), e.name);
                e.name = canonical;
            }
        }
        std::string aliases;
        for (const std::string& alias : e.aliases)
            if (alias != e.name)
                aliases += (aliases.empty() ? "" : " ") + alias;
        QnEncInfo info{};
        const std::u16string key = wide(e.name).getData();
        const std::string codePage =
            QNGetEncInfoByName(reinterpret_cast<const QNWCHAR*>(key.c_str()), &info) == 0
                ? std::to_string(info.codePage)
                : "-";
        std::string line = "  " + column(e.name, 10) + column(codePage, 6) + aliases;
        line.erase(line.find_last_not_of(' ') + 1);
        printOut(line + "\n");
    }

    uint32_t count = 0;
    QNEnumerateEncInfo(&count, nullptr);
    std::vector<QnEncInfo> records(count);
    if (count > 0 && QNEnumerateEncInfo(&count, records.data()) != 0)
        records.clear();
    printOut("Code pages known by information only (no converter): name, code page\n");
    for (const QnEncInfo& record : records) {
        const auto* name = reinterpret_cast<const char16_t*>(record.name);
        if (!manager->getDecoder(name) && !manager->getEncoder(name))
            printOut("  " + column(utf8(String(name)), 10) + std::to_string(record.codePage) +
                     "\n");
    }
    printOut("A code page number names its encoding too (1252 is CP1252); names of any case "
             "are accepted.\n");
    return flushOutput() ? EXIT_OK : EXIT_FAILED;
}

} // namespace

const Command CONVERT_COMMAND = {u"convert", u"convert text from one encoding to another",
                                 declareConvert, runConvert};
const Command ENCODINGS_COMMAND = {u"encodings",
                                   u"list the encodings, their code pages and aliases",
                                   declareEncodings, runEncodings};

} // namespace qncl
