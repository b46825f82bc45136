#include "tests/app/fixture.h"
#include "tests/app/recorder.h"

namespace Tavo {
namespace {

using Events = std::vector<std::string>;

class Selection : public StartedApplication {
protected:
    static XSelection selection() { return scene().Selection(); }
    static std::vector<XObject> selected() {
        Qelutils::Vector<XObject> out;
        selection().Objects(out);
        return {out.begin(), out.end()};
    }
    XObject a = scene().CreateObject(XJoint::TypeID), b = scene().CreateObject(XJoint::TypeID, a),
            c = scene().CreateObject(XGrid::TypeID);
};

TEST_F(Selection, KeepsTheOrderAndEachObjectOnce) {
    selection().Append(b).Append(a).Append(b).Append(c).Append(a);
    EXPECT_EQ(selected(), (std::vector<XObject>{b, a, c}));
    EXPECT_EQ(selection().Count(), 3);
    EXPECT_EQ(selection().Object(0), b);
    for (int index : {-1, 3}) EXPECT_FALSE(selection().Object(index).IsValid());
}

TEST_F(Selection, SelectingReplacesAndAnInvalidObjectChangesNothing) {
    selection().Append(a).Append(b).Select(c);
    EXPECT_EQ(selected(), std::vector<XObject>{c});
    selection().Select(XObject::Undefined).Append(XObject::Undefined);
    EXPECT_EQ(selected(), std::vector<XObject>{c});
    selection().Deselect(a).Deselect(c);
    EXPECT_TRUE(selected().empty());
}

TEST_F(Selection, TakesNoTools) {
    for (XObject const& tool : {XObject(scene().SelectTool()), XObject(scene().TimingTool())}) {
        EXPECT_FALSE(XSceneObject(tool).SupportsSelection());
        selection().Append(tool);
    }
    EXPECT_EQ(selection().Count(), 0);
}

TEST_F(Selection, IsOneStepOfTheHistory) {
    scene().SceneGraph()->ClearUndoHistory();
    selection().Append(a);
    selection().Select(b);
    selection().Clear();
    EXPECT_EQ(undoCount(), 3);
    scene().Undo();
    EXPECT_EQ(selected(), std::vector<XObject>{b});
    scene().Undo();
    EXPECT_EQ(selected(), std::vector<XObject>{a});
}

TEST_F(Selection, TheObjectsSideSaysTheSame) {
    XSceneObject object(a), other(b);
    object.Select();
    other.SelectAppend();
    EXPECT_TRUE(object.IsSelected() && other.IsSelected());
    EXPECT_TRUE(other.IsParentSelected());
    object.Deselect();
    EXPECT_FALSE(object.IsSelected() || other.IsParentSelected());
    XSceneObject inSettings = application().Settings().SceneSettings();
    inSettings.Select();
    EXPECT_FALSE(inSettings.IsSelected());
    EXPECT_EQ(selected(), std::vector<XObject>{other});
}

TEST_F(Selection, TheEditModeNeedsOneObjectThatSupportsIt) {
    selection().Select(a).SetEditMode(1);
    EXPECT_EQ(selection().EditMode(), 0);  // a joint has no controller
    selection().SubEntityType().SetInteger(2);
    EXPECT_EQ(selection().EditMode(), 2);
    selection().Append(b);
    EXPECT_EQ(selection().EditMode(), 0);
    selection().Deselect(b);
    EXPECT_EQ(selection().EditMode(), 2);
    selection().Deselect(a);
    EXPECT_EQ(selection().Count(), 1);
    scene().ChangeEditMode(0);
    EXPECT_TRUE(selection().IsObjectEditMode());
}

TEST_F(Selection, OnlyTheActiveScenesOwnRefusesDeletionAndRenaming) {
    EXPECT_FALSE(selection().supportsDeletion());
    EXPECT_FALSE(selection().supportsRenaming());
    EXPECT_TRUE(scene().DynamicSelection().supportsDeletion());
    XSelection const left = selection();
    application().AddScene();
    EXPECT_TRUE(left.supportsDeletion());
}

// ---- what the scene does with its selected objects ----

TEST_F(Selection, DeletingTakesChildrenAlongAndRemovingKeepsThem) {
    selection().Append(a).Append(b);
    scene().DeleteSelection();
    EXPECT_FALSE(a.IsValid() || b.IsValid());
    EXPECT_EQ(selection().Count(), 0);
    EXPECT_TRUE(log.errors().empty());
    scene().Undo();
    EXPECT_TRUE(a.IsValid() && b.IsValid());
    selection().Select(a);
    scene().RemoveSelection();
    EXPECT_FALSE(a.IsValid());
    EXPECT_EQ(b.Parent(), scene().RootObject());
    EXPECT_EQ(selection().Count(), 0);
}

TEST_F(Selection, CopyingRenamingAndUnparentingTakeEachObject) {
    selection().Append(a).Append(b);
    scene().RenameSelection(L"bone");
    EXPECT_EQ(a.Name(), L"bone");
    EXPECT_EQ(b.Name(), L"bone");
    scene().UnparentSelection();
    EXPECT_EQ(b.Parent(), scene().RootObject());
    EXPECT_EQ(b.Name(), L"bone1");
    selection().Select(a);
    scene().CopySelection();
    EXPECT_TRUE(scene().IsObject(L"Scene|bone_copy"));
    EXPECT_EQ(undoCount() > 0, true);
}

TEST_F(Selection, ReparentingWithoutAPathGivesAllToTheLast) {
    XObject d = scene().CreateObject(XJoint::TypeID);
    selection().Append(a).Append(b).Append(d);
    log.clear();
    scene().ReparentSelection();
    EXPECT_EQ(a.Parent(), d);
    EXPECT_EQ(b.Parent(), d);
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Unable to find a node with the path \"\""});
    EXPECT_EQ(scene().SceneGraph()->getUndoLabel(), L"Reparenting objects");
}

TEST_F(Selection, ReparentingOneObjectWithoutAPathDoesNothing) {
    selection().Select(b);
    scene().ReparentSelection();
    EXPECT_EQ(b.Parent(), a);
    XObject const d = scene().CreateObject(XJoint::TypeID);
    scene().ReparentSelection(d.Path());
    EXPECT_EQ(b.Parent(), d);
}

}  // namespace
}  // namespace Tavo
