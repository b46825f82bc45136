// Documents as files: what is saved comes back, bytes and all.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

std::string saved(Scene& scene) {
    db::StringOutputStream out;
    db::SaverXML saver(out, 0);
    EXPECT_TRUE(saver.save(scene));
    return out.text();
}

struct Loaded {
    bool ok;
    std::wstring error;
};
Loaded load(Scene& scene, std::string const& text) {
    db::StringInputStream in(text);
    db::LoaderXML loader(in, 0, nullptr);
    bool const ok = loader.load(scene);
    return {ok, loader.error()};
}

struct DocumentTest : ::testing::Test {
    DocumentTest() {
        hips = scene.makeNode(L"Joint", L"hips");
        knee = scene.makeNode(L"Joint", L"knee");
        settings = scene.makeNode(L"SceneSettings", L"settings");
        curve = scene.makeNode(L"Animation", L"curve");
        hips->addChild(*knee);
        hips->addChild(*curve);
        hips->findAttribute(L"TranslationX")->asFloat()->setValue(0.1f);
        hips->findAttribute(L"Colour.Red")->asFloat()->setValue(0.25f);
        knee->findAttribute(L"JointLimitReference")->asPointer()->setValue(hips);
        knee->addDynamicString(L"note", L"a \"b\" <c> \x1b")->asString()->setValue(L"  kept ");
        knee->addDynamicFloat(L"weight", 0.5f, 0, 1);
        curve->findAttribute(L"KeyframeInputValues")->asFloatArray()->setValue({0, 1, 2});
        curve->findAttribute(L"KeyframeOutputValues")->asFloatArray()->setValue({0, 1e-30f, -3.5f});
        auto* rotations = curve->findAttribute(L"KeyframeOutputValuesQuat")->asAttributeArray();
        rotations->add();
        rotations->add();
        curve->findAttribute(L"KeyframeOutputValuesQuat[1].Y")->asFloat()->setValue(2);
        scene.connect(settings->findAttribute(L"Time"), curve->findAttribute(L"InputValue"));
        scene.connect(curve->findAttribute(L"OutputValue"), knee->findAttribute(L"TranslationZ"));
        scene.connect(hips->findAttribute(L"TranslationX"), knee->findAttribute(L"weight"));
    }
    Scene scene{L"test"};
    Node *hips, *knee, *settings, *curve;
};

TEST_F(DocumentTest, WhatIsSavedComesBack) {
    std::string const text = saved(scene);
    Scene other;
    Loaded const result = load(other, text);
    ASSERT_TRUE(result.ok) << std::string(result.error.begin(), result.error.end());
    EXPECT_EQ(saved(other), text);
    Node* k = other.findNode(L"hips|knee");
    ASSERT_NE(k, nullptr);
    EXPECT_EQ(k->getID(), knee->getID());
    EXPECT_EQ(k->findAttribute(L"JointLimitReference")->asPointer()->getValue(), other.findNode(L"hips"));
    EXPECT_EQ(k->findAttribute(L"note")->asString()->getValue(), L"  kept ");
    other.findNode(L"settings")->findAttribute(L"Time")->asFloat()->setValue(2);
    EXPECT_EQ(k->findAttribute(L"WorldMatrix")->asMatrix34()->getValue().m[3][2], -3.5f);
    EXPECT_FLOAT_EQ(k->findAttribute(L"WorldMatrix")->asMatrix34()->getValue().m[3][0], 0.1f);
    EXPECT_FLOAT_EQ(k->findAttribute(L"weight")->asFloat()->getValue(), 0.1f);
}

TEST_F(DocumentTest, LoadingReplacesTheContentAndItsHistory) {
    std::string const text = saved(scene);
    db::NodeHandle const old(hips);
    scene.beginChangeBlock();
    scene.makeNode(L"Joint", L"late");
    ASSERT_TRUE(load(scene, text).ok);
    scene.endChangeBlock();
    EXPECT_EQ(old.getRef(), nullptr);
    EXPECT_EQ(scene.findNode(L"late"), nullptr);
    EXPECT_EQ(saved(scene), text);
    scene.makeNode(L"Joint", L"more");
    scene.commitTransient();
    EXPECT_TRUE(scene.undo());
    EXPECT_EQ(saved(scene), text);
}

TEST_F(DocumentTest, ABrokenFileChangesNothing) {
    std::string const text = saved(scene);
    for (std::size_t cut : {std::size_t(0), std::size_t(10), text.size() / 3, text.size() / 2, text.size() - 3}) {
        Loaded const result = load(scene, text.substr(0, cut));
        EXPECT_FALSE(result.ok);
        EXPECT_FALSE(result.error.empty());
        EXPECT_EQ(saved(scene), text);
    }
    EXPECT_TRUE(scene.undo() || true);
}

TEST_F(DocumentTest, WhatIsNotKnownSurvives) {
    std::string const text =
        "<tavo format=\"1\" name=\"x\">"
        "<node id=\"16\" type=\"Future\" name=\"f\"><a n=\"Glow\">1 2</a><z><y k=\"v\">t</y></z></node>"
        "<node id=\"64\" type=\"Joint\" name=\"j\" parent=\"16\"><a n=\"Unheard\">3</a></node>"
        "<connection id=\"640\" from=\"16.Glow\" to=\"64.TranslationX\"/></tavo>";
    ASSERT_TRUE(load(scene, text).ok);
    std::string const once = saved(scene);
    for (char const* part : {"Future", "Glow", "k=\"v\"", "Unheard", "16.Glow"})
        EXPECT_NE(once.find(part), std::string::npos) << part;
    ASSERT_TRUE(load(scene, once).ok);
    EXPECT_EQ(saved(scene), once);
}

TEST_F(DocumentTest, WrongFilesAreRefusedWithLineAndColumn) {
    for (char const* text :
         {"<tavo/>", "<other format=\"1\"/>", "<tavo format=\"9\"/>", "<tavo format=\"1\"><node id=\"16\"/></tavo>",
          "<tavo format=\"1\"><node id=\"16\" type=\"Joint\"/><node id=\"16\" type=\"Joint\"/></tavo>",
          "<tavo format=\"1\"><node id=\"16\" type=\"Joint\" parent=\"32\"/></tavo>",
          "<tavo format=\"1\"><node id=\"16\" type=\"Joint\"><a n=\"TranslationX\">x</a></node></tavo>",
          "<tavo format=\"1\"><b/></tavo>"}) {
        Loaded const result = load(scene, text);
        EXPECT_FALSE(result.ok) << text;
        EXPECT_NE(result.error.find(L"ine 1"), std::wstring::npos)
            << text << ": " << std::string(result.error.begin(), result.error.end());
    }
}

}  // namespace
}  // namespace sg
