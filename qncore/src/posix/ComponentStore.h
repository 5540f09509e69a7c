// The POSIX registration store: the keys of the platform registry's class root with their
// default values, kept as UTF-8 lines "key=value" in one file.
#pragma once

#include "common/Internal.h"

#include <map>
#include <string>

namespace qncore {

using StoreKeys = std::map<std::string, std::string>;

class ComponentStore {
public:
    // QNCL_COMPONENT_REGISTRY, else $XDG_CONFIG_HOME/qncl/components.reg, else
    // $HOME/.config/qncl/components.reg; empty when none of them can be formed.
    static std::string path();

    // Lines without "=" or with an empty key are ignored; a later line for a key wins; trailing
    // carriage returns are dropped.
    static StoreKeys parse(const std::string& text);
    static std::string serialize(const StoreKeys& keys);

    // Reads the whole store (an absent file is an empty store).
    static QNRESULT read(StoreKeys* keys);
    // Reads, lets change modify the keys, and writes the result back atomically, all under an
    // exclusive lock shared with other processes.
    template <class Change> static QNRESULT update(Change&& change) {
        return updateImpl(&invoke<Change>, &change);
    }

private:
    using ChangeFn = QNRESULT (*)(void*, StoreKeys*);
    template <class Change> static QNRESULT invoke(void* c, StoreKeys* keys) {
        return (*static_cast<Change*>(c))(keys);
    }
    static QNRESULT updateImpl(ChangeFn change, void* context);
};

} // namespace qncore
