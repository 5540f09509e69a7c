#include "ComponentStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace qncore {
namespace {

QNRESULT lastError() {
    return QNResultFromNative(static_cast<uint32_t>(errno));
}

// Creates every missing directory above path, for the owner only.
void makeParents(const std::string& path) {
    for (size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), 0700);
}

QNRESULT readFile(const std::string& path, std::string* text) {
    text->clear();
    const int f = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (f < 0)
        return errno == ENOENT ? QN_S_OK : lastError();
    char chunk[4096];
    ssize_t n;
    while ((n = ::read(f, chunk, sizeof chunk)) != 0) {
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const QNRESULT r = lastError();
            ::close(f);
            return r;
        }
        text->append(chunk, static_cast<size_t>(n));
    }
    ::close(f);
    return QN_S_OK;
}

QNRESULT writeFile(const std::string& path, const std::string& text) {
    const std::string temporary = path + ".tmp";
    const int f = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (f < 0)
        return lastError();
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t n = ::write(f, text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const QNRESULT r = lastError();
            ::close(f);
            ::unlink(temporary.c_str());
            return r;
        }
        written += static_cast<size_t>(n);
    }
    if (::fsync(f) != 0 || ::close(f) != 0 || ::rename(temporary.c_str(), path.c_str()) != 0) {
        const QNRESULT r = lastError();
        ::unlink(temporary.c_str());
        return r;
    }
    return QN_S_OK;
}

// Holds a lock on the store's companion lock file for the lifetime of the object.
class StoreLock {
public:
    StoreLock(const std::string& path, int operation) {
        makeParents(path);
        m_file = ::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (m_file < 0) {
            m_result = lastError();
            return;
        }
        while (::flock(m_file, operation) != 0) {
            if (errno != EINTR) {
                m_result = lastError();
                return;
            }
        }
    }
    ~StoreLock() {
        if (m_file >= 0)
            ::close(m_file);
    }
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

    QNRESULT result() const { return m_result; }

private:
    int m_file = -1;
    QNRESULT m_result = QN_S_OK;
};

} // namespace

std::string ComponentStore::path() {
    if (const char* explicitPath = std::getenv("QNCL_COMPONENT_REGISTRY");
        explicitPath && *explicitPath)
        return explicitPath;
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config == '/')
        return std::string(config) + "/qncl/components.reg";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::string(home) + "/.config/qncl/components.reg";
    return std::string();
}

StoreKeys ComponentStore::parse(const std::string& text) {
    StoreKeys keys;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        // Carriage returns at the end of a line are line-ending residue, never part of a value, so
        // that what is parsed survives being written and parsed again.
        size_t stop = end;
        while (stop > start && text[stop - 1] == '\r')
            --stop;
        const size_t equals = text.find('=', start);
        if (equals != std::string::npos && equals > start && equals < stop)
            keys[text.substr(start, equals - start)] = text.substr(equals + 1, stop - equals - 1);
        start = end + 1;
    }
    return keys;
}

std::string ComponentStore::serialize(const StoreKeys& keys) {
    std::string text;
    for (const auto& entry : keys) {
        text += entry.first;
        text += '=';
        text += entry.second;
        text += '\n';
    }
    return text;
}

QNRESULT ComponentStore::read(StoreKeys* keys) {
    keys->clear();
    const std::string file = path();
    if (file.empty())
        return QN_S_OK;
    StoreLock lock(file, LOCK_SH);
    if (QN_FAILED(lock.result()))
        return lock.result();
    std::string text;
    const QNRESULT r = readFile(file, &text);
    if (QN_SUCCEEDED(r))
        *keys = parse(text);
    return r;
}

QNRESULT ComponentStore::updateImpl(ChangeFn change, void* context) {
    const std::string file = path();
    if (file.empty())
        return QN_E_PATHNOTFOUND;
    StoreLock lock(file, LOCK_EX);
    if (QN_FAILED(lock.result()))
        return lock.result();
    std::string text;
    QNRESULT r = readFile(file, &text);
    if (QN_FAILED(r))
        return r;
    StoreKeys keys = parse(text);
    r = change(context, &keys);
    if (QN_FAILED(r) || r == QN_S_FALSE)
        return r;
    const QNRESULT written = writeFile(file, serialize(keys));
    return QN_FAILED(written) ? written : r;
}

} // namespace qncore
