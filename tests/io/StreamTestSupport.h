// Helpers of the stream suites: scripted streams that deliver or record bytes in chosen pieces,
// scratch files, and child processes that run one disabled test of this program.
#pragma once

#include "qn/io/InputStream.h"
#include "qn/io/OutputStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#ifdef _WIN32
#include <process.h>
#include <windows.h>
#else
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
extern char** environ;
#endif

namespace qntest {

using Bytes = std::vector<signed char>;

inline Bytes bytes(std::initializer_list<int> values) {
    Bytes b;
    for (int v : values)
        b.push_back(static_cast<signed char>(v));
    return b;
}
inline Bytes sequence(size_t n) {
    Bytes b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = static_cast<signed char>(i * 7 + 1);
    return b;
}

// Delivers data in the pieces of a script: each entry is the most the next read returns (0: a
// read that delivers nothing now); once the script is used up, reads return whatever is asked.
// Counts its reads and closes; available() is what remains unless told otherwise.
class ScriptedInputStream : public qn::io::InputStream {
public:
    ScriptedInputStream(Bytes data, std::vector<long> script = {})
        : m_data(std::move(data)), m_script(std::move(script)) {}
    using qn::io::InputStream::read;
    long read(signed char* buf, long len) override {
        ++reads;
        long n = len;
        if (m_step < m_script.size())
            n = std::min(n, m_script[m_step++]);
        if (m_pos >= m_data.size() && n > 0)
            return -1;
        n = std::min<long>(n, static_cast<long>(m_data.size() - m_pos));
        std::memcpy(buf, m_data.data() + m_pos, static_cast<size_t>(n));
        m_pos += static_cast<size_t>(n);
        return n;
    }
    long available() override {
        return reportAvailable ? static_cast<long>(m_data.size() - m_pos) : 0;
    }
    void close() override { ++closes; }

    int reads = 0;
    int closes = 0;
    bool reportAvailable = true;

private:
    Bytes m_data;
    std::vector<long> m_script;
    size_t m_step = 0;
    size_t m_pos = 0;
};

// Records every write call's size and the bytes.
class RecordingOutputStream : public qn::io::OutputStream {
public:
    using qn::io::OutputStream::write;
    void write(const signed char* buf, long len) override {
        calls.push_back(len);
        data.insert(data.end(), buf, buf + len);
    }
    void flush() override { ++flushes; }
    void close() override { ++closes; }

    std::vector<long> calls;
    Bytes data;
    int flushes = 0;
    int closes = 0;
};

// The message of the exception an operation throws; "(none)" when it throws none.
inline std::u16string messageOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const qn::Exception& e) {
        const qn::String s = e.getDescription();
        return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
    }
    return u"(none)";
}

// The code of the ResultException an operation throws; 0 when it throws none.
inline QNRESULT resultOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const qn::ResultException& e) {
        return e.getResult();
    }
    return QN_S_OK;
}

// Everything a stream delivers through read(buf, len) with the given read size.
inline Bytes drain(qn::io::InputStream& in, long size = 64) {
    Bytes out, buf(static_cast<size_t>(size));
    for (long n; (n = in.read(buf.data(), size)) >= 0;)
        out.insert(out.end(), buf.begin(), buf.begin() + n);
    return out;
}

inline std::string uniqueName(const char* stem) {
    static std::atomic<int> serial{0};
#ifdef _WIN32
    const unsigned long pid = GetCurrentProcessId();
#else
    const unsigned long pid = static_cast<unsigned long>(getpid());
#endif
    return "qncl-" + std::to_string(pid) + "-" + std::to_string(++serial) + "-" + stem;
}

// A fresh directory for one test, removed with its content afterwards.
struct ScratchDir {
    ScratchDir() : path(std::filesystem::temp_directory_path() / uniqueName("io")) {
        std::filesystem::create_directories(path);
    }
    ~ScratchDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::u16string file(const char* name) const { return (path / name).u16string(); }
    const std::filesystem::path path;
};

// The arguments a child process was started with (after the test program's own).
inline std::vector<std::string> childArguments() {
    const std::vector<std::string> all = ::testing::internal::GetArgvs();
    return std::vector<std::string>(all.begin() + std::min<size_t>(all.size(), 3), all.end());
}

// This test program, running only the disabled test `test` with the given arguments.
class ChildProcess {
public:
    ChildProcess(const std::string& test, const std::vector<std::string>& arguments) {
        std::vector<std::string> args = {self(), "--gtest_also_run_disabled_tests",
                                         "--gtest_filter=" + test};
        args.insert(args.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
#ifdef _WIN32
        // The runtime joins the arguments into one command line: quote those with blanks.
        for (std::string& a : args)
            if (a.find(' ') != std::string::npos)
                a = "\"" + a + "\"";
#endif
        for (std::string& a : args)
            argv.push_back(&a[0]);
        argv.push_back(nullptr);
#ifdef _WIN32
        m_process = _spawnv(_P_NOWAIT, argv[0], argv.data());
        m_started = m_process != -1;
#else
        m_started = posix_spawn(&m_process, argv[0], nullptr, nullptr, argv.data(), environ) == 0;
#endif
    }
    // The child's exit status; -1 if it could not start or did not exit normally.
    int wait() {
        if (!m_started)
            return -1;
        m_started = false;
        int status = 0;
#ifdef _WIN32
        return _cwait(&status, m_process, 0) == -1 ? -1 : status;
#else
        if (waitpid(m_process, &status, 0) < 0 || !WIFEXITED(status))
            return -1;
        return WEXITSTATUS(status);
#endif
    }
    ~ChildProcess() {
        wait();
    }

private:
    static std::string self() {
#ifdef _WIN32
        char path[MAX_PATH];
        return std::string(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
#else
        return std::filesystem::read_symlink("/proc/self/exe").string();
#endif
    }
#ifdef _WIN32
    intptr_t m_process = -1;
#else
    pid_t m_process = 0;
#endif
    bool m_started = false;
};

} // namespace qntest

#include "qn/io/Reader.h"

namespace qntest {

// The reader counterpart of ScriptedInputStream: hands out a text in the pieces of a script.
class ScriptedReader : public qn::io::Reader {
public:
    ScriptedReader(std::u16string text, std::vector<long> script = {})
        : m_text(std::move(text)), m_script(std::move(script)) {}
    using qn::io::Reader::read;
    long read(char16_t* buf, long len) override {
        ++reads;
        long n = len;
        if (m_step < m_script.size())
            n = std::min(n, m_script[m_step++]);
        if (m_pos >= m_text.size() && n > 0)
            return -1;
        n = std::min<long>(n, static_cast<long>(m_text.size() - m_pos));
        m_text.copy(buf, static_cast<size_t>(n), m_pos);
        m_pos += static_cast<size_t>(n);
        return n;
    }
    long available() override { return static_cast<long>(m_text.size() - m_pos); }
    void close() override { ++closes; }

    int reads = 0;
    int closes = 0;

private:
    std::u16string m_text;
    std::vector<long> m_script;
    size_t m_step = 0;
    size_t m_pos = 0;
};

} // namespace qntest
