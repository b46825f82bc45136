// The selection as data: history, notices, and its agreement with a plain list whatever changes it.
#include "tavo/objects/database_change.h"
#include "tests/interaction/selection_fixture.h"
#include <algorithm>
#include <random>

namespace Tavo {
namespace {

using Events = std::vector<std::string>;
using SelectionHistory = SelectionFixture;

TEST_F(SelectionHistory, EachChangeIsOneStep) {
    scene().CommitTransient();
    scene().SceneGraph()->ClearUndoHistory();
    std::vector<Objects> states = {{}};
    std::function<void()> const changes[] = {
        [&] { selection().Append(a); },
        [&] { selection().Select(b); },
        [&] {
            selection().Append(Paths{a.Path(), c.Path()});
        },
        [&] { selection().Deselect(a); },
        [&] {
            selection().Deselect(Paths{b.Path(), c.Path()});
        },
        [&] { selection().SelectByType(XJoint::TypeID, IsObjectType); },
        [&] { selection().Clear(); },
    };
    for (auto const& change : changes) change(), states.push_back(selected());
    EXPECT_EQ(undoCount(), int(std::size(changes)));
    auto const agrees = [&](std::size_t at) {
        EXPECT_EQ(selected(), states[at]) << at;
        for (XObject const& each : {a, b, c})
            EXPECT_EQ(selection().IsSelected(each), std::count(states[at].begin(), states[at].end(), each) > 0) << at;
    };
    for (std::size_t at = states.size() - 1; at-- > 0;) scene().Undo(), agrees(at);
    for (std::size_t at = 1; at < states.size(); ++at) scene().Redo(), agrees(at);
}

TEST_F(SelectionHistory, ACancelledBlockSelectsNothing) {
    selection().Append(a).Append(b);
    scene().CommitTransient();
    scene().BeginChangeBlock();
    selection().Deselect(a).Append(c);
    EXPECT_TRUE(selection().IsSelected(c) && !selection().IsSelected(a));
    scene().CancelChangeBlock();
    EXPECT_EQ(selected(), (Objects{a, b}));
    EXPECT_TRUE(selection().IsSelected(a) && selection().IsSelected(b) && !selection().IsSelected(c));
}

TEST_F(SelectionHistory, TheSelectionOfACommandComesBackWithIt) {
    selection().Append(a).Append(b);
    inOneStep([&] {
        a.Delete();
        selection().Select(c);
    });
    EXPECT_FALSE(selection().IsSelected(a));
    scene().Undo();
    EXPECT_EQ(selected(), (Objects{a, b}));
    EXPECT_TRUE(selection().IsSelected(a) && selection().IsSelected(b));
}

TEST_F(SelectionHistory, AnObjectThatComesBackIsSelectedAgain) {
    selection().Append(a).Append(c);
    inOneStep([&] { c.getNode()->remove(); });
    EXPECT_FALSE(selection().IsSelected(c));
    scene().Undo();
    EXPECT_TRUE(selection().IsSelected(c));
    EXPECT_EQ(selected(), (Objects{a, c}));
}

TEST_F(SelectionHistory, SubObjectsTakePart) {
    selection().Select(a);
    setStoredMode(1);
    selection().AppendSubObject(3);
    scene().CommitTransient();
    selection().AppendSubObject(4);
    selection().DeselectSubObject(3);
    EXPECT_TRUE(selection().IsSelectedSubObject(4) && !selection().IsSelectedSubObject(3));
    scene().Undo();
    EXPECT_TRUE(selection().IsSelectedSubObject(4) && selection().IsSelectedSubObject(3));
    scene().Undo();
    EXPECT_TRUE(selection().IsSelectedSubObject(3) && !selection().IsSelectedSubObject(4));
}

// ---- notices ----

TEST_F(SelectionHistory, EnginesAreToldBeforeTheCommitAndAllAfterIt) {
    scene().CommitTransient();
    struct Engine : XScriptEngine {
        explicit Engine(Events& events_) : events(events_) { XApplication::Instance().AddScriptEngine(this); }
        ~Engine() override { XApplication::Instance().RemoveScriptEngine(this); }
        void note(std::string const& what, XScene& scene) {
            bool const isOpen = scene.SceneGraph()->isInChangeBlock();
            events.push_back(what + (isOpen ? " open " : " committed ") + std::to_string(scene.Selection().Count()));
        }
        void NotifySceneSelectionChanging(XScene& scene) override { note("changing", scene); }
        void NotifySceneSelectionChanged(XScene& scene, bool) override { note("changed", scene); }
        Events& events;
    };
    Recorder recorder(true);
    Engine const engine(recorder.events);
    selection().Append(a);
    EXPECT_EQ(recorder.take(), (Events{"changing open 1", "Changed 0", "Selection 0", "changed committed 1"}));
    scene().Undo();  // there is no commit to come before
    EXPECT_EQ(recorder.take(), (Events{"Changed 0", "Selection 0", "changed committed 0"}));
}

TEST_F(SelectionHistory, AGestureTellsOfItselfAsTransient) {
    scene().CommitTransient();
    Recorder recorder(true);
    scene().BeginChangeBlock(true);
    selection().Append(a);
    EXPECT_TRUE(recorder.take().empty());  // blocks nest: the outermost tells
    scene().CommitTransient();
    EXPECT_EQ(recorder.take(), (Events{"Changed transient 0", "Selection transient 0"}));
    scene().EndChangeBlock();
}

TEST_F(SelectionHistory, OnlyTheScenesOwnSelectionIsTold) {
    scene().CommitTransient();
    Recorder recorder(true);
    RecordingEngine const engine(recorder.events);
    scene().DynamicSelection().Append(a);
    XTransform(a).SetTranslation(1, 2, 3);
    scene().CommitTransient();
    for (std::string const& each : recorder.take()) EXPECT_EQ(each.find("Selection"), std::string::npos) << each;
    selection().Append(b);
    setStoredMode(1);
    recorder.take();
    scene().CommitTransient();
    Events const heard = recorder.take();
    EXPECT_TRUE(std::count(heard.begin(), heard.end(), "Selection 0"));  // of the mode too
}

TEST_F(SelectionHistory, AnEmptyBlockTellsNobody) {
    selection().Select(a);
    scene().CommitTransient();
    Recorder recorder(true);
    selection().Append(XObject()).Append(a).Deselect(c).Select(L"nowhere").Append(scene().MoveTool());
    EXPECT_TRUE(recorder.take().empty());
}

TEST_F(SelectionHistory, AChangeSaysWhetherItIsOfTheSelectionOrOfASelectedObject) {
    struct Watcher : XSceneObserver {
        Watcher() { XApplication::Instance().AddSceneObserver(this); }
        ~Watcher() override { XApplication::Instance().RemoveSceneObserver(this); }
        void OnSceneChanged(XSceneChange const& change, bool) override {
            heard.push_back({change.IsSelectionChange(), change.IsSelectedObjectChanged()});
        }
        std::vector<std::pair<bool, bool>> heard;
    };
    selection().Append(a).Append(c);
    scene().CommitTransient();
    Watcher watcher;
    XTransform(a).SetTranslation(1, 2, 3);
    scene().CommitTransient();
    XTransform(b).SetTranslation(1, 2, 3);
    scene().CommitTransient();
    selection().Append(b);
    inOneStep([&] { c.SetName(L"renamed"), selection().Deselect(a); });
    EXPECT_EQ(watcher.heard,
              (std::vector<std::pair<bool, bool>>{{false, true}, {false, false}, {true, false}, {true, true}}));
}

// ---- against a plain list ----

// Random edits, in and out of blocks, through the class and behind its back; the list is searched for each answer.
class RandomSelection : public SelectionFixture {
protected:
    struct State {
        Objects list;
        int mode = 0;
    };
    static constexpr int objectCount = 40, steps = 20000;

