// Paths edited at the command line: what moves, what stays, and what becomes of the motion.
#include "tests/hosts/tavo/trajectory_host.h"

using namespace hosttest;

namespace {

class TrajectoryEdits : public TrajectoryHostTest {
protected:
    TrajectoryEdits() {
        makePath();
        static std::vector<Numbers> const walk = track("path.tavo", "Hips");
        tracks[0] = walk;
    }

    // The report of an edit of the hips' path, which is written to out.tavo.
    std::string edit(std::string const& options) {
        std::string const told = result("trajectory edit path.tavo Hips -o out.tavo --report --json " + options);
        tracks[1] = track("out.tavo", "Hips");
        return told;
    }
    // The hips at a frame: where its key lies, as long as no time changes.
    Numbers const& before(int key) const { return tracks[0].at(std::size_t(key)); }
    Numbers const& after(int key) const { return tracks[1].at(std::size_t(key)); }
    static double distance(Numbers const& a, Numbers const& b) {
        return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
    }
    static Numbers plus(Numbers const& a, double x, double y, double z) { return {a[0] + x, a[1] + y, a[2] + z}; }

    static constexpr double frame = 1.0 / 30;
    std::vector<Numbers> tracks[2];  // before and after
};

}  // namespace

// ---- what is done ----

TEST_F(TrajectoryEdits, AMoveIsInTheAxesOfTheScene) {
    std::string const told = edit("--move 0.25,-0.5,1 --keys 0..119 --keep none");
    EXPECT_EQ(number(told, "keysMoved"), 120);
    for (int key : {0, 45, 117}) expectNear(after(key), plus(before(key), 0.25, -0.5, 1), 1e-5);
    EXPECT_NEAR(number(told, "lengthAfter"), number(told, "lengthBefore"), 1e-4);
}

TEST_F(TrajectoryEdits, OnlyTheKeysThatAreNamedMoveWithoutARange) {
    std::string const told = edit("--move 0,1,0 --keys 30,60..62 --keep constraints");
    EXPECT_EQ(number(told, "keysMoved"), 4);
    expectNear(after(30), plus(before(30), 0, 1, 0), 1e-3);
    expectNear(after(29), before(29), 1e-3);
    expectNear(after(63), before(63), 1e-3);
}

TEST_F(TrajectoryEdits, NeighboursMoveByTheDropoffAlongThePath) {
    edit("--move 0,1,0 --keys 60 --range 1 --keep constraints");
    double last = 1.001;
    for (int key = 60; key < 90; key += 3) {
        double const rise = after(key)[1] - before(key)[1];
        EXPECT_LE(rise, last + 1e-3) << key;
        last = rise;
    }
    EXPECT_NEAR(after(60)[1] - before(60)[1], 1, 1e-3);
    EXPECT_NEAR(last, 0, 1e-3);
}

TEST_F(TrajectoryEdits, PinchShapesTheDropoff) {
    edit("--move 0,1,0 --keys 60 --range 1 --keep constraints");
    double const soft = after(65)[1];
    edit("--move 0,1,0 --keys 60 --range 1 --keep constraints --pinch 0");
    double const pinched = after(65)[1];
    edit("--move 0,1,0 --keys 60 --range 1 --keep constraints --bubble 1");
    EXPECT_LT(pinched, soft - 0.05);
    EXPECT_GT(after(65)[1], soft + 0.05);
}

TEST_F(TrajectoryEdits, ABallMovesWhatIsInIt) {
    Numbers const centre = before(60);
    std::ostringstream ball;
    ball << " --ball " << centre[0] << ',' << centre[1] << ',' << centre[2] << ",0.3 ";
    std::string const told = edit("--move 0,1,0 --keep constraints" + ball.str());
    int inside = 0;
    for (int key = 0; key < 120; ++key) inside += distance(before(key), centre) <= 0.3;
    EXPECT_EQ(number(told, "keysMoved"), inside);
    EXPECT_GT(number(edit("--move 0,1,0 --keep constraints --range 0.5" + ball.str()), "keysMoved"), inside + 5);
}

