// One event of a drag: the weights of all keys are given, the keys move, and smart editing repairs a timing curve of as
// many keys. Against two flat loops over plain arrays in the same program: the bare one moves the three points of each
// key and adds up the lengths of the polyline; the other repairs the timing as well. Promised: growth at most n^1.1,
// and at most 5 times the bare loop. The summary prints the ratios, the exponents, and the history of 1,000 events.
#include "qel/utils/logger.h"
#include "tavo/tavo.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

using namespace Tavo;
using Floats = Qelutils::Vector<float>;

struct Application {
    Application() {
        instance.AddSceneObserver(&types).AddSettingsObserver(&types);
        instance.Startup(nullptr, nullptr, L"");
        instance.ActiveScene().New();
    }
    ~Application() { instance.Shutdown(); }

    XCoreTypes types;
    XApplication& instance = XApplication::Instance();
};

XVector3 place(int i) {
    float const s = float(i) * 0.01F;
    return {s, std::sin(s), std::cos(0.7F * s)};
}

// Soft over the whole path, as a drag of everything.
Floats makeWeights(int count) {
    Floats weights;
    for (int i = 0; i < count; ++i) weights.push_back(0.25F + 0.5F * float(i) / float(count));
    return weights;
}

struct Path {
    XTrajectory path;
    XAnimation curve;
    Floats weights;

    Path(XScene& scene, int count, int mode) : weights(makeWeights(count)) {
        scene.New();
        path = scene.CreateObject(XTrajectory::TypeID);
        scene.BeginChangeBlock();
        for (int i = 0; i < count; ++i) path.AppendTranslationKeyframe(place(i));
        curve = scene.CreateObject(XAnimation::TypeID);
        Floats times, fractions;
        for (int i = 0; i < count; ++i)
            times.push_back(float(i) / 30), fractions.push_back(float(i) / float(count - 1));
        curve.InitializeKeyframes(count, 0, 1.F / 30, 0, 1, 1);
        curve.KeyframeOutputValues().SetFloat(fractions);
        curve.IsCurveSampled().SetBoolean(true);
        path.IsTranslationCurveSampled().SetBoolean(true);
        path.InputValue().ConnectInputTo(curve.OutputValue());
        path.SmartEditing().SetEnumeration(mode);
        scene.EndChangeBlock(L"Make");
        scene.SceneGraph()->clearUndoHistory();
    }
    void drag(int event) {
        float const step = event % 2 ? 0.01F : -0.01F;
        path.EditTranslationKeyframePosition_interactive(weights, {step, step, -step});
    }
};

struct Flat {
    std::vector<Qelp::Vector3> in, position, out;
    std::vector<double> lengths;
    Floats weights, times, fractions, parameters;

    explicit Flat(int count) : lengths(std::size_t(count)), weights(makeWeights(count)) {
        for (int i = 0; i < count; ++i) {
            position.push_back(place(i).AsVector());
            times.push_back(float(i) / 30), fractions.push_back(float(i) / float(count - 1));
        }
        in = out = position;
        parameters.resize(fractions.size());
        measure();
    }
    void measure() {
        double sum = 0;
        for (std::size_t i = 1; i < position.size(); ++i) {
            double const x = double(position[i].x) - double(position[i - 1].x);
            double const y = double(position[i].y) - double(position[i - 1].y);
            double const z = double(position[i].z) - double(position[i - 1].z);
            lengths[i] = sum += std::sqrt(x * x + y * y + z * z);
        }
    }
    void move(int event) {
        float const step = event % 2 ? 0.01F : -0.01F;
        for (std::size_t i = 0; i < position.size(); ++i) {
            float const w = weights[i];
            if (w == 0) continue;
            for (auto* points : {&in, &position, &out}) {
                Qelp::Vector3& p = (*points)[i];
                p.x += step * w, p.y += step * w, p.z -= step * w;
            }
        }
    }
    void drag(int event) {
        move(event);
        measure();
        benchmark::ClobberMemory();
    }
    // The fractions rise with the slots, so that one walk finds all of them.
    void dragAndRepair(int event) {
        double const before = lengths.back();
        std::size_t at = 1;
        for (std::size_t i = 0; i < fractions.size(); ++i) {
            double const distance = double(fractions[i]) * before;
            while (at + 1 < lengths.size() && lengths[at] < distance) ++at;
            double const step = lengths[at] - lengths[at - 1];
            parameters[i] = float(double(at - 1) + (step > 0 ? (distance - lengths[at - 1]) / step : 0));
        }
        move(event);
        measure();
        double const after = lengths.back();
        double time = double(fractions[0]), last = 0, lastOld = 0, lastTime = 0;
        for (std::size_t i = 0; i < fractions.size(); ++i) {
            std::size_t const k = std::min(std::size_t(parameters[i]), lengths.size() - 2);
            double const u = double(parameters[i]) - double(k);
            double const now = (lengths[k] + (lengths[k + 1] - lengths[k]) * u) / after;
            double const old = double(fractions[i]), oldTime = double(times[i]);
            double const moved = (old - lastOld) * before;
            if (i > 0) time += (oldTime - lastTime) * (std::abs(moved) > 1e-4 ? after * (now - last) / moved : 1);
            last = now, lastOld = old, lastTime = oldTime;
            times[i] = float(time), fractions[i] = float(now);
        }
        benchmark::ClobberMemory();
    }
};

