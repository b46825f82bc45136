// What the verbs do when all is well.
#include "tests/hosts/tavo/host.h"

#include <sstream>
#include <vector>

using namespace hosttest;

namespace {

class Verbs : public HostTest {};

std::vector<std::string> lines(std::string const& text) {
    std::vector<std::string> result;
    std::istringstream stream{text};
    for (std::string line; std::getline(stream, line);) result.push_back(line);
    return result;
}

std::vector<std::string> cells(std::string const& line) {
    std::vector<std::string> result;
    std::istringstream stream{line};
    for (std::string cell; std::getline(stream, cell, ',');) result.push_back(cell);
    return result;
}

}  // namespace

TEST_F(Verbs, ImportThenExportGivesTheSameBytes) {
    EXPECT_TRUE(has(result("import walk.bvh -o walk.tavo"), "unit cm: "));
    result("export walk.tavo -o again.bvh");
    EXPECT_EQ(text("again.bvh"), text("walk.bvh"));
}

TEST_F(Verbs, ClipsAndScenesAreAcceptedAlike) {
    result("import walk.bvh -o walk.tavo");
    for (char const* call : {"sample %s --objects Head --attribute WorldTranslation", "play %s --seconds 0.1 --json",
                             "plot %s Hips.TranslationX -o x.svg", "set %s Head.BoneRadius=0.5 -o x.tavo",
                             "export %s -o x.bvh", "import %s -o x.tavo"}) {
        char clip[200], scene[200];
        std::snprintf(clip, sizeof clip, call, "walk.bvh");
        std::snprintf(scene, sizeof scene, call, "walk.tavo");
        std::string const a = result(clip), b = result(scene);
        if (std::string(call).rfind("sample", 0) == 0) { EXPECT_EQ(a, b); }
    }
}

TEST_F(Verbs, ImportTakesTheUnitItIsTold) {
    std::string const call = "sample walk.bvh --objects Spine --attribute TranslationY --to 0 ";
    EXPECT_EQ(lines(result(call + "--units m"))[1], "0,Scene|Hips|Spine,10");
    EXPECT_EQ(lines(result(call + "--units CM"))[1], "0,Scene|Hips|Spine,0.1");
}

TEST_F(Verbs, PositionsAreAddedWhenToldSo) {
    write(folder / "one.bvh", "HIERARCHY ROOT a\n{ OFFSET 5 0 0 CHANNELS 1 Xposition\n}\nMOTION\nFrames: 2\n"
                              "Frame Time: 0.1\n1\n2\n");
    std::string const call = "sample one.bvh --objects a --attribute TranslationX --units m --positions ";
    EXPECT_EQ(result(call + "replace"), "time,object,TranslationX\n0,Scene|a,1\n0.1,Scene|a,2\n");
    EXPECT_EQ(result(call + "add"), "time,object,TranslationX\n0,Scene|a,6\n0.1,Scene|a,7\n");
}

TEST_F(Verbs, ExportChangesTheUnitWhenAsked) {
    result("export walk.bvh --to-units m -o metres.bvh");
    EXPECT_TRUE(has(text("metres.bvh"), "OFFSET 0 0.1 0")) << text("metres.bvh").substr(0, 300);
}

TEST_F(Verbs, InfoTellsOfAClipWhatWasJudgedAndWhy) {
    std::string const told = result("info walk.bvh");
    for (char const* part : {"a motion clip", "29 rot ZXY", "1 pos XYZ + rot ZXY", "different numbers",
                             "unit        cm: ", "positions   replace: ", "renamed     none", "suspicious  none",
                             "30 Joint", "120 at 30 a second", "11160 in 93 curves", "\n  Hips  6 curves\n    Spine"})
        EXPECT_TRUE(has(told, part) || std::string(part) == "different numbers") << part << "\n" << told;
}

TEST_F(Verbs, InfoPlacesSuspiciousValues) {
    std::string clip = text("walk.bvh");
    std::size_t const at = clip.find('\n', clip.find("Frame Time")) + 1;
    clip.replace(at, clip.find(' ', at) - at, "123456789");
    write(folder / "wild.bvh", clip);
    std::string const line = std::to_string(std::count(clip.begin(), clip.begin() + long(at), '\n') + 1);
    EXPECT_TRUE(has(result("info wild.bvh"), "line " + line + ", column 1: 123456789 in frame 0 of Hips"));
    Outcome const import = tavo("import wild.bvh -o wild.tavo");
    EXPECT_EQ(import.code, 0);
    EXPECT_TRUE(has(import.err, "warning: 1 value")) << import.err;
}

