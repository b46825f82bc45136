#include "tavo/extension/lua/script_sets.h"
#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

// A joint, `joint` in scripts; its attributes of other kinds are custom ones. The objects of other kinds of attributes
// are made where they are needed.
class AttributeFunctionsTest : public Scripts {
protected:
    AttributeFunctionsTest() {
        run("joint = scene:createObject('Joint')");
        joint = scene().Object(L"Scene|joint");
    }
    XAttribute custom(db::AttributeType type, wchar_t const* name) { return joint.getNode()->addDynamic(type, name); }
    // Of a curve, whose arrays are there for everybody.
    XAnimation curve(wchar_t const* attribute = L"TranslationX") { return joint.Attribute(attribute).Animation(); }
    void giveCurve() {
        XAnimation made = joint.Attribute(L"TranslationX").CreateAnimation();
        for (float x : {1.F, 2.F, 3.F, 4.F}) made.SetKeyframe(x, 10 * x);
        run("curve = joint.TranslationX:inputObject()");
    }
    std::vector<float> floats(XAttribute const& array) {
        Qelutils::Vector<float> out;
        array.Floats(out);
        return {out.begin(), out.end()};
    }
    std::vector<float> inputs() { return floats(curve().KeyframeInputValues()); }
    std::vector<float> outputs() { return floats(curve().KeyframeOutputValues()); }

    XObject joint;
};
using Floats = std::vector<float>;

// ---- identity ----

TEST_F(AttributeFunctionsTest, TellsWhatItIs) {
    XAttribute const x = joint.Attribute(L"TranslationX");
    EXPECT_EQ(std::to_string(x.AttributeID()) +
                  " true TranslationX Translation X Scene|joint.TranslationX Float linear",
              eval("local a = joint.TranslationX return a:id(), a:isValid(), a:name(), a:displayName(), a:path(), "
                   "a:type(), a:units()"));
    EXPECT_EQ("true", eval("return joint.TranslationX:object() == joint"));
}

TEST_F(AttributeFunctionsTest, TellsWhatCanBeDoneWithIt) {
    EXPECT_EQ("true true false false false true false",
              eval("local a = joint.TranslationX return a:isEditable(), a:isVisible(), a:isConnected(), "
                   "a:isArrayAttribute(), a:isAttributeArray(), a:isAnimatable(), a:isAnimated()"));
    giveCurve();
    EXPECT_EQ("true true", eval("return joint.TranslationX:isConnected(), joint.TranslationX:isAnimated()"));
    EXPECT_EQ("true FloatArrat",
              eval("return curve.KeyframeInputValues:isArrayAttribute(), curve.KeyframeInputValues:type()"));
}

TEST_F(AttributeFunctionsTest, AnAttributeOfADeletedObjectGivesNothingAndTakesNothing) {
    run("kept = joint.TranslationX");
    joint.Delete();
    EXPECT_EQ(
        "false -1    nil nil 0 0 nil nil",
        eval("kept:set(5):add(1):insert(1, 1):delete(1):setSize(3):clear():disconnect():clearKeys() "
             "return kept:isValid(), kept:id(), kept:name(), kept:path(), kept:type(), kept:get(), kept:object(), "
             "kept:size(), kept:keyCount(), kept:setKey(1, 2), kept:setKey()"));
    EXPECT_EQ("false false nil  0", eval("return kept:connect(kept), kept:attribute(1):isValid(), kept:keyAtIndex(1), "
                                         "kept:preExtrapolation(), #kept:curvePoints(0, 1)"));
    EXPECT_TRUE(log.errors().empty());
}

// ---- single values ----

TEST_F(AttributeFunctionsTest, NumbersComeAndGo) {
    EXPECT_EQ("1.5", eval("return joint.TranslationX:set(1.5):get()"));
    EXPECT_EQ(1.5F, joint.Attribute(L"TranslationX").Float());
    custom(db::AttributeType::Double, L"Wide");
    custom(db::AttributeType::Integer, L"Whole");
    EXPECT_EQ("0.1 7", eval("return joint.Wide:set(0.1):get(), joint.Whole:set(7.0):get()"));
    EXPECT_EQ(7, joint.Attribute(L"Whole").Integer());
    EXPECT_EQ("integer", eval("return math.type(joint.Whole:get())"));
}

TEST_F(AttributeFunctionsTest, BooleansAreTakenFromNumbersToo) {
    EXPECT_EQ("false true", eval("return joint.Visible:set(false):get(), joint.Visible:set(1):get()"));
}

