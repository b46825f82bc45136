// From a clip to a scene.
#include "tests/plugins/bvh/scene.h"

#include <cmath>

using namespace bvh;
using namespace Tavo;

namespace {

class Import : public SceneTest {};

constexpr float degree = 0.017453292f;

}  // namespace

TEST(EulerOrderOfChannels, IsTheirReverse) {
    using enum Channel;
    struct {
        std::vector<Channel> channels;
        int order;
    } const cases[] = {
        {{zRotation, yRotation, xRotation}, 0},
        {{yRotation, zRotation, xRotation}, 1},
        {{zRotation, xRotation, yRotation}, 2},
        {{xRotation, zRotation, yRotation}, 3},
        {{yRotation, xRotation, zRotation}, 4},
        {{xRotation, yRotation, zRotation}, 5},
        {{}, 0},
        {{zRotation}, 4},
        {{xRotation, zPosition, yRotation}, 2},
        {{zRotation, yRotation}, 3},
    };
    for (auto const& c : cases) EXPECT_EQ(eulerOrder(c.channels), c.order) << c.order;
}

TEST_F(Import, MakesJointsUnderTheOriginInTheClipsHierarchy) {
    Clip const clip =
        mustRead("HIERARCHY ROOT a\n{ OFFSET 1 2 3 CHANNELS 0\n JOINT b\n { OFFSET 0 1 0 CHANNELS 0 }\n}\n"
                 "ROOT c\n{ OFFSET 0 0 0 CHANNELS 0 }\nMOTION\nFrames: 1\nFrame Time: 0.1\n\n");
    ImportReport const report = import(clip, {{}, Unit::metre});
    EXPECT_EQ(joint(report, 0).Path(), L"Scene|a");
    EXPECT_EQ(joint(report, 1).Path(), L"Scene|a|b");
    EXPECT_EQ(joint(report, 2).Path(), L"Scene|c");
    EXPECT_EQ(joint(report, 1).ObjectType(), L"Joint");
    EXPECT_EQ(joint(report, 0).TranslationZ().Float(), 3);
}

TEST_F(Import, MakesASampledCurveOfEachChannel) {
    Clip const clip = mustRead(oneJoint("2 Yposition Xrotation", "Frames: 3\nFrame Time: 0.1\n1 90\n2 91\n3 92\n"));
    ImportReport const report = import(clip, {Positions::replace, Unit::centimetre});
    XAnimation const curve = joint(report, 0).TranslationY().Animation();
    ASSERT_TRUE(curve.IsValid());
    EXPECT_TRUE(curve.IsCurveSampled().Boolean());
    EXPECT_EQ(curve.KeyframeCount(), 3);
    for (int number = 26; number <= 34; ++number)
        if (number != 28) { EXPECT_EQ(curve.Attribute(number).ArraySize(), 3) << number; }
    EXPECT_EQ(curve.KeyframeInterpolations().Enumeration(2), LinearInterpolation);
    EXPECT_EQ(curve.KeyframeInputValues().Float(2), 0.2f);
    EXPECT_EQ(curve.KeyframeOutputValues().Float(1), 0.02f);
    EXPECT_FLOAT_EQ(joint(report, 0).RotationX().Animation().KeyframeOutputValues().Float(0), 90 * degree);
    EXPECT_FALSE(joint(report, 0).RotationY().Animation().IsValid());
    go(0.05);
    EXPECT_FLOAT_EQ(joint(report, 0).TranslationY().Float(), 0.015f);
}

TEST_F(Import, PlacesKeysAtFrameTimesFrameTimeInDoublePrecision) {
    std::string motion = "Frames: 2752\nFrame Time: .0083333\n";
    for (int k = 0; k < 2752; ++k) motion += "0\n";
    ImportReport const report = import(mustRead(oneJoint("1 Xrotation", motion)));
    XAnimation const curve = joint(report, 0).RotationX().Animation();
    EXPECT_EQ(curve.KeyframeInputValues().Float(2751), float(2751 * .0083333));
    EXPECT_EQ(settings().EndTime().Float(), float(2751 * .0083333));
    EXPECT_EQ(settings().PlaybackEndTime().Float(), float(2751 * .0083333));
    EXPECT_EQ(settings().StartTime().Float(), 0);
    EXPECT_EQ(settings().FrameRate().Integer(), 120);
}

