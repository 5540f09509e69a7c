// Pieces of the character-set layer that the load sequence and the codec manager share.
#pragma once

#include <qncore/QNCore.h>

#include <string>

struct QnEncInfo;

namespace qn::text::charset {

// The codec steps of the library's load: every codec-table row registered with the codec
// manager, in order, then the encoding-information table and its index built.
void registerBuiltinCodecs();
void buildEncInfoTable();
// The first codec step of the unload; the codec manager is freed after it.
void freeEncInfoTable() noexcept;

// The registry and index key of a name: its upper-case form (the core module's simple mapping).
std::u16string upperName(const char16_t* name);
// The record under an (already upper-cased) key, or null.
const QnEncInfo* findEncInfo(const std::u16string& key);

} // namespace qn::text::charset
