#include "tests/objects/fixture.h"

namespace Tavo {
namespace {

using AttributeDisplay = ObjectModel;

TEST_F(AttributeDisplay, NamesReadAsTrailsOfWords) {
    struct {
        wchar_t const *name, *shown;
    } const table[] = {
        {L"Pose.Position", L"Pose > Position"},
        {L"translateX", L"translate X"},
        {L"IKHandle", L"IK Handle"},
        {L"XYZ", L"XYZ"},
        {L"Key[0]", L"Key [0]"},
        {L"x", L"x"},
        {L".", L"."},
        {L"", L""},
        {L"[0]", L"[0]"},
        {L"A1B", L"A1B"},
        {L"Layers[2].Colour.Red", L"Layers [2] > Colour > Red"},
        {L"RotationXYZOrder", L"Rotation XYZ Order"},
    };
    for (auto const& row : table) EXPECT_EQ(XAttribute::ConvertToDisplayName(row.name), row.shown);
}

TEST_F(AttributeDisplay, InternalNamesLoseTheirBlanksAndNothingElse) {
    EXPECT_EQ(XAttribute::ConvertToInternalName(L"translate X"), L"translateX");
    EXPECT_EQ(XAttribute::ConvertToInternalName(L"Pose > Position"), L"Pose>Position");
    EXPECT_EQ(XAttribute::ConvertToInternalName(L" "), L" ");
}

TEST_F(AttributeDisplay, ConciseNamesLeaveTheTrailOut) {
    XAttribute const a = XJoint(make(L"Joint")).RotationQuaternion().Attribute(0);
    EXPECT_EQ(a.ConciseDisplayName(), XAttribute::ConvertToDisplayName(a.Name()));
    EXPECT_EQ(a.DisplayName(), L"Rotation Quaternion > " + a.ConciseDisplayName());
}

TEST_F(AttributeDisplay, NumbersHaveTwoToFourDecimals) {
    XObject object = named(L"object");
    XAttribute a = object.AddFloatAttribute(L"f");
    struct {
        float value;
        wchar_t const* shown;
    } const table[] = {{2, L"2.00"},         {0.12345f, L"0.1235"}, {1.5f, L"1.50"},  {1.23456f, L"1.2346"},
                       {-0.125f, L"-0.125"}, {100, L"100.00"},      {1e-9f, L"0.00"}, {3.1f, L"3.10"}};
    for (auto const& row : table) EXPECT_EQ(a.SetFloat(row.value).DisplayValue(), row.shown);
}

TEST_F(AttributeDisplay, EachKindShowsItself) {
    XObject object = named(L"object");
    EXPECT_EQ(object.AddIntegerAttribute(L"i").SetInteger(-7).DisplayValue(), L"-7");
    EXPECT_EQ(object.AddBooleanAttribute(L"b", true).DisplayValue(), L"True");
    EXPECT_EQ(object.AddBooleanAttribute(L"c", false).DisplayValue(), L"False");
    EXPECT_EQ(object.AddStringAttribute(L"s", L"text").DisplayValue(), L"text");
    EXPECT_EQ(object.AddVectorAttribute(L"v").DisplayValue(), L"");
    EXPECT_EQ(XAttribute(object.getNode()->addDynamic(db::AttributeType::Double, L"d")).SetDouble(0.5).DisplayValue(),
              L"0.50");
    XAttribute style = XJoint(make(L"Joint")).LocatorStyle();
    EXPECT_EQ(style.SetEnumeration(2).DisplayValue(), L"Wireframe Axes");
}

// The number of an attribute's unit is read as a unit code: an angle, 5, as a length, and a length, 2, as nothing.
TEST_F(AttributeDisplay, UnitNumbersPassAsTheyAreSoThatAnAngleConvertsLikeALength) {
    time().LinearUnits().SetEnumeration(1);  // centimetres
    XJoint const joint(make(L"Joint"));
    XAttribute angle = joint.RotationX(), length = joint.TranslationX();
    ASSERT_EQ(angle.Units(), int(LengthUnit));
    angle.SetFloat(1.5f);
    EXPECT_FLOAT_EQ(angle.DisplayFloat(), 150);
    EXPECT_FLOAT_EQ(angle.AsDisplayFloat(), 150);
    EXPECT_FLOAT_EQ(angle.AsDisplayFloat(2), 200);
    EXPECT_FLOAT_EQ(angle.AsInternalFloat(200), 2);
    EXPECT_FLOAT_EQ(angle.SetDisplayFloat(30).Float(), 0.3f);
    EXPECT_EQ(angle.DisplayValue(), L"30.00");
    EXPECT_EQ(length.SetFloat(1.5f).DisplayFloat(), 1.5f);
    EXPECT_EQ(length.SetDisplayFloat(30).Float(), 30);
}

TEST_F(AttributeDisplay, DoublesKeepTheirDigits) {
    XAttribute a(named(L"object").getNode()->addDynamic(db::AttributeType::Double, L"d"));
    EXPECT_EQ(a.SetDisplayDouble(0.1).Double(), 0.1);
    EXPECT_EQ(a.DisplayDouble(), 0.1);
}

TEST_F(AttributeDisplay, WithoutADatabaseValuesStayAsTheyAre) {
    EXPECT_EQ(XAttribute().AsDisplayFloat(2), 2);
    EXPECT_EQ(XAttribute().DisplayDouble(), 0);
}

TEST_F(AttributeDisplay, FlagsDecideWhatTheInterfaceOffers) {
    XJoint const joint(make(L"Joint"));
    EXPECT_TRUE(joint.TranslationX().IsEditable() && joint.TranslationX().IsVisible());
    EXPECT_FALSE(joint.WorldMatrix().IsEditable()) << "an output is read-only";
    TestDocument document;
    XAttribute const a = XJoint(document.CreateObject(L"Joint")).TranslationX();
    document.editable = false;
    EXPECT_FALSE(a.IsEditable());
}

}  // namespace
}  // namespace Tavo
