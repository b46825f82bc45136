// The selected objects: what is asked of them, and what changes them.
#include "tests/interaction/selection_fixture.h"

namespace Tavo {
namespace {

using Selection = SelectionFixture;

TEST_F(Selection, KeepsTheOrderAndEachObjectOnce) {
    selection().Append(b).Append(a).Append(b).Append(c).Append(a);
    EXPECT_EQ(selected(), (Objects{b, a, c}));
    EXPECT_EQ(selection().Count(), 3);
    EXPECT_EQ(selection().Object(0), b);
    for (int index : {-1, 3}) EXPECT_FALSE(selection().Object(index).IsValid());
}

TEST_F(Selection, SelectingReplacesAndAnInvalidObjectChangesNothing) {
    selection().Append(a).Append(b).Select(c);
    EXPECT_EQ(selected(), Objects{c});
    selection().Select(XObject::Undefined).Append(XObject::Undefined);
    EXPECT_EQ(selected(), Objects{c});
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
    EXPECT_EQ(selected(), Objects{other});
}

TEST_F(Selection, OnlyTheActiveScenesOwnRefusesDeletionAndRenaming) {
    EXPECT_FALSE(selection().supportsDeletion());
    EXPECT_FALSE(selection().supportsRenaming());
    EXPECT_TRUE(scene().DynamicSelection().supportsDeletion());
    XSelection const left = selection();
    application().AddScene();
    EXPECT_TRUE(left.supportsDeletion());
}

// ---- questions ----

TEST_F(Selection, IsANodeOfItsOwnType) {
    EXPECT_TRUE(selection().IsValid());
    EXPECT_TRUE(selection().IsType(L"Selection"));
    EXPECT_EQ(selection().ObjectDefinition()->NodeType(), sg::SelectionNode::ClassID);
    EXPECT_FALSE(XSelection(a).IsValid());
    EXPECT_FALSE(XSelection().IsValid());
    EXPECT_EQ(selection().Path(), L"Selection");
    EXPECT_EQ(scene().DynamicSelection().Path(), L"DynamicSelection");
}

TEST_F(Selection, AnInvalidOneAnswersNothingAndDoesNothing) {
    XSelection none;
    EXPECT_EQ(none.EditMode() + none.Count() + none.SubObjectCount(), 0);
    EXPECT_FALSE(none.IsSelected(a) || none.IsSelected(XObject()) || none.IsSelectedSubObject(0) ||
                 none.HasSelection() || none.IsSubObjectEditMode(a));
    EXPECT_TRUE(none.Path(0).empty() && none.Paths().empty());
    EXPECT_FALSE(none.Object(0).IsValid() || none.Object(XJoint::TypeID, SupportsObjectType).IsValid());
    EXPECT_TRUE(none.ObjectToolFrame().IsIdentity() && none.ObjectToolFrameWorldAligned().IsIdentity());
    none.Select(a).Append(a.Path()).Deselect(a).Deselect(Paths{a.Path()}).Clear().ClearSubObjects().SetEditMode(1);
    none.AppendSubObject(1).DeselectSubObject(1).SelectAll().SelectByType(XJoint::TypeID, IsObjectType);
    none.SelectParent().SelectChild().SelectNext().SelectPrevious();
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Selection, KnowsTheSelectedObjects) {
    EXPECT_FALSE(selection().HasSelection());
    selection().Append(b).Append(c);
    EXPECT_TRUE(selection().HasSelection());
    EXPECT_TRUE(selection().IsSelected(b) && selection().IsSelected(c));
    EXPECT_FALSE(selection().IsSelected(a) || selection().IsSelected(XObject::Undefined));
    EXPECT_EQ(selection().Count(), 2);
}

TEST_F(Selection, AnObjectOfAnotherSceneWithTheSameIdIsAnother) {
    selection().Append(a);
    XScene other;
    other.Register();
    other.New();
    XObject twin = other.CreateObject(XJoint::TypeID);
    while (twin.ObjectID() < a.ObjectID()) twin = other.CreateObject(XJoint::TypeID);
    EXPECT_EQ(twin.ObjectID(), a.ObjectID());
    EXPECT_FALSE(selection().IsSelected(twin));
    other.Unregister();
}

TEST_F(Selection, PathsAreGivenInOrderAndBeyondTheEndsNone) {
    selection().Append(c).Append(b);
    EXPECT_EQ(selection().Path(0), c.Path());
    EXPECT_EQ(selection().Path(1), b.Path());
    for (int index : {-1, selection().Count()}) EXPECT_EQ(selection().Path(index), L"") << index;
    Paths paths = {L"old"};
    EXPECT_EQ(selection().Paths(paths), (Paths{c.Path(), b.Path()}));
    EXPECT_EQ(selection().Paths(), paths);
}

TEST_F(Selection, AnObjectThatIsGoneCountsAndHasNoPath) {
    selection().Append(b).Append(c);
    b.getNode()->remove();
    EXPECT_EQ(selection().Count(), 2);
    EXPECT_EQ(selection().Path(0), L"");
    EXPECT_EQ(selection().Paths(), Paths{c.Path()});
    EXPECT_FALSE(selection().Object(0).IsValid());
    ASSERT_EQ(selected().size(), 2u);
    EXPECT_FALSE(selected()[0].IsValid() || selection().IsSelected(b));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Selection, AReferenceThatLeadsNowhereEqualsAHandleWithoutANode) {
    selection().Append(b).Append(c);
    b.getNode()->remove();
    EXPECT_TRUE(selection().IsSelected(XObject::Undefined));
    selection().Deselect(b);  // has its node still
    EXPECT_EQ(selection().Count(), 2);
    selection().Deselect(XObject::Undefined);
    EXPECT_EQ(selected(), Objects{c});
    EXPECT_FALSE(selection().IsSelected(XObject::Undefined));
}

TEST_F(Selection, ObjectsAreFoundInTheActiveSceneByTheirPath) {
    XSelection here = selection();
    XObject const root = scene().RootObject();
    application().AddScene();
    here.Append(a).Append(root);
    EXPECT_EQ(here.Path(1), L"Scene");
    EXPECT_EQ(here.Object(1), scene().RootObject());  // the other scene's: a decision of this system
    EXPECT_FALSE(here.Object(0).IsValid());
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(Selection, OnlyTheFirstObjectIsLookedAtForItsType) {
    selection().Append(a).Append(c);
    EXPECT_EQ(selection().Object(XJoint::TypeID, IsObjectType), a);
    EXPECT_EQ(selection().Object(XTransform::TypeID, SupportsObjectType), a);
    EXPECT_FALSE(selection().Object(XTransform::TypeID, IsObjectType).IsValid());
    EXPECT_FALSE(selection().Object(XGrid::TypeID, IsObjectType).IsValid());  // stands second
    EXPECT_FALSE(selection().Object(XJoint::TypeID, XComparisonMode(2)).IsValid());
    selection().Clear();
    EXPECT_FALSE(selection().Object(XJoint::TypeID, IsObjectType).IsValid());
}

TEST_F(Selection, ObjectsAreListedByTheirMostDerivedType) {
    selection().Append(c).Append(b).Append(a);
    Qelutils::Vector<XObject> out = {c};
    EXPECT_EQ(selection().Objects(XJoint::TypeID, out), (Objects{b, a}));
    EXPECT_EQ(selection().Objects(L"", out), (Objects{c, b, a}));
    EXPECT_TRUE(selection().Objects(XTransform::TypeID, out).empty());
}

// ---- changes ----

TEST_F(Selection, PathsStandForTheObjectsOfItsOwnDatabase) {
    selection().Select(a.Path());
    EXPECT_EQ(selected(), Objects{a});
    selection().Append(c.Path()).Append(Paths{b.Path(), L"nowhere", a.Path()});
    EXPECT_EQ(selected(), (Objects{a, c, b}));
    selection().Deselect(a.Path());
    EXPECT_EQ(selected(), (Objects{c, b}));
    selection().Select(Paths{b.Path(), c.Path()});
    EXPECT_EQ(selected(), (Objects{b, c}));
    selection().Deselect(Paths{c.Path(), L"nowhere", b.Path()});
    EXPECT_TRUE(selected().empty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Selection, AnUnknownPathChangesNothing) {
    selection().Select(a);
    selection().Select(L"nowhere").Append(L"nowhere").Deselect(L"nowhere").Select(L"").Append(L"").Deselect(L"");
    EXPECT_EQ(selected(), Objects{a});
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Selection, AListReplacesEvenWhenNothingOfItCanBeSelected) {
    selection().Select(Qelutils::Vector<XObject>{b, a, b, scene().MoveTool(), XObject()});
    EXPECT_EQ(selected(), (Objects{b, a}));
    selection().Select(Qelutils::Vector<XObject>{XObject()});
    EXPECT_TRUE(selected().empty());
    selection().Select(a).Select(Paths());
    EXPECT_TRUE(selected().empty());
}

TEST_F(Selection, SelectingAToolLeavesNothingSelected) {
    selection().Append(a).Append(b).Select(scene().MoveTool());
    EXPECT_TRUE(selected().empty());
}

TEST_F(Selection, DeselectingByPathPassesOverWhatCannotBeSelected) {
    XObject const tool = scene().MoveTool();
    selection().Append(a).Entities().AddObjectRef(tool);
    selection().Deselect(tool.Path()).Deselect(Paths{tool.Path()});
    EXPECT_EQ(selected(), (Objects{a, tool}));
    selection().Deselect(tool);
    EXPECT_EQ(selected(), Objects{a});
}

TEST_F(Selection, DeselectingKeepsTheOrderOfTheOthers) {
    Objects many;
    for (int i = 0; i < 6; ++i) many.push_back(joint());
    selection().Select(many).Deselect(many[2]);
    EXPECT_EQ(selected(), (Objects{many[0], many[1], many[3], many[4], many[5]}));
    selection().Deselect(Paths{many[4].Path(), many[0].Path(), many[4].Path(), many[2].Path()});
    EXPECT_EQ(selected(), (Objects{many[1], many[3], many[5]}));
}

TEST_F(Selection, OfTwoEntriesOfOneObjectTheFirstIsDeselected) {
    for (XObject const& each : {a, b, a, c}) selection().Entities().AddObjectRef(each);
    selection().Deselect(a);
    EXPECT_EQ(selected(), (Objects{b, a, c}));
    EXPECT_TRUE(selection().IsSelected(a));
    selection().Deselect(Paths{a.Path()});
    EXPECT_EQ(selected(), (Objects{b, c}));
    EXPECT_FALSE(selection().IsSelected(a));
}

TEST_F(Selection, MembersOfAGroupThatForbidsItCanBeSelectedFromHere) {
    XDisplayGroup group(scene().CreateObject(XDisplayGroup::TypeID));
    group.ObjectReferenceArray().AddObjectRef(a);
    group.IsSelectable().SetBoolean(false);
    scene().DisplayGroups().ChildGroupReferenceArray().AddObjectRef(group);
    scene().CommitTransient();
    EXPECT_FALSE(XSceneObject(a).IsSelectable());
    EXPECT_TRUE(XSceneObject(a).SupportsSelection());
    selection().Select(a);
    EXPECT_EQ(selected(), Objects{a});
}

TEST_F(Selection, WhatIsInvalidOrNoSceneObjectSupportsSelection) {
    EXPECT_TRUE(XSceneObject().SupportsSelection());
    EXPECT_TRUE(XSceneObject(scene().CreateObject(XAnimation::TypeID)).SupportsSelection());
    EXPECT_TRUE(selection().supportsSelection());
}

template<class Self> struct PlainNode : sg::TransformNode {
    explicit PlainNode(db::NodeDef const& def = Self::Def) : sg::TransformNode(def) {}
    static db::Node* make(void* at, db::NodeDef const& def) { return new (at) Self(def); }
};
struct FickleNode : PlainNode<FickleNode> {
    using PlainNode::PlainNode;
    static inline std::wstring const ClassID = L"Fickle";
    static inline db::NodeDef const Def{L"sg", L"Fickle", &sg::TransformNode::Def, {}, sizeof(PlainNode), make};
};
struct DocileNode : PlainNode<DocileNode> {
    using PlainNode::PlainNode;
    static inline std::wstring const ClassID = L"Docile";
    static inline db::NodeDef const Def{L"sg", L"Docile", &sg::TransformNode::Def, {}, sizeof(PlainNode), make};
};

// A type of which some objects may be selected and others not, behind a definition of its own.
class Fickle : public XTyped<Fickle, XTransform, FickleNode> {
public:
    static constexpr XWord TypeID = L"Fickle";
    using XTyped::XTyped;
    bool supportsSelection() const override { return Name() != L"shy"; }
};
class Docile : public XTyped<Docile, XTransform, DocileNode> {
public:
    static constexpr XWord TypeID = L"Docile";
    using XTyped::XTyped;
};
struct SternDef : XTypedDef<Docile> {  // makes handles of another class than it is named after
    XObject* CreateObject(XDatabase* database, int id) override { return new Fickle(detail::objectByID(database, id)); }
};

TEST_F(Selection, EachObjectIsAskedWhereItsTypeHasSomethingToSay) {
    EXPECT_TRUE(XJoint::Definition().AlwaysSupportsSelection() && Docile::Definition().AlwaysSupportsSelection());
    EXPECT_FALSE(XMoveTool::Definition().AlwaysSupportsSelection() || Fickle::Definition().AlwaysSupportsSelection());
    scene().CoreModule().Register(new XTypedDef<Fickle>);
    scene().CoreModule().Register(new SternDef);
    for (XWord const& type : {Fickle::TypeID, Docile::TypeID}) {
        XObject bold = scene().CreateObject(type), shy = scene().CreateObject(type);
        shy.SetName(L"shy");
        selection().Select(Qelutils::Vector<XObject>{bold, shy});
        EXPECT_EQ(selected(), Objects{bold}) << type.c_str();
        shy.Delete();
    }
}

TEST_F(Selection, NothingChangesWhileTheSceneIsReadOnly) {
    selection().Append(a).Append(b);
    setStoredMode(0);
    scene().SetSceneMode(ReadOnlyMode);
    selection().Append(c).Deselect(a).Deselect(Paths{b.Path()}).Clear();
    EXPECT_EQ(selected(), (Objects{a, b}));
    scene().SetSceneMode(InteractiveMode);
}

TEST_F(Selection, ACopyHasTheSameObjectsSelected) {
    selection().Append(b).Append(a);
    XSelection const copy(selection().Copy(L"kept"));
    EXPECT_EQ(copy.Name(), L"kept");
    selection().Clear();
    EXPECT_TRUE(copy.IsSelected(a) && copy.IsSelected(b));
    EXPECT_EQ(copy.Path(0), b.Path());
    EXPECT_FALSE(selection().IsSelected(a));
}

TEST_F(Selection, InitializingEmptiesIt) {
    selection().Append(a);
    setStoredMode(2);
    selection().AppendSubObject(4).Initialize();
    EXPECT_EQ(selection().Count() + selection().SubObjectCount() + selection().SubEntityType().Integer(), 0);
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
