// Readers and writers on the same files. Lines: BufferedReader::readLine over an
// InputStreamReader decoding UTF-8 against std::getline on std::ifstream (bytes, no decoding)
// and against std::getline with each line decoded to UTF-16 by ICU. Writing: OutputStreamWriter
// encoding UTF-16 text to UTF-8 into a file against std::ofstream writing the same text already
// encoded, in the same pieces. Each runs on mixed text (ASCII with Latin-1, Cyrillic, CJK and
// emoji words) and on all-ASCII text, where the codec is cheapest and what is left is the cost
// of the reader and the writer themselves.
#include "qn/io/BufferedReader.h"
#include "qn/io/FileInputStream.h"
#include "qn/io/FileOutputStream.h"
#include "qn/io/InputStreamReader.h"
#include "qn/io/OutputStreamWriter.h"

#include <benchmark/benchmark.h>

#ifdef QNCL_BENCH_ICU
#include <unicode/ustring.h>
#endif

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr size_t TEXT_SIZE = 32 << 20; // bytes of UTF-8, about
constexpr long BUFFER_SIZE = 64 << 10;
constexpr size_t WRITE_PIECE = 4096; // characters per write

// Lines of 0 to 159 characters: mostly ASCII, some Latin-1, Cyrillic, CJK and emoji; with
// ascii, the words of other scripts are replaced by ASCII ones.
std::u16string makeText(bool ascii) {
    static const char16_t* const mixed[] = {
        u"the",  u"stream", u"of",    u"characters", u"reader", u"line",   u"buffer",
        u"caf\u00E9", u"na\u00EFve", u"\u043F\u0440\u0438\u0432\u0435\u0442",
        u"\u6587\u5B57\u5217", u"\U0001F600", u"42", u"x"};
    static const char16_t* const plain[] = {
        u"the",  u"stream", u"of",    u"characters", u"reader", u"line", u"buffer",
        u"cafe", u"naive",  u"privet", u"text", u"smile", u"42", u"x"};
    static_assert(sizeof mixed == sizeof plain, "the same number of words");
    const char16_t* const* words = ascii ? plain : mixed;
    std::u16string text;
    uint32_t x = 2024;
    size_t bytes = 0;
    while (bytes < TEXT_SIZE) {
        x = x * 1103515245u + 12345u;
        const size_t length = (x >> 16) % 160;
        std::u16string line;
        while (line.size() < length) {
            x = x * 1103515245u + 12345u;
            const std::u16string word = words[(x >> 16) % (sizeof mixed / sizeof *mixed)];
            line += word;
            line += u' ';
            bytes += word.size() + 1 + (word[0] > 0x7F ? word.size() : 0);
        }
        text += line;
        text += u'\n';
        ++bytes;
    }
    return text;
}

std::string toUtf8(const std::u16string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00)
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | c >> 6);
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | c >> 12);
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | c >> 18);
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

// A text, its UTF-8 form, and that form in a file in the temporary directory, made once and
// removed at exit (with the file the writing cases make).
struct Data {
    explicit Data(bool ascii)
        : text(makeText(ascii)), utf8(toUtf8(text)),
          input(std::filesystem::temp_directory_path() /
                (ascii ? "qncl-readers-bench-ascii.txt" : "qncl-readers-bench.txt")),
          output(std::filesystem::temp_directory_path() / "qncl-readers-bench.out") {
        std::ofstream(input, std::ios::binary).write(utf8.data(), static_cast<long>(utf8.size()));
    }
    ~Data() {
        std::filesystem::remove(input);
        std::filesystem::remove(output);
    }
    std::u16string text;
    std::string utf8;
    std::filesystem::path input;
    std::filesystem::path output;
};

template <bool ASCII> const Data& data() {
    static const Data d(ASCII);
    return d;
}

qn::String qnPath(const std::filesystem::path& p) {
    return qn::String(p.u16string().c_str());
}

template <bool ASCII> void setRate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data<ASCII>().utf8.size()));
}

// Both texts, each under its own case name.
#define QNCL_READERS_CASE(function, name, peer)                                                    \
    BENCHMARK(function<false>)->Name("readers." name "/" peer)->Unit(benchmark::kMillisecond);     \
    BENCHMARK(function<true>)->Name("readers." name "Ascii/" peer)->Unit(benchmark::kMillisecond)

