#include "tests/objects/fixture.h"

namespace Tavo {
namespace {

using Object = ObjectModel;
using testing::ElementsAre;

// ---- handles ----

TEST_F(Object, AHandleToADeletedObjectIsInvalidAndValidAgainAfterUndo) {
    XObject object = make(L"Null");
    int const id = object.ObjectID();
    inBlock([&] { object.Delete(); });
    EXPECT_FALSE(object.IsValid());
    EXPECT_EQ(object.ObjectID(), id);
    graph().Undo();
    EXPECT_TRUE(object.IsValid());
    EXPECT_EQ(object.ObjectID(), id);
}

TEST_F(Object, HandlesWithoutNodesAreEqualAndComeFirst) {
    EXPECT_EQ(XObject(), XObject());
    EXPECT_EQ(XObject().ObjectID(), -1);
    EXPECT_EQ(XObject::Undefined.ObjectID(), -1);
    EXPECT_LT(XObject(), make(L"Null"));
    EXPECT_FALSE(make(L"Null") < XObject());
}

TEST_F(Object, AnInvalidHandleDoesNothing) {
    XObject object;
    Qelutils::Vector<XObject> out{make(L"Null")};
    object.SetName(L"a").SetParent(make(L"Null")).SetParent(L"Scene").Unparent().Initialize();
    object.DisconnectInputAttributes().DisconnectOutputAttributes().DeleteChildObjects().DeleteChild(0);
    object.DeleteIfUnconnected();
    object.DeleteInputObjects();
    object.Remove();
    object.ChildObjects(out);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(object.Path(), L"");
    EXPECT_EQ(object.ChildCount() + object.SiblingCount() + object.AttributeCount(), 0);
    EXPECT_FALSE(object.Parent().IsValid() || object.Child(0).IsValid() || object.Next().IsValid());
    EXPECT_FALSE(object.Attribute(0).IsValid() || object.Attribute(L"Name").IsValid() || object.Copy().IsValid());
    EXPECT_FALSE(object.AddFloatAttribute(L"f").IsValid() || object.IsEditable() || object.SupportsChildObjects());
    EXPECT_FALSE(object.Database().IsValid());
    EXPECT_EQ(errors(), none());
}

TEST_F(Object, AHandleOutlivesItsDatabase) {
    XObject object;
    XAttribute attribute;
    {
        TestDocument document;
        object = document.CreateObject(L"Null");
        attribute = object.AddFloatAttribute(L"f");
        EXPECT_TRUE(attribute.IsValid());
        document.Unregister();
    }
    EXPECT_FALSE(object.IsValid() || attribute.IsValid());
    EXPECT_EQ(&object.Database(), &XDatabase::Undefined);
    EXPECT_EQ(&attribute.Database(), &XDatabase::Undefined);
    object.SetName(L"a").SetParent(XObject());
    attribute.SetFloat(1).ConnectInputTo(XAttribute());
    EXPECT_EQ(attribute.Float(), 0);
}

TEST_F(Object, AssigningRebuildsWhatAHandleKeeps) {
    struct Counting : XObject {
        using XObject::operator=;
        void onConstruct() override { ++constructed; }
        int constructed = 0;
    } handle;
    handle = make(L"Null");
    EXPECT_EQ(handle.constructed, 1);
    EXPECT_TRUE(handle.IsValid());
}

// ---- types ----

TEST_F(Object, APlainHandleKnowsItsTrueType) {
    XObject const joint = make(L"Joint");
    std::vector<std::wstring> types;
    EXPECT_EQ(joint.ObjectType(), L"Joint");
    EXPECT_THAT(joint.ObjectTypes(types),
                ElementsAre(L"Object", L"SceneObject", L"RenderObject", L"Transform", L"Joint"));
    EXPECT_TRUE(joint.IsType(L"Joint") && joint.SupportsType(L"Transform") && joint.SupportsType(L"Object"));
    EXPECT_FALSE(joint.IsType(L"Transform") || joint.SupportsType(L"Camera"));
    EXPECT_FALSE(joint.Matches(L"Joint", XComparisonMode(2)));
    std::unique_ptr<XObject> const typed{joint.CreateObject()};
    EXPECT_NE(dynamic_cast<XJoint*>(typed.get()), nullptr);
}

TEST_F(Object, DisplayNamesHaveBlanksBeforeWords) {
    struct {
        wchar_t const *text, *shown;
    } const table[] = {{L"MeshInstance", L"Mesh Instance"},
                       {L"IKHandle", L"IK Handle"},
                       {L"X", L"X"},
                       {L"", L""},
                       {L"XYZ", L"XYZ"},
                       {L"joint", L"joint"},
                       {L"aB", L"aB"},
                       {L"aBc", L"a Bc"}};
    for (auto const& row : table) EXPECT_EQ(XObject::convertToDisplayName(row.text), row.shown);
    EXPECT_EQ(make(L"SelectionGroup").ObjectDisplayType(), L"Selection Group");
}

// ---- names ----

TEST_F(Object, LikeNamedSiblingsAreNumberedFromOne) {
    XObject const parent = named(L"parent");
    EXPECT_EQ(named(L"Joint", parent).Name(), L"Joint");
    EXPECT_EQ(named(L"Joint", parent).Name(), L"Joint1");
    EXPECT_EQ(named(L"Joint", parent).Name(), L"Joint2");
    EXPECT_EQ(named(L"joint", parent).Name(), L"joint");
    EXPECT_EQ(named(L"Joint", named(L"other")).Name(), L"Joint");
}

TEST_F(Object, TheSmallestFreeNumberIsTaken) {
    XObject const parent = named(L"parent");
    named(L"Joint", parent);
    XObject one = named(L"Joint", parent);
    named(L"Joint", parent);
    one.SetName(L"else");
    EXPECT_EQ(named(L"Joint", parent).Name(), L"Joint1");
    EXPECT_EQ(named(L"Joint", parent).Name(), L"Joint3");
}

TEST_F(Object, AnObjectMayKeepItsName) {
    XObject object = named(L"Joint");
    EXPECT_EQ(object.SetName(L"Joint").Name(), L"Joint");
}

TEST_F(Object, ATypeMayRefuseRenamingAndForceOverrules) {
    XObject root = scene().RootObject();
    EXPECT_EQ(root.SetName(L"other").Name(), L"Scene");
    EXPECT_EQ(root.SetName(L"other", true).Name(), L"other");
}

// ---- hierarchy ----

TEST_F(Object, PathsJoinTheNamesFromTheRootDown) {
    XObject const a = named(L"a"), b = named(L"b", a), c = named(L"c", b);
    EXPECT_EQ(c.Path(), L"a|b|c");
    EXPECT_EQ(scene().Object(L"a|b|c"), c);
    EXPECT_EQ(a.Child(L"b"), b);
    EXPECT_EQ(a.Child(0), b);
    EXPECT_FALSE(a.Child(1).IsValid() || a.Child(-1).IsValid() || a.Child(L"c").IsValid());
}

TEST_F(Object, NextAndPreviousWrapAround) {
    XObject const p = named(L"p"), a = named(L"a", p), b = named(L"b", p), c = named(L"c", p);
    EXPECT_EQ(a.Next(), b);
    EXPECT_EQ(c.Next(), a);
    EXPECT_EQ(a.Previous(), c);
    EXPECT_EQ(c.Previous(), b);
    EXPECT_EQ(b.SiblingCount(), 2);
    Qelutils::Vector<XObject> siblings;
    b.SiblingObjects(siblings);
    EXPECT_THAT(namesOf(siblings), ElementsAre(L"a", L"c"));
}

TEST_F(Object, AnOnlyChildIsItsOwnNext) {
    XObject const p = named(L"p"), a = named(L"a", p);
    EXPECT_EQ(a.Next(), a);
    EXPECT_EQ(a.Previous(), a);
}

TEST_F(Object, AConnectionHasNoSiblings) {
    XObject a = named(L"a"), b = named(L"b");
    inBlock([&] { b.AddFloatAttribute(L"in").ConnectInputTo(a.AddFloatAttribute(L"out")); });
    XObject const connection = static_cast<sg::Node&>(*b.getNode()).places[0].connection;
    EXPECT_EQ(connection.Next(), connection);
    EXPECT_EQ(connection.SiblingCount(), 0);
}

TEST_F(Object, DistancesAreCountedInGenerations) {
    XObject const a = named(L"a"), b = named(L"b", a), c = named(L"c", b);
    int distance = -1;
    EXPECT_TRUE(a.IsParentOf(c, distance));
    EXPECT_EQ(distance, 2);
    EXPECT_TRUE(c.IsChildOf(b, distance));
    EXPECT_EQ(distance, 1);
    EXPECT_FALSE(c.IsParentOf(a) || a.IsParentOf(a) || a.IsChildOf(b));
}

TEST_F(Object, SearchesTestOneTypeOrAllItSupports) {
    XObject const t = make(L"Transform"), j = make(L"Joint", t), k = make(L"Joint", j);
    EXPECT_EQ(k.FindParentObject(L"Joint", IsObjectType), j);
    EXPECT_EQ(k.FindParentObject(L"Transform", IsObjectType), t);
    EXPECT_EQ(k.FindParentObject(L"Transform", SupportsObjectType), j);
    EXPECT_EQ(t.FindChildObject(L"Transform", SupportsObjectType), j);
    EXPECT_FALSE(t.FindChildObject(L"Transform", IsObjectType).IsValid());
    Qelutils::Vector<XObject> out;
    t.DescendantObjects(out, L"Joint");
    EXPECT_EQ(out.size(), 2u);
    t.DescendantObjects(out, std::vector<std::wstring>{L"Camera", L"Transform"}, SupportsObjectType);
    EXPECT_EQ(out.size(), 2u);
    t.ChildObjects(out, L"Transform", SupportsObjectType);
    EXPECT_EQ(out.size(), 1u);
}

// ---- attributes of its own ----

TEST_F(Object, AddsAttributesOfEveryKindOffered) {
    XObject o = named(L"o");
    XMatrix const m;
    EXPECT_TRUE(o.AddBooleanAttribute(L"b", true).Boolean());
    EXPECT_EQ(o.AddFloatAttribute(L"f", 1.5f, 0, 2).Float(), 1.5f);
    EXPECT_EQ(o.AddIntegerAttribute(L"i", 7, 0, 9).Integer(), 7);
    EXPECT_EQ(o.AddStringAttribute(L"s", L"text").String(), L"text");
    EXPECT_EQ(o.AddVectorAttribute(L"v", XVector3(1, 2, 3)).Vector().Z(), 3);
    EXPECT_TRUE(o.AddMatrixAttribute(L"m", m).IsMatrix());
    EXPECT_EQ(o.AddFloatAttribute(L"zero").Float(), 0);
    EXPECT_TRUE(o.AddFloatAttribute(L"fs", 1, 0, 2, true).IsFloatArray());
    EXPECT_TRUE(o.AddBooleanAttribute(L"bs", false, true).IsBoolArray());
    EXPECT_TRUE(o.AddIntegerAttribute(L"is", 0, 0, 1, true).IsIntArray());
    EXPECT_TRUE(o.AddStringAttribute(L"ss", {}, true).IsStringArray());
    EXPECT_TRUE(o.AddVectorAttribute(L"vs", XVector3(), true).IsVectorArray());
    EXPECT_TRUE(o.AddMatrixAttribute(L"ms", m, true).IsMatrixArray());
    EXPECT_EQ(o.CustomAttributeCount(), 13);
    Qelutils::Vector<XAttribute> out;
    o.CustomAttributes(out);
    EXPECT_EQ(out.size(), 13u);
    EXPECT_EQ(o.Attribute(L"i"), out[2]);
    EXPECT_FALSE(o.AddFloatAttribute(L"f").IsValid());  // taken
}

// ---- copies ----

TEST_F(Object, ACopyIsNamedAfterItsOriginalBesideIt) {
    XObject const parent = make(L"Transform");
    XObject joint = make(L"Joint", parent).SetName(L"Joint");
    XObject const copy = joint.Copy();
    EXPECT_EQ(copy.Name(), L"Joint_copy");
    EXPECT_EQ(copy.Parent(), parent);
    EXPECT_EQ(joint.Copy(L"other").Name(), L"other");
}

TEST_F(Object, CopyingWhatMayNotBeCopiedIsSaidAndDone) {
    TestDocument document;
    XObject object = document.CreateObject(L"Null");
    document.copyable = false;
    EXPECT_TRUE(object.Copy().IsValid());
    EXPECT_THAT(errors(), ElementsAre(L"You are not permitted to copy \"Null\""));
}

TEST_F(Object, CopyIsOneStep) {
    XObject object = named(L"a");
    graph().ClearUndoHistory();
    object.Copy();
    EXPECT_EQ(graph().getUndoLabel(), L"Copying a node");
}

// ---- deletion ----

TEST_F(Object, WhatRefusesDeletionIsNamed) {
    scene().RootObject().Delete();
    EXPECT_THAT(errors(), ElementsAre(L"The object 'Scene' does not support deletion"));
    XObject().Delete();
    EXPECT_THAT(errors(), ElementsAre(L"The object '' does not support deletion"));
}

TEST_F(Object, ATransformGoesWithItsOnlyPrimitive) {
    XObject const transform = make(L"Transform");
    XObject primitive = make(L"Shape", transform);
    primitive.Delete();
    EXPECT_FALSE(primitive.IsValid() || transform.IsValid());
}

TEST_F(Object, ATransformWithMoreThanItsPrimitiveStays) {
    XObject const transform = make(L"Transform");
    XObject primitive = make(L"Shape", transform);
    make(L"Joint", transform);
    primitive.Delete();
    EXPECT_FALSE(primitive.IsValid());
    EXPECT_TRUE(transform.IsValid());
}

TEST_F(Object, DeleteTakesChildrenAndInputsThatNothingElseNeeds) {
    XObject a = named(L"a"), child = named(L"child", a), feeder = named(L"feeder"), shared = named(L"shared");
    XObject other = named(L"other");
    XAttribute const out = shared.AddFloatAttribute(L"out");
    a.AddFloatAttribute(L"x").ConnectInputTo(feeder.AddFloatAttribute(L"out"));
    a.AddFloatAttribute(L"y").ConnectInputTo(out);
    other.AddFloatAttribute(L"z").ConnectInputTo(out);
    inBlock([&] { a.Delete(); });
    EXPECT_FALSE(a.IsValid() || child.IsValid() || feeder.IsValid());
    EXPECT_TRUE(shared.IsValid() && other.Attribute(L"z").IsConnected());
    graph().Undo();
    EXPECT_TRUE(a.IsValid() && child.IsValid() && feeder.IsValid());
    EXPECT_EQ(a.Attribute(L"x").InputObject(), feeder);
    EXPECT_EQ(a.Attribute(L"y").InputObject(), shared);
}

TEST_F(Object, AnInputThatHasAPlaceInSpaceStays) {
    XObject a = named(L"a"), feeder = make(L"Transform");
    a.AddFloatAttribute(L"x").ConnectInputTo(feeder.AddFloatAttribute(L"out"));
    a.Delete();
    EXPECT_FALSE(a.IsValid());
    EXPECT_TRUE(feeder.IsValid());
    feeder.DeleteIfUnconnected();
    EXPECT_FALSE(feeder.IsValid()) << "when it is asked for itself";
}

TEST_F(Object, AParentThatFeedsItsChildStays) {
    XObject a = named(L"a"), child = named(L"child", a);
    child.AddFloatAttribute(L"x").ConnectInputTo(a.AddFloatAttribute(L"out"));
    child.Delete();
    EXPECT_TRUE(a.IsValid());
}

TEST_F(Object, DeleteIfUnconnectedNeedsAttributesOfWhichNoneIsConnected) {
    XObject a = named(L"a"), b = named(L"b"), c = named(L"c");
    b.AddFloatAttribute(L"x").ConnectInputTo(a.AddFloatAttribute(L"x"));
    for (XObject* object : {&a, &b, &c}) object->DeleteIfUnconnected();
    EXPECT_TRUE(a.IsValid() && b.IsValid());
    EXPECT_FALSE(c.IsValid());
    XVector3 withoutAttributes;
    withoutAttributes.DeleteIfUnconnected();
    EXPECT_EQ(errors(), none());
}

TEST_F(Object, RemoveKeepsTheChildren) {
    XObject const p = make(L"Transform");
    XObject a = make(L"Transform", p), child = make(L"Joint", a);
    a.Remove();
    EXPECT_FALSE(a.IsValid());
    EXPECT_EQ(child.Parent(), p);
}

TEST_F(Object, ChildrenAreDeletedByNameAndIndex) {
    XObject p = named(L"p"), a = named(L"a", p), b = named(L"b", p);
    p.DeleteChild(L"b").DeleteChild(L"missing").DeleteChild(7);
    EXPECT_TRUE(a.IsValid() && !b.IsValid());
    p.DeleteChild(0);
    EXPECT_FALSE(a.IsValid());
    EXPECT_EQ(errors(), none());
}

// ---- connected objects ----

TEST_F(Object, ConnectedObjectsAreListedOnce) {
    XObject a = named(L"a"), b = named(L"b"), c = named(L"c");
    XAttribute const x = a.AddFloatAttribute(L"x");
    b.AddFloatAttribute(L"p").ConnectInputTo(x);
    b.AddFloatAttribute(L"q").ConnectInputTo(x);
    c.AddFloatAttribute(L"r").ConnectInputTo(b.Attribute(L"p"));
    Qelutils::Vector<XObject> out;
    a.OutputObjects(out);
    EXPECT_THAT(namesOf(out), ElementsAre(L"b"));
    b.InputObjects(out);
    EXPECT_THAT(namesOf(out), ElementsAre(L"a"));
    b.ConnectedObjects(out);
    EXPECT_THAT(namesOf(out), ElementsAre(L"a", L"c"));
    EXPECT_TRUE(b.HasInputAttributes() && b.HasOutputAttributes());
    b.DisconnectInputAttributes().DisconnectOutputAttributes();
    EXPECT_FALSE(b.HasInputAttributes() || b.HasOutputAttributes() || c.HasInputAttributes());
}

// The object model must not look at n siblings for each of n objects; 20,000 would take minutes then.
TEST_F(Object, ManyLikeNamedObjectsAreMadeAndDeletedInOneEditEach) {
    XObject const parent = named(L"parent");
    inBlock([&] {
        for (int i = 0; i < 20000; ++i) named(L"Joint", parent);
    });
    EXPECT_EQ(parent.ChildCount(), 20000);
    EXPECT_TRUE(parent.Child(L"Joint19999").IsValid());
    scene().DeleteObjects(L"parent|*");
    EXPECT_EQ(parent.ChildCount(), 0);
}

}  // namespace
}  // namespace Tavo