TEST_F(AttributeFunctionsTest, TextsAreUtf8) {
    XAttribute const label = custom(db::AttributeType::String, L"Label");
    EXPECT_EQ("grün", eval("return joint.Label:set('grün'):get()"));
    EXPECT_EQ(L"gr\u00fcn", label.String());
    EXPECT_EQ("12", eval("return joint.Label:set(12):get()"));
}

TEST_F(AttributeFunctionsTest, EnumerationsAreWordsAndTakeNumbersToo) {
    EXPECT_EQ("ZYX YXZ", eval("local a = joint.RotationEulerOrder return a:set('ZYX'):get(), a:set(2):get()"));
    EXPECT_EQ(2, joint.Attribute(L"RotationEulerOrder").Enumeration());
}

TEST_F(AttributeFunctionsTest, AnEnumerationRefusesWhatItDoesNotKnow) {
    std::string const wanted =
        "script:2: Attribute:set: argument 1 (value) for Scene|joint.RotationEulerOrder must be one of "
        "XYZ, XZY, YXZ, YZX, ZXY, ZYX or a number from 0 to 5, not ";
    EXPECT_EQ(wanted + "string", failure("joint.RotationEulerOrder:set('ABC')"));
    EXPECT_EQ(wanted + "6", failure("joint.RotationEulerOrder:set(6)"));
    EXPECT_EQ(wanted + "boolean", failure("joint.RotationEulerOrder:set(true)"));
    EXPECT_EQ(0, joint.Attribute(L"RotationEulerOrder").Enumeration());
}

TEST_F(AttributeFunctionsTest, VectorsQuaternionsAndMatricesAreTables) {
    custom(db::AttributeType::Vector3, L"V");
    custom(db::AttributeType::Quaternion, L"Q");
    custom(db::AttributeType::Matrix, L"M");
    EXPECT_EQ("(1, 2, 3) (4, 5, 6) (0, 7, 0)",
              eval("return joint.V:set({1, 2, 3}):get(), joint.V:set(4, 5, 6):get(), joint.V:set({y = 7}):get()"));
    EXPECT_EQ("(0, 0, 1, 0) (1, 0, 0, 0)",
              eval("return joint.Q:set({0, 0, 1, 0}):get(), joint.Q:set(1, 0, 0, 0):get()"));
    EXPECT_EQ("(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1)",
              eval("return joint.M:set({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1}):get()"));
    EXPECT_EQ("true", eval("return joint.M:set(joint.M:get()):get()[13] == 7"));
}

TEST_F(AttributeFunctionsTest, ReferencesAreObjectsOrAttributes) {
    run("group = scene:createObject('SelectionGroup') parent = group.ParentGroupReference");
    EXPECT_EQ("nil true true nil",
              eval("return parent:get(), parent:set(joint):get() == joint, parent:set('Scene|joint'):get() == joint, "
                   "parent:set():get()"));
    EXPECT_EQ(
        "TranslationX TranslationY",
        eval(
            "return parent:set(joint.TranslationX):get():name(), parent:set('Scene|joint.TranslationY'):get():name()"));
}

TEST_F(AttributeFunctionsTest, AReferenceRefusesWhatIsNoObjectOfItsScene) {
    run("group = scene:createObject('SelectionGroup') parent = group.ParentGroupReference:set(joint)");
    std::string const start =
        "script:2: Attribute:set: argument 1 (value) for SelectionGroup.ParentGroupReference must be ";
    EXPECT_EQ(start + "an object, its path or nil, not 5", failure("parent:set(5)"));
    EXPECT_EQ(start + "an object, its path or nil, not table", failure("parent:set({})"));
    EXPECT_EQ(start + "the path of an object, not string", failure("parent:set('nowhere')"));
    EXPECT_EQ(start + "an object of the same scene, not table",
              failure("parent:set({__sceneID = 123456, __objectID = 1})"));
    EXPECT_EQ("true", eval("return parent:get() == joint"));
}

TEST_F(AttributeFunctionsTest, AWrongKindNamesFunctionArgumentAndPath) {
    std::string const start =
        "script:2: Attribute:set: argument 1 (value) for Scene|joint.TranslationX must be a finite number";
    EXPECT_EQ(start + ", not boolean", failure("joint.TranslationX:set(true)"));
    EXPECT_EQ(start + ", not string", failure("joint.TranslationX:set('far')"));
    EXPECT_EQ(start + ", not table", failure("joint.TranslationX:set({1})"));
    EXPECT_EQ(start + ", not inf", failure("joint.TranslationX:set(math.huge)"));
    EXPECT_EQ(start + ", not 1e+300", failure("joint.TranslationX:set(1e300)"));
    EXPECT_NE(std::string::npos, failure("joint.TranslationX:set(0/0)").find("nan"));
    EXPECT_EQ(0, joint.Attribute(L"TranslationX").Float());
}

