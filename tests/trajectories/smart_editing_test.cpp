// Repairing the timing when the path changes.
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

enum Mode { RetainFeel, RetainConstraints, NotUsed };

struct Protected : XTrajectory {
    using XTrajectory::smartEditCore;
    using XTrajectory::smartEditInit;
    using XTrajectory::XTrajectory;
};

struct SmartEditing : TrajectoryTest {
    // Keys a metre apart, one timing key each, a second apart, from time 0.
    void evenLine(int keys = 5) {
        std::vector<float> at, fractions;
        for (int i = 0; i < keys; ++i) {
            path.AppendTranslationKeyframe({float(i), 0, 0});
            at.push_back(float(i)), fractions.push_back(float(i) / float(keys - 1));
        }
        sample();
        connectTiming(at, fractions);
    }
    void use(int mode) { path.SmartEditing().SetEnumeration(mode); }
    std::vector<std::wstring> warnings() const { return log.texts(RecordingLog::Warning); }
    // Metres a second between neighbouring timing keys, whose slots are in the order of time.
    std::vector<double> speeds() const {
        Floats const t = times(), f = fractions();
        double const length = double(path.MaxArcLength().Float());
        std::vector<double> found;
        for (std::size_t i = 1; i < t.size(); ++i)
            found.push_back((double(f[i]) - double(f[i - 1])) * length / (double(t[i]) - double(t[i - 1])));
        return found;
    }
    // A wandering path, and a timing that goes along it at changing speeds.
    void randomMotion(int keys, int timingKeys) {
        path = scene().CreateObject(XTrajectory::TypeID);
        XVector3 p;
        for (int i = 0; i < keys; ++i) {
            path.AppendTranslationKeyframe(p);
            p.Add(XVector3(number(0.1F, 0.3F), number(-0.2F, 0.2F), number(-0.2F, 0.2F)));
        }
        sample();
        std::vector<float> at{0}, along{0}, fractions;
        for (int i = 1; i < timingKeys; ++i)
            at.push_back(at.back() + number(0.02F, 0.06F)), along.push_back(along.back() + number(0.5F, 1.5F));
        for (float distance : along) fractions.push_back(distance / along.back());
        connectTiming(at, fractions);
    }
    void randomEdit(int kind) {
        XDropOff const dropoff(number(0.5F, 3), unsigned(kind % 2));
        IDs const keys{int(random() % unsigned(count())), int(random() % unsigned(count()))};
        XMatrix const frame = XMatrix(XQuaternion(point(1))).SetTranslation(at(keys[0]));
        switch (kind % 5) {
        case 0: path.EditTranslationKeyframePosition(keys, dropoff, point(0.3F)); break;
        case 1: path.EditTranslationKeyframePositionBallOfInfluence(at(keys[0]), 0.5F, dropoff, point(0.3F)); break;
        case 2: path.ScaleTranslationKeyframePosition(keys, dropoff, frame, {1.1F, 0.9F, 1.05F}); break;
        case 3: path.RotateTranslationKeyframePosition(keys, dropoff, frame, point(0.2F)); break;
        default: path.BendTranslationKeyframePosition({keys[0]}, dropoff, point(0.02F), kind % 3 == 0);
        }
    }
};

// ---- retain constraints ----

TEST_F(SmartEditing, RetainConstraintsKeepsEachTimingKeyOnItsPlaceAndAllTimes) {
    evenLine();
    use(RetainConstraints);
    Floats const before = times();
    path.EditTranslationKeyframePosition(4, {4, 0, 0});  // the last metre becomes five
    EXPECT_EQ(times(), before);
    EXPECT_THAT(fractions(), testing::Pointwise(testing::FloatEq(), {0.F, 0.125F, 0.25F, 0.375F, 1.F}));
}

TEST_F(SmartEditing, RetainConstraintsLeavesAllTimesBitEqualOnRandomEdits) {
    randomMotion(120, 200);
    use(RetainConstraints);
    State const before = stateOf(curve.KeyframeInputValues());
    for (int i = 0; i < 200; ++i) randomEdit(i);
    EXPECT_EQ(stateOf(curve.KeyframeInputValues()), before);
}

// ---- retain feel ----

TEST_F(SmartEditing, RetainFeelGivesTheNewFractionsAndMovesTheLastTimeByTheLengthThatCame) {
    evenLine();
    use(RetainFeel);
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    EXPECT_THAT(fractions(), testing::Pointwise(testing::FloatEq(), {0.F, 0.125F, 0.25F, 0.375F, 1.F}));
    EXPECT_THAT(times(), testing::Pointwise(testing::FloatEq(), {0.F, 1.F, 2.F, 3.F, 8.F}));
}

