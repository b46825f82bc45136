// Random commands with random parameters on random selections of an imported clip; the same seed runs the same ones.
#include "tests/commands/clip.h"
#include "tests/commands/fixture.h"
#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace Tavo {
namespace {

constexpr std::size_t fewest = 40, most = 300;  // objects below the root, more or less

class RandomCommands : public CommandTest, public testing::WithParamInterface<unsigned> {
protected:
    RandomCommands() : random_(GetParam()) {
        scene().New();
        importClipInto(scene(), 60, 24);
        scene().SceneGraph()->ClearUndoHistory();
        for (XCommandInfo const& command : XCommandCatalogue::List(settings())) names_.push_back(command.name);
    }

    void step() {
        if (steps_++ % 32 == 0) look();
        if (scene().IsPlaying() && below(4) == 0) return void(run(L"Stop"));
        if (below(3) == 0) selectSome(1 + below(below(4) ? 3 : 12));
        std::wstring const name = next();
        if (below(4) == 0) change(XCommand(settings().Object(name)));
        run(name);
    }
    void finish() {
        run(L"Stop");
        scene().CommitTransient();
    }

    // ---- what always holds ----
    void checkSelection() {
        std::set<int> ids;  // a curve may go while it is selected: that entry is empty until an undo
        for (XObject const& object : selected()) ASSERT_TRUE(!object.IsValid() || ids.insert(object.ObjectID()).second);
    }
    void checkNames() {
        std::vector<db::Node*> nodes;
        scene().SceneGraph()->getDescendents(nodes);
        std::set<std::pair<db::Node*, std::wstring>> names;
        for (db::Node* node : nodes)
            ASSERT_TRUE(names.insert({node->getParent(), node->getNodeName()}).second)
                << Qelutils::toUtf8(XObject(node).Path());
    }
    void checkHistory() {
        if (scene().IsPlaying()) return;
        scene().CommitTransient();
        std::string const before = bytes();
        int const count = std::min(undoCount(), int(below(40)));
        for (int i = 0; i < count; ++i) undo();
        for (int i = 0; i < count; ++i) redo();
        ASSERT_TRUE(bytes() == before);
    }
    // Handles on what is there, was there, and went for good.
    void useHandles() {
        for (XObject& object : handles_) {
            ASSERT_EQ(object.IsValid(), scene().SceneGraph()->Node(object.ObjectID()) != nullptr);
            object.Path();
            XTransform const transform(object);
            XMatrix const world = transform.WorldMatrix().Matrix();
            for (int i = 0; i < 16; ++i) ASSERT_TRUE(std::isfinite(world.Element(i / 4, i % 4)));
        }
    }

private:
    std::size_t below(std::size_t n) { return random_() % n; }
    template<class Values> auto const& any(Values const& values) { return values[below(std::size(values))]; }

    void look() {
        Qelutils::Vector<XObject> found;
        scene().RootObject().DescendantObjects(found);
        objects_.assign(found.begin(), found.end());
        if (handles_.size() > 2000) handles_.clear();
        handles_.insert(handles_.end(), objects_.begin(), objects_.end());
    }
    XObject object() {
        static XWord const fixed[] = {L"Scene", L"MoveTool", L"DisplayGroups", L"SceneSettings", L"AnimationLayers"};
        if (objects_.empty() || below(50) == 0) return scene().Object(std::wstring(any(fixed)));
        return any(objects_);
    }
    void selectSome(std::size_t count) {
        std::vector<XObject> chosen;
        while (count-- > 0) chosen.push_back(object());
        scene().BeginChangeBlock();
        select(chosen);
        scene().EndChangeBlock();
    }
    // One with little below it, so that it is not the whole skeleton that goes.
    void selectLittle() {
        for (int tries = 0; tries < 20; ++tries) {
            selectSome(1);
            Qelutils::Vector<XObject> under;
            if (!selected().empty()) selected().front().DescendantObjects(under);
            if (under.size() < 4) return;
        }
    }
    std::wstring next() {
        if (objects_.size() > most && below(2)) {
            selectSome(objects_.size() / 4);
            return L"Delete";
        }
        if (objects_.size() < fewest && below(8) == 0 && !scene().IsPlaying()) {
            importClipInto(scene(), 60, 24);
            look();
        }
        std::wstring name = any(names_);
        if (name == L"AlignAxis" && below(20)) name = L"SetKey";  // it takes the curves of the whole skeleton
        if ((name == L"Delete" || name == L"Remove") && below(50)) selectLittle();
        if (name == L"CreateShape" && objects_.size() > most / 2) selectSome(2);
        return name;
    }

    void change(XCommand const& command) {
        for (int i = XCommand::FirstParameter; i < command.AttributeCount(); ++i)
            if (below(3) == 0) change(command.Attribute(i));
    }
    // Chains grow to a hundred joints: scales of a part or a multiple would leave the range of numbers.
    void change(XAttribute parameter) {
        static constexpr float numbers[] = {-2, -0.5f, 0, 1e-6f, 0.1f, 1, 1.5f, 100}, scales[] = {-1, 0, 1, 1, 1.01f};
        if (parameter.IsCompositeAttribute())
            for (int i = 0; i < parameter.AttributeCount(); ++i) change(parameter.Attribute(i));
        else if (parameter.IsBool())
            parameter.SetBoolean(below(2));
        else if (parameter.IsEnum())
            parameter.SetEnumeration(int(below(8)) - 1);
        else if (parameter.IsInt())
            parameter.SetInteger(int(below(40)) - 4);
        else
            parameter.SetFloat(parameter.Name().starts_with(L"Scale") ? any(scales) : any(numbers));
    }

    std::mt19937 random_;
    std::vector<std::wstring> names_;
    std::vector<XObject> objects_, handles_;
    int steps_ = 0;
};

// Rigs and their solves are what costs, and some ten times as much under the sanitizers.
#if defined(__SANITIZE_ADDRESS__)
constexpr int commandsToRun = 2000;
#else
constexpr int commandsToRun = 5000;
#endif

TEST_P(RandomCommands, AreUndoneToTheFirstByteAndRedoneToTheLast) {
    SCOPED_TRACE(testing::Message() << "seed " << GetParam());
    std::string const first = bytes();
    for (int i = 0; i < commandsToRun && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "step " << i << ", " << Qelutils::toUtf8(application().LastCommandName()));
        step();
        checkSelection();
        if (i % 100 == 0) checkNames(), useHandles(), checkHistory();
    }
    finish();
    std::string const last = bytes();
    int const steps = undoCount();
    EXPECT_GT(steps, commandsToRun / 10);
    while (undoCount() > 0) undo();
    EXPECT_TRUE(bytes() == first);
    while (scene().SceneGraph()->getRedoCount() > 0) redo();
    EXPECT_EQ(undoCount(), steps);
    EXPECT_TRUE(bytes() == last);
    checkNames();
    useHandles();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCommands, testing::Values(1u, 2u, 3u));

}  // namespace
}  // namespace Tavo
