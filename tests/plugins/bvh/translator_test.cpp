// Motion clips through the commands "ImportFile" and "ExportFile", with each of their parameters.
#include "tests/commands/file_dialogs.h"
#include "tests/plugins/bvh/scene.h"

#include <cmath>

using namespace bvh;
using namespace Tavo;

namespace {

constexpr double radian = 57.295779513082320877;  // in degrees

// A figure of two joints and two frames, a human in centimetres.
std::string figure(std::string const& root = "Hips", std::string const& turn = "90") {
    return "HIERARCHY\nROOT " + root +
           "\n{\n\tOFFSET 0 100 0\n\tCHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
           "\tJOINT Spine\n\t{\n\t\tOFFSET 0 50 0\n\t\tCHANNELS 3 Zrotation Xrotation Yrotation\n"
           "\t\tEnd Site\n\t\t{\n\t\t\tOFFSET 0 125 0\n\t\t}\n\t}\n}\n"
           "MOTION\nFrames: 2\nFrame Time: 0.1\n0 100 0 " +
           turn + " 0 0 10 20 30\n1 101 2 " + turn + " 1 2 -10 -20.5 -30.25\n";
}

class Translator : public SceneTest {
protected:
    static XSettings& document() { return XApplication::Instance().Settings(); }
    static XImportFile importing() { return XImportFile(document().Object(L"ImportFile")); }
    static XExportFile exporting() { return XExportFile(document().Object(L"ExportFile")); }

    std::filesystem::path write(std::string const& name, std::string const& text) const {
        std::ofstream(folder.path / name) << text;
        return folder.path / name;
    }
    void runImport(std::filesystem::path const& file) { run(L"ImportFile", file); }
    void importText(std::string const& text) { runImport(write("clip.bvh", text)); }
    // The clip that the command writes; empty if it writes none.
    Clip runExport() {
        return written([this](std::filesystem::path const& file) { run(L"ExportFile", file); });
    }
    // The same without a run of the command, and so without its step.
    Clip exported() {
        return written([](std::filesystem::path const& file) { document().ExportFile(file.wstring()); });
    }
    template<class Export> Clip written(Export const& write) {
        std::filesystem::path const file = folder.path / "out.bvh";
        std::filesystem::remove(file);
        write(file);
        return std::filesystem::exists(file) ? mustRead(fileText(file)) : Clip{};
    }
    std::size_t objectCount() {
        Qelutils::Vector<XObject> all;
        scene().Objects(all);
        return all.size();
    }
    int undoCount() { return int(scene().SceneGraph()->getUndoCount()); }
    XJoint found(std::wstring const& path) { return XJoint(scene().Object(path)); }
    XObject hips() { return scene().RootObject().Child(L"Hips"); }

    TemporaryFolder folder;
    AnsweredDialogs dialogs;

private:
    void run(wchar_t const* command, std::filesystem::path const& file) {
        dialogs.answer = file.wstring();
        scene().RunCommand(command);
    }
};

std::vector<float> keysOf(XAttribute const& attribute) {
    std::vector<float> keys;
    XAttribute const values = attribute.Animation().KeyframeOutputValues();
    for (int i = 0; i < values.ArraySize(); ++i) keys.push_back(values.Float(i));
    return keys;
}

// What a channel of the first joint says.
double valueOf(Clip const& clip, int frame, Channel channel) {
    for (std::size_t i = 0; !clip.joints.empty() && i < clip.joints[0].channels.size(); ++i)
        if (clip.joints[0].channels[i] == channel) return clip.value(frame, int(i));
    ADD_FAILURE() << "no such channel";
    return 0;
}

std::vector<std::string> namesOf(Clip const& clip) {
    std::vector<std::string> names;
    for (Joint const& joint : clip.joints) names.push_back(joint.name);
    return names;
}

}  // namespace

TEST_F(Translator, IsForMotionClips) {
    XBvhTranslatorDef translator;
    EXPECT_EQ(translator.Extension(), L"BVH");
    EXPECT_EQ(translator.Filter(), L"Motion clips (*.bvh)|*.bvh");
    EXPECT_TRUE(translator.IsTranslator() && translator.SupportsImport() && translator.SupportsExport());
}