TEST_F(AttributeFunctionsTest, EachKindRefusesOthers) {
    custom(db::AttributeType::Integer, L"Whole");
    custom(db::AttributeType::String, L"Label");
    custom(db::AttributeType::Vector3, L"V");
    custom(db::AttributeType::Quaternion, L"Q");
    custom(db::AttributeType::Matrix, L"M");
    std::string const start = "script:2: Attribute:set: argument 1 (value) for Scene|joint.";
    EXPECT_EQ(start + "Whole must be a whole number that fits 32 bits, not 1.5", failure("joint.Whole:set(1.5)"));
    EXPECT_EQ(start + "Whole must be a whole number that fits 32 bits, not 4294967296",
              failure("joint.Whole:set(1 << 32)"));
    EXPECT_EQ(start + "Visible must be true or false, not string", failure("joint.Visible:set('yes')"));
    EXPECT_EQ(start + "Label must be a text, not table", failure("joint.Label:set({})"));
    EXPECT_EQ(start + "V must be a vector, not boolean", failure("joint.V:set(true)"));
    EXPECT_EQ(start + "V must be a vector, not table", failure("joint.V:set(joint)"));
    EXPECT_EQ(start + "V must be a table or 3 numbers, not no value", failure("joint.V:set(1, 2)"));
    EXPECT_EQ(start + "V must be a vector of finite numbers, not table", failure("joint.V:set({0/0, 1, 2})"));
    EXPECT_EQ(start + "Q must be a quaternion, not string", failure("joint.Q:set('q')"));
    EXPECT_EQ(start + "M must be a matrix of 16 numbers, not table", failure("joint.M:set({1, 2})"));
}

TEST_F(AttributeFunctionsTest, AMissingValueIsTheEmptyOne) {
    EXPECT_EQ("0.0 false XYZ", eval("return joint.TranslationX:set(5):set():get(), joint.Visible:set():get(), "
                                    "joint.RotationEulerOrder:set('ZYX'):set():get()"));
}

TEST_F(AttributeFunctionsTest, WhatCanNotBeEditedStaysAsItIs) {
    run("joint.TranslationX:set(1)");
    scene().SetSceneMode(ReadOnlyMode);
    run("joint.TranslationX:set(5):setKey(1, 2)");
    EXPECT_EQ(1, joint.Attribute(L"TranslationX").Float());
    EXPECT_FALSE(joint.Attribute(L"TranslationX").IsAnimated());
}

TEST_F(AttributeFunctionsTest, ASingleValueIgnoresTheIndexAndIsNoArray) {
    EXPECT_EQ("5.0 5.0 0",
              eval("local a = joint.TranslationX:set(5, 9) a:add(7):insert(7, 1):delete(1):setSize(4):clear() "
                   "return a:get(), a:get(3), a:size()"));
}

TEST_F(AttributeFunctionsTest, AnUndoTakesBackAllThatAScriptSet) {
    run("for i = 1, 100 do joint.TranslationX:set(i) end");
    scene().Undo();
    EXPECT_EQ(0, joint.Attribute(L"TranslationX").Float());
}

// ---- arrays ----

TEST_F(AttributeFunctionsTest, AnArrayIsAListAndItsValuesCountFromOne) {
    giveCurve();
    EXPECT_EQ("10.0 20.0 30.0 40.0", eval("return table.unpack(curve.KeyframeOutputValues:get())"));
    EXPECT_EQ("4 10.0 40.0 nil nil nil",
              eval("local a = curve.KeyframeOutputValues return a:size(), a:get(1), a:get(4), a:get(5), a:get(0), "
                   "a:get(math.mininteger >> 33)"));
}

TEST_F(AttributeFunctionsTest, AnElementIsWrittenByItsIndexOrElseTheFirst) {
    giveCurve();
    run("curve.KeyframeOutputValues:set(7, 2):set(5):set(9, 5):set(9, 0):set(9, -1)");
    EXPECT_EQ((Floats{5, 7, 30, 40}), outputs());
}

TEST_F(AttributeFunctionsTest, AListIsWrittenAsAWhole) {
    giveCurve();
    run("curve.KeyframeOutputValues:set({4, 5, 6, 7}) curve.KeyframeInterpolations:set({'spline', 1, 'constant', 0})");
    EXPECT_EQ((Floats{4, 5, 6, 7}), outputs());
    EXPECT_EQ("spline linear constant constant", eval("return table.unpack(curve.KeyframeInterpolations:get())"));
}

