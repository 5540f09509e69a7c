#include "ByteFiles.h"

#include <chrono>
#include <cstdio>
#include <random>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#endif

namespace qncl {

namespace {

const QNWCHAR* path(const String& name) {
    return reinterpret_cast<const QNWCHAR*>(name.getData());
}

// "NAME: cannot open: file not found (0x80070002)".
[[noreturn]] void fail(const String& name, const char* doing, QNRESULT code) {
    throw qn::ResultException(code, wide(utf8(name) + ": " + doing + ": " + describe(code)));
}

void check(const String& name, const char* doing, QNRESULT code) {
    if (QN_FAILED(code))
        fail(name, doing, code);
}

// Standard input and output carry bytes unchanged (Windows would otherwise translate line
// ends).
void binary(std::FILE* stream) {
#if defined(_WIN32)
    _setmode(_fileno(stream), _O_BINARY);
#else
    (void)stream;
#endif
}

// Standard input as a file handle of the core module; it stays open when the stream is closed.
QNFILE standardInput() {
#if defined(_WIN32)
    return reinterpret_cast<QNFILE>(GetStdHandle(STD_INPUT_HANDLE));
#else
    return 0;
#endif
}

QNRESULT lastError() {
    const QNRESULT code = QNResultFromNative(QNGetLastNativeError());
    return QN_FAILED(code) ? code : QN_E_FAIL;
}

QNRESULT replace(const String& from, const String& to) {
#if defined(_WIN32)
    if (MoveFileExW(path(from), path(to), MOVEFILE_REPLACE_EXISTING))
        return QN_S_OK;
#else
    if (std::rename(utf8(from).c_str(), utf8(to).c_str()) == 0)
        return QN_S_OK;
#endif
    return lastError();
}

} // namespace

bool isStandardStream(const String& name) {
    return name.isEmpty() || name == u"-";
}

ByteInput::ByteInput(const String& name) : m_name(isStandardStream(name) ? String(u"-") : name) {
    try {
        if (isStandardStream(name))
            m_stream = new qn::io::FileInputStream(standardInput(), false);
        else
            m_stream = new qn::io::FileInputStream(m_name);
    } catch (const qn::ResultException& e) {
        fail(m_name, "cannot open", e.getResult());
    }
}

ByteInput::~ByteInput() {
    close();
}

void ByteInput::close() noexcept {
    if (!m_stream)
        return;
    try {
        m_stream->close();
    } catch (const qn::Exception&) {
        // Nothing was written through it: a failure to let it go loses nothing.
    }
    m_stream = nullptr;
}

size_t ByteInput::read(unsigned char* buffer, size_t size) {
    if (!m_stream)
        return 0;
    constexpr size_t MOST = 1u << 30;
    long done = 0;
    try {
        done = m_stream->read(buffer, static_cast<long>(size < MOST ? size : MOST));
    } catch (const qn::ResultException& e) {
        fail(m_name, "cannot read", e.getResult());
    }
    return done > 0 ? static_cast<size_t>(done) : 0;
}

ByteOutput::ByteOutput(const String& name)
    : m_name(isStandardStream(name) ? String(u"-") : name), m_standard(isStandardStream(name)) {
    if (m_standard) {
        binary(stdout);
        return;
    }
    std::random_device device;
    std::mt19937 random(
        device() ^
        static_cast<uint32_t>(std::chrono::steady_clock::now().time_since_epoch().count()));
    QNRESULT code = QN_E_FAIL;
    QNFILE file = QN_INVALID_FILE;
    for (int attempt = 0; attempt < 16; ++attempt) {
        char suffix[32];
        std::snprintf(suffix, sizeof suffix, ".qncl-%08x.tmp", static_cast<unsigned>(random()));
        m_temporary = wide(utf8(m_name) + suffix);
        code = QNFileOpen(path(m_temporary), QN_FILE_WRITE | QN_FILE_CREATE | QN_FILE_EXCLUSIVE,
                          0x1B6, &file);
        if (code != QN_E_ALREADYEXISTS)
            break;
    }
    if (QN_FAILED(code))
        fail(m_name, "cannot create a file beside it", code);
    m_file = file;
}

ByteOutput::~ByteOutput() {
    discard();
}

void ByteOutput::discard() noexcept {
    if (m_file == QN_INVALID_FILE)
        return;
    QNFileClose(m_file);
    QNFileDelete(path(m_temporary));
    m_file = QN_INVALID_FILE;
}

void ByteOutput::write(const unsigned char* data, size_t size) {
    if (m_standard) {
        if (std::fwrite(data, 1, size, stdout) != size)
            fail(m_name, "cannot write", lastError());
        return;
    }
    if (m_file == QN_INVALID_FILE)
        throw qn::IllegalStateException(String(u"written after commit"));
    while (size > 0) {
        const auto piece = static_cast<uint32_t>(size < (1u << 30) ? size : 1u << 30);
        uint32_t done = 0;
        check(m_name, "cannot write", QNFileWrite(m_file, data, piece, &done));
        data += done;
        size -= done;
    }
}

void ByteOutput::commit() {
    if (m_standard) {
        if (!flushOutput())
            fail(m_name, "cannot write", lastError());
        return;
    }
    if (m_file == QN_INVALID_FILE)
        return;
    QNRESULT code = QNFileFlush(m_file);
    if (QN_SUCCEEDED(code)) {
        code = QNFileClose(m_file);
        m_file = QN_INVALID_FILE;
        if (QN_SUCCEEDED(code))
            code = replace(m_temporary, m_name);
        if (QN_FAILED(code))
            QNFileDelete(path(m_temporary));
    }
    check(m_name, "cannot write", code);
}

} // namespace qncl
