// Attributes that a node gets at run time.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct Dynamic : Fixture {
    Node* n = makeStep(L"n");
};

TEST_F(Dynamic, EachKindStartsWithWhatItWasGiven) {
    Qelp::Matrix34 m;
    m.m[3][0] = 5;
    step([&] {
        EXPECT_EQ(n->addDynamicBool(L"bool", true)->asBool()->getValue(), true);
        EXPECT_EQ(n->addDynamicInt(L"int", 3, 0, 9)->asInt()->getValue(), 3);
        EXPECT_EQ(n->addDynamicFloat(L"float", 1.5f, 0, 2)->asFloat()->getValue(), 1.5f);
        EXPECT_EQ(n->addDynamicString(L"string", L"s")->asString()->getValue(), L"s");
        EXPECT_EQ(n->addDynamicVector3(L"vector", {1, 2, 3})->asVector3()->getValue(), (Qelp::Vector3{1, 2, 3}));
        EXPECT_EQ(n->addDynamicMatrix34(L"matrix", m)->asMatrix34()->getValue(), m);
        EXPECT_EQ(n->addDynamicBoolArray(L"bools", true)->asBoolArray()->getDefaultElement(), true);
        EXPECT_EQ(n->addDynamicIntArray(L"ints", 4, 0, 9)->asIntArray()->getDefaultElement(), 4);
        EXPECT_EQ(n->addDynamicFloatArray(L"floats", 4, 0, 9)->asFloatArray()->getDefaultElement(), 4);
        EXPECT_EQ(n->addDynamicStringArray(L"strings", L"s")->asStringArray()->getDefaultElement(), L"s");
        EXPECT_EQ(n->addDynamicVector3Array(L"vectors", {1, 2, 3})->asVector3Array()->getDefaultElement(),
                  (Qelp::Vector3{1, 2, 3}));
        EXPECT_EQ(n->addDynamicMatrix34Array(L"matrices", m)->asMatrix34Array()->getDefaultElement(), m);
    });
    std::vector<Attribute*> all;
    n->getDynamicAttributes(all);
    ASSERT_EQ(all.size(), 12u);
    for (Attribute* a : all) {
        EXPECT_TRUE(a->isDynamic() && a->isDefaultValue());
        EXPECT_EQ(n->findAttribute(a->getName()), a);
        EXPECT_EQ(n->getAttribute(std::size_t(a->getIndex())), a);
        EXPECT_EQ(a->getParentAttribute(), n);
        EXPECT_EQ(a->getLocalPathName(), a->getName());
    }
    EXPECT_EQ(n->findAttribute(L"int")->getDef().maximum, 9);
    database.undo();
    EXPECT_EQ(n->dynamicCount(), 0u);
    EXPECT_EQ(n->findAttribute(L"int"), nullptr);
    database.redo();
    EXPECT_EQ(n->findAttribute(L"matrix"), all[5]);
}

TEST_F(Dynamic, ATakenOrEmptyNameIsRefused) {
    EXPECT_NE(n->addDynamicBool(L"x", true), nullptr);
    EXPECT_EQ(n->addDynamicInt(L"x", 1, 0, 1), nullptr);
    EXPECT_EQ(n->addDynamicInt(L"Float", 1, 0, 1), nullptr);
    EXPECT_EQ(n->addDynamicInt(L"", 1, 0, 1), nullptr);
    EXPECT_EQ(n->addDynamic(AttributeType::Compound, L"y"), nullptr);
    EXPECT_EQ(n->addDynamic(AttributeType::None, L"y"), nullptr);
}

TEST_F(Dynamic, OneIsRemovedAndComesBackToItsPlace) {
    step([&] {
        for (wchar_t const* name : {L"x", L"y", L"z"}) n->addDynamicFloat(name, 1, 0, 2);
    });
    Attribute* y = n->findAttribute(L"y");
    int const id = y->getID(), index = y->getIndex();
    step([&] { y->asFloat()->setValue(2); });
    step([&] { EXPECT_TRUE(y->remove()); });
    EXPECT_EQ(watcher.removedAttributes, std::vector<Attribute*>{y});
    EXPECT_EQ(n->findAttribute(L"y"), nullptr);
    EXPECT_TRUE(y->isRemoved());
    EXPECT_EQ(n->findAttribute(L"z")->getIndex(), index);
    step([&] { EXPECT_NE(n->addDynamicBool(L"y", true), nullptr) << "the name is free"; });
    database.undo();
    database.undo();
    EXPECT_EQ(database.lookupAttribute(id), y);
    EXPECT_EQ(y->getIndex(), index);
    EXPECT_EQ(y->asFloat()->getValue(), 2);
}

TEST_F(Dynamic, AFixedAttributeStays) {
    EXPECT_FALSE(number(n).remove());
    EXPECT_FALSE(n->findAttribute(L"Compound")->remove());
    EXPECT_FALSE(n->findAttribute(L"Compound.First")->isDynamic());
}

TEST_F(Dynamic, ANameMayHaveDots) {
    Attribute* a = n->addDynamicFloat(L"a.b", 1, 0, 2);
    EXPECT_EQ(n->findAttribute(L"a.b"), a);
}

TEST_F(Dynamic, TheyGoAndReturnWithTheirNode) {
    step([&] { n->addDynamicFloat(L"x", 1, 0, 2); });
    AttributeHandle x(n->findAttribute(L"x"));
    step([&] { n->remove(); });
    EXPECT_EQ(x.getRef(), nullptr);
    database.undo();
    EXPECT_EQ(x.getRef(), n->findAttribute(L"x"));
}

}  // namespace
}  // namespace db::test
