// Paths at the command line: made from motion, fitted, sampled and told of.
#include "tests/hosts/tavo/trajectory_host.h"

using namespace hosttest;

namespace {

class TrajectoryVerbs : public TrajectoryHostTest {};

}  // namespace

// ---- generate ----

TEST_F(TrajectoryVerbs, GenerateMakesThePathOfAMotionWithItsTiming) {
    EXPECT_EQ(result("trajectory generate walk.bvh Hips -o path.tavo"),
              "Scene|Hips_trajectory: 120 keys, 5.199 m, frames 0 to 119\nwrote path.tavo\n");
    std::string const told = result("trajectory info path.tavo --json");
    EXPECT_EQ(number(told, "keys"), 120);
    EXPECT_EQ(number(told, "timing", "keys"), 120);
    EXPECT_NEAR(number(told, "timing", "end"), 119.0 / 30, 1e-5);
    EXPECT_TRUE(has(told, "\"followers\":[]"));
}

TEST_F(TrajectoryVerbs, GenerateLeavesTheMotionAsItWas) {
    result("trajectory generate walk.bvh Hips -o path.tavo");
    for (double time : {0.0, 1.1, 3.9})
        EXPECT_EQ(place("path.tavo", "Head", time), place("walk.bvh", "Head", time)) << time;
    std::string const before = result("info walk.bvh --json"), after = result("info path.tavo --json");
    for (char const* key : {"start", "end", "playbackEnd"}) EXPECT_EQ(number(before, key), number(after, key)) << key;
}

TEST_F(TrajectoryVerbs, AConnectedObjectStandsWhereItsMotionPutIt) {
    EXPECT_TRUE(has(result("trajectory generate walk.bvh Hips -o path.tavo --connect"), "; Scene|Hips follows it\n"));
    EXPECT_TRUE(has(result("trajectory info path.tavo"), "  follower   Scene|Hips\n"));
    for (double time : {0.0, 1.0, 1.7, 3.9}) {
        SCOPED_TRACE(time);
        expectNear(place("path.tavo", "Hips", time), place("walk.bvh", "Hips", time), 2e-4);
        expectNear(place("path.tavo", "LeftFoot", time), place("walk.bvh", "LeftFoot", time), 2e-4);
        expectNear(place("path.tavo", "Head", time), place("walk.bvh", "Head", time), 2e-4);
    }
}

TEST_F(TrajectoryVerbs, AConnectedObjectIsExportedAsItStands) {
    makePath();
    result("export path.tavo -o again.bvh");
    expectNear(place("again.bvh", "LeftFoot", 2), place("walk.bvh", "LeftFoot", 2), 2e-4);
}

TEST_F(TrajectoryVerbs, AConnectedObjectWithRestValuesStandsWhereItStood) {
    result("set walk.bvh Hips.PreTranslationX=0.5 Hips.PreRotationY=0.7 Hips.PostRotationX=-0.4 -o rest.tavo");
    result("trajectory generate rest.tavo Hips -o path.tavo --connect");
    for (double time : {0.0, 2.0}) {
        expectNear(place("path.tavo", "Hips", time), place("rest.tavo", "Hips", time), 1e-5);
        expectNear(place("path.tavo", "LeftFoot", time), place("rest.tavo", "LeftFoot", time), 1e-4);
    }
}

TEST_F(TrajectoryVerbs, GenerateTakesPatternsAndPassesOverWhatStandsStill) {
    std::string const told = result("trajectory generate walk.bvh '*Foot' Scene -o feet.tavo");
    EXPECT_TRUE(has(told, "Scene|LeftFoot_trajectory: 120 keys")) << told;
    EXPECT_TRUE(has(told, "Scene|RightFoot_trajectory: 120 keys")) << told;
    EXPECT_TRUE(has(told, "\n1 object that stands still: no trajectory\n")) << told;
    EXPECT_FALSE(has(told, "Scene_trajectory")) << told;
}

TEST_F(TrajectoryVerbs, GenerateNamesAnObjectOnce) {
    EXPECT_EQ(result("trajectory generate walk.bvh Hips 'Hip*' -o path.tavo"),
              "Scene|Hips_trajectory: 120 keys, 5.199 m, frames 0 to 119\nwrote path.tavo\n");
}

TEST_F(TrajectoryVerbs, GenerateTakesTheFramesItIsTold) {
    EXPECT_TRUE(has(result("trajectory generate walk.bvh Hips -o path.tavo --from 30 --to 60 --by 2"),
                    ": 16 keys, 1.311 m, frames 30 to 60\n"));
    EXPECT_TRUE(has(result("trajectory generate walk.bvh Hips -o path.tavo --from 30 --to 60 --by 0.5"), ": 61 keys"));
    EXPECT_TRUE(has(result("trajectory generate walk.bvh Hips -o path.tavo --from 100"), "frames 100 to 119"));
}

