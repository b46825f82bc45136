// The sets that a scene keeps of its selection.
#include "tavo/interaction/scene_objects.h"
#include "tests/interaction/selection_fixture.h"

namespace Tavo {
namespace {

class OpenScene : public XScene {
public:
    OpenScene() {
        Register();
        New();
    }
    ~OpenScene() override { Unregister(); }
    using XScene::clearSelectionCache, XScene::loadSelectionCache, XScene::reloadSelectionCache, XScene::selectionCache;

    XObject joint(XObject const& parent = {}) { return CreateObject(XJoint::TypeID, parent); }
    std::vector<int> selected() const { return sorted(selectionCache().selected); }
    std::vector<int> descendants() const { return sorted(selectionCache().descendants); }
    static std::vector<int> ids(std::vector<XObject> const& objects) {
        std::vector<int> out;
        for (XObject const& each : objects) out.push_back(each.ObjectID());
        std::sort(out.begin(), out.end());
        return out;
    }

private:
    static std::vector<int> sorted(ObjectIDs const& ids) {
        std::vector<int> out(ids.begin(), ids.end());
        std::sort(out.begin(), out.end());
        return out;
    }
};

class SceneCaches : public StartedApplication {
protected:
    OpenScene s;
    XObject a = s.joint(), b = s.joint(a), c = s.joint(b), d = s.joint(b), other = s.joint();
};

TEST_F(SceneCaches, HoldWhatIsSelectedAndAllBelowIt) {
    s.Selection().Append(b).Append(other);
    EXPECT_EQ(s.selected(), s.ids({b, other}));
    EXPECT_EQ(s.descendants(), s.ids({c, d}));
    s.Selection().Select(c);
    EXPECT_EQ(s.selected(), s.ids({c}));
    EXPECT_TRUE(s.descendants().empty());
}

TEST_F(SceneCaches, NestedSelectionsStandInBoth) {
    for (Objects const& order : {Objects{a, b, c}, Objects{c, b, a}, Objects{b, a, c}}) {
        s.Selection().Select(order);
        EXPECT_EQ(s.selected(), s.ids({a, b, c}));
        EXPECT_EQ(s.descendants(), s.ids({b, c, d}));
    }
}

TEST_F(SceneCaches, AChildOfSeveralParentsCountsBelowEach) {
    other.getNode()->addChild(*c.getNode());
    s.Selection().Select(other);
    EXPECT_EQ(s.descendants(), s.ids({c}));
}

TEST_F(SceneCaches, FollowUndoAndRedo) {
    s.Selection().Select(b);
    s.Selection().Select(other);
    s.Undo();
    EXPECT_EQ(s.selected(), s.ids({b}));
    EXPECT_EQ(s.descendants(), s.ids({c, d}));
    s.Redo();
    EXPECT_EQ(s.selected(), s.ids({other}));
    EXPECT_TRUE(s.descendants().empty());
}

TEST_F(SceneCaches, StandAsLongAsTheSelectionDoes) {
    s.Selection().Select(b);
    s.CommitTransient();
    EXPECT_EQ(s.descendants(), s.ids({c, d}));
    d.SetParent(other);
    s.CommitTransient();
    EXPECT_EQ(s.descendants(), s.ids({c, d}));
    s.reloadSelectionCache();
    EXPECT_EQ(s.descendants(), s.ids({c}));
}

TEST_F(SceneCaches, AreEmptiedAndLoadedApart) {
    s.Selection().Select(b);
    s.clearSelectionCache();
    EXPECT_TRUE(s.selected().empty() && s.descendants().empty());
    s.loadSelectionCache();
    EXPECT_EQ(s.selected(), s.ids({b}));
    EXPECT_EQ(s.descendants(), s.ids({c, d}));
}

TEST_F(SceneCaches, AreReadyWhenObserversAreTold) {
    struct Watcher : XSceneObserver {
        explicit Watcher(OpenScene& scene_) : scene(scene_) { XApplication::Instance().AddSceneObserver(this); }
        ~Watcher() override { XApplication::Instance().RemoveSceneObserver(this); }
        void OnSceneChanged(XSceneChange const&, bool) override { heard.push_back(scene.descendants()); }
        OpenScene& scene;
        std::vector<std::vector<int>> heard;
    };
    s.CommitTransient();
    Watcher const watcher(s);
    s.Selection().Select(b);
    EXPECT_EQ(watcher.heard, std::vector<std::vector<int>>{s.ids({c, d})});
}

TEST_F(SceneCaches, AreEmptyInANewDocument) {
    s.Selection().Select(b);
    s.New();
    EXPECT_TRUE(s.selected().empty() && s.descendants().empty());
}

TEST_F(SceneCaches, LeaveOutWhatIsGone) {
    s.Selection().Append(b).Append(other);
    other.getNode()->remove();
    s.reloadSelectionCache();
    EXPECT_EQ(s.selected(), s.ids({b}));
}

}  // namespace
}  // namespace Tavo
