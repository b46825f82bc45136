// What commands and imports tell script engines of objects.
#include "tests/app/recorder.h"
#include "tests/commands/clip.h"
#include "tests/commands/rig_fixture.h"
#include <set>

namespace Tavo {
namespace {

using Lines = ObjectListener::Lines;

std::string deleted(XObject const& object) { return ObjectListener::line("Deleted", object); }
std::string removed(XObject const& object) { return ObjectListener::line("Removed", object); }
std::string reparented(XObject const& object) { return ObjectListener::line("Reparented", object); }

class CommandEvents : public RigTest {
protected:
    CommandEvents() {
        scene().CommitTransient();
        engine.take();
    }
    Lines of(Objects const& objects, std::wstring const& command) {
        select(objects);
        scene().CommitTransient();
        engine.take();
        run(command);
        return engine.take();
    }
    static std::set<int> ids() {
        Qelutils::Vector<XObject> all;
        scene().Objects(all);
        std::set<int> out;
        for (XObject const& each : all) out.insert(each.ObjectID());
        return out;
    }

    ObjectListener engine;
};

TEST_F(CommandEvents, DeleteTellsTheSelectedObjectsAndAllThatGoesWithThem) {
    Lines expected{deleted(spine)};
    for (XObject const& below : CommandTest::childrenOf(spine)) expected.push_back(deleted(below));
    expected.insert(expected.end(), {deleted(box), deleted(prop)});
    EXPECT_EQ(expected.size(), 7u) << "the chest and three curves are below the spine";
    EXPECT_EQ(of({spine, box}, L"Delete"), expected);
}

TEST_F(CommandEvents, RemoveTellsOfTheObjectAndOfItsChildrenThatMoved) {
    Lines expected;
    for (XObject const& below : CommandTest::childrenOf(spine)) expected.push_back(reparented(below));
    expected.push_back(removed(spine));
    EXPECT_EQ(of({spine}, L"Remove"), expected);
}

TEST_F(CommandEvents, ParentAndUnparentTellOfThoseThatMoved) {
    EXPECT_EQ(of({leg, chest, prop}, L"Parent"), (Lines{reparented(leg), reparented(chest)}));
    EXPECT_EQ(of({leg, hips}, L"Unparent"), Lines{reparented(leg)});
}

TEST_F(CommandEvents, UndoAndRedoTellNothing) {
    of({hips}, L"Delete");
    undo();
    redo();
    EXPECT_EQ(engine.take(), Lines());
}

TEST_F(CommandEvents, ACommandThatOnlyChangesValuesTellsNothing) {
    hips.RotationX().SetFloat(1);
    EXPECT_EQ(of({hips}, L"FreezeTransform"), Lines());
}

TEST_F(CommandEvents, ARigIsBuiltWhenTheFirstOfItsObjectsIsTold) {
    select({hips});
    scene().CommitTransient();
    std::set<int> known = ids();
    int const steps = undoCount();
    engine.answers["Created"] = [&](XObject const& object) {
        EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
        EXPECT_EQ(undoCount(), steps + 1);
        EXPECT_TRUE(known.insert(object.ObjectID()).second);
    };
    run(L"CreateIKRig");
    EXPECT_EQ(known, ids());
    EXPECT_EQ(undoCount(), steps + 1);
}

TEST_F(CommandEvents, AHandlerMayDeleteTheRigThatItIsToldOf) {
    select({hips});
    scene().CommitTransient();
    engine.answers["Created"] = [&](XObject const& object) {
        if (object.IsValid() && object.SupportsType(XIKHandle::TypeID)) XObject(object).Delete();
    };
    run(L"CreateIKRig");
    scene().CommitTransient();
    Qelutils::Vector<XObject> handles;
    scene().Objects(XIKHandle::TypeID, SupportsObjectType, handles);
    EXPECT_TRUE(handles.empty());
}

TEST_F(CommandEvents, AnImportTellsEachJointBehindItsParent) {
    std::set<int> told;
    int joints = 0;
    engine.answers["Created"] = [&](XObject const& object) {
        if (!object.IsType(XJoint::TypeID)) return;
        told.insert(object.ObjectID());
        EXPECT_TRUE(joints++ == 0 || told.count(object.Parent().ObjectID())) << object.ObjectID();
    };
    ASSERT_TRUE(importClipInto(scene(), 30, 3).IsValid());
    EXPECT_EQ(joints, 30);
}

}  // namespace
}  // namespace Tavo
