// xcom::DllModule: the module of a component library file (a DLL on Windows, a shared object
// elsewhere). Its registration form insists that the path names an existing file, since the
// registration is only useful for a file that the component layer can load.
#pragma once

#include "qn/core/xcom/Module.h"

namespace qn::xcom {

class QNCL_API DllModule : public Module {
public:
    explicit DllModule(ClassData* classes = nullptr) : Module(classes) {}
    ~DllModule() override;

    // 0x80070002 (or the core module's code for the path) when path names no file.
    QNRESULT RegisterClassEntry(ClassData& row, const char16_t* path) override;
};

} // namespace qn::xcom