TEST_F(Translator, IsOfferedInTheDialogsOfBothCommands) {
    dialogs.result = wxUtils::DialogCancelled;
    scene().RunCommand(L"ImportFile");
    scene().RunCommand(L"ExportFile");
    ASSERT_EQ(dialogs.requests.size(), 2u);
    for (auto const& request : dialogs.requests)
        EXPECT_EQ(request.filter, L"All Files (*.*)|*.*|Motion clips (*.bvh)|*.bvh");
}

TEST_F(Translator, TakesAClipThereAndBackThroughTheCommandsToTheByte) {
    auto const walk = sourceFolder() / "examples/walk.bvh";
    runImport(write("walk.BVH", fileText(walk)));
    runExport();
    EXPECT_TRUE(fileText(folder.path / "out.bvh") == fileText(walk));
    EXPECT_TRUE(log.errors.empty() && log.informations.empty());
}

// ---- one step, or none ----

TEST_F(Translator, ImportIsOneStepThatUndoAndRedoMove) {
    int const steps = undoCount();
    std::size_t const objects = objectCount();
    importText(figure());
    EXPECT_EQ(undoCount(), steps + 1);
    Clip const clip = exported();
    scene().Undo();
    EXPECT_EQ(objectCount(), objects);
    EXPECT_EQ(settings().EndTime().Float(), 3);
    EXPECT_EQ(settings().FrameRate().Integer(), 24);
    scene().Redo();
    EXPECT_EQ(exported(), clip);
    EXPECT_EQ(settings().FrameRate().Integer(), 10);
}

TEST_F(Translator, AFailedImportSaysWhereAndThenWhichFileAndLeavesTheSceneAsItWas) {
    importText(figure());
    int const steps = undoCount();
    Clip const before = exported();
    for (XImportFile::Mode const mode : {XImportFile::AddObjects, XImportFile::ReplaceObjects}) {
        importing().ImportMode().SetEnumeration(mode);
        log.errors.clear();
        auto const bad = write("bad.bvh", "HIERARCHY\nROOT Hips\n{\n OFFSET 0 zero 0\n");
        runImport(bad);
        ASSERT_EQ(log.errors.size(), 2u);
        EXPECT_EQ(log.errors[0].find(bad.wstring() + L": line 4, column 11: "), 0u) << Qelutils::toUtf8(log.errors[0]);
        EXPECT_EQ(log.errors[1], L"Unable to import the file at \"" + bad.wstring() + L"\"");
        EXPECT_EQ(undoCount(), steps + 1);
        scene().Undo();
        EXPECT_EQ(exported(), before);
    }
}

TEST_F(Translator, AFileThatIsNotThereFailsLikeABadOne) {
    std::size_t const objects = objectCount();
    runImport(folder.path / "none.bvh");
    EXPECT_EQ(log.errors.size(), 2u);
    EXPECT_EQ(objectCount(), objects);
}

TEST_F(Translator, AFailedExportSaysWhyAndThenWhichFileAndLeavesTheFileAsItWas) {
    auto const file = write("old.bvh", "as it was");
    dialogs.answer = file.wstring();
    scene().RunCommand(L"ExportFile");
    EXPECT_EQ(log.errors, (std::vector<std::wstring>{file.wstring() + L": there are no joints in the scene",
                                                     L"Unable to export the file to \"" + file.wstring() + L"\""}));
    EXPECT_EQ(fileText(file), "as it was");
}

TEST_F(Translator, ExportChangesNothingSoThatItsStepIsEmpty) {
    importText(figure());
    int const steps = undoCount();
    scene().SceneGraph()->setCheckpoint();
    EXPECT_EQ(runExport().frames, 2);
    EXPECT_EQ(undoCount(), steps + 1);
    EXPECT_TRUE(scene().SceneGraph()->isAtCheckpoint());
}

TEST_F(Translator, ExportThatMovesTheTimeBringsItBackAndUndoOfItChangesNothing) {
    importText(figure());
    found(L"Scene|Hips|Spine").PreRotationX().SetFloat(0.5f);
    settings().Time().SetFloat(0.05f);
    Clip const clip = runExport();
    EXPECT_EQ(settings().Time().Float(), 0.05f);
    int const steps = undoCount();
    EXPECT_EQ(runExport(), clip);
    EXPECT_EQ(undoCount(), steps + 1);  // the time was written, be it to what it was
    scene().Undo();
    EXPECT_EQ(settings().Time().Float(), 0.05f);
    EXPECT_EQ(runExport(), clip);
}

