// What holds of every command there is.
#include "tests/commands/fixture.h"
#include <set>

namespace Tavo {
namespace {

class Catalogue : public CommandTest {
protected:
    static std::vector<XCommandInfo> commands(bool undoable) {
        std::vector<XCommandInfo> all = XCommandCatalogue::List(settings());
        std::erase_if(all, [&](XCommandInfo const& command) { return command.isUndoable != undoable; });
        return all;
    }
    // The scene anew, with what most commands can act on.
    void prepare() {
        build();
        select({spine, leg, box});
        scene().SceneGraph()->ClearUndoHistory();
    }
};

// ---- every command on a selection ----

TEST_F(Catalogue, EachCommandIsOneStepThatUndoAndRedoMoveToTheByte) {
    std::set<std::wstring> const withoutEffectHere = {L"ActivateMoveTool",  // it is the active one
                                                      L"Copy",
                                                      L"Paste",
                                                      L"SampleTrajectoryUniformly",  // none is selected
                                                      L"SampleTrajectoryAdaptively",
                                                      L"FitTrajectory",
                                                      L"ToSplineTrajectory",
                                                      L"CreateIKRig",    // two roots without effectors
                                                      L"SetIKBindPose",  // no rig
                                                      L"ClearLastIKBindPose",
                                                      L"ClearAllIKBindPoses",
                                                      L"SetIKRootJoints",
                                                      L"SetIKEndEffectors",
                                                      L"SetIKPoleVectorPairs",
                                                      L"RetargetDetach",
                                                      L"RetargetSetJointsToOrigin",
                                                      L"RetargetSetJointOrigins",
                                                      L"RetargetSetJointReferent",
                                                      L"RetargetSetJointReferentToWorld",
                                                      L"RetargetResetJointReferents",
                                                      L"AlignJointLimit",
                                                      L"AlignHingeOffset",
                                                      L"SetConstraintTarget",
                                                      L"ClearConstraintTarget",
                                                      L"CreateAimConstraint",       // of three transforms
                                                      L"CreateSkeletalConstraint",  // no namesakes
                                                      L"CreatePoleVector",          // of one branch
                                                      L"ZoomToFit",
                                                      L"ImportFile",  // without dialogs
                                                      L"ExportFile",
                                                      L"ToggleSelectedObjectSubObjectEditMode_1",  // of one object
                                                      L"ToggleSelectedObjectSubObjectEditMode_2",
                                                      L"ToggleSelectedObjectSubObjectEditMode_3",
                                                      L"ToggleSelectedObjectSubObjectEditMode_4"};
    for (XCommandInfo const& command : commands(true)) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        prepare();
        std::string const before = bytes();
        run(command.name);
        std::string const after = bytes();
        EXPECT_EQ(undoCount(), 1);
        EXPECT_EQ(scene().SceneGraph()->getUndoLabel(), L"");
        EXPECT_EQ(before == after, withoutEffectHere.contains(command.name));
        undo();
        EXPECT_EQ(undoCount(), 0);
        EXPECT_TRUE(bytes() == before);
        redo();
        EXPECT_EQ(undoCount(), 1);
        EXPECT_TRUE(bytes() == after);
    }
}

TEST_F(Catalogue, ADirectCommandAddsNoStep) {
    std::vector<XCommandInfo> const direct = commands(false);
    std::set<std::wstring> names;
    for (XCommandInfo const& command : direct) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        names.insert(command.name);
        prepare();
        run(L"CreateJoint");
        run(L"CreateJoint");
        undo();
        run(command.name);
        EXPECT_EQ(stepCount(), 2);
        scene().Stop();
        EXPECT_EQ(stepCount(), 2);
    }
    EXPECT_EQ(names,
              (std::set<std::wstring>{L"GoToFirstFrame", L"GoToLastFrame", L"GoToNextFrame", L"GoToPreviousFrame",
                                      L"Play", L"PlayReverse", L"PlayToggle", L"Redo", L"Stop", L"Undo"}));
}

TEST_F(Catalogue, EachCommandIsAStepAlsoWhereNothingIsSelected) {
    for (XCommandInfo const& command : commands(true)) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        prepare();
        scene().Selection().Clear();
        scene().SceneGraph()->ClearUndoHistory();
        std::string const before = bytes();
        run(command.name);
        EXPECT_EQ(undoCount(), 1);
        undo();
        EXPECT_TRUE(bytes() == before);
    }
}