TEST_F(SmartEditing, RetainFeelStartsAtTheFirstKeysOutputThatIsMeant) {
    evenLine();
    for (int i = 0; i < 5; ++i) curve.KeyframeInputValues().SetFloat(float(i) + 3, i);
    curve.KeyframeOutputValues().SetFloat(0.125F, 0);
    use(RetainFeel);
    path.EditTranslationKeyframePosition(1, {0, 0, 0});
    EXPECT_THAT(times(), testing::Pointwise(testing::FloatEq(), {0.125F, 1.125F, 2.125F, 3.125F, 4.125F}));
}

TEST_F(SmartEditing, RetainFeelGoesByTheOrderOfTheTimes) {
    for (float x : {0.F, 1.F, 2.F, 3.F, 4.F}) path.AppendTranslationKeyframe({x, 0, 0});
    sample();
    connectTiming({4, 0, 2}, {1, 0, 0.5F});
    use(RetainFeel);
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    EXPECT_THAT(times(), testing::Pointwise(testing::FloatEq(), {8.F, 0.F, 2.F}));
    EXPECT_THAT(fractions(), testing::Pointwise(testing::FloatEq(), {1.F, 0.F, 0.25F}));
}

TEST_F(SmartEditing, RetainFeelKeepsTheTimeBetweenKeysAtOnePlace) {
    for (float x : {0.F, 1.F, 2.F}) path.AppendTranslationKeyframe({x, 0, 0});
    sample();
    connectTiming({0, 1, 3, 4}, {0, 0.5F, 0.5F, 1});
    use(RetainFeel);
    path.EditTranslationKeyframePosition(2, {1, 0, 0});
    EXPECT_THAT(times(), testing::Pointwise(testing::FloatEq(), {0.F, 1.F, 3.F, 5.F}));
}

TEST_F(SmartEditing, RetainFeelKeepsTheSpeedOnRandomEdits) {
    for (int run = 0; run < 20; ++run) {
        randomMotion(40 + 10 * run, 60 + 7 * run);
        use(RetainFeel);
        std::vector<double> const before = speeds();
        for (int i = 0; i < 50; ++i) randomEdit(i);
        std::vector<double> const after = speeds();
        for (std::size_t i = 0; i < before.size(); ++i)
            ASSERT_NEAR(after[i] / before[i], 1, 1e-3) << "path " << run << ", key " << i << ", seed " << seed;
    }
}

TEST_F(SmartEditing, FractionsAreWhatThePathSays) {
    randomMotion(50, 50);
    use(RetainConstraints);
    Floats parameters;
    for (float fraction : fractions()) parameters.push_back(path.InverseArcLengthMap(fraction));
    path.EditTranslationKeyframePosition({10, 30}, XDropOff(2), {0.3F, 0.2F, 0.1F});
    Floats const now = fractions();
    for (std::size_t i = 0; i < now.size(); ++i) EXPECT_EQ(now[i], path.ArcLengthMap(parameters[i])) << i;
}

// A path that is no plain polyline takes the node's own way: the same numbers.
TEST_F(SmartEditing, KeysInAnyOrderOfSlotsGiveTheSame) {
    randomMotion(30, 40);
    use(RetainFeel);
    XTrajectory const straight = path;
    XAnimation const straightCurve = curve;
    std::vector<XVector3> points;
    for (int i = 0; i < count(); ++i) points.push_back(at(i));
    Floats const t = times(), f = fractions();
    path = scene().CreateObject(XTrajectory::TypeID);
    path.AppendTranslationKeyframe(points.back());
    for (int i = 0; i < 29; ++i) path.InsertTranslationKeyframe(i, points[std::size_t(i)]);
    sample();
    connectTiming(t, f);
    use(RetainFeel);
    ASSERT_EQ(numbers()[0], 29);
    path.EditTranslationKeyframePosition({5, 12}, XDropOff(2), {0.3F, 0.2F, 0.1F});
    XTrajectory(straight).EditTranslationKeyframePosition({5, 12}, XDropOff(2), {0.3F, 0.2F, 0.1F});
    EXPECT_EQ(stateOf(curve.KeyframeInputValues()), stateOf(straightCurve.KeyframeInputValues()));
    EXPECT_EQ(stateOf(curve.KeyframeOutputValues()), stateOf(straightCurve.KeyframeOutputValues()));
}

TEST_F(SmartEditing, FractionsBeyondThePathGoByItsInfinities) {
    evenLine();
    curve.KeyframeOutputValues().SetFloat(1.5F, 4);
    use(RetainConstraints);
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    EXPECT_EQ(fractions()[4], 1);
    path.PostInfinity().SetEnumeration(1);
    curve.KeyframeOutputValues().SetFloat(1.5F, 4);
    path.EditTranslationKeyframePosition(4, {1, 0, 0});
    EXPECT_EQ(fractions()[4], 1.5F);
}

