// Byte streams against std::istreambuf_iterator over std::ifstream on the same file: one byte at
// a time through BufferedInputStream::read(), and big-endian 32-bit numbers through
// DataInputStream, assembled by hand on the peer's side. DataInputStream takes each byte with
// its stream's read(), so it reads the file's bytes from a ByteArrayInputStream (whose read()
// gives 0-255; a BufferedInputStream's would end at the first byte 0x80-0xFF); filling that
// stream from the file is part of each round, as opening the file is for the peer.
#include "qn/io/BufferedInputStream.h"
#include "qn/io/ByteArrayInputStream.h"
#include "qn/io/DataInputStream.h"
#include "qn/io/FileInputStream.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr size_t FILE_SIZE = 16 << 20;
constexpr long BUFFER_SIZE = 64 << 10;

// 16 MiB of varied bytes in the temporary directory, written once and removed at exit.
const std::filesystem::path& dataFile() {
    static const struct File {
        File() : path(std::filesystem::temp_directory_path() / "qncl-io-bench.bin") {
            std::ofstream out(path, std::ios::binary);
            uint32_t x = 12345;
            for (size_t i = 0; i < FILE_SIZE; ++i) {
                x = x * 1103515245u + 12345u;
                out.put(static_cast<char>(x >> 24));
            }
        }
        ~File() { std::filesystem::remove(path); }
        std::filesystem::path path;
    } file;
    return file.path;
}

qn::String filePath() {
    return qn::String(dataFile().u16string().c_str());
}

void setRate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * FILE_SIZE));
}

void ReadByte_ours(benchmark::State& state) {
    const qn::String path = filePath();
    for (auto _ : state) {
        qn::Reference<qn::io::BufferedInputStream> in =
            new qn::io::BufferedInputStream(new qn::io::FileInputStream(path), BUFFER_SIZE);
        uint32_t sum = 0;
        size_t n = 0;
        // read() sign-extends, so 0xFF and the end both read as -1: count to the size instead.
        for (; n < FILE_SIZE; ++n)
            sum += static_cast<uint32_t>(in->read());
        benchmark::DoNotOptimize(sum);
    }
    setRate(state);
}
BENCHMARK(ReadByte_ours)->Name("io.ReadByte/ours")->Unit(benchmark::kMillisecond);

void ReadByte_std(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream in(dataFile(), std::ios::binary);
        uint32_t sum = 0;
        for (std::istreambuf_iterator<char> it(in), end; it != end; ++it)
            sum += static_cast<uint32_t>(static_cast<signed char>(*it));
        benchmark::DoNotOptimize(sum);
    }
    setRate(state);
}
BENCHMARK(ReadByte_std)
    ->Name("io.ReadByte/std::istreambuf_iterator")
    ->Unit(benchmark::kMillisecond);

void ReadInt32_ours(benchmark::State& state) {
    const qn::String path = filePath();
    std::vector<signed char> bytes(FILE_SIZE);
    for (auto _ : state) {
        qn::Reference<qn::io::FileInputStream> file = new qn::io::FileInputStream(path);
        for (long done = 0, n; done < static_cast<long>(FILE_SIZE); done += n)
            if ((n = file->read(bytes.data() + done, static_cast<long>(FILE_SIZE) - done)) <= 0)
                break;
        qn::Reference<qn::io::DataInputStream> in = new qn::io::DataInputStream(
            new qn::io::ByteArrayInputStream(bytes.data(), static_cast<long>(FILE_SIZE)));
        uint32_t sum = 0;
        for (size_t n = 0; n < FILE_SIZE / 4; ++n)
            sum += static_cast<uint32_t>(in->readInt32());
        benchmark::DoNotOptimize(sum);
    }
    setRate(state);
}
BENCHMARK(ReadInt32_ours)->Name("io.ReadInt32/ours")->Unit(benchmark::kMillisecond);

void ReadInt32_std(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream in(dataFile(), std::ios::binary);
        std::istreambuf_iterator<char> it(in), end;
        uint32_t sum = 0;
        while (it != end) {
            uint32_t v = 0;
            for (int i = 0; i < 4; ++i, ++it)
                v = v << 8 | static_cast<unsigned char>(*it);
            sum += v;
        }
        benchmark::DoNotOptimize(sum);
    }
    setRate(state);
}
BENCHMARK(ReadInt32_std)
    ->Name("io.ReadInt32/std::istreambuf_iterator")
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
