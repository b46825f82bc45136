// Maps of joints, gates and what `tavo retarget` refuses.
#include "tests/hosts/tavo/rig_host.h"

using namespace hosttest;

namespace {

constexpr int wrongCall = 2, badInput = 3, missed = 4;

class RetargetMaps : public RigHostTest {
protected:
    RetargetMaps() : clip(walk(6)), figure(clip) {
        save(clip, "clip.bvh");
        stand(figure);
        save(figure, "figure.bvh");
    }
    void expectFailure(int code, std::string const& arguments, std::string const& told) const {
        std::string const message = failure(code, "retarget " + arguments);
        EXPECT_TRUE(has(message, told)) << arguments << "\n" << message;
    }
    void expectBadMap(int code, std::string const& map, std::string const& told) const {
        write(folder / "map.txt", map);
        expectFailure(code, call + " --map map.txt", told);
    }
    static constexpr char const* pair = "clip.bvh --to figure.bvh --units cm";
    std::string const call = std::string(pair) + " -o x.bvh";
    bvh::Clip clip, figure;
};

}  // namespace

// ---- maps ----

TEST_F(RetargetMaps, AWrittenMapGivesTheSameResultByteForByte) {
    remove(figure, "Spine1");
    remove(figure, "LeftThumb1");
    save(figure, "figure.bvh");
    result("retarget " + std::string(pair) + " -o a.bvh --write-map map.txt");
    result("retarget " + std::string(pair) + " -o b.bvh --map map.txt --write-map again.txt");
    EXPECT_EQ(text("a.bvh"), text("b.bvh"));
    EXPECT_TRUE(has(text("map.txt"), "\nLeftHand\tLeftHand\t1.00\tname\n")) << text("map.txt");
    EXPECT_TRUE(has(text("map.txt"), "\n# Spine\tSpine\t")) << text("map.txt");
    EXPECT_TRUE(has(text("again.txt"), "\nLeftHand\tLeftHand\t1.00\tgiven\n")) << text("again.txt");
}

TEST_F(RetargetMaps, AnEditedMapChangesWhoFollowsWhom) {
    write(folder / "map.txt",
          "# arms crossed\r\n\r\nLeftForeArm\tRightForeArm\t0.5\tme\r\nRightForeArm\tLeftForeArm\r\n");
    std::string const json = result("retarget " + call + " --map map.txt --report --json");
    for (char const* line : {R"({"source":"LeftForeArm","target":"RightForeArm","confidence":1,"basis":"given"})",
                             R"({"source":"RightForeArm","target":"LeftForeArm","confidence":1,"basis":"given"})",
                             R"({"source":"LeftHand","target":"LeftHand",)"})
        EXPECT_TRUE(has(json, line)) << line << json;
    EXPECT_GT(largestDistance(clip, read("x.bvh")), 0.01);
}

TEST_F(RetargetMaps, ALineWithNothingBeforeTheTabLeavesThatJointAlone) {
    write(folder / "map.txt", "\tLeftForeArm\n");
    std::string const report = result("retarget " + call + " --map map.txt --report --write-map again.txt");
    EXPECT_TRUE(has(report, "29 of 30 joints matched")) << report;
    EXPECT_TRUE(has(report, "without a match: LeftForeArm; of the clip: LeftForeArm\n")) << report;
    EXPECT_TRUE(has(text("again.txt"), "\n\tLeftForeArm\n")) << text("again.txt");
    bvh::Clip const out = read("x.bvh");
    for (int k = 0; k < 3; ++k) {
        int const column = out.joints[std::size_t(joint(out, "LeftForeArm"))].column + k;
        for (int frame = 0; frame < out.frames; ++frame) EXPECT_NEAR(out.value(frame, column), 0, 1e-3);
    }
}