    RandomSelection() {
        for (int i = 0; i < objectCount; ++i) objects.push_back(joint());
        for (XObject const& each : objects) paths.push_back(each.Path());
        scene().CommitTransient();
        scene().SceneGraph()->ClearUndoHistory();
    }
    int number(int below) { return int(random() % unsigned(below)); }
    XObject const& any() { return objects[std::size_t(number(objectCount))]; }
    bool isInSubMode() const { return now.list.size() == 1 && now.mode >= 1; }

    void clear() { now = {}; }
    void append(XObject const& object) {
        if (std::find(now.list.begin(), now.list.end(), object) == now.list.end()) now.list.push_back(object);
    }
    void erase(XObject const& object) {
        auto const at = std::find(now.list.begin(), now.list.end(), object);
        if (at != now.list.end()) now.list.erase(at);
    }
    std::pair<Paths, Objects> some() {
        std::pair<Paths, Objects> out;
        for (int left = number(8); left > 0; --left) {
            std::size_t const i = std::size_t(number(objectCount));
            out.first.push_back(paths[i]), out.second.push_back(objects[i]);
        }
        return out;
    }

    void edit() {
        XObject const object = any();
        bool const isDeselecting = !isInSubMode();
        switch (number(12)) {
        case 0: selection().Select(object), clear(), append(object); break;
        case 1:
        case 2: selection().Append(object), append(object); break;
        case 3:
            selection().Deselect(object);
            if (isDeselecting) erase(object);
            break;
        case 4: editList(isDeselecting); break;
        case 5: selection().Entities().AddObjectRef(object), now.list.push_back(object); break;  // maybe twice
        default: write(object); break;
        case 11:
            if (number(20) == 0) selection().Clear(), clear();
        }
    }
    void editList(bool isDeselecting) {
        auto const [listedPaths, listed] = some();
        switch (number(3)) {
        case 0: selection().Select(listed), clear(); break;
        case 1: selection().Append(listedPaths); break;
        case 2:
            selection().Deselect(listedPaths);
            for (XObject const& each : listed)
                if (isDeselecting) erase(each);
            return;
        }
        for (XObject const& each : listed) append(each);
    }
    void write(XObject const& object) {  // straight to the attributes
        int const size = int(now.list.size()), at = size ? number(size) : 0;
        XAttribute entities = selection().Entities();
        switch (number(5)) {
        case 0:
            if (size) entities.SetObjectRef(object, at), now.list[std::size_t(at)] = object;
            break;
        case 1: entities.InsertObjectRef(object, at), now.list.insert(now.list.begin() + at, object); break;
        case 2:
            if (size) entities.Delete(at), now.list.erase(now.list.begin() + at);
            break;
        case 3: entities.SetArraySize(at), now.list.resize(std::size_t(at)); break;
        case 4: setStoredMode(now.mode = number(3)); break;
        }
    }

