#include "qn/core/xcom/DllModule.h"

namespace qn::xcom {

DllModule::~DllModule() = default;

QNRESULT DllModule::RegisterClassEntry(ClassData& row, const char16_t* path) {
    if (!path)
        return QN_E_POINTER;
    STRUCT_QN_FILE_STATUS status{};
    const QNRESULT r = QNFileGetStatus(reinterpret_cast<const QNWCHAR*>(path), &status);
    if (QN_FAILED(r))
        return r;
    return Module::RegisterClassEntry(row, path);
}

} // namespace qn::xcom