TEST_F(Translator, WithoutTheNodesOfTheCommandsTheirDefaultsHold) {
    importText(figure());
    Clip const clip = runExport();
    XApplication::Instance().RemoveSettingsObserver(&types_);
    document().New();
    ASSERT_EQ(document().SceneGraph()->Node(L"ImportFile"), nullptr);
    scene().New();
    log.errors.clear();
    document().ImportFile((folder.path / "clip.bvh").wstring());
    document().ExportFile((folder.path / "again.bvh").wstring());
    EXPECT_EQ(mustRead(fileText(folder.path / "again.bvh")), clip);
    EXPECT_EQ(settings().FrameRate().Integer(), 10);
    EXPECT_TRUE(log.errors.empty());
}

// ---- ImportMode ----

TEST_F(Translator, AddPutsTheNewFigureBesideTheOldOne) {
    importText(figure());
    importText(figure());
    EXPECT_TRUE(found(L"Scene|Hips|Spine").IsValid());
    EXPECT_TRUE(found(L"Scene|Hips1|Spine").IsValid());
}

TEST_F(Translator, ReplacePutsTheNewFigureInTheOldOnesPlace) {
    importing().ImportMode().SetEnumeration(XImportFile::ReplaceObjects);
    importText(figure());
    std::size_t const objects = objectCount();
    XObject const old = hips();
    create(found(L"Scene|Hips|Spine"), L"Extra");
    importText(figure("Hips", "45"));
    EXPECT_FALSE(old.IsValid());
    EXPECT_EQ(objectCount(), objects);
    Clip const clip = runExport();
    EXPECT_EQ(namesOf(clip), (std::vector<std::string>{"Hips", "Spine"}));
    EXPECT_EQ(clip.value(0, 3), 45);
}

TEST_F(Translator, ReplaceIsOneStepAndUndoBringsTheOldFigureBack) {
    importing().ImportMode().SetEnumeration(XImportFile::ReplaceObjects);
    importText(figure());
    Clip const first = exported();
    int const steps = undoCount();
    importText(figure("Hips", "45"));
    Clip const second = exported();
    EXPECT_EQ(undoCount(), steps + 1);
    for (int round = 0; round < 2; ++round) {
        scene().Undo();
        EXPECT_EQ(exported(), first);
        scene().Redo();
        EXPECT_EQ(exported(), second);
    }
}

TEST_F(Translator, ReplaceLeavesWhatStandsElsewhereOrHasAnotherName) {
    XJoint const other = create(scene().RootObject(), L"Hips2"), inner = create(other, L"Hips");
    XObject const outside = scene().CreateObject(XTransform::TypeID);
    importing().ImportMode().SetEnumeration(XImportFile::ReplaceObjects);
    importText(figure());
    EXPECT_TRUE(other.IsValid() && inner.IsValid() && outside.IsValid());
    EXPECT_TRUE(hips().IsValid());
}

TEST_F(Translator, ReplaceTakesAnObjectOfAnyTypeAndAllBelowIt) {
    XObject transform = scene().CreateObject(XTransform::TypeID, scene().RootObject());
    transform.SetName(L"Hips");
    XJoint const below = create(transform, L"Below");
    importing().ImportMode().SetEnumeration(XImportFile::ReplaceObjects);
    importText(figure());
    EXPECT_FALSE(transform.IsValid() || below.IsValid());
    EXPECT_EQ(hips().ObjectType(), L"Joint");
}

TEST_F(Translator, ReplaceFindsEveryRootByTheNameThatTheSceneGaveIt) {
    std::string const text = "HIERARCHY ROOT a|b\n{ OFFSET 0 0 0 CHANNELS 0\n JOINT c\n { OFFSET 0 1 0 CHANNELS 0 } }\n"
                             "ROOT c\n{ OFFSET 0 0 0 CHANNELS 0 }\nROOT\n{ OFFSET 0 0 0 CHANNELS 0 }\n"
                             "MOTION\nFrames: 1\nFrame Time: 0.1\n\n";
    importing().ImportMode().SetEnumeration(XImportFile::ReplaceObjects);
    importText(text);
    std::size_t const objects = objectCount();
    Clip const clip = runExport();
    importText(text);
    EXPECT_EQ(objectCount(), objects);
    EXPECT_EQ(runExport(), clip);
    EXPECT_TRUE(found(L"Scene|a_b").IsValid() && found(L"Scene|c1").IsValid());
}

