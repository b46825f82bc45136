// Retargeting as a node: from matrices that flow in to matrices that flow out. The method itself is tested beside it.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include "tests/qel/solvers/humanoid.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace sg {
namespace {

using R = RetargetNode;
using Qelp::Matrix34;
using Pose = std::vector<Matrix34>;

struct RetargetNodeTest : ::testing::Test {
    RetargetNodeTest() {
        HumanoidOptions o;
        source = humanoid(o);
        o.turnsAxes = true, o.armsDown = 0.7, o.legs = 1.3, o.spines = 5;
        target = humanoid(o);
        node = static_cast<R*>(scene.makeNode(L"Retarget", L"retarget"));
        setSide(source, R::InputSourceGeometry, R::SourceHierarchy, R::SourceJointParams);
        setSide(target, R::OutputTargetGeometry, R::TargetHierarchy, R::TargetJointParams);
        setPose(source.origins);
    }
    db::AttributeArray& array(int number) { return node->at<db::AttributeArray>(number); }
    db::Attribute* part(int number, std::size_t joint, int child) {
        return array(number)[joint]->asComposite()->getAttribute(std::size_t(child));
    }
    void setSide(Skeleton const& s, int geometry, int hierarchy, int params) {
        array(geometry).resize(s.size()), array(params).resize(s.size());
        node->at<db::IntArrayAttribute>(hierarchy).setValue(s.parents);
        for (std::size_t i = 0; i < s.size(); ++i) {
            part(params, i, R::JointName)->asString()->setValue(s.names[i]);
            part(params, i, R::Origin)->asMatrix34()->setValue(s.origins[i]);
        }
    }
    void setPose(Pose const& pose) {
        for (std::size_t i = 0; i < pose.size(); ++i) array(R::InputSourceGeometry)[i]->asMatrix34()->setValue(pose[i]);
    }
    Pose result() {
        Pose out;
        for (std::size_t i = 0; i < target.size(); ++i)
            out.push_back(array(R::OutputTargetGeometry)[i]->asMatrix34()->getValue());
        return out;
    }
    Pose expected(Pose const& pose, std::vector<RetargetJoint> const& options = {}) {
        SkeletonMatch match;
        match.source = &source, match.target = &target;
        EXPECT_TRUE(match.Run());
        RetargetRig rig;
        rig.source = &source, rig.target = &target, rig.matches = match.matches, rig.targetOptions = options;
        EXPECT_TRUE(rig.Run());
        Pose out(target.size());
        Retarget frame;
        frame.rig = &rig, frame.source = pose, frame.target = out;
        EXPECT_TRUE(frame.Run());
        return out;
    }
    std::uint64_t work(auto const& reads) {
        std::uint64_t const before = scene.evaluations();
        reads();
        return scene.evaluations() - before;
    }
    Scene scene;
    Skeleton source, target;
    R* node = nullptr;
};

TEST_F(RetargetNodeTest, GivesWhatTheSolverGives) {
    for (double time : {0.0, 1.0, 2.5}) {
        Pose const pose = moved(source, time);
        setPose(pose);
        EXPECT_EQ(result(), expected(pose));
    }
}

TEST_F(RetargetNodeTest, APoseFlowsInFromJointsAndOutToOthers) {
    std::vector<Node*> joints, followers;
    for (std::size_t i = 0; i < source.size(); ++i) {
        joints.push_back(scene.makeNode(L"Joint", source.names[i]));
        auto& mode = joints[i]->at<db::EnumAttribute>(TransformNode::DataSource);
        mode.setValue(LocalMatrixSource);
        EXPECT_EQ(scene.connect(joints[i]->getAttribute(TransformNode::LocalMatrix), array(R::InputSourceGeometry)[i]),
                  Connected);
    }
    for (std::size_t i = 0; i < target.size(); ++i) {
        followers.push_back(scene.makeNode(L"Joint", L"follower"));
        followers[i]->at<db::EnumAttribute>(TransformNode::DataSource).setValue(LocalMatrixSource);
        EXPECT_EQ(scene.connect(array(R::OutputTargetGeometry)[i],
                                followers[i]->getAttribute(TransformNode::LocalMatrixInput)),
                  Connected);
    }
    for (double time : {1.0, 2.0, 3.0}) {
        Pose const pose = moved(source, time), out = expected(pose);
        for (std::size_t i = 0; i < source.size(); ++i)
            joints[i]->at<db::Matrix34Attribute>(TransformNode::LocalMatrixInput).setValue(pose[i]);
        for (std::size_t i = 0; i < target.size(); ++i)
            ASSERT_EQ(followers[i]->at<db::Matrix34Attribute>(TransformNode::LocalMatrix).getValue(), out[i]);
    }
}

TEST_F(RetargetNodeTest, AFrameIsOneEvaluationAndWhatNobodyReadsIsNone) {
    result();
    EXPECT_EQ(work([&] { setPose(moved(source, 1)); }), 0u);
    EXPECT_EQ(work([&] { result(); }), 1u);
    EXPECT_EQ(work([&] { result(); }), 0u);
}

TEST_F(RetargetNodeTest, ParametersThatChangeAreReadAnew) {
    Pose const pose = moved(source, 1);
    setPose(pose);
    result();
    std::vector<RetargetJoint> options(target.size());
    options[3].rotationWeight = 0.5;
    part(R::TargetJointParams, 3, R::RotationWeight)->asFloat()->setValue(0.5F);
    EXPECT_EQ(result(), expected(pose, options));
    options[7].mode = RetargetMode::Fixed;
    part(R::TargetJointParams, 7, R::Mode)->asEnum()->setValue(0);
    EXPECT_EQ(result(), expected(pose, options));
    options[5].offset = {0, 0.5, 0};
    part(R::TargetJointParams, 5, R::Offset + 1)->asFloat()->setValue(0.5F);
    EXPECT_EQ(result(), expected(pose, options));
    options[9].isActive = false;
    part(R::TargetJointParams, 9, R::Active)->asBool()->setValue(false);
    EXPECT_EQ(result(), expected(pose, options));
    target.origins[2].m[3][1] += 0.1F;
    part(R::TargetJointParams, 2, R::Origin)->asMatrix34()->setValue(target.origins[2]);
    EXPECT_EQ(result(), expected(pose, options));
    target.names[8] = L"nothing";
    part(R::TargetJointParams, 8, R::JointName)->asString()->setValue(target.names[8]);
    EXPECT_EQ(result(), expected(pose, options));
}

TEST_F(RetargetNodeTest, LimitsActUnlessDisabled) {
    Pose const pose = moved(source, 1, 1);
    setPose(pose);
    std::size_t const arm =
        std::size_t(std::find(target.names.begin(), target.names.end(), L"LeftArm") - target.names.begin());
    std::vector<RetargetJoint> options(target.size());
    JointLimit limit;
    limit.swing1Angle = limit.swing2Angle = 0.25, limit.twistAngle = 0.125;
    limit.fixedFrame = rotationOfFrame(target.origins[arm]);
    options[arm].limit = limit;
    for (int child : {R::Swing1Active, R::Swing2Active, R::TwistActive})
        part(R::TargetJointParams, arm, child)->asBool()->setValue(true);
    for (int child : {R::Swing1Angle, R::Swing2Angle})
        part(R::TargetJointParams, arm, child)->asFloat()->setValue(0.25F);
    part(R::TargetJointParams, arm, R::TwistAngle)->asFloat()->setValue(0.125F);
    part(R::TargetJointParams, arm, R::LimitMatrix)->asMatrix34()->setValue(target.origins[arm]);
    EXPECT_EQ(result(), expected(pose, options));
    EXPECT_EQ(node->getLimitHits(), 1);
    node->at<db::BoolAttribute>(R::DisableAllLimits).setValue(true);
    EXPECT_EQ(result(), expected(pose));
    EXPECT_EQ(node->getLimitHits(), 0);
}

TEST_F(RetargetNodeTest, ReferentsAreJointsOfTheListOrElseTheWorld) {
    std::vector<Node*> joints;
    auto& list = node->at<db::PointerArrayAttribute>(R::TargetJoints);
    for (std::size_t i = 0; i < target.size(); ++i) {
        joints.push_back(scene.makeNode(L"Joint", L"joint"));
        list.add(joints[i]);
    }
    Pose const pose = moved(source, 1);
    setPose(pose);
    std::size_t const fore =
        std::size_t(std::find(target.names.begin(), target.names.end(), L"LeftForeArm") - target.names.begin());
    std::vector<RetargetJoint> options(target.size());
    options[fore - 1].rotationWeight = 0.5;
    part(R::TargetJointParams, fore - 1, R::RotationWeight)->asFloat()->setValue(0.5F);
    Pose const own = result();
    struct Case {
        Node* referent;
        int number;
    };
    for (Case const& c : {Case{nullptr, RetargetJoint::itself}, Case{joints[fore], RetargetJoint::itself},
                          Case{joints[0], 0}, Case{scene.makeNode(L"Transform", L"above"), RetargetJoint::world}}) {
        part(R::TargetJointParams, fore, R::Referent)->asPointer()->setValue(c.referent);
        options[fore].referent = c.number;
        EXPECT_EQ(result(), expected(pose, options)) << c.number;
        EXPECT_EQ(result() == own, c.number == RetargetJoint::itself);
    }
}

TEST_F(RetargetNodeTest, WhileComputingIsNotAllowedTheOutputsStay) {
    Pose const before = result();
    node->at<db::BoolAttribute>(R::AllowCompute).setValue(false);
    setPose(moved(source, 1));
    EXPECT_EQ(result(), before);
    Matrix34 byHand;
    byHand.m[3][0] = 5;
    array(R::OutputTargetGeometry)[0]->asMatrix34()->setValue(byHand);
    EXPECT_EQ(result()[0], byHand);
    node->Initialise();
    EXPECT_EQ(result()[0], byHand);
    node->at<db::BoolAttribute>(R::AllowCompute).setValue(true);
    EXPECT_EQ(result(), expected(moved(source, 1)));
}

TEST_F(RetargetNodeTest, ANodeThatIsNotEnabledGivesTheOrigins) {
    setPose(moved(source, 1));
    node->at<db::BoolAttribute>(R::Enabled).setValue(false);
    EXPECT_EQ(result(), target.origins);
    node->at<db::BoolAttribute>(R::Enabled).setValue(true);
    EXPECT_EQ(result(), expected(moved(source, 1)));
}

TEST_F(RetargetNodeTest, InitialiseReadsAllAnewWhenNextAsked) {
    Pose const before = result();
    EXPECT_EQ(work([&] { node->Initialise(); }), 0u);
    EXPECT_EQ(work([&] { EXPECT_EQ(result(), before); }), 1u);
}

TEST_F(RetargetNodeTest, TellsHowJointsWereMatched) {
    SkeletonMatch const& match = node->getMatch();
    EXPECT_EQ(match.matches.size(), target.size());
    EXPECT_GT(match.meanConfidence(), 0.8);
    EXPECT_NEAR(node->getRig().scale, 1.3, 1e-5);
}

TEST_F(RetargetNodeTest, OutputsTakeNoInput) {
    EXPECT_EQ(scene.connect(array(R::InputSourceGeometry)[0], array(R::OutputTargetGeometry)[0]), NotConnectable);
}

TEST_F(RetargetNodeTest, AResultThatWouldFlowBackIntoItsSourceIsRefused) {
    EXPECT_EQ(scene.connect(array(R::OutputTargetGeometry)[0], array(R::InputSourceGeometry)[0]), WouldMakeCycle);
}

TEST_F(RetargetNodeTest, ArraysThatGrowAndShrinkAreFollowed) {
    result();
    array(R::InputSourceGeometry).resize(5);
    array(R::OutputTargetGeometry).resize(7);
    EXPECT_EQ(node->getRig().targets.size(), 7u);
    EXPECT_EQ(array(R::OutputTargetGeometry)[6]->asMatrix34()->getValue(), target.origins[6]);
    setSide(source, R::InputSourceGeometry, R::SourceHierarchy, R::SourceJointParams);
    setSide(target, R::OutputTargetGeometry, R::TargetHierarchy, R::TargetJointParams);
    setPose(moved(source, 1));
    EXPECT_EQ(result(), expected(moved(source, 1)));
}

TEST_F(RetargetNodeTest, UndoTakesTheResultBack) {
    scene.commitTransient();
    Pose const before = result();
    setPose(moved(source, 1));
    part(R::TargetJointParams, 3, R::Mode)->asEnum()->setValue(0);
    array(R::OutputTargetGeometry).removeAt(target.size() - 1);
    scene.commitTransient();
    scene.undo();
    EXPECT_EQ(result(), before);
    scene.redo();
    EXPECT_EQ(array(R::OutputTargetGeometry).size(), target.size() - 1);
    scene.undo();
    EXPECT_EQ(result(), before);
}

TEST_F(RetargetNodeTest, ACopyAndALoadedSceneGiveTheSame) {
    setPose(moved(source, 1));
    Node* const follower = scene.makeNode(L"Joint", L"follower");
    follower->at<db::EnumAttribute>(TransformNode::DataSource).setValue(LocalMatrixSource);
    scene.connect(array(R::OutputTargetGeometry)[4], follower->getAttribute(TransformNode::LocalMatrixInput));
    Pose const now = result();
    db::StringOutputStream out;
    EXPECT_TRUE(db::SaverXML(out, 0).save(scene));
    Scene loaded;
    db::StringInputStream in(out.text());
    ASSERT_TRUE(db::LoaderXML(in, 0, nullptr).load(loaded));
    auto* const found = static_cast<Node*>(loaded.findNodeByPath(L"follower"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->at<db::Matrix34Attribute>(TransformNode::LocalMatrix).getValue(), now[4]);
    node = static_cast<R*>(node->makeCopy(L"copy"));
    EXPECT_EQ(result(), now);
}

TEST_F(RetargetNodeTest, AnyParametersGiveFiniteMatrices) {
    std::mt19937 random(3);
    float const special[] = {
        0, 1, -1, 1e14F, 3e38F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN(), 0.5F};
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        for (int params : {R::SourceJointParams, R::TargetJointParams})
            for (int times = 0; times < 20; ++times) {
                db::Attribute* a = part(params, random() % array(params).size(), int(random() % 23));
                float const v = special[random() % std::size(special)];
                if (a->asFloat()) a->asFloat()->setValue(v);
                if (a->asBool()) a->asBool()->setValue(random() % 2);
                if (a->asEnum()) a->asEnum()->setValue(int(random() % 7) - 2);
                if (a->asMatrix34()) {
                    Matrix34 m;
                    m.m[random() % 4][random() % 3] = v;
                    a->asMatrix34()->setValue(m);
                }
            }
        auto& parents = node->at<db::IntArrayAttribute>(random() % 2 ? R::SourceHierarchy : R::TargetHierarchy);
        parents.setElement(int(random() % 60) - 20, random() % parents.size());
        setPose(moved(source, round));
        for (Matrix34 const& m : result())
            for (auto const& row : m.m)
                for (float v : row) ASSERT_TRUE(std::isfinite(v));
    }
}

}  // namespace
}  // namespace sg
