// `tavo ik`: where effectors come to be, what stays, and what is written and told.
#include "hosts/tavo/console.h"
#include "hosts/tavo/targets.h"
#include "tests/hosts/tavo/rig_host.h"

using namespace hosttest;

namespace {

constexpr int wrongCall = 2, missed = 4;

class Ik : public RigHostTest {
protected:
    Numbers turn(std::string const& file, std::string const& object, double time) const {
        return sample(file, object, "WorldRotation", time);
    }
    void expectFailure(int code, std::string const& arguments, std::string const& told) const {
        std::string const message = failure(code, "ik " + arguments);
        EXPECT_TRUE(has(message, told)) << arguments << "\n" << message;
    }
};

}  // namespace

// ---- where effectors come to be ----

TEST_F(Ik, AnEffectorReachesItsTargetAndTheSceneKeepsPoseAndRig) {
    std::string const report =
        result("ik walk.bvh --root LeftArm --effector LeftHand=0.3,1.1,0.3 --max-error 0.5 -o posed.tavo");
    EXPECT_TRUE(has(report, "LeftHand  0.")) << report;
    EXPECT_TRUE(has(report, " mm\nwrote posed.tavo\n")) << report;
    expectNear(place("posed.tavo", "LeftHand", 0), {0.3, 1.1, 0.3}, 5e-4);
    expectNear(place("posed.tavo", "LeftArm", 0), place("walk.bvh", "LeftArm", 0), 1e-5);
    EXPECT_TRUE(has(result("info posed.tavo"), "IKSolver"));
    EXPECT_TRUE(has(text("posed.tavo"), "LeftHand_IK"));
}

TEST_F(Ik, TheRestOfTheFigureStaysAndPinsHold) {
    std::string const json = result(
        "ik walk.bvh --root Hips --effector LeftHand=0.5,1,0.4 --pin LeftFoot --pin RightFoot --json -o posed.tavo");
    EXPECT_LT(number(json, "millimetres"), 1);
    for (char const* foot : {"LeftFoot", "RightFoot"}) {
        expectNear(place("posed.tavo", foot, 0), place("walk.bvh", foot, 0), 1e-3);
        Numbers const before = turn("walk.bvh", foot, 0), after = turn("posed.tavo", foot, 0);
        double dot = 0;
        for (std::size_t i = 0; i < 4; ++i) dot += before[i] * after[i];
        EXPECT_NEAR(std::abs(dot), 1, 1e-5) << foot;
    }
}

TEST_F(Ik, APinnedRootStays) {
    std::string const report = result("ik walk.bvh --root Hips --effector LeftHand=0.5,1,0.4 --pin Hips -o posed.tavo");
    expectNear(place("posed.tavo", "LeftHand", 0), {0.5, 1, 0.4}, 1e-3);
    expectNear(place("posed.tavo", "Hips", 0), place("walk.bvh", "Hips", 0), 1e-3);
    EXPECT_TRUE(has(report, "Hips  0.")) << report;
}

TEST_F(Ik, OutOfReachIsTheNearestPose) {
    Numbers const hip = place("walk.bvh", "LeftUpLeg", 0);
    std::string const json =
        result("ik walk.bvh --root LeftUpLeg --effector LeftFoot=0,0.9,1 --no-limits --json -o posed.tavo");
    double const away = std::hypot(0 - hip[0], 0.9 - hip[1], 1 - hip[2]), reach = 0.84;
    EXPECT_NEAR(number(json, "millimetres"), 1000 * (away - reach), 2);
    expectNear(place("posed.tavo", "LeftUpLeg", 0), hip, 1e-5);
    Numbers const foot = place("posed.tavo", "LeftFoot", 0);
    EXPECT_NEAR(std::hypot(foot[0], foot[1] - 0.9, foot[2] - 1), away - reach, 2e-3);
}

TEST_F(Ik, AMissedGateTellsTheReportAndWritesNothing) {
    std::string const call = "ik walk.bvh --root LeftUpLeg --effector LeftFoot=0,0.9,3 --max-error 1 -o posed.tavo";
    for (char const* form : {"", " --json"}) {
        Outcome const outcome = tavo(call + form);
        EXPECT_EQ(outcome.code, missed);
        EXPECT_TRUE(has(outcome.err, "LeftFoot is ")) << outcome.err;
        EXPECT_TRUE(has(outcome.err, "mm from its target, more than 1 mm; nothing is written")) << outcome.err;
        EXPECT_TRUE(has(outcome.out, "LeftFoot")) << outcome.out;
        EXPECT_FALSE(has(outcome.out, "posed.tavo")) << outcome.out;
        EXPECT_FALSE(exists("posed.tavo"));
    }
}

TEST_F(Ik, AnglesAreDegreesAboutXThenYThenZ) {
    std::string const json =
        result("ik walk.bvh --root LeftArm --effector LeftHand=0.4,1.2,0.3,90,0,90 --json --no-limits -o posed.tavo");
    EXPECT_LT(number(json, "millimetres"), 1);
    EXPECT_LT(number(json, "degrees"), 0.2);
    Numbers const q = turn("posed.tavo", "LeftHand", 0);
    for (double x : q) EXPECT_NEAR(x * (q[3] < 0 ? -1 : 1), 0.5, 2e-3);
}

