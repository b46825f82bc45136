#include "tests/commands/fixture.h"
#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

// hips > (spine > chest, leg), and a curve without a place in space.
class ObjectFunctionsTest : public Scripts {
protected:
    ObjectFunctionsTest() {
        hips = make(L"hips", scene().RootObject());
        spine = make(L"spine", hips);
        chest = make(L"chest", spine);
        leg = make(L"leg", hips);
        run("hips = scene:object('Scene|hips') spine, leg = hips:child(1), hips:child(2) chest = spine:child(1)\n"
            "function names(list) local out = {} for i, o in ipairs(list) do out[i] = o:name() end\n"
            "return table.concat(out, ' ') end");
        log.clear();
    }

    static XJoint make(std::wstring const& name, XObject const& parent) {
        XJoint joint(scene().CreateObject(XJoint::TypeID, parent));
        joint.SetName(name);
        return joint;
    }
    static std::wstring selected() {
        std::wstring out;
        for (std::wstring const& path : scene().Selection().Paths()) out += (out.empty() ? L"" : L" ") + path;
        return out;
    }

    XJoint hips, spine, chest, leg;
};

// ---- what it is ----

TEST_F(ObjectFunctionsTest, SayWhatAnObjectIs) {
    EXPECT_EQ("true hips Joint", eval("return hips:isValid(), hips:name(), hips:type()"));
    EXPECT_EQ(Qelutils::toUtf8(spine.Path()), eval("return spine:path()"));
    EXPECT_EQ(std::to_string(hips.ObjectID()), eval("return hips:id()"));
}

TEST_F(ObjectFunctionsTest, TypesAreListedFromObjectToTheTypeItself) {
    EXPECT_EQ("Object SceneObject RenderObject Transform Joint", eval("return table.concat(hips:types(), ' ')"));
}

TEST_F(ObjectFunctionsTest, TypesAreComparedExactlyOrWithWhatTheyDeriveFrom) {
    EXPECT_EQ("true false true true false",
              eval("return hips:isType('Joint'), hips:isType('Transform'), hips:supportsType('Joint'), "
                   "hips:supportsType('Transform'), hips:supportsType('Camera')"));
}

// ---- life ----

TEST_F(ObjectFunctionsTest, CreateObjectMakesOneInTheSameScene) {
    EXPECT_EQ("Camera nil", eval("return hips:createObject('Camera'):type(), hips:createObject('NoSuchType')"));
}

TEST_F(ObjectFunctionsTest, CopyStandsBesideTheOriginal) {
    EXPECT_EQ("chest_copy true", eval("local c = chest:copy() return c:name(), c:parent() == spine"));
    EXPECT_EQ("head", eval("return chest:copy('head'):name()"));
}

TEST_F(ObjectFunctionsTest, DeleteTakesAlongWhatHangsBelow) {
    run("spine:delete()");
    EXPECT_FALSE(spine.IsValid());
    EXPECT_FALSE(chest.IsValid());
    EXPECT_TRUE(leg.IsValid());
}