TEST_F(TrajectoryVerbs, ASecondPathOfAnObjectHasItsOwnName) {
    result("trajectory generate walk.bvh Hips -o one.tavo");
    EXPECT_TRUE(has(result("trajectory generate one.tavo Hips -o two.tavo"), "Scene|Hips_trajectory1: 120 keys"));
    EXPECT_EQ(number(result("trajectory info two.tavo Hips_trajectory1 --json"), "keys"), 120);
    std::string const both = result("trajectory info two.tavo Hips");
    EXPECT_TRUE(has(both, "Scene|Hips_trajectory\n") && has(both, "Scene|Hips_trajectory1\n")) << both;
}

// ---- fit ----

TEST_F(TrajectoryVerbs, FitStaysWithinItsTolerance) {
    makePath();
    for (double tolerance : {0.05, 0.005, 0.0005}) {
        SCOPED_TRACE(tolerance);
        std::string const told = result("trajectory fit path.tavo Hips -o few.tavo --report --json --tolerance " +
                                        std::to_string(tolerance));
        EXPECT_EQ(number(told, "keysBefore"), 120);
        EXPECT_LT(number(told, "keysAfter"), 100);
        EXPECT_GT(number(told, "largestError"), 0);
        EXPECT_LE(number(told, "largestError"), tolerance * 1.001);
        EXPECT_LE(number(told, "meanError"), number(told, "largestError"));
        EXPECT_GE(number(told, "seconds"), 0);
        EXPECT_EQ(number(told, "keysAfter"), number(result("trajectory info few.tavo --json"), "keys"));
    }
}

TEST_F(TrajectoryVerbs, PercentIsThatOfThePathsLength) {
    makePath();
    double const length = number(result("trajectory info path.tavo --json"), "length");
    std::string const told = result("trajectory fit path.tavo Hips -o few.tavo --percent 0.1 --report --json");
    EXPECT_NEAR(number(told, "tolerance"), length / 1000, 1e-9);
    std::string const tight = result("trajectory fit path.tavo Hips -o few.tavo --percent 0.01 --report --json");
    EXPECT_GT(number(tight, "keysAfter"), number(told, "keysAfter"));
}

TEST_F(TrajectoryVerbs, FitReportsForPeopleWhenAsked) {
    makePath();
    std::string const plain = result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01");
    EXPECT_TRUE(has(plain, "Scene|Hips_trajectory: 120 keys became ")) << plain;
    EXPECT_FALSE(has(plain, "error")) << plain;
    std::string const told = result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01 --report");
    for (char const* part :
         {"  error      largest ", ", mean ", " m, of 0.01 m allowed\n", "  time       ", " s\nwrote "})
        EXPECT_TRUE(has(told, part)) << part << told;
}

TEST_F(TrajectoryVerbs, WhatFollowsAFittedPathStillTurnsWhereItTurned) {
    makePath();
    result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.002");
    for (double time : {0.5, 2.0, 3.5}) {
        expectNear(place("few.tavo", "Hips", time), place("path.tavo", "Hips", time), 0.01);
        expectNear(place("few.tavo", "LeftFoot", time), place("path.tavo", "LeftFoot", time), 0.02);
    }
}

TEST_F(TrajectoryVerbs, ASlowDriftIsAWayToo) {
    std::vector<double> drift;
    for (int i = 0; i < 200; ++i) drift.push_back(1 + 9e-6 * i);
    writeClip("drift.bvh", drift);
    result("trajectory generate drift.bvh a -o drift.tavo --units m");
    std::string const told = result("trajectory fit drift.tavo a -o few.tavo --tolerance 0.00001 --report --json");
    EXPECT_EQ(number(told, "keysBefore"), 200);
    EXPECT_LE(number(told, "largestError"), 1.1e-5);
    EXPECT_NEAR(number(result("trajectory info few.tavo --json"), "length"), 199 * 9e-6, 1e-5);
}

TEST_F(TrajectoryVerbs, AFitThatNeedsMoreKeysThanAllowedEndsWithFour) {
    makePath();
    EXPECT_TRUE(has(failure(4, "trajectory fit path.tavo Hips -o few.tavo --percent 0.1 --max-keys 13"),
                    "Scene|Hips_trajectory: a tolerance of 0.005199 m takes 14 keys, more than the 13 allowed; nothing "
                    "was written"));
    result("trajectory fit path.tavo Hips -o few.tavo --percent 0.1 --max-keys 14");
}

