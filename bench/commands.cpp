// What commands cost: the memory of a long history, which must grow with what changed and with nothing else, and the
// time of a run around what it does.
//
// The scene is a clip of 60 joints with a curve for each of its 183 channels, 200 keys each. A history is of commands
// alone; its bytes are told a step, by its own account (records, old values, labels) and by what the heap has grown,
// which includes nodes that only the history keeps.
#include "bench/application.h"
#include "tests/commands/clip.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <malloc.h>

namespace {

using namespace Tavo;

constexpr int joints = 60, frames = 200;
constexpr int warmUp = 2 * frames;  // then each frame has its key, and each step overwrites one

class Session : public bench::Application {
public:
    Session() {
        importClipInto(scene(), joints, frames);
        scene().SceneGraph()->ClearUndoHistory();
    }
    static void run(wchar_t const* name) { scene().RunCommand(name); }
    static void select(int count) {
        Qelutils::Vector<XObject> all;
        scene().RootObject().DescendantObjects(all, XJoint::TypeID, IsObjectType);
        scene().Selection().Clear();
        // From the last: chains do not break while they move.
        for (int i = 0; i < count; ++i) scene().Selection().Append(all[all.size() - 1 - std::size_t(i)]);
        scene().CommitTransient();
        scene().SceneGraph()->ClearUndoHistory();
    }
};

// Of this thread: other work on the machine does not count.
double cpuSeconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

double heapBytes() {
    struct mallinfo2 const info = mallinfo2();
    return double(info.uordblks) + double(info.hblkhd);
}

// ---- memory ----

struct Edit {
    char const* name;
    void (*step)(int number);
};
// Each is one step of the history.
constexpr Edit edits[] = {
    {"nothing", [](int) { Session::run(L"Copy"); }},
    {"a tool", [](int i) { Session::run(i % 2 ? L"ActivateMoveTool" : L"ActivateRotateTool"); }},
    {"a key of each rotation", [](int) { Session::run(L"GoToNextFrame"), Session::run(L"SetKey"); }},
    {"a new parent", [](int) { Session::run(L"Group"); }},
    {"created and deleted", [](int i) { Session::run(i % 2 ? L"Delete" : L"CreateJoint"); }},
};

struct Bytes {
    double history, heap;  // a step
};
Bytes bytesPerStep(Edit const& edit, int selected, int steps) {
    Session session;
    session.scene().SetActiveTool(unsigned(RotateTool));
    session.select(selected);
    for (int i = 0; i < warmUp; ++i) edit.step(i);
    session.scene().SceneGraph()->ClearUndoHistory();
    double const heap = heapBytes();
    for (int i = 0; i < steps; ++i) edit.step(i);
    if (session.scene().SceneGraph()->getUndoCount() != std::size_t(steps)) std::abort();
    return {double(session.scene().SceneGraph()->getHistoryBytes()) / steps, (heapBytes() - heap) / steps};
}

void historyOf(benchmark::State& state) {
    Edit const& edit = edits[state.range(0)];
    int const selected = int(state.range(1)), steps = int(state.range(2));
    Bytes few{}, many{};
    for (auto _ : state) {
        few = bytesPerStep(edit, selected, steps / 10);
        many = bytesPerStep(edit, selected, steps);
    }
    state.SetLabel(edit.name);
    state.counters["bytes_a_step"] = many.history;
    state.counters["heap_a_step"] = many.heap;
    state.counters["total_MB"] = many.history * steps / 1e6;
    state.counters["to_a_tenth"] = many.history / few.history;  // of the steps; 1: each costs the same
}
BENCHMARK(historyOf)
    ->ArgNames({"edit", "joints", "steps"})
    ->ArgsProduct({{0, 1, 4}, {1}, {10000}})
    ->Args({1, 60, 10000})
    ->ArgsProduct({{2, 3}, {1, 10}, {10000}})
    ->ArgsProduct({{2, 3}, {60}, {1000}})  // of 10,000 a gigabyte
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// ---- time ----

double median(std::vector<double>& v) {
    std::nth_element(v.begin(), v.begin() + long(v.size() / 2), v.end());
    return v[v.size() / 2];
}

template<class Action> double nanoseconds(Action const& action) {
    constexpr int batch = 1000;
    double const start = cpuSeconds();
    for (int i = 0; i < batch; ++i) action();
    return (cpuSeconds() - start) * 1e9 / batch;
}

// A command that does nothing, against the change block that it opens, which makes the same step; and against a block
// that makes none.
void emptyCommand(benchmark::State& state) {
    Session session;
    XScene& scene = session.scene();
    std::wstring const name = L"Copy";
    std::vector<double> command, step, block;
    for (auto _ : state) {
        command.push_back(nanoseconds([&] { scene.RunCommand(name); }));
        step.push_back(nanoseconds([&] {
            scene.BeginChangeBlock();
            scene.SceneGraph()->keepStep();
            scene.EndChangeBlock();
        }));
        block.push_back(nanoseconds([&] {
            scene.BeginChangeBlock();
            scene.EndChangeBlock();
        }));
        scene.SceneGraph()->ClearUndoHistory();
    }
    state.counters["ns"] = median(command);
    state.counters["step_ns"] = median(step);
    state.counters["block_ns"] = median(block);
    state.counters["overhead_ns"] = median(command) - median(step);
    state.counters["ratio"] = median(command) / median(step);
}
BENCHMARK(emptyCommand)->Iterations(200);

}  // namespace

BENCHMARK_MAIN();
