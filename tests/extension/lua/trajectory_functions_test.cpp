#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/script_fixture.h"
#include "tests/trajectories/trajectory_fixture.h"

namespace Tavo {
namespace {

using IDs = XTrajectory::IDs;
using Floats = XTrajectory::Floats;

// Two paths that are the same: scripts edit the one, C++ the other.
class TrajectoryFunctions : public Scripts {
protected:
    using State = TrajectoryTest::State;

    static XTrajectory makePath() {
        XTrajectory path(scene().CreateObject(XTrajectory::TypeID));
        for (int i = 0; i < 5; ++i) {
            XVector3 const at{float(i), float(i % 3), float(i * i) / 4};
            path.AppendTranslationKeyframe(XVector3(at).Add({-0.3F, 0.1F, 0}), at, XVector3(at).Add({0.4F, 0.2F, 0}));
        }
        for (float attach : {0.5F, 1.5F, 3.F})
            path.AttachRotationKeyframe(attach, {0.1F, 0, 0}, XQuaternion(), {0, 0.2F, 0});
        path.AddSafeGuard({0, 0, 0}, 0.1F, 0.5F).AddSafeGuard({4, 1, 4}, 0.2F, 0.25F);
        path.IsTranslationCurveSampled().SetBoolean(true);
        addTiming(path);
        return path;
    }
    static void addTiming(XTrajectory& path) {
        XAnimation curve(scene().CreateObject(XAnimation::TypeID));
        for (int i = 0; i <= 4; ++i) curve.SetKeyframe(float(i), float(i * i) / 16);
        curve.IsCurveSampled().SetBoolean(true);
        path.InputValue().ConnectInputTo(curve.OutputValue());
        path.TimingCurveFirstKeyTime().SetFloat(0);
        path.TimingCurveLastKeyTime().SetFloat(4);
    }

    static State stateOf(XTrajectory const& of) {
        State all;
        for (int number : {56, 58, 60, 62, 63, 66}) TrajectoryTest::add(all, of.Attribute(number));
        XAnimation const timing = of.TimingCurve();
        for (XAttribute const& array : {timing.KeyframeInputValues(), timing.KeyframeOutputValues()})
            TrajectoryTest::add(all, array);
        return all;
    }
    std::string start() const { return "local path = scene:object(" + std::to_string(path.ObjectID()) + ")\n"; }
    // That the script does to the one path what the action does to the other, and that this is something.
    void expectSame(std::string const& script, std::function<void(XTrajectory&)> const& action) {
        State const before = stateOf(path);
        run(start() + script);
        action(twin);
        EXPECT_EQ(stateOf(twin), stateOf(path)) << script;
        EXPECT_NE(before, stateOf(path)) << script;
    }
    void expectUnchanged(std::string const& script) {
        State const before = stateOf(path);
        run(start() + script);
        EXPECT_EQ(before, stateOf(path)) << script;
    }
    std::string result(std::string const& script) { return eval(start() + script); }
    std::string refusal(std::string const& script) {
        State const before = stateOf(path);
        std::string const message = failure(start() + script);
        EXPECT_EQ(before, stateOf(path)) << script;
        return message;
    }
    // One good value for each argument, in brackets behind `self`.
    static std::string call(XScriptFunction const& function, std::string const& self) {
        std::string text = std::string(function.Name()) + "(" + self;
        for (XScriptType const& type : function.ArgumentTypes()) text += ", " + goodValue(type.kind);
        return text + ")";
    }
    static std::string goodValue(XScriptKind kind) {
        switch (kind) {
        case XScriptKind::Vector: return "{0, 1, 0}";
        case XScriptKind::Quaternion: return "{0, 0, 0, 1}";
        case XScriptKind::Matrix: return frameText;
        case XScriptKind::Text: return "'linear'";
        default: return "1";
        }
    }
    static std::vector<XScriptFunction> const& rows() { return Tavo::TrajectoryFunctions().functions; }

