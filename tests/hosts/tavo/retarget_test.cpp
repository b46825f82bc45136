// `tavo retarget`: what motion another figure gets, and in which files.
#include "tests/hosts/tavo/rig_host.h"

using namespace hosttest;

namespace {

constexpr int frames = 12;

class Retargets : public RigHostTest {
protected:
    Retargets() : clip(walk(frames)), figure(clip) {
        save(clip, "clip.bvh");
        stand(figure);
    }
    // The figure's motion, as a clip.
    bvh::Clip retargeted(std::string const& options = "") const {
        save(figure, "figure.bvh");
        report = result("retarget clip.bvh --to figure.bvh --units cm -o out.bvh --report " + options);
        return read("out.bvh");
    }
    void rename(std::function<std::string(std::string const&)> const& newName) {
        for (bvh::Joint& joint : figure.joints) joint.name = newName(joint.name);
    }
    // Below the arms all hangs down.
    void hangArms() {
        for (std::size_t i = 0; i < figure.joints.size(); ++i)
            for (int up = figure.joints[i].parent; up >= 0; up = figure.joints[std::size_t(up)].parent) {
                std::string const& name = figure.joints[std::size_t(up)].name;
                if (name != "LeftArm" && name != "RightArm") continue;
                double const side = name == "LeftArm" ? 1 : -1;
                hang(figure.joints[i].offset, side);
                for (bvh::EndSite& end : figure.joints[i].endSites) hang(end.offset, side);
            }
    }
    static void hang(bvh::Vec3& v, double side) { v = {side * v[1], -side * v[0], v[2]}; }

    // How far joints of a name are from those of the clip, metres.
    double strayOf(bvh::Clip const& out, std::initializer_list<char const*> names,
                   std::function<std::string(std::string const&)> const& newName) const {
        double largest = 0;
        for (char const* name : names)
            for (int frame = 0; frame < frames; ++frame)
                largest = std::max(largest,
                                   length(difference(pose(out, frame, newName(name)).at, pose(clip, frame, name).at)));
        return largest / 100;
    }
    // How differently two joints are turned, at most.
    double turnOf(bvh::Clip const& out, std::string const& name) const {
        double largest = 0;
        for (int frame = 0; frame < frames; ++frame)
            for (std::size_t i = 0; i < 3; ++i)
                largest = std::max(largest,
                                   length(difference(pose(out, frame, name).turn[i], pose(clip, frame, name).turn[i])));
        return largest;
    }
    // From the topmost joint on, without what tells of curves.
    static std::string treeOf(std::string const& info) {
        std::istringstream lines(info.substr(info.find("\n  Hips") + 1));
        std::string tree, line;
        while (std::getline(lines, line)) tree += line.substr(0, line.find("  ", line.find_first_not_of(' '))) + '\n';
        return tree;
    }
    double end(std::string const& scene) const { return sample(scene, "SceneSettings", "EndTime", 0).at(0); }

    bvh::Clip clip, figure;
    mutable std::string report;
};

std::string same(std::string const& name) { return name; }

}  // namespace

// ---- what motion it gets ----

TEST_F(Retargets, AClipOntoItselfGivesItsOwnMotion) {
    bvh::Clip const out = retargeted();
    EXPECT_LT(largestDistance(clip, out), 1e-4);
    EXPECT_EQ(out.joints, clip.joints);
    EXPECT_EQ(out.frameTimeText, clip.frameTimeText);
    ASSERT_EQ(out.values.size(), clip.values.size());
    for (std::size_t i = 0; i < out.values.size(); ++i)
        EXPECT_NEAR(std::remainder(out.values[i] - clip.values[i], 360), 0, 0.02) << "value " << i;
    EXPECT_TRUE(has(report, "Good: 30 of 30 joints matched")) << report;
    EXPECT_TRUE(has(report, "travel scaled by 1.000")) << report;
    EXPECT_TRUE(has(report, "wrote out.bvh\n")) << report;
}

TEST_F(Retargets, ALargerFigureMakesLargerSteps) {
    resize(figure, 1.25);
    EXPECT_LT(largestDistance(clip, retargeted(), 1.25), 1e-3);
    EXPECT_TRUE(has(report, "travel scaled by 1.250")) << report;
}

TEST_F(Retargets, OtherProportionsKeepTheTurnsOfTheArms) {
    for (char const* name : {"LeftForeArm", "RightForeArm"})
        for (double& x : figure.joints[std::size_t(joint(figure, name))].offset) x *= 1.3;
    bvh::Clip const out = retargeted();
    for (char const* name : {"LeftArm", "LeftForeArm", "LeftHand", "RightArm", "Head", "Chest"})
        EXPECT_LT(turnOf(out, name), 1e-3) << name;
}

TEST_F(Retargets, JointsOfOtherNamesAreFoundByTheirNames) {
    std::map<std::string, std::string> const names{
        {"Hips", "pelvis"},      {"LeftArm", "upperarm_l"},  {"LeftForeArm", "lowerarm_l"},
        {"LeftHand", "hand_l"},  {"RightArm", "upperarm_r"}, {"RightForeArm", "lowerarm_r"},
        {"RightHand", "hand_r"}, {"LeftUpLeg", "thigh_l"},   {"LeftLeg", "calf_l"},
        {"LeftFoot", "foot_l"},  {"RightUpLeg", "thigh_r"},  {"RightLeg", "calf_r"},
        {"RightFoot", "foot_r"}};
    auto const newName = [&](std::string const& name) { return names.count(name) ? names.at(name) : name; };
    rename(newName);
    EXPECT_LT(strayOf(retargeted(), {"LeftHand", "RightHand", "LeftFoot", "RightFoot", "Head"}, newName), 1e-3);
    EXPECT_TRUE(has(report, "upperarm_l           follows LeftArm ")) << report;
}