TEST_F(TrajectoryEdits, AScaleIsAboutItsCentre) {
    edit("--scale 2 --keys 0..119 --centre 0,0,0 --keep constraints");
    for (int key : {0, 60}) {
        Numbers const p = before(key);
        expectNear(after(key), {2 * p[0], 2 * p[1], 2 * p[2]}, 1e-3);
    }
}

TEST_F(TrajectoryEdits, AScaleTakesAFactorForEachAxisOfTheScene) {
    edit("--scale 1,0.5,3 --keys 0..119 --centre 0,1,0 --keep constraints");
    Numbers const p = before(60), q = after(60);
    expectNear(q, {p[0], 1 + (p[1] - 1) / 2, 3 * p[2]}, 2e-3);
}

TEST_F(TrajectoryEdits, ARotationIsAboutTheMiddleOfItsKeys) {
    // The two keys change places across, at their own heights.
    Numbers const a = before(40), b = before(80);
    EXPECT_EQ(number(edit("--rotate y,180 --keys 40,80 --keep constraints"), "keysMoved"), 2);
    expectNear(after(40), {b[0], a[1], b[2]}, 2e-3);
    expectNear(after(80), {a[0], b[1], a[2]}, 2e-3);
}

TEST_F(TrajectoryEdits, WhatFollowsTurnsWithThePath) {
    edit("--rotate y,90 --keys 0..119 --centre 0,0,0 --keep constraints");
    for (char const* object : {"Hips", "Head", "LeftFoot"}) {  // about y, z turns towards x
        Numbers const p = place("path.tavo", object, 2), q = place("out.tavo", object, 2);
        expectNear(q, {p[2], p[1], -p[0]}, 1e-3);
    }
}

TEST_F(TrajectoryEdits, ABendLeavesWhatIsBeforeItsCornerAndTurnsWhatIsAfter) {
    edit("--bend 90 --keys 60 --range 1 --keep constraints");
    Numbers const corner = before(60);
    for (int key : {0, 30, 59, 60}) expectNear(after(key), before(key), 1e-3);
    for (int key : {90, 100, 119}) {
        Numbers const p = before(key);
        expectNear(after(key), {corner[0] + p[2] - corner[2], p[1], corner[2] - (p[0] - corner[0])}, 2e-3);
    }
}

TEST_F(TrajectoryEdits, WhatWalksRoundABendFacesItsWay) {
    edit("--bend 90 --keys 60 --range 1 --keep constraints");
    double const time = 110 * frame;
    Numbers const hips = place("path.tavo", "Hips", time), toe = place("path.tavo", "LeftToe", time),
                  hipsAfter = place("out.tavo", "Hips", time), toeAfter = place("out.tavo", "LeftToe", time);
    expectNear({toeAfter[0] - hipsAfter[0], toeAfter[1] - hipsAfter[1], toeAfter[2] - hipsAfter[2]},
               {toe[2] - hips[2], toe[1] - hips[1], hips[0] - toe[0]}, 2e-3);
}

TEST_F(TrajectoryEdits, ABendWithoutARangeIsSharp) {
    std::string const sharp = edit("--bend 90 --keys 60 --keep constraints");
    EXPECT_NEAR(number(sharp, "lengthAfter"), number(sharp, "lengthBefore"), 1e-3);
    EXPECT_GT(number(edit("--bend 90 --keys 60 --range 1 --keep constraints"), "lengthAfter"),
              number(sharp, "lengthBefore") + 0.1);
}

TEST_F(TrajectoryEdits, ABendTakesAnotherAxis) {
    edit("--bend -90,x --keys 60 --keep constraints");
    Numbers const corner = before(60), p = before(119), q = after(119);
    EXPECT_NEAR(q[1] - corner[1], p[2] - corner[2], 2e-3) << "forwards has become upwards";
    EXPECT_NEAR(q[2] - corner[2], corner[1] - p[1], 2e-3);
}

// ---- what is kept ----

