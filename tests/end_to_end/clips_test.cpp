// Real clips through the whole house: read, brought into a scene, evaluated, saved, loaded, saved again, written.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "tavo/objects/scene_graph.h"
#include "tests/end_to_end/forward_kinematics.h"
#include "tests/plugins/bvh/scene.h"

#include "plugins/bvh/writer.h"

#include <algorithm>

using namespace bvh;
using namespace Tavo;

namespace {

std::vector<std::filesystem::path> clips() {
    std::vector<std::filesystem::path> found{sourceFolder() / "examples/walk.bvh"};
    std::error_code problem;
    for (auto const& entry : std::filesystem::directory_iterator(sharedClips(), problem))
        if (entry.path().extension() == ".bvh") found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

class Clips : public SceneTest, public testing::WithParamInterface<std::filesystem::path> {
protected:
    std::string saved() {
        db::StringOutputStream stream;
        db::SaverXML saver(stream);
        EXPECT_TRUE(saver.save(*scene().SceneGraph())) << Qelutils::toUtf8(saver.error());
        return stream.text();
    }
    void load(std::string const& text) {
        db::StringInputStream stream(text);
        db::LoaderXML loader(stream);
        ASSERT_TRUE(loader.load(*scene().SceneGraph())) << Qelutils::toUtf8(loader.error());
        scene().Open();
    }
    std::vector<XTransform> jointsInOrder() {
        Qelutils::Vector<XObject> joints;
        scene().RootObject().DescendantObjects(joints, XJoint::TypeID, IsObjectType);
        return {joints.begin(), joints.end()};
    }
    // The largest distance between the scene and the file's own numbers, over some hundred frames, in the file's unit.
    double farthest(kinematics::Motion const& motion, double unit) {
        std::vector<XTransform> const joints = jointsInOrder();
        EXPECT_EQ(joints.size(), motion.bones.size());
        double worst = 0;
        std::size_t const step = std::max<std::size_t>(1, motion.frames.size() / 150);
        for (std::size_t frame = 0; frame < motion.frames.size(); frame += step) {
            go(double(frame) * motion.frameTime);
            std::vector<kinematics::Vector> const expected = kinematics::positions(motion, frame);
            for (std::size_t i = 0; i < joints.size() && i < expected.size(); ++i) {
                XVector3 const at = joints[i].WorldTranslation();
                worst = std::max(worst, std::hypot(at.X() / unit - expected[i][0], at.Y() / unit - expected[i][1],
                                                   at.Z() / unit - expected[i][2]));
            }
        }
        return worst;
    }
};

void expectAlike(Clip const& a, Clip const& b) {
    ASSERT_EQ(a.joints.size(), b.joints.size());
    for (std::size_t i = 0; i < a.joints.size(); ++i) EXPECT_EQ(a.joints[i], b.joints[i]) << a.joints[i].name;
    EXPECT_EQ(a.frames, b.frames);
    EXPECT_EQ(a.frameTimeText, b.frameTimeText);
    EXPECT_EQ(a.frameTime, b.frameTime);
    ASSERT_EQ(a.values.size(), b.values.size());
    double worst = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i) worst = std::max(worst, std::abs(a.values[i] - b.values[i]));
    EXPECT_LE(worst, 1e-4);
}

}  // namespace

TEST(SharedClips, ArePlayedThroughWhereTheyArePresent) {
    if (clips().size() == 1)
        GTEST_SKIP() << "there are no clips in " << sharedClips() << ": only the example was tried";
}

TEST_P(Clips, StandWhereTheNumbersOfTheFileSayAndComeBackFromSceneAndFile) {
    Clip const clip = mustRead(fileText(GetParam()));
    kinematics::Motion motion = kinematics::load(GetParam().string());
    motion.adds = GetParam().stem() == "mh_benchmark_pose";  // its bones' positions are 0, their offsets are not
    ImportReport const report = import(clip);
    double const unit = metresPer(report.unit), tolerance = 1e-4 * kinematics::size(motion);
    EXPECT_LE(farthest(motion, unit), tolerance);
    expectAlike(exported(), clip);

    go(0);
    std::string const first = saved();
    scene().New();
    load(first);
    EXPECT_EQ(saved(), first);
    EXPECT_LE(farthest(motion, unit), tolerance);
    Clip const again = exported();
    expectAlike(again, clip);

    std::string text;
    Error error;
    ASSERT_TRUE(bvh::write(again, text, error)) << error.text();
    expectAlike(mustRead(text), clip);
    EXPECT_TRUE(log.errors.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, Clips, testing::ValuesIn(clips()), [](auto const& info) {
    std::string name = info.param.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
});
