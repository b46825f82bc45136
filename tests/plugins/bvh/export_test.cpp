// From a scene to a clip: imported ones come back, others get what is usual.
#include "plugins/bvh/writer.h"
#include "tests/plugins/bvh/scene.h"

#include <cmath>

using namespace bvh;
using namespace Tavo;

namespace {

class Export : public SceneTest {
protected:
    // What comes back after a trip through the scene.
    Clip there(std::string const& text, ImportOptions const& options = {}) {
        import(mustRead(text), options);
        return exported();
    }
};

}  // namespace

TEST_F(Export, GivesUnusualClipsBackAsTheyWere) {
    char const* const texts[] = {
        "HIERARCHY ROOT my hips.x:y\n{ OFFSET .5 -1e-3 7 CHANNELS 4 Zrotation Xposition Yrotation Zposition\n"
        " JOINT b\n { OFFSET 0 3 0 CHANNELS 1 Yrotation\n  End Site\n { OFFSET 0 .25 0 } End of it\n { OFFSET 1 2 3 } "
        "}\n"
        " JOINT c\n { OFFSET 0 3 0 CHANNELS 6 Xrotation Yrotation Zrotation Xposition Yposition Zposition }\n"
        " JOINT d\n { OFFSET 0 3 9 CHANNELS 0 } }\n"
        "MOTION\nFrames: 2\nFrame Time: .0083333\n1.25 2.5 -3 4 170.5 1 2 3 .25 3.5 .125\n"
        "-179.99 -2.5 361.25 0 -170.5 1e-5 2 720 0 3.25 0\n",
        "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 0 }\nROOT b\n{ OFFSET 0 0 0 CHANNELS 2 Yposition Xrotation }\n"
        "MOTION\nFrames: 1\nFrame Time: 1.00\n 98.7654 12.3456\n",
    };
    for (char const* text : texts) {
        scene().New();
        EXPECT_EQ(there(text), mustRead(text)) << text;
    }
}

TEST_F(Export, GivesDifferencesBackAsDifferences) {
    std::string const text = oneJoint("2 Xposition Yposition", "Frames: 2\nFrame Time: 0.1\n10 0.125\n0.001 -2\n");
    EXPECT_EQ(there(text, {Positions::add, Unit::inch}), mustRead(text));
}

TEST_F(Export, FollowsEditsOfTheScene) {
    ImportReport const report =
        import(mustRead(oneJoint("1 Xrotation", "Frames: 2\nFrame Time: 0.1\n1\n2\n")), {{}, Unit::metre});
    XJoint hips = joint(report, 0);
    hips.SetName(L"Pelvis");
    hips.TranslationY().SetFloat(4);
    hips.RotationZ().SetFloat(0.5f);
    settings().EndTime().SetFloat(0.3f);
    Clip const clip = exported();
    EXPECT_EQ(clip.joints[0].name, "Pelvis");
    EXPECT_EQ(clip.joints[0].offset, (Vec3{1, 4, 3}));
    EXPECT_EQ(channelOrder(clip.joints[0]), "rot ZX");
    EXPECT_EQ(clip.frames, 4);
    EXPECT_NEAR(clip.value(3, 0), 28.6479, 1e-4);
    EXPECT_NEAR(clip.value(3, 1), 2, 1e-5);
}

TEST_F(Export, FollowsAChangedFrameRate) {
    import(mustRead(oneJoint("1 Xrotation", "Frames: 11\nFrame Time: 0.1\n0 1 2 3 4 5 6 7 8 9 10\n")));
    settings().FrameRate().SetInteger(20);
    Clip const clip = exported();
    EXPECT_EQ(clip.frameTimeText, "0.05");
    EXPECT_EQ(clip.frames, 21);
    EXPECT_NEAR(clip.value(1, 0), 0.5, 1e-5);
}

TEST_F(Export, LeavesTheSceneItsTime) {
    import(mustRead(oneJoint("1 Xrotation", "Frames: 3\nFrame Time: 0.1\n0 1 2\n")));
    go(0.1);
    settings().FrameRate().SetInteger(20);
    exported();
    EXPECT_EQ(settings().Time().Float(), 0.1f);
}

TEST_F(Export, GivesJointsMadeByHandWhatIsUsual) {
    XJoint root = create(scene().RootObject(), L"root"), tip = create(root, L"tip");
    root.SetTranslation(0, 1, 0);
    tip.SetTranslation(0, 0.5f, 0);
    tip.RotationEulerOrder().SetEnumeration(3);
    tip.RotationX().SetFloat(0.5f);
    settings().EndTime().SetFloat(1);
    Clip const clip = exported();
    ASSERT_EQ(clip.joints.size(), 2u);
    EXPECT_EQ(channelOrder(clip.joints[0]), "pos XYZ + rot ZYX");
    EXPECT_EQ(channelOrder(clip.joints[1]), "rot XZY");
    EXPECT_EQ(clip.joints[1].offset, (Vec3{0, 50, 0}));
    EXPECT_EQ(clip.joints[0].offset, (Vec3{0, 100, 0}));
    EXPECT_TRUE(clip.joints[1].hasEndSite());
    EXPECT_EQ(clip.frames, 25);
    EXPECT_EQ(clip.value(0, 1), 100);
    EXPECT_NEAR(clip.value(24, 6), 28.6479, 1e-4);
}

TEST_F(Export, WritesWhatEulerAnglesDoNotSayAsPlaces) {
    XJoint root = create(scene().RootObject(), L"root"), tip = create(root, L"tip");
    tip.SetTranslation(0, 2, 0);
    tip.PreRotationZ().SetFloat(0.25f);
    tip.RotationZ().SetFloat(0.25f);
    Clip const clip = exported();
    int const column = clip.joints[1].column;
    EXPECT_EQ(channelOrder(clip.joints[1]), "pos XYZ + rot ZXY");
    EXPECT_NEAR(clip.value(0, column + 1), 200, 1e-3);
    EXPECT_NEAR(clip.value(0, column + 3), 28.6479, 1e-4);
}

TEST_F(Export, OfASceneWithoutJointsFails) {
    Clip clip;
    Error error;
    EXPECT_FALSE(exportClip(scene(), clip, error));
    EXPECT_EQ(error.message, "there are no joints in the scene");
}

TEST_F(Export, RefusesATimeRangeWithoutEnd) {
    create(scene().RootObject(), L"root");
    settings().EndTime().SetFloat(1e9f);
    Clip clip;
    Error error;
    EXPECT_FALSE(exportClip(scene(), clip, error));
    EXPECT_NE(error.message.find("too many frames"), std::string::npos);
}
