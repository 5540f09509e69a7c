#include "qn/core/Library.h"

#include "LibraryInternal.h"
#include "qn/core/ClassManagerBase.h"
#include "qn/core/Exception.h"
#include "qn/sync/Mutex.h"
#include "qn/text/charset/CodecManager.h"
#include "text/charset/CharsetInternal.h"

#include <atomic>
#include <clocale>

namespace qn {

sync::LockObject* g_pGlobalLock = nullptr;

namespace {

std::atomic<int> s_initCount{0};
const char s_moduleToken = 0;

} // namespace

const void* libraryModuleToken() noexcept {
    return &s_moduleToken;
}

} // namespace qn

QN_EXTERN_C QNRESULT QN_STDCALL QNCLLibInit(void) {
    QNRESULT result = QN_S_OK;
    if (qn::s_initCount.fetch_add(1) + 1 == 1) {
        result = qn::translateExceptions([] {
            std::setlocale(LC_ALL, "");
            qn::g_pGlobalLock = new qn::sync::Mutex("QNCL::g_pGlobalLock");
            qn::g_pGlobalLock->AddRef();
            qn::registerBuiltinClasses();
            qn::text::charset::registerBuiltinCodecs();
            qn::text::charset::buildEncInfoTable();
        });
    }
    QNModuleSetInitialized(qn::libraryModuleToken(), 1);
    return result;
}

QN_EXTERN_C QNRESULT QN_STDCALL QNCLLibUninit(void) {
    QNModuleSetInitialized(qn::libraryModuleToken(), 0);
    int count = qn::s_initCount.load();
    do {
        if (count <= 0)
            return QN_E_FAIL;
    } while (!qn::s_initCount.compare_exchange_weak(count, count - 1));
    if (count != 1)
        return QN_S_OK;
    return qn::translateExceptions([] {
        qn::text::charset::freeEncInfoTable();
        qn::text::charset::CodecManager::freeInstance();
        qn::freeClassRegistry();
        qn::sync::LockObject* lock = qn::g_pGlobalLock;
        qn::g_pGlobalLock = nullptr;
        if (lock)
            lock->Release();
    });
}
