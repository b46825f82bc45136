// The edit mode of the selection, its sub-objects, and where tools stand.
#include "tests/interaction/selection_fixture.h"

namespace Tavo {
namespace {

using SelectionModes = SelectionFixture;

// A scene whose objects have controllers for the modes 1 and 2.
class SceneWithModes : public XScene {
public:
    SceneWithModes() {
        Register();
        New();
        object = CreateObject(XJoint::TypeID);
        other = CreateObject(XJoint::TypeID);
    }
    ~SceneWithModes() override { Unregister(); }
    bool querySupportsEditMode(XObject const&, int mode) const override { return mode == 1 || mode == 2; }

    XObject object, other;
};
std::vector<int> subObjects(XSelection const& selection) {
    Qelutils::Vector<int> out;
    selection.SubEntities().Integers(out);
    return out;
}
using Numbers = std::vector<int>;

// ---- the states ----

TEST_F(SelectionModes, AnObjectWithoutAControllerSupportsNoMode) {
    selection().Select(a).SetEditMode(1);
    EXPECT_EQ(selection().EditMode(), 0);
    scene().ChangeEditMode(1);
    EXPECT_EQ(selection().SubEntityType().Integer(), 0);
}

TEST_F(SelectionModes, OneObjectThatSupportsAModeTakesIt) {
    SceneWithModes s;
    XSelection selection = s.Selection();
    selection.SetEditMode(1);
    EXPECT_EQ(selection.SubEntityType().Integer(), 0);  // nothing is selected
    selection.Select(s.object).SetEditMode(3);
    EXPECT_EQ(selection.EditMode(), 0);
    selection.SetEditMode(1);
    EXPECT_EQ(selection.EditMode(), 1);
    EXPECT_TRUE(selection.IsSubObjectEditMode() && selection.IsSubObjectEditMode(s.object));
    EXPECT_FALSE(selection.IsObjectEditMode() || selection.IsSubObjectEditMode(s.other));
}

TEST_F(SelectionModes, TwoObjectsTakeNone) {
    SceneWithModes s;
    s.Selection().Append(s.object).Append(s.other).SetEditMode(1);
    EXPECT_EQ(s.Selection().SubEntityType().Integer(), 0);
}

TEST_F(SelectionModes, AnotherModeKeepsTheSubObjectsAndTheScenesChangeClearsThem) {
    SceneWithModes s;
    XSelection selection = s.Selection();
    selection.Select(s.object).SetEditMode(1).AppendSubObject(7).SetEditMode(2);
    EXPECT_EQ(selection.EditMode(), 2);
    EXPECT_EQ(subObjects(selection), Numbers{7});
    s.ChangeEditMode(1);
    EXPECT_EQ(selection.EditMode(), 1);
    EXPECT_TRUE(subObjects(selection).empty());
    s.ChangeEditMode(9);
    EXPECT_EQ(selection.EditMode(), 1);
}

TEST_F(SelectionModes, LeadBackToObjectsWithoutSubObjects) {
    SceneWithModes s;
    XSelection selection = s.Selection();
    std::function<void()> const ways[] = {[&] { selection.SetEditMode(0); },
                                          [&] { selection.Clear(); },
                                          [&] { selection.Select(s.object); },
                                          [&] { selection.Select(s.other); },
                                          [&] { selection.Select(s.MoveTool()); },
                                          [&] { selection.SelectAll(); },
                                          [&] { selection.SelectByType(L"x", IsObjectType); }};
    for (std::size_t i = 0; i < std::size(ways); ++i) {
        selection.Select(s.object).SetEditMode(2).AppendSubObject(3);
        ASSERT_EQ(selection.EditMode(), 2) << i;
        ways[i]();
        EXPECT_EQ(selection.EditMode() + selection.SubEntityType().Integer(), 0) << i;
        EXPECT_TRUE(subObjects(selection).empty()) << i;
    }
}

TEST_F(SelectionModes, ASecondObjectSuspendsTheModeAndItsGoingBringsItBack) {
    SceneWithModes s;
    XSelection selection = s.Selection();
    selection.Select(s.object).SetEditMode(2).AppendSubObject(3).AppendSubObject(1);
    selection.Append(s.other);
    EXPECT_EQ(selection.EditMode(), 0);
    EXPECT_EQ(selection.SubEntityType().Integer(), 2);
    selection.AppendSubObject(5).DeselectSubObject(3);
    EXPECT_FALSE(selection.IsSelectedSubObject(3));
    selection.Deselect(s.other);
    EXPECT_EQ(selection.EditMode(), 2);
    EXPECT_EQ(subObjects(selection), (Numbers{3, 1}));
    EXPECT_TRUE(selection.IsSelectedSubObject(3));
}

TEST_F(SelectionModes, NothingIsDeselectedWhileSubObjectsAreEdited) {
    selection().Select(a);
    setStoredMode(1);
    selection().Deselect(a).Deselect(a.Path()).Deselect(Paths{a.Path()}).Deselect(b);
    EXPECT_EQ(selected(), Objects{a});
    EXPECT_EQ(selection().EditMode(), 1);
    selection().Append(b);
    EXPECT_EQ(selected(), (Objects{a, b}));
    EXPECT_EQ(selection().EditMode(), 0);
}

TEST_F(SelectionModes, AStoredModeBelowZeroIsNeitherOfTheTwo) {
    selection().Select(a);
    setStoredMode(-1);
    EXPECT_EQ(selection().EditMode(), -1);
    EXPECT_FALSE(selection().IsObjectEditMode() || selection().IsSubObjectEditMode());
    EXPECT_TRUE(selection().IsSubObjectEditMode(a));
    EXPECT_FALSE(selection().IsSubObjectEditMode(b));
}

// ---- sub-objects ----

TEST_F(SelectionModes, SubObjectsAreKeptInOrderAndEachOnce) {
    selection().Select(a).AppendSubObject(1);
    EXPECT_EQ(selection().SubObjectCount(), 0);  // object mode
    setStoredMode(2);
    EXPECT_FALSE(selection().HasSelection());
    for (int index : {5, 2, 5, -1, 0, 2}) selection().AppendSubObject(index);
    EXPECT_EQ(subObjects(selection()), (Numbers{5, 2, 0}));
    EXPECT_TRUE(selection().HasSelection() && selection().IsSelectedSubObject(0));
    EXPECT_FALSE(selection().IsSelectedSubObject(1) || selection().IsSelectedSubObject(-1));
    for (int index : {2, -1, 9}) selection().DeselectSubObject(index);
    EXPECT_EQ(subObjects(selection()), (Numbers{5, 0}));
    EXPECT_FALSE(selection().IsSelectedSubObject(2));
    EXPECT_EQ(selection().Count(), 1);
}

TEST_F(SelectionModes, OfTwoEqualSubObjectsTheFirstIsDeselected) {
    selection().Select(a);
    setStoredMode(1);
    selection().SubEntities().SetInteger(Qelutils::Vector<int>{4, 1, 4, -3});
    selection().DeselectSubObject(4);
    EXPECT_EQ(subObjects(selection()), (Numbers{1, 4, -3}));
    selection().DeselectSubObject(-3);
    EXPECT_EQ(subObjects(selection()), (Numbers{1, 4, -3}));
    EXPECT_TRUE(selection().IsSelectedSubObject(4) && selection().IsSelectedSubObject(-3));
}

TEST_F(SelectionModes, ClearingSubObjectsLeavesTheMode) {
    selection().Select(a);
    setStoredMode(1);
    selection().AppendSubObject(3).ClearSubObjects();
    EXPECT_EQ(selection().SubObjectCount(), 0);
    EXPECT_EQ(selection().EditMode(), 1);
    selection().AppendSubObject(3);
    setStoredMode(0);
    EXPECT_EQ(selection().SubObjectCount(), 1);  // whatever the mode
    EXPECT_FALSE(selection().IsSelectedSubObject(3));
}

TEST_F(SelectionModes, AChangeOfTheModeIsAStepOfTheHistory) {
    SceneWithModes s;
    s.Selection().Select(s.object);
    s.ChangeEditMode(2);
    EXPECT_EQ(s.Selection().EditMode(), 2);
    s.Undo();
    EXPECT_EQ(s.Selection().EditMode(), 0);
    s.Redo();
    EXPECT_EQ(s.Selection().EditMode(), 2);
}

// ---- tool frames ----

TEST_F(SelectionModes, WithoutAPlaceTheToolStandsAtTheOrigin) {
    EXPECT_TRUE(selection().ObjectToolFrame().IsIdentity());
    EXPECT_TRUE(selection().ObjectToolFrameWorldAligned().IsIdentity());
    selection().Select(scene().SceneSettings());
    EXPECT_EQ(selection().Count(), 1);
    EXPECT_TRUE(selection().ObjectToolFrame().IsIdentity());
}

TEST_F(SelectionModes, TheToolStandsWhereTheLastObjectStandsWithoutItsScale) {
    XTransform(a).SetTranslation(9, 9, 9);
    XTransform last(joint(a));
    last.SetTranslation(1, 2, 3);
    last.RotationY().SetFloat(0.5f);
    for (XAttribute scale : {last.ScaleX(), last.ScaleY(), last.ScaleZ()}) scale.SetFloat(4);
    selection().Append(b).Append(last);
    XMatrix const frame = selection().ObjectToolFrame();
    EXPECT_TRUE(frame.IsEqual(last.WorldMatrix().Matrix().Orthonormalize(), 1e-6f));
    EXPECT_TRUE(frame.Scale().IsEqual(XVector3(1, 1, 1), 1e-5f));
    EXPECT_TRUE(frame.Translation().IsEqual(XVector3(10, 11, 12), 1e-5f));
    XMatrix const aligned = selection().ObjectToolFrameWorldAligned();
    EXPECT_TRUE(aligned.IsEqual(XMatrix().SetTranslation(10, 11, 12), 1e-5f));
}

TEST_F(SelectionModes, AShapeLendsItsParentsPlace) {
    XTransform parent(c.Parent());
    ASSERT_TRUE(parent.IsValid());
    parent.SetTranslation(1, 0, 5);
    selection().Select(c);
    EXPECT_TRUE(selection().ObjectToolFrame().IsEqual(XMatrix().SetTranslation(1, 0, 5), 1e-6f));
}

// Stands for the type of physics bodies, which are told by their type word.
class Body : public XTyped<Body, XShape, sg::PhysicsBodyNode> {
public:
    static constexpr XWord TypeID = L"PhysicsBody";
    using XTyped::XTyped;
};

TEST_F(SelectionModes, APhysicsBodyIsScaledAlongItsOwnAxesAndNothingElseIs) {
    if (!scene().ObjectDefinition(Body::TypeID)) scene().CoreModule().Register(new XTypedDef<Body>);
    XObject const body = scene().CreateObject(Body::TypeID);
    for (XObject const& each : {body, c}) {
        XTransform parent(each.Parent());
        ASSERT_TRUE(parent.IsValid());
        parent.RotationY().SetFloat(0.5f);
        parent.SetTranslation(1, 2, 3);
        selection().Select(each);
        for (unsigned tool = 0; tool < 7; ++tool) {
            scene().SetActiveTool(tool);
            XMatrix const frame = selection().ObjectToolFrame(), aligned = selection().ObjectToolFrameWorldAligned();
            bool const isOwn = tool == ScaleTool && each == body;
            EXPECT_TRUE(aligned.IsEqual(isOwn ? frame : XMatrix().SetTranslation(1, 2, 3), 1e-5f)) << tool;
            EXPECT_FALSE(frame.IsEqual(XMatrix().SetTranslation(1, 2, 3), 1e-3f)) << tool;
        }
    }
}

TEST_F(SelectionModes, WithoutAControllerSubObjectsHaveNoFrame) {
    XTransform(a).SetTranslation(1, 2, 3);
    selection().Select(a);
    for (int mode : {0, 1}) {
        setStoredMode(mode);
        EXPECT_TRUE(selection().SubObjectToolFrame(0.01f).IsIdentity());
        EXPECT_TRUE(selection().SubObjectToolFrameWorldAligned(0.01f).IsIdentity());
    }
}

}  // namespace
}  // namespace Tavo