TEST_F(SmartEditing, APathWithoutLengthGivesNumbers) {
    append({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}});
    sample();
    connectTiming({0, 1, 2}, {0, 0.5F, 1});
    for (int mode : {RetainFeel, RetainConstraints}) {
        use(mode);
        path.EditTranslationKeyframePosition(1, {1, 0, 0}).EditTranslationKeyframePosition(1, {-1, 0, 0});
        for (float value : times()) EXPECT_TRUE(std::isfinite(value));
        for (float value : fractions()) EXPECT_TRUE(std::isfinite(value));
    }
}

// ---- when it is refused ----

TEST_F(SmartEditing, NotUsedIsQuietAndLeavesTheTiming) {
    evenLine();
    use(NotUsed);
    Floats const t = times(), f = fractions();
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    path.InputValue().DisconnectInput();
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    EXPECT_POINT(at(4), 12, 0, 0);
    EXPECT_EQ(times(), t);
    EXPECT_EQ(fractions(), f);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(SmartEditing, WithoutATimingCurveWarnsAndEditsThePathAllTheSame) {
    append({{0, 0, 0}, {1, 0, 0}});
    path.EditTranslationKeyframePosition(1, {0, 1, 0});
    EXPECT_POINT(at(1), 1, 1, 0);
    EXPECT_THAT(warnings(),
                ElementsAre(L"Smart editing impossible as the trajectory is not connected to a timing curve."));
}

TEST_F(SmartEditing, OnACurveThatIsNotSampledWarnsAndLeavesTheTiming) {
    evenLine();
    curve.IsCurveSampled().SetBoolean(false);
    Floats const f = fractions();
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    EXPECT_POINT(at(4), 8, 0, 0);
    EXPECT_EQ(fractions(), f);
    EXPECT_THAT(warnings(), ElementsAre(L"Smart editing is only available on sampled timing curves."));
}

TEST_F(SmartEditing, FedByAnythingElseThanACurveItIsNotSampled) {
    append({{0, 0, 0}, {1, 0, 0}});
    sample();
    XTransform other = scene().CreateObject(XTransform::TypeID);
    ASSERT_TRUE(path.InputValue().ConnectInputTo(other.AddFloatAttribute(L"Progress")));
    path.EditTranslationKeyframePosition(1, {0, 1, 0});
    EXPECT_POINT(at(1), 1, 1, 0);
    EXPECT_THAT(warnings(), ElementsAre(L"Smart editing is only available on sampled timing curves."));
}

TEST_F(SmartEditing, OnASplineMovesTheKeyAndWarns) {
    evenLine();
    path.ToSpline();
    Floats const f = fractions();
    path.EditTranslationKeyframePosition(4, {4, 0, 0});
    EXPECT_POINT(at(4), 8, 0, 0);
    EXPECT_EQ(fractions(), f);
    EXPECT_THAT(warnings(), ElementsAre(L"Smart editing is only available on sampled trajectories."));
}

TEST_F(SmartEditing, EveryFormOfEditWarnsOnce) {
    append({{0, 0, 0}, {1, 0, 0}});
    Floats const weights{1, 1};
    XDropOff const d;
    XMatrix const m;
    XVector3 const v(0.1F, 0.1F, 0.1F);
    path.EditTranslationKeyframePosition(0, v).EditTranslationKeyframePosition(IDs{0, 1}, v);
    path.EditTranslationKeyframePosition({0}, d, v).EditTranslationKeyframePosition_interactive(weights, v);
    path.EditTranslationKeyframePositionBallOfInfluence(v, 1, d, v);
    path.ScaleTranslationKeyframePosition(0, m, v).ScaleTranslationKeyframePosition(IDs{0, 1}, m, v);
    path.ScaleTranslationKeyframePosition({0}, d, m, v).ScaleTranslationKeyframePosition_interactive(weights, m, v);
    path.ScaleTranslationKeyframePositionBallOfInfluence(v, 1, d, m, v);
    path.RotateTranslationKeyframePosition(0, m, v).RotateTranslationKeyframePosition(IDs{0, 1}, m, v);
    path.RotateTranslationKeyframePosition({0}, d, m, v).RotateTranslationKeyframePosition_interactive(weights, m, v);
    path.RotateTranslationKeyframePositionBallOfInfluence(v, 1, d, m, v);
    path.BendTranslationKeyframePosition({0}, d, v, true).BendTranslationKeyframePosition_interactive(weights, v, true);
    EXPECT_EQ(warnings().size(), 17U);
}

TEST_F(SmartEditing, TheCoreRepeatsTheTestsInSilence) {
    append({{0, 0, 0}, {1, 0, 0}});
    float length = 7;
    Floats parameters{7};
    EXPECT_FALSE(Protected(path).smartEditCore(length, parameters));
    EXPECT_TRUE(log.entries.empty());
    EXPECT_FALSE(Protected(path).smartEditInit(length, parameters));
    EXPECT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(length, 7);
}

TEST_F(SmartEditing, TheInitGivesTheLengthAndAParameterForEachTimingKey) {
    evenLine();
    float length = 0;
    Floats parameters;
    EXPECT_TRUE(Protected(path).smartEditInit(length, parameters));
    EXPECT_EQ(length, 4);
    EXPECT_EQ(parameters, (Floats{0, 1, 2, 3, 4}));
}

TEST_F(SmartEditing, ParametersOfAnotherCountThanTheTimingKeysChangeNothing) {
    evenLine();
    State const before = state();
    for (int mode : {RetainFeel, RetainConstraints}) {
        use(mode);
        EXPECT_TRUE(Protected(path).smartEditCore(4, {0, 1}));
        EXPECT_EQ(state(), before);
    }
}

// ---- a drag ----

TEST_F(SmartEditing, ADragOfAThousandEventsIsOneStepAndUndoRestoresTheBytes) {
    randomMotion(100, 100);
    use(RetainFeel);
    Floats weights;
    path.ComputeTranslationWeights({50}, XDropOff(4), weights);
    State const before = state();
    int const steps = undoCount();
    scene().BeginChangeBlock();
    for (int i = 0; i < 1000; ++i) path.EditTranslationKeyframePosition_interactive(weights, point(0.01F));
    scene().EndChangeBlock(L"Drag");
    EXPECT_EQ(undoCount(), steps + 1);
    State const after = state();
    ASSERT_NE(after, before);
    scene().Undo();
    EXPECT_EQ(state(), before);
    scene().Redo();
    EXPECT_EQ(state(), after);
}

TEST_F(SmartEditing, ADragThatIsShownAtEachEventIsOneStepAndKeepsLittle) {
    randomMotion(300, 300);
    use(RetainFeel);
    Floats const weights(300, 0.5F);
    State const before = state();
    auto const drag = [&](int events) {
        scene().BeginChangeBlock(true);
        for (int i = 0; i < events; ++i) {
            path.EditTranslationKeyframePosition_interactive(weights, point(0.01F));
            scene().CommitTransient();
        }
        scene().EndChangeBlock(L"Drag");
        scene().CommitTransient();
    };
    scene().CommitTransient();
    int const steps = undoCount();
    std::size_t const empty = scene().SceneGraph()->getHistoryBytes();
    drag(1000);
    EXPECT_EQ(undoCount(), steps + 1);
    // Old points of three vectors and old pages of two floats a key, and records.
    EXPECT_LT(scene().SceneGraph()->getHistoryBytes() - empty, 300U * 160);
    scene().Undo();
    EXPECT_EQ(state(), before);
}

TEST_F(SmartEditing, ACancelledDragLeavesNoTrace) {
    randomMotion(60, 60);
    State const before = state();
    Floats const weights(60, 0.5F);
    scene().BeginChangeBlock();
    for (int i = 0; i < 10; ++i) path.EditTranslationKeyframePosition_interactive(weights, point(0.1F));
    scene().CancelChangeBlock();
    EXPECT_EQ(state(), before);
}

TEST_F(SmartEditing, ObserversAreToldOfTheKeysThatMoved) {
    randomMotion(60, 60);
    struct Watcher : XSceneObserver {
        void OnSceneChanged(XSceneChange const& change, bool) override {
            object |= change.IsObjectChanged(watched);
            key |= change.IsAttributeChanged(watched.TranslationKeyframesArray().Attribute(7).Attribute(2));
            other |= change.IsAttributeChanged(watched.TranslationKeyframesArray().Attribute(8).Attribute(2));
            elsewhere |= change.IsObjectChanged(scene().Selection());
        }
        XTrajectory watched;
        bool object = false, key = false, other = false, elsewhere = false;
    } watcher;
    watcher.watched = path;
    scene().CommitTransient();
    application().AddSceneObserver(&watcher);
    Floats weights(60, 0.5F);
    weights[8] = 0;
    path.EditTranslationKeyframePosition_interactive(weights, point(0.1F));
    application().RemoveSceneObserver(&watcher);
    EXPECT_TRUE(watcher.object && watcher.key);
    EXPECT_FALSE(watcher.other || watcher.elsewhere);
}

}  // namespace
}  // namespace Tavo
