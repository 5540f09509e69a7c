// The component registration store: any text parses without failing, and what it parses to is
// stable through writing and parsing again.
#include "posix/ComponentStore.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const qncore::StoreKeys keys = qncore::ComponentStore::parse(text);
    for (const auto& entry : keys) {
        if (entry.first.empty() || entry.first.find('=') != std::string::npos ||
            entry.first.find('\n') != std::string::npos ||
            entry.second.find('\n') != std::string::npos)
            std::abort();
    }
    if (qncore::ComponentStore::parse(qncore::ComponentStore::serialize(keys)) != keys)
        std::abort();
    return 0;
}
