// Files that are broken, hostile, absurd or of another version: refused with one message that names the place, and the
// open document stays byte for byte; or taken as far as they are known.
#include "tests/qel/sg/random_scene.h"
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace sg::test {
namespace {

std::string fileOfVersion1() {
    db::FileInputStream in(std::wstring(L"" TAVO_SOURCE_DIR) + L"/tests/qel/sg/data/version_1.xml");
    std::string text(8192, '\0');
    text.resize(in.read(text.data(), text.size()));
    return text;
}

struct HostileDocuments : ::testing::Test {
    HostileDocuments() {
        Node* hips = scene.makeNode(L"Joint", L"hips");
        hips->addChild(*scene.makeNode(L"Joint", L"knee"));
        scene.connect(hips->findAttribute(L"TranslationX"), hips->getChild(0)->findAttribute(L"TranslationY"));
        scene.commitTransient();
        before = saved(scene);
    }
    void expectRefused(std::string const& text, wchar_t const* because = L"") {
        Loaded const result = load(scene, text);
        std::string const shown = text.substr(0, 300) + " -> " + std::string(result.error.begin(), result.error.end());
        EXPECT_FALSE(result.ok) << shown;
        EXPECT_EQ(result.error.find(L"line "), 0u) << shown;
        EXPECT_NE(result.error.find(L", column "), std::wstring::npos) << shown;
        EXPECT_NE(result.error.find(because), std::wstring::npos) << shown;
        EXPECT_EQ(saved(scene), before) << shown;
    }
    static std::string inDocument(std::string const& content) {
        return "<tavo format=\"1\">\n" + content + "\n</tavo>\n";
    }
    static std::string node(int id, std::string const& more = {}, std::string const& content = {}) {
        return "<node id=\"" + std::to_string(id) + "\" type=\"Joint\" " + more + ">" + content + "</node>\n";
    }
    Scene scene{L"open"};
    std::string before;
};

TEST_F(HostileDocuments, AreRefusedWhereverTheyAreCutOff) {
    std::string const text = fileOfVersion1();
    ASSERT_GT(text.size(), 1000u);
    for (std::size_t cut = 0; cut + 1 < text.size(); ++cut) expectRefused(text.substr(0, cut));
    EXPECT_EQ(scene.getUndoCount(), 1u);
}

TEST_F(HostileDocuments, AreRefusedWhenIdsAndPlacesMakeNoSense) {
    expectRefused(inDocument(node(16) + node(16)), L"stands twice");
    for (char const* id : {"-16", "99999999999", "x", "", "1.5"})
        expectRefused(inDocument("<node id=\"" + std::string(id) + "\" type=\"Joint\"/>"), L"needs an id");
    expectRefused(inDocument("<node id=\"16\"/>"), L"needs an id and a type");
    expectRefused(inDocument(node(16, "parent=\"64\"") + node(64)), L"does not stand before it");
    expectRefused(inDocument(node(16, "parent=\"16\"")), L"does not stand before it");
    expectRefused(inDocument(node(16, "parent=\"x\"")), L"does not stand before it");
    expectRefused(inDocument(node(16) + node(256, "parents=\"16\"")), L"can't be its parents");
    std::string const pair = node(16) + node(256, "parent=\"16\"");
    for (char const* parents : {"512", "16", "256", "1024", "1024 1024", "-1", "9999"})
        expectRefused(inDocument(pair + node(512, "parent=\"256\" parents=\"" + std::string(parents) + "\"") +
                                 (parents == std::string("16") ? node(16) : "")));
    expectRefused(inDocument(node(16) + node(256, "parent=\"16\" parents=\"x\"")), L"are no ids");
    expectRefused(
        inDocument(node(16) + node(256) + node(512, "parent=\"16\" parents=\"768\"") + node(768, "parent=\"512\"")),
        L"is below itself");
    expectRefused(inDocument(node(16) + node(256, "parent=\"16\" parents=\"768\"") + node(512) +
                             node(768, "parent=\"512\" parents=\"256\"")),
                  L"is below itself");
}

TEST_F(HostileDocuments, AreRefusedWhenContentsAreNotOfTheirKind) {
    for (char const* value : {"x", "1 2", "", "1e999", "0x10", "1,5"})
        expectRefused(inDocument(node(16, "", "<a n=\"TranslationX\">" + std::string(value) + "</a>")), L"of its kind");
    for (char const* content :
         {"<a n=\"Visible\">2</a>", "<a n=\"BoneStyle\">Solid</a>", "<a n=\"LocalMatrixInput\">1 2 3</a>",
          "<a n=\"TranslationX\"><b/></a>", "<a n=\"JointLimitReference\"><b/></a>", "<d n=\"x\"/>", "<d type=\"4\"/>",
          "<d n=\"x\" type=\"4\">y</d>", "<d n=\"x\" type=\"-1\"/>", "<d n=\"x\" type=\"16\">1 2</d>",
          "<d n=\"x\" type=\"15\"><s><t/></s></d>", "<u><v:w/></u>", "text <b/>", "<a n=\"Tags\">x<b/></a>"})
        expectRefused(inDocument(node(16, "", content)));
    expectRefused(inDocument("<node id=\"16\" type=\"Connection\"/>"), L"can't be made");
    expectRefused(inDocument("<connection id=\"16\"/>"), L"two ends");
    expectRefused(inDocument("<connection id=\"16\" from=\"1\" to=\"2\"><x/></connection>"), L"not expected");
    expectRefused(inDocument("<other/>"), L"not expected");
    expectRefused("<tavo format=\"2\"/>", L"format 2");
    expectRefused("<tavo format=\"0\"/>");
    expectRefused("<!DOCTYPE tavo [<!ENTITY a \"b\">]><tavo format=\"1\"/>");
    expectRefused(inDocument(node(16)) + "<tavo format=\"1\"/>");
}

TEST_F(HostileDocuments, AreRefusedWhenTheyAreAbsurdlyDeep) {
    std::string nested, chain;
    for (int i = 0; i < 200000; ++i) nested += "<node id=\"16\" type=\"Joint\">";
    expectRefused("<tavo format=\"1\">" + nested, L"nested too deeply");
    for (int i = 0; i < 200000; ++i)
        chain += "<node id=\"" + std::to_string(16 * i) + "\" type=\"Node\"" +
                 (i ? " parent=\"" + std::to_string(16 * (i - 1)) + "\"/>" : "/>");
    expectRefused(inDocument(chain), L"levels deep");
}

TEST_F(HostileDocuments, AreNotWrittenEither) {
    Node* last = scene.makeNode(L"Node", L"n");
    for (int i = 0; i < db::LoaderXML::mostLevels - 1; ++i) {
        Node* n = scene.makeNode(L"Node", L"n");
        n->addChild(*last);
        last = n;
    }
    std::wstring const name = last->getNodeName();
    std::string const deepest = saved(scene);
    EXPECT_TRUE(load(scene, deepest).ok);
    EXPECT_EQ(saved(scene), deepest);
    scene.makeNode(L"Node", L"top")->addChild(*scene.findNode(name));
    db::StringOutputStream out;
    db::SaverXML saver(out, 0);
    EXPECT_FALSE(saver.save(scene));
    EXPECT_NE(saver.error().find(L"levels deep"), std::wstring::npos);
}

long mostMemory() {  // in KB, of the program so far
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(HostileDocuments, TakeNoMoreMemoryThanTheyAreWorth) {
    [[maybe_unused]] long const memoryBefore = mostMemory();
    std::string many =
        inDocument(node(1 << 27) + node(2147483647 - 15) + node(16, "", "<d n=\"x\" type=\"4\" id=\"134217728\"/>"));
    many.insert(16, " ids=\"2147483647\"");
    EXPECT_TRUE(load(scene, many).ok);
    EXPECT_TRUE(load(scene, saved(scene)).ok);
    EXPECT_EQ(scene.nodeCount(), 3u);
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(mostMemory() - memoryBefore, 512 * 1024) << "KB";
#endif
}

// A hundred thousand nodes that all have each other's neighbours as further parents: no step looks at all for each.
TEST_F(HostileDocuments, CostWhatTheyHold) {
    std::string text = node(16), all;
    int const count = 20000;
    for (int i = 1; i <= count; ++i) {
        int const id = 16 * (1 + i);
        text += "<node id=\"" + std::to_string(id) + "\" type=\"Node\" parent=\"16\"/>\n";
        all += (i > 1 ? " " : "") + std::to_string(id);
    }
    text += "<node id=\"1600000\" type=\"Node\" parent=\"16\" parents=\"" + all + "\"/>\n";
    ASSERT_FALSE(load(scene, inDocument(text + text)).ok);
    std::string const once = inDocument(text);
    Loaded const result = load(scene, once);
    ASSERT_TRUE(result.ok) << std::string(result.error.begin(), result.error.end());
    std::string const again = saved(scene);
    ASSERT_TRUE(load(scene, again).ok);
    EXPECT_EQ(saved(scene), again);
}

// ---- versions ----

TEST_F(HostileDocuments, OfVersion1AreReadAsTheyWere) {
    std::string const text = fileOfVersion1();
    ASSERT_TRUE(load(scene, text).ok);
    EXPECT_EQ(scene.getDatabaseName(), L"first");
    Node* knee = scene.findNode(L"hips|knee");
    ASSERT_NE(knee, nullptr);
    EXPECT_EQ(knee->getID(), 144);
    EXPECT_EQ(knee->findAttribute(L"JointLimitReference")->asPointer()->getValue(), scene.findNode(L"hips"));
    EXPECT_EQ(knee->getParent()->findAttribute(L"note")->asString()->getValue(), L"  kept \t\x1b");
    EXPECT_EQ(knee->getParent()->findAttribute(L"weight")->getID(), 528);
    EXPECT_EQ(scene.findNode(L"hips|side|curve")->getParentCount(), 2u);
    EXPECT_EQ(scene.getInputAttribute(knee->findAttribute(L"TranslationZ"))->node().getNodeName(), L"curve");
    std::string const once = saved(scene);
    for (char const* part : {"Unheard", "far", "Glow", "Future", "400.Glow"})
        EXPECT_NE(once.find(part), std::string::npos) << part;
    ASSERT_TRUE(load(scene, once).ok);
    EXPECT_EQ(saved(scene), once);
}

// ---- what is not known ----

TEST_F(HostileDocuments, KeepWhatIsNotKnownWhereItStood) {
    std::string const text = inDocument(
        node(16, "name=\"a\"", "<a n=\"Old\">1</a>") +
        node(256, "name=\"b\"",
             "<a n=\"New\">\xE2\x90\x9B"
             "001B</a>") +
        "<node id=\"512\" type=\"AnimationLayers\" name=\"l\"><e n=\"Layers\" id=\"544\"><q x=\"1\"/></e></node>");
    ASSERT_TRUE(load(scene, text).ok);
    scene.findNode(L"a")->remove();
    std::string const once = saved(scene);
    EXPECT_EQ(once.find("Old"), std::string::npos);
    std::size_t const inElement = once.find("<q x=\"1\"/>"), element = once.find("id=\"544\"");
    EXPECT_NE(once.find("<a n=\"New\">\xE2\x90\x9B"
                        "001B</a>"),
              std::string::npos)
        << once;
    EXPECT_LT(element, inElement);
    EXPECT_LT(inElement, once.find("</e>"));
    ASSERT_TRUE(load(scene, once).ok);
    EXPECT_EQ(saved(scene), once);
}

TEST_F(HostileDocuments, KeepConnectionsThatAreNotKnownAsLongAsTheirNodesStand) {
    ASSERT_TRUE(load(scene, inDocument(node(16, "name=\"a\"") + node(256, "name=\"b\"") +
                                       "<connection id=\"512\" from=\"16.Future\" to=\"256.TranslationX\"/>"
                                       "<connection id=\"528\" from=\"999.Lost\" to=\"256.TranslationX\"/>"))
                    .ok);
    std::string const once = saved(scene);
    EXPECT_NE(once.find("16.Future"), std::string::npos);
    EXPECT_EQ(once.find("Lost"), std::string::npos);
    scene.findNode(L"a")->remove();
    EXPECT_EQ(saved(scene).find("Future"), std::string::npos);
    scene.commitTransient();
    scene.undo();
    EXPECT_EQ(saved(scene), once);
}

// The second node's place is taken by the first, which has become larger: what leads to it follows.
TEST_F(HostileDocuments, ConnectNodesWhoseIdsHadToBeReplaced) {
    ASSERT_TRUE(load(scene, inDocument(node(16, "name=\"a\"") + node(32, "name=\"b\"") +
                                       "<connection id=\"32\" from=\"16.TranslationX\" to=\"32.TranslationX\"/>"
                                       "<connection id=\"48\" from=\"16.Future\" to=\"32.TranslationY\"/>"))
                    .ok);
    Node *a = scene.findNode(L"a"), *b = scene.findNode(L"b");
    EXPECT_EQ(scene.getInputAttribute(b->findAttribute(L"TranslationX")), a->findAttribute(L"TranslationX"));
    EXPECT_NE(saved(scene).find("to=\"" + std::to_string(b->getID()) + ".TranslationY\""), std::string::npos);
}

// What evaluation remembers of a structure must not be taken for that of another.
TEST_F(HostileDocuments, EvaluateAfterLoadingAgainAndAgain) {
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(load(scene, before).ok);
        Node *hips = scene.findNode(L"hips"), *knee = scene.findNode(L"hips|knee");
        for (float x : {1.0f, 2.0f, 3.0f, 4.0f}) {
            hips->findAttribute(L"TranslationX")->asFloat()->setValue(x);
            EXPECT_EQ(knee->findAttribute(L"WorldMatrix")->asMatrix34()->getValue().m[3][1], x);
        }
        EXPECT_EQ(scene.connect(hips->findAttribute(L"TranslationZ"), knee->findAttribute(L"TranslationZ")), Connected);
    }
}

}  // namespace
}  // namespace sg::test
