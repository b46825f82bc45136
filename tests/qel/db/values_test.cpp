// Every kind of value and array: its default, and that a write is undone and redone.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct EveryKind : Fixture {
    // Calls f for every attribute of one node that has a value of its own, children of compounds included.
    template<class F> void forAll(F const& f) {
        Node* n = makeStep(L"n");
        for (std::size_t row = 1; row < allDef().layout().rows.size(); ++row) {
            Attribute& a = *database.lookupAttribute(n->getID() + 1 + int(row));
            if (a.isCompound() || a.isAttributeArray()) continue;
            SCOPED_TRACE(std::string("row ") + std::to_string(row));
            f(n, a);
        }
    }
    AnyValue one(Node* n, Attribute& a) {
        if (hasReferences(a)) return {{double(n->getID())}, {}};
        return randomValue(a, random);
    }
    std::mt19937 random{7};
};

TEST_F(EveryKind, StartsWithItsDefault) {
    forAll([](Node*, Attribute& a) {
        EXPECT_TRUE(a.isDefaultValue());
        EXPECT_EQ(read(a), isSeveral(a) ? AnyValue() : defaultOf(a));
    });
}

TEST_F(EveryKind, IsWrittenUndoneAndRedone) {
    forAll([&](Node* n, Attribute& a) {
        AnyValue const before = read(a), after = one(n, a);
        step([&] { write(a, after); });
        EXPECT_EQ(read(a), after);
        EXPECT_TRUE(database.undo());
        EXPECT_EQ(read(a), before);
        EXPECT_TRUE(database.redo());
        EXPECT_EQ(read(a), after);
    });
}

TEST_F(EveryKind, GoesBackToItsDefaultAndThatIsUndone) {
    forAll([&](Node* n, Attribute& a) {
        AnyValue const value = one(n, a);
        step([&] { write(a, value); });
        step([&] { a.setToDefaultValue(); });
        EXPECT_TRUE(a.isDefaultValue());
        database.undo();
        EXPECT_EQ(read(a), value);
    });
}

TEST_F(EveryKind, IsAssignedFromItsOwnKindAlone) {
    Node* from = makeStep(L"from");
    forAll([&](Node* n, Attribute& a) {
        Attribute& source = *database.lookupAttribute(from->getID() + (a.getID() - n->getID()));
        write(source, one(n, source));
        EXPECT_TRUE(a.assign(source));
        EXPECT_TRUE(a.compare(source));
        Attribute& other = *n->findAttribute(a.isBool() ? L"Float" : L"Boolean");
        EXPECT_FALSE(a.assign(other));
        EXPECT_FALSE(a.compare(other));
    });
}

TEST_F(EveryKind, AnswersToItsOwnKindAlone) {
    forAll([](Node*, Attribute& a) {
        int answers = 0;
#define DB_COUNT(name, type, kind) answers += a.as##name() != nullptr && a.is##name();
        DB_VALUE_KINDS(DB_COUNT)
#undef DB_COUNT
        EXPECT_EQ(answers, 1);
        EXPECT_EQ(a.asArray() != nullptr, a.isArray());
        EXPECT_EQ(a.asSingleValue() != nullptr, a.isSingleValue());
        EXPECT_NE(a.isSingleValue(), isSeveral(a));
        EXPECT_EQ(a.asComposite(), nullptr);
        EXPECT_EQ(a.asDatabase(), nullptr);
    });
}

TEST_F(EveryKind, IsFoundByItsPathAndItsID) {
    forAll([&](Node* n, Attribute& a) {
        EXPECT_EQ(n->findAttribute(a.getLocalPathName()), &a);
        EXPECT_EQ(database.lookupAttribute(a.getID()), &a);
        EXPECT_EQ(a.getParentNode(), n);
        EXPECT_EQ(a.getParentAttribute()->asComposite()->getAttribute(std::size_t(a.getIndex())), &a);
    });
}

struct Values : Fixture {};

TEST_F(Values, AWriteBeforeAndAfterARemovalInOneStepIsUndoneWithIt) {
    Node* n = makeStep(L"n");
    step([&] {
        number(n).setValue(2);
        n->remove();
        number(n).setValue(3);
    });
    database.undo();
    EXPECT_EQ(number(n).getValue(), 0.5f);
}

