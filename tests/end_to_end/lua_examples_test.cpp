// The example scripts on the example clip: what they print, and what they do to the scene.
#include "tests/plugins/bvh/scene.h"

#include <sstream>

using namespace bvh;
using namespace Tavo;

namespace {

class LuaExamples : public SceneTest {
protected:
    LuaExamples() { import(mustRead(fileText(sourceFolder() / "examples/walk.bvh"))); }

    static XLuaScript& lua() { return *XApplication::Instance().LuaScript(); }
    // The lines that it prints.
    std::vector<std::string> run(char const* name) {
        lua().RunScript(L"printed = '' function print(line) printed = printed .. line .. '\\n' end");
        std::string const file = (sourceFolder() / "examples/lua" / name).string();
        EXPECT_EQ(0, lua().RunScriptFromFile(Qelutils::fromUtf8(file))) << lua().LastError();
        std::istringstream text(Qelutils::toUtf8(lua().State()->GetGlobal("printed").ToString()));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }
    XTransform joint(wchar_t const* name) {
        Qelutils::Vector<XObject> joints;
        scene().RootObject().DescendantObjects(joints, XJoint::TypeID, IsObjectType);
        for (XObject const& found : joints)
            if (found.Name() == name) return XTransform(found);
        return {};
    }
    XAnimation curve(wchar_t const* name, wchar_t const* attribute) {
        return joint(name).Attribute(attribute).Animation();
    }
    static float swing(XAnimation const& curve) { return curve.KeyframeMaxY().Float() - curve.KeyframeMinY().Float(); }
};

TEST_F(LuaExamples, CurvesAreShiftedScaledAndLooped) {
    float const before = swing(curve(L"RightArm", L"RotationX")),
                start = curve(L"Hips", L"TranslationZ").Interpolate(0);
    std::vector<std::string> const lines = run("02_edit_curves.lua");
    ASSERT_EQ(8U, lines.size());
    EXPECT_EQ("left leg: 6 channels start 0.10 s later", lines.front());
    EXPECT_EQ("93 channels loop", lines.back());
    EXPECT_FLOAT_EQ(0.1F, curve(L"LeftLeg", L"RotationX").KeyframeMinX().Float());
    EXPECT_FLOAT_EQ(0, curve(L"RightLeg", L"RotationX").KeyframeMinX().Float());
    EXPECT_NEAR(1.5 * double(before), double(swing(curve(L"RightArm", L"RotationX"))), 1e-5);
    XAnimation const way = curve(L"Hips", L"TranslationZ");
    float const length = way.KeyframeMaxX().Float(), gain = way.Interpolate(length) - start;
    EXPECT_NEAR(double(start + 2 * gain), double(way.Interpolate(2 * length)), 1e-3);
    EXPECT_TRUE(log.errors.empty());
    scene().Undo();
    EXPECT_FLOAT_EQ(0, curve(L"LeftLeg", L"RotationX").KeyframeMinX().Float());
}

TEST_F(LuaExamples, TheReportHasARowAJointAndTheSpeedOfTheFeet) {
    std::vector<std::string> const lines = run("08_report_csv.lua");
    ASSERT_EQ(31U, lines.size());
    EXPECT_EQ("joint,keys,x,y,z,mean speed,top speed", lines.front());
    EXPECT_EQ("Hips,120,", lines[1].substr(0, 9));
    for (std::string const& line : lines) {
        EXPECT_EQ(6, std::count(line.begin(), line.end(), ',')) << line;
        bool const isFoot = line.find("Foot,") != std::string::npos;
        EXPECT_EQ(isFoot || line == lines.front(), line.back() != ',') << line;
    }
    EXPECT_EQ(lines, run("08_report_csv.lua")) << "a report changes nothing";
    EXPECT_TRUE(log.errors.empty());
}

}  // namespace
