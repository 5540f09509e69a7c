#include "qn/core/ClassManagerBase.h"
#include "qn/core/Exception.h"
#include "qn/core/Library.h"
#include "qn/core/String.h"
#include "qn/sync/Mutex.h"
#include "qn/sync/ReaderWriterLock.h"

#include <gtest/gtest.h>

#include <string>

using namespace qn;

namespace {

class Base : public Object {};
class Derived : public Base {};

Object* makeBase() {
    return new Base;
}
Object* makeDerived() {
    return new Derived;
}

std::u16string textOf(const String& s) {
    return std::u16string(s.getData(), static_cast<size_t>(s.getLength()));
}

} // namespace

TEST(ClassRegistry, FirstRegistrationOfANameWins) {
    ClassManagerBase registry;
    registry.registerClass(u"Test::Base", typeid(Base), &makeBase);
    registry.registerClass(u"Test::Base", typeid(Derived), &makeDerived);
    const Class* c = registry.lookupName(u"Test::Base");
    EXPECT_EQ(c->getType(), typeid(Base));
    Reference<Object> made = c->createInstance();
    const Object& instance = *made;
    EXPECT_EQ(typeid(instance), typeid(Base));
    EXPECT_EQ(made->GetRefCount(), 1u);
    EXPECT_EQ(registry.size(), 1u);
    // The second row's type was not registered under any name.
    EXPECT_THROW(registry.lookupType(typeid(Derived)), ClassNotFoundException);
}

TEST(ClassRegistry, WalksNamesInOrdinalOrderUntilTheVisitorStops) {
    ClassManagerBase registry;
    registry.registerClass(u"b", typeid(Base), nullptr);
    registry.registerClass(u"B", typeid(Derived), nullptr);
    registry.registerClass(u"a", typeid(int), nullptr);
    std::u16string order;
    registry.forEach([&order](const Class& c) {
        order += c.getName();
        return true;
    });
    EXPECT_EQ(order, u"Bab"); // ordinal: upper case before lower case
    int visited = 0;
    registry.forEach([&visited](const Class&) { return ++visited < 2; });
    EXPECT_EQ(visited, 2);
}

TEST(ClassRegistry, NamesAreExactCaseAndMissesNameTheKey) {
    ClassManagerBase registry;
    registry.registerClass(u"Test::Base", typeid(Base), nullptr);
    registry.registerClass(u"Test::Basf", typeid(Derived), nullptr);
    EXPECT_NO_THROW(registry.lookupName(u"Test::Base"));
    try {
        registry.lookupName(u"test::base");
        FAIL();
    } catch (const ClassNotFoundException& e) {
        EXPECT_EQ(textOf(e.getDescription()), u"test::base");
    }
    EXPECT_THROW(registry.lookupName(u"Test::Bas"), ClassNotFoundException);
    EXPECT_THROW(registry.lookupName(u"Test::Basez"), ClassNotFoundException);
    try {
        registry.lookupType(typeid(int));
        FAIL();
    } catch (const ClassNotFoundException& e) {
        EXPECT_EQ(textOf(e.getDescription()), u"int");
    }
}

TEST(ClassRegistry, IsInstanceIsAnExactTypeMatch) {
    ClassManagerBase registry;
    registry.registerClass(u"Test::Base", typeid(Base), &makeBase);
    registry.registerClass(u"Test::Derived", typeid(Derived), &makeDerived);
    Reference<Object> base(new Base), derived(new Derived);
    const Class* baseClass = registry.lookupType(typeid(Base));
    EXPECT_TRUE(baseClass->isInstance(*base));
    EXPECT_FALSE(baseClass->isInstance(*derived));
    EXPECT_TRUE(registry.lookupName(u"Test::Derived")->isInstance(*derived));
}

TEST(ClassRegistry, BuiltinTableRulesHold) {
    // Duplicated rows: the first, with a factory, wins.
    Reference<Object> made = Class::forName(u"qn::IntDivByZeroException")->createInstance();
    EXPECT_NE(dynamic_cast<IntDivByZeroException*>(made.get()), nullptr);

    Reference<Object> timeout = Class::forName(u"qn::io::TimeoutException")->createInstance();
    auto* e = dynamic_cast<io::TimeoutException*>(timeout.get());
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->getDescription().getLength(), 0);

    EXPECT_THROW(Class::forName(u"qn::AccessViolationException")->createInstance(),
                 IllegalAccessException);
    EXPECT_THROW(Class::forName(u"CQNNumber")->createInstance(), IllegalAccessException);

    // Renamed rows resolve to their classes; getClass works for every exception.
    EXPECT_EQ(Class::forName(u"CQNSyncObject")->getType(), typeid(sync::Object));
    EXPECT_EQ(Class::forName(u"CQNRWLock")->getType(), typeid(sync::ReaderWriterLock));
    EXPECT_EQ(std::u16string(io::UnexpectedEOFException().getClass()->getName()),
              u"qn::io::UnexpectedEOFException");
    EXPECT_EQ(std::u16string(OutOfMemoryException().getClass()->getName()),
              u"qn::OutOfMemoryException");
    EXPECT_THROW(ResultException().getClass(), ClassNotFoundException); // not in the table
}
