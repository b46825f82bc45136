// Retargeting of a recorded walk: what must hold over a whole clip.
#include "qel/solvers/retarget.h"
#include "qel/solvers/retarget_report.h"
#include "tests/end_to_end/forward_kinematics.h"
#include "tests/qel/solvers/humanoid.h"
#include <gtest/gtest.h>
#include <numbers>

namespace sg {
namespace {

using Qelp::Matrix34;
using Pose = std::vector<Matrix34>;

// The names are not the reader's business.
std::vector<std::wstring> namesIn(std::string const& path) {
    std::vector<std::wstring> out;
    std::ifstream file(path);
    for (std::string word; file >> word && word != "MOTION";)
        if (word == "ROOT" || word == "JOINT") file >> word, out.emplace_back(word.begin(), word.end());
    return out;
}

struct Clip {
    Skeleton skeleton;
    std::vector<Pose> frames;
    double frameTime = 0;
};

Matrix34 offsetMatrix(kinematics::Vector const& v, double scale) {
    Matrix34 m;
    for (std::size_t i = 0; i < 3; ++i) m.m[3][i] = float(scale * v[i]);
    return m;
}

// Metres; the file is in centimetres.
Pose poseOf(kinematics::Motion const& motion, std::size_t frame) {
    Pose pose;
    auto value = motion.frames[frame].begin();
    for (kinematics::Bone const& bone : motion.bones) {
        kinematics::Vector at = bone.offset;
        Matrix34 m;
        for (std::string const& channel : bone.channels) {
            auto const axis = std::size_t(channel[0] - 'X');
            double const v = *value++;
            if (channel.find("position") != std::string::npos) {
                at[axis] = v;
                continue;
            }
            Matrix34 turn;
            float const angle = float(v * std::numbers::pi / 180);
            Qelutils::eulerToMatrix({axis == 0 ? angle : 0, axis == 1 ? angle : 0, axis == 2 ? angle : 0}, 0, turn);
            m = Qelutils::multiply(turn, m);
        }
        Matrix34 const translation = offsetMatrix(at, 0.01);
        std::copy_n(translation.m[3], 4, m.m[3]);
        pose.push_back(m);
    }
    return pose;
}

Clip walk() {
    std::string const path = TAVO_SOURCE_DIR "/examples/walk.bvh";
    kinematics::Motion const motion = kinematics::load(path);
    Clip clip;
    clip.frameTime = motion.frameTime;
    clip.skeleton.names = namesIn(path);
    for (kinematics::Bone const& bone : motion.bones) {
        clip.skeleton.parents.push_back(bone.parent);
        clip.skeleton.origins.push_back(offsetMatrix(bone.offset, 0.01));
    }
    for (std::size_t f = 0; f < motion.frames.size(); ++f) clip.frames.push_back(poseOf(motion, f));
    return clip;
}

struct Route {
    SkeletonMatch match;
    RetargetRig rig;