template <bool ASCII> void ReadLine_ours(benchmark::State& state) {
    const qn::String path = qnPath(data<ASCII>().input);
    for (auto _ : state) {
        qn::Reference<qn::io::BufferedReader> in = new qn::io::BufferedReader(
            new qn::io::InputStreamReader(new qn::io::FileInputStream(path), u"UTF-8",
                                          BUFFER_SIZE),
            BUFFER_SIZE);
        qn::String line;
        size_t total = 0;
        for (long n; (n = in->readLine(line)) >= 0;)
            total += static_cast<size_t>(n) + 1;
        benchmark::DoNotOptimize(total);
    }
    setRate<ASCII>(state);
}
QNCL_READERS_CASE(ReadLine_ours, "ReadLine", "ours");

template <bool ASCII> void ReadLine_getline(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream in(data<ASCII>().input, std::ios::binary);
        std::string line;
        size_t total = 0;
        while (std::getline(in, line))
            total += line.size() + 1;
        benchmark::DoNotOptimize(total);
    }
    setRate<ASCII>(state);
}
QNCL_READERS_CASE(ReadLine_getline, "ReadLine", "std::getline");

#ifdef QNCL_BENCH_ICU
template <bool ASCII> void ReadLine_icu(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream in(data<ASCII>().input, std::ios::binary);
        std::string line;
        std::vector<UChar> units(256);
        size_t total = 0;
        while (std::getline(in, line)) {
            int32_t length = 0;
            UErrorCode status = U_ZERO_ERROR;
            u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length,
                                 line.data(), static_cast<int32_t>(line.size()), 0xFFFD,
                                 nullptr, &status);
            if (status == U_BUFFER_OVERFLOW_ERROR) {
                units.resize(static_cast<size_t>(length) + 1);
                status = U_ZERO_ERROR;
                u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length,
                                     line.data(), static_cast<int32_t>(line.size()), 0xFFFD,
                                     nullptr, &status);
            }
            total += static_cast<size_t>(length) + 1;
        }
        benchmark::DoNotOptimize(total);
    }
    setRate<ASCII>(state);
}
QNCL_READERS_CASE(ReadLine_icu, "ReadLine", "ICU+std::getline");
#endif

template <bool ASCII> void WriteUtf8_ours(benchmark::State& state) {
    const qn::String path = qnPath(data<ASCII>().output);
    const std::u16string& text = data<ASCII>().text;
    for (auto _ : state) {
        qn::Reference<qn::io::OutputStreamWriter> out = new qn::io::OutputStreamWriter(
            new qn::io::FileOutputStream(path, false), u"UTF-8", BUFFER_SIZE);
        for (size_t at = 0; at < text.size(); at += WRITE_PIECE)
            out->write(text.data() + at, static_cast<long>(std::min(WRITE_PIECE, text.size() - at)));
        out->flush();
        out->close();
    }
    setRate<ASCII>(state);
}
QNCL_READERS_CASE(WriteUtf8_ours, "WriteUtf8", "ours");

template <bool ASCII> void WriteUtf8_ofstream(benchmark::State& state) {
    const std::string& utf8 = data<ASCII>().utf8;
    // The same pieces as ours: the bytes of WRITE_PIECE characters each.
    std::vector<size_t> pieces;
    const std::u16string& text = data<ASCII>().text;
    for (size_t at = 0; at < text.size(); at += WRITE_PIECE)
        pieces.push_back(toUtf8(text.substr(at, WRITE_PIECE)).size());
    for (auto _ : state) {
        std::ofstream out(data<ASCII>().output, std::ios::binary | std::ios::trunc);
        size_t at = 0;
        for (size_t n : pieces) {
            out.write(utf8.data() + at, static_cast<long>(n));
            at += n;
        }
        out.flush();
    }
    setRate<ASCII>(state);
}
QNCL_READERS_CASE(WriteUtf8_ofstream, "WriteUtf8", "std::ofstream");

} // namespace

BENCHMARK_MAIN();
