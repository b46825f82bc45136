// What selecting costs: the growth of what takes n objects, and what touches one among many beside the same among few.
#include "bench/timing.h"
#include "tavo/tavo.h"
#include <memory>
#include <random>

namespace {

using namespace bench;
using namespace Tavo;

// ---- the scene: n joints under the root, siblings of each other ----

struct Crowd {
    explicit Crowd(std::size_t count) {
        scene.Register();
        scene.New();
        scene.BeginChangeBlock();
        for (std::size_t i = 0; i < count; ++i) joints.push_back(scene.CreateObject(XJoint::TypeID));
        scene.EndChangeBlock();
        first = scene.RootObject().Child(0), last = joints.back();
        forget();
    }
    ~Crowd() { scene.Unregister(); }
    XSelection selection() const { return scene.Selection(); }
    XObject middle() const { return joints[joints.size() / 2]; }
    void forget() { scene.SceneGraph()->ClearUndoHistory(); }
    void changeSiblings() {  // what is kept of the children's order is worth nothing any more
        XObject passing = scene.CreateObject(XJoint::TypeID);
        passing.getNode()->remove();
        scene.CommitTransient();
        forget();
    }

    XScene scene;
    Qelutils::Vector<XObject> joints;
    XObject first, last;
};

std::vector<std::pair<std::size_t, std::unique_ptr<Crowd>>> crowds;  // each size is made once

Crowd& crowd(std::size_t count) {
    for (auto& [size, made] : crowds)
        if (size == count) return *made;
    return *crowds.emplace_back(count, std::make_unique<Crowd>(count)).second;
}

// The time of `run` on a crowd with nothing selected.
template<class F> double fromNothing(std::size_t count, F const& run) {
    Crowd& c = crowd(count);
    c.selection().Clear();
    double const time = seconds([&] { run(c); });
    c.forget();
    return time;
}

// ---- growth ----

void Select(benchmark::State& state) {
    grow(state, [](std::size_t count) { return fromNothing(count, [](Crowd& c) { c.selection().Select(c.joints); }); });
}
BENCHMARK(Select)->UseManualTime()->Iterations(11);

void AppendEachInOneBlock(benchmark::State& state) {
    grow(state, [](std::size_t count) {
        return fromNothing(count, [](Crowd& c) {
            c.scene.BeginChangeBlock();
            for (XObject const& joint : c.joints) c.selection().Append(joint);
            c.scene.EndChangeBlock();
        });
    });
}
BENCHMARK(AppendEachInOneBlock)->UseManualTime()->Iterations(11);

// The history is left to its own limit: whoever allocates after 100,000 steps were freed at once pays for sorting them.
void AppendEachAsAStep(benchmark::State& state) {
    grow(state, [](std::size_t count) {
        Crowd& c = crowd(count);
        c.selection().Clear();
        return seconds([&] {
            for (XObject const& joint : c.joints) c.selection().Append(joint);
        });
    });
}
BENCHMARK(AppendEachAsAStep)->UseManualTime()->Iterations(5);

void SelectAll(benchmark::State& state) {
    grow(state, [](std::size_t count) { return fromNothing(count, [](Crowd& c) { c.selection().SelectAll(); }); });
}
BENCHMARK(SelectAll)->UseManualTime()->Iterations(11);

void SelectByType(benchmark::State& state) {
    grow(state, [](std::size_t count) {
        return fromNothing(count, [](Crowd& c) { c.selection().SelectByType(XJoint::TypeID, IsObjectType); });
    });
}
BENCHMARK(SelectByType)->UseManualTime()->Iterations(11);

void DeselectHalfAsAList(benchmark::State& state) {
    grow(state, [](std::size_t count) {
        Crowd& c = crowd(count);
        std::vector<std::wstring> paths;
        for (std::size_t i = 0; i < count; i += 2) paths.push_back(c.joints[i].Path());
        c.selection().Select(c.joints);
        double const time = seconds([&] { c.selection().Deselect(paths); });
        c.forget();
        return time;
    });
}
BENCHMARK(DeselectHalfAsAList)->UseManualTime()->Iterations(11);

// ---- one among many, against one among 1,000 ----

constexpr std::size_t questions = 1000;

template<class F, class R> void amongMany(benchmark::State& state, double count, F const& run, R const& reset) {
    Crowd &many = crowd(100000), &few = crowd(1000);
    reset(many), reset(few);
    compare(
        state, count, [&] { run(many); }, [&] { run(few); }, [&] { reset(many), reset(few); });
}

// Of random objects, so that most of the cost is the way to their memory.
void IsSelectedOf100000(benchmark::State& state) {
    std::mt19937 random(1);
    amongMany(
        state, questions,
        [&](Crowd& c) {
            XSelection const selection = c.selection();
            for (std::size_t i = 0; i < questions; ++i)
                benchmark::DoNotOptimize(selection.IsSelected(c.joints[random() % c.joints.size()]));
        },
        [](Crowd& c) {
            if (c.selection().Count() < int(c.joints.size())) c.selection().Select(c.joints);
            c.forget();
        });
}
BENCHMARK(IsSelectedOf100000)->UseManualTime()->Iterations(101);

void IsSelectedOfTheSameTen(benchmark::State& state) {
    amongMany(
        state, questions,
        [&](Crowd& c) {
            XSelection const selection = c.selection();
            for (std::size_t i = 0; i < questions; ++i)
                benchmark::DoNotOptimize(selection.IsSelected(c.joints[i % 10]));
        },
        [](Crowd& c) {
            if (c.selection().Count() < int(c.joints.size())) c.selection().Select(c.joints);
            c.forget();
        });
}
BENCHMARK(IsSelectedOfTheSameTen)->UseManualTime()->Iterations(101);

constexpr int steps = 100;

void SelectNextAmong100000(benchmark::State& state) {
    amongMany(
        state, steps,
        [](Crowd& c) {
            for (int i = 0; i < steps; ++i) c.selection().SelectNext();
        },
        [](Crowd& c) {
            c.changeSiblings();
            c.selection().Select(c.middle());
        });
}
BENCHMARK(SelectNextAmong100000)->UseManualTime()->Iterations(301);

void NextAndPreviousAroundTheEnds(benchmark::State& state) {
    amongMany(
        state, 2 * steps,
        [](Crowd& c) {
            for (int i = 0; i < steps; ++i) {
                benchmark::DoNotOptimize(c.last.Next());
                benchmark::DoNotOptimize(c.first.Previous());
            }
        },
        [](Crowd& c) { c.changeSiblings(); });
}
BENCHMARK(NextAndPreviousAroundTheEnds)->UseManualTime()->Iterations(101);

}  // namespace

int main(int argc, char** argv) {
    XCoreTypes types;
    XApplication& application = XApplication::Instance();
    application.AddSceneObserver(&types).AddSettingsObserver(&types);
    application.Startup(nullptr, nullptr, L"");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    crowds.clear();
    application.Shutdown();
}
