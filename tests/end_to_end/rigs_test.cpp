// Rigs on a real clip: a walking figure is posed by its handles, and another one walks with it.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "tavo/objects/scene_graph.h"
#include "tests/plugins/bvh/scene.h"

#include <algorithm>
#include <cmath>

using namespace bvh;
using namespace Tavo;

namespace {

constexpr float millimetre = 0.001f;  // metres

class Rigs : public SceneTest {
protected:
    // A figure below a transform of its own, with all its curves.
    XTransform bring(std::wstring const& name, Unit unit) {
        static std::wstring const label = L"bring";
        ImportOptions options;
        options.unit = unit;
        ImportReport const report = import(mustRead(fileText(sourceFolder() / "examples/walk.bvh")), options);
        XChangeBlock const block(scene(), label);
        XTransform top(scene().CreateObject(XTransform::TypeID));
        top.SetName(name);
        joint(report, 0).SetParent(top);
        return top;
    }
    static XJoint find(XTransform const& top, std::wstring const& name) {
        Qelutils::Vector<XObject> joints;
        top.DescendantObjects(joints, XJoint::TypeID, IsObjectType);
        auto const it = std::find_if(joints.begin(), joints.end(), [&](XObject const& o) { return o.Name() == name; });
        return it == joints.end() ? XJoint() : XJoint(*it);
    }
    XObject run(std::wstring const& command, Qelutils::Vector<XObject> const& selection) {
        scene().Selection().Select(selection);
        return scene().RunCommand(command);
    }
    void saveAndLoad() {
        scene().CommitTransient();
        db::StringOutputStream saved, again;
        EXPECT_TRUE(db::SaverXML(saved).save(*scene().SceneGraph()));
        db::StringInputStream stream(saved.text());
        ASSERT_TRUE(db::LoaderXML(stream).load(*scene().SceneGraph()));
        scene().Open();
        EXPECT_TRUE(db::SaverXML(again).save(*scene().SceneGraph()));
        EXPECT_TRUE(again.text() == saved.text());
    }
    XTransform top(std::wstring const& name) { return XTransform(scene().RootObject().Child(name)); }
    static XIKHandle handleOf(XIKSolver const& solver, XObject const& effector) {
        for (int i = 0; i < solver.IKHandleReferences().ArraySize(); ++i)
            if (XIKHandle handle(solver.IKHandleReferences().ObjectRef(i)); handle.EndEffectorTransform() == effector)
                return handle;
        return {};
    }
    static float distance(XTransform const& a, XTransform const& b) {
        return a.WorldTranslation().DistanceTo(b.WorldTranslation());
    }
    // The largest difference of the axes of any two joints in the order of the hierarchy.
    static float worstTurn(XTransform const& a, XTransform const& b) {
        Qelutils::Vector<XObject> joints, others;
        a.DescendantObjects(joints, XJoint::TypeID, IsObjectType);
        b.DescendantObjects(others, XJoint::TypeID, IsObjectType);
        EXPECT_EQ(joints.size(), others.size());
        float worst = 0;
        for (std::size_t j = 0; j < joints.size() && j < others.size(); ++j) {
            XMatrix const m = XTransform(joints[j]).WorldMatrix().Matrix(),
                          n = XTransform(others[j]).WorldMatrix().Matrix();
            for (int i = 0; i < 9; ++i)
                worst = std::max(worst, std::abs(m.Element(i / 3, i % 3) - n.Element(i / 3, i % 3)));
        }
        return worst;
    }
};

TEST_F(Rigs, AFigureFollowsItsHandleAndKeepsItsFeetOnTheGround) {
    XTransform const top = bring(L"figure", Unit::centimetre);
    go(0.5);
    XJoint const hips = find(top, L"Hips"), hand = find(top, L"LeftHand"), left = find(top, L"LeftFoot"),
                 right = find(top, L"RightFoot");
    std::vector<XVector3> before;
    for (XJoint const& each : {hips, hand, left, right}) before.push_back(each.WorldTranslation());
    XIKSolver const solver(run(L"CreateIKRig", {hips, hand, left, right}));
    ASSERT_TRUE(solver.IsValid());
    EXPECT_TRUE(log.errors.empty());
    std::size_t i = 0;
    for (XJoint const& each : {hips, hand, left, right})
        EXPECT_LT(each.WorldTranslation().DistanceTo(before[i++]), 1e-4f) << Qelutils::toUtf8(each.Name());
    XIKHandle handle = handleOf(solver, hand);
    for (XVector3 const& step :
         {XVector3(0.02f, 0.05f, 0), XVector3(0.03f, 0.05f, 0.05f), XVector3(0, -0.02f, -0.1f)}) {
        handle.WorldTranslate(step);
        for (XJoint const& each : {hand, left, right})
            EXPECT_LT(distance(each, handleOf(solver, each)), millimetre) << Qelutils::toUtf8(each.Name());
    }
}

TEST_F(Rigs, AFigureOfTheSameShapeWalksAlike) {
    XTransform const first = bring(L"first", Unit::centimetre), second = bring(L"second", Unit::centimetre);
    go(0);
    ASSERT_TRUE(run(L"RetargetAttach", {first, second}).IsValid());
    EXPECT_TRUE(log.errors.empty());
    EXPECT_FALSE(find(second, L"LeftArm").RotationX().IsAnimated());
    for (double t : {0.0, 0.4, 0.9, 1.3, 0.4}) {
        go(t);
        EXPECT_LT(worstTurn(first, second), 2e-3f) << t;
        EXPECT_LT(distance(find(first, L"Head"), find(second, L"Head")), millimetre) << t;
        EXPECT_LT(distance(find(first, L"RightToe"), find(second, L"RightToe")), millimetre) << t;
    }
}

TEST_F(Rigs, AFigureThatWasSavedStillWalksWithTheOther) {
    ASSERT_TRUE(
        run(L"RetargetAttach", {bring(L"first", Unit::centimetre), bring(L"second", Unit::centimetre)}).IsValid());
    saveAndLoad();
    for (double t : {0.4, 1.3}) {
        go(t);
        EXPECT_LT(worstTurn(top(L"first"), top(L"second")), 2e-3f) << t;
        EXPECT_LT(distance(find(top(L"first"), L"Head"), find(top(L"second"), L"Head")), millimetre) << t;
    }
}

TEST_F(Rigs, AFigureThatLetsGoStandsStill) {
    XTransform const first = bring(L"first", Unit::centimetre), second = bring(L"second", Unit::centimetre);
    ASSERT_TRUE(run(L"RetargetAttach", {first, second}).IsValid());
    go(0.4);
    XVector3 const at = find(second, L"LeftHand").WorldTranslation();
    run(L"RetargetDetach", {first});
    EXPECT_LT(find(second, L"LeftHand").WorldTranslation().DistanceTo(at), 1e-5f);
    go(1.3);
    EXPECT_LT(find(second, L"LeftHand").WorldTranslation().DistanceTo(at), 1e-5f);
    EXPECT_GT(find(first, L"LeftHand").WorldTranslation().DistanceTo(at), 0.01f);
}

TEST_F(Rigs, ALargerFigureTurnsAlikeAndTravelsInItsOwnMeasure) {
    XTransform const first = bring(L"first", Unit::centimetre), second = bring(L"second", Unit::inch);
    go(0);
    ASSERT_TRUE(run(L"RetargetAttach", {first, second}).IsValid());
    for (double t : {0.0, 0.4, 0.9, 1.3}) {
        go(t);
        EXPECT_LT(worstTurn(first, second), 2e-3f) << t;
        XVector3 const expected = XVector3().Multiply(2.54f, find(first, L"Head").WorldTranslation());
        EXPECT_LT(expected.DistanceTo(find(second, L"Head").WorldTranslation()), 0.01f) << t;
    }
}

}  // namespace
