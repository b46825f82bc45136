// What is done to the selected objects.
#include "tests/commands/fixture.h"

namespace Tavo {
namespace {

using Objects = std::vector<XObject>;

class EditCommands : public CommandTest {
protected:
    static XMatrix world(XTransform const& transform) { return transform.WorldMatrix().Matrix(); }
    static void expectNear(XMatrix const& a, XMatrix const& b) {
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(a.Element(i / 4, i % 4), b.Element(i / 4, i % 4), 1e-5f) << "element " << i;
    }
    static int keyCount(XAttribute const& channel) {
        return channel.IsAnimated() ? channel.Animation().KeyframeCount() : 0;
    }
    static void runOn(Objects const& objects, std::wstring const& command) {
        select(objects);
        scene().CommitTransient();
        run(command);
    }
    // Runs it on the objects and tells whether the document stayed what it was.
    static bool changesNothing(Objects const& objects, std::wstring const& command) {
        select(objects);
        std::string const before = bytes();
        run(command);
        return bytes() == before;
    }
    static Objects atTheTop() { return childrenOf(scene().RootObject()); }
};

// ---- delete and remove ----

TEST_F(EditCommands, DeleteTakesTheObjectsWithAllBelowAndTheirCurves) {
    XAnimation const curve = spine.RotationX().Animation();
    ASSERT_TRUE(curve.IsValid());
    int const id = chest.ObjectID();
    runOn({spine, box}, L"Delete");
    for (XObject const& gone : Objects{spine, chest, curve, box}) EXPECT_FALSE(gone.IsValid());
    EXPECT_FALSE(prop.IsValid());  // a transform goes with its only shape
    EXPECT_TRUE(hips.IsValid() && leg.IsValid());
    EXPECT_TRUE(selected().empty());
    undo();
    EXPECT_TRUE(spine.IsValid() && prop.IsValid());
    EXPECT_EQ(chest.ObjectID(), id);
    EXPECT_EQ(spine.RotationX().Animation(), curve);
    EXPECT_EQ(selected(), (Objects{spine, box}));
}

TEST_F(EditCommands, DeleteOfWhatIsBelowAnotherSelectedOneIsSilent) {
    runOn({hips, chest, spine}, L"Delete");
    EXPECT_FALSE(hips.IsValid() || spine.IsValid() || chest.IsValid());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(EditCommands, TheRootOfTheSceneCannotBeDeletedRemovedOrMoved) {
    XTransform const root = scene().RootObject();
    runOn({root}, L"Delete");
    EXPECT_TRUE(root.IsValid());
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"The object 'Scene' does not support deletion"});
    EXPECT_TRUE(selected().empty());
    runOn({root}, L"Remove");
    EXPECT_TRUE(root.IsValid() && hips.IsValid());
    runOn({root, hips}, L"Parent");
    EXPECT_FALSE(root.Parent().IsValid());
    runOn({root}, L"Unparent");
    EXPECT_FALSE(root.Parent().IsValid());
}

TEST_F(EditCommands, RemoveLeavesTheChildrenWhereTheyAre) {
    XMatrix const before = world(chest);
    runOn({spine}, L"Remove");
    EXPECT_FALSE(spine.IsValid());
    EXPECT_EQ(chest.Parent(), hips);
    expectNear(world(chest), before);
    EXPECT_TRUE(selected().empty());
    runOn({hips}, L"Remove");
    EXPECT_EQ(chest.Parent(), scene().RootObject());
    expectNear(world(chest), before);
}

// ---- parents ----

TEST_F(EditCommands, TheLastSelectedBecomesTheParentOfTheOthers) {
    XMatrix const before = world(chest);
    runOn({chest, leg, prop}, L"Parent");
    EXPECT_EQ(chest.Parent(), prop);
    EXPECT_EQ(leg.Parent(), prop);
    expectNear(world(chest), before);
    EXPECT_EQ(selected(), (Objects{chest, leg, prop}));
    EXPECT_EQ(scene().SceneGraph()->getUndoLabel(), L"");
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"Unable to find a node with the path \"\""});
}

TEST_F(EditCommands, ParentNeedsTwoObjectsAndNoCircle) {
    EXPECT_TRUE(changesNothing({}, L"Parent"));
    EXPECT_TRUE(changesNothing({chest}, L"Parent"));
    EXPECT_TRUE(changesNothing({hips, chest}, L"Parent"));
}

TEST_F(EditCommands, UnparentMovesBelowTheRoot) {
    XMatrix const before = world(chest);
    runOn({chest, hips}, L"Unparent");
    EXPECT_EQ(chest.Parent(), scene().RootObject());
    EXPECT_EQ(hips.Parent(), scene().RootObject());
    expectNear(world(chest), before);
}

// ---- the clipboard is the host's ----

