#include "qn/text/charset/CodecManager.h"

#include "qn/core/Exception.h"
#include "qn/core/Library.h"
#include "qn/core/Singleton.h"
#include "qn/sync/LockObject.h"
#include "qn/text/charset/BTCCom.h"
#include "qn/text/charset/ByteToCharConverter.h"
#include "qn/text/charset/CTBCom.h"
#include "qn/text/charset/CharToByteConverter.h"
#include "qn/text/charset/QnEncInfo.h"

#include "CharsetInternal.h"
#include "CodecTables.h"

#include <atomic>
#include <unordered_map>
#include <vector>

namespace qn::text::charset {

namespace {

using Instance = Singleton<CodecManager, g_pGlobalLock>;

// The makers of plug-in converters: the library's own converters over IQNCharCodec unless a
// caller installed others.
std::atomic<CodecManager::DecoderWrapper> s_decoderWrapper{&BTCCom::wrap};
std::atomic<CodecManager::EncoderWrapper> s_encoderWrapper{&CTBCom::wrap};

const Class* classOrNull(const char16_t* name) {
    if (!name)
        return nullptr;
    try {
        return Class::forName(name);
    } catch (const ClassNotFoundException&) {
        return nullptr;
    }
}

// The plug-in step: the object registered under "Solvantic.CharCodec." + name, created with
// the plug-in interface id; null when there is none.
Reference<IQNUnknown> createPlugIn(const char16_t* name) {
    std::u16string progId = u"Solvantic.CharCodec.";
    progId += name;
    QNGUID clsid;
    if (QNComClassIDFromProgID(reinterpret_cast<const QNWCHAR*>(progId.c_str()), &clsid) < 0)
        return nullptr;
    void* object = nullptr;
    if (QNModuleComCreateObject(libraryModuleToken(), &clsid, nullptr, &CodecManager::PLUGIN_IID,
                                &object) < 0 ||
        !object)
        return nullptr;
    Reference<IQNUnknown> codec;
    codec.attach(static_cast<IQNUnknown*>(object));
    return codec;
}

} // namespace

const QNGUID CodecManager::PLUGIN_IID = {
    0xE9DE4D9A, 0xBF89, 0x4A97, {0xB9, 0x74, 0x1F, 0x50, 0xBC, 0x5A, 0x8C, 0x61}};

CodecClasses::~CodecClasses() = default;

struct CodecManager::Registry {
    std::unordered_map<std::u16string, Reference<CodecClasses>> entries;
    // The keys in the order they were registered.
    std::vector<const std::u16string*> order;
};

CodecManager::CodecManager() : m_registry(new Registry) {
    m_registry->entries.reserve(101);
}

CodecManager::~CodecManager() {
    delete m_registry;
}

CodecManager* CodecManager::getInstance() {
    return Instance::getInstance();
}

void CodecManager::freeInstance() {
    Instance::freeInstance();
}

void CodecManager::setPlugInWrappers(DecoderWrapper decoder, EncoderWrapper encoder) noexcept {
    s_decoderWrapper.store(decoder ? decoder : &BTCCom::wrap);
    s_encoderWrapper.store(encoder ? encoder : &CTBCom::wrap);
}

void CodecManager::registerCodec(const char16_t* name, const char16_t* encoderClassName,
                                 const char16_t* decoderClassName) {
    if (!name)
        throw RangeErrorException();
    std::u16string key = upperName(name);
    if (m_registry->entries.count(key) != 0)
        return;
    Reference<CodecClasses> classes(
        new CodecClasses(classOrNull(encoderClassName), classOrNull(decoderClassName)));
    const auto added = m_registry->entries.emplace(std::move(key), std::move(classes));
    m_registry->order.push_back(&added.first->first);
}

void CodecManager::forEachImpl(VisitFn visit, void* context) const {
    for (const std::u16string* key : m_registry->order)
        if (!visit(context, key->c_str(), *m_registry->entries.find(*key)->second))
            return;
}

const CodecClasses* CodecManager::find(const std::u16string& key) const {
    const auto found = m_registry->entries.find(key);
    return found == m_registry->entries.end() ? nullptr : found->second.get();
}

Reference<Object> CodecManager::create(const char16_t* name, bool decoder) const {
    if (!name)
        return nullptr;
    const std::u16string key = upperName(name);
    if (const CodecClasses* classes = find(key)) {
        const Class* type = decoder ? classes->getDecoderClass() : classes->getEncoderClass();
        return type ? type->createInstance() : nullptr;
    }
    if (Reference<IQNUnknown> codec = createPlugIn(name)) {
        if (decoder)
            return Reference<Object>(s_decoderWrapper.load()(codec.get()));
        return Reference<Object>(s_encoderWrapper.load()(codec.get()));
    }
    // Record names are canonical and upper case, so this resolves in one step.
    const QnEncInfo* record = findEncInfo(key);
    if (record && key != reinterpret_cast<const char16_t*>(record->name))
        return create(reinterpret_cast<const char16_t*>(record->name), decoder);
    return nullptr;
}

Reference<Object> CodecManager::getDecoder(const char16_t* name) const {
    return create(name, true);
}

Reference<Object> CodecManager::getEncoder(const char16_t* name) const {
    return create(name, false);
}

} // namespace qn::text::charset

namespace qn::text::charset {

void registerBuiltinCodecs() {
    CodecManager* manager = CodecManager::getInstance();
    for (const tables::CodecRow& row : tables::CODECS)
        manager->registerCodec(row.name, row.encoderClass, row.decoderClass);
}

} // namespace qn::text::charset