// ---- units ----

TEST_F(Translator, TakesLengthsInTheUnitThatIsTold) {
    for (int unit = 0; unit < file_units::AutomaticLength; ++unit) {
        scene().New();
        importing().LinearUnits().SetEnumeration(unit);
        importText(figure());
        EXPECT_EQ(found(L"Scene|Hips|Spine").TranslationY().Float(), float(50 * metresPer(Unit(unit)))) << unit;
        EXPECT_EQ(found(L"Scene|Hips").TranslationY().Float(), float(100 * metresPer(Unit(unit)))) << unit;
    }
    EXPECT_EQ(LinearUnitTable[5].word, std::wstring_view(file_units::lengths[5]));
}

TEST_F(Translator, WritesLengthsInTheUnitThatIsTold) {
    importText(figure());
    for (int unit = 0; unit < file_units::AutomaticLength; ++unit) {
        exporting().LinearUnits().SetEnumeration(unit);
        Clip const clip = runExport();
        ASSERT_EQ(clip.joints.size(), 2u);
        EXPECT_NEAR(clip.joints[1].offset[1] * metresPer(Unit(unit)), 0.5, 1e-6) << unit;
        EXPECT_NEAR(clip.value(1, 1) * metresPer(Unit(unit)), 1.01, 1e-6) << unit;
        EXPECT_NEAR(clip.joints[1].endSites[0].offset[1] * metresPer(Unit(unit)), 1.25, 1e-6) << unit;
    }
}

TEST_F(Translator, AutomaticLengthsAreJudgedAndWrittenAsTheyCame) {
    importText(figure());
    EXPECT_EQ(found(L"Scene|Hips").TranslationY().Float(), 1);
    importing().LinearUnits().SetEnumeration(L"Inches");
    scene().New();
    importText(figure());
    EXPECT_EQ(runExport(), mustRead(figure()));
}

TEST_F(Translator, TakesAnglesInRadiansWhenTold) {
    importing().AngularUnits().SetEnumeration(L"Radians");
    importText(figure("Hips", "1.25"));
    EXPECT_EQ(found(L"Scene|Hips").RotationZ().Float(), 1.25f);
    EXPECT_NEAR(runExport().value(0, 3), 1.25 * radian, 1e-5);
}

TEST_F(Translator, TakesAndWritesAnglesInDegreesOtherwise) {
    for (wchar_t const* word : {L"Degrees", L"Automatic"}) {
        scene().New();
        importing().AngularUnits().SetEnumeration(word);
        exporting().AngularUnits().SetEnumeration(word);
        importText(figure());
        EXPECT_FLOAT_EQ(found(L"Scene|Hips").RotationZ().Float(), float(90 / radian));
        EXPECT_EQ(runExport(), mustRead(figure()));
    }
}

TEST_F(Translator, WritesAnglesInRadiansWhenTold) {
    importText(figure());
    exporting().AngularUnits().SetEnumeration(L"Radians");
    Clip const clip = runExport();
    EXPECT_NEAR(clip.value(0, 3), 90 / radian, 1e-6);
    EXPECT_NEAR(clip.value(1, 8), -30.25 / radian, 1e-6);
    EXPECT_EQ(clip.value(1, 1), 101);
}

TEST_F(Translator, CountsComposedAnglesOnFromFrameToFrameInRadiansToo) {
    settings().EndTime().SetFloat(1);
    importing().ResetTimeline().SetBoolean(false);
    importText(oneJoint("1 Yrotation", "Frames: 2\nFrame Time: 1\n90\n450\n"));
    hips().Attribute(L"PreRotationY").SetFloat(0.5f);
    exporting().AngularUnits().SetEnumeration(L"Radians");
    Clip const clip = runExport();
    ASSERT_EQ(clip.frames, 25);
    EXPECT_NEAR(valueOf(clip, 0, Channel::yRotation), 0.5 + 90 / radian, 1e-5);
    EXPECT_NEAR(valueOf(clip, 24, Channel::yRotation), 0.5 + 450 / radian, 1e-5);
}