TEST_F(EditCommands, CopyAndPasteAreStepsThatHoldNothing) {
    select({spine});
    scene().SceneGraph()->setCheckpoint();
    std::string const before = bytes();
    for (wchar_t const* command : {L"Copy", L"Paste"}) {
        scene().SceneGraph()->ClearUndoHistory();
        EXPECT_FALSE(run(command).IsValid());
        EXPECT_EQ(undoCount(), 1);
        EXPECT_TRUE(bytes() == before);
        undo();
        EXPECT_EQ(undoCount(), 0);
        redo();
        EXPECT_EQ(undoCount(), 1);
        EXPECT_TRUE(bytes() == before);
        EXPECT_TRUE(scene().SceneGraph()->isAtCheckpoint());
    }
}

// ---- groups ----

TEST_F(EditCommands, GroupMovesTheSelectedBelowANewTransform) {
    XMatrix const before = world(leg);
    runOn({leg, box}, L"Group");
    XTransform const group(scene().RootObject().Child(L"group"));
    ASSERT_TRUE(group.IsValid());
    EXPECT_EQ(group.ObjectType(), XTransform::TypeID);
    EXPECT_EQ(childrenOf(group), (Objects{leg, prop}));  // a shape stands for its transform
    EXPECT_EQ(box.Parent(), prop);
    expectNear(world(leg), before);
    EXPECT_EQ(selected(), (Objects{leg, box}));
}

TEST_F(EditCommands, GroupOfNothingIsAnEmptyTransformWithANameOfItsOwn) {
    for (std::wstring const name : {L"group", L"group1", L"group2"}) {
        runOn({}, L"Group");
        XObject const group = atTheTop().back();
        EXPECT_EQ(group.Name(), name);
        EXPECT_EQ(group.ChildCount(), 0);
    }
}

TEST_F(EditCommands, GroupTakesParentAndChildSideBySide) {
    XTransform const child(scene().CreateObject(XTransform::TypeID, prop));
    XTransform(child).SetTranslation(1, 2, 3);
    XMatrix const before = world(child);
    runOn({prop, child}, L"Group");
    XObject const group = scene().RootObject().Child(L"group");
    EXPECT_EQ(childrenOf(group), (Objects{prop, child}));
    expectNear(world(child), before);
}

TEST_F(EditCommands, GroupLeavesTheRootOfTheSceneAndWhatHangsDirectlyBelowItAsAShape) {
    box.SetParent(scene().RootObject());
    runOn({scene().RootObject(), box}, L"Group");
    XObject const group = scene().RootObject().Child(L"group");
    EXPECT_EQ(group.ChildCount(), 0);
    EXPECT_EQ(box.Parent(), scene().RootObject());
    EXPECT_FALSE(scene().RootObject().Parent().IsValid());
}

TEST_F(EditCommands, GroupTakesTwoShapesOfATransformWithItOnce) {
    XObject const second = scene().CreateObject(XPrimitive::TypeID, prop);
    runOn({box, second, prop}, L"Group");
    XObject const group = scene().RootObject().Child(L"group");
    EXPECT_EQ(childrenOf(group), Objects{prop});
    EXPECT_EQ(prop.Name(), L"prop");
    EXPECT_EQ(childrenOf(prop), (Objects{box, second}));
}

// ---- keys ----

TEST_F(EditCommands, SetKeyKeysWhatTheActiveToolChangesAtTheCurrentTime) {
    auto const counts = [](XTransform const& t) {
        return std::vector<int>{keyCount(t.TranslationX()), keyCount(t.TranslationY()), keyCount(t.TranslationZ()),
                                keyCount(t.RotationX()),    keyCount(t.RotationY()),    keyCount(t.RotationZ()),
                                keyCount(t.ScaleX()),       keyCount(t.ScaleY()),       keyCount(t.ScaleZ())};
    };
    std::map<std::wstring, std::vector<int>> const expected = {
        {L"MoveTool", {1, 1, 1, 4, 4, 4, 0, 0, 0}},   {L"RotateTool", {0, 0, 0, 5, 5, 5, 0, 0, 0}},
        {L"ScaleTool", {0, 0, 0, 4, 4, 4, 1, 1, 1}},  {L"SelectTool", {0, 0, 0, 4, 4, 4, 0, 0, 0}},
        {L"TimingTool", {0, 0, 0, 4, 4, 4, 0, 0, 0}}, {L"CameraTool", {0, 0, 0, 4, 4, 4, 0, 0, 0}},
        {L"NullTool", {0, 0, 0, 4, 4, 4, 0, 0, 0}}};
    for (auto const& [tool, keys] : expected) {
        SCOPED_TRACE(Qelutils::toUtf8(tool));
        build();
        scene().SetActiveTool(tool);
        float const y = spine.TranslationY().Float(), turn = spine.RotationX().Float();
        runOn({spine}, L"SetKey");
        EXPECT_EQ(counts(spine), keys);
        EXPECT_EQ(spine.TranslationY().Float(), y);
        EXPECT_NEAR(spine.RotationX().Float(), turn, 1e-6f);
        EXPECT_EQ(spine.TranslationY().Animation().Keyframe(0.25f).IsValid(), tool == L"MoveTool");
    }
}

