#include "qn/core/Class.h"
#include "qn/core/CopyObject.h"
#include "qn/core/Exception.h"
#include "qn/core/String.h"
#include "qn/core/xcom/Module.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using namespace qn;

namespace {

// Not in the class registry.
class Unregistered : public Object {};

// A foreign component: answers the base interface only.
struct Foreign : IQNUnknown {
    QNRESULT QN_STDCALL QueryInterface(const QNGUID&, void** out) override {
        *out = nullptr;
        return QN_E_NOINTERFACE;
    }
    uint32_t QN_STDCALL AddRef() override { return 1; }
    uint32_t QN_STDCALL Release() override { return 1; }
};

// A class that adds an interface and chains to Object's map.
const QNGUID IID_ITest = {0x1234, 0x5678, 0x9ABC, {1, 2, 3, 4, 5, 6, 7, 8}};
struct ITest : IQNUnknown {
    virtual int32_t QN_STDCALL Value() = 0;
};
class WithInterface : public Object, public ITest {
public:
    QNRESULT QN_STDCALL QueryInterface(const QNGUID& iid, void** out) override {
        return xcom::QueryInterfaceMap(GetComIntfMap(), this, iid, out);
    }
    uint32_t QN_STDCALL AddRef() override { return Object::AddRef(); }
    uint32_t QN_STDCALL Release() override { return Object::Release(); }
    int32_t QN_STDCALL Value() override { return 42; }
    static const xcom::InterfaceData* GetComIntfMap() {
        static const xcom::InterfaceData map[] = {
            {&IID_ITest, xcom::INTERFACE_SUBOBJECT, xcom::interfaceOffset<WithInterface, ITest>()},
            {nullptr, xcom::handler(&chainToObjectMap), 0},
            {nullptr, 0, 0}};
        return map;
    }
};

class Value : public CopyObject {
public:
    int payload = 0;
};

std::u16string textOf(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

} // namespace

TEST(Object, QueryInterfaceAnswersBaseComparableAndNothingElse) {
    Reference<Object> object(new Object);
    void* out = nullptr;
    ASSERT_EQ(object->QueryInterface(IID_IQNUnknown, &out), QN_S_OK);
    EXPECT_EQ(out, object->GetUnknown());
    EXPECT_EQ(object->GetRefCount(), 2u);
    object->Release();

    ASSERT_EQ(object->QueryInterface(IID_IQNComparable, &out), QN_S_OK);
    EXPECT_EQ(out, static_cast<IQNComparable*>(object.get()));
    static_cast<IQNComparable*>(out)->Release();

    out = &out;
    EXPECT_EQ(object->QueryInterface(IID_ITest, &out), QN_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object->QueryInterface(IID_IQNUnknown, nullptr), QN_E_POINTER);
    EXPECT_EQ(object->GetRefCount(), 1u);
}

// CompareTo remembers how to reach the Object behind each kind of interface pointer: every
// interface of an object, asked for a second time, must still lead to the object, and a foreign
// component must still not.
TEST(Object, CompareToFindsTheObjectBehindEveryInterfaceAgain) {
    Reference<WithInterface> a(new WithInterface), b(new WithInterface);
    WithInterface* low = a.get() < b.get() ? a.get() : b.get();
    WithInterface* high = low == a.get() ? b.get() : a.get();
    Foreign foreign;
    const int32_t foreignOrder =
        reinterpret_cast<uintptr_t>(&foreign) > reinterpret_cast<uintptr_t>(low) ? 1 : -1;
    IQNUnknown* const faces[] = {high->GetUnknown(), static_cast<IQNComparable*>(high),
                                 static_cast<ITest*>(high)};
    for (int round = 0; round < 2; ++round) {
        for (IQNUnknown* face : faces) {
            int32_t result = 7;
            EXPECT_EQ(low->CompareTo(face, &result), QN_S_OK);
            EXPECT_EQ(result, -1);
            EXPECT_EQ(high->CompareTo(face, &result), QN_S_OK);
            EXPECT_EQ(result, 0);
        }
        int32_t result = 7;
        EXPECT_EQ(low->CompareTo(&foreign, &result), QN_S_OK);
        EXPECT_EQ(result, foreignOrder);
        EXPECT_EQ(low->CompareTo(nullptr, &result), QN_S_OK);
        EXPECT_EQ(result, -1);
    }
}

TEST(Object, ToStringNamesClassAndHexAddress) {
    Reference<Object> registered(new Object);
    Reference<Unregistered> unregistered(new Unregistered);
    // Lower-case base 16 without leading zeros, the whole width of the address.
    auto hexOf = [](const void* address) {
        char hex[32];
        std::snprintf(hex, sizeof hex, "%llx",
                      static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(address)));
        return std::u16string(hex, hex + std::strlen(hex));
    };
    EXPECT_EQ(textOf(unregistered->toString()), u"Object@" + hexOf(unregistered.get()));
    EXPECT_EQ(textOf(registered->toString()), u"CQNObject@" + hexOf(registered.get()));
    EXPECT_THROW(unregistered->getClass(), ClassNotFoundException);
}

TEST(CopyObject, CopiesCarryNeitherCountNorModule) {
    Reference<Value> original(new Value);
    original->payload = 5;
    xcom::Module module;
    original->SetComModule(&module);
    Value copy(*original);
    EXPECT_EQ(copy.GetRefCount(), 0u);
    EXPECT_EQ(copy.GetComModule(), nullptr);
    EXPECT_EQ(copy.payload, 5);

    Reference<Value> target(new Value);
    target->AddRef();
    *target = *original;
    EXPECT_EQ(target->GetRefCount(), 2u);
    EXPECT_EQ(target->GetComModule(), nullptr);
    target->Release();
    original->SetComModule(nullptr);
}

TEST(ComObject, ModuleCountsObjectsAboveZero) {
    xcom::Module module;
    auto* object = new Object;
    object->SetComModule(&module);
    EXPECT_EQ(module.GetRefCount(), 0u); // setting the module adjusts nothing
    object->AddRef();
    object->AddRef();
    EXPECT_EQ(module.GetRefCount(), 1u);
    EXPECT_EQ(module.CanUnloadNow(), 1);
    object->Release();
    EXPECT_EQ(module.GetRefCount(), 1u);
    object->Release();
    EXPECT_EQ(module.GetRefCount(), 0u);
    EXPECT_EQ(module.CanUnloadNow(), 0);
}

TEST(Reference, HoldsCountsAndHandsOver) {
    auto* raw = new Object;
    {
        Reference<Object> a(raw);
        EXPECT_EQ(raw->GetRefCount(), 1u);
        Reference<Object> b = a;
        EXPECT_EQ(raw->GetRefCount(), 2u);
        Reference<Object> c = std::move(b);
        EXPECT_FALSE(b);
        EXPECT_EQ(raw->GetRefCount(), 2u);
        Reference<Object>& alias = c;
        c = alias; // assigning the held object keeps it alive
        EXPECT_EQ(raw->GetRefCount(), 2u);
        Object* detached = c.detach();
        EXPECT_EQ(raw->GetRefCount(), 2u);
        Reference<Object> d;
        d.attach(detached);
        EXPECT_EQ(raw->GetRefCount(), 2u);
        a = nullptr;
        EXPECT_EQ(raw->GetRefCount(), 1u);
    }
}