TEST_F(AttributeFunctionsTest, AListWithAWrongValueChangesNothing) {
    giveCurve();
    std::string const path = Qelutils::toUtf8(curve().KeyframeOutputValues().Path());
    EXPECT_EQ("script:2: Attribute:set: entry 3 of argument 1 (value) for " + path +
                  " must be a finite number, not boolean",
              failure("curve.KeyframeOutputValues:set({1, 2, true})"));
    EXPECT_EQ((Floats{10, 20, 30, 40}), outputs());
}

TEST_F(AttributeFunctionsTest, ListsOfEveryKindComeBack) {
    for (auto const& [type, name, list] :
         {std::tuple{db::AttributeType::DoubleArray, L"D", "{0.5, 2.5}"},
          {db::AttributeType::IntegerArray, L"I", "{3, 4}"},
          {db::AttributeType::BooleanArray, L"B", "{true, false}"},
          {db::AttributeType::StringArray, L"S", "{'a', 'b'}"},
          {db::AttributeType::Vector3Array, L"V", "{{1, 2, 3}, {4, 5, 6}}"},
          {db::AttributeType::QuaternionArray, L"Q", "{{0, 0, 0, 1}, {1, 0, 0, 0}}"}}) {
        custom(type, name);
        std::string const a = "joint." + Qelutils::toUtf8(name);
        EXPECT_EQ("true",
                  eval("local function show(list) local s = '' for i, v in ipairs(list) do "
                       "s = s .. (type(v) == 'table' and table.concat(v, ',') or tostring(v)) .. ';' end "
                       "return s end\nlocal a = " +
                       a + ":set(" + list + ") local first = show(a:get()) assert(a:size() == 2) a:set(a:get()) " +
                       "return first == show(a:get()) and first ~= ''"))
            << a;
        EXPECT_EQ("0", eval("return " + a + ":set({}):size()")) << a;
    }
}

TEST_F(AttributeFunctionsTest, AMatrixArrayTakesOneMatrixOrAListOfThem) {
    custom(db::AttributeType::MatrixArray, L"M");
    run("one = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1}");
    EXPECT_EQ("1 2 9.0", eval("local a = joint.M:set(one) local first = a:size() a:set({one, one}) "
                              "return first, a:size(), a:get(2)[15]"));
}

TEST_F(AttributeFunctionsTest, AVectorIsNoListOfVectors) {
    custom(db::AttributeType::Vector3Array, L"V");
    EXPECT_EQ("1 (1, 2, 3)", eval("local a = joint.V:set({1, 2, 3}) return a:size(), a:get(1)"));
    EXPECT_EQ("(1, 2, 3) (7, 8, 9)", eval("joint.V:add(4, 5, 6):set(7, 8, 9, 2) return table.unpack(joint.V:get())"));
}

TEST_F(AttributeFunctionsTest, AListOfReferencesHasFalseForNone) {
    run("group = scene:createObject('SelectionGroup') list = group.ChildGroupReferenceArray");
    EXPECT_EQ("3 true false true", eval("list:set({joint, false, 'Scene|joint'}) local all = list:get() "
                                        "return #all, all[1] == joint, all[2], all[3] == joint"));
    EXPECT_EQ("nil 4 true", eval("list:add(group) return list:get(2), list:size(), list:get(4) == group"));
    EXPECT_EQ("1 true", eval("list:set(joint, 1):setSize(1) return list:size(), list:get(1) == joint"));
}

TEST_F(AttributeFunctionsTest, ArraysGrowAndShrink) {
    giveCurve();
    run("a = curve.KeyframeOutTangentsX");
    run("a:clear():add(1):add(3):insert(2, 2):insert(0)");
    EXPECT_EQ((Floats{0, 1, 2, 3}), floats(curve().KeyframeOutTangentsX()));
    run("a:insert(9, 7):delete(2):delete():delete(9)");
    EXPECT_EQ((Floats{2, 3}), floats(curve().KeyframeOutTangentsX()));
    run("a:setSize(3):setSize(-1)");
    EXPECT_EQ((Floats{2, 3, 0}), floats(curve().KeyframeOutTangentsX()));
    EXPECT_EQ("0", eval("return a:clear():size()"));
}

TEST_F(AttributeFunctionsTest, AnAbsurdSizeIsRefused) {
    giveCurve();
    EXPECT_EQ("script:2: Attribute:setSize: argument 1 (count) must be at most 16777216",
              failure("curve.KeyframeInputValues:setSize(2147483647)"));
    EXPECT_EQ(4, curve().KeyframeCount());
}