TEST_F(TrajectoryEdits, TheFeelIsTheSpeed) {
    std::string const told = edit("--bend 90 --keys 60 --range 1.5 --keep feel");
    EXPECT_LT(number(told, "speed", "largest"), 1e-3);
    EXPECT_GT(number(told, "time", "largest"), 0.1);
    EXPECT_TRUE(has(told, "\"keep\":\"feel\""));
}

TEST_F(TrajectoryEdits, ConstraintsAreTimesAndPlaces) {
    std::string const told = edit("--bend 90 --keys 60 --range 1.5 --keep constraints");
    EXPECT_EQ(number(told, "time", "largest"), 0);
    EXPECT_EQ(number(told, "time", "mean"), 0);
    EXPECT_GT(number(told, "speed", "largest"), 0.1);
}

TEST_F(TrajectoryEdits, KeepingNothingLeavesTheTimingAlone) {
    std::string const told = edit("--bend 90 --keys 60 --range 1.5 --keep none");
    EXPECT_EQ(number(told, "progress", "largest"), 0);
    EXPECT_EQ(number(told, "time", "largest"), 0);
    EXPECT_GT(number(told, "speed", "largest"), 0);
}

TEST_F(TrajectoryEdits, WhatIsKeptStaysSet) {
    edit("--move 0,1,0 --keys 60 --keep constraints");
    EXPECT_TRUE(has(result("trajectory info out.tavo"), "keeps      constraints\n"));
    std::string const told =
        result("trajectory edit out.tavo Hips -o again.tavo --move 0,1,0 --keys 70 --report --json");
    EXPECT_TRUE(has(told, "\"keep\":\"constraints\"")) << told;
}

TEST_F(TrajectoryEdits, ASplineIsEditedWithAWarningThatItsTimingIsNotRepaired) {
    result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01");
    Outcome const done = tavo("trajectory edit few.tavo Hips -o out.tavo --move 0,1,0 --keys 3");
    EXPECT_EQ(done.code, 0);
    EXPECT_EQ(done.err, "warning: Smart editing is only available on sampled trajectories.\n");
    EXPECT_TRUE(has(done.out, "1 key moved")) << done.out;
}

// ---- what stands still ----

TEST_F(TrajectoryEdits, AGuardedKeyStaysWhereItIs) {
    std::string const told = edit("--move 0,1,0 --keys 50..80 --range 1 --guard 60 --guard 70 --keep constraints");
    EXPECT_EQ(number(told, "keysHeld"), 1);
    EXPECT_TRUE(has(told, "{\"guard\":0,\"centre\":[")) << told;
    EXPECT_TRUE(has(told, "{\"guard\":1,\"centre\":[")) << told;
    for (int key : {60, 70}) expectNear(after(key), before(key), 1e-3);
    EXPECT_GT(after(50)[1], before(50)[1] + 0.3);
    double const beside = after(61)[1] - before(61)[1];
    EXPECT_TRUE(beside >= 0 && beside < 0.1) << "movement returns softly: " << beside;
}

TEST_F(TrajectoryEdits, AGuardIsInTheReportWhereItStandsInTheScene) {
    std::string const told = edit("--move 0,1,0 --keys 50 --range 1 --guard 60 --keep constraints");
    Numbers const at = before(60);
    std::string const centre = told.substr(told.find("\"centre\":[") + 10);
    std::istringstream numbers(centre);
    double x = 0, y = 0, z = 0;
    char comma = 0;
    numbers >> x >> comma >> y >> comma >> z;
    expectNear({x, y, z}, at, 1e-4);
}

TEST_F(TrajectoryEdits, GuardsStayInTheFileAndHoldAgain) {
    edit("--move 0,1,0 --keys 50 --range 1 --guard 60 --keep constraints");
    EXPECT_TRUE(has(result("trajectory info out.tavo"), "  guard 0    at "));
    EXPECT_TRUE(has(result("trajectory info out.tavo --json"), "\"guardsInUse\":true"));
    std::string const again =
        result("trajectory edit out.tavo Hips -o again.tavo --move 0,1,0 --keys 60,61 --guard 60 --report --json");
    EXPECT_EQ(number(again, "keysMoved"), 1) << "a guard without a range holds nothing but its key";
    EXPECT_FALSE(has(again, "\"guard\":1")) << "the same guard is not doubled";
}

