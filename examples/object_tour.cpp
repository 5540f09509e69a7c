// A tour of qncl6's spine: counted objects and Reference, the class registry, exceptions with
// result codes, and String with copy on write and placeholders.
#include <qn/core/Class.h>
#include <qn/core/Exception.h>
#include <qn/core/Number.h>
#include <qn/core/String.h>

#include <cstdio>
#include <string>

using namespace qn;

static std::string utf8(const String& s) {
    const auto* text = reinterpret_cast<const QNWCHAR*>(s.getData());
    std::string out(static_cast<size_t>(QNWideToUtf8(text, s.getLength(), nullptr, 0)), '\0');
    QNWideToUtf8(text, s.getLength(), out.data(), static_cast<int32_t>(out.size()));
    return out;
}

int main() {
    // Objects are born with count 0; a Reference takes the first reference.
    Reference<Object> object = Class::forName(u"CQNObject")->createInstance();
    std::printf("%-28s %s (count %u)\n", "created by name:", utf8(object->toString()).c_str(),
                object->GetRefCount());

    // Copies share one buffer until one of them changes.
    String greeting(u"Hello, {0}! {1} says hello to {0}.");
    String copy = greeting;
    copy.format(copy, u"world", u"qncl");
    std::printf("%-28s %s\n", "format:", utf8(copy).c_str());
    std::printf("%-28s %s\n", "the original is untouched:", utf8(greeting).c_str());
    std::printf("%-28s %u\n", "hash of \"a\":", String(u"a").hashCode());

    // Failures are exceptions with result codes; components see only the code.
    const QNRESULT r = translateExceptions([] { Class::forName(u"no::SuchClass"); });
    std::printf("%-28s 0x%08X\n", "unknown class, as a code:", static_cast<unsigned>(r));
    try {
        Integer32::parse(String(u"12x"));
    } catch (const Exception& e) {
        std::printf("%-28s %s\n", "parse failure:", utf8(e.getDescription()).c_str());
    }
    return 0;
}
