// What is selected.
#include "tests/commands/fixture.h"
#include <algorithm>

namespace Tavo {
namespace {

class SelectionCommands : public CommandTest {
protected:
    using Objects = std::vector<XObject>;
    static Objects after(std::wstring const& command, Objects const& objects) {
        select(objects);
        run(command);
        return selected();
    }
    static Objects objectsOf(XWord const& type) {
        Qelutils::Vector<XObject> out;
        scene().Objects(type, SupportsObjectType, out);
        return {out.begin(), out.end()};
    }
    static void edit(int mode) { scene().Selection().SubEntityType().SetInteger(mode); }
};

TEST_F(SelectionCommands, AllAreTheTransformsAndThenTheShapes) {
    Objects expected = objectsOf(XTransform::TypeID), shapes = objectsOf(XShape::TypeID);
    expected.insert(expected.end(), shapes.begin(), shapes.end());
    ASSERT_TRUE(std::find(expected.begin(), expected.end(), box) != expected.end());
    EXPECT_EQ(after(L"SelectAll", {leg}), expected);
}

TEST_F(SelectionCommands, SelectAllEndsTheEditOfParts) {
    select({leg});
    edit(2);
    run(L"SelectAll");
    EXPECT_EQ(scene().Selection().SubEntityType().Integer(), 0);
    EXPECT_GT(selected().size(), 5u);
}

TEST_F(SelectionCommands, ClearingIsAStepLikeAnyOther) {
    select({spine, leg});
    int const before = undoCount();
    run(L"ClearSelection");
    EXPECT_TRUE(selected().empty());
    EXPECT_EQ(undoCount(), before + 1);
    undo();
    EXPECT_EQ(selected(), (Objects{spine, leg}));
}

TEST_F(SelectionCommands, ParentsTakeThePlaceOfAllEachOnce) {
    EXPECT_EQ(after(L"SelectParent", {chest, box}), (Objects{spine, prop}));
    EXPECT_EQ(after(L"SelectParent", {spine, leg}), Objects{hips});
    EXPECT_EQ(after(L"SelectParent", {spine, chest}), (Objects{hips, spine}));
}

TEST_F(SelectionCommands, WhereNothingHasAParentTheSelectionStands) {
    EXPECT_EQ(after(L"SelectParent", {scene().RootObject()}), Objects{scene().RootObject()});
    EXPECT_EQ(after(L"SelectParent", {}), Objects{});
    EXPECT_EQ(after(L"SelectParent", {scene().RootObject(), chest}), Objects{spine});
}

TEST_F(SelectionCommands, FirstChildrenTakeThePlaceOfAll) {
    EXPECT_EQ(after(L"SelectChild", {hips, prop}), (Objects{spine, box}));
    EXPECT_EQ(after(L"SelectChild", {hips, chest}), Objects{spine});
    EXPECT_EQ(after(L"SelectChild", {chest, leg}), (Objects{chest, leg}));
}

// Below a joint without curves: those are siblings as well.
TEST_F(SelectionCommands, SiblingsFollowInARing) {
    XObject const a = scene().CreateObject(XJoint::TypeID, leg), b = scene().CreateObject(XJoint::TypeID, leg);
    EXPECT_EQ(after(L"SelectNext", {a}), Objects{b});
    EXPECT_EQ(after(L"SelectNext", {b}), Objects{a});
    EXPECT_EQ(after(L"SelectPrevious", {a}), Objects{b});
    EXPECT_EQ(after(L"SelectPrevious", {b}), Objects{a});
    EXPECT_EQ(after(L"SelectNext", {a, b}), (Objects{b, a}));
    run(L"SelectPrevious");
    EXPECT_EQ(selected(), (Objects{a, b}));
}

TEST_F(SelectionCommands, AnOnlyChildStaysSelected) {
    XObject const only = scene().CreateObject(XJoint::TypeID, leg);
    EXPECT_EQ(after(L"SelectNext", {only}), Objects{only});
    EXPECT_EQ(after(L"SelectPrevious", {box}), Objects{box});
    XObject const a = scene().CreateObject(XJoint::TypeID, prop);
    EXPECT_EQ(after(L"SelectNext", {only, a}), Objects{box});
}

// What hangs below an animated joint are its curves too, and nothing forbids that they are selected.
TEST_F(SelectionCommands, CurvesAreSiblingsLikeOthers) {
    EXPECT_TRUE(XAnimation(after(L"SelectNext", {chest}).front()).IsValid());
}

// The root of the scene stands among the tools, which cannot be selected.
TEST_F(SelectionCommands, SiblingsThatCannotBeSelectedArePassedOver) {
    for (wchar_t const* command : {L"SelectNext", L"SelectPrevious"}) {
        select({scene().RootObject()});
        for (int i = 0; i < scene().RootObject().SiblingCount() + 1; ++i) {
            run(command);
            ASSERT_EQ(selected().size(), 1u);
            EXPECT_FALSE(XTool(selected().front()).SupportsType(XTool::TypeID));
        }
    }
}

TEST_F(SelectionCommands, NoneStepsWhilePartsAreEdited) {
    select({spine});
    edit(1);
    for (wchar_t const* command : {L"SelectParent", L"SelectChild", L"SelectNext", L"SelectPrevious"}) {
        run(command);
        EXPECT_EQ(selected(), Objects{spine}) << Qelutils::toUtf8(command);
        EXPECT_EQ(scene().Selection().EditMode(), 1) << Qelutils::toUtf8(command);
    }
}

TEST_F(SelectionCommands, ActOnTheSelectionOfTheSceneThatIsAsked) {
    select({spine});
    XScene& first = scene();
    application().AddScene();
    first.Selection().Select(spine);
    first.RunCommand(L"ClearSelection");
    EXPECT_EQ(first.Selection().Count(), 0);
}

}  // namespace
}  // namespace Tavo
