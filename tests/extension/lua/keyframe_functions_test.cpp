#include "tavo/extension/lua/script_sets.h"
#include "tavo/extension/lua/script_tables.h"
#include "tests/extension/lua/script_fixture.h"

namespace Tavo {
namespace {

class KeyframeFunctions : public Scripts {
protected:
    KeyframeFunctions() {
        curve.SetKeyframe(3, 30), curve.SetKeyframe(1, 10), curve.SetKeyframe(2, 20);
        give("key", 1);
    }

    // The global of that name becomes the key in a slot.
    void give(char const* name, int slot) { giveOf(curve, name, slot); }
    void giveOf(XAnimation const& of, char const* name, int slot) {
        LuaPlus::LuaState& state = *lua().State();
        lua().Tables().PushKeyframe(state.GetCState(), XKeyframe(of, slot));
        state.SetGlobal(name, state.Stack(-1));
        state.Pop();
    }
    XKeyframe key(int slot) const { return XKeyframe(curve, slot); }
    std::vector<float> numbers() const {
        std::vector<float> all;
        for (int i = 0; i < curve.KeyframeCount(); ++i)
            for (float number : {key(i).InputValue(), key(i).OutputValue(), key(i).InTangentX(), key(i).InTangentY(),
                                 key(i).OutTangentX(), key(i).OutTangentY(), float(key(i).ContinuityIndex()),
                                 float(key(i).InterpolationIndex())})
                all.push_back(number);
        return all;
    }
    // Every function of the set, called on the global of that name.
    void callAll(std::string const& name) {
        for (XScriptFunction const& function : rows()) run("key." + std::string(function.Name()) + "(" + name + ", 7)");
    }
    static std::vector<XScriptFunction> const& rows() { return Tavo::KeyframeFunctions().functions; }