TEST_F(Retargets, JointsWhoseNamesSayNothingAreFoundByTheShape) {
    auto const newName = [this](std::string const& name) { return "J" + std::to_string(joint(clip, name) * 7 % 31); };
    rename(newName);
    EXPECT_LT(strayOf(retargeted(), {"LeftHand", "RightHand", "LeftFoot", "RightFoot", "Head"}, newName), 1e-3);
    EXPECT_TRUE(has(report, "shape\n")) << report;
}

TEST_F(Retargets, AShorterSpineEndsAsTheLongerOneDoes) {
    remove(figure, "Spine1");
    bvh::Clip const out = retargeted();
    for (char const* name : {"Hips", "Chest", "LeftForeArm", "RightHand", "LeftFoot"})
        EXPECT_LT(turnOf(out, name), 1e-3) << name;
}

TEST_F(Retargets, AnotherPoseAtRestIsToldByAFrameInWhichBothStandAlike) {
    hangArms();
    for (auto const& [name, angle] : {std::pair("LeftArm", 90.0), std::pair("RightArm", -90.0)})
        value(figure, 0, figure.joints[std::size_t(joint(figure, name))].column) = angle;
    for (int k = 0; k < 3; ++k) value(figure, 0, k) = 0;  // on the floor of the clip's rest
    bvh::Clip const out = retargeted("--to-origin-frame 0");
    for (char const* name : {"LeftHand", "RightHand", "LeftForeArm", "LeftArm", "LeftFoot", "Head"})
        EXPECT_LT(strayOf(out, {name}, same), 1e-3) << name;
}

TEST_F(Retargets, OriginsOfOneFrameOfBothGiveTheMotionToo) {
    save(clip, "figure.bvh");
    result("retarget clip.bvh --to figure.bvh --origin-frame 11 --to-origin-frame 11 -o out.bvh");
    EXPECT_LT(largestDistance(clip, read("out.bvh")), 1e-3);
}

// ---- files ----

TEST_F(Retargets, TheClipsFramesAndFrameTimeAreThoseOfTheResult) {
    for (auto const& [time, ofFigure] : {std::pair("0.0345", "0.0346"), std::pair("0.00833", "0.04")}) {
        clip.frameTimeText = time;
        figure.frameTimeText = ofFigure;
        clip.frameTime = std::stod(clip.frameTimeText);
        figure.frameTime = std::stod(figure.frameTimeText);
        save(clip, "clip.bvh");
        bvh::Clip const out = retargeted();
        EXPECT_EQ(out.frames, frames);
        EXPECT_EQ(out.frameTimeText, time);
        EXPECT_LT(largestDistance(clip, out), 1e-4);
    }
}

TEST_F(Retargets, AFigureOfManyFramesTakesTheTimeRangeOfTheClip) {
    figure = walk(40);
    EXPECT_LT(largestDistance(clip, retargeted()), 1e-4);
}

TEST_F(Retargets, ASceneHoldsTheFigureWithKeysAndNothingElse) {
    save(figure, "figure.bvh");
    result("import figure.bvh --units cm -o figure.tavo");
    std::string const before = result("info figure.tavo");
    result("retarget clip.bvh --to figure.tavo --units cm -o out.tavo");
    std::string const scene = text("out.tavo"), after = result("info out.tavo");
    for (char const* gone : {"Retarget", "MatrixConversion", "_retarget"}) EXPECT_FALSE(has(scene, gone)) << gone;
    EXPECT_EQ(treeOf(after), treeOf(before));
    EXPECT_NEAR(end("out.tavo"), (frames - 1) * clip.frameTime, 1e-6);
    EXPECT_EQ(sample("out.tavo", "LeftArm", "RotationEulerOrder", 0),
              sample("figure.tavo", "LeftArm", "RotationEulerOrder", 0));
    result("export out.tavo -o back.bvh");
    EXPECT_LT(largestDistance(clip, read("back.bvh")), 1e-4);
}

TEST_F(Retargets, ScenesServeAsClipAndFigure) {
    save(figure, "figure.bvh");
    result("import clip.bvh --units cm -o clip.tavo");
    result("import figure.bvh --units cm -o figure.tavo");
    result("retarget clip.tavo --to figure.tavo -o out.bvh");
    bvh::Clip const out = read("out.bvh");
    EXPECT_LT(largestDistance(clip, out), 1e-4);
    EXPECT_EQ(out.frameTimeText, clip.frameTimeText);
}

TEST_F(Retargets, AnswersForMachinesSayTheSame) {
    std::string json;
    remove(figure, "LeftThumb1");
    save(figure, "figure.bvh");
    json = result("retarget clip.bvh --to figure.bvh --units cm -o out.bvh --report --json");
    for (char const* pair : {"{}", "[]"})
        EXPECT_EQ(std::count(json.begin(), json.end(), pair[0]), std::count(json.begin(), json.end(), pair[1]));
    EXPECT_TRUE(has(json, R"("file":"clip.bvh","to":"figure.bvh","wrote":"out.bvh","verdict":")")) << json;
    EXPECT_TRUE(has(json, R"({"source":"LeftHand","target":"LeftHand","confidence":1,"basis":"name"})")) << json;
    EXPECT_TRUE(has(json, R"("unmatchedSource":["LeftThumb1"],"unmatchedTarget":[])")) << json;
    EXPECT_EQ(number(json, "frames"), frames);
    EXPECT_NEAR(number(json, "scale"), 1, 1e-6);
    EXPECT_EQ(json.back(), '\n');
}
