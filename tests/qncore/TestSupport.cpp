#include "TestSupport.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace qntest {

// The plug-in is built beside the test programs.
WString pluginPath() {
#ifdef _WIN32
    std::wstring self(32768, L'\0');
    self.resize(GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size())));
#else
    const auto self = std::filesystem::read_symlink("/proc/self/exe");
#endif
    return widePath(std::filesystem::path(self).parent_path() / QNCORE_TEST_PLUGIN);
}

std::string uniqueName(const char* stem) {
    static std::atomic<int> serial{0};
#ifdef _WIN32
    const unsigned long pid = GetCurrentProcessId();
#else
    const unsigned long pid = static_cast<unsigned long>(getpid());
#endif
    return "qncl-test-" + std::to_string(pid) + "-" + std::to_string(++serial) + "-" + stem;
}

ScratchDir::ScratchDir() : path(std::filesystem::temp_directory_path() / uniqueName("dir")) {
    std::filesystem::create_directories(path);
}

ScratchDir::~ScratchDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace qntest