    void check(int step) {
        ASSERT_EQ(selected(), now.list) << step;
        ASSERT_EQ(selection().EditMode(), now.list.size() == 1 ? now.mode : 0) << step;
        for (int i = 0; i < 3; ++i) {
            XObject const object = any();
            bool const isThere = std::find(now.list.begin(), now.list.end(), object) != now.list.end();
            ASSERT_EQ(selection().IsSelected(object), isThere) << step;
        }
    }

    // What a step of the history leads to; a block without a change makes none.
    void commit(State const& before) {
        if (int(undoCount()) == done) return;
        ASSERT_EQ(undoCount(), done + 1);
        history.resize(std::size_t(done));
        history.push_back({before, now});
        ++done;
    }
    void inBlock() {
        State const before = now;
        scene().BeginChangeBlock();
        for (int left = 1 + number(4); left > 0; --left) edit(), check(-1);
        if (number(5) == 0) {
            scene().CancelChangeBlock();
            now = before;
        } else
            scene().EndChangeBlock();
        commit(before);
    }
    void replay() {
        if (number(3) && done > 0) {
            scene().Undo();
            now = history[std::size_t(--done)].first;
        } else if (done < int(history.size())) {
            scene().Redo();
            now = history[std::size_t(done++)].second;
        }
    }

    std::mt19937 random{7};
    Objects objects;
    Paths paths;
    State now;
    std::vector<std::pair<State, State>> history;
    int done = 0;
};

TEST_F(RandomSelection, AgreesWithAPlainListWhateverChangesIt) {
    for (int step = 0; step < steps && !HasFatalFailure(); ++step) {
        number(4) ? inBlock() : replay();
        check(step);
    }
    EXPECT_GT(done, 1000);
}

}  // namespace
}  // namespace Tavo
