// The test component as its own library: registered through its entry points, found by program
// identifier, created by the core module's component layer, counted against its module and
// unregistered again.
#include "xcom/ComponentSupport.h"
#include "xcom/plugin/TestComponent.h"

#include <gtest/gtest.h>

#include <cstring>

using qntest::W;

namespace {

const char s_token = 0; // this program's module, to the component layer

} // namespace

TEST(Component, RegisteredFoundCreatedCountedAndUnregistered) {
    qntest::ScratchRegistry registry;
    qntest::ComponentLibrary library;
    ASSERT_TRUE(library.loaded());
    QNComUnregisterClass(&qntest::CLSID_TestCounter); // what an interrupted run may have left
    ASSERT_EQ(library.registerServer(), QN_S_OK);

    QNGUID clsid{};
    ASSERT_EQ(QNComClassIDFromProgID(W(qntest::TEST_COUNTER_VI_PROGID), &clsid), QN_S_OK);
    EXPECT_EQ(std::memcmp(&clsid, &qntest::CLSID_TestCounter, sizeof clsid), 0);

    ASSERT_EQ(QNModuleSetInitialized(&s_token, 1), QN_S_OK);
    qntest::ITestCounter* counter = nullptr;
    ASSERT_EQ(QNModuleComCreateObject(&s_token, &clsid, nullptr, &qntest::IID_ITestCounter,
                                      reinterpret_cast<void**>(&counter)),
              QN_S_OK);
    int32_t value = 0;
    ASSERT_EQ(counter->Next(&value), QN_S_OK);
    ASSERT_EQ(counter->Next(&value), QN_S_OK);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(library.canUnloadNow(), QN_S_FALSE);

    // The class object the layer used is the module's cached one; locking it holds the module.
    IQNClassFactory* factory = nullptr;
    ASSERT_EQ(
        library.getClassObject(clsid, QN_IID_IQNClassFactory, reinterpret_cast<void**>(&factory)),
        QN_S_OK);
    counter->Release();
    EXPECT_EQ(library.canUnloadNow(), QN_S_OK);
    EXPECT_EQ(factory->LockServer(1), QN_S_OK);
    EXPECT_EQ(library.canUnloadNow(), QN_S_FALSE);
    EXPECT_EQ(factory->LockServer(0), QN_S_OK);
    EXPECT_EQ(library.canUnloadNow(), QN_S_OK);
    void* none = nullptr;
    EXPECT_EQ(library.getClassObject(qntest::IID_ITestCounter, QN_IID_IQNClassFactory, &none),
              QN_E_CLASSNOTAVAILABLE);
    factory->Release();

    ASSERT_EQ(QNModuleSetInitialized(&s_token, 0), QN_S_OK);
    EXPECT_EQ(library.unregisterServer(), QN_S_OK);
    EXPECT_EQ(QNComClassIDFromProgID(W(qntest::TEST_COUNTER_VI_PROGID), &clsid),
              QN_E_CLASSNOTREGISTERED);
    EXPECT_EQ(QNModuleComCreateObject(nullptr, &qntest::CLSID_TestCounter, nullptr,
                                      &qntest::IID_ITestCounter, &none),
              QN_E_CLASSNOTREGISTERED);
}
