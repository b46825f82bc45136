#include "tests/app/fixture.h"

namespace Tavo {
namespace {

class ObjectGroup : public StartedApplication {
protected:
    static XDisplayGroup addGroup(XObjectGroup const& parent) {
        XDisplayGroup group(scene().CreateObject(XDisplayGroup::TypeID));
        parent.ChildGroupReferenceArray().AddObjectRef(group);
        group.ParentGroupReference().SetObjectRef(parent);
        return group;
    }
    static void commit() { scene().CommitTransient(); }
    XSceneObject joint = scene().CreateObject(XJoint::TypeID), other = scene().CreateObject(XJoint::TypeID);
};

TEST_F(ObjectGroup, StartsVisibleEditableSelectableAndEmpty) {
    XObjectGroup const group(scene().CreateObject(XObjectGroup::TypeID));
    EXPECT_EQ(group.Label().String(), group.Name());
    EXPECT_FALSE(group.IsFolder() || group.IsSeparator() || group.IsFocused().Boolean());
    EXPECT_TRUE(group.IsVisible().Boolean() && group.IsEditable().Boolean() && group.IsSelectable().Boolean() &&
                group.IsExpanded().Boolean());
    EXPECT_EQ(group.ObjectReferenceArray().ArraySize(), 0);
    EXPECT_TRUE(group.SupportsDeletion());
}

TEST_F(ObjectGroup, TheRootsOfTheActiveSceneCannotBeDeleted) {
    for (XObjectGroup const& root : {XObjectGroup(scene().DisplayGroups()), XObjectGroup(scene().CollisionGroups()),
                                     XObjectGroup(scene().SelectionGroups())})
        EXPECT_FALSE(root.SupportsDeletion());
}

TEST_F(ObjectGroup, WithoutGroupsTheSetsAreEmpty) {
    for (int mode = -1; mode <= 3; ++mode) EXPECT_TRUE(scene().ObjectSet(mode).empty());
    EXPECT_TRUE(joint.IsVisible() && joint.IsSelectable() && joint.IsEditable());
    EXPECT_FALSE(joint.DisplayGroup().IsValid());
}

TEST_F(ObjectGroup, WhatAGroupForbidsHoldsForItsMembersFromTheCommitOn) {
    XDisplayGroup const group = addGroup(scene().DisplayGroups());
    group.ObjectReferenceArray().AddObjectRef(joint);
    group.IsVisible().SetBoolean(false);
    group.IsSelectable().SetBoolean(false);
    group.IsEditable().SetBoolean(false);
    commit();
    EXPECT_FALSE(joint.IsVisible() || joint.IsSelectable() || joint.IsEditable());
    EXPECT_TRUE(other.IsVisible() && other.IsSelectable() && other.IsEditable());
    EXPECT_EQ(joint.DisplayGroup(), group);
    group.IsVisible().SetBoolean(true);
    commit();
    EXPECT_TRUE(joint.IsVisible());
    scene().Undo();
    EXPECT_FALSE(joint.IsVisible());
}

TEST_F(ObjectGroup, AFolderForbidsForAllBelowIt) {
    XDisplayGroup folder = addGroup(scene().DisplayGroups());
    folder.SetIsFolder(true);
    XDisplayGroup const group = addGroup(folder);
    group.ObjectReferenceArray().AddObjectRef(joint);
    folder.IsVisible().SetBoolean(false);
    commit();
    EXPECT_FALSE(joint.IsVisible());
    EXPECT_TRUE(joint.IsEditable());
}

TEST_F(ObjectGroup, ACircleOfFoldersEnds) {
    XDisplayGroup folder = addGroup(scene().DisplayGroups());
    folder.SetIsFolder(true);
    folder.ChildGroupReferenceArray().AddObjectRef(folder);
    folder.ChildGroupReferenceArray().AddObjectRef(scene().DisplayGroups());
    commit();
    EXPECT_TRUE(joint.IsVisible());
}

TEST_F(ObjectGroup, AScriptMaySelectWhatAGroupForbidsToPick) {
    XDisplayGroup const group = addGroup(scene().DisplayGroups());
    group.ObjectReferenceArray().AddObjectRef(joint);
    group.IsSelectable().SetBoolean(false);
    commit();
    EXPECT_TRUE(joint.SupportsSelection());
    joint.Select();
    EXPECT_TRUE(joint.IsSelected());
}

}  // namespace
}  // namespace Tavo
