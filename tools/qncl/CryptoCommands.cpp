// md5 and blowfish: the library's digest and cipher over files or standard input.
#include "ByteFiles.h"

#include "qn/crypto/BlowFish.h"
#include "qn/crypto/MD5Digest.h"

#include <charconv>
#include <cstring>
#include <memory>
#include <vector>

namespace qncl {

namespace {

constexpr size_t CHUNK = 256 * 1024;
constexpr size_t MAX_KEY_BYTES = 56;

#if defined(_WIN32)
// A backslash separates the parts of a path here, so it is never escaped.
constexpr bool ESCAPE_BACKSLASH = false;
#else
constexpr bool ESCAPE_BACKSLASH = true;
#endif

// A line as md5sum writes it: a name with a backslash or a line feed is escaped and the line
// marked with a leading backslash, so that every name fits on one line and reads back.
std::string md5Line(const unsigned char* digest, const std::string& name) {
    static const char DIGITS[] = "0123456789abcdef";
    std::string escaped;
    bool marked = false;
    for (char c : name) {
        if ((c == '\\' && ESCAPE_BACKSLASH) || c == '\n') {
            escaped += c == '\\' ? "\\\\" : "\\n";
            marked = true;
        } else {
            escaped += c;
        }
    }
    std::string line = marked ? "\\" : "";
    for (int i = 0; i < 16; ++i) {
        line += DIGITS[digest[i] >> 4];
        line += DIGITS[digest[i] & 15];
    }
    return line + "  " + escaped + "\n";
}

void declareMd5(CommandLineParser& parser) {
    parser.addPositional(u"FILE", u"files to digest; standard input when none or \"-\"", false,
                         true);
}

int runMd5(const CommandLineParser& parser, const std::string& program) {
    std::vector<String> names;
    for (int32_t i = 0; i < parser.getPositionalCount(); ++i)
        names.push_back(parser.getPositional(i));
    if (names.empty())
        names.push_back(String(u"-"));
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[CHUNK]);
    qn::crypto::MD5Digest digest;
    int status = EXIT_OK;
    for (const String& name : names) {
        try {
            ByteInput input(name);
            digest.reset();
            while (const size_t done = input.read(buffer.get(), CHUNK))
                digest.update(buffer.get(), static_cast<int>(done));
            unsigned char out[16];
            digest.getDigest(out, sizeof out);
            printOut(md5Line(out, utf8(input.name())));
        } catch (const qn::Exception& e) {
            printError(program + ": " + describe(e) + "\n");
            status = EXIT_FAILED;
        }
    }
    return flushOutput() ? status : EXIT_FAILED;
}

void declareBlowfish(CommandLineParser& parser) {
    parser.setUsage(u"(--encrypt | --decrypt) --key HEX [INPUT [OUTPUT]]")
        .addOption(u"encrypt", u'e', u"encipher INPUT")
        .addOption(u"decrypt", u'd', u"decipher INPUT")
        .addOption(u"key", u'k', u"the key: 0 to 56 bytes as hexadecimal digits",
                   CommandLineParser::REQUIRED_VALUE, u"HEX")
        .addPositional(u"INPUT", u"whole 8-byte blocks; standard input when absent or \"-\"")
        .addPositional(u"OUTPUT", u"where the result goes; standard output when absent or \"-\"");
}

std::vector<unsigned char> parseKey(const String& hex) {
    const std::string text = utf8(hex);
    if (text.size() % 2 != 0)
        throw UsageError(wide("invalid key '" + text + "': an odd number of hexadecimal digits"));
    if (text.size() > 2 * MAX_KEY_BYTES)
        throw UsageError(wide("invalid key: longer than 56 bytes (112 hexadecimal digits)"));
    std::vector<unsigned char> key;
    for (size_t i = 0; i < text.size(); i += 2) {
        unsigned char byte = 0;
        const char* pair = text.data() + i;
        if (std::from_chars(pair, pair + 2, byte, 16).ptr != pair + 2)
            throw UsageError(wide("invalid key '" + text + "': not hexadecimal"));
        key.push_back(byte);
    }
    return key;
}

int runBlowfish(const CommandLineParser& parser, const std::string& program) {
    const bool encrypt = parser.isSet(u"encrypt");
    if (encrypt == parser.isSet(u"decrypt"))
        throw UsageError(String(u"give one of --encrypt and --decrypt"));
    if (!parser.isSet(u"key"))
        throw UsageError(String(u"missing --key"));
    const std::vector<unsigned char> key = parseKey(parser.getValue(u"key"));
    const qn::crypto::BlowFish cipher(key.data(), static_cast<int>(key.size()));
    const String inputName = parser.getPositionalCount() > 0 ? parser.getPositional(0) : String();
    const String outputName = parser.getPositionalCount() > 1 ? parser.getPositional(1) : String();

    try {
        ByteInput input(inputName);
        ByteOutput output(outputName);
        std::unique_ptr<unsigned char[]> buffer(new unsigned char[CHUNK]);
        size_t held = 0;
        long long total = 0;
        while (const size_t done = input.read(buffer.get() + held, CHUNK - held)) {
            held += done;
            total += static_cast<long long>(done);
            const size_t whole = held & ~size_t{7};
            if (encrypt)
                cipher.encrypt(buffer.get(), buffer.get(), static_cast<long>(whole));
            else
                cipher.decrypt(buffer.get(), buffer.get(), static_cast<long>(whole));
            output.write(buffer.get(), whole);
            held -= whole;
            std::memmove(buffer.get(), buffer.get() + whole, held);
        }
        if (held != 0) {
            try {
                // The cipher refuses the partial block with its own message.
                cipher.encrypt(buffer.get(), buffer.get(), static_cast<long>(held));
            } catch (const qn::Exception& e) {
                printError(program + ": " + utf8(input.name()) + ": " + describe(e) +
                           " (input of " + std::to_string(total) + " bytes)\n");
                return EXIT_FAILED;
            }
        }
        input.close();
        output.commit();
    } catch (const qn::Exception& e) {
        printError(program + ": " + describe(e) + "\n");
        return EXIT_FAILED;
    }
    return EXIT_OK;
}

} // namespace

const Command MD5_COMMAND = {u"md5", u"print the MD5 digest of files, as md5sum does", declareMd5,
                             runMd5};
const Command BLOWFISH_COMMAND = {u"blowfish", u"encipher or decipher 8-byte blocks with Blowfish",
                                  declareBlowfish, runBlowfish};

} // namespace qncl