TEST_F(Verbs, InfoNamesRenamedJoints) {
    write(folder / "twins.bvh", "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 0 JOINT b\n{ OFFSET 0 1 0 CHANNELS 0 }\n"
                                "JOINT b\n{ OFFSET 1 0 0 CHANNELS 0 } }\nMOTION\nFrames: 1\nFrame Time: 0.1\n");
    EXPECT_TRUE(has(result("info twins.bvh"), "\"b\" is b1"));
    EXPECT_TRUE(has(result("info twins.bvh --json"), R"("renamed":[{"from":"b","to":"b1"}])"));
    result("export twins.bvh -o again.bvh");
    EXPECT_FALSE(has(text("again.bvh"), "b1"));
}

TEST_F(Verbs, InfoForMachinesIsJson) {
    std::string const told = result("info walk.bvh --json");
    for (char const* part : {R"("kind":"clip")", R"("frameRate":30)", R"("frameTimeText":"0.033333")",
                             R"("keys":11160)", R"("unit":"cm")", R"("path":"Scene|Hips|Spine")", R"("suspicious":[])"})
        EXPECT_TRUE(has(told, part)) << part;
    result("import walk.bvh -o walk.tavo");
    EXPECT_TRUE(has(result("info walk.tavo --json"), R"("kind":"scene")"));
}

TEST_F(Verbs, SampleGivesAMatrixAsSixteenNumbers) {
    std::vector<std::string> const table =
        lines(result("sample walk.bvh --objects Hips --attribute WorldMatrix --to 0"));
    ASSERT_EQ(table.size(), 2u);
    EXPECT_EQ(cells(table[0]).size(), 18u);
    EXPECT_EQ(cells(table[1]).size(), 18u);
    EXPECT_EQ(cells(table[1]).back(), "1");
}

TEST_F(Verbs, SampleKnowsWorldPlacesOfTransforms) {
    EXPECT_EQ(cells(lines(result("sample walk.bvh --objects Hips --attribute WorldTranslation"))[0]).size(), 5u);
    EXPECT_EQ(cells(lines(result("sample walk.bvh --objects Hips --attribute WorldRotation"))[0]).size(), 6u);
}

TEST_F(Verbs, SamplePassesOverObjectsWithoutTheAttribute) {
    std::vector<std::string> const table = lines(result("sample walk.bvh --attribute BoneRadius --to 0"));
    EXPECT_EQ(table.size(), 31u);
    EXPECT_EQ(table[1], "0,Scene|Hips,0.008");
}

TEST_F(Verbs, SampleStepsFromOneMomentToAnother) {
    std::vector<std::string> const table =
        lines(result("sample walk.bvh --objects Hips --attribute TranslationX --from 0.5 --to 1 --step 0.1"));
    ASSERT_EQ(table.size(), 7u);
    EXPECT_EQ(cells(table[1])[0], "0.5");
    EXPECT_EQ(cells(table[6])[0], "1");
}

TEST_F(Verbs, SampleTakesAFrameAStepWithoutBeingTold) {
    EXPECT_EQ(lines(result("sample walk.bvh --objects Hips --attribute TranslationX")).size(), 121u);
}

TEST_F(Verbs, SampleConvertsToDisplayUnitsWhenAsked) {
    result("set walk.bvh SceneSettings.LinearUnits=Centimetres -o cm.tavo");
    std::string const call = "sample cm.tavo --objects Spine --to 0 --attribute ";
    EXPECT_EQ(lines(result(call + "TranslationY"))[1], "0,Scene|Hips|Spine,0.1");
    EXPECT_EQ(lines(result(call + "TranslationY --display"))[1], "0,Scene|Hips|Spine,10");
}

TEST_F(Verbs, SampleWritesJsonAndFiles) {
    EXPECT_EQ(result("sample walk.bvh --objects Spine --attribute TranslationY --to 0 --json -o y.json"), "");
    EXPECT_EQ(text("y.json"), R"({"attribute":"TranslationY","display":false,"samples":[{"time":0,"object":)"
                              R"("Scene|Hips|Spine","value":0.1}]})"
                              "\n");
}

TEST_F(Verbs, SampleLeavesNoTraceInAPipe) {
    EXPECT_FALSE(has(tavo("sample walk.bvh --attribute WorldMatrix").err, "sampling"));
}

TEST_F(Verbs, PlayShowsEveryFrameByAClockOfItsOwn) {
    std::string const told = result("play walk.bvh --as-fast-as-possible --json");
    EXPECT_TRUE(has(told, "\"frames\":119,")) << told;
    EXPECT_TRUE(has(told, "\"framesPerSecond\":")) << told;
}