    Route(Skeleton const& source, Skeleton const& target) {
        match.source = &source, match.target = &target;
        EXPECT_TRUE(match.Run());
        rig.source = &source, rig.target = &target, rig.matches = match.matches;
        EXPECT_TRUE(rig.Run());
    }
    std::vector<Pose> operator()(std::vector<Pose> const& frames) const {
        std::vector<Pose> out;
        Retarget frame;
        frame.rig = &rig;
        for (Pose const& pose : frames) {
            out.emplace_back(rig.targets.size());
            frame.source = pose, frame.target = out.back();
            EXPECT_TRUE(frame.Run());
        }
        return out;
    }
};

Pose world(Skeleton const& s, Pose pose) {
    for (std::size_t i = 0; i < s.size(); ++i)
        if (s.parents[i] >= 0) pose[i] = Qelutils::multiply(pose[i], pose[std::size_t(s.parents[i])]);
    return pose;
}

std::vector<Qelp::Vector3> tracks(Skeleton const& s, std::vector<Pose> const& frames) {
    std::vector<Qelp::Vector3> out;
    for (Pose const& pose : frames)
        for (Matrix34 const& m : world(s, pose)) out.push_back({m.m[3][0], m.m[3][1], m.m[3][2]});
    return out;
}

// Four times the squared sine of half the angle, over joints and frames; in degrees.
double rmsAngle(Skeleton const& s, std::vector<Pose> const& a, std::vector<Pose> const& b) {
    double square = 0, count = 0;
    for (std::size_t f = 0; f < a.size(); ++f) {
        Pose const x = world(s, a[f]), y = world(s, b[f]);
        for (std::size_t i = 0; i < x.size(); ++i, ++count)
            for (int row = 0; row < 3; ++row)
                for (int j = 0; j < 3; ++j) square += std::pow(double(x[i].m[row][j]) - y[i].m[row][j], 2) / 2;
    }
    return std::sqrt(square / count) * 180 / std::numbers::pi;
}

HumanoidOptions other(bool isZUp) {
    HumanoidOptions o = large();
    o.naming = Naming::Anatomy, o.size = 1.1, o.legs = 0.9, o.armsDown = 0.8, o.legsApart = 0.1;
    o.turnsAxes = true, o.isZUp = isZUp;
    return o;
}

TEST(RetargetedClip, OntoItselfIsTheSameClip) {
    Clip const clip = walk();
    ASSERT_GT(clip.frames.size(), 100u);
    std::vector<Pose> const out = Route(clip.skeleton, clip.skeleton)(clip.frames);
    for (std::size_t f = 0; f < out.size(); ++f)
        for (std::size_t i = 0; i < out[f].size(); ++i)
            for (int row = 0; row < 4; ++row)
                for (int j = 0; j < 3; ++j) ASSERT_NEAR(out[f][i].m[row][j], clip.frames[f][i].m[row][j], 1e-4);
}

TEST(RetargetedClip, ThereAndBackIsWithinTwoDegrees) {
    Clip const clip = walk();
    for (bool isZUp : {false, true}) {
        Skeleton const target = humanoid(other(isZUp));
        std::vector<Pose> const back = Route(target, clip.skeleton)(Route(clip.skeleton, target)(clip.frames));
        EXPECT_LT(rmsAngle(clip.skeleton, clip.frames, back), 2);
        for (std::size_t f = 0; f < back.size(); ++f)
            for (int axis = 0; axis < 3; ++axis) ASSERT_NEAR(back[f][0].m[3][axis], clip.frames[f][0].m[3][axis], 0.01);
    }
}

TEST(RetargetedClip, StandsOnTheFloorWithoutSliding) {
    Clip const clip = walk();
    for (bool isZUp : {false, true}) {
        Skeleton const target = humanoid(other(isZUp));
        Route const route(clip.skeleton, target);
        auto const from = tracks(clip.skeleton, clip.frames), to = tracks(target, route(clip.frames));
        RetargetReport report;
        report.source = {clip.skeleton.size(), from}, report.target = {target.size(), to};
        report.frameTime = clip.frameTime, report.match = &route.match, report.scale = route.rig.scale;
        if (isZUp) report.targetUp = {0, 0, 1};
        auto const feet = findFeet(route.match, report.sourceUp, report.targetUp);
        report.feet = feet;
        ASSERT_TRUE(report.Run());
        EXPECT_EQ(int(report.verdict), int(RetargetVerdict::Good));
        for (std::wstring const& reason : report.reasons) ADD_FAILURE() << testing::PrintToString(reason);
        EXPECT_LT(report.slide.largest, 40);
        EXPECT_LT(report.depth, 30);
        ASSERT_EQ(report.footing.size(), 2u);
        for (RetargetReport::Foot const& foot : report.footing) EXPECT_GT(foot.contacts, 2);
    }
}

TEST(RetargetedClip, ScrambledNamesGiveAlmostTheSamePoses) {
    Clip const clip = walk();
    HumanoidOptions o = other(false);
    o.fingers = 0;
    Skeleton const named = humanoid(o);
    o.naming = Naming::Scrambled;
    Skeleton scrambled = humanoid(o);
    scrambled.origins = named.origins;
    std::vector<Pose> const a = Route(clip.skeleton, named)(clip.frames);
    std::vector<Pose> const b = Route(clip.skeleton, scrambled)(clip.frames);
    EXPECT_LT(rmsAngle(named, a, b), 2);
}

}  // namespace
}  // namespace sg
