// What the verbs of paths are made of, without a file: guarded times, rotation keys that stay in place, distances from
// a path, the words of an edit and its weights.
#include "hosts/tavo/closeness.h"
#include "hosts/tavo/console.h"
#include "hosts/tavo/edit_words.h"
#include "hosts/tavo/follow_path.h"
#include "hosts/tavo/path_edit.h"
#include "hosts/tavo/paths.h"
#include "hosts/tavo/rotations_in_place.h"
#include "hosts/tavo/time_guards.h"
#include "tests/trajectories/trajectory_fixture.h"

#include <algorithm>

namespace host {
namespace {

using namespace Tavo;
using testing::ElementsAre;
using testing::HasSubstr;

class PathUnits : public TrajectoryTest {
protected:
    // Straight along x, a key a metre.
    void straight(int keys) {
        for (int i = 0; i < keys; ++i) path.AppendTranslationKeyframe({float(i), 0, 0});
        sample();
    }
    void setTimes(std::vector<float> const& times) {
        for (std::size_t i = 0; i < times.size(); ++i) curve.KeyframeInputValues().SetFloat(times[i], int(i));
    }
    static std::string messageOf(auto const& act) {
        try {
            act();
        } catch (Failure const& failure) {
            EXPECT_EQ(int(failure.code), int(ExitCode::wrongCall));
            return failure.message;
        }
        ADD_FAILURE() << "it succeeded";
        return {};
    }
    Qelutils::Vector<float> weights(PathChange::Kind kind, PathPlace const& place, XDropOff const& dropoff) {
        return weightsOf(path, {kind, {}}, place, dropoff);
    }
};

// ---- guarded times ----

TEST_F(PathUnits, BetweenGuardedTimesTheMotionIsStretchedEvenly) {
    connectTiming({0, 1, 2, 3, 4}, {0, 0.2F, 0.4F, 0.7F, 1});
    TimeGuards const guards(path, {3, 1, 3});
    setTimes({0, 1.5F, 2.5F, 5.5F, 7});
    guards.restore();
    // Before the first and after the last only shifted.
    EXPECT_THAT(times(), ElementsAre(-0.5F, 1, 1.5F, 3, 4.5F));
    EXPECT_THAT(guards.held(), ElementsAre(std::pair(1, 1.F), std::pair(3, 3.F)));
}

TEST_F(PathUnits, OneGuardedTimeShiftsTheMotion) {
    connectTiming({1, 2, 3}, {0, 0.5F, 1});
    TimeGuards const guards(path, {0});
    setTimes({0, 2, 4});
    guards.restore();
    EXPECT_THAT(times(), ElementsAre(1, 3, 5));
}

TEST_F(PathUnits, GuardedTimesAreCountedInTimeNotInSlots) {
    connectTiming({3, 1, 2}, {1, 0, 0.5F});
    TimeGuards const guards(path, {2});
    EXPECT_THAT(guards.held(), ElementsAre(std::pair(2, 3.F)));
    setTimes({6, 2, 4});
    guards.restore();
    EXPECT_THAT(times(), ElementsAre(3, -1, 1));
}

TEST_F(PathUnits, WhereTheTimeBetweenGuardsVanishedItIsAsBefore) {
    connectTiming({0, 1, 2}, {0, 0.5F, 1});
    TimeGuards const guards(path, {0, 2});
    setTimes({5, 5, 5});
    guards.restore();
    EXPECT_THAT(times(), ElementsAre(0, 1, 2));
}

TEST_F(PathUnits, WithoutGuardsNoTimeIsWritten) {
    connectTiming({0, 1}, {0, 1});
    TimeGuards const guards(path, {});
    setTimes({3, 5});
    guards.restore();
    EXPECT_THAT(times(), ElementsAre(3, 5));
}

TEST_F(PathUnits, ATimeThatIsNotThereCannotBeGuarded) {
    EXPECT_THAT(messageOf([&] { TimeGuards(path, {0}); }), HasSubstr("has no timing key 0; it has 0 timing keys"));
}

// ---- rotation keys in place ----

TEST_F(PathUnits, RotationKeysStayWhereTheyAreAlongThePath) {
    straight(9);
    for (float at : {8.F, 2.F, 5.F}) path.AttachRotationKeyframe(at, XQuaternion(XVector3(at, 0, 0)));
    RotationsInPlace const rotations(path);
    ASSERT_TRUE(path.UniformSampling(4));
    rotations.restore();
    EXPECT_FLOAT_EQ(attach(0), 4);
    EXPECT_FLOAT_EQ(attach(1), 1);
    EXPECT_FLOAT_EQ(attach(2), 2.5F);
}

TEST_F(PathUnits, OfRotationKeysOnOnePlaceTheFirstRemains) {
    append({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    for (int i = 4; i >= 0; --i) path.AttachRotationKeyframe(float(i), XQuaternion(XVector3(0.1F * float(i), 0, 0)));
    RotationsInPlace const rotations(path);
    ASSERT_TRUE(path.UniformSampling(2));
    rotations.restore();
    ASSERT_EQ(rotationCount(), 3);
    EXPECT_FLOAT_EQ(attach(0), 2);
    EXPECT_FLOAT_EQ(attach(1), 1);
    EXPECT_FLOAT_EQ(attach(2), 0);
    EXPECT_NEAR(orientation(1).RotationAngle(), 0.1F, 1e-5F) << "that of key 1, the first that came there";
}

// ---- distances from a path ----

TEST_F(PathUnits, DistancesAgreeWithADenseSearch) {
    std::mt19937 random{7};
    std::uniform_real_distribution<float> number(-3, 3);
    auto const point = [&] { return XVector3(number(random), number(random), number(random)); };
    for (int i = 0; i < 12; ++i) path.AppendTranslationKeyframe(point(), point());
    Closeness const closeness(path, 32);
    for (int i = 0; i < 100; ++i) {
        XVector3 const from = point();
        double least = 1e9;
        for (int k = 0; k <= 5000; ++k) {
            XVector3 place;
            path.ComputePosition(float(k) / 5000, place);
            least = std::min(least, double(place.DistanceTo(from)));
        }
        double const found = closeness.distance(from.AsVector(), double(i) / 100);
        EXPECT_LE(found, least + 2e-3) << i;  // of two places alike far away it may take the other
        EXPECT_GE(found, least - 1e-3) << i;  // as coarse as the search
    }
}

TEST_F(PathUnits, PlacesOfAPathLieOnIt) {
    straight(5);
    Closeness const closeness(path, 7);
    for (float x : {0.F, 0.37F, 4.F}) EXPECT_NEAR(closeness.distance({x, 0, 0, 0}, 0), 0, 1e-5);
    EXPECT_NEAR(closeness.distance({6, 0, 0, 0}, 0.5), 2, 1e-6) << "beyond its end";
    EXPECT_NEAR(closeness.distance({2, 3, 4, 0}, 7), 5, 1e-6) << "whatever the guess";
}

TEST_F(PathUnits, ATightCornerIsNotCutOff) {
    append({{0, 0, 0}, {1, 0, 0}, {1, 1e-4F, 0}, {0, 1e-4F, 0}});
    EXPECT_NEAR(Closeness(path, 3).distance({1, 1e-4F, 0, 0}, 0), 0, 1e-7);
}

TEST_F(PathUnits, APathWithoutLengthIsOnePlace) {
    append({{1, 0, 0}, {1, 0, 0}});
    EXPECT_NEAR(Closeness(path, 1).distance({4, 4, 0, 0}, 0.5), 5, 1e-6);
}

// ---- the words of an edit ----

TEST_F(PathUnits, KeysAreSinglesAndRanges) {
    straight(20);
    EditTrajectoryVerb verb;
    verb.keys = "3,7..9,3";
    EXPECT_THAT(placeOf(verb, path).keys, ElementsAre(3, 7, 8, 9, 3));
    verb.keys = "3..3";
    EXPECT_THAT(placeOf(verb, path).keys, ElementsAre(3));
}

TEST_F(PathUnits, AnglesBecomeRadiansAboutTheirAxis) {
    EditTrajectoryVerb verb;
    verb.rotate = "Z,180";
    PathChange const rotation = changeOf(verb);
    EXPECT_TRUE(rotation.turns());
    EXPECT_FLOAT_EQ(rotation.by.Z(), 3.14159265F);
    EXPECT_EQ(rotation.by.X(), 0);
    verb.rotate.clear();
    verb.bend = "-90";
    EXPECT_FLOAT_EQ(changeOf(verb).by.Y(), -1.57079633F) << "about the vertical axis unless told";
}

TEST_F(PathUnits, OneFactorIsThree) {
    EditTrajectoryVerb verb;
    verb.scale = "2.5";
    EXPECT_EQ(changeOf(verb).by, XVector3(2.5F, 2.5F, 2.5F));
    EXPECT_FALSE(changeOf(verb).turns());
}

TEST_F(PathUnits, WhatIsKeptIsOneOfThree) {
    EXPECT_EQ(keepModeOf("Feel"), 0);
    EXPECT_EQ(keepModeOf("constraints"), 1);
    EXPECT_EQ(keepModeOf("none"), 2);
    EXPECT_THAT(messageOf([] { keepModeOf("constraint"); }), HasSubstr("did you mean constraints?"));
}

// ---- weights ----

TEST_F(PathUnits, ABendRisesFromItsCornerToItsRange) {
    straight(8);
    XDropOff const dropoff(4);
    Qelutils::Vector<float> const w = weights(PathChange::bend, {{2}, {}}, dropoff);
    for (int key : {0, 1, 2}) EXPECT_EQ(w[std::size_t(key)], 0) << key;
    for (int key : {3, 4, 5}) EXPECT_FLOAT_EQ(w[std::size_t(key)], 1 - dropoff.ComputeWeight(float(key - 2))) << key;
    for (int key : {6, 7}) EXPECT_EQ(w[std::size_t(key)], 1) << key;
}

TEST_F(PathUnits, ABendWithoutARangeIsWholeAfterItsCorner) {
    straight(4);
    EXPECT_THAT(weights(PathChange::bend, {{1}, {}}, XDropOff(0)), ElementsAre(0, 0, 1, 1));
}

TEST_F(PathUnits, SafeGuardsInUseHoldEveryKindOfWeight) {
    straight(4);
    path.AddSafeGuard({3, 0, 0}, 0.5F, XDropOff(0)).UseSafeGuards(true);
    EXPECT_THAT(weights(PathChange::bend, {{1}, {}}, XDropOff(0)), ElementsAre(0, 0, 1, 0));
    EXPECT_THAT(weights(PathChange::move, {{2, 3}, {}}, XDropOff(0)), ElementsAre(0, 0, 1, 0));
    EXPECT_THAT(weights(PathChange::move, {{}, Ball{{3, 0, 0}, 1.5F}}, XDropOff(0)), ElementsAre(0, 0, 1, 0));
    path.UseSafeGuards(false);
    EXPECT_THAT(weights(PathChange::bend, {{1}, {}}, XDropOff(0)), ElementsAre(0, 0, 1, 1));
    EXPECT_THAT(weights(PathChange::move, {{}, Ball{{3, 0, 0}, 1.5F}}, XDropOff(0)), ElementsAre(0, 0, 1, 1));
}

TEST_F(PathUnits, ABallIsWhereItIsInTheScene) {
    straight(4);
    path.SetTranslation(10, 0, 0).SetRotationEulerAngles(0, 0, 1.57079633F);  // along y from (10, 0, 0)
    EXPECT_THAT(weights(PathChange::move, {{}, Ball{{10, 2, 0}, 0.5F}}, XDropOff(0)), ElementsAre(0, 0, 1, 0));
}

TEST_F(PathUnits, EditsAreInTheAxesOfTheSceneHoweverThePathStands) {
    straight(3);
    path.SetTranslation(10, 0, 0).SetRotationEulerAngles(0.3F, 0.8F, -1.2F);
    path.SmartEditing().SetEnumeration(2);
    auto const inScene = [&](int key) { return XVector3(at(key)).Multiply(path.WorldMatrix().Matrix()); };
    XVector3 const one = inScene(1), two = inScene(2);
    editPath(path, {PathChange::move, {1, 2, 3}}, {}, {0, 1, 0.5F});
    EXPECT_TRUE(inScene(1).IsEqual(XVector3(one).Add({1, 2, 3}), 1e-5F));
    EXPECT_TRUE(inScene(2).IsEqual(XVector3(two).Add({0.5F, 1, 1.5F}), 1e-5F));
    XVector3 const three = inScene(1);
    editPath(path, {PathChange::scale, {2, 1, 0}}, {1, 1, 1}, {0, 1, 0});
    EXPECT_TRUE(inScene(1).IsEqual({2 * three.X() - 1, three.Y(), 1}, 1e-5F));
}

TEST_F(PathUnits, RotationKeysTurnByTheWeightOfTheirPlace) {
    straight(3);
    path.SmartEditing().SetEnumeration(2);
    for (float at : {0.F, 0.5F, 1.F, 2.F}) path.AttachRotationKeyframe(at, XQuaternion(XVector3(0.2F, 0.1F, 0)));
    XMatrix const before(orientation(0));
    editPath(path, {PathChange::rotate, {0, 1, 0}}, {}, {0, 1, 0.5F});
    float const turns[] = {0, 0.5F, 1, 0.5F};
    for (int i = 0; i < 4; ++i) {
        XMatrix expected(before);
        expected.Multiply(XMatrix({0, 1, 0}, turns[i]));
        EXPECT_TRUE(XMatrix(orientation(i)).IsRotationEqual(expected, 1e-5F)) << i;
    }
}

TEST_F(PathUnits, AMoveTurnsNothing) {
    straight(2);
    path.AttachRotationKeyframe(0, XQuaternion(XVector3(0.2F, 0.1F, 0)));
    XMatrix const before(orientation(0));
    editPath(path, {PathChange::move, {0, 1, 0}}, {}, {1, 1});
    EXPECT_TRUE(XMatrix(orientation(0)).IsRotationEqual(before, 1e-6F));
}

// ---- names ----

TEST_F(PathUnits, APathIsFoundByItsNameByItsSourceAndByItsFollower) {
    XTransform hips = scene().CreateObject(XTransform::TypeID);
    hips.SetName(L"Hips");
    XTransform other = scene().CreateObject(XTransform::TypeID);
    other.SetName(L"Other");
    path.SetName(L"Hips_trajectory12");
    EXPECT_EQ(findTrajectory(scene(), "Hips"), path);
    EXPECT_EQ(findTrajectory(scene(), "Hips_trajectory12"), path);
    EXPECT_THAT(messageOf([&] { findTrajectory(scene(), "Other"); }), HasSubstr("\"Other\" has no trajectory"));
    followPath(other, path);
    EXPECT_EQ(findTrajectory(scene(), "Other"), path);
    EXPECT_THAT(followersOf(path), ElementsAre(XObject(other)));
    path.SetName(L"Hips_trajectory_of_old");
    EXPECT_THAT(messageOf([&] { findTrajectory(scene(), "Hips"); }), HasSubstr("has no trajectory"));
}

TEST_F(PathUnits, FiguresHaveFourDigits) {
    EXPECT_EQ(figure(3.96666), "3.967");
    EXPECT_EQ(figure(2), "2");
    EXPECT_EQ(figure(0.00012345), "0.0001234");
}

}  // namespace
}  // namespace host