TEST_F(RetargetMaps, WhatIsWrongWithAMapIsToldWithItsLine) {
    expectBadMap(badInput, "Hips\tHips\nSpine Spine\n", "map.txt, line 2: this is not SOURCE, a tab, TARGET");
    expectBadMap(badInput, "Hips\t\n", "map.txt, line 1: this is not SOURCE");
    expectBadMap(wrongCall, "#\n\nHips\tHipz\n",
                 "map.txt, line 3: the figure has no joint \"Hipz\"; did you mean Hips");
    expectBadMap(wrongCall, "Hipz\tHips\n", "map.txt, line 1: the clip has no joint \"Hipz\"; did you mean Hips");
    expectBadMap(wrongCall, "Hips\tHips\nHips\tSpine\n", "map.txt, line 2: Hips stands in a line before");
    expectBadMap(wrongCall, "Hips\tHips\nSpine\tHips\n", "map.txt, line 2: Hips stands in a line before");
    expectFailure(badInput, call + " --map none.txt", "none.txt");
}

TEST_F(RetargetMaps, ANameOfSeveralJointsIsRefused) {
    result("import figure.bvh --units cm -o figure.tavo");
    result("do figure.tavo --select Hips Delete -- CreateJoint -- CreateJoint -o alike.tavo");
    write(folder / "map.txt", "Hips\tjoint\n");
    expectFailure(wrongCall, "clip.bvh --to alike.tavo -o x.bvh --map map.txt",
                  "map.txt, line 1: the figure has several joints \"joint\"");
}

TEST_F(RetargetMaps, WithoutMatchesThereIsNothingToWrite) {
    result("import figure.bvh --units cm -o figure.tavo");
    result("do figure.tavo --select Hips Delete -- CreateJoint -o one.tavo");
    expectFailure(1, "clip.bvh --to one.tavo -o x.bvh", "nothing is written");
}

// ---- gates ----

TEST_F(RetargetMaps, AMissedGateWritesNothing) {
    std::string const gates = " --write-map map.txt --min-confidence 1 --report";
    for (bvh::Joint& joint : figure.joints) joint.name = "J" + std::to_string(joint.column);
    save(figure, "figure.bvh");
    expectFailure(missed, call + gates, "matches are sure to 0.");
    EXPECT_EQ(tavo("retarget " + call + " --min-confidence 0.1 --max-slide 1000 --max-penetration 1000").code, 0);
}

TEST_F(RetargetMaps, WrongCallsAreToldAndWriteNothing) {
    expectFailure(wrongCall, "clip.bvh -o x.bvh", "--to is required");
    expectFailure(wrongCall, "clip.bvh --to figure.bvh", "--output is required");
    expectFailure(wrongCall, call + " --json", "--json requires --report");
    expectFailure(wrongCall, call + " --max-slide nan", "--max-slide is a length of at least 0");
    expectFailure(wrongCall, call + " --max-penetration -1", "--max-penetration is a length of at least 0");
    expectFailure(wrongCall, call + " --min-confidence 1.5", "--min-confidence is a number from 0 to 1");
    expectFailure(wrongCall, call + " --origin-frame 6", "there is no frame 6: they are 0 to 5");
    expectFailure(wrongCall, call + " --origin-frame -1", "there is no frame -1");
    expectFailure(wrongCall, call + " --to-origin-frame 1", "there is no frame 1: they are 0 to 0");
    expectFailure(badInput, "clip.bvh --to none.bvh -o x.bvh", "none.bvh");
    expectFailure(badInput, "none.bvh --to figure.bvh -o x.bvh", "none.bvh");
}

TEST_F(RetargetMaps, SeveralFiguresInOneFileAreRefused) {
    write(folder / "two.bvh", "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 1 Xposition\n}\n"
                              "ROOT b\n{ OFFSET 0 0 0 CHANNELS 1 Xposition\n}\n"
                              "MOTION\nFrames: 2\nFrame Time: 0.04\n0 1\n1 2\n");
    expectFailure(wrongCall, "clip.bvh --to two.bvh -o x.bvh",
                  "there are several figures, Scene|a and Scene|b among them");
    expectFailure(wrongCall, "two.bvh --to figure.bvh -o x.bvh", "two.bvh holds several figures");
}

TEST_F(RetargetMaps, AnOutputThatCannotBeWrittenEndsWithOne) {
    expectFailure(1, std::string(pair) + " -o none/x.bvh", "none/x.bvh");
}