TEST_F(AttributeFunctionsTest, AnIndexThatIsNoWholeNumberIsRefused) {
    giveCurve();
    EXPECT_EQ("script:2: Attribute:set: argument 2 (index) must be a whole number, not 1.5",
              failure("curve.KeyframeInputValues:set(1, 1.5)"));
    EXPECT_EQ("script:2: Attribute:insert: argument 2 (index) must be a whole number, not string",
              failure("curve.KeyframeInputValues:insert(1, 'x')"));
}

// ---- composites ----

TEST_F(AttributeFunctionsTest, ACompositeIsTheListOfItsParts) {
    EXPECT_EQ("0.5 0.25 1.0 1.0", eval("return table.unpack(joint.Colour:set({0.5, 0.25, 1, 1}):get())"));
    EXPECT_EQ("0.25 nil", eval("return joint.Colour:get(2), joint.Colour:get(5)"));
    EXPECT_EQ(0.25F, joint.Attribute(L"Colour").Attribute(1).Float());
}

TEST_F(AttributeFunctionsTest, AWrongPartChangesNoneOfThem) {
    run("joint.Colour:set({0.5, 0.5, 0.5, 0.5})");
    EXPECT_NE("", failure("joint.Colour:set({1, 1, 'red'})"));
    EXPECT_NE("", failure("joint.Colour:set({1, 1, 1, 1, 1})"));
    EXPECT_NE("", failure("joint.Colour:set(1)"));
    EXPECT_EQ("script:2: Attribute:set: Scene|joint.Colour is not set as a whole", failure("joint.Colour:set()"));
    EXPECT_EQ("0.5 0.5 0.5 0.5", eval("return table.unpack(joint.Colour:get())"));
}

TEST_F(AttributeFunctionsTest, PartsAreReachedByIndexAndName) {
    std::string const red = Qelutils::toUtf8(joint.Attribute(L"Colour").Attribute(0).Name());
    EXPECT_EQ("4 " + red + " " + red + " false",
              eval("local c = joint.Colour return c:attributeCount(), c:attribute(1):name(), c:attribute('" + red +
                   "'):name(), c:attribute(0):isValid()"));
    EXPECT_EQ("0", eval("return joint.TranslationX:attributeCount()"));
}

TEST_F(AttributeFunctionsTest, AnArrayOfAttributesGrowsByElements) {
    run("array = scene:createObject('IKSolver').InputTargets:clear()");
    EXPECT_EQ("true 2 2 table", eval("array:add():insert(nil, 1) return array:isAttributeArray(), array:size(), "
                                     "array:attributeCount(), type(array:get(1))"));
    EXPECT_EQ("1", eval("return array:delete(1):size()"));
    EXPECT_EQ("script:2: Attribute:setSize: argument 1 (count) must be at most 65536",
              failure("array:setSize(1 << 17)"));
}

// ---- connections ----

TEST_F(AttributeFunctionsTest, AValueFlowsWhereItIsConnectedTo) {
    run("other = scene:createObject('Joint') other:setName('other')");
    EXPECT_EQ("true 4.0 true 1 true nil",
              eval("local a, b = joint.TranslationX, other.TranslationY local made = a:connect(b) a:set(4) "
                   "return made, b:get(), b:inputObject() == joint, a:outputCount(), a:outputObject(1) == other, "
                   "a:outputObject(2)"));
    EXPECT_EQ("nil false", eval("other.TranslationY:disconnectInput() return other.TranslationY:inputObject(), "
                                "joint.TranslationX:isConnected()"));
}

TEST_F(AttributeFunctionsTest, ConnectsByPathAndDisconnectsOutputs) {
    run("other = scene:createObject('Joint') other:setName('other')");
    EXPECT_EQ("true true 2 0", eval("local a = joint.TranslationX local one = a:connect('Scene|other.TranslationX') "
                                    "local two = a:connect('Scene|other.TranslationY') local count = a:outputCount() "
                                    "return one, two, count, a:disconnectOutputs():outputCount()"));
    EXPECT_EQ("false", eval("joint.TranslationX:connect(other.TranslationX) "
                            "return other.TranslationX:disconnect():isConnected()"));
}

TEST_F(AttributeFunctionsTest, AConnectionThatCanNotBeIsNone) {
    EXPECT_EQ("false false",
              eval("return joint.TranslationX:connect(joint.TranslationX), joint.TranslationX:connect()"));
    EXPECT_EQ("script:2: Attribute:connect: argument 1 (target) must be an attribute or its path, not number",
              failure("joint.TranslationX:connect(5)"));
}