TEST_F(EditCommands, SetKeyKeysARotationAsAWholeWhereItIsInterpolatedSo) {
    scene().SetActiveTool(unsigned(RotateTool));
    prop.SetRotationEulerAngles(0.1f, 0.2f, 0.3f);
    runOn({prop}, L"SetKey");
    XAnimation const curve = prop.RotationX().Animation();
    EXPECT_EQ(curve, prop.RotationZ().Animation());
    EXPECT_EQ(curve.OutputMode().Enumeration(), XAnimation::RotationOutputMode);
    EXPECT_EQ(curve.KeyframeCount(), 1);
    EXPECT_NEAR(prop.RotationY().Float(), 0.2f, 1e-6f);
}

TEST_F(EditCommands, SetKeyOnAShapeKeysItsTransformAndPassesOverOthers) {
    runOn({scene().DisplayGroups(), box}, L"SetKey");
    EXPECT_EQ(keyCount(prop.TranslationX()), 1);
    undo();
    EXPECT_FALSE(prop.TranslationX().IsAnimated());
}

TEST_F(EditCommands, SetKeyTwiceAtATimeIsOneKey) {
    runOn({leg}, L"SetKey");
    leg.TranslationX().SetFloat(5);
    runOn({leg}, L"SetKey");
    EXPECT_EQ(keyCount(leg.TranslationX()), 1);
}

// ---- axes ----

TEST_F(EditCommands, AlignAxisPointsTheAxisAtTheChildrenWhichStay) {
    for (int axis : {0, 1, 2})
        for (int direction : {0, 1}) {
            SCOPED_TRACE(testing::Message() << "axis " << axis << " direction " << direction);
            build();
            auto const command = parameters<XAlignAxis>();
            command.Axis().SetEnumeration(axis);
            command.Direction().SetEnumeration(direction);
            XMatrix const atSpine = world(spine), atLeg = world(leg), atChest = world(chest);
            XVector3 const first = spine.WorldTranslation(), second = leg.WorldTranslation();
            XVector3 target = first;
            if (direction == AlignToChildAverage) target.Add(second).Scale(0.5f);
            runOn({hips}, L"AlignAxis");
            XMatrix const m = world(hips);
            XVector3 const pointing = axis == 0 ? m.XAxis() : axis == 1 ? m.YAxis() : m.ZAxis();
            XVector3 const wanted = XVector3().Subtract(target, m.Translation()).Normalize();
            for (unsigned i = 0; i < 3; ++i) EXPECT_NEAR(pointing[i], wanted[i], 1e-5f);
            expectNear(world(spine), atSpine);
            expectNear(world(leg), atLeg);
            expectNear(world(chest), atChest);
            EXPECT_EQ(hips.RotationX().Float(), 0);  // frozen, and without its curves
            EXPECT_FALSE(hips.IsAnimated());
        }
}

TEST_F(EditCommands, AlignAxisPassesOverShapesAndWhatHasNoChildren) {
    scene().CreateObject(XTransform::TypeID, prop);
    EXPECT_TRUE(changesNothing({box, leg, chest}, L"AlignAxis"));
}

// ---- freezing ----

TEST_F(EditCommands, FreezeTransformMovesThePoseToThatOfRest) {
    prop.SetRotationEulerAngles(0.1f, 0.2f, 0.3f);
    XMatrix const before = world(prop);
    runOn({prop}, L"FreezeTransform");
    for (XAttribute const& zero : {prop.TranslationX(), prop.TranslationY(), prop.RotationX(), prop.RotationZ()})
        EXPECT_EQ(zero.Float(), 0);
    EXPECT_EQ(prop.PreTranslationX().Float(), 2);
    EXPECT_NEAR(prop.PreRotationZ().Float(), 0.3f, 1e-6f);
    expectNear(world(prop), before);
    runOn({prop}, L"FreezeTransform");
    expectNear(world(prop), before);
    EXPECT_EQ(prop.PreTranslationX().Float(), 2);
}

TEST_F(EditCommands, FreezeTransformDoesWhatItsParametersSay) {
    auto const command = parameters<XFreezeTransform>();
    for (bool translation : {false, true})
        for (bool rotation : {false, true}) {
            SCOPED_TRACE(testing::Message() << translation << rotation);
            build();
            prop.SetRotationEulerAngles(0.1f, 0.2f, 0.3f);
            command.FreezeTranslation().SetBoolean(translation);
            command.FreezeRotation().SetBoolean(rotation);
            EXPECT_EQ(changesNothing({prop}, L"FreezeTransform"), !translation && !rotation);
            EXPECT_EQ(prop.TranslationX().Float() == 0, translation);
            EXPECT_EQ(prop.RotationX().Float() == 0, rotation);
        }
}

TEST_F(EditCommands, FreezeTransformOnAShapeFreezesItsTransform) {
    XMatrix const before = world(prop);
    runOn({scene().DisplayGroups(), box, prop}, L"FreezeTransform");
    EXPECT_EQ(prop.TranslationX().Float(), 0);
    EXPECT_EQ(prop.PreTranslationX().Float(), 2);
    expectNear(world(prop), before);
}

}  // namespace
}  // namespace Tavo