TEST_F(Translator, InEveryPairOfUnitsWhatIsWrittenIsReadBackTheSame) {
    for (int length = 0; length < file_units::AutomaticLength; ++length)
        for (int angle = 0; angle < file_units::AutomaticAngle; ++angle) {
            scene().New();
            importing().LinearUnits().SetEnumeration(L"Centimetres");
            importing().AngularUnits().SetEnumeration(L"Degrees");
            importText(figure());
            std::vector<float> const keys = keysOf(found(L"Scene|Hips|Spine").RotationX());
            exporting().LinearUnits().SetEnumeration(length);
            exporting().AngularUnits().SetEnumeration(angle);
            runExport();
            importing().LinearUnits().SetEnumeration(length);
            importing().AngularUnits().SetEnumeration(angle);
            runImport(folder.path / "out.bvh");
            XJoint const again = found(L"Scene|Hips1|Spine");
            EXPECT_EQ(keysOf(again.RotationX()), keys) << length << angle;
            EXPECT_EQ(again.TranslationY().Float(), 0.5f) << length << angle;
        }
}

// ---- Characterize, ResetTimeline ----

TEST_F(Translator, CharacterizeMakesEachSkeletonACharacter) {
    importing().Characterize().SetBoolean(true);
    importText(figure());
    XJoint const root = found(L"Scene|character|kinematics|Hips");
    ASSERT_TRUE(root.IsValid());
    EXPECT_FALSE(hips().IsValid());
    EXPECT_TRUE(root.IsCharacterRootJoint());
    EXPECT_FALSE(root.Character().IsEditable().Boolean());
    EXPECT_EQ(keysOf(root.TranslationX()), (std::vector<float>{0, 0.01f}));
    EXPECT_TRUE(log.errors.empty() && log.informations.empty());
    EXPECT_EQ(undoCount(), 1);
    scene().Undo();
    EXPECT_FALSE(root.IsValid() || scene().RootObject().Child(L"character").IsValid());
}

TEST_F(Translator, WithoutItTheSkeletonHangsBelowTheOrigin) {
    importText(figure());
    EXPECT_TRUE(hips().IsValid());
    EXPECT_FALSE(XObject(hips()).Character().IsValid());
}

TEST_F(Translator, ACharacterIsWrittenAsTheSkeletonThatItWasReadFrom) {
    importText(figure());
    runExport();
    std::string const plain = fileText(folder.path / "out.bvh");
    scene().New();
    importing().Characterize().SetBoolean(true);
    importText(figure());
    runExport();
    EXPECT_EQ(fileText(folder.path / "out.bvh"), plain);
}

TEST_F(Translator, ACharacterThatWasMovedIsWrittenWhereItStands) {
    importing().Characterize().SetBoolean(true);
    importText(figure());
    XCharacter character(scene().Object(L"Scene|character"));
    character.SetTranslation(1, 0, 0);
    EXPECT_NEAR(valueOf(runExport(), 0, Channel::xPosition), 100, 1e-3);
}

TEST_F(Translator, ReplacingTakesTheCharacterOfTheSameRoot) {
    importing().Characterize().SetBoolean(true);
    importText(figure());
    importText(figure("Pelvis"));
    XCharacter const first = found(L"Scene|character|kinematics|Hips").Character();
    XCharacter const second = found(L"Scene|character1|kinematics|Pelvis").Character();
    ASSERT_TRUE(first.IsValid() && second.IsValid());
    importing().ImportMode().SetEnumeration(L"Replace");
    importText(figure());
    EXPECT_FALSE(first.IsValid());
    EXPECT_TRUE(second.IsValid());
    EXPECT_TRUE(found(L"Scene|character|kinematics|Hips").IsValid());
}

TEST_F(Translator, ResetTimelineMakesTheRangeTheClips) {
    go(2);
    importText(figure());
    EXPECT_EQ(settings().Time().Float(), 0);
    EXPECT_EQ(settings().StartTime().Float(), 0);
    EXPECT_EQ(settings().EndTime().Float(), 0.1f);
    EXPECT_EQ(settings().PlaybackEndTime().Float(), 0.1f);
    EXPECT_EQ(settings().FrameRate().Integer(), 10);
}