TEST_F(TrajectoryEdits, AGuardedRotationDoesNotTurn) {
    edit("--rotate y,90 --keys 0..119 --guard 60 --range 0.5 --keep constraints");
    expectNear(place("out.tavo", "LeftFoot", 60 * frame), place("path.tavo", "LeftFoot", 60 * frame), 2e-3);
}

TEST_F(TrajectoryEdits, AGuardedTimeStaysWhileTheFeelIsKept) {
    std::string const told = edit("--bend 90 --keys 60 --range 1.5 --keep feel --guard-time 0 --guard-time 80");
    EXPECT_TRUE(has(told, "\"timeGuards\":[{\"key\":0,\"time\":0},{\"key\":80,\"time\":2.6666667}]")) << told;
    Numbers const corner = before(60), guarded = before(80);
    // The 80th key turns as a whole: it is as far from the corner as it was, and there at its time.
    EXPECT_NEAR(distance(after(80), corner), distance(guarded, corner), 2e-3);
    std::string const free = edit("--bend 90 --keys 60 --range 1.5 --keep feel");
    EXPECT_GT(std::abs(distance(after(80), corner) - distance(guarded, corner)), 0.05);
    EXPECT_GT(number(told, "speed", "largest"), number(free, "speed", "largest"));
}

TEST_F(TrajectoryEdits, AMotionThatStartsLaterKeepsItsStartWithATimeGuard) {
    result("trajectory generate walk.bvh Hips -o path.tavo --from 30");
    edit("--move 0.5,0,0 --keys 40 --range 1 --keep feel");
    EXPECT_NEAR(number(result("trajectory info out.tavo --json"), "timing", "start"), 0, 1e-6) << "from 0 on, as it is";
    edit("--move 0.5,0,0 --keys 40 --range 1 --keep feel --guard-time 0");
    EXPECT_NEAR(number(result("trajectory info out.tavo --json"), "timing", "start"), 1, 1e-6);
}

// ---- the report ----

TEST_F(TrajectoryEdits, TheReportIsForPeopleToo) {
    std::string const plain = result("trajectory edit path.tavo Hips -o out.tavo --move 0,1,0 --keys 60");
    EXPECT_EQ(plain.substr(0, plain.find(',')), "Scene|Hips_trajectory: 1 key moved");
    EXPECT_FALSE(has(plain, "progress"));
    std::string const told = result("trajectory edit path.tavo Hips -o out.tavo --move 0,1,0 --keys 60 --range 0.5 "
                                    "--guard 65 --guard-time 0 --keep feel --report");
    for (char const* part : {"  keeps      feel\n", "  progress   largest ", " of the path\n", "  speed      largest ",
                             " m/s\n", "  time       largest ", "  guard 0    at ", " holds 1 key\n",
                             "  time guard timing key 0 stays at 0 s\n", "wrote out.tavo\n"})
        EXPECT_TRUE(has(told, part)) << part << "\n" << told;
}

TEST_F(TrajectoryEdits, TheReportAgreesWithInfo) {
    std::string const told = edit("--bend 45 --keys 60 --range 1 --keep feel");
    EXPECT_EQ(number(told, "lengthAfter"), number(result("trajectory info out.tavo --json"), "length"));
}

TEST_F(TrajectoryEdits, AnEditedSceneMayBeWrittenAsAClip) {
    result("trajectory edit path.tavo Hips -o out.bvh --bend 90 --keys 60 --range 1 --keep constraints");
    edit("--bend 90 --keys 60 --range 1 --keep constraints");
    expectNear(place("out.bvh", "LeftFoot", 3), place("out.tavo", "LeftFoot", 3), 1e-3);
}