TEST_F(ObjectFunctionsTest, DeletingWhatIsGoneSaysNothing) {
    EXPECT_EQ("false", eval("return spine:delete():delete():isValid()"));
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(ObjectFunctionsTest, RemoveKeepsTheChildren) {
    run("spine:remove()");
    EXPECT_FALSE(spine.IsValid());
    EXPECT_EQ(hips, chest.Parent());
}

TEST_F(ObjectFunctionsTest, AChildIsDeletedByNameOrByNumberFromOneOn) {
    run("hips:deleteChild(2)");
    EXPECT_FALSE(leg.IsValid());
    run("hips:deleteChild('spine')");
    EXPECT_FALSE(spine.IsValid());
}

TEST_F(ObjectFunctionsTest, DeletingNoChildChangesNothing) {
    run("hips:deleteChild(0) hips:deleteChild(3) hips:deleteChild(-2147483648) hips:deleteChild('arm') "
        "hips:deleteChild()");
    EXPECT_EQ(2, hips.ChildCount());
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(ObjectFunctionsTest, DeleteChildrenLeavesTheObject) {
    EXPECT_EQ("true 0", eval("return hips:deleteChildren():isValid(), hips:childCount()"));
}

TEST_F(ObjectFunctionsTest, NamesAreMadeUniqueAmongSiblings) {
    EXPECT_EQ("spine1", eval("return leg:setName('spine'):name()"));
    EXPECT_EQ("spine1", Qelutils::toUtf8(leg.Name()));
}

// ---- the hierarchy ----

TEST_F(ObjectFunctionsTest, ChildrenAreFoundByNameAndByNumberFromOneOn) {
    EXPECT_EQ("spine leg leg", eval("return hips:child(1):name(), hips:child(2):name(), hips:child('leg'):name()"));
    EXPECT_EQ("nil nil nil nil", eval("return hips:child(0), hips:child(3), hips:child('arm'), hips:child()"));
    EXPECT_EQ("2 true false", eval("return hips:childCount(), hips:hasChildren(), leg:hasChildren()"));
}

TEST_F(ObjectFunctionsTest, ChildrenAndDescendantsAreListed) {
    EXPECT_EQ("spine leg", eval("return names(hips:children())"));
    EXPECT_EQ("spine chest leg", eval("return names(hips:descendants())"));
}

TEST_F(ObjectFunctionsTest, ListsOfATypeTakeDerivedTypesIfToldSo) {
    EXPECT_EQ("spine leg", eval("return names(hips:children('Joint'))"));
    EXPECT_EQ("0 2", eval("return #hips:children('Transform'), #hips:children('Transform', true)"));
    EXPECT_EQ("0 3 3", eval("return #hips:descendants('Transform'), #hips:descendants('Transform', true), "
                            "#hips:descendants('Joint')"));
}

TEST_F(ObjectFunctionsTest, TheParentIsNilForWhatHangsBelowNothing) {
    EXPECT_EQ("hips Scene nil", eval("return spine:parent():name(), hips:parent():name(), "
                                     "scene:object('SceneSettings'):parent()"));
    EXPECT_EQ("true false", eval("return spine:hasParent(), scene:object('SceneSettings'):hasParent()"));
}

TEST_F(ObjectFunctionsTest, SetParentTakesAnObjectOrItsPath) {
    run("leg:setParent(chest)");
    EXPECT_EQ(chest, leg.Parent());
    run("leg:setParent('Scene|hips|spine')");
    EXPECT_EQ(spine, leg.Parent());
    run("leg:unparent()");
    EXPECT_EQ(scene().RootObject(), leg.Parent());
}

TEST_F(ObjectFunctionsTest, SetParentKeepsThePlaceInTheWorldUnlessToldOtherwise) {
    run("chest:setTranslation(0, 5, 0) leg:setTranslation(1, 2, 3)");
    EXPECT_EQ("(1, 2, 3)", eval("return leg:setParent(chest):worldTranslation()"));
    EXPECT_EQ("(1, -3, 3)", eval("return leg:setParent(hips, false):worldTranslation()"));
}

TEST_F(ObjectFunctionsTest, WhatMayBeNoParentChangesNothing) {
    run("hips:setParent(chest) hips:setParent(hips) leg:setParent() leg:setParent('no such path')");
    EXPECT_EQ(scene().RootObject(), hips.Parent());
    EXPECT_EQ(hips, leg.Parent());
    run("local gone = chest:delete() leg:setParent(gone)");
    EXPECT_EQ(hips, leg.Parent());
}

TEST_F(ObjectFunctionsTest, AnObjectOfAnotherDocumentIsNoParent) {
    XObject const command = application().Settings().Object(L"Undo");
    ASSERT_TRUE(command.IsValid());
    lua().PushObject(command);
    lua().State()->SetGlobal("command", lua().State()->Stack(-1));
    lua().State()->Pop();
    run("leg:setParent(command)");
    EXPECT_EQ(hips, leg.Parent());
}

// ---- attributes ----

TEST_F(ObjectFunctionsTest, AttributesAreFoundByNameAndByNumberFromOneOn) {
    EXPECT_EQ("TranslationX", eval("return hips:attribute('TranslationX'):name()"));
    EXPECT_EQ(Qelutils::toUtf8(hips.Attribute(0).Name()), eval("return hips:attribute(1):name()"));
    EXPECT_EQ("true false", eval("return hips:hasAttribute('TranslationX'), hips:hasAttribute('Nothing')"));
}

TEST_F(ObjectFunctionsTest, AnUnknownAttributeIsAnInvalidOne) {
    EXPECT_EQ("-1 -1 -1 -1", eval("return hips:attribute('Nothing').__sceneID, hips:attribute(0).__sceneID, "
                                  "hips:attribute(9999).__sceneID, hips:attribute().__sceneID"));
}

TEST_F(ObjectFunctionsTest, AttributesAreListedAndCounted) {
    int const count = hips.AttributeCount();
    EXPECT_EQ(std::to_string(count) + " " + std::to_string(count),
              eval("return hips:attributeCount(), #hips:attributes()"));
    EXPECT_EQ("true", eval("return hips:attributes()[3] == hips:attribute(3)"));
}

TEST_F(ObjectFunctionsTest, CustomAttributesHaveTheirInitialValues) {
    run("hips:addCustomBool('flag', true) hips:addCustomFloat('weight', 0.5, 0, 1) hips:addCustomInteger('count', 3)"
        "hips:addCustomString('label', 'front') hips:addCustomVector('offset', 1, 2, 3)"
        "local m = hips:setTranslation(4, 5, 6):matrix() hips:addCustomMatrix('bind', m)");
    EXPECT_TRUE(hips.Attribute(L"flag").Boolean());
    EXPECT_FLOAT_EQ(0.5f, hips.Attribute(L"weight").Float());
    EXPECT_EQ(3, hips.Attribute(L"count").Integer());
    EXPECT_EQ(L"front", hips.Attribute(L"label").String());
    EXPECT_EQ(XVector3(1, 2, 3), hips.Attribute(L"offset").Vector());
    EXPECT_EQ(XVector3(4, 5, 6), hips.Attribute(L"bind").Matrix().Translation());
    EXPECT_EQ(6, hips.CustomAttributeCount());
}

TEST_F(ObjectFunctionsTest, CustomAttributesStartFromZeroWhereNothingIsSaid) {
    run("hips:addCustomFloat('weight') hips:addCustomInteger('count') hips:addCustomString('label')");
    EXPECT_EQ(0, hips.Attribute(L"weight").Float());
    hips.Attribute(L"weight").SetFloat(-1e30f);
    EXPECT_FLOAT_EQ(-1e30f, hips.Attribute(L"weight").Float());
    hips.Attribute(L"count").SetInteger(-2000000000);
    EXPECT_EQ(-2000000000, hips.Attribute(L"count").Integer());
    EXPECT_EQ(L"", hips.Attribute(L"label").String());
}

TEST_F(ObjectFunctionsTest, CustomAttributesMayBeArrays) {
    run("hips:addCustomBool('a', false, true) hips:addCustomFloat('b', 0, 0, 1, true) "
        "hips:addCustomInteger('c', 0, 0, 9, true) hips:addCustomString('d', '', true) "
        "hips:addCustomVector('e', {}, true) hips:addCustomMatrix('f', nil, true)");
    for (wchar_t const* name : {L"a", L"b", L"c", L"d", L"e", L"f"})
        EXPECT_TRUE(hips.Attribute(name).IsArrayAttribute()) << Qelutils::toUtf8(name);
}

TEST_F(ObjectFunctionsTest, ATakenOrEmptyNameGivesNoAttribute) {
    EXPECT_EQ("-1 -1", eval("return hips:addCustomFloat('TranslationX').__sceneID, hips:addCustomBool().__sceneID"));
    EXPECT_EQ(0, hips.CustomAttributeCount());
}

TEST_F(ObjectFunctionsTest, ACustomAttributeIsAFieldFromThenOn) {
    EXPECT_EQ("nil weight", eval("local before = hips.weight hips:addCustomFloat('weight') "
                                 "return before, hips.weight:name()"));
}

// ---- the selection ----

TEST_F(ObjectFunctionsTest, SelectIsAloneAndSelectAppendIsNot) {
    run("hips:select() leg:select()");
    EXPECT_EQ(leg.Path(), selected());
    run("spine:selectAppend()");
    EXPECT_EQ(leg.Path() + L" " + spine.Path(), selected());
    EXPECT_EQ("false true true", eval("return hips:isSelected(), leg:isSelected(), spine:isSelected()"));
    run("leg:deselect()");
    EXPECT_EQ(spine.Path(), selected());
}

TEST_F(ObjectFunctionsTest, SelectingWhatIsGoneKeepsTheSelection) {
    run("leg:select() local gone = chest:delete() gone:select() gone:selectAppend() gone:deselect()");
    EXPECT_EQ(leg.Path(), selected());
}

TEST_F(ObjectFunctionsTest, AnObjectIsSelectedInItsOwnScene) {
    int const other = application().AddScene();
    run("local far = scene:createObject('Joint') far:select() hips:select()");
    EXPECT_EQ(1, application().GetScene(0).Selection().Count());
    EXPECT_EQ(1, application().GetScene(other).Selection().Count());
    EXPECT_EQ("true", eval("return hips:isSelected()"));
}

// ---- what is drawn ----

TEST_F(ObjectFunctionsTest, AColourIsFourNumbersOrAListOfFour) {
    EXPECT_EQ("0.25 0.5 0.75 1.0", eval("return table.concat(hips:setColour(0.25, 0.5, 0.75):colour(), ' ')"));
    run("hips:setColour(0.25, 0.5, 0.75, 0.125)");
    EXPECT_EQ(XColour(0.25f, 0.5f, 0.75f, 0.125f), hips.ColourValue());
    run("leg:setColour(hips:colour())");
    EXPECT_EQ(hips.ColourValue(), leg.ColourValue());
    run("hips:setColour()");
    EXPECT_EQ(XColour(0, 0, 0, 1), hips.ColourValue());
}

TEST_F(ObjectFunctionsTest, AListOfAnotherLengthIsNoColour) {
    XColour const before = hips.ColourValue();
    std::string const message =
        "script:2: RenderObject:setColour: a colour is red, green, blue and alpha: four numbers, or a list of four";
    EXPECT_EQ(message, failure("hips:setColour({1, 2, 3})"));
    EXPECT_EQ(message, failure("hips:setColour({x = 1, y = 2, z = 3})"));
    EXPECT_EQ("script:2: RenderObject:setColour: argument 1 (red) must be a list of numbers, not boolean",
              failure("hips:setColour(true)"));
    EXPECT_EQ("script:2: RenderObject:setColour: argument 2 (green) must be a number, not string",
              failure("hips:setColour(1, 'green')"));
    EXPECT_EQ(before, hips.ColourValue());
}

TEST_F(ObjectFunctionsTest, VisibilityIsSetAndRead) {
    EXPECT_EQ("true false", eval("return hips:visible(), hips:setVisible(false):visible()"));
    EXPECT_FALSE(hips.Visible().Boolean());
}

// Attributes go by number, and the same numbers mean something else in another type.
TEST_F(ObjectFunctionsTest, AFunctionOfAnotherTypeDoesNothing) {
    std::string const before = documentBytes(scene());
    run("local settings = scene:object('SceneSettings') hips.setVisible(settings, false) "
        "hips.setColour(settings, 1, 2, 3) hips.setTranslation(settings, 1, 2, 3) hips.setRotationOrder(settings, 2)");
    EXPECT_EQ(before, documentBytes(scene()));
    EXPECT_EQ("false", eval("return hips.visible(scene:object('SceneSettings'))"));
}

}  // namespace
}  // namespace Tavo
