#include "qn/core/xcom/ClassFactory.h"
#include "qn/core/xcom/DllModule.h"
#include "qn/core/xcom/LibraryEntry.h"
#include "xcom/ComponentSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace qn;
using qntest::W;

namespace {

// 4B1E8C3D-2F6A-4E59-9D07-A1C3E5F70B28, 4B1E8C3D-2F6A-4E59-9D07-A1C3E5F70B29
const QNGUID CLSID_Plain = {
    0x4B1E8C3D, 0x2F6A, 0x4E59, {0x9D, 0x07, 0xA1, 0xC3, 0xE5, 0xF7, 0x0B, 0x28}};
const QNGUID CLSID_Other = {
    0x4B1E8C3D, 0x2F6A, 0x4E59, {0x9D, 0x07, 0xA1, 0xC3, 0xE5, 0xF7, 0x0B, 0x29}};

// Counts the class objects it makes, so that a test sees how often the module asked.
std::atomic<int> s_created{0};
QNRESULT countingFactory(xcom::Module* module, uintptr_t parameter, const QNGUID& iid, void** out) {
    ++s_created;
    std::this_thread::yield(); // widen the window in which a second creation could slip in
    return xcom::ClassFactory::CreateClassObject(module, parameter, iid, out);
}

std::atomic<bool> s_failCreation{false};
QNRESULT failingFactory(xcom::Module* module, uintptr_t parameter, const QNGUID& iid, void** out) {
    if (s_failCreation)
        return QN_E_OUTOFMEMORY;
    return xcom::ClassFactory::CreateClassObject(module, parameter, iid, out);
}

xcom::ClassData makeRow(const QNGUID& clsid, xcom::CreateClassObjectFunction create,
                        const char16_t* version) {
    const xcom::ClassFactory::CreateInstanceFunction make = &xcom::createInstance<Object>;
    return {&clsid,
            reinterpret_cast<uintptr_t>(make),
            create,
            nullptr,
            u"Solvantic.QnclTest.Plain",
            u"plain object",
            version,
            nullptr};
}

struct Table {
    xcom::ClassData rows[3] = {makeRow(CLSID_Plain, &countingFactory, u"3"),
                               makeRow(CLSID_Other, &failingFactory, u"4"),
                               {nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr}};
};

template <class T> struct Held {
    T* p = nullptr;
    ~Held() {
        if (p)
            p->Release();
    }
    void** out() { return reinterpret_cast<void**>(&p); }
};

} // namespace

