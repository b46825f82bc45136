#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "tests/app/fixture.h"
#include <random>

namespace Tavo {
namespace {

struct Layer {
    std::wstring label;
    float weight;
    XColour colour;
    bool visible, isOverride;
    bool operator==(Layer const&) const = default;
};
XColour const white{1, 1, 1, 1};
Layer const background{L"Background", 1, white, true, true};
Layer added(int number) { return {L"Animation Layer " + std::to_wstring(number), 1, white, true, false}; }

class AnimationLayers : public StartedApplication {
protected:
    using Table = std::vector<Layer>;
    static Table table(XAnimationLayers const& layers) {
        Table all;
        for (int i = 0; i < layers.LayerCount(); ++i)
            all.push_back({layers.LayerLabel(i), layers.LayerWeight(i), layers.LayerColour(i), layers.IsVisibleLayer(i),
                           layers.IsOverrideLayer(i)});
        return all;
    }
    Table table() const { return table(layers); }
    void edit(std::function<void()> const& change) const {
        scene().BeginChangeBlock();
        change();
        scene().EndChangeBlock(L"layers");
    }
    XAnimationLayers layers = scene().AnimationLayers();
};

// ---- the table ----

TEST_F(AnimationLayers, OfANewTableAreTheBaseLayer) {
    EXPECT_EQ(table(), Table{background});
    EXPECT_EQ(table(XAnimationLayers(scene().CreateObject(XAnimationLayers::TypeID))), Table{background});
}

TEST_F(AnimationLayers, AreRowsOfFiveFieldsInTheirOrder) {
    EXPECT_EQ(layers.ObjectType(), L"AnimationLayers");
    ASSERT_TRUE(layers.Layers().IsAttributeArray());
    EXPECT_EQ(layers.Layers(), layers.Attribute(8));
    XAttribute const row = layers.Layers().Attribute(0);
    ASSERT_EQ(row.AttributeCount(), 5);
    EXPECT_TRUE(row.Attribute(0).IsString());
    EXPECT_TRUE(row.Attribute(1).IsFloat());
    ASSERT_EQ(row.Attribute(2).AttributeCount(), 4);
    for (int part = 0; part < 4; ++part) EXPECT_TRUE(row.Attribute(2).Attribute(part).IsFloat());
    EXPECT_TRUE(row.Attribute(3).IsBool());
    EXPECT_TRUE(row.Attribute(4).IsBool());
}

TEST_F(AnimationLayers, AreNumberedWithTheBaseLayerCounted) {
    EXPECT_TRUE(layers.AddLayer().AddLayer() == layers) << "calls chain";
    EXPECT_EQ(table(), (Table{background, added(2), added(3)}));
}

TEST_F(AnimationLayers, MayShareALabel) {
    layers.AddLayer().SetLayerLabel(1, L"Animation Layer 3").AddLayer();
    EXPECT_EQ(layers.LayerLabel(1), layers.LayerLabel(2));
}

TEST_F(AnimationLayers, AreCountedAfreshOnceTheyAreCleared) {
    layers.AddLayer().AddLayer().ClearLayers().AddLayer().AddLayer();
    EXPECT_EQ(table(), (Table{background, added(2), added(3)}));
}

TEST_F(AnimationLayers, LoseAllThatWasSetWhenTheyAreCleared) {
    layers.AddLayer();
    for (int i : {0, 1}) {
        layers.SetLayerLabel(i, L"mine").SetLayerWeight(i, 0.5F).SetLayerColour(i, 0, 0, 0, 0);
        layers.SetIsVisibleLayer(i, false).SetIsOverrideLayer(i, false);
    }
    EXPECT_TRUE(layers.ClearLayers() == layers);
    EXPECT_EQ(table(), Table{background});
}

TEST_F(AnimationLayers, TakeEachFieldAlone) {
    layers.AddLayer();
    Layer expected = added(2);
    auto const expect = [&] { EXPECT_EQ(table(), (Table{background, expected})); };
    layers.SetLayerLabel(1, expected.label = L"Haltung \u00E4\n");
    expect();
    layers.SetLayerWeight(1, expected.weight = 0.25F);
    expect();
    layers.SetLayerColour(1, expected.colour = XColour(0.1F, 0.2F, 0.3F, 0.4F));
    expect();
    layers.SetLayerColour(1, 0.5F, 0.6F, 0.7F, 0.8F);
    expected.colour = XColour(0.5F, 0.6F, 0.7F, 0.8F);
    expect();
    layers.SetIsVisibleLayer(1, expected.visible = false);
    expect();
    layers.SetIsOverrideLayer(1, expected.isOverride = true);
    expect();
}

TEST_F(AnimationLayers, AreLeftAloneByNumbersThatTheyDoNotHave) {
    layers.AddLayer();
    Table const before = table();
    for (int bad : {-1, 2, 99, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        layers.SetLayerLabel(bad, L"x").SetLayerWeight(bad, 7).SetLayerColour(bad, white).SetIsVisibleLayer(bad, true);
        layers.SetIsOverrideLayer(bad, true);
        EXPECT_EQ(layers.LayerLabel(bad), L"");
        EXPECT_EQ(layers.LayerWeight(bad), 0);
        EXPECT_EQ(layers.LayerColour(bad), XColour(0, 0, 0, 0));
        EXPECT_FALSE(layers.IsVisibleLayer(bad) || layers.IsOverrideLayer(bad));
    }
    EXPECT_EQ(table(), before);
}

TEST_F(AnimationLayers, OfAnInvalidObjectAreNone) {
    XAnimationLayers none;
    EXPECT_FALSE(none.IsValid());
    EXPECT_FALSE(XAnimationLayers(scene().Selection()).IsValid());
    none.ClearLayers().AddLayer().SetLayerLabel(0, L"x").SetLayerWeight(0, 1).SetLayerColour(0, white);
    EXPECT_EQ(none.LayerCount(), 0);
    EXPECT_EQ(none.LayerLabel(0), L"");
}

TEST_F(AnimationLayers, AreTheBaseLayerAgainOnceInitialized) {
    layers.AddLayer().SetLayerLabel(0, L"mine");
    layers.Initialize();
    EXPECT_EQ(table(), Table{background});
}

// ---- undo ----

TEST_F(AnimationLayers, ComeAndGoWithUndo) {
    edit([&] { layers.AddLayer(); });
    edit([&] { layers.SetLayerLabel(1, L"mine").SetLayerColour(1, 0, 0, 0, 0).SetIsVisibleLayer(1, false); });
    Table const set = table();
    edit([&] { layers.ClearLayers(); });
    EXPECT_EQ(undoCount(), 3);
    scene().Undo();
    EXPECT_EQ(table(), set);
    scene().Undo();
    EXPECT_EQ(table(), (Table{background, added(2)}));
    scene().Undo();
    EXPECT_EQ(table(), Table{background});
    for (int i = 0; i < 3; ++i) scene().Redo();
    EXPECT_EQ(table(), Table{background});
    scene().Undo();
    EXPECT_EQ(table(), set);
}

TEST_F(AnimationLayers, FollowAPlainListThroughAnyEditsAndBack) {
    std::mt19937 random(5);
    auto const below = [&](int end) { return int(random() % unsigned(end)); };
    std::vector<Table> history{table()};
    Table model = table();
    for (int step = 0; step < 200; ++step) {
        int const layer = below(int(model.size()));
        float const value = float(below(100)) / 100;
        edit([&] {
            switch (below(8)) {
            case 0: layers.ClearLayers(), model = {background}; break;
            case 1: layers.SetLayerLabel(layer, model[layer].label = std::to_wstring(step)); break;
            case 2: layers.SetLayerWeight(layer, model[layer].weight = value); break;
            case 3: layers.SetLayerColour(layer, model[layer].colour = XColour(value, 1 - value, 0, value)); break;
            case 4: layers.SetIsVisibleLayer(layer, model[layer].visible = below(2)); break;
            case 5: layers.SetIsOverrideLayer(layer, model[layer].isOverride = below(2)); break;
            default: layers.AddLayer(), model.push_back(added(int(model.size()) + 1));
            }
        });
        ASSERT_EQ(table(), model) << step;
        // What changes nothing is no step of its own.
        if (undoCount() == int(history.size())) history.push_back(model);
    }
    for (std::size_t i = history.size() - 1; i-- > 0;) {
        scene().Undo();
        ASSERT_EQ(table(), history[i]) << i;
    }
    for (Table const& each : history) {
        ASSERT_EQ(table(), each);
        scene().Redo();
    }
}

// ---- in scenes and files ----

TEST_F(AnimationLayers, OfEverySceneAreItsOwn) {
    layers.AddLayer();
    application().AddScene();
    EXPECT_EQ(scene().AnimationLayers().Path(), L"AnimationLayers");
    EXPECT_EQ(table(scene().AnimationLayers()), Table{background});
    EXPECT_EQ(table(), (Table{background, added(2)}));
    application().GetScene(0).New();
    EXPECT_EQ(table(application().GetScene(0).AnimationLayers()), Table{background});
}

std::string saved(XScene& scene) {
    db::StringOutputStream stream;
    EXPECT_TRUE(db::SaverXML(stream).save(*scene.SceneGraph()));
    return stream.text();
}

void open(XScene& scene, std::string const& text) {
    db::StringInputStream stream(text);
    ASSERT_TRUE(db::LoaderXML(stream).load(*scene.SceneGraph()));
    scene.Open();
}

TEST_F(AnimationLayers, ComeBackFromAFile) {
    layers.AddLayer().AddLayer().SetLayerLabel(0, L" base ").SetLayerWeight(1, 1.F / 3).SetIsVisibleLayer(1, false);
    layers.SetIsOverrideLayer(0, false).SetLayerLabel(2, L"").SetLayerColour(2, 0.1F, 0.2F, 0.3F, 0);
    Table const before = table();
    std::string const text = saved(scene());
    scene().New();
    open(scene(), text);
    EXPECT_EQ(table(scene().AnimationLayers()), before);
    EXPECT_EQ(saved(scene()), text);
}

TEST_F(AnimationLayers, AreMadeWhereAFileHasNone) {
    layers.AddLayer();
    open(scene(), "<tavo format=\"1\" name=\"s\"/>");
    EXPECT_EQ(table(scene().AnimationLayers()), Table{background});
}

}  // namespace
}  // namespace Tavo