    XTrajectory path = makePath(), twin = makePath();
    XMatrix const frame = XMatrix().SetTranslation({1, 2, 3});
    static constexpr char const* frameText = "{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}";
};

TEST_F(TrajectoryFunctions, AreAllThereInTheirOrder) {
    std::string names;
    for (XScriptFunction const& function : rows()) names += std::string(function.Name()) + " ";
    EXPECT_EQ(33U, rows().size());
    EXPECT_EQ(
        "appendTranslationKeyframe editTranslationKeyframePosition editTranslationKeyframePositionBallOfInfluence "
        "scaleTranslationKeyframePosition scaleTranslationKeyframePositionBallOfInfluence "
        "rotateTranslationKeyframePosition rotateTranslationKeyframePositionBallOfInfluence "
        "bendTranslationKeyframePosition editTranslationKeyframeInputTangent "
        "editTranslationKeyframeOutputTangent editTranslationKeyframeInterpolationType "
        "editTranslationKeyframeContinuityType insertTranslationKeyframe insertInBetweenTranslationKeyframe "
        "deleteTranslationKeyframe attachRotationKeyframe editRotationKeyframeOrientation "
        "editRotationKeyframeOrientationBallOfInfluence editRotationKeyframeAttachPoint "
        "editRotationKeyframeAttachPointBallOfInfluence editRotationKeyframeInTangent "
        "editRotationKeyframeOutTangent editRotationKeyframeInterpolationType "
        "editRotationKeyframeContinuityType deleteRotationKeyframe useSafeGuards addSafeGuard editSafeGuard "
        "deleteSafeGuard slideTimingOnTrajectory fitSampledCurveTranslation "
        "findRayClosestPointOnCurveParallelProjection findRayClosestPointOnCurvePerspectiveProjection ",
        names);
}

// ---- keys come and go ----

TEST_F(TrajectoryFunctions, APositionAloneAppendsALinearKey) {
    auto const append = [](XTrajectory& path) { path.AppendTranslationKeyframe({5, 6, 7}); };
    expectSame("path:appendTranslationKeyframe({5, 6, 7})", append);
    expectSame("path:appendTranslationKeyframe(5, 6, 7)", append);
    expectSame("path:appendTranslationKeyframe({5, 6, 7}, nil, nil)", append);
}

TEST_F(TrajectoryFunctions, APositionAndAnOutHandleAppendASpline) {
    auto const append = [](XTrajectory& path) { path.AppendTranslationKeyframe({5, 6, 7}, {1, 2, 3}); };
    expectSame("path:appendTranslationKeyframe({5, 6, 7}, {1, 2, 3})", append);
    expectSame("path:appendTranslationKeyframe(5, 6, 7, 1, 2, 3)", append);
    expectSame("path:appendTranslationKeyframe({5, 6, 7}, 1, 2, 3)", append);
    expectSame("path:appendTranslationKeyframe(nil, {5, 6, 7}, {1, 2, 3})", append);
}

TEST_F(TrajectoryFunctions, AllThreePointsAppendABrokenSpline) {
    auto const append = [](XTrajectory& path) { path.AppendTranslationKeyframe({8, 9, 1}, {5, 6, 7}, {1, 2, 3}); };
    expectSame("path:appendTranslationKeyframe({8, 9, 1}, {5, 6, 7}, {1, 2, 3})", append);
    expectSame("path:appendTranslationKeyframe(8, 9, 1, 5, 6, 7, 1, 2, 3)", append);
    expectSame("path:appendTranslationKeyframe(8, 9, 1, {x = 5, y = 6, z = 7}, 1, 2, 3)", append);
}

TEST_F(TrajectoryFunctions, KeysAreInsertedInFrontOfAKeyByAsManyPointsAsAreGiven) {
    expectSame("path:insertTranslationKeyframe(0, 5, 6, 7)", [](XTrajectory& path) {
        path.InsertTranslationKeyframe(0, {5, 6, 7});
    });
    expectSame("path:insertTranslationKeyframe(2, {5, 6, 7}, {1, 2, 3})", [](XTrajectory& path) {
        path.InsertTranslationKeyframe(2, {5, 6, 7}, {1, 2, 3});
    });
    expectSame("path:insertTranslationKeyframe(2, {8, 9, 1}, {5, 6, 7}, {1, 2, 3})", [](XTrajectory& path) {
        path.InsertTranslationKeyframe(2, {8, 9, 1}, {5, 6, 7}, {1, 2, 3});
    });
    expectUnchanged("path:insertTranslationKeyframe(99, 1, 2, 3)");
}

TEST_F(TrajectoryFunctions, KeysAreInsertedBetween) {
    expectSame("path:insertInBetweenTranslationKeyframe(1, 3)",
               [](XTrajectory& path) { path.InsertInBetweenTranslationKeyframe(1, 3); });
    expectUnchanged("path:insertInBetweenTranslationKeyframe(1, 1)\npath:insertInBetweenTranslationKeyframe(1, 99)"
                    "\npath:deleteTranslationKeyframe()");
}

TEST_F(TrajectoryFunctions, KeysAreDeletedByANumberOrAList) {
    expectSame("path:deleteTranslationKeyframe(0)", [](XTrajectory& path) { path.DeleteTranslationKeyframe(0); });
    expectSame("path:deleteTranslationKeyframe({0, 2, 2, 77, -1})", [](XTrajectory& path) {
        path.DeleteTranslationKeyframe(IDs{0, 2});
    });
    expectUnchanged("path:deleteTranslationKeyframe({}):deleteTranslationKeyframe(2147483647)");
}

// ---- edits of positions ----

TEST_F(TrajectoryFunctions, KeysAreMovedByANumberOrAList) {
    expectSame("path:editTranslationKeyframePosition(2, {0, 1, 0.5})", [](XTrajectory& path) {
        path.EditTranslationKeyframePosition(2, {0, 1, 0.5F});
    });
    expectSame("path:editTranslationKeyframePosition({1, 3}, 0, 1, 0.5)", [](XTrajectory& path) {
        path.EditTranslationKeyframePosition(IDs{1, 3}, {0, 1, 0.5F});
    });
    expectSame("path:editTranslationKeyframePosition({1, 3}, nil, 0, 1, 0.5)", [](XTrajectory& path) {
        path.EditTranslationKeyframePosition(IDs{1, 3}, {0, 1, 0.5F});
    });
}

TEST_F(TrajectoryFunctions, ADropOffMovesTheKeysAroundAsWell) {
    auto const move = [](XTrajectory& path) { path.EditTranslationKeyframePosition(IDs{2}, 2.5F, {0, 1, 0.5F}); };
    expectSame("path:editTranslationKeyframePosition(2, 2.5, {0, 1, 0.5})", move);
    expectSame("path:editTranslationKeyframePosition({2}, 2.5, 0, 1, 0.5)", move);
    expectSame("path:editTranslationKeyframePosition(2, {range = 2.5}, {0, 1, 0.5})", move);
}

TEST_F(TrajectoryFunctions, ADropOffIsATableOfItsParts) {
    XDropOff const all(3, XDropOff::RadialDropoff, 0.25F, 0.75F);
    auto const move = [&](XTrajectory& path) { path.EditTranslationKeyframePosition(IDs{2}, all, {0, 1, 0}); };
    expectSame("path:editTranslationKeyframePosition(2, {range = 3, mode = 'RadialDropoff', pinch = 0.25, bubble = "
               "0.75}, {0, 1, 0})",
               move);
    expectSame("path:editTranslationKeyframePosition(2, {range = 3, mode = 1, pinch = 0.25, bubble = 0.75}, 0, 1, 0)",
               move);
    expectSame("path:editTranslationKeyframePosition(2, {pinch = 0.5}, {0, 1, 0})", [](XTrajectory& path) {
        path.EditTranslationKeyframePosition(IDs{2}, XDropOff(1, XDropOff::CurveDropoff, 0.5F), {0, 1, 0});
    });
}

TEST_F(TrajectoryFunctions, ADropOffOfAnotherKindIsRefused) {
    EXPECT_EQ("script:3: Trajectory:bendTranslationKeyframePosition: argument 2 (dropoff) must be a range, or a table "
              "with range, mode, pinch or bubble, not boolean",
              refusal("path:bendTranslationKeyframePosition(1, true)"));
    EXPECT_EQ("script:3: Trajectory:bendTranslationKeyframePosition: argument 2 (dropoff) must be a range, or a table "
              "with range, mode, pinch or bubble, not table",
              refusal("path:bendTranslationKeyframePosition(1, {0, 1, 0}, true)"));
    EXPECT_EQ("script:3: Trajectory:addSafeGuard: argument 3 (dropoff) must have a number as its pinch",
              refusal("path:addSafeGuard({}, 1, {range = 1, pinch = 'soft'})"));
    for (char const* mode : {"'round'", "2", "-1", "0.5", "0/0", "1e300", "{}"})
        EXPECT_EQ("script:3: Trajectory:addSafeGuard: argument 3 (dropoff) must have \"CurveDropoff\" or "
                  "\"RadialDropoff\" as its mode",
                  refusal("path:addSafeGuard({}, 1, {mode = " + std::string(mode) + "})"));
}

TEST_F(TrajectoryFunctions, KeysInABallAreMoved) {
    expectSame(
        "path:editTranslationKeyframePositionBallOfInfluence({2, 2, 1}, 0.5, {range = 2, bubble = 0.5}, 0, 1, 0)",
        [](XTrajectory& path) {
            path.EditTranslationKeyframePositionBallOfInfluence(
                {2, 2, 1}, 0.5F, XDropOff(2, XDropOff::CurveDropoff, 1, 0.5F), {0, 1, 0});
        });
    expectUnchanged("path:editTranslationKeyframePositionBallOfInfluence({2, 2, 1}, 0.5, 1)");
}

TEST_F(TrajectoryFunctions, KeysAreScaledInAFrame) {
    std::string const in = std::string(frameText) + ", {2, 1, 0.5})";
    expectSame("path:scaleTranslationKeyframePosition(2, " + in, [&](XTrajectory& path) {
        path.ScaleTranslationKeyframePosition(2, frame, {2, 1, 0.5F});
    });
    expectSame("path:scaleTranslationKeyframePosition({1, 2}, 2, " + in, [&](XTrajectory& path) {
        path.ScaleTranslationKeyframePosition(IDs{1, 2}, 2.F, frame, {2, 1, 0.5F});
    });
    expectSame("path:scaleTranslationKeyframePositionBallOfInfluence({2, 2, 1}, 0.5, 2, " + in, [&](XTrajectory& path) {
        path.ScaleTranslationKeyframePositionBallOfInfluence({2, 2, 1}, 0.5F, 2.F, frame, {2, 1, 0.5F});
    });
}

TEST_F(TrajectoryFunctions, ScalingByNothingLeavesThePathAsItIs) {
    expectUnchanged("path:scaleTranslationKeyframePosition({0, 1, 2}):scaleTranslationKeyframePosition({0, 1, 2}, 1)");
    expectUnchanged("path:scaleTranslationKeyframePositionBallOfInfluence({0, 0, 0}, 9)");
}

TEST_F(TrajectoryFunctions, KeysAreTurnedInAFrame) {
    std::string const in = std::string(frameText) + ", 0.1, 0.5, -0.25)";
    XVector3 const by{0.1F, 0.5F, -0.25F};
    expectSame("path:rotateTranslationKeyframePosition(2, " + in,
               [&](XTrajectory& path) { path.RotateTranslationKeyframePosition(2, frame, by); });
    expectSame("path:rotateTranslationKeyframePosition({1, 2}, {range = 2}, " + in, [&](XTrajectory& path) {
        path.RotateTranslationKeyframePosition(IDs{1, 2}, 2.F, frame, by);
    });
    expectSame("path:rotateTranslationKeyframePositionBallOfInfluence(2, 2, 1, 0.5, 2, " + in, [&](XTrajectory& path) {
        path.RotateTranslationKeyframePositionBallOfInfluence({2, 2, 1}, 0.5F, 2.F, frame, by);
    });
}

TEST_F(TrajectoryFunctions, PathsAreBentForwardUnlessTheOtherWayIsAskedFor) {
    auto const bend = [](bool forward) {
        return [forward](XTrajectory& path) {
            path.BendTranslationKeyframePosition(IDs{2}, 1.5F, {0, 0.5F, 0}, forward);
        };
    };
    expectSame("path:bendTranslationKeyframePosition(2, 1.5, {0, 0.5, 0})", bend(true));
    expectSame("path:bendTranslationKeyframePosition(2, 1.5, 0, 0.5, 0, true)", bend(true));
    expectSame("path:bendTranslationKeyframePosition({2}, 1.5, {0, 0.5, 0}, false)", bend(false));
}

// ---- handles and kinds ----

TEST_F(TrajectoryFunctions, HandlesAreMovedToAPoint) {
    expectSame("path:editTranslationKeyframeInputTangent(1, {0, 2, 1})", [](XTrajectory& path) {
        path.EditTranslationKeyframeInputTangent(1, {0, 2, 1});
    });
    expectSame("path:editTranslationKeyframeOutputTangent(2, 0, 2, 1)", [](XTrajectory& path) {
        path.EditTranslationKeyframeOutputTangent(2, {0, 2, 1});
    });
}

TEST_F(TrajectoryFunctions, KindsOfTranslationKeysAreSetByWord) {
    expectSame("path:editTranslationKeyframeInterpolationType(1, 'constant')",
               [](XTrajectory& path) { path.EditTranslationKeyframeInterpolationType(1, L"constant"); });
    expectSame("path:editTranslationKeyframeInterpolationType({0, 3}, 'linear')", [](XTrajectory& path) {
        path.EditTranslationKeyframeInterpolationType(IDs{0, 3}, L"linear");
    });
    expectSame("path:editTranslationKeyframeContinuityType({1, 2}, 'linearCoupled')", [](XTrajectory& path) {
        path.EditTranslationKeyframeContinuityType(IDs{1, 2}, L"linearCoupled");
    });
    expectUnchanged("path:editTranslationKeyframeInterpolationType(2, 'spliny')"
                    ":editTranslationKeyframeContinuityType(2, 'loose'):editTranslationKeyframeContinuityType(2)");
}

// ---- rotation keys ----

TEST_F(TrajectoryFunctions, RotationKeysAreAttachedByAsManyValuesAsAreGiven) {
    XQuaternion const turn(0.5F, -0.5F, 0.5F, 0.5F);
    expectSame("path:attachRotationKeyframe(0, {0.5, -0.5, 0.5, 0.5})",
               [&](XTrajectory& path) { path.AttachRotationKeyframe(0, turn); });
    expectSame("path:attachRotationKeyframe(0.25, 0.5, -0.5, 0.5, 0.5)",
               [&](XTrajectory& path) { path.AttachRotationKeyframe(0.25F, turn); });
    expectSame("path:attachRotationKeyframe(1, {0.5, -0.5, 0.5, 0.5}, {1, 2, 3})", [&](XTrajectory& path) {
        path.AttachRotationKeyframe(1, turn, {1, 2, 3});
    });
    expectSame("path:attachRotationKeyframe(1.25, 0.5, -0.5, 0.5, 0.5, 1, 2, 3)", [&](XTrajectory& path) {
        path.AttachRotationKeyframe(1.25F, turn, {1, 2, 3});
    });
    expectSame("path:attachRotationKeyframe(2, {4, 5, 6}, {0.5, -0.5, 0.5, 0.5}, {1, 2, 3})", [&](XTrajectory& path) {
        path.AttachRotationKeyframe(2, {4, 5, 6}, turn, {1, 2, 3});
    });
    expectSame("path:attachRotationKeyframe(2.25, 4, 5, 6, 0.5, -0.5, 0.5, 0.5, 1, 2, 3)", [&](XTrajectory& path) {
        path.AttachRotationKeyframe(2.25F, {4, 5, 6}, turn, {1, 2, 3});
    });
    expectSame("path:attachRotationKeyframe(2.75)",
               [&](XTrajectory& path) { path.AttachRotationKeyframe(2.75F, XQuaternion()); });
}

TEST_F(TrajectoryFunctions, ASecondRotationKeyAtAPlaceIsAnError) {
    expectUnchanged("path:attachRotationKeyframe(0.5, {0, 0, 0, 1})");
    EXPECT_THAT(log.errors(), ElementsAre(L"A rotation keyframe already exists at that attachPoint."));
}

TEST_F(TrajectoryFunctions, RotationKeysAreTurned) {
    XQuaternion const turn(0.5F, -0.5F, 0.5F, 0.5F);
    expectSame("path:editRotationKeyframeOrientation(0.5, {0.5, -0.5, 0.5, 0.5})",
               [&](XTrajectory& path) { path.EditRotationKeyframeOrientation(0.5F, turn); });
    expectSame("path:editRotationKeyframeOrientation({0.5, 3}, 0.5, -0.5, 0.5, 0.5)", [&](XTrajectory& path) {
        path.EditRotationKeyframeOrientation(Floats{0.5F, 3}, turn);
    });
    auto const around = [&](XTrajectory& path) { path.EditRotationKeyframeOrientation(Floats{1.5F}, 3.F, turn); };
    expectSame("path:editRotationKeyframeOrientation(1.5, 3, {0.5, -0.5, 0.5, 0.5})", around);
    expectSame("path:editRotationKeyframeOrientation(1.5, 3, 0.5, -0.5, 0.5, 0.5)", around);
    expectSame("path:editRotationKeyframeOrientationBallOfInfluence({1, 1, 0}, 1, 2, {0.5, -0.5, 0.5, 0.5})",
               [&](XTrajectory& path) {
                   path.EditRotationKeyframeOrientationBallOfInfluence({1, 1, 0}, 1, 2.F, turn);
               });
}

TEST_F(TrajectoryFunctions, RotationKeysSlideAlongThePath) {
    expectSame("path:editRotationKeyframeAttachPoint(0.5, 0.25)",
               [](XTrajectory& path) { path.EditRotationKeyframeAttachPoint(0.5F, 0.25F); });
    expectSame("path:editRotationKeyframeAttachPoint({0.75, 3}, -0.25)", [](XTrajectory& path) {
        path.EditRotationKeyframeAttachPoint(Floats{0.75F, 3}, -0.25F);
    });
    expectSame("path:editRotationKeyframeAttachPoint(1.5, 2, 0.25)",
               [](XTrajectory& path) { path.EditRotationKeyframeAttachPoint(Floats{1.5F}, 2.F, 0.25F); });
    expectSame("path:editRotationKeyframeAttachPoint(1.75, {range = 2}, 0.25)",
               [](XTrajectory& path) { path.EditRotationKeyframeAttachPoint(Floats{1.75F}, 2.F, 0.25F); });
    expectSame("path:editRotationKeyframeAttachPointBallOfInfluence({1, 1, 0}, 1, 2, 0.125)", [](XTrajectory& path) {
        path.EditRotationKeyframeAttachPointBallOfInfluence({1, 1, 0}, 1, 2.F, 0.125F);
    });
}

TEST_F(TrajectoryFunctions, TangentsAndKindsOfRotationKeysAreSet) {
    expectSame("path:editRotationKeyframeInTangent(0.5, {0, 2, 1})", [](XTrajectory& path) {
        path.EditRotationKeyframeInTangent(0.5F, {0, 2, 1});
    });
    expectSame("path:editRotationKeyframeOutTangent(1.5, 0, 2, 1)", [](XTrajectory& path) {
        path.EditRotationKeyframeOutTangent(1.5F, {0, 2, 1});
    });
    expectSame("path:editRotationKeyframeInterpolationType({0.5, 3}, 'linear')", [](XTrajectory& path) {
        path.EditRotationKeyframeInterpolationType(Floats{0.5F, 3}, L"linear");
    });
    expectSame("path:editRotationKeyframeContinuityType(1.5, 'linear')",
               [](XTrajectory& path) { path.EditRotationKeyframeContinuityType(1.5F, L"linear"); });
    expectUnchanged("path:editRotationKeyframeInterpolationType(1.5, 'x'):editRotationKeyframeContinuityType(1.5)");
}

TEST_F(TrajectoryFunctions, RotationKeysAreDeleted) {
    expectUnchanged("path:deleteRotationKeyframe():deleteRotationKeyframe({}):deleteRotationKeyframe(0.51)");
    expectSame("path:deleteRotationKeyframe(1.5)", [](XTrajectory& path) { path.DeleteRotationKeyframe(1.5F); });
    expectSame("path:deleteRotationKeyframe({3, 0.5})", [](XTrajectory& path) {
        path.DeleteRotationKeyframe(Floats{0.5F, 3});
    });
}

// ---- safe guards ----

TEST_F(TrajectoryFunctions, SafeGuardsCountFromOne) {
    expectSame("path:addSafeGuard({1, 2, 3}, 0.5, {range = 2, pinch = 0.5})", [](XTrajectory& path) {
        path.AddSafeGuard({1, 2, 3}, 0.5F, XDropOff(2, XDropOff::CurveDropoff, 0.5F));
    });
    expectSame("path:editSafeGuard(1, {4, 5, 6}, 0.25, 1)", [](XTrajectory& path) {
        path.EditSafeGuard(0, {4, 5, 6}, 0.25F, 1.F);
    });
    expectSame("path:deleteSafeGuard(3)", [](XTrajectory& path) { path.DeleteSafeGuard(2); });
}

TEST_F(TrajectoryFunctions, SafeGuardsThatAreNotThereStayAway) {
    for (char const* index : {"0", "-1", "3", "-2147483648", "2147483647", "nil"})
        expectUnchanged("path:editSafeGuard(" + std::string(index) + ", {1, 2, 3}, 1, 1):deleteSafeGuard(" + index +
                        ")");
}

TEST_F(TrajectoryFunctions, SafeGuardsAreUsedOrNot) {
    expectSame("path:useSafeGuards()", [](XTrajectory& path) { path.UseSafeGuards(true); });
    expectSame("path:useSafeGuards(false)", [](XTrajectory& path) { path.UseSafeGuards(false); });
    EXPECT_EQ("true", result("return path:useSafeGuards(true):isValid()"));
}

// ---- timing, fits and rays ----

TEST_F(TrajectoryFunctions, TimingSlidesByHandlesThatCountFromOne) {
    expectSame("path:slideTimingOnTrajectory(5, 3, 1, 0.05)",
               [](XTrajectory& path) { path.SlideTimingOnTrajectory(5, IDs{2}, 1.F, 0.05F); });
    expectSame("path:slideTimingOnTrajectory(6, {2, 4}, {range = 2}, -0.05)", [](XTrajectory& path) {
        path.SlideTimingOnTrajectory(6, IDs{1, 3}, 2.F, -0.05F);
    });
    expectUnchanged("path:slideTimingOnTrajectory(6, {0, -2147483648, 7}, 2, 1)");
}

TEST_F(TrajectoryFunctions, TwoOrThreeNumbersFitSegments) {
    for (XTrajectory& each : std::vector<XTrajectory>{path, twin}) each.UniformSampling(20);
    expectSame("assert(path:fitSampledCurveTranslation(2, 3) == true)",
               [](XTrajectory& path) { EXPECT_TRUE(path.FitSampledCurveTranslation(2, 3)); });
    EXPECT_EQ("false", result("return path:fitSampledCurveTranslation(2, 3)"));
    for (XTrajectory& each : std::vector<XTrajectory>{path, twin}) {
        each.UniformSampling(30);
        each.AppendTranslationKeyframe({4, 1, 4.02F});
        each.IsTranslationCurveSampled().SetBoolean(true);
    }
    expectSame("path:fitSampledCurveTranslation(2, 3, 0.05)",
               [](XTrajectory& path) { EXPECT_TRUE(path.FitSampledCurveTranslation(2, 3, 0.05F)); });
}

TEST_F(TrajectoryFunctions, FiveOrSixNumbersFitWithinATolerance) {
    expectSame("assert(path:fitSampledCurveTranslation(40, 0.01, 10, 100, 4) == true)",
               [](XTrajectory& path) { EXPECT_TRUE(path.FitSampledCurveTranslation(40, 0.01F, 10, 100, 4)); });
    for (XTrajectory& each : std::vector<XTrajectory>{path, twin}) each.IsTranslationCurveSampled().SetBoolean(true);
    expectSame("path:fitSampledCurveTranslation(40, 0.1, 10, 100, 4, 0.3)",
               [](XTrajectory& path) { EXPECT_TRUE(path.FitSampledCurveTranslation(40, 0.1F, 10, 100, 4, 0.3F)); });
    EXPECT_EQ("false", result("return path:fitSampledCurveTranslation(40, 0.01, 10, 100, 4)"));
}

TEST_F(TrajectoryFunctions, AFitRefusesWhatItIsGivenByItsNames) {
    EXPECT_EQ("script:3: Trajectory:fitSampledCurveTranslation: argument 2 (toleranceOrWindow) must be a whole number "
              "that fits 32 bits",
              refusal("path:fitSampledCurveTranslation(2, 0.5)"));
    EXPECT_EQ("false", result("return path:fitSampledCurveTranslation()"));
}

TEST_F(TrajectoryFunctions, RaysFindTheFractionThatACppCallFinds) {
    float fraction = 0;
    ASSERT_TRUE(path.FindRayClosestPointOnCurveParallelProjection({2, 2, 9}, {0, 0, -1}, fraction));
    EXPECT_EQ(std::to_string(fraction),
              result("return string.format('%.6f', path:findRayClosestPointOnCurveParallelProjection({2, 2, 9}, "
                     "{0, 0, -1}))"));
    ASSERT_TRUE(path.FindRayClosestPointOnCurvePerspectiveProjection({2, 2, 9}, {2, 2, 8}, {0, 0, -1}, fraction));
    EXPECT_EQ(std::to_string(fraction),
              result("return string.format('%.6f', path:findRayClosestPointOnCurvePerspectiveProjection(2, 2, 9, "
                     "2, 2, 8, 0, 0, -1))"));
}

TEST_F(TrajectoryFunctions, RaysThatSeeNoPathFindNil) {
    run(start() + "path:deleteTranslationKeyframe({0, 1, 2, 3, 4})");
    EXPECT_EQ("nil nil", result("return path:findRayClosestPointOnCurveParallelProjection({2, 2, 9}, {0, 0, -1}), "
                                "path:findRayClosestPointOnCurvePerspectiveProjection({2, 2, 9}, {2, 2, 8}, "
                                "{0, 0, -1})"));
}

// ---- all of them ----

TEST_F(TrajectoryFunctions, ARunIsTakenBackInOneStep) {
    State const before = stateOf(path);
    int const steps = undoCount();
    run(start() + "path:appendTranslationKeyframe(1, 2, 3):editTranslationKeyframePosition({1, 2}, 2, 0, 1, 0)"
                  ":deleteSafeGuard(1):attachRotationKeyframe(2.5):slideTimingOnTrajectory(5, 3, 1, 0.05)");
    EXPECT_EQ(steps + 1, undoCount());
    EXPECT_NE(before, stateOf(path));
    scene().Undo();
    EXPECT_EQ(before, stateOf(path));
}

TEST_F(TrajectoryFunctions, EveryFunctionTakesNothingAtAll) {
    for (XScriptFunction const& function : rows()) run(start() + "path:" + function.Name() + "()");
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(TrajectoryFunctions, EveryFunctionRefusesAWrongKindAndChangesNothing) {
    EXPECT_EQ("script:3: Trajectory:editTranslationKeyframePosition: argument 1 (parameters) must be a list of whole "
              "numbers, but entry 2 is a string",
              refusal("path:editTranslationKeyframePosition({1, 'two'}, 0, 1, 0)"));
    EXPECT_EQ("script:3: Trajectory:appendTranslationKeyframe: argument 2 (position) must be a vector, not boolean",
              refusal("path:appendTranslationKeyframe(true)"));
    EXPECT_EQ("script:3: Trajectory:editTranslationKeyframePosition: argument 3 (delta) must be a vector, not string",
              refusal("path:editTranslationKeyframePosition(1, 'up')"));
    for (XScriptFunction const& function : rows()) {
        std::string const message = refusal("path:" + std::string(function.Name()) + "(print)");
        EXPECT_NE(std::string::npos, message.find("Trajectory:" + std::string(function.Name()) + ": argument "));
    }
}

TEST_F(TrajectoryFunctions, OfAPathThatIsGoneNothingIsDone) {
    run(start() + "functions, gone = scene:object(" + std::to_string(twin.ObjectID()) + "), path");
    path.Delete();
    State const before = stateOf(twin);
    for (XScriptFunction const& function : rows()) run("functions." + call(function, "gone"));
    EXPECT_EQ("nil false", eval("return gone:findRayClosestPointOnCurveParallelProjection(), "
                                "gone:fitSampledCurveTranslation(2, 3)"));
    EXPECT_EQ(before, stateOf(twin));
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(TrajectoryFunctions, CalledOnAnObjectOfAnotherTypeNothingIsDone) {
    run(start() + "functions, other = path, scene:createObject('Joint')");
    int const steps = undoCount();
    State const before = stateOf(path);
    for (XScriptFunction const& function : rows()) run("functions." + call(function, "other"));
    EXPECT_EQ(before, stateOf(path));
    EXPECT_EQ(steps, undoCount());
}

TEST_F(TrajectoryFunctions, CalledOnWhatIsNoObjectNothingIsDone) {
    run(start() + "functions = path");
    State const before = stateOf(path);
    for (char const* id : {"-1", "987654321", "4294967296", "0/0", "1e300", "'path'", "{}", "nil"})
        for (XScriptFunction const& function : rows())
            run("functions." +
                call(function, "{__sceneID = functions.__sceneID, __objectID = " + std::string(id) + "}"));
    EXPECT_EQ(before, stateOf(path));
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(TrajectoryFunctions, TakesNumbersBeyondAllMeasure) {
    for (char const* number : {"0/0", "1/0", "-1/0", "1e300", "-1e300"})
        for (XScriptFunction const& function : rows()) {
            std::string all = number;
            for (int i = 0; i < 16; ++i) all += std::string(", ") + number;
            for (std::string const before : {"", "1, ", "{1, 2}, ", "1, 1, 1, 1, 1, "})
                lua().RunScript(Qelutils::fromUtf8("local scene = app.scene()\n" + start() + "path:" + function.Name() +
                                                   "(" + before + all + ")"));
        }
    EXPECT_TRUE(path.IsValid());
    XVector3 position;
    path.ComputePosition(0.5F, position);
}

}  // namespace
}  // namespace Tavo