TEST(Module, ClassObjectsAreFoundByIdentifierAndCreatedOnce) {
    Table table;
    xcom::Module module(table.rows);
    s_created = 0;
    void* out = &table;
    EXPECT_EQ(module.GetClassObject(IID_IQNComparable, IID_IQNUnknown, &out),
              QN_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(module.GetClassObject(CLSID_Plain, IID_IQNUnknown, nullptr), QN_E_POINTER);

    constexpr int THREADS = 8;
    std::vector<IQNClassFactory*> seen(THREADS, nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.emplace_back([&, i] {
            EXPECT_EQ(module.GetClassObject(CLSID_Plain, IID_IQNClassFactory,
                                            reinterpret_cast<void**>(&seen[i])),
                      QN_S_OK);
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(s_created.load(), 1);
    for (IQNClassFactory* factory : seen) {
        EXPECT_EQ(factory, seen[0]);
        factory->Release();
    }
    // The cache's own reference does not lock the module.
    EXPECT_EQ(module.CanUnloadNow(), QN_S_OK);

    Held<IQNUnknown> none;
    EXPECT_EQ(module.GetClassObject(CLSID_Plain, IID_IQNComparable, none.out()),
              QN_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(none.p, nullptr);
}

TEST(Module, FailedCreationIsReportedAndTriedAgain) {
    Table table;
    xcom::Module module(table.rows);
    s_failCreation = true;
    Held<IQNClassFactory> factory;
    // The last row tried is the failing one, so its failure is the answer.
    EXPECT_EQ(module.GetClassObject(CLSID_Other, IID_IQNClassFactory, factory.out()),
              QN_E_OUTOFMEMORY);
    EXPECT_EQ(table.rows[1].classObject.load(), nullptr);
    EXPECT_EQ(
        module.TryGetClassObject(CLSID_Other, IID_IQNClassFactory, factory.out(), table.rows[0]),
        QN_E_CLASSNOTAVAILABLE);
    s_failCreation = false;
    EXPECT_EQ(module.GetClassObject(CLSID_Other, IID_IQNClassFactory, factory.out()), QN_S_OK);
    ASSERT_NE(factory.p, nullptr);
}

TEST(ClassFactory, CreatesCountedInstancesThatLockTheModule) {
    Table table;
    xcom::Module module(table.rows);
    Held<IQNClassFactory> factory;
    ASSERT_EQ(module.GetClassObject(CLSID_Plain, IID_IQNClassFactory, factory.out()), QN_S_OK);

    Held<IQNComparable> object;
    ASSERT_EQ(factory.p->CreateInstance(nullptr, IID_IQNComparable, object.out()), QN_S_OK);
    EXPECT_EQ(module.GetRefCount(), 1u);
    EXPECT_EQ(module.CanUnloadNow(), QN_S_FALSE);
    object.p->Release();
    object.p = nullptr;
    EXPECT_EQ(module.CanUnloadNow(), QN_S_OK);

    void* out = &table;
    EXPECT_EQ(factory.p->CreateInstance(factory.p, IID_IQNComparable, &out), QN_E_INVALIDARG);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory.p->CreateInstance(factory.p, IID_IQNUnknown, &out), QN_E_NOAGGREGATION);
    EXPECT_EQ(factory.p->CreateInstance(nullptr, IID_IQNClassFactory, &out), QN_E_NOINTERFACE);
    EXPECT_EQ(factory.p->CreateInstance(nullptr, IID_IQNUnknown, nullptr), QN_E_POINTER);
    EXPECT_EQ(module.CanUnloadNow(), QN_S_OK); // nothing leaked a lock on the way

    EXPECT_EQ(factory.p->LockServer(1), QN_S_OK);
    EXPECT_EQ(factory.p->LockServer(1), QN_S_OK);
    EXPECT_EQ(factory.p->LockServer(0), QN_S_OK);
    EXPECT_EQ(module.CanUnloadNow(), QN_S_FALSE);
    EXPECT_EQ(factory.p->LockServer(0), QN_S_OK);
    EXPECT_EQ(module.CanUnloadNow(), QN_S_OK);

    Reference<xcom::ClassFactory> orphan(new xcom::ClassFactory);
    EXPECT_EQ(orphan->LockServer(1), QN_E_UNEXPECTED);
    EXPECT_EQ(orphan->CreateInstance(nullptr, IID_IQNUnknown, &out), QN_E_CLASSNOTAVAILABLE);
}

TEST(Module, RegistersAndUnregistersItsClasses) {
    qntest::ScratchRegistry registry;
    Table table;
    xcom::DllModule module(table.rows);
    QNGUID found{};

    EXPECT_TRUE(QN_FAILED(module.RegisterServer(u"/no/such/dir/component.so")));
    EXPECT_EQ(QNComClassIDFromProgID(W(u"Solvantic.QnclTest.Plain"), &found),
              QN_E_CLASSNOTREGISTERED);

    // The program itself stands in for the library file here.
    ASSERT_EQ(module.RegisterServer(reinterpret_cast<const void*>(&qntest::programPath)), QN_S_OK);
    ASSERT_EQ(QNComClassIDFromProgID(W(u"Solvantic.QnclTest.Plain.3"), &found), QN_S_OK);
    EXPECT_TRUE(isEqualGuid(found, CLSID_Plain));
    // Both rows share the version-independent identifier; it follows CurVer to the last one.
    ASSERT_EQ(QNComClassIDFromProgID(W(u"Solvantic.QnclTest.Plain"), &found), QN_S_OK);
    EXPECT_TRUE(isEqualGuid(found, CLSID_Other));

    EXPECT_EQ(module.UnregisterServer(), QN_S_OK);
    EXPECT_EQ(QNComClassIDFromProgID(W(u"Solvantic.QnclTest.Plain.3"), &found),
              QN_E_CLASSNOTREGISTERED);
    EXPECT_EQ(module.UnregisterServer(), QN_S_OK); // nothing left to remove is no failure

    xcom::Module empty;
    EXPECT_EQ(empty.RegisterServer(u"anything"), QN_S_OK);
    EXPECT_EQ(empty.UnregisterServer(), QN_S_OK);
}

TEST(Module, LibraryEntryPointsAnswerForTheLibraryModule) {
    void* out = &out;
    EXPECT_EQ(DllGetClassObject(&CLSID_Plain, &IID_IQNClassFactory, &out), QN_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(nullptr, &IID_IQNClassFactory, &out), QN_E_POINTER);
    EXPECT_EQ(DllCanUnloadNow(), QN_S_OK);
    xcom::libraryModule().AddRef();
    EXPECT_EQ(DllCanUnloadNow(), QN_S_FALSE);
    xcom::libraryModule().Release();
    qntest::ScratchRegistry registry;
    EXPECT_EQ(DllRegisterServer(), QN_S_OK);
    EXPECT_EQ(DllUnregisterServer(), QN_S_OK);
}