TEST_F(Translator, WithoutResetTimelineTimeRangeAndRateStayAsTheyAre) {
    importing().ResetTimeline().SetBoolean(false);
    settings().StartTime().SetFloat(0.25f);
    settings().PlaybackStartTime().SetFloat(0.5f);
    settings().PlaybackEndTime().SetFloat(1.5f);
    go(1);
    importText(figure());
    EXPECT_EQ(settings().Time().Float(), 1);
    EXPECT_EQ(settings().StartTime().Float(), 0.25f);
    EXPECT_EQ(settings().EndTime().Float(), 3);
    EXPECT_EQ(settings().PlaybackStartTime().Float(), 0.5f);
    EXPECT_EQ(settings().PlaybackEndTime().Float(), 1.5f);
    EXPECT_EQ(settings().FrameRate().Integer(), 24);
    EXPECT_EQ(found(L"Scene|Hips").RotationZ().Animation().KeyframeInputValues().Float(1), 0.1f);
}

// ---- ExportSelected ----

TEST_F(Translator, ExportSelectedWritesOnlyTheFigureThatIsSelected) {
    importText(figure("Left"));
    importText(figure("Right", "45"));
    exporting().ExportSelected().SetBoolean(true);
    scene().Selection().Select(found(L"Scene|Right"));
    Clip const clip = runExport();
    EXPECT_EQ(namesOf(clip), (std::vector<std::string>{"Right", "Spine"}));
    EXPECT_EQ(clip, mustRead(figure("Right", "45")));
    exporting().ExportSelected().SetBoolean(false);
    EXPECT_EQ(namesOf(runExport()), (std::vector<std::string>{"Left", "Spine", "Right", "Spine"}));
}

TEST_F(Translator, ExportSelectedTakesTheUnitFromTheFigureThatIsSelected) {
    importText(figure("Left"));
    importing().LinearUnits().SetEnumeration(L"Inches");
    importText(figure("Right"));
    exporting().ExportSelected().SetBoolean(true);
    scene().Selection().Select(found(L"Scene|Right"));
    EXPECT_EQ(runExport(), mustRead(figure("Right")));
    scene().Selection().Select(found(L"Scene|Right|Spine"));
    EXPECT_NEAR(valueOf(runExport(), 0, Channel::xPosition), -50, 1e-4);
}

TEST_F(Translator, ExportSelectedMakesAnInnerJointARootWhereItStandsInTheWorld) {
    importText(figure());
    exporting().ExportSelected().SetBoolean(true);
    scene().Selection().Select(found(L"Scene|Hips|Spine"));
    Clip const clip = runExport();
    ASSERT_EQ(namesOf(clip), std::vector<std::string>{"Spine"});
    EXPECT_EQ(clip.joints[0].parent, -1);
    EXPECT_EQ(clip.frames, 2);
    EXPECT_NEAR(valueOf(clip, 0, Channel::xPosition), -50, 1e-4);
    EXPECT_NEAR(valueOf(clip, 0, Channel::yPosition), 100, 1e-4);
}

TEST_F(Translator, ExportSelectedWritesEachJointOnceHoweverManyAboveItAreSelected) {
    importText(figure("Left"));
    importText(figure("Right"));
    exporting().ExportSelected().SetBoolean(true);
    scene().Selection().Select(found(L"Scene|Right|Spine")).Append(found(L"Scene|Right"));
    scene().Selection().Append(found(L"Scene|Left|Spine"));
    EXPECT_EQ(namesOf(runExport()), (std::vector<std::string>{"Spine", "Right", "Spine"}));
}

TEST_F(Translator, ExportSelectedTakesTheJointsBelowASelectedGroup) {
    importText(figure());
    XObject const group = scene().CreateObject(XTransform::TypeID, scene().RootObject());
    create(group, L"prop");
    exporting().ExportSelected().SetBoolean(true);
    scene().Selection().Select(group);
    EXPECT_EQ(namesOf(runExport()), std::vector<std::string>{"prop"});
}

TEST_F(Translator, ExportSelectedWithNothingSelectedSaysSoAndWritesNothing) {
    importText(figure());
    exporting().ExportSelected().SetBoolean(true);
    scene().Selection().Clear();
    EXPECT_EQ(runExport(), Clip{});
    std::wstring const file = (folder.path / "out.bvh").wstring();
    EXPECT_EQ(log.errors, (std::vector<std::wstring>{file + L": no joints are selected",
                                                     L"Unable to export the file to \"" + file + L"\""}));
    EXPECT_FALSE(XBvhTranslatorDef().Export(scene(), file));
    scene().Selection().Select(scene().CreateObject(XTransform::TypeID));
    EXPECT_FALSE(XBvhTranslatorDef().Export(scene(), file));
}