// ---- keys ----

TEST_F(AttributeFunctionsTest, WithoutACurveThereIsNothingToReadAndNothingToEdit) {
    EXPECT_EQ("0   nil nil 0 false false",
              eval("local a = joint.TranslationX a:clearKeys():deleteKey(1):deleteKeyAtIndex(1):deleteKeys(0, 1)"
                   ":deleteKeysAtIndex(1, 2):moveKeys(0, 1, 1, 1):moveKeysAtIndex(1, 1, 1, 1):scaleKeys(0, 1, 2, 2)"
                   ":scaleKeysAtIndex(1, 1, 2, 2):snapKeys(0, 1):snapKeysAtIndex(1, 1):setPreExtrapolation('cyclic')"
                   ":setPostExtrapolation('cyclic') return a:keyCount(), a:preExtrapolation(), a:postExtrapolation(), "
                   "a:keyAtIndex(1), a:editKeyAtIndex(1, 2, 3), #a:curvePoints(0, 1), a:fitSampledCurve(), "
                   "a:uniformCurveSampling(5)"));
    EXPECT_FALSE(joint.Attribute(L"TranslationX").IsAnimated());
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(AttributeFunctionsTest, SetKeyMakesTheCurveAndGivesTheKey) {
    EXPECT_EQ("2.0 5.0 1", eval("local key = joint.TranslationX:setKey(2, 5) "
                                "return key:x(), joint.TranslationX:get(), joint.TranslationX:keyCount()"));
    EXPECT_EQ(1, curve().KeyframeInterpolations().Enumeration(0));
    EXPECT_EQ(1, curve().KeyframeContinuities().Enumeration(0));
}

TEST_F(AttributeFunctionsTest, SetKeyChangesTheKeyThatIsThere) {
    giveCurve();
    EXPECT_EQ("2.0 4",
              eval("return joint.TranslationX:setKey(2, 5, 'spline', 'broken'):x(), joint.TranslationX:keyCount()"));
    EXPECT_EQ((Floats{10, 5, 30, 40}), outputs());
    EXPECT_EQ(2, curve().KeyframeInterpolations().Enumeration(1));
    EXPECT_EQ(0, curve().KeyframeContinuities().Enumeration(1));
}

TEST_F(AttributeFunctionsTest, SetKeyWithoutArgumentsKeysTheCurrentValueNow) {
    time().Time().SetFloat(1.5F);
    EXPECT_EQ("1.5", eval("return joint.TranslationX:set(7):setKey():x()"));
    EXPECT_EQ((Floats{1.5F}), inputs());
    EXPECT_EQ((Floats{7}), outputs());
}

TEST_F(AttributeFunctionsTest, WhatIsNotAnimatableGetsNoCurve) {
    custom(db::AttributeType::String, L"Label");
    EXPECT_EQ("nil nil false", eval("return joint.Label:setKey(1, 2), joint.Label:createKey(1, 2, 1, 1), "
                                    "joint.Label:isAnimated()"));
}

TEST_F(AttributeFunctionsTest, TheShortFormsOfCreateKeyTakeTheTimeForTheValue) {
    run("a = joint.TranslationX a:createKey(2, 7) a:createKey(3, 7, 'spline') a:createKey(4, 7, 2, 'linear')");
    EXPECT_EQ((Floats{2, 3, 7}), outputs());
    EXPECT_EQ(0, curve().KeyframeInterpolations().Enumeration(0));
    EXPECT_EQ(2, curve().KeyframeInterpolations().Enumeration(1));
    EXPECT_EQ(1, curve().KeyframeContinuities().Enumeration(2));
}

TEST_F(AttributeFunctionsTest, CreateKeyGivesTheNewKeyOrTheOneThatIsThere) {
    EXPECT_EQ("2.0 2.0 1", eval("local a = joint.TranslationX local first, second = a:createKey(2, 7, 1, 1), "
                                "a:createKey(2, 9, 1, 1) return first:x(), second:x(), a:keyCount()"));
    EXPECT_EQ((Floats{7}), outputs());
}

TEST_F(AttributeFunctionsTest, EditKeyAtIndexMovesAKey) {
    giveCurve();
    EXPECT_EQ("9.0 nil nil",
              eval("local a = joint.TranslationX return a:editKeyAtIndex(2, 9, 8):x(), a:editKeyAtIndex(0, 1, 1), "
                   "a:editKeyAtIndex(5, 1, 1)"));
    EXPECT_EQ((Floats{1, 9, 3, 4}), inputs());
    EXPECT_EQ((Floats{10, 8, 30, 40}), outputs());
}

TEST_F(AttributeFunctionsTest, KeysKeepTheirIndexWhenTheyMove) {
    giveCurve();
    EXPECT_EQ("5.0 2.0 nil nil",
              eval("local a = joint.TranslationX:moveKeysAtIndex(1, 1, 4, 0) "
                   "return a:keyAtIndex(1):x(), a:keyAtIndex(2):x(), a:keyAtIndex(0), a:keyAtIndex(5)"));
}

TEST_F(AttributeFunctionsTest, DeletesKeysByTimeAndByIndex) {
    giveCurve();
    run("joint.TranslationX:deleteKey(2):deleteKey(2.5)");
    EXPECT_EQ((Floats{1, 3, 4}), inputs());
    run("joint.TranslationX:deleteKeyAtIndex(1):deleteKeyAtIndex(0):deleteKeyAtIndex(9)");
    EXPECT_EQ((Floats{3, 4}), inputs());
    run("joint.TranslationX:deleteKeysAtIndex(2, 7)");
    EXPECT_EQ((Floats{3}), inputs());
}

TEST_F(AttributeFunctionsTest, DeleteKeysTakesAllFromTheLaterBoundOn) {
    giveCurve();
    run("joint.TranslationX:deleteKeys(2, 3)");
    EXPECT_EQ((Floats{1, 2}), inputs());
}

TEST_F(AttributeFunctionsTest, MovesKeysBetweenTwoTimes) {
    giveCurve();
    run("joint.TranslationX:moveKeys(2, 3, 10, 1)");
    EXPECT_EQ((Floats{1, 12, 13, 4}), inputs());
    EXPECT_EQ((Floats{10, 21, 31, 40}), outputs());
    run("joint.TranslationX:moveKeys(-math.huge, math.huge, 1, 0)");
    EXPECT_EQ((Floats{2, 13, 14, 5}), inputs());
}

TEST_F(AttributeFunctionsTest, ScalesKeysAboutAPivot) {
    giveCurve();
    run("joint.TranslationX:scaleKeys(2, 3, 1, 0.5, 0, 10)");
    EXPECT_EQ((Floats{10, 15, 20, 40}), outputs());
    run("joint.TranslationX:scaleKeysAtIndex(4, 4, 2, 1, 1)");
    EXPECT_EQ((Floats{1, 2, 3, 7}), inputs());
    run("joint.TranslationX:scaleKeys(0, 9)");
    EXPECT_EQ((Floats{1, 2, 3, 7}), inputs());
}

TEST_F(AttributeFunctionsTest, SnapsKeysToWholeTimes) {
    run("a = joint.TranslationX a:setKey(0.4, 1) a:setKey(1.6, 1) a:setKey(2.6, 1) a:snapKeys(0, 2):snapKeysAtIndex(3, "
        "3)");
    EXPECT_EQ((Floats{0, 2, 3}), inputs());
}

TEST_F(AttributeFunctionsTest, ClearsTheKeysAndKeepsTheCurve) {
    giveCurve();
    EXPECT_EQ("0 true", eval("return joint.TranslationX:clearKeys():keyCount(), joint.TranslationX:isAnimated()"));
}

TEST_F(AttributeFunctionsTest, NumbersThatAreNotFiniteMakeNoKeys) {
    giveCurve();
    for (char const* call : {"setKey(0/0, 1)", "setKey(1, math.huge)", "createKey(math.huge, 1)",
                             "editKeyAtIndex(1, 0/0, 1)", "moveKeys(0, 9, math.huge, 0)", "scaleKeys(0, 9, 0/0)",
                             "moveKeysAtIndex(1, 2, 0/0)", "scaleKeysAtIndex(1, 2, 1, math.huge)"})
        EXPECT_NE(std::string::npos,
                  failure("joint.TranslationX:" + std::string(call)).find("its numbers must be finite"))
            << call;
    EXPECT_EQ((Floats{1, 2, 3, 4}), inputs());
    EXPECT_EQ((Floats{10, 20, 30, 40}), outputs());
}

TEST_F(AttributeFunctionsTest, AnUnknownInterpolationIsRefused) {
    EXPECT_EQ(
        "script:2: Attribute:setKey: \"smooth\" is none of constant, linear, spline, external, nor a number from 0 "
        "to 3",
        failure("joint.TranslationX:setKey(1, 2, 'smooth')"));
    EXPECT_EQ("script:2: Attribute:setKey: 7 is none of broken, linear, linearCoupled, nor a number from 0 to 2",
              failure("joint.TranslationX:setKey(1, 2, 'linear', 7)"));
    EXPECT_FALSE(joint.Attribute(L"TranslationX").IsAnimated());
}

TEST_F(AttributeFunctionsTest, ExtrapolationsGoByWordsAndNumbers) {
    giveCurve();
    EXPECT_EQ("constant cyclic offsetCyclic",
              eval("local a = joint.TranslationX local before = a:preExtrapolation() a:setPreExtrapolation('cyclic')"
                   ":setPostExtrapolation(4) return before, a:preExtrapolation(), a:postExtrapolation()"));
    EXPECT_EQ(XExtrapolation::CyclicExtrapolation, curve().PreExtrapolation().Enumeration());
    EXPECT_EQ("reverseCyclic",
              eval("return joint.TranslationX:setPreExtrapolation('Reverse Cycle'):preExtrapolation()"));
    EXPECT_NE("", failure("joint.TranslationX:setPreExtrapolation('forever')"));
}

TEST_F(AttributeFunctionsTest, CurvePointsAreAList) {
    giveCurve();
    EXPECT_EQ("3 2.0 20.0 4.0 40.0",
              eval("local p = joint.TranslationX:curvePoints(2, 4) return #p, p[1].x, p[1].y, p[3].x, p[3].y"));
    EXPECT_EQ("4", eval("return #joint.TranslationX:curvePoints()"));
    EXPECT_EQ("0", eval("return #joint.TranslationX:curvePoints(0, math.huge)"));
}

TEST_F(AttributeFunctionsTest, SamplesAndFitsACurve) {
    giveCurve();
    EXPECT_EQ("true 101 true true", eval("local a = joint.TranslationX local sampled = a:uniformCurveSampling(100) "
                                         "local count = a:keyCount() local fitted = a:fitSampledCurve(0, 0.01) "
                                         "return sampled, count, fitted, a:keyCount() < 5"));
    EXPECT_NEAR(25, joint.Attribute(L"TranslationX").Animation().Interpolate(2.5F), 0.02);
}

TEST_F(AttributeFunctionsTest, AbsurdSamplingsAreRefused) {
    giveCurve();
    EXPECT_EQ("false", eval("return joint.TranslationX:uniformCurveSampling(1)"));
    EXPECT_NE("", failure("joint.TranslationX:uniformCurveSampling(2000000000)"));
    EXPECT_NE("", failure("joint.TranslationX:fitSampledCurve(2000000000)"));
    EXPECT_NE("", failure("joint.TranslationX:fitSampledCurve(0, 0.1, 20, 200, 2000000000)"));
    EXPECT_NE("", failure("joint.TranslationX:fitSampledCurve(0, 0/0)"));
    EXPECT_EQ(4, curve().KeyframeCount());
}

// ---- all of them ----

TEST_F(AttributeFunctionsTest, TheVocabularyIsWhole) {
    std::string names;
    for (XScriptFunction const& function : AttributeFunctions().functions) names += std::string(function.Name()) + " ";
    EXPECT_EQ(
        "id isValid name displayName path type units object isEditable isVisible isConnected isArrayAttribute "
        "isAttributeArray isAnimatable isAnimated get set add insert delete size setSize clear connect disconnect "
        "disconnectInput disconnectOutputs inputObject outputObject outputCount attribute attributeCount "
        "preExtrapolation postExtrapolation setPostExtrapolation setPreExtrapolation keyCount clearKeys createKey "
        "setKey editKeyAtIndex fitSampledCurve uniformCurveSampling deleteKey deleteKeyAtIndex deleteKeys "
        "deleteKeysAtIndex keyAtIndex moveKeys moveKeysAtIndex scaleKeys scaleKeysAtIndex snapKeys snapKeysAtIndex "
        "curvePoints ",
        names);
}

TEST_F(AttributeFunctionsTest, ForgedTablesAreNoAttributes) {
    run("meta = {} for _, id in ipairs({-1, 0, 1, 999999, 1 << 40, -(1 << 40), 0/0, 'x', {}, 1.5}) do\n"
        "  local forged = {__sceneID = scene.__sceneID, __objectID = id}\n"
        "  for _, name in ipairs({'get', 'set', 'add', 'size', 'clear', 'keyCount', 'setKey', 'disconnect', 'path', "
        "'curvePoints', 'attributeCount'}) do\n"
        "    pcall(joint.TranslationX[name], forged)\n  end\nend");
    EXPECT_TRUE(joint.IsValid());
}

}  // namespace
}  // namespace Tavo