TEST_F(Catalogue, CommandsMergeIntoOneStepOfABlockThatIsOpen) {
    static std::wstring const label = L"all";
    prepare();
    std::string const before = bytes();
    {
        XChangeBlock const block(scene(), label);
        for (XCommandInfo const& command : commands(true)) run(command.name);
    }
    std::string const after = bytes();
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(scene().SceneGraph()->getUndoLabel(), L"all");
    scene().Undo();
    EXPECT_TRUE(bytes() == before);
    scene().Redo();
    EXPECT_TRUE(bytes() == after);
}

// ---- modes ----

TEST_F(Catalogue, NoneActsInTheReadOnlyMode) {
    prepare();
    run(L"CreateJoint");
    run(L"CreateJoint");
    undo();
    select({spine, leg, box});
    std::string const before = bytes();
    int const steps = stepCount();
    scene().SetSceneMode(ReadOnlyMode);
    for (XCommandInfo const& command : XCommandCatalogue::List(settings())) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        Qelutils::Vector<XObject> results = {XObject(spine)};
        EXPECT_FALSE(scene().RunCommand(command.name, results).IsValid());
        EXPECT_TRUE(results.empty());
        EXPECT_TRUE(bytes() == before);
        EXPECT_EQ(stepCount(), steps);
        EXPECT_EQ(scene().SceneMode(), ReadOnlyMode);
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(Catalogue, DuringSimulationNoneActsButWhatStopsIt) {
    prepare();
    std::string const before = bytes();
    for (XCommandInfo const& command : XCommandCatalogue::List(settings())) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        scene().BeginChangeBlock(true);  // which a simulation holds
        scene().SetSceneMode(SimulationMode);
        run(command.name);
        bool const stops = command.name == L"Stop" || command.name == L"PlayToggle";
        EXPECT_EQ(scene().SceneMode(), stops ? InteractiveMode : SimulationMode);
        EXPECT_TRUE(bytes() == before);
        EXPECT_EQ(stepCount(), 0);
        scene().Stop();
        EXPECT_FALSE(scene().SceneGraph()->isInChangeBlock());
    }
}

// What is done while it plays belongs to the gesture of playing, which is no step until another one takes it along.
TEST_F(Catalogue, DuringPlaybackWhatACommandChangesJoinsTheNextStep) {
    prepare();
    std::string const before = bytes();
    run(L"Play");
    run(L"Group");
    run(L"Copy");
    run(L"Stop");
    EXPECT_EQ(undoCount(), 0);
    EXPECT_FALSE(bytes() == before);
    run(L"Copy");
    EXPECT_EQ(undoCount(), 1);
    undo();
    EXPECT_TRUE(bytes() == before);
}

// ---- the list ----

TEST_F(Catalogue, EachCommandHasItsNodeAndTellsWhatItDoes) {
    std::set<std::wstring> names;
    for (XCommandInfo const& command : XCommandCatalogue::List(settings())) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        EXPECT_TRUE(names.insert(command.name).second);
        XObject const node = settings().Object(command.name);
        EXPECT_TRUE(XCommand(node).IsValid());
        EXPECT_EQ(node.ObjectType(), command.name);
        ASSERT_FALSE(command.help.empty());
        EXPECT_EQ(command.help.back(), L'.');
        for (db::AttributeDef const* parameter : command.parameters)
            EXPECT_TRUE(parameter->name[0] && parameter->documentation[0]) << Qelutils::toUtf8(parameter->name);
    }
    for (wchar_t const* name : {L"Play",
                                L"PlayReverse",
                                L"PlayToggle",
                                L"Stop",
                                L"GoToFirstFrame",
                                L"GoToPreviousFrame",
                                L"GoToNextFrame",
                                L"GoToLastFrame",
                                L"Undo",
                                L"Redo",
                                L"ActivateSelectTool",
                                L"ActivateMoveTool",
                                L"ActivateRotateTool",
                                L"ActivateScaleTool",
                                L"ActivateTimingTool",
                                L"ToggleToolAxis",
                                L"ToggleSelectedObjectSubObjectEditMode_1",
                                L"ToggleSelectedObjectSubObjectEditMode_2",
                                L"ToggleSelectedObjectSubObjectEditMode_3",
                                L"ToggleSelectedObjectSubObjectEditMode_4",
                                L"ZoomToFit",
                                L"SelectAll",
                                L"ClearSelection",
                                L"SelectParent",
                                L"SelectChild",
                                L"SelectPrevious",
                                L"SelectNext",
                                L"Delete",
                                L"Remove",
                                L"Parent",
                                L"Unparent",
                                L"Copy",
                                L"Paste",
                                L"Group",
                                L"SetKey",
                                L"AlignAxis",
                                L"FreezeTransform",
                                L"Characterize",
                                L"AlignJointLimit",
                                L"AlignHingeOffset",
                                L"SetConstraintTarget",
                                L"ClearConstraintTarget",
                                L"CreateJointLimit",
                                L"CreateKinematicsConstraint",
                                L"CreateAimConstraint",
                                L"CreateSkeletalConstraint",
                                L"CreatePoleVector",
                                L"GenerateTrajectory",
                                L"SampleTrajectoryUniformly",
                                L"SampleTrajectoryAdaptively",
                                L"FitTrajectory",
                                L"ToSplineTrajectory",
                                L"ImportFile",
                                L"ExportFile",
                                L"CreateTransform",
                                L"CreateJoint",
                                L"CreateShape"})
        EXPECT_TRUE(names.contains(name)) << Qelutils::toUtf8(name);
}

