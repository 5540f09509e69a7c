// The encoding-information table and its index, and the flat functions over them.
#include "qn/core/Exception.h"
#include "qn/text/charset/QnEncInfo.h"

#include "CharsetInternal.h"
#include "CodecTables.h"

#include <unordered_map>
#include <vector>

namespace qn::text::charset {

namespace {

struct EncInfoTable {
    std::vector<QnEncInfo> records;
    std::unordered_map<std::u16string, const QnEncInfo*> index;
};

// Built during the load and only read afterwards, so the lookups take no lock.
EncInfoTable* s_table = nullptr;

const QNWCHAR* wide(const char16_t* text) {
    return reinterpret_cast<const QNWCHAR*>(text);
}

std::u16string decimal(int32_t value) {
    QNWCHAR digits[12];
    QNLToStrW(value, digits, 12, 10);
    return std::u16string(reinterpret_cast<const char16_t*>(digits));
}

} // namespace

std::u16string upperName(const char16_t* name) {
    std::u16string key(name);
    QNStrToUpperW(reinterpret_cast<QNWCHAR*>(&key[0]), static_cast<int32_t>(key.size()));
    return key;
}

const QnEncInfo* findEncInfo(const std::u16string& key) {
    if (!s_table)
        return nullptr;
    const auto found = s_table->index.find(key);
    return found == s_table->index.end() ? nullptr : found->second;
}

void buildEncInfoTable() {
    using namespace tables;
    auto* table = new EncInfoTable;
    try {
        // Records first, so that the index's pointers stay put.
        for (const CodecRow& row : CODECS)
            if (row.codePage != 0 && !row.aliasOf)
                table->records.push_back({wide(row.name), row.codePage, 0});
        for (const CodePageRow& row : CODE_PAGES)
            table->records.push_back({wide(row.name), row.codePage, 0});
        table->index.reserve(101);
        for (const QnEncInfo& record : table->records) {
            table->index.emplace(upperName(reinterpret_cast<const char16_t*>(record.name)),
                                 &record);
            table->index.emplace(decimal(record.codePage), &record);
        }
        // Aliases of codec rows that have no record ("A7") find nothing and are left out.
        for (const CodecRow& row : CODECS) {
            if (!row.aliasOf)
                continue;
            const auto target = table->index.find(upperName(row.aliasOf));
            if (target != table->index.end())
                table->index.emplace(upperName(row.name), target->second);
        }
        for (const AliasPair& pair : ALIASES) {
            const auto target = table->index.find(pair.target);
            if (target != table->index.end())
                table->index.emplace(pair.alias, target->second);
        }
    } catch (...) {
        delete table;
        throw;
    }
    delete s_table;
    s_table = table;
}

void freeEncInfoTable() noexcept {
    delete s_table;
    s_table = nullptr;
}

} // namespace qn::text::charset

using namespace qn::text::charset;

QN_EXTERN_C QNRESULT QN_STDCALL QNEnumerateEncInfo(uint32_t* count, QnEncInfo* buffer) {
    if (!count || (*count != 0 && !buffer))
        return QN_E_INVALIDARG;
    const uint32_t size = s_table ? static_cast<uint32_t>(s_table->records.size()) : 0;
    const bool fits = *count >= size;
    *count = size;
    if (!fits)
        return QN_E_BUFFERTOOSMALL;
    for (uint32_t i = 0; i < size; ++i)
        buffer[i] = s_table->records[i];
    return QN_S_OK;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGetEncInfoByName(const QNWCHAR* name, QnEncInfo* info) {
    if (!name || !info)
        return QN_E_INVALIDARG;
    return qn::translateExceptions([&] {
        const QnEncInfo* record = findEncInfo(upperName(reinterpret_cast<const char16_t*>(name)));
        if (!record)
            return QN_E_FAIL;
        *info = *record;
        return QN_S_OK;
    });
}

QN_EXTERN_C QNRESULT QN_STDCALL QNGetEncInfoByCodePage(int32_t codePage, QnEncInfo* info) {
    if (!info)
        return QN_E_INVALIDARG;
    return qn::translateExceptions([&] {
        const QnEncInfo* record = findEncInfo(decimal(codePage));
        if (!record)
            return QN_E_FAIL;
        *info = *record;
        return QN_S_OK;
    });
}
