// convert and encodings: the library's converters over files or the standard streams, and the
// names the codec manager and the encoding-information table know.
#include "ByteFiles.h"

#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CharToByteConverter.h"
#include "qn/text/charset/CodecManager.h"
#include "qn/text/charset/QnEncInfo.h"

#include <cstring>
#include <memory>
#include <vector>

namespace qncl {

namespace {

using qn::Reference;
using qn::text::charset::ByteToCharConverter;
using qn::text::charset::CharToByteConverter;
using qn::text::charset::CodecClasses;
using qn::text::charset::CodecManager;

constexpr long BYTE_CHUNK = 256 * 1024;
// Room for what one chunk decodes to: no shipped decoder makes more than four characters of a
// byte, and a plug-in that does simply takes more rounds.
constexpr long CHAR_CHUNK = 4 * BYTE_CHUNK;
// Room for what one chunk of characters encodes to, in the same spirit.
constexpr long OUT_CHUNK = 4 * BYTE_CHUNK;

bool isHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

bool isLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

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

// Decodes the input chunk by chunk and encodes what each chunk gave, keeping the offsets a
// failure is reported at: bytes of input consumed, characters handed to the encoder.
class Conversion {
public:
    Conversion(ByteInput& input, ByteOutput& output, ByteToCharConverter& decoder,
               CharToByteConverter& encoder)
        : m_input(input), m_output(output), m_decoder(decoder), m_encoder(encoder),
          m_bytes(new signed char[BYTE_CHUNK]), m_chars(new char16_t[CHAR_CHUNK]),
          m_out(new signed char[OUT_CHUNK]) {}

    void run() {
        long held = 0;
        for (;;) {
            const size_t done = m_input.read(reinterpret_cast<unsigned char*>(m_bytes.get()) + held,
                                             static_cast<size_t>(BYTE_CHUNK - held));
            if (done == 0)
                break;
            held += static_cast<long>(done);
            held = decode(held);
        }
        // What is left is the start of a sequence the input ends inside.
        while (held > 0) {
            if (!m_decoder.getSubstitutionMode())
                throw ConversionFailure(
                    decodingMessage("incomplete sequence at the end of the input", m_byteOffset));
            // Each byte of it becomes one replacement character, as the readers do.
            const char16_t replacement = u'\uFFFD';
            encode(&replacement, 1);
            std::memmove(m_bytes.get(), m_bytes.get() + 1, static_cast<size_t>(held - 1));
            ++m_byteOffset;
            held = decode(held - 1);
        }
        long charCount = 0;
        m_decoder.flush(m_chars.get(), &charCount, CHAR_CHUNK);
        encode(m_chars.get(), charCount);
        finishEncoding();
    }

private:
    // Converts m_bytes[0, held), moves what stays unconsumed to the front and returns its size.
    long decode(long held) {
        long inPos = 0;
        for (;;) {
            long outPos = 0;
            const long before = inPos;
            try {
                m_decoder.convert(m_bytes.get(), &inPos, held, m_chars.get(), &outPos, CHAR_CHUNK);
            } catch (const qn::Exception& e) {
                if (!isDataFault(e))
                    throw;
                encode(m_chars.get(), outPos);
                throw ConversionFailure(decodingMessage(describe(e), m_byteOffset + inPos));
            }
            encode(m_chars.get(), outPos);
            // Done with this chunk, or the rest is a sequence the next bytes complete.
            if (inPos == held || (inPos == before && outPos == 0))
                break;
        }
        std::memmove(m_bytes.get(), m_bytes.get() + inPos, static_cast<size_t>(held - inPos));
        m_byteOffset += inPos;
        return held - inPos;
    }

    void encode(const char16_t* chars, long count) {
        long inPos = 0;
        while (inPos < count) {
            long outPos = 0;
            const long before = inPos;
            try {
                m_encoder.convert(chars, &inPos, count, m_out.get(), &outPos, OUT_CHUNK);
            } catch (const qn::Exception& e) {
                if (!isDataFault(e))
                    throw;
                m_output.write(reinterpret_cast<unsigned char*>(m_out.get()),
                               static_cast<size_t>(outPos));
                // An encoder holding a high surrogate fails at the unit after it; the fault is
                // the surrogate's.
                long long at = m_charOffset + inPos;
                const char16_t previous = inPos > 0 ? chars[inPos - 1] : m_lastChar;
                if (isHighSurrogate(previous) && (inPos == count || !isLowSurrogate(chars[inPos])))
                    --at;
                throw ConversionFailure(encodingMessage(describe(e), at));
            }
            m_output.write(reinterpret_cast<unsigned char*>(m_out.get()),
                           static_cast<size_t>(outPos));
            if (inPos == before && outPos == 0)
                throw ConversionFailure(
                    encodingMessage("no room for one character's bytes", m_charOffset + inPos));
        }
        m_charOffset += count;
        if (count > 0)
            m_lastChar = chars[count - 1];
    }

    // Whatever the encoder still holds (a high surrogate the input ended after).
    void finishEncoding() {
        for (;;) {
            long outPos = 0;
            try {
                m_encoder.flush(m_out.get(), &outPos, OUT_CHUNK);
            } catch (const qn::Exception& e) {
                if (!isDataFault(e))
                    throw;
                throw ConversionFailure(encodingMessage(describe(e), m_charOffset - 1));
            }
            if (outPos == 0)
                return;
            m_output.write(reinterpret_cast<unsigned char*>(m_out.get()),
                           static_cast<size_t>(outPos));
        }
    }

    std::string decodingMessage(const std::string& problem, long long offset) const {
        return utf8(m_input.name()) + ": cannot decode " + utf8(m_decoder.getEncodingName()) +
               " at input byte offset " + std::to_string(offset) + ": " + problem;
    }

    std::string encodingMessage(const std::string& problem, long long offset) const {
        return utf8(m_input.name()) + ": cannot encode " + utf8(m_encoder.getEncodingName()) +
               " at character offset " + std::to_string(offset) + ": " + problem;
    }

    ByteInput& m_input;
    ByteOutput& m_output;
    ByteToCharConverter& m_decoder;
    CharToByteConverter& m_encoder;
    std::unique_ptr<signed char[]> m_bytes;
    std::unique_ptr<char16_t[]> m_chars;
    std::unique_ptr<signed char[]> m_out;
    long long m_byteOffset = 0;
    long long m_charOffset = 0;
    char16_t m_lastChar = 0;
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
        Conversion(input, output, *decoder, *encoder).run();
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