// Numbers and names are a contract with scripts and with the settings' file.
TEST_F(Catalogue, ParametersStandAtTheirNumbersWithTheirDefaults) {
    struct Row {
        int number;
        std::wstring name;
        double value;  // of a flag: 0 or 1
    };
    std::vector<Row> const transform = {{8, L"Visible", 1},
                                        {10, L"ShowHierarchy", 1},
                                        {12, L"TranslationY", 0},
                                        {13, L"TranslationZ", 0},
                                        {14, L"RotationX", 0},
                                        {15, L"RotationY", 0},
                                        {16, L"RotationZ", 0},
                                        {17, L"ScaleX", 1},
                                        {18, L"ScaleY", 1},
                                        {19, L"ScaleZ", 1},
                                        {20, L"PreTranslationX", 0},
                                        {21, L"PreTranslationY", 0},
                                        {22, L"PreTranslationZ", 0},
                                        {23, L"PreRotationX", 0},
                                        {24, L"PreRotationY", 0},
                                        {25, L"PreRotationZ", 0},
                                        {26, L"PostRotationX", 0},
                                        {27, L"PostRotationY", 0},
                                        {28, L"PostRotationZ", 0},
                                        {29, L"RotationInterpolation", 0},
                                        {30, L"RotationEulerOrder", 0},
                                        {31, L"ShowTrajectory", 1},
                                        {32, L"ShowAxis", 1}};
    std::vector<Row> joint = transform;
    joint.insert(joint.end(), {{11, L"TranslationX", 0.2f},
                               {33, L"Characterize", 1},
                               {34, L"BoneRadius", 0.008f},
                               {35, L"LocatorRadius", 0.015f},
                               {36, L"BoneStyle", 0},
                               {37, L"LocatorStyle", 2},
                               {38, L"AxesStyle", 0}});
    std::vector<Row> plain = transform;
    plain.push_back({11, L"TranslationX", 0});
    std::vector<Row> limit = plain;
    limit.insert(limit.end(), {{33, L"InitialRotation", 0},
                               {34, L"MovingOffsetX", 0},
                               {35, L"MovingOffsetY", 0},
                               {36, L"MovingOffsetZ", 0},
                               {37, L"LimitType", 0},
                               {38, L"Swing1Active", 1},
                               {39, L"Swing1Angle", 0.7853982f},
                               {40, L"Swing2Active", 1},
                               {41, L"Swing2Angle", 0.7853982f},
                               {42, L"TwistActive", 1},
                               {43, L"TwistAngle", 1.5707964f},
                               {44, L"TwistOffset", 0},
                               {45, L"SoftSwingActive", 0},
                               {46, L"SoftSwing1Ratio", 0.7f},
                               {47, L"SoftSwing2Ratio", 0.7f},
                               {48, L"SoftTwistActive", 0},
                               {49, L"SoftTwistRatio", 0.7f},
                               {51, L"ShowFixedAxes", 0},
                               {52, L"ShowMovingAxes", 0}});
    std::map<std::wstring, std::vector<Row>> const table = {
        {L"CreateTransform", plain},
        {L"CreateJoint", joint},
        {L"CreateJointLimit", limit},
        {L"AlignJointLimit", {{8, L"JointLimitAxis", 0}, {9, L"AlignmentDirection", 0}}},
        {L"CreateKinematicsConstraint", {{8, L"LockTranslation", 1}, {9, L"LockRotation", 1}}},
        {L"CreateShape",
         {{8, L"Visible", 1},
          {10, L"ShowHierarchy", 1},
          {11, L"Shape", 0},
          {12, L"Width", 0.2f},
          {13, L"Height", 0.2f},
          {14, L"Length", 0.35f},
          {15, L"Radius", 0.1f},
          {16, L"InheritColour", 0},
          {17, L"InheritScale", 0},
          {18, L"DisplayStyle", 3},
          {19, L"HighlightStyle", 1},
          {20, L"RadialSegments", 16},
          {21, L"ArcSegments", 8}}},
        {L"AlignAxis", {{8, L"Axis", 0}, {9, L"Direction", 0}}},
        {L"FreezeTransform", {{8, L"FreezeTranslation", 1}, {9, L"FreezeRotation", 1}}},
        {L"GenerateTrajectory", {{8, L"ParentFrame", 0}, {9, L"SamplingFactor", 1}, {10, L"Visible", 1}}},
        {L"SampleTrajectoryUniformly", {{8, L"SegmentsNum", 100}}},
        {L"SampleTrajectoryAdaptively",
         {{8, L"ErrorTolerance", 0.001f},
          {9, L"MinSegmentsNum", 10},
          {10, L"TestSamplesNum", 5},
          {11, L"RefinementIterationsNum", 10}}},
        {L"FitTrajectory",
         {{8, L"PreprocessingNewSegmentsNum", 0},
          {9, L"ErrorTolerance", 0.001f},
          {10, L"MaxRefinementIterationsNum", 20},
          {11, L"MaxSamplesNumberToFit", 200},
          {12, L"RefinementsStepsNum", 2}}},
        {L"ImportFile",
         {{8, L"ImportMode", 0},
          {9, L"LinearUnits", 6},
          {10, L"AngularUnits", 2},
          {11, L"Characterize", 0},
          {12, L"ResetTimeline", 1},
          {13, L"File", 0}}},
        {L"ExportFile",
         {{8, L"LinearUnits", 6}, {9, L"AngularUnits", 2}, {10, L"ExportSelected", 0}, {11, L"File", 0}}}};
    auto const number = [](XAttribute const& a) {
        return a.IsBool() ? double(a.Boolean()) : a.IsEnum() ? a.Enumeration() : a.IsInt() ? a.Integer() : a.Float();
    };
    for (XCommandInfo const& command : XCommandCatalogue::List(settings())) {
        SCOPED_TRACE(Qelutils::toUtf8(command.name));
        XCommand const node(settings().Object(command.name));
        auto const found = table.find(command.name);
        std::vector<Row> const rows = found == table.end() ? std::vector<Row>() : found->second;
        bool const hasColour = node.HasAttribute(L"Colour");
        EXPECT_EQ(command.parameters.size(), rows.size() + (hasColour ? 1 : 0));
        EXPECT_EQ(hasColour, node.Attribute(command.name == L"GenerateTrajectory" ? 11 : 9).Name() == L"Colour");
        for (Row const& row : rows) {
            EXPECT_EQ(node.Attribute(row.number).Name(), row.name);
            EXPECT_EQ(number(node.Attribute(row.number)), row.value) << Qelutils::toUtf8(row.name);
        }
    }
}

TEST_F(Catalogue, WhereAnotherObjectHasTheNameACommandRunsOnANodeOfItsOwn) {
    XObject(settings().Object(L"CreateJoint")).SetName(L"Elsewhere", true);
    XObject taken = settings().CreateObject(XSceneSettings::TypeID);
    taken.SetName(L"CreateJoint", true);
    XCommandCatalogue::CreateNodes(settings());
    EXPECT_EQ(settings().Object(L"CreateJoint"), taken);
    scene().Selection().Clear();
    EXPECT_EQ(XJoint(run(L"CreateJoint")).TranslationX().Float(), 0.2f);
}

}  // namespace
}  // namespace Tavo