// ---- sample ----

TEST_F(TrajectoryVerbs, SampleGivesSoManyKeysForTheSamePath) {
    makePath();
    EXPECT_EQ(result("trajectory sample path.tavo Hips -o few.tavo --keys 40"),
              "Scene|Hips_trajectory: 120 keys became 40\nwrote few.tavo\n");
    EXPECT_EQ(number(result("trajectory info few.tavo --json"), "keys"), 40);
    expectNear(place("few.tavo", "Hips", 2), place("path.tavo", "Hips", 2), 0.02);
    expectNear(place("few.tavo", "LeftFoot", 2), place("path.tavo", "LeftFoot", 2), 0.05);
}

TEST_F(TrajectoryVerbs, SampleLaysKeysCloserWhereThePathBends) {
    makePath();
    result("trajectory sample path.tavo Hips -o loose.tavo --tolerance 0.02");
    result("trajectory sample path.tavo Hips -o tight.tavo --tolerance 0.001");
    result("trajectory sample path.tavo Hips -o many.tavo --tolerance 100 --min-segments 50");
    auto const keys = [&](char const* file) {
        return number(result(std::string("trajectory info ") + file + " --json"), "keys");
    };
    EXPECT_LT(keys("loose.tavo"), keys("tight.tavo"));
    EXPECT_EQ(keys("many.tavo"), 51);
}

TEST_F(TrajectoryVerbs, AFittedPathIsSampledAgain) {
    makePath();
    result("trajectory fit path.tavo Hips -o few.tavo --tolerance 0.01");
    EXPECT_TRUE(has(result("trajectory info few.tavo"), ", a spline; "));
    result("trajectory sample few.tavo Hips -o dense.tavo --keys 120");
    EXPECT_TRUE(has(result("trajectory info dense.tavo"), ", sampled; "));
}

// ---- info ----

TEST_F(TrajectoryVerbs, InfoTellsOfAPath) {
    makePath();
    EXPECT_EQ(result("trajectory info path.tavo"), "Scene|Hips_trajectory\n"
                                                   "  keys       120, sampled; 120 rotation keys\n"
                                                   "  length     5.199 m\n"
                                                   "  timing     120 keys, 0 to 3.967 s (frames 0 to 119), monotonic\n"
                                                   "  speed      1.201 to 1.405 m/s, mean 1.311\n"
                                                   "  keeps      feel\n"
                                                   "  guards     none\n"
                                                   "  follower   Scene|Hips\n");
}

TEST_F(TrajectoryVerbs, InfoForMachinesAgreesWithItself) {
    makePath();
    std::string const told = result("trajectory info path.tavo Hips_trajectory --json");
    double const length = number(told, "length"), mean = number(told, "mean");
    EXPECT_NEAR(length / mean, number(told, "end") - number(told, "start"), 1e-4);
    EXPECT_LT(number(told, "smallest"), mean);
    EXPECT_GT(number(told, "largest"), mean);
    for (char const* part : {"\"sampled\":true", "\"keep\":\"feel\"", "\"monotonic\":true", "\"guards\":[]",
                             "\"followers\":[\"Scene|Hips\"]", "\"guardsInUse\":false"})
        EXPECT_TRUE(has(told, part)) << part;
}

TEST_F(TrajectoryVerbs, InfoOfAFileWithoutPathsSaysSo) {
    EXPECT_EQ(result("trajectory info walk.bvh"), "no trajectories\n");
    EXPECT_EQ(result("trajectory info walk.bvh --json"), "{\"file\":\"walk.bvh\",\"paths\":[]}\n");
}

TEST_F(TrajectoryVerbs, InfoKnowsAWayBack) {
    writeClip("still.bvh", {0, 1, 2, 1, 0});
    result("trajectory generate still.bvh a -o path.tavo --units m");
    std::string const told = result("trajectory info path.tavo --json");
    EXPECT_NEAR(number(told, "length"), 4, 1e-5) << "forth and back is a path of its own length";
    EXPECT_TRUE(has(told, "\"monotonic\":true"));
}

TEST_F(TrajectoryVerbs, AnObjectIsFoundByThePathThatItFollows) {
    makePath();
    std::string scene = text("path.tavo");
    for (std::size_t at; (at = scene.find("Hips_trajectory\"")) != std::string::npos;) scene.replace(at, 15, "Way");
    write(folder / "named.tavo", scene);
    EXPECT_TRUE(has(result("trajectory info named.tavo Hips"), "Scene|Way\n"));
}