TEST_F(Values, WhatAnEarlierStepRemovedTakesNoWrites) {
    Node* n = makeStep(L"n");
    step([&] { elements(n).add(), numbers(n).resize(3); });
    step([&] { n->remove(); });
    step([&] {
        number(n).setValue(9);
        n->setName(L"other");
        EXPECT_FALSE(numbers(n).setElement(1, 0));
        EXPECT_FALSE(numbers(n).insert(1, 0));
        EXPECT_FALSE(numbers(n).removeAt(0));
        numbers(n).resize(7);
        EXPECT_EQ(elements(n).add(), nullptr);
        EXPECT_FALSE(elements(n).removeAt(0));
        elements(n).resize(4);
        EXPECT_EQ(n->addDynamicBool(L"x", true), nullptr);
    });
    EXPECT_EQ(database.getUndoLabel(), L"step");
    EXPECT_EQ(database.getUndoCount(), 3u);
    database.undo();
    EXPECT_EQ(number(n).getValue(), 0.5f);
    EXPECT_EQ(numbers(n).size(), 3u);
    EXPECT_EQ(elements(n).size(), 1u);
}

TEST_F(Values, AnEnumerationKnowsItsWords) {
    Node* n = makeStep(L"n");
    AttributeDef const& def = n->findAttribute(L"Enumeration")->getDef();
    ASSERT_EQ(def.getStrings().size(), 3u);
    EXPECT_STREQ(def.getString(2), L"Blue");
    EXPECT_STREQ(def.getString(3), L"");
    EXPECT_STREQ(def.getString(-1), L"");
}

TEST_F(Values, ACompoundIsComparedAssignedAndResetAsAWhole) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b");
    auto* from = a->findAttribute(L"Compound")->asCompound();
    auto* to = b->findAttribute(L"Compound")->asCompound();
    ASSERT_TRUE(from && to);
    step([&] { a->findAttribute(L"Compound.First")->asFloat()->setValue(4); });
    EXPECT_FALSE(from->compare(*to));
    EXPECT_FALSE(from->isDefaultValue());
    step([&] { EXPECT_TRUE(to->assign(*from)); });
    EXPECT_TRUE(from->compare(*to));
    step([&] { to->setToDefaultValue(); });
    EXPECT_TRUE(to->isDefaultValue());
    database.undo();
    EXPECT_TRUE(from->compare(*to));
    EXPECT_FALSE(to->assign(*b->findAttribute(L"Float")));
}

TEST_F(Values, AChildOfACompoundIsListedAlone) {
    Node* n = makeStep(L"n");
    Attribute* child = n->findAttribute(L"Compound.Second");
    step([&] { child->asString()->setValue(L"new"); });
    EXPECT_EQ(watcher.attributes, std::vector<Attribute*>{child});
}

TEST_F(Values, TheDatabaseHasNoNameAttributeAndAnswersWithItsOwn) {
    database.setName(L"scene");
    EXPECT_EQ(database.getNodeName(), L"scene");
    EXPECT_EQ(database.getName(), L"scene");
    EXPECT_TRUE(database.isDatabase());
    EXPECT_FALSE(database.remove());
    EXPECT_EQ(database.lookupNode(database.getID()), &database);
    EXPECT_EQ(database.getPath(), L"");
}

TEST_F(Values, ABadLookupGivesNull) {
    Node* n = makeStep(L"n");
    for (int id : {-1, -2000000000, 1 << 30, n->getID() + 1000})
        EXPECT_TRUE(!database.lookupNode(id) && !database.lookupAttribute(id)) << id;
    EXPECT_EQ(database.lookupNode(n->getID() + 1), nullptr);
    for (wchar_t const* path : {L"", L".", L"Nothing", L"Float.x", L"Elements[0]", L"Elements[", L"Elements[x].First",
                                L"Elements[]", L"Elements[99999999999]", L"Compound.", L"Compound..First"})
        EXPECT_EQ(n->findAttribute(path), nullptr);
    for (wchar_t const* path : {L"", L"|", L"n|", L"|n", L"n||n", L"m"})
        EXPECT_EQ(database.findNodeByPath(path), nullptr);
    EXPECT_EQ(n->getAttribute(1000), nullptr);
    EXPECT_EQ(n->getChild(0), nullptr);
    EXPECT_EQ(database.createNode(Database::Def, L"x"), nullptr);
}

}  // namespace
}  // namespace db::test
