// From the selected objects to their relatives, and to all objects of a kind.
#include "tests/interaction/selection_fixture.h"

namespace Tavo {
namespace {

class SelectionWalk : public SelectionFixture {
protected:
    XObject p = joint(), x = joint(p), y = joint(p), z = joint(p);
};

TEST_F(SelectionWalk, TwoChildrenOfOneParentLeaveItSelectedOnce) {
    selection().Append(x).Append(z).SelectParent();
    EXPECT_EQ(selected(), Objects{p});
    selection().SelectParent();
    EXPECT_EQ(selected(), Objects{scene().RootObject()});
}

TEST_F(SelectionWalk, WithoutAParentThatCanBeSelectedNothingChanges) {
    XObject const root = scene().RootObject();
    XObject const below = toolBelow(p);
    XObject const leaf = joint();
    below.getNode()->addChild(*leaf.getNode());
    leaf.Parent().getNode()->removeChild(*leaf.getNode());
    ASSERT_EQ(leaf.Parent(), below);
    selection().Append(root).Append(leaf).SelectParent();
    EXPECT_EQ(selected(), (Objects{root, leaf}));
}

TEST_F(SelectionWalk, WhoHasNoSuccessorGoesWhenAnotherHasOne) {
    selection().Append(scene().RootObject()).Append(x).SelectParent();
    EXPECT_EQ(selected(), Objects{p});
    XObject const child = joint(y);
    selection().Select(Qelutils::Vector<XObject>{x, y, z}).SelectChild();
    EXPECT_EQ(selected(), Objects{child});
    selection().SelectChild();
    EXPECT_EQ(selected(), Objects{child});  // has no child
}

TEST_F(SelectionWalk, TheFirstChildIsTaken) {
    selection().Append(p).Append(a).SelectChild();
    EXPECT_EQ(selected(), (Objects{x, b}));
}

TEST_F(SelectionWalk, AFirstChildThatCannotBeSelectedIsNotReplacedByTheNext) {
    XObject const q = joint();
    toolBelow(q);
    joint(q);
    selection().Select(q).SelectChild();
    EXPECT_EQ(selected(), Objects{q});
}

TEST_F(SelectionWalk, SiblingsWrapAroundInBothDirections) {
    struct {
        XObject from, next, previous;
    } const rows[] = {{x, y, z}, {y, z, x}, {z, x, y}};
    for (auto const& row : rows) {
        EXPECT_EQ(row.from.Next(), row.next);
        EXPECT_EQ(row.from.Previous(), row.previous);
        selection().Select(row.from).SelectNext();
        EXPECT_EQ(selected(), Objects{row.next});
        selection().Select(row.from).SelectPrevious();
        EXPECT_EQ(selected(), Objects{row.previous});
    }
    selection().Select(Qelutils::Vector<XObject>{x, z}).SelectNext();
    EXPECT_EQ(selected(), (Objects{y, x}));
}

TEST_F(SelectionWalk, AnOnlyChildStays) {
    selection().Select(b);
    setStoredMode(0);
    inOneStep([] { selection().SelectNext().SelectPrevious(); });
    EXPECT_EQ(selected(), Objects{b});
    EXPECT_EQ(b.SiblingCount(), 0);
}

TEST_F(SelectionWalk, SiblingsThatCannotBeSelectedArePassedOver) {
    toolBelow(p), toolBelow(p);
    selection().Select(z).SelectNext();
    EXPECT_EQ(selected(), Objects{x});
    selection().SelectPrevious();
    EXPECT_EQ(selected(), Objects{z});
}

TEST_F(SelectionWalk, AmongToolsAloneTheObjectItselfIsSelectedAgain) {
    XObject const q = joint(), only = joint(q);
    toolBelow(q), toolBelow(q);
    selection().Append(only).Append(scene().RootObject());
    selection().Select(only).SelectNext();
    EXPECT_EQ(selected(), Objects{only});
    selection().SelectPrevious();
    EXPECT_EQ(selected(), Objects{only});
}

// A further parent shows a child whose own siblings are others: their circle does not lead back.
TEST_F(SelectionWalk, ASiblingWithOtherSiblingsOfItsOwnEndsTheWalk) {
    XObject const q = joint(), only = joint(q), home = joint(), tool = toolBelow(home);
    toolBelow(home);
    q.getNode()->addChild(*tool.getNode());
    ASSERT_EQ(tool.Parent(), home);
    ASSERT_EQ(only.SiblingCount(), 1);
    selection().Select(only).SelectNext();
    EXPECT_EQ(selected(), Objects{only});
}

TEST_F(SelectionWalk, NothingHappensWhileSubObjectsAreEdited) {
    selection().Select(y);
    setStoredMode(1);
    selection().SelectParent().SelectChild().SelectNext().SelectPrevious();
    EXPECT_EQ(selected(), Objects{y});
    EXPECT_EQ(selection().EditMode(), 1);
}

TEST_F(SelectionWalk, WhatIsGoneIsPassedOver) {
    selection().Append(x).Append(y);
    x.getNode()->remove();
    selection().SelectNext();
    EXPECT_EQ(selected(), Objects{z});
}

TEST_F(SelectionWalk, IsOneStepOfTheHistory) {
    selection().Append(x).Append(y);
    scene().SceneGraph()->ClearUndoHistory();
    selection().SelectParent();
    EXPECT_EQ(undoCount(), 1);
    scene().Undo();
    EXPECT_EQ(selected(), (Objects{x, y}));
}

// ---- of a kind ----

TEST_F(SelectionWalk, AllAreTransformsInTheOrderOfTheDatabaseAndThenShapes) {
    XObject const group = scene().CreateObject(XDisplayGroup::TypeID);
    selection().Select(group).SelectAll();
    Objects const all = selected();
    std::size_t shapes = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_TRUE(all[i].SupportsType(XTransform::TypeID) || all[i].SupportsType(XShape::TypeID));
        if (all[i].SupportsType(XShape::TypeID)) ++shapes;
        if (i == 0) continue;
        bool const isBoundary = all[i].SupportsType(XShape::TypeID) && !all[i - 1].SupportsType(XShape::TypeID);
        EXPECT_TRUE(all[i - 1] < all[i] || isBoundary) << i;
    }
    EXPECT_EQ(shapes, 2u);  // the scene's grid and another
    for (XObject const& each : {a, b, c, p, XObject(scene().RootObject()), XObject(scene().TopCamera())})
        EXPECT_TRUE(selection().IsSelected(each)) << each.Path().size();
    EXPECT_FALSE(selection().IsSelected(group) || selection().IsSelected(scene().MoveTool()));
}

TEST_F(SelectionWalk, WithNothingToSelectAllIsNone) {
    class Bare : public XScene {
    public:
        void OnlySelection() {
            New();
            XSelection const kept = Selection();
            Qelutils::Vector<XObject> objects;
            Objects(objects);
            for (XObject const& each : objects)
                if (each != kept && each.getNode()) each.getNode()->remove();
        }
    } bare;
    bare.Register();
    bare.OnlySelection();
    bare.Selection().Entities().AddObjectRef(bare.Selection());
    bare.Selection().SubEntityType().SetInteger(2);
    bare.Selection().SubEntities().AddInteger(1);
    bare.Selection().SelectAll();
    EXPECT_EQ(bare.Selection().Count() + bare.Selection().SubObjectCount(), 0);
    EXPECT_EQ(bare.Selection().SubEntityType().Integer(), 0);
    bare.Unregister();
}

TEST_F(SelectionWalk, ByTypeTakesTheExactTypeOrAllThatDeriveFromIt) {
    selection().Select(c).SelectByType(XJoint::TypeID, IsObjectType);
    EXPECT_EQ(selected(), (Objects{a, b, p, x, y, z}));
    selection().SelectByType(XShape::TypeID, IsObjectType);
    EXPECT_TRUE(selected().empty());
    selection().SelectByType(XShape::TypeID, SupportsObjectType);
    EXPECT_EQ(selected(), (Objects{scene().Grid(), c}));
    selection().SelectByType(XTool::TypeID, SupportsObjectType);
    EXPECT_TRUE(selected().empty());
    selection().Select(a).SelectByType(L"Nothing", SupportsObjectType);
    EXPECT_TRUE(selected().empty());
    EXPECT_TRUE(log.entries.empty());
}

}  // namespace
}  // namespace Tavo