double now() {
    return double(
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count());
}

// The median over runs of what one event takes, the sides in turn.
struct Times {
    double drag, flat, repaired;
};

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    return values[values.size() / 2];
}

Times compare(XScene& scene, int count, int mode) {
    Path path(scene, count, mode);
    Flat flat(count), repaired(count);
    int const events = std::max(4, 20000 / count);
    std::vector<double> drag, bare, full;
    scene.BeginChangeBlock(true);
    for (int run = 0; run < 31; ++run) {
        double const a = now();
        for (int i = 0; i < events; ++i) path.drag(i), scene.CommitTransient();
        double const b = now();
        for (int i = 0; i < events; ++i) flat.drag(i);
        double const c = now();
        for (int i = 0; i < events; ++i) repaired.dragAndRepair(i);
        double const d = now();
        drag.push_back((b - a) / events), bare.push_back((c - b) / events), full.push_back((d - c) / events);
    }
    scene.EndChangeBlock(L"Drag");
    return {median(drag), median(bare), median(full)};
}

void summary(XScene& scene) {
    wchar_t const* const modes[] = {L"retainFeel", L"retainConstraints", L"notUsed"};
    std::printf("\n%18s %8s %12s %9s %9s %10s %10s %9s\n", "mode", "keys", "us an event", "ns a key", "flat ns",
                "repaired", "ratio", "exponent");
    for (int mode : {0, 1, 2}) {
        double before = 0;
        for (int count : {100, 1000, 10000}) {
            Times const t = compare(scene, count, mode);
            std::printf("%18ls %8d %12.1f %9.2f %9.2f %10.2f %10.2f", modes[mode], count, t.drag / 1000, t.drag / count,
                        t.flat / count, t.repaired / count, t.drag / t.flat);
            before > 0 ? std::printf(" %9.2f\n", std::log10(t.drag / before)) : std::printf("\n");
            before = t.drag;
        }
    }
}

// What the history holds after a drag of 1,000 events, against one copy of all that it changes.
void historyOfDrag(XScene& scene) {
    for (int count : {100, 1000, 10000}) {
        Path path(scene, count, 0);
        scene.BeginChangeBlock(true);
        for (int i = 0; i < 1000; ++i) path.drag(i), scene.CommitTransient();
        scene.EndChangeBlock(L"Drag");
        scene.CommitTransient();
        double const bytes = double(scene.SceneGraph()->getHistoryBytes());
        double const copy = double(count) * (3 * sizeof(Qelp::Vector3) + 2 * sizeof(float));
        std::printf("history of 1,000 events on %d keys: %.0f bytes, %.2f copies of the keys\n", count, bytes,
                    bytes / copy);
    }
}

void dragEvent(benchmark::State& state) {
    Application application;
    Path path(application.instance.ActiveScene(), int(state.range(0)), int(state.range(1)));
    int event = 0;
    application.instance.ActiveScene().BeginChangeBlock(true);
    for (auto _ : state) {
        path.drag(event++);
        application.instance.ActiveScene().CommitTransient();
    }
    application.instance.ActiveScene().EndChangeBlock(L"Drag");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(dragEvent)->ArgNames({"keys", "mode"})->ArgsProduct({{100, 1000, 10000}, {0, 1, 2}});

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    Application application;
    summary(application.instance.ActiveScene());
    historyOfDrag(application.instance.ActiveScene());
}