TEST_F(Ik, AtChoosesThePoseToBeginWith) {
    Numbers const foot = place("walk.bvh", "RightFoot", 0.5);
    EXPECT_GT(std::abs(foot[2] - place("walk.bvh", "RightFoot", 0)[2]), 0.01);
    result("ik walk.bvh --at 0.5 --root Hips --effector LeftHand=0.4,1.1,1 --pin RightFoot -o posed.tavo");
    expectNear(place("posed.tavo", "LeftHand", 0.5), {0.4, 1.1, 1}, 1e-3);
    expectNear(place("posed.tavo", "RightFoot", 0.5), foot, 1e-3);
}

TEST_F(Ik, AClipIsWrittenWhereTheNameSaysSo) {
    save(walk(3), "short.bvh");
    result("ik short.bvh --root LeftArm --effector LeftHand=0.3,1.1,0.3 -o posed.bvh");
    Place const hand = pose(read("posed.bvh"), 0, "LeftHand").at;
    EXPECT_LT(length(difference(hand, {30, 110, 30})), 0.05);
}

TEST_F(Ik, WithoutAnOutputItOnlyTells) {
    std::ptrdiff_t const before = files();
    std::string const report = result("ik walk.bvh --root LeftArm --effector LeftHand=0.3,1.1,0.3");
    EXPECT_FALSE(has(report, "wrote"));
    EXPECT_EQ(files(), before);
}

TEST_F(Ik, APosedSceneIsPosedAgain) {
    result("ik walk.bvh --root LeftArm --effector LeftHand=0.3,1.1,0.3 -o posed.tavo");
    result("ik posed.tavo --root RightArm --effector RightHand=-0.3,1.1,0.3 -o both.tavo");
    expectNear(place("both.tavo", "LeftHand", 0), {0.3, 1.1, 0.3}, 1e-3);
    expectNear(place("both.tavo", "RightHand", 0), {-0.3, 1.1, 0.3}, 1e-3);
}

// ---- what cannot be done ----

TEST_F(Ik, WrongCallsAreToldAndWriteNothing) {
    std::string const hips = "walk.bvh --root Hips -o x.tavo ";
    expectFailure(wrongCall, "walk.bvh -o x", "--root is required");
    expectFailure(wrongCall, hips, "which effector?");
    expectFailure(wrongCall, hips + "--effector LeftHnd=0,0,0", "did you mean LeftHand");
    expectFailure(wrongCall, hips + "--effector '*Hand=0,0,0'", "\"*Hand\" matches 2 objects: ");
    expectFailure(wrongCall, hips + "--effector LeftHand=0,0,0 --pin LeftHand", "LeftHand is given twice");
    expectFailure(wrongCall, hips + "--effector LeftHand=0,0", "\"LeftHand=0,0\" is not PATH=x,y,z");
    expectFailure(wrongCall, hips + "--effector Hips=0,1,0", "Hips is the root; which effector below it?");
    expectFailure(wrongCall, hips + "--effector LeftHand=0,0,0 --at nan", "--at is a time");
    expectFailure(wrongCall, hips + "--effector LeftHand=0,0,0 --max-error -1", "--max-error is a length");
    expectFailure(wrongCall, hips + "--effector LeftHand=0,0,0 --max-error nan", "--max-error is a length");
    expectFailure(wrongCall, "walk.bvh --root LeftArm --effector RightHand=0,0,0 -o x.tavo", "RightHand is not below ");
    expectFailure(wrongCall, "walk.bvh --root SceneSettings --effector LeftHand=0,0,0 -o x.tavo",
                  "nothing that matches \"SceneSettings\" has a place in space");
    expectFailure(3, "none.bvh --root Hips --effector LeftHand=0,0,0 -o x.tavo", "none.bvh");
}

// ---- targets, without files ----

namespace {

void expectWrong(std::string const& text) {
    try {
        host::parseTarget(text);
        ADD_FAILURE() << text;
    } catch (host::Failure const& failure) {
        EXPECT_EQ(failure.code, host::ExitCode::wrongCall);
        EXPECT_TRUE(has(failure.message, "\"" + text + "\" is not PATH=x,y,z")) << failure.message;
    }
}

}  // namespace

TEST(IkTargets, ThreeNumbersAreAPlace) {
    auto const [path, target] = host::parseTarget("Scene|Left=Hand=0.5,-1e-1,2");
    EXPECT_EQ(path, "Scene|Left=Hand");
    EXPECT_EQ(target.position, Tavo::XVector3(0.5F, -0.1F, 2));
    EXPECT_FALSE(target.rotation);
}

TEST(IkTargets, SixNumbersAreAPlaceAndAngles) {
    auto const target = host::parseTarget("a=0,0,0,90,0,90").second;
    ASSERT_TRUE(target.rotation);
    for (float x : {target.rotation->X(), target.rotation->Y(), target.rotation->Z(), target.rotation->W()})
        EXPECT_NEAR(x, 0.5, 1e-6);
}

TEST(IkTargets, AnythingElseIsAWrongCall) {
    for (char const* text :
         {"", "a", "=1,2,3", "a=", "a=1", "a=1,2", "a=1,2,3,4", "a=1,2,3,4,5", "a=1,2,3,4,5,6,7", "a=1,2,", "a=,1,2",
          "a=1,,2", "a=1,2,x", "a=1,2,3x", "a=1,2,nan", "a=inf,0,0", "a=1e99,0,0"})
        expectWrong(text);
}
