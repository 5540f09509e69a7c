#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#ifdef _WIN32
#include <windows.h>
#endif

using namespace qntest;

namespace {

const char16_t kProgId[] = u"QnclTest.Plugin.1";
const char16_t kIndependentProgId[] = u"QnclTest.Plugin";
const QNGUID kOtherClsid = {
    0x0C5E2B77, 0x91A4, 0x4F0D, {0xB6, 0x3A, 0x5D, 0x12, 0xE8, 0x40, 0x77, 0x9C}};

QNRESULT create(QNMODULE module, const QNGUID& clsid, ITestValue** object,
                IQNUnknown* outer = nullptr, const QNGUID& iid = kTestIid) {
    *object = reinterpret_cast<ITestValue*>(1);
    const QNRESULT r =
        QNModuleComCreateObject(module, &clsid, outer, &iid, reinterpret_cast<void**>(object));
    if (QN_FAILED(r)) {
        EXPECT_EQ(*object, nullptr) << "no object on failure";
    }
    return r;
}

QNRESULT classOf(const char16_t* progId, QNGUID* clsid) {
    return QNComClassIDFromProgID(W(progId).c_str(), clsid);
}

// Every test starts with the plug-in registered (in a store of its own on POSIX) and
// "QnclTest.Alias" naming it only through CurVer.
class Component : public ::testing::Test {
protected:
    void SetUp() override {
#ifdef _WIN32
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, L"QnclTest.Alias\\CurVer", 0, nullptr, 0,
                                  KEY_WRITE, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(L"QnclTest.Plugin.1"),
                       sizeof(L"QnclTest.Plugin.1"));
        RegCloseKey(key);
#else
        setenv("QNCL_COMPONENT_REGISTRY", (m_dir.path / "components.reg").c_str(), 1);
        std::ofstream(m_dir.path / "components.reg")
            << "QnclTest.Alias\\CurVer=QnclTest.Plugin.1\n";
#endif
        QNComUnregisterClass(&kTestClsid); // what an interrupted run may have left
        ASSERT_EQ(QNComRegisterClass(&kTestClsid, W(kProgId).c_str(), W(kIndependentProgId).c_str(),
                                     W(u"qncore test").c_str(), pluginPath().c_str()),
                  QN_S_OK);
    }
    void TearDown() override {
        QNComUnregisterClass(&kTestClsid);
#ifdef _WIN32
        RegDeleteKeyW(HKEY_CLASSES_ROOT, L"QnclTest.Alias\\CurVer");
        RegDeleteKeyW(HKEY_CLASSES_ROOT, L"QnclTest.Alias");
#else
        unsetenv("QNCL_COMPONENT_REGISTRY");
#endif
    }

    ScratchDir m_dir;
};

} // namespace

TEST_F(Component, FindsClassesByProgramIdentifier) {
    QNGUID clsid{};
    for (const char16_t* id : {kProgId, kIndependentProgId, u"QnclTest.Alias"}) {
        EXPECT_EQ(classOf(id, &clsid), QN_S_OK);
        EXPECT_TRUE(sameGuid(clsid, kTestClsid));
    }
#ifdef _WIN32
    EXPECT_EQ(classOf(u"qncltest.PLUGIN.1", &clsid), QN_S_OK); // the registry ignores case
#else
    EXPECT_EQ(classOf(u"qncltest.PLUGIN.1", &clsid), QN_E_CLASSNOTREGISTERED);
#endif
    EXPECT_EQ(classOf(u"QnclTest.Missing", &clsid), QN_E_CLASSNOTREGISTERED);
    EXPECT_EQ(classOf(u"", &clsid), QN_E_CLASSNOTREGISTERED);

    EXPECT_EQ(QNComUnregisterClass(&kTestClsid), QN_S_OK);
    for (const char16_t* id : {kProgId, kIndependentProgId, u"QnclTest.Alias"})
        EXPECT_EQ(classOf(id, &clsid), QN_E_CLASSNOTREGISTERED);
    ITestValue* object = nullptr;
    EXPECT_EQ(create(nullptr, kTestClsid, &object), QN_E_CLASSNOTREGISTERED);
    EXPECT_EQ(QNComUnregisterClass(&kTestClsid), QN_S_FALSE);
}

TEST_F(Component, CreatesObjectsFromTheLibrary) {
    static const char module = 0;
    ITestValue *object = nullptr, *other = nullptr;
    EXPECT_EQ(create(&module, kTestClsid, &object), QN_E_UNEXPECTED);
    ASSERT_EQ(QNModuleSetInitialized(&module, 1), QN_S_OK);
    ASSERT_EQ(create(&module, kTestClsid, &object), QN_S_OK);
    EXPECT_EQ(object->GetValue(), kPluginValue);
    // The class's own refusals come back as they are.
    EXPECT_EQ(create(&module, kTestClsid, &other, object), QN_E_NOAGGREGATION);
    EXPECT_EQ(create(&module, kTestClsid, &other, nullptr, QN_IID_IQNCharBuffer), QN_E_NOINTERFACE);
    EXPECT_EQ(create(&module, kOtherClsid, &other), QN_E_CLASSNOTREGISTERED);

    // The library stays loaded while an object of it lives, though no module needs it.
    EXPECT_EQ(QNModuleSetInitialized(&module, 0), QN_S_OK);
    EXPECT_EQ(create(&module, kTestClsid, &other), QN_E_UNEXPECTED);
    EXPECT_EQ(object->GetValue(), kPluginValue);
    EXPECT_EQ(object->Release(), 0u);
    ASSERT_EQ(create(nullptr, kTestClsid, &object), QN_S_OK); // the process is always initialised
    EXPECT_EQ(object->GetValue(), kPluginValue);
    object->Release();
}

TEST_F(Component, ClassObjectsOfTheProcessComeFirst) {
    std::atomic<int> live{0};
    TestFactory seven(7, live), eight(8, live);
    ASSERT_EQ(QNComRegisterClassObject(&kOtherClsid, W(kProgId).c_str(), &seven), QN_S_OK);
    ASSERT_EQ(QNComRegisterClassObject(&kTestClsid, nullptr, &eight), QN_S_OK);
    EXPECT_EQ(QNComRegisterClassObject(&kTestClsid, nullptr, &seven), QN_E_ALREADYEXISTS);
    EXPECT_EQ(seven.refs, 1u);
    EXPECT_EQ(eight.refs, 1u);
    QNGUID clsid{};
    EXPECT_EQ(classOf(kProgId, &clsid), QN_S_OK);
    EXPECT_TRUE(sameGuid(clsid, kOtherClsid));
    for (auto [id, value] : {std::pair{&kOtherClsid, 7}, std::pair{&kTestClsid, 8}}) {
        ITestValue* object = nullptr;
        ASSERT_EQ(create(nullptr, *id, &object), QN_S_OK);
        EXPECT_EQ(object->GetValue(), value);
        object->Release();
    }
    EXPECT_EQ(live, 0);
    EXPECT_EQ(seven.refs, 1u) << "a reference to the class object was kept";

    EXPECT_EQ(QNComRevokeClassObject(&kOtherClsid), QN_S_OK);
    EXPECT_EQ(QNComRevokeClassObject(&kTestClsid), QN_S_OK);
    EXPECT_EQ(seven.refs + eight.refs, 0u);
    EXPECT_EQ(classOf(kProgId, &clsid), QN_S_OK);
    EXPECT_TRUE(sameGuid(clsid, kTestClsid));
    ITestValue* object = nullptr;
    EXPECT_EQ(create(nullptr, kOtherClsid, &object), QN_E_CLASSNOTREGISTERED);
}
