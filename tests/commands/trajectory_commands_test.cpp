// Trajectories from motion, and other keys for the selected ones.
#include "tests/commands/fixture.h"
#include <cmath>

namespace Tavo {
namespace {

class TrajectoryCommands : public CommandTest {
protected:
    TrajectoryCommands() {
        scene().SetActiveTool(unsigned(MoveTool));
        key(prop.TranslationX(), {{0, 2}, {1, 3}, {3, 7}});
        key(prop.TranslationZ(), {{0, 0}, {2, 4}, {3, 1}});
        scene().SceneGraph()->ClearUndoHistory();
    }
    ~TrajectoryCommands() override { XTrajectories::Instance().SetSamplingFactor(1); }

    static void key(XAttribute channel, std::vector<std::pair<float, float>> const& keys) {
        XAnimation curve = channel.CreateAnimation();
        for (auto const& [x, y] : keys) curve.SetKeyframe(x, y);
    }
    static std::vector<XObject> results(std::wstring const& name) {
        Qelutils::Vector<XObject> out;
        scene().RunCommand(name, out);
        return {out.begin(), out.end()};
    }
    std::vector<XObject> generate(std::vector<XObject> const& sources) {
        select(sources);
        return results(XGenerateTrajectory::TypeID);
    }
    XTrajectory propPath() { return XTrajectory(generate({prop}).at(0)); }
    // A sampled path of a half wave, and other things, selected.
    XTrajectory waveAmongOthers() {
        XTrajectory path(scene().CreateObject(XTrajectory::TypeID));
        for (int i = 0; i <= 100; ++i)
            path.AppendTranslationKeyframe({0.05f * float(i), std::sin(0.05f * float(i)), 0});
        path.IsTranslationCurveSampled().SetBoolean(true);
        select({prop, path, box});
        scene().SceneGraph()->ClearUndoHistory();
        return path;
    }
    static int count(XTrajectory const& path) { return path.TranslationKeyframesArray().AttributeCount(); }
    static void expectOneStep(std::wstring const& command) {
        std::string const before = bytes();
        run(command);
        std::string const after = bytes();
        EXPECT_FALSE(before == after);
        EXPECT_EQ(undoCount(), 1);
        undo();
        EXPECT_TRUE(bytes() == before);
        redo();
        EXPECT_TRUE(bytes() == after);
    }
};

// ---- from motion ----

TEST_F(TrajectoryCommands, ThePathOfASelectedTransformIsTheResultAndSelected) {
    std::vector<XObject> const made = generate({prop});
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].Name(), L"prop_trajectory");
    EXPECT_EQ(selected(), made);
    EXPECT_EQ(count(XTrajectory(made[0])), 73);
    EXPECT_EQ(XTrajectory(made[0]).ParentTransform(), scene().RootObject());
}

TEST_F(TrajectoryCommands, GeneratingIsOneStep) {
    select({prop, leg});
    scene().SceneGraph()->ClearUndoHistory();
    expectOneStep(XGenerateTrajectory::TypeID);
}

TEST_F(TrajectoryCommands, WithoutTransformsThereIsNoResult) {
    EXPECT_TRUE(generate({box}).empty());
    EXPECT_TRUE(generate({}).empty());
}

TEST_F(TrajectoryCommands, ParametersSayHowThePathIsDrawnAndSampled) {
    auto const command = parameters<XGenerateTrajectory>();
    command.SamplingFactor().SetFloat(2);
    command.Visible().SetBoolean(false);
    command.Colour().Attribute(0).SetFloat(0.5f);
    XTrajectory const path = propPath();
    EXPECT_EQ(count(path), 145);
    EXPECT_FALSE(path.Visible().Boolean());
    EXPECT_EQ(path.ColourValue(), XColour(0.5f, 0.75f, 1, 1));
    command.SamplingFactor().SetFloat(0);  // not above 0: the last one stays
    EXPECT_EQ(count(propPath()), 145);
}

TEST_F(TrajectoryCommands, OfTheUsersFrameTheLastSelectedTransformIsTheParent) {
    key(hips.TranslationX(), {{0, 0}, {3, 5}});
    parameters<XGenerateTrajectory>().ParentFrame().SetEnumeration(L"User");
    std::vector<XObject> const made = generate({prop, hips});
    ASSERT_EQ(made.size(), 1u);
    XTrajectory const path(made[0]);
    EXPECT_EQ(path.Name(), L"prop_trajectory");
    EXPECT_EQ(path.ParentTransform(), hips);
    for (int i : {0, 10, 37, 72}) {  // in the frame as it moves on, the path's place is the source's
        time().Time().SetFloat(float(i) / 24);
        XVector3 onPath;
        path.ComputePosition(path.InputValue().Float(), onPath);
        XMatrix const local = XMatrix().SetTranslation(onPath), world = path.WorldMatrix().Matrix();
        XVector3 const found = XMatrix::MatrixTransformToWorldSpace(local, world).Translation();
        EXPECT_TRUE(found.IsEqual(prop.WorldTranslation(), 1e-4f)) << i;
    }
}