TEST_F(Import, AddsPositionsToTheOffsetWhenTheyAreDifferences) {
    Clip const clip = mustRead(oneJoint("1 Xposition", "Frames: 1\nFrame Time: 0.1\n10\n"));
    EXPECT_EQ(joint(import(clip, {Positions::add, Unit::metre}), 0).TranslationX().Float(), 11);
    EXPECT_EQ(joint(import(clip, {Positions::replace, Unit::metre}), 0).TranslationX().Float(), 10);
}

TEST_F(Import, MakesRepeatedNamesUniqueAndKeepsTheOldForExport) {
    Clip const clip =
        mustRead("HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 0\n JOINT a\n { OFFSET 0 1 0 CHANNELS 0\n"
                 " JOINT a1\n { OFFSET 0 1 0 CHANNELS 0 } }\n JOINT x|y\n { OFFSET 0 0 1 CHANNELS 0 }\n}\n"
                 "MOTION\nFrames: 1\nFrame Time: 0.1\n\n");
    ImportReport const report = import(clip);
    EXPECT_EQ(joint(report, 1).Name(), L"a1");
    EXPECT_EQ(joint(report, 2).Name(), L"a11");
    EXPECT_EQ(joint(report, 3).Name(), L"x_y");
    EXPECT_EQ(report.renamed.size(), 3u);
    Clip const again = exported();
    for (std::size_t i = 0; i < clip.joints.size(); ++i) EXPECT_EQ(again.joints[i].name, clip.joints[i].name);
}

TEST_F(Import, TellsWhyItTookAUnit) {
    ImportReport const report = import(mustRead(fileText(sourceFolder() / "examples/walk.bvh")));
    EXPECT_EQ(report.unit, Unit::centimetre);
    EXPECT_NE(report.unitReason.find("1.75 m"), std::string::npos);
}

TEST_F(Import, IsOneStepOfTheHistory) {
    ImportReport const report = import(mustRead(fileText(sourceFolder() / "examples/walk.bvh")));
    scene().Undo();
    EXPECT_FALSE(joint(report, 0).IsValid());
    scene().Redo();
    EXPECT_TRUE(joint(report, 0).IsValid());
    EXPECT_EQ(exported(), mustRead(fileText(sourceFolder() / "examples/walk.bvh")));
}

TEST_F(Import, TwoClipsStandSideBySide) {
    Clip const clip = mustRead(fileText(sourceFolder() / "examples/walk.bvh"));
    import(clip);
    ImportReport const second = import(clip);
    EXPECT_EQ(joint(second, 0).Path(), L"Scene|Hips1");
    Clip const both = exported();
    ASSERT_EQ(both.joints.size(), 2 * clip.joints.size());
    EXPECT_EQ(both.joints[clip.joints.size()].name, "Hips");
}

TEST_F(Import, ThroughTheSettingsFindsTheTranslator) {
    TemporaryFolder folder;
    std::filesystem::copy_file(sourceFolder() / "examples/walk.bvh", folder.path / "walk.bvh");
    XSettings& settings = XApplication::Instance().Settings();
    settings.ImportFile((folder.path / "walk.bvh").wstring());
    EXPECT_TRUE(scene().Object(L"Scene|Hips").IsValid());
    settings.ExportFile((folder.path / "again.bvh").wstring());
    EXPECT_EQ(fileText(folder.path / "again.bvh"), fileText(folder.path / "walk.bvh"));
    EXPECT_TRUE(log.errors.empty());
}

TEST_F(Import, OfABadFileSaysWhereAndChangesNothing) {
    TemporaryFolder folder;
    std::ofstream(folder.path / "bad.bvh") << "HIERARCHY\nROOT a\n{\n OFFSET 0 zero 0\n";
    XBvhTranslatorDef translator;
    Qelutils::Vector<XObject> before, after;
    scene().Objects(before);
    EXPECT_FALSE(translator.Import(scene(), (folder.path / "bad.bvh").wstring()));
    scene().Objects(after);
    EXPECT_EQ(before.size(), after.size());
    ASSERT_EQ(log.errors.size(), 1u);
    EXPECT_NE(log.errors[0].find(L"line 4, column 11"), std::wstring::npos) << Qelutils::toUtf8(log.errors[0]);
}
