#include "tests/objects/fixture.h"
#include <functional>

namespace Tavo {
namespace {

using Database = ObjectModel;
using testing::ElementsAre;

std::wstring noNode(std::wstring const& path) { return L"Unable to find a node with the path \"" + path + L"\""; }

// ---- life ----

TEST_F(Database, IsInertBeforeRegisterAndAfterUnregister) {
    XDatabase document;
    std::vector<std::wstring> const patterns{L"*"};
    Qelutils::Vector<XObject> out;
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(document.IsValid() || document.IsScene() || document.IsSettings());
        EXPECT_EQ(document.DatabaseID(), -1);
        document.BeginChangeBlock();
        document.EndChangeBlock(L"nothing");
        document.CancelChangeBlock();
        document.CommitTransient();
        document.DeleteObjects(patterns);
        document.CopyObjects(patterns);
        document.Objects(out);
        EXPECT_TRUE(out.empty());
        EXPECT_FALSE(document.Object(L"a").IsValid() || document.Object(1).IsValid() ||
                     document.Attribute(1).IsValid() || document.CreateObject(L"Joint").IsValid() ||
                     document.CreateNode(L"Joint").IsValid());
        document.Register();
        EXPECT_TRUE(document.IsValid());
        document.Unregister();
        document.Unregister();
    }
    EXPECT_FALSE(XDatabase::Undefined.IsValid());
}

TEST_F(Database, WhatADocumentMustOverrideIsLoggedByName) {
    XDatabase document;
    XObject object;
    int mode = 7;
    bool flag = true;
    float f = 2;
    std::vector<int> const ids;
    XVector3 const v;
    struct Call {
        wchar_t const* name;
        std::function<bool()> run;  // true: the operation gave true
    };
    auto const silent = [](auto const& run) { return [run] { return run(), false; }; };
    for (Call const& call : {
             Call{L"onRequestColour", [&] { return document.onRequestColour(nullptr, 0, nullptr, f, f, f, f); }},
             {L"onRequestColour", [&] { return document.onRequestColour(nullptr, 0, nullptr, 1, f, f, f, f); }},
             {L"onRequestSelectability", [&] { return document.onRequestSelectability(nullptr, 0, nullptr, flag); }},
             {L"onRequestVisibility", [&] { return document.onRequestVisibility(nullptr, 0, nullptr, flag); }},
             {L"onRequestEditMode", [&] { return document.onRequestEditMode(mode); }},
             {L"onControllerEnter", silent([&] { document.onControllerEnter(nullptr, 0, 0, false, false, false); })},
             {L"onControllerExit", silent([&] { document.onControllerExit(nullptr, 0, 0); })},
             {L"onControllerCancel", silent([&] { document.onControllerCancel(nullptr, 0, 0); })},
             {L"onControllerTranslation", silent([&] { document.onControllerTranslation(nullptr, v); })},
             {L"onControllerRotation", silent([&] { document.onControllerRotation(nullptr, 1.0f, v); })},
             {L"onControllerRotation", silent([&] { document.onControllerRotation(nullptr, v, 0); })},
             {L"onControllerScaleEnter", silent([&] { document.onControllerScaleEnter(nullptr); })},
             {L"onControllerScale", silent([&] { document.onControllerScale(nullptr, v); })},
             {L"onControllerReportSelection",
              silent([&] { document.onControllerReportSelection(nullptr, ids, ids, 0); })},
             {L"onControllerReportCamera", silent([&] { document.onControllerReportCamera(nullptr, 0); })},
             {L"reparent", silent([&] { document.reparent(object, object, false, false); })},
             {L"unparent", silent([&] { document.unparent(object); })},
         }) {
        EXPECT_FALSE(call.run()) << call.name;
        EXPECT_THAT(errors(), ElementsAre(L"Pure virtual \"" + std::wstring(call.name) + L"\" is being invoked."));
    }
    EXPECT_TRUE(mode == 7 && flag && f == 2);
}

TEST_F(Database, WhatADocumentMayLeaveAsItIsDoesNothing) {
    XDatabase document;
    XObject object;
    float value = 2;
    document.ConvertUnits(LengthUnit, ToExternalUnits, value);
    document.ConvertUnits(sg::Linear, ToExternalUnits, value);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(document.Units(LengthUnit), L"");
    EXPECT_TRUE(document.queryIsEditable(object) && document.queryIsVisible(object) &&
                document.queryIsCopyable(object));
    EXPECT_FALSE(document.queryIsSelected(object));
}

// ---- lookup ----

TEST_F(Database, AFailedProbeLogsOneError) {
    EXPECT_FALSE(scene().IsObject(L"nowhere"));
    EXPECT_THAT(errors(), ElementsAre(noNode(L"nowhere")));
    EXPECT_FALSE(scene().IsObjectID(-1));
    EXPECT_THAT(errors(), ElementsAre(L"Unable to find a node with the id \"-1\""));
    EXPECT_FALSE(scene().Object(123456789).IsValid());
    EXPECT_THAT(errors(), ElementsAre(L"Unable to find a node with the id \"123456789\""));
}

TEST_F(Database, TheDatabaseItselfIsNoObject) {
    EXPECT_FALSE(scene().Object(scene().DatabaseID()).IsValid());
    EXPECT_FALSE(scene().Attribute(scene().DatabaseID()).IsValid());
    EXPECT_FALSE(XObject(static_cast<db::Node*>(&graph())).IsValid());
}

TEST_F(Database, TheProtectedLookupsLogAlike) {
    TestDocument document;
    XObject const joint = document.CreateObject(L"Joint");
    EXPECT_EQ(document.getAttribute(joint.ObjectID(), 21), document.getAttribute(L"joint", 21));
    EXPECT_EQ(document.getAttribute(joint.ObjectID(), L"Name"), document.getAttribute(L"joint.Name"));
    EXPECT_EQ(document.getAttribute(joint.getNode(), 0), document.getAttribute(joint.getNode(), L"Name"));
    EXPECT_EQ(errors(), none());
    EXPECT_EQ(document.getAttribute(L"no", 0), nullptr);
    EXPECT_EQ(document.getAttribute(L"joint", L"no"), nullptr);
    EXPECT_THAT(errors(), ElementsAre(noNode(L"no"), noNode(L"joint.no")));
}

TEST_F(Database, NamesAreWhatFollowsTheLastSeparator) {
    EXPECT_EQ(XDatabase::extractNameFromPath(L"a|b|c"), L"c");
    EXPECT_EQ(XDatabase::extractNameFromPath(L"a"), L"a");
    EXPECT_EQ(XDatabase::extractNameFromPath(L"a|"), L"");
}

TEST_F(Database, ListsObjectsByTypeAndPattern) {
    TestDocument document;
    XObject const joint = document.CreateObject(L"Joint"), camera = document.CreateObject(L"Camera");
    XObject child = document.CreateObject(L"Joint", joint);
    child.AddFloatAttribute(L"x").ConnectInputTo(joint.Attribute(21));
    Qelutils::Vector<XObject> out;
    document.Objects(out);
    EXPECT_EQ(out.size(), 3u) << "a connection is no object";
    document.Objects(L"Joint", IsObjectType, out);
    EXPECT_EQ(out.size(), 2u);
    document.Objects(L"Transform", SupportsObjectType, out);
    EXPECT_EQ(out.size(), 3u);
    document.Objects(L"Joint", XComparisonMode(7), out);
    EXPECT_TRUE(out.empty());
    document.Objects(L"joint|*", out);
    EXPECT_THAT(out, ElementsAre(child));
    document.Objects(std::wstring(), out);
    EXPECT_EQ(out.size(), 3u);
    document.Objects(std::vector<std::wstring>{L"cam*", L"joint|j*"}, out);
    EXPECT_THAT(out, ElementsAre(camera, child));
    document.Objects(std::vector<std::wstring>{}, out);
    EXPECT_EQ(out.size(), 3u);
    std::vector<std::wstring> paths;
    EXPECT_TRUE(document.findMatchingPaths(L"joint|*", paths));
    EXPECT_THAT(paths, ElementsAre(L"joint|joint"));
    EXPECT_FALSE(document.findMatchingDeletableObjectPaths(L"none*", paths));
}

// ---- the lookup's memory ----

TEST_F(Database, TheEighthDistinctIdDropsTheOldest) {
    TestDocument document;
    XSceneLookup lookup(document);
    std::vector<XObject> objects;
    for (int i = 0; i < 8; ++i) objects.push_back(document.CreateObject(L"Null"));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(lookup.Node(objects[i].ObjectID()), objects[i].getNode());
    lookup.Node(objects[0].ObjectID());  // comes to the front, so that the second is the oldest
    lookup.Node(objects[7].ObjectID());
    std::vector<sg::Node*> nodes;
    for (XObject& object : objects) nodes.push_back(object.getNode());
    document.BeginChangeBlock();
    for (sg::Node* node : nodes) node->remove();  // only what the cache holds is still found
    EXPECT_EQ(lookup.Node(objects[1].ObjectID()), nullptr);
    for (int i : {0, 2, 3, 4, 5, 6, 7}) EXPECT_EQ(lookup.Node(objects[i].ObjectID()), nodes[i]) << i;
    document.EndChangeBlock();
    EXPECT_EQ(lookup.Node(-1), nullptr);
    EXPECT_EQ(lookup.Attribute(-1), nullptr);
}

TEST_F(Database, ADeletedAttributeStaysInTheCacheAndADeletedObjectEmptiesIt) {
    XSceneLookup lookup(scene());
    XObject object = named(L"object"), other = named(L"other");
    XAttribute const attribute = object.AddFloatAttribute(L"f");
    int const id = attribute.AttributeID();
    db::Attribute* const raw = attribute.getAttribute();
    EXPECT_EQ(lookup.Attribute(id), raw);
    inBlock([&] { raw->remove(); });
    EXPECT_EQ(lookup.Attribute(id), raw);
    EXPECT_FALSE(XAttribute(raw).IsValid()) << "and harms nobody";
    inBlock([&] { other.Delete(); });
    EXPECT_EQ(lookup.Attribute(id), nullptr);
}

TEST_F(Database, WhatDiedUnnoticedIsNotFoundInTheCache) {
    TestDocument document;
    XSceneLookup lookup(document);
    int const id = document.CreateObject(L"Null").ObjectID();
    EXPECT_NE(lookup.Node(id), nullptr);
    document.SceneGraph()->setMaxUndoItems(0);
    document.clearNodes();
    document.SceneGraph()->commitTransient();
    document.SceneGraph()->ClearUndoHistory();
    EXPECT_EQ(lookup.Node(id), nullptr);
}

// ---- creation ----

TEST_F(Database, ANewObjectIsNamedAfterItsType) {
    TestDocument document;
    EXPECT_EQ(document.CreateObject(L"Null").Name(), L"Null");
    EXPECT_EQ(document.CreateObject(L"Null").Name(), L"Null1");
    EXPECT_FALSE(document.CreateObject(L"Nonsense").IsValid() || document.CreateNode(L"Nonsense").IsValid());
    EXPECT_EQ(errors(), none());
}

// ---- edits ----

TEST_F(Database, AnEditThatMatchesNothingIsOneEmptyBlock) {
    int const before = undoCount();
    scene().DeleteObjects(L"nothing*");
    EXPECT_FALSE(graph().isInChangeBlock());
    EXPECT_EQ(errors(), none());
    EXPECT_LE(undoCount(), before + 1);
}

TEST_F(Database, DeletingAParentAndItsChildEndsAfterTheParent) {
    XObject const a = named(L"match"), b = named(L"match", a);
    graph().ClearUndoHistory();
    scene().DeleteObjects(L"match*");
    EXPECT_FALSE(a.IsValid() || b.IsValid());
    EXPECT_EQ(errors(), none());
    EXPECT_EQ(graph().getUndoLabel(), L"Deleting objects");
    EXPECT_EQ(undoCount(), 1);
    graph().Undo();
    EXPECT_TRUE(a.IsValid() && b.IsValid());
}

TEST_F(Database, WhatRefusesDeletionIsNotMatched) {
    XObject const a = named(L"SceneNot");
    scene().DeleteObjects(L"Scene*");
    EXPECT_TRUE(scene().RootObject().IsValid());
    EXPECT_FALSE(a.IsValid());
}

TEST_F(Database, RemovingKeepsTheChildrenAndDeletingTakesThem) {
    XObject const top = make(L"Transform"), a = make(L"Transform", top).SetName(L"a"), kept = make(L"Joint", a);
    graph().ClearUndoHistory();
    scene().RemoveObjects(L"a");
    EXPECT_FALSE(a.IsValid());
    EXPECT_EQ(kept.Parent(), top);
    EXPECT_EQ(graph().getUndoLabel(), L"Removing objects");
    scene().DeleteObjects(std::vector<std::wstring>{top.Path()});
    EXPECT_FALSE(kept.IsValid());
}

TEST_F(Database, RenamingNumbersTheMatches) {
    XObject const p = named(L"p"), a = named(L"x1", p), b = named(L"x2", p);
    graph().ClearUndoHistory();
    scene().RenameObjects(std::vector<std::wstring>{L"x*"}, L"bone");
    EXPECT_THAT((Names{a.Name(), b.Name()}), ElementsAre(L"bone", L"bone1"));
    EXPECT_EQ(graph().getUndoLabel(), L"Renaming objects");
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(Database, ReparentingToAMissingParentLogsOnceAndChangesNothing) {
    XObject const p = named(L"p"), a = named(L"x1", p);
    scene().ReparentObjects(L"x*", L"nowhere");
    EXPECT_THAT(errors(), ElementsAre(noNode(L"nowhere")));
    EXPECT_EQ(a.Parent(), p);
}

TEST_F(Database, ReparentingMovesAllMatchesThoughTheirPathsChange) {
    XObject const p = make(L"Transform").SetName(L"p"), a = make(L"Joint").SetName(L"x1"),
                  b = make(L"Joint", a).SetName(L"x2");
    graph().ClearUndoHistory();
    scene().ReparentObjects(std::vector<std::wstring>{L"x1", L"x2"}, p.Path());
    EXPECT_EQ(a.Parent(), p);
    EXPECT_EQ(b.Parent(), p);
    EXPECT_EQ(graph().getUndoLabel(), L"Reparenting objects");
    scene().UnparentObjects(L"x2");
    EXPECT_EQ(b.Parent(), scene().RootObject());
}

TEST_F(Database, UnparentingSeveralEndsItsBlockTwiceAndLosesItsLabel) {
    XObject const p = make(L"Transform").SetName(L"p"), a = make(L"Joint", p).SetName(L"x1");
    graph().ClearUndoHistory();
    scene().UnparentObjects(std::vector<std::wstring>{L"x*"});
    EXPECT_EQ(a.Parent(), scene().RootObject());
    EXPECT_FALSE(graph().isInChangeBlock());
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(graph().getUndoLabel(), L"");
}

TEST_F(Database, CopyingSeveralIsOneStepWithoutALabel) {
    XObject const p = named(L"p");
    named(L"x1", p), named(L"x2", p);
    graph().ClearUndoHistory();
    scene().CopyObjects({L"x*"});
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(graph().getUndoLabel(), L"");
    Qelutils::Vector<XObject> copies;
    scene().Objects(L"x*_copy", copies);
    EXPECT_EQ(copies.size(), 2u);
}

// ---- change blocks ----

TEST_F(Database, BlocksNestAndTheOutermostNamesTheStep) {
    XAttribute f = named(L"a").AddFloatAttribute(L"f");
    graph().ClearUndoHistory();
    scene().BeginChangeBlock();
    inBlock([&] { f.SetFloat(1); });
    EXPECT_EQ(undoCount(), 0);
    scene().EndChangeBlock(L"outer");
    EXPECT_EQ(graph().getUndoLabel(), L"outer");
    scene().EndChangeBlock(L"none open");
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(Database, ACancelledBlockIsRolledBack) {
    XAttribute f = named(L"a").AddFloatAttribute(L"f");
    inBlock([&] { f.SetFloat(1); });
    scene().BeginChangeBlock();
    f.SetFloat(2);
    XObject const made = named(L"made");
    scene().CancelChangeBlock();
    EXPECT_EQ(f.Float(), 1);
    EXPECT_FALSE(made.IsValid());
}

}  // namespace
}  // namespace Tavo