    XAnimation curve{scene().CreateObject(XAnimation::TypeID)};
};

TEST_F(KeyframeFunctions, AreAllThereInTheirOrder) {
    std::string names;
    for (XScriptFunction const& function : rows()) names += std::string(function.Name()) + " ";
    EXPECT_EQ("index x y continuity interpolation inTangentX inTangentY outTangentX outTangentY setX setY "
              "setContinuity setInterpolation setInTangentX setInTangentY setOutTangentX setOutTangentY delete ",
              names);
}

TEST_F(KeyframeFunctions, IndexCountsFromOneInTheOrderOfTheSlots) {
    give("first", 0);
    EXPECT_EQ("1 2", eval("return first:index(), key:index()"));
}

TEST_F(KeyframeFunctions, IndexIsThatOfTheFirstKeyWithTheSameTime) {
    key(0).SetInputValue(1);
    EXPECT_EQ("1", eval("return key:index()"));
}

TEST_F(KeyframeFunctions, XAndYAreTimeAndValue) { EXPECT_EQ("1.0 10.0", eval("return key:x(), key:y()")); }

TEST_F(KeyframeFunctions, SetXAndSetYMoveTheKeyInItsSlot) {
    EXPECT_EQ("2.5 -4.0 2", eval("key:setX(2.5):setY(-4) return key:x(), key:y(), key:index()"));
    EXPECT_EQ(2.5F, key(1).InputValue());
    EXPECT_EQ(-4, key(1).OutputValue());
}

TEST_F(KeyframeFunctions, WordsAreGivenAsLabels) {
    key(1).SetContinuity(CoupledContinuity).SetInterpolation(SplineInterpolation);
    EXPECT_EQ("Coupled Spline", eval("return key:continuity(), key:interpolation()"));
}

TEST_F(KeyframeFunctions, WordsAreSetByScriptWordLabelAndNumber) {
    EXPECT_EQ("Linear Coupled", eval("return key:setContinuity('linearCoupled'):continuity()"));
    EXPECT_EQ("Coupled", eval("return key:setContinuity('Coupled'):continuity()"));
    EXPECT_EQ("Broken", eval("return key:setContinuity(0):continuity()"));
    EXPECT_EQ("External", eval("return key:setInterpolation('external'):interpolation()"));
    EXPECT_EQ("Spline", eval("return key:setInterpolation('Spline'):interpolation()"));
    EXPECT_EQ("Linear", eval("return key:setInterpolation(1):interpolation()"));
}

TEST_F(KeyframeFunctions, UnknownWordsAndNumbersDoNothing) {
    key(1).SetContinuity(CoupledContinuity).SetInterpolation(SplineInterpolation);
    for (char const* type : {"'spliny'", "''", "nil", "-1", "4", "2147483647", "-2147483648"}) {
        run("key:setContinuity(" + std::string(type) + "):setInterpolation(" + type + ")");
        EXPECT_EQ(CoupledContinuity, key(1).ContinuityIndex()) << type;
        EXPECT_EQ(SplineInterpolation, key(1).InterpolationIndex()) << type;
    }
    run("key:setContinuity(3)");
    EXPECT_EQ(CoupledContinuity, key(1).ContinuityIndex());
}

TEST_F(KeyframeFunctions, HandlesAreSetAndReadEachByItself) {
    EXPECT_EQ("-0.5 1.5 0.25 -2.0",
              eval("key:setInTangentX(-0.5):setInTangentY(1.5):setOutTangentX(0.25):setOutTangentY(-2)\n"
                   "return key:inTangentX(), key:inTangentY(), key:outTangentX(), key:outTangentY()"));
    EXPECT_EQ(-0.5F, key(1).InTangentX());
    EXPECT_EQ(1.5F, key(1).InTangentY());
    EXPECT_EQ(0.25F, key(1).OutTangentX());
    EXPECT_EQ(-2, key(1).OutTangentY());
}

TEST_F(KeyframeFunctions, DeleteTakesTheKeyAndTheNextOneHasItsSlot) {
    run("key:delete()");
    EXPECT_EQ(2, curve.KeyframeCount());
    EXPECT_EQ("2.0 20.0", eval("return key:x(), key:y()"));
}

TEST_F(KeyframeFunctions, ARunIsTakenBackInOneStep) {
    std::vector<float> const before = numbers();
    run("key:setX(5):setY(6):setInterpolation('constant'):setInTangentX(1):delete()");
    scene().Undo();
    EXPECT_EQ(before, numbers());
}

TEST_F(KeyframeFunctions, AMissingNumberIsZero) {
    EXPECT_EQ("0.0 0.0", eval("return key:setX():x(), key:setY(nil):y()"));
}

TEST_F(KeyframeFunctions, AWrongKindNamesFunctionAndArgumentAndChangesNothing) {
    std::vector<float> const before = numbers();
    EXPECT_EQ("script:2: Keyframe:setX: argument 1 (value) must be a number, not table", failure("key:setX({})"));
    EXPECT_EQ("script:2: Keyframe:setContinuity: argument 1 (type) must be a name or a number, not boolean",
              failure("key:setContinuity(true)"));
    for (XScriptFunction const& function : rows())
        if (!function.Arguments().empty()) failure("key:" + std::string(function.Name()) + "(print)");
    EXPECT_EQ(before, numbers());
}

TEST_F(KeyframeFunctions, OfAKeyThatIsGoneNothingIsReadOrWritten) {
    give("gone", 2);
    curve.SetKeyframe(0, 5);
    key(2).Delete(), key(2).Delete();
    std::vector<float> const before = numbers();
    EXPECT_EQ("nil 0.0 0.0   0.0", eval("return gone:index(), gone:x(), gone:y(), gone:continuity(), "
                                        "gone:interpolation(), gone:outTangentY()"));
    callAll("gone");
    EXPECT_EQ(before, numbers());
}

TEST_F(KeyframeFunctions, OfACurveThatIsGoneNothingIsReadOrWritten) {
    curve.Delete();
    EXPECT_EQ("nil 0.0 0.0   0.0", eval("return key:index(), key:x(), key:y(), key:continuity(), "
                                        "key:interpolation(), key:outTangentY()"));
    callAll("key");
    EXPECT_TRUE(log.errors().empty());
}

TEST_F(KeyframeFunctions, OfAnEmptyCurveNothingIsWritten) {
    XAnimation empty(scene().CreateObject(XAnimation::TypeID));
    for (char const* slot : {"-1", "0"}) {
        run("none = {__sceneID = key.__sceneID, __objectID = " + std::to_string(empty.ObjectID()) +
            ", __objectSubID = " + slot + "}");
        callAll("none");
    }
    EXPECT_EQ(0, empty.KeyframeCount());
}

TEST_F(KeyframeFunctions, ARotationHasNoNumbersButItsTime) {
    XAnimation turns(scene().CreateObject(XAnimation::TypeID));
    turns.OutputMode().SetEnumeration(XAnimation::RotationOutputMode);
    turns.SetKeyframe(2, XQuaternion());
    giveOf(turns, "turn", 0);
    EXPECT_EQ("1 2.0 0.0  ", eval("return turn:index(), turn:x(), turn:y(), turn:continuity(), turn:interpolation()"));
    EXPECT_EQ("4.0 0.0", eval("return turn:setX(4):x(), turn:setY(5):y()"));
    run("turn:delete()");
    EXPECT_EQ(0, turns.KeyframeCount());
}

TEST_F(KeyframeFunctions, ForgedTablesDoNothing) {
    std::vector<float> const before = numbers();
    run("other = scene:createObject('Joint')");
    for (char const* slot :
         {"-1", "3", "2147483647", "4294967296", "-9223372036854775808", "0/0", "1e300", "{}", "nil"}) {
        run("forged = {__sceneID = key.__sceneID, __objectID = key.__objectID, __objectSubID = " + std::string(slot) +
            "}");
        callAll("forged");
    }
    run("forged.__objectSubID = 0");
    for (char const* object : {"-1", "987654321", "4294967296", "0/0", "'x'", "other.__objectID"}) {
        run("forged.__objectID = " + std::string(object));
        callAll("forged");
    }
    EXPECT_EQ(before, numbers());
}

TEST_F(KeyframeFunctions, TakesNumbersBeyondAllMeasure) {
    for (char const* number : {"0/0", "1/0", "-1/0", "1e300"})
        for (XScriptFunction const& function : rows())
            if (!function.Arguments().empty() && function.ArgumentTypes()[0].kind == XScriptKind::Number)
                run("key:" + std::string(function.Name()) + "(" + number + ")");
    EXPECT_EQ(3, curve.KeyframeCount());
    EXPECT_EQ("nil", eval("return key:setX(0/0):index()"));
}

}  // namespace
}  // namespace Tavo
