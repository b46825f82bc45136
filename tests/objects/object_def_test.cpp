#include "tests/objects/fixture.h"

namespace Tavo {
namespace {

using ObjectDef = ObjectModel;
using testing::ElementsAre;

TEST_F(ObjectDef, ListsItsTypesFromTheRootDown) {
    XObjectDef const& joint = XJoint::Definition();
    EXPECT_THAT(joint.NodeTypes(), ElementsAre(L"Node", L"Renderable", L"TransformBase", L"Transform", L"Joint"));
    EXPECT_THAT(joint.ObjectTypes(), ElementsAre(L"Object", L"SceneObject", L"RenderObject", L"Transform", L"Joint"));
    EXPECT_EQ(joint.ObjectType(), L"Joint");
    EXPECT_EQ(joint.NodeType(), L"Joint");
    EXPECT_EQ(joint.NodeTypeID(), sg::JointNode::Def.getTypeID());
}

TEST_F(ObjectDef, ATypeWithoutANodeClassHasItsBases) {
    EXPECT_EQ(XKeyframe::Definition().NodeType(), L"Node");
    EXPECT_EQ(XKeyframe::Definition().ObjectType(), L"Keyframe");
}

TEST_F(ObjectDef, NodeTypeIdsHoldTheDerivedTypes) {
    auto const& ids = XTransform::Definition().NodeTypeIDs();
    auto holds = [&](db::NodeDef const& def) { return std::count(ids.begin(), ids.end(), def.getTypeID()) == 1; };
    EXPECT_TRUE(holds(sg::TransformNode::Def) && holds(sg::JointNode::Def) && holds(sg::CameraNode::Def));
    EXPECT_FALSE(holds(sg::NullNode::Def) || holds(sg::RenderableNode::Def));
}

struct Unused : XTyped<Unused, XObject> {
    static constexpr XWord TypeID = L"Unused";
    using XTyped::XTyped;
};

TEST_F(ObjectDef, ATypeInUseCannotBeUnregistered) {
    {
        XCamera const camera;
        EXPECT_FALSE(XCamera::Definition().CanUnregister());
        EXPECT_FALSE(XTransform::Definition().CanUnregister()) << "a camera is a transform";
    }
    EXPECT_TRUE(Unused::Definition().CanUnregister());
    Unused const handle;
    EXPECT_FALSE(Unused::Definition().CanUnregister());
    TestDocument document;
    XModule module(document);
    module.Register(new XTypedDef<Unused>);
    EXPECT_FALSE(module.Unregister());
    EXPECT_NE(document.ObjectDefinition(L"Unused"), nullptr) << "nothing changed";
}

class Fake : public XTyped<Fake, XObject> {
public:
    static constexpr XWord TypeID = L"Fake";
    using XTyped::XTyped;
};
struct CountedDef : XTypedDef<Fake> {
    explicit CountedDef(int& alive) : alive(alive) { ++alive; }
    ~CountedDef() override { --alive; }
    int& alive;
};

TEST_F(ObjectDef, TheFirstOfANameStaysAndBothBelongToTheDatabase) {
    int alive = 0;
    {
        TestDocument document;
        auto* first = new CountedDef(alive);
        document.CoreModule().Register(first);
        document.CoreModule().Register(new CountedDef(alive));
        document.CoreModule().Register(nullptr);
        EXPECT_EQ(document.ObjectDefinition(L"Fake"), first);
        EXPECT_EQ(first->InitialModule(), &document.CoreModule());
        EXPECT_EQ(errors(), none());
        document.Unregister();
        EXPECT_EQ(alive, 0);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(ObjectDef, AModuleTakesItsDefinitionsAlong) {
    int alive = 0;
    TestDocument document;
    XModule plugin(document);
    plugin.Register(new CountedDef(alive));
    EXPECT_TRUE(plugin.Unregister());
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(document.ObjectDefinition(L"Fake"), nullptr);
    EXPECT_NE(document.ObjectDefinition(L"Joint"), nullptr);
}

TEST_F(ObjectDef, ADefinitionThatIsUnregisteredIsTheCallersAgain) {
    int alive = 0;
    TestDocument document;
    auto def = std::make_unique<CountedDef>(alive);
    EXPECT_FALSE(document.CoreModule().Unregister(def.get()));
    document.CoreModule().Register(def.get());
    EXPECT_TRUE(document.CoreModule().Unregister(def.get()));
    EXPECT_FALSE(document.CoreModule().Unregister(def.get()));
    EXPECT_EQ(alive, 1);
}

// ---- translators ----

struct Clip : XTranslatorDef {
    explicit Clip(std::wstring extension) : extension(std::move(extension)) {}
    std::wstring Extension() const override { return extension; }
    std::wstring extension;
};

TEST_F(ObjectDef, ASecondTranslatorForAnExtensionIsRefusedAloud) {
    TestDocument document;
    auto* first = new Clip(L"BVH");
    document.CoreModule().Register(first);
    document.CoreModule().Register(new Clip(L"BVH"));
    EXPECT_THAT(errors(), ElementsAre(L"A translator for the file extension \"BVH\" is already registered.You must "
                                      L"un-register it before trying to register another."));
    EXPECT_EQ(document.Translators().at(L"BVH"), first);
}

TEST_F(ObjectDef, TranslatorsAreKeyedByUpperCaseExtension) {
    TestDocument document;
    document.CoreModule().Register(new Clip(L"trc"));
    document.CoreModule().Register(new Clip(L"BVH"));
    std::vector<std::wstring> keys;
    for (auto const& [key, translator] : document.Translators()) keys.push_back(key);
    EXPECT_THAT(keys, ElementsAre(L"BVH", L"TRC"));
}

TEST_F(ObjectDef, UnregisteringAnUnknownTranslatorIsSaid) {
    TestDocument document;
    Clip clip(L"BVH");
    EXPECT_FALSE(document.CoreModule().Unregister(&clip));
    EXPECT_THAT(errors(), ElementsAre(L"Cannot unregister a translator for extension \"BVH\" that is not registered"));
}

TEST_F(ObjectDef, ATranslatorDoesNothingUnlessOverridden) {
    XTranslatorDef def;
    EXPECT_TRUE(def.IsTranslator());
    EXPECT_FALSE(XJoint::Definition().IsTranslator());
    EXPECT_EQ(def.Extension() + def.Filter(), L"");
    EXPECT_FALSE(def.SupportsImport() || def.SupportsExport() || def.Import(scene(), L"") || def.Export(scene(), L""));
}

}  // namespace
}  // namespace Tavo
