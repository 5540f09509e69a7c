// classes: the class registry as the library filled it at load, by name, with whether each
// class can be created by name.
#include "Tool.h"

#include "qn/core/Class.h"
#include "qn/core/ClassManagerBase.h"

#include <vector>

namespace qncl {

namespace {

void declareClasses(CommandLineParser&) {}

int runClasses(const CommandLineParser&, const std::string&) {
    std::vector<const qn::Class*> found;
    qn::classRegistry().forEach([&found](const qn::Class& c) {
        found.push_back(&c);
        return true;
    });
    for (const qn::Class* c : found) {
        bool creates = false;
        try {
            creates = c->createInstance() != nullptr;
        } catch (const qn::Exception&) {
        } catch (const std::bad_alloc&) {
        }
        printOut(utf8(String(c->getName())) + (creates ? "\tyes\n" : "\tno\n"));
    }
    return flushOutput() ? EXIT_OK : EXIT_FAILED;
}

} // namespace

const Command CLASSES_COMMAND = {u"classes",
                                 u"list the registered classes and whether each can be created",
                                 declareClasses, runClasses};

} // namespace qncl
