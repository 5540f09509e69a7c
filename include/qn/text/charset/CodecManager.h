// CodecManager: the process-wide registry of converters by encoding name. It maps upper-cased
// names to the pair of converter classes that implement them, creates converters on request,
// falls back to codec plug-ins ("Solvantic.CharCodec." + name) and resolves aliases and code
// pages through the encoding-information table (QnEncInfo.h).
#pragma once

#include "qn/core/Class.h"
#include "qn/core/ComObject.h"
#include "qn/core/Reference.h"
#include "qn/core/Singleton.h"

#include <string>

namespace qn::text::charset {

class ByteToCharConverter;
class CharToByteConverter;

// One registry value: the encoder class and the decoder class of one name (either may be null
// when its class is not in the class registry; then that direction is not available).
class QNCL_API CodecClasses : public ComObject {
public:
    CodecClasses(const Class* encoderClass, const Class* decoderClass) noexcept
        : m_encoderClass(encoderClass), m_decoderClass(decoderClass) {}
    ~CodecClasses() override;

    const Class* getEncoderClass() const noexcept { return m_encoderClass; }
    const Class* getDecoderClass() const noexcept { return m_decoderClass; }

private:
    const Class* m_encoderClass;
    const Class* m_decoderClass;
};

// Lookups read the registry without a lock: it is filled completely while the library loads
// and only read afterwards. registerCodec is therefore meant for the load sequence (and for a
// program's own start-up, before any other thread asks for converters).
class QNCL_API CodecManager {
public:
    // The interface id a codec plug-in is created with: {E9DE4D9A-BF89-4A97-B974-1F50BC5A8C61}.
    static const QNGUID PLUGIN_IID;

    // Makes the converter over a codec plug-in object created with PLUGIN_IID (the maker takes
    // its own reference; the caller releases the creation reference afterwards).
    using DecoderWrapper = Reference<ByteToCharConverter> (*)(IQNUnknown* codec);
    using EncoderWrapper = Reference<CharToByteConverter> (*)(IQNUnknown* codec);

    // The singleton, created on first use under the global lock.
    static CodecManager* getInstance();
    // Destroys the singleton; the library's unload calls it.
    static void freeInstance();

    // Registers name (any case; the key is its upper-case form) with the classes registered
    // under the two class names. The first registration of a name wins; later ones do nothing.
    // A class name that is null or missing from the class registry leaves that direction
    // unavailable. RangeErrorException for a null name.
    void registerCodec(const char16_t* name, const char16_t* encoderClassName,
                       const char16_t* decoderClassName);

    // A new converter for name, or null: a registered name (any case), then a codec plug-in
    // registered under "Solvantic.CharCodec." + name (case as given), then an alias or code page
    // of the encoding-information table, resolved to its record's name.
    Reference<Object> getDecoder(const char16_t* name) const;
    Reference<Object> getEncoder(const char16_t* name) const;

    // Calls visit(name, classes) for every registered name, upper case, in the order of
    // registration, until visit returns false. Codec plug-ins are not registered, so they are
    // not visited.
    template <class Visit> void forEach(Visit visit) const {
        forEachImpl(&invokeVisit<Visit>, &visit);
    }

    // Installs the makers that turn the object a codec plug-in created into converters. The
    // library's own (BTCCom::wrap, CTBCom::wrap, over IQNCharCodec) are in place from the
    // start; null puts them back.
    static void setPlugInWrappers(DecoderWrapper decoder, EncoderWrapper encoder) noexcept;

    CodecManager(const CodecManager&) = delete;
    CodecManager& operator=(const CodecManager&) = delete;

private:
    CodecManager();
    ~CodecManager();
    template <class, auto&> friend class qn::Singleton;
    struct Registry;

    using VisitFn = bool (*)(void* visit, const char16_t* name, const CodecClasses& classes);
    template <class Visit>
    static bool invokeVisit(void* visit, const char16_t* name, const CodecClasses& classes) {
        return (*static_cast<Visit*>(visit))(name, classes);
    }
    void forEachImpl(VisitFn visit, void* context) const;

    const CodecClasses* find(const std::u16string& key) const;
    Reference<Object> create(const char16_t* name, bool decoder) const;

    Registry* m_registry;
};

} // namespace qn::text::charset
