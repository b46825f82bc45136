// Names among siblings: the smallest free number, and what makes and fills gaps.
#include "tests/qel/db/fixture.h"

namespace db::test {
namespace {

struct Names : Fixture {
    std::wstring next(wchar_t const* wanted = L"Joint") { return database.makeUniqueName(nullptr, wanted); }
};

TEST_F(Names, AskingDoesNotTakeANumber) {
    make(L"Joint");
    EXPECT_EQ(next(), L"Joint1");
    EXPECT_EQ(next(), L"Joint1");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint1");
    EXPECT_EQ(next(), L"Joint2");
}

TEST_F(Names, GapsAreFilledFromBelow) {
    std::vector<Node*> nodes;
    for (int i = 0; i < 6; ++i) nodes.push_back(make(L"Joint"));
    nodes[4]->remove();
    nodes[2]->setName(L"Else");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint2");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint4");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint6");
}

TEST_F(Names, NumbersGivenByHandAreSkipped) {
    make(L"Joint");
    make(L"Joint")->setName(L"Joint2");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint1");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint3");
}

TEST_F(Names, AFreedNumberBelongsToBothStems) {
    make(L"a"), make(L"a1");
    Node* twelve = make(L"a12");
    make(L"a11");
    EXPECT_EQ(next(L"a1"), L"a13");
    twelve->setName(L"x");
    EXPECT_EQ(next(L"a1"), L"a12");
    for (int i = 2; i < 11; ++i) make(L"a");
    EXPECT_EQ(next(L"a"), L"a12");
}

TEST_F(Names, ANodeDoesNotStandInItsOwnWay) {
    make(L"a");
    Node* one = make(L"a");
    one->setName(L"a");
    EXPECT_EQ(one->getNodeName(), L"a1");
    make(L"a");
    make(L"a");
    one->setName(L"a");
    EXPECT_EQ(one->getNodeName(), L"a1");
}

TEST_F(Names, ZeroAndLeadingZerosAreNotNumbers) {
    make(L"a"), make(L"a0"), make(L"a01");
    EXPECT_EQ(next(L"a"), L"a1");
    make(L"a999999999999");
    EXPECT_EQ(next(L"a"), L"a1");
}

TEST_F(Names, UndoAndRedoGiveNumbersBack) {
    makeStep(L"Joint");
    Node* one = makeStep(L"Joint");
    database.undo();
    EXPECT_EQ(next(), L"Joint1");
    database.redo();
    EXPECT_EQ(next(), L"Joint2");
    step([&] { one->setName(L"Hip"); });
    EXPECT_EQ(watcher.renamed, std::vector<Node*>{one});
    EXPECT_EQ(next(), L"Joint1");
    database.undo();
    EXPECT_EQ(next(), L"Joint2");
    EXPECT_EQ(database.findNodeByPath(L"Joint1"), one);
    EXPECT_EQ(database.findNodeByPath(L"Hip"), nullptr);
    for (int i = 0; i < 1000; ++i) database.redo(), database.undo();
    EXPECT_EQ(next(), L"Joint2");
}

TEST_F(Names, TwoNodesSwapTheirNames) {
    Node *a = makeStep(L"a"), *b = makeStep(L"b");
    step([&] { a->setName(L"x"), b->setName(L"a"), a->setName(L"b"); });
    EXPECT_EQ(database.findNodeByPath(L"a"), b);
    database.undo();
    EXPECT_EQ(database.findNodeByPath(L"a"), a);
    database.redo();
    EXPECT_EQ(database.findNodeByPath(L"b"), a);
}

TEST_F(Names, AMoveMakesTheNameUniqueAndUndoGivesItBack) {
    Node *p = makeStep(L"p"), *a = makeStep(L"a");
    step([&] { p->addChild(*a); });
    Node* b = makeStep(L"a");
    step([&] { p->addChild(*b); });
    EXPECT_EQ(b->getPath(), L"p|a1");
    database.undo();
    EXPECT_EQ(b->getPath(), L"a");
}

TEST_F(Names, WritingTheNameAttributeRenames) {
    Node* a = makeStep(L"a");
    makeStep(L"b");
    step([&] { a->nameAttribute() = L"b"; });
    EXPECT_EQ(a->getNodeName(), L"b1");
    EXPECT_EQ(a->getName(), L"b1");
    EXPECT_EQ(database.findNodeByPath(L"b1"), a);
}

TEST_F(Names, TheWholeTextCountsCaseIncluded) {
    make(L"joint");
    EXPECT_EQ(make(L"Joint")->getNodeName(), L"Joint");
    EXPECT_EQ(make(L"Größe")->getNodeName(), L"Größe");
    EXPECT_EQ(make(L"Größe")->getNodeName(), L"Größe1");
}

TEST_F(Names, SeveralMayBeNameless) {
    Node *a = make(L""), *b = make(L"");
    EXPECT_EQ(a->getNodeName(), L"");
    EXPECT_EQ(b->getNodeName(), L"");
    a->setName(L"a");
    a->setName(L"");
    EXPECT_EQ(database.findChild(L""), nullptr);
}

}  // namespace
}  // namespace db::test
