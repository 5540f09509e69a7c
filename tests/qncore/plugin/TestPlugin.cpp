// The component library the component tests register, load and create. It counts live objects
// and server locks so that DllCanUnloadNow tells the core module the truth.
#include "../TestSupport.h"

#ifdef _WIN32
#define PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {
std::atomic<int> g_live{0};
qntest::TestFactory g_factory(qntest::kPluginValue, g_live);
} // namespace

PLUGIN_EXPORT QNRESULT QN_STDCALL DllGetClassObject(const QNGUID* clsid, const QNGUID* iid,
                                                    void** out) {
    *out = nullptr;
    if (!qntest::sameGuid(*clsid, qntest::kTestClsid))
        return QN_E_CLASSNOTAVAILABLE;
    return g_factory.QueryInterface(*iid, out);
}

PLUGIN_EXPORT QNRESULT QN_STDCALL DllCanUnloadNow() {
    return g_live == 0 ? QN_S_OK : QN_S_FALSE;
}