TEST_F(Verbs, PlayGoesOnBeyondTheEnd) {
    std::string const told = result("play walk.bvh --as-fast-as-possible --seconds 10 --json");
    EXPECT_TRUE(has(told, "\"frames\":300,")) << told;
}

TEST_F(Verbs, PlayRunsInRealTime) { EXPECT_TRUE(has(result("play walk.bvh --seconds 0.2"), "played 0.2 s")); }

TEST_F(Verbs, SetChangesAttributesOfEveryKind) {
    result("set walk.bvh Head.BoneRadius=0.25 Head.Visible=false Head.RotationEulerOrder=zyx 'Head.Tags=a=b, c' "
           "SceneSettings.FrameRate=60 'Left*Leg.BoneRadius=0.5' -o set.tavo");
    std::string const call = "sample set.tavo --to 0 --objects ";
    EXPECT_EQ(cells(lines(result(call + "Head --attribute BoneRadius"))[1])[2], "0.25");
    EXPECT_EQ(cells(lines(result(call + "Head --attribute Visible"))[1])[2], "0");
    EXPECT_EQ(cells(lines(result(call + "Head --attribute RotationEulerOrder"))[1])[2], "5");
    EXPECT_EQ(cells(lines(result(call + "LeftUpLeg --attribute BoneRadius"))[1])[2], "0.5");
    EXPECT_TRUE(has(text("set.tavo"), "a=b, c"));
    EXPECT_TRUE(has(result("info set.tavo --json"), "\"frameRate\":60"));
}

TEST_F(Verbs, SetTakesTheValuesOfACompound) {
    result("set walk.bvh Head.Colour=1,0,0.25,1 Head.Colour.Green=0.5 -o set.tavo");
    EXPECT_EQ(lines(result("sample set.tavo --objects Head --attribute Colour --to 0"))[1].substr(1),
              ",Scene|Hips|Spine|Spine1|Chest|Neck|Head,1,0.5,0.25,1");
}

TEST_F(Verbs, SetTakesDisplayUnitsWhenAsked) {
    result("set walk.bvh Head.PreRotationY=180 --display -o turned.tavo");
    EXPECT_EQ(
        cells(lines(result("sample turned.tavo --objects Head --attribute PreRotationY --to 0"))[1])[2].substr(0, 6),
        "3.1415");
}

TEST_F(Verbs, SetWritesAClipWhenTheNameSaysSo) {
    result("set walk.bvh SceneSettings.EndTime=0.99999 -o short.bvh");
    EXPECT_TRUE(has(text("short.bvh"), "Frames: 31\n"));
}

TEST_F(Verbs, PlotDrawsAPanelPerUnitWithItsLegend) {
    result("plot walk.bvh Hips.TranslationX Hips.RotationY -o hips.svg");
    std::string const svg = text("hips.svg");
    EXPECT_EQ(svg.rfind("<svg xmlns=", 0), 0u);
    for (char const* part :
         {">Hips.TranslationX<", ">Hips.RotationY<", ">m<", ">deg<", ">time, s<", "<circle", "</svg>\n"})
        EXPECT_TRUE(has(svg, part)) << part;
}

TEST_F(Verbs, PlotLeavesOutMarksThatWouldHideTheLine) {
    std::string motion;
    for (int k = 0; k < 500; ++k) motion += std::to_string(k) + "\n";
    write(folder / "long.bvh",
          "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 1 Xposition\n}\nMOTION\nFrames: 500\nFrame Time: 0.01\n" + motion);
    result("plot long.bvh a.TranslationX -o long.svg");
    EXPECT_FALSE(has(text("long.svg"), "<circle"));
}

TEST_F(Verbs, TheSameFileAlwaysGivesTheSameScene) {
    result("import walk.bvh -o a.tavo");
    result("import walk.bvh -o b.tavo");
    result("import a.tavo -o c.tavo");
    EXPECT_EQ(text("a.tavo"), text("b.tavo"));
    EXPECT_EQ(text("a.tavo"), text("c.tavo"));
}

TEST_F(Verbs, AFileMayBeWrittenOverItself) {
    result("set walk.bvh Head.BoneRadius=1 -o walk.tavo");
    result("set walk.tavo Head.BoneRadius=2 -o walk.tavo");
    EXPECT_EQ(cells(lines(result("sample walk.tavo --objects Head --attribute BoneRadius --to 0"))[1])[2], "2");
}
