// Hierarchies of any depth are worked through without recursion. At this depth one call per level, each with some
// hundred bytes, would already be near the end of the stack; with the sanitizers it is far beyond it.
#include "tests/objects/fixture.h"

namespace Tavo {
namespace {

constexpr int depth = 20000;

class DeepHierarchy : public ObjectModel {
protected:
    DeepHierarchy() {
        inBlock([this] {
            top = leaf = make(XJoint::TypeID).SetName(L"chain");
            for (int i = 1; i < depth; ++i) leaf = make(XJoint::TypeID, leaf);
        });
    }
    static int sizeOf(XObject const& object) {
        Qelutils::Vector<XObject> below;
        object.DescendantObjects(below);
        return int(below.size()) + 1;
    }

    XObject top, leaf;
};

TEST_F(DeepHierarchy, IsListedAndSearched) {
    int distance = 0;
    EXPECT_EQ(sizeOf(top), depth);
    EXPECT_TRUE(top.IsParentOf(leaf, distance));
    EXPECT_EQ(distance, depth - 1);
    EXPECT_TRUE(leaf.IsChildOf(top));
    EXPECT_TRUE(leaf.FindAncestor(XJoint::TypeID, IsObjectType) == top);
    EXPECT_TRUE(graph().Node(leaf.Path()) == leaf.getNode());
    Qelutils::Vector<XObject> below;
    top.DescendantObjects(below, XNull::TypeID);
    EXPECT_TRUE(below.empty());
}

TEST_F(DeepHierarchy, IsPlacedInTheWorld) {
    XTransform(top).SetTranslation(1, 2, 3);
    EXPECT_EQ(XTransform(leaf).WorldTranslation(), XVector3(1, 2, 3));
    XTransform(leaf).SetWorldTranslation(4, 5, 6);
    EXPECT_FLOAT_EQ(XTransform(leaf).TranslationY().Float(), 3);
}

TEST_F(DeepHierarchy, IsDeletedAndComesBack) {
    inBlock([this] { top.Delete(); });
    EXPECT_FALSE(top.IsValid() || leaf.IsValid());
    scene().Undo();
    EXPECT_TRUE(top.IsValid() && leaf.IsValid());
    EXPECT_EQ(sizeOf(top), depth);
    scene().Redo();
    EXPECT_FALSE(top.IsValid() || leaf.IsValid());
    EXPECT_EQ(errors(), none());
}

TEST_F(DeepHierarchy, LosesItsChildren) {
    inBlock([this] { top.DeleteChildObjects(); });
    EXPECT_TRUE(top.IsValid());
    EXPECT_EQ(sizeOf(top), 1);
    EXPECT_FALSE(leaf.IsValid());
}

TEST_F(DeepHierarchy, IsDeletedByItsPattern) {
    scene().DeleteObjects(top.Path());
    EXPECT_FALSE(top.IsValid() || leaf.IsValid());
}

TEST_F(DeepHierarchy, MovesUpWhenItsTopIsRemoved) {
    XObject const second = top.Child(0);
    inBlock([this] { top.Remove(); });
    EXPECT_FALSE(top.IsValid());
    EXPECT_EQ(sizeOf(second), depth - 1);
    EXPECT_TRUE(second.Parent() == XObject(scene().RootObject()));
}

TEST_F(DeepHierarchy, IsCopied) {
    XObject copy;
    inBlock([&] { copy = top.Copy(); });
    ASSERT_TRUE(copy.IsValid());
    EXPECT_EQ(copy.Name(), L"chain_copy");
    EXPECT_EQ(sizeOf(copy), depth);
    EXPECT_EQ(sizeOf(top), depth);
}

TEST_F(DeepHierarchy, MovesBelowAnotherParent) {
    XObject other = make(XJoint::TypeID);
    inBlock([&] { top.SetParent(other); });
    EXPECT_EQ(sizeOf(other), depth + 1);
    inBlock([&] { other.SetParent(leaf); });
    EXPECT_TRUE(other.Parent() == XObject(scene().RootObject())) << "no circle";
}

TEST_F(DeepHierarchy, IsSelectedAndDeletedWithTheSelection) {
    scene().Selection().Select(leaf).Append(top);
    scene().CommitTransient();
    scene().DeleteSelection();
    EXPECT_FALSE(top.IsValid() || leaf.IsValid());
}

TEST_F(DeepHierarchy, LosesItsAnimation) {
    XJoint(leaf).TranslationX().SetKeyframe(0, 1);
    inBlock([this] { scene().ClearAnimation(top); });
    EXPECT_FALSE(XJoint(leaf).TranslationX().IsAnimated());
}

using DeepGraph = ObjectModel;

// An object takes along the inputs that nothing else needs, those take their children, and these their inputs.
TEST_F(DeepGraph, InputsOfChildrenOfInputsAreDeletedToAnyDepth) {
    XObject first = named(L"first"), last = first;
    inBlock([&] {
        for (int i = 0; i < depth; ++i) {
            XObject source = named(L"source");
            last.AddFloatAttribute(L"y").ConnectInputTo(source.AddFloatAttribute(L"x"));
            last = named(L"child", source);
        }
    });
    inBlock([&] { first.Delete(); });
    EXPECT_FALSE(first.IsValid() || last.IsValid());
    scene().Undo();
    EXPECT_TRUE(first.IsValid() && last.IsValid());
}

TEST_F(DeepGraph, GroupsLieInFoldersToAnyDepth) {
    XObject const member = named(L"member");
    XObjectGroup inner(scene().DisplayGroups());
    inBlock([&] {
        for (int i = 0; i < depth; ++i) {
            XDisplayGroup group(make(XDisplayGroup::TypeID));
            group.SetIsFolder(i + 1 < depth);
            inner.ChildGroupReferenceArray().AddObjectRef(group);
            inner = group;
        }
        inner.ObjectReferenceArray().AddObjectRef(member);
    });
    EXPECT_TRUE(XObject(XSceneObject(member).DisplayGroup()) == XObject(inner));
    EXPECT_TRUE(XSceneObject(member).IsVisible());
    inBlock([&] {
        XObjectGroup(scene().DisplayGroups().ChildGroupReferenceArray().ObjectRef(0)).IsVisible().SetBoolean(false);
    });
    EXPECT_FALSE(XSceneObject(member).IsVisible());
}

}  // namespace
}  // namespace Tavo
