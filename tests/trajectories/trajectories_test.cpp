// Trajectories from motion.
#include "qel/db/saver_xml.h"
#include "tests/trajectories/motion_fixture.h"

namespace Tavo {
namespace {

constexpr float frame = 1.F / 24;

class Generation : public MotionTest {
protected:
    static XTrajectory only(Objects const& found) {
        EXPECT_EQ(found.size(), 1u);
        return found.size() == 1 ? XTrajectory(found.front()) : XTrajectory();
    }
    static std::string bytes() {
        db::StringOutputStream stream;
        db::SaverXML saver(stream);
        EXPECT_TRUE(saver.save(*scene().SceneGraph()));
        return stream.text();
    }
    static std::vector<XObject> selected() {
        Objects out;
        scene().Selection().Objects(out);
        return {out.begin(), out.end()};
    }
};

// ---- where and when ----

TEST_F(Generation, KeysAndTimingAreThoseOfTheMotion) {
    XTransform const source = mover(L"ball");
    XTrajectory const path = only(generate({source}));
    expectFollows(path, source, 0, frame, 25);
}

TEST_F(Generation, TheFirstKeyIsTheOriginAndThePathStandsWhereTheSourceDoesAtTheStart) {
    XTransform const source = mover(L"ball");
    goTo(0.7F);
    path = only(generate({source}));
    EXPECT_POINT(at(0), 0, 0, 0);
    EXPECT_POINT(path.WorldTranslation(), 1, 2, 3);
    goTo(0);
    EXPECT_TRUE(path.WorldMatrix().Matrix().IsEqual(source.WorldMatrix().Matrix(), 1e-5F));
}

TEST_F(Generation, RotationKeysTurnTheStartingPoseIntoThatOfTheFrame) {
    XTransform const source = mover(L"ball");
    path = only(generate({source}));
    ASSERT_EQ(rotationCount(), 25);
    for (int i = 0; i < 25; ++i) {
        EXPECT_EQ(attach(i), float(i));
        goTo(float(i) * frame);
        XMatrix const turned =
            XMatrix::MatrixTransformToWorldSpace(XMatrix(orientation(i)), path.WorldMatrix().Matrix());
        EXPECT_TRUE(turned.IsRotationEqual(source.WorldMatrix().Matrix(), 1e-5F)) << i;
    }
}

TEST_F(Generation, ASourceBelowAMovingAndTurningParentIsFollowedInTheWorld) {
    XTransform const parent = mover(L"parent"), source = mover(L"child", parent);
    XTrajectory const path = only(generate({source}));
    EXPECT_EQ(path.ParentTransform(), scene().RootObject());
    expectFollows(path, source, 0, frame, 25);
}

TEST_F(Generation, ASourceBelowAScaledParentIsFollowedInTheWorld) {
    XTransform parent = transform(L"parent");
    parent.SetScale(2, 2, 2);
    XTransform const source = mover(L"child", parent);
    expectFollows(only(generate({source})), source, 0, frame, 25);
}

TEST_F(Generation, KeysBeginAFrameBeforeTheMotionAndEndAFrameAfter) {
    XTransform const source = transform(L"late");
    key(source.TranslationX(), {{0, 0}, {10 * frame, 0}, {20 * frame, 3}, {1, 3}});
    path = only(generate({source}));
    expectFollows(path, source, 10 * frame, frame, 11);
    EXPECT_FLOAT_EQ(path.TimingCurve().KeyframeInputValues().Float(0), 10 * frame);
    EXPECT_FLOAT_EQ(path.TimingCurveFirstKeyTime().Float(), 10 * frame);
    EXPECT_FLOAT_EQ(path.TimingCurveLastKeyTime().Float(), 20 * frame);
    EXPECT_EQ(attach(0), 0);
    EXPECT_EQ(attach(rotationCount() - 1), 10);
}

TEST_F(Generation, ASourceThatStandsStillOrOnlyTurnsGetsNone) {
    XTransform const still = transform(L"still"), turning = transform(L"turning");
    key(turning.RotationY(), {{0, 0}, {1, 2}});
    EXPECT_TRUE(generate({still, turning}).empty());
    EXPECT_EQ(only(generate({turning, mover(L"ball"), still})).Name(), L"ball_trajectory");
}

TEST_F(Generation, AnEvenMotionGivesEvenFractions) {
    XTransform const source = transform(L"even");
    key(source.TranslationZ(), {{0, 0}, {1, 12}});
    XTrajectory const path = only(generate({source}));
    for (int i = 0; i <= 24; ++i) EXPECT_NEAR(path.TimingCurve().KeyframeOutputValues().Float(i), float(i) / 24, 1e-5F);
    EXPECT_NEAR(path.MaxArcLength().Float(), 12, 1e-4F);
}

// ---- how many samples ----

TEST_F(Generation, TwoSamplesAFrameHalveTheStep) {
    time().FrameRate().SetInteger(30);
    XTrajectories::Instance().SetSamplingFactor(2);
    XTransform const source = mover(L"ball");
    expectFollows(only(generate({source})), source, 0, 1.F / 60, 61);
}

TEST_F(Generation, AFactorThatIsNotAboveZeroIsIgnored) {
    XTrajectories& generator = XTrajectories::Instance();
    EXPECT_EQ(generator.SamplingFactor(), 1);
    generator.SetSamplingFactor(3);
    for (float factor : {0.F, -2.F, std::numeric_limits<float>::quiet_NaN()}) {
        generator.SetSamplingFactor(factor);
        EXPECT_EQ(generator.SamplingFactor(), 3);
    }
}

TEST_F(Generation, TheLastFrameIsMissedByNoRounding) {
    for (int rate : {12, 24, 25, 30, 48, 50, 60, 90, 120})
        for (int frames : {7, 21, 100}) {
            scene().New();
            time().FrameRate().SetInteger(rate);
            time().EndTime().SetFloat(float(frames) / float(rate));
            XTransform const source = transform(L"even");
            key(source.TranslationX(), {{0, 0}, {1000, 1000}});
            EXPECT_EQ(only(generate({source})).TranslationKeyframesArray().AttributeCount(), frames + 1) << rate;
        }
}

TEST_F(Generation, ASceneWithoutFramesDoesNothing) {
    XTransform const source = mover(L"ball");
    goTo(0.25F);
    time().EndTime().SetFloat(-1);
    std::string const endsBeforeItStarts = bytes();
    EXPECT_TRUE(generate({source}).empty());
    EXPECT_TRUE(bytes() == endsBeforeItStarts);
    time().EndTime().SetFloat(1);
    for (int rate : {0, -24}) {
        time().FrameRate().SetInteger(rate);
        std::string const before = bytes();
        EXPECT_TRUE(generate({source}).empty()) << rate;
        EXPECT_TRUE(bytes() == before);
    }
    time().FrameRate().SetInteger(24);
    XTrajectories::Instance().SetSamplingFactor(1e30F);
    EXPECT_TRUE(generate({source}).empty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Generation, ARangeOfOneMomentHasNoMotion) {
    time().EndTime().SetFloat(0);
    EXPECT_TRUE(generate({mover(L"ball")}).empty());
}

// ---- what is made ----

TEST_F(Generation, NamesConnectionsAndFlags) {
    XTransform const source = mover(L"ball");
    XTrajectory const path = only(generate({source}));
    XAnimation const curve = path.TimingCurve();
    EXPECT_EQ(path.Name(), L"ball_trajectory");
    EXPECT_EQ(curve.Name(), L"ball_trajectoryTiming");
    EXPECT_EQ(curve.InputValue().InputAttribute(), time().Time());
    EXPECT_EQ(path.InputValue().InputAttribute(), curve.OutputValue());
    EXPECT_EQ(path.TimingCurveFirstKeyTime().InputAttribute(), curve.KeyframeMinX());
    EXPECT_EQ(path.TimingCurveLastKeyTime().InputAttribute(), curve.KeyframeMaxX());
    EXPECT_EQ(path.TimingHandlesArcLengthsArray().InputAttribute(), curve.OutputValuesArray());
    EXPECT_EQ(curve.InputValuesArray().InputAttribute(), path.TimingHandlesTimesArray());
    EXPECT_TRUE(path.IsTranslationCurveSampled().Boolean());
    EXPECT_TRUE(path.IsRotationCurveSampled().Boolean());
    EXPECT_TRUE(curve.IsCurveSampled().Boolean());
    EXPECT_TRUE(path.Visible().Boolean());
    EXPECT_EQ(path.ColourValue(), XTrajectory::DefaultColour);
}

TEST_F(Generation, TimingHandlesLieOnThePath) {
    XTransform const source = mover(L"ball");
    XTrajectory const path = only(generate({source}));
    Floats times, arcs;
    path.TimingHandlesTimesArray().Floats(times);
    path.TimingHandlesArcLengthsArray().Floats(arcs);
    ASSERT_EQ(times.size(), std::size_t(path.TimingHandlesNum().Integer()));
    ASSERT_EQ(arcs.size(), times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        goTo(times[i]);
        EXPECT_NEAR(arcs[i], path.InputValue().Float(), 1e-5F);
    }
    EXPECT_EQ(times.front(), 0);
    EXPECT_EQ(times.back(), 1);
}

TEST_F(Generation, EachMovingSourceGetsOneAndTheFirstIsSelected) {
    XTransform const a = mover(L"a"), still = transform(L"still"), b = mover(L"b");
    Objects const found = generate({a, still, b});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].Name(), L"a_trajectory");
    EXPECT_EQ(found[1].Name(), L"b_trajectory");
    EXPECT_EQ(selected(), std::vector<XObject>{found[0]});
    Objects results;
    XTrajectories::Instance().Results(results);
    EXPECT_EQ(results, found);
}

TEST_F(Generation, ResultsAreThoseOfTheLastGeneration) {
    generate({mover(L"a")});
    Objects results;
    generate({transform(L"still")});
    XTrajectories::Instance().Results(results);
    EXPECT_TRUE(results.empty());
}

TEST_F(Generation, OneSourceGivesItsPathOrAnInvalidOne) {
    XTrajectory found;
    XTrajectories::Instance().Generate(XObject(mover(L"ball")), found);
    EXPECT_EQ(found.Name(), L"ball_trajectory");
    XTrajectories::Instance().Generate(XObject(transform(L"still")), found);
    EXPECT_FALSE(found.IsValid());
}

TEST_F(Generation, WhatIsNoTransformIsNoSource) {
    XObject const curve = scene().CreateObject(XAnimation::TypeID);
    EXPECT_TRUE(generate({curve, XObject(), time()}).empty());
    EXPECT_EQ(generate({curve, mover(L"ball"), XObject()}).size(), 1u);
}

TEST_F(Generation, LeavesTheTimeAndIsOneStep) {
    XTransform const a = mover(L"a"), b = mover(L"b");
    scene().BeginChangeBlock();
    goTo(0.3F);
    scene().EndChangeBlock();
    std::string const before = bytes();
    int const steps = undoCount();
    generate({a, b});
    EXPECT_EQ(time().Time().Float(), 0.3F);
    EXPECT_EQ(undoCount(), steps + 1);
    std::string const after = bytes();
    scene().Undo();
    EXPECT_TRUE(bytes() == before);
    scene().Redo();
    EXPECT_TRUE(bytes() == after);
}

// By the graph's own count, as often as a scene that is played once, each object read once a frame.
TEST_F(Generation, TheSceneIsEvaluatedOnceAFrameForAllSources) {
    time().EndTime().SetFloat(10);
    XTransform const parent = mover(L"parent");
    std::vector<XObject> sources;
    for (int i = 0; i < 8; ++i) sources.push_back(mover(L"child", parent));
    sg::Scene& graph = *scene().SceneGraph();
    auto const evaluations = [&](auto const& work) {
        std::uint64_t const before = graph.evaluations();
        work();
        return double(graph.evaluations() - before);
    };
    double const played = evaluations([&] {
        for (int f = 0; f <= 240; ++f)
            for (XObject const& source : sources) worldPlace(XTransform(source), float(f) * frame);
    });
    double const generated = evaluations([&] { EXPECT_EQ(generate(sources).size(), 8u); });
    EXPECT_GT(played, 240 * 36);
    EXPECT_LT(generated, played * 1.05);
}

// ---- what follows ----

TEST_F(Generation, AFitThenSampledStaysWithinTheTolerance) {
    XTransform const source = mover(L"ball");
    path = only(generate({source}));
    std::vector<XVector3> before;
    for (int i = 0; i < count(); ++i) before.push_back(at(i));
    float const tolerance = 0.02F;
    EXPECT_TRUE(path.FitSampledCurveTranslation(0, tolerance, 20, 200, 3));
    EXPECT_LT(count(), 12);
    EXPECT_TRUE(path.UniformSampling(500));
    for (XVector3 const& p : before) {
        float best = 1;
        for (int i = 0; i < count(); ++i) best = std::min(best, XVector3().Subtract(at(i), p).Magnitude());
        EXPECT_LE(best, tolerance + 0.005F);
    }
}

// ---- one object's path without timing ----

TEST_F(Generation, ATransformsPathHasTwoSamplesAFrameAndNotTheEnd) {
    XTransform const source = mover(L"ball");
    goTo(0.3F);
    path = source.CreateTrajectory();
    EXPECT_EQ(time().Time().Float(), 0.3F);
    EXPECT_EQ(path.ParentTransform(), scene().RootObject());
    ASSERT_EQ(count(), 48);
    for (int i = 0; i < 48; ++i) {
        XVector3 const expected = worldPlace(source, float(i) / 48), found = toWorld(path, at(i));
        EXPECT_TRUE(isAt(found, expected.X(), expected.Y(), expected.Z())) << i;
    }
    EXPECT_POINT(path.WorldTranslation(), 1, 2, 3);
    EXPECT_EQ(rotationCount(), 0);
    EXPECT_FALSE(path.TimingCurve().IsValid());
}

TEST_F(Generation, ATransformsPathIsEmptyAtTheOriginWithoutADuration) {
    XTransform const source = mover(L"ball");
    auto const expectEmpty = [&] {
        path = source.CreateTrajectory();
        EXPECT_TRUE(path.IsValid());
        EXPECT_EQ(count(), 0);
        EXPECT_POINT(path.WorldTranslation(), 0, 0, 0);
    };
    time().EndTime().SetFloat(0);
    expectEmpty();
    time().EndTime().SetFloat(-1);
    expectEmpty();
    time().EndTime().SetFloat(1);
    time().FrameRate().SetInteger(0);
    expectEmpty();
}

TEST_F(Generation, AnInvalidTransformHasNoPath) { EXPECT_FALSE(XTransform().CreateTrajectory().IsValid()); }

}  // namespace
}  // namespace Tavo