TEST_F(TrajectoryCommands, WhatMovesWithTheUsersFrameStandsStillInIt) {
    parameters<XGenerateTrajectory>().ParentFrame().SetEnumeration(L"User");
    XTransform const child(scene().CreateObject(XTransform::TypeID, prop));
    EXPECT_TRUE(generate({child, prop}).empty());
    parameters<XGenerateTrajectory>().ParentFrame().SetEnumeration(L"World");
    EXPECT_EQ(generate({child, prop}).size(), 2u);
}

TEST_F(TrajectoryCommands, OneTransformAloneIsASourceInTheUsersFrameToo) {
    parameters<XGenerateTrajectory>().ParentFrame().SetEnumeration(L"User");
    XTrajectory const path = propPath();
    EXPECT_EQ(path.Name(), L"prop_trajectory");
    EXPECT_EQ(path.ParentTransform(), scene().RootObject());
}

TEST_F(TrajectoryCommands, TheObjectsFrameIsTheScenes) {
    parameters<XGenerateTrajectory>().ParentFrame().SetEnumeration(L"Object");
    std::vector<XObject> const made = generate({prop, hips});
    ASSERT_EQ(made.size(), 2u);
    for (XObject const& path : made) EXPECT_EQ(XTrajectory(path).ParentTransform(), scene().RootObject());
}

TEST_F(TrajectoryCommands, TheNodesAreKnownByName) {
    EXPECT_EQ(sg::GenerateTrajectoryNode::ClassID, L"GenerateTrajectory");
    EXPECT_EQ(sg::FitTrajectoryNode::ClassID, L"FitTrajectory");
}

// ---- other keys ----

TEST_F(TrajectoryCommands, SamplingUniformlyTakesItsSegments) {
    XTrajectory const path = waveAmongOthers();
    parameters<XSampleTrajectoryUniformly>().SegmentsNum().SetInteger(7);
    expectOneStep(XSampleTrajectoryUniformly::TypeID);
    EXPECT_EQ(count(path), 8);
}

TEST_F(TrajectoryCommands, SamplingAdaptivelyTakesItsParameters) {
    XTrajectory const path = waveAmongOthers();
    auto const command = parameters<XSampleTrajectoryAdaptively>();
    command.ErrorTolerance().SetFloat(10);
    command.MinSegmentsNum().SetInteger(3);
    expectOneStep(XSampleTrajectoryAdaptively::TypeID);
    EXPECT_EQ(count(path), 4);
    command.ErrorTolerance().SetFloat(0.01f);
    run(XSampleTrajectoryAdaptively::TypeID);
    EXPECT_EQ(count(path), 4);  // it is that path now
}

TEST_F(TrajectoryCommands, FittingLeavesFewKeysWithHandles) {
    XTrajectory const path = waveAmongOthers();
    expectOneStep(XFitTrajectory::TypeID);
    EXPECT_LT(count(path), 12);
    EXPECT_FALSE(path.IsTranslationCurveSampled().Boolean());
}

TEST_F(TrajectoryCommands, FittingTakesItsParameters) {
    XTrajectory const path = waveAmongOthers();
    auto const command = parameters<XFitTrajectory>();
    command.PreprocessingNewSegmentsNum().SetInteger(20);
    command.ErrorTolerance().SetFloat(0);
    command.MaxSamplesNumberToFit().SetInteger(2);
    run(XFitTrajectory::TypeID);
    EXPECT_EQ(count(path), 21);
}

TEST_F(TrajectoryCommands, ASplineGoesThroughTheSameKeys) {
    XTrajectory const path = waveAmongOthers();
    expectOneStep(XToSplineTrajectory::TypeID);
    EXPECT_EQ(count(path), 101);
    EXPECT_FALSE(path.IsTranslationCurveSampled().Boolean());
}

TEST_F(TrajectoryCommands, WhatIsNoTrajectoryIsPassedOverInSilence) {
    select({prop, box, spine});
    std::string const before = bytes();
    for (std::wstring const name :
         {L"SampleTrajectoryUniformly", L"SampleTrajectoryAdaptively", L"FitTrajectory", L"ToSplineTrajectory"}) {
        run(name);
        EXPECT_TRUE(bytes() == before);
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(TrajectoryCommands, AWalkOfCommandsFromMotionToASplineAndBack) {
    XTrajectory const path = propPath();
    run(XFitTrajectory::TypeID);
    int const fitted = count(path);
    EXPECT_LT(fitted, 73);
    run(XSampleTrajectoryAdaptively::TypeID);
    EXPECT_TRUE(path.IsTranslationCurveSampled().Boolean());
    run(XToSplineTrajectory::TypeID);
    EXPECT_FALSE(path.IsTranslationCurveSampled().Boolean());
    for (int i = 0; i < 3; ++i) undo();
    EXPECT_EQ(count(path), 73);
    undo();
    EXPECT_FALSE(path.IsValid());
}

}  // namespace
}  // namespace Tavo
