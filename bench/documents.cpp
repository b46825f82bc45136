// Saving and loading scenes: skeletons of joints with a few values each, and joints with curves of many keys. Bytes a
// second, the exponent of growth (1: twice the nodes take twice the time), and the bytes of a document.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include <benchmark/benchmark.h>
#include <cmath>

namespace {

class Sink : public db::OutputStream {  // counts what it is given
public:
    bool write(char const*, std::size_t size) override {
        count += size;
        return true;
    }
    bool commit() override { return true; }
    std::size_t count = 0;
};

float& real(sg::Node& n, wchar_t const* name) { return n.findAttribute(name)->asFloat()->raw(); }

// Characters of 50 joints below each other.
void addJoints(sg::Scene& scene, int count) {
    sg::Node* parent = nullptr;
    for (int i = 0; i < count; ++i) {
        sg::Node* joint = scene.makeNode(L"Joint", L"LeftUpperArm");
        if (i % 50) parent->addChild(*joint);
        real(*joint, L"TranslationX") = std::sin(float(i));
        real(*joint, L"RotationZ") = std::cos(float(i));
        real(*joint, L"PreRotationX") = 0.5f;
        parent = joint;
    }
}

// One node in four is a curve of `keys` keys that drives its joint.
void addCurves(sg::Scene& scene, int count, std::size_t keys) {
    std::vector<float> inputs(keys), outputs(keys);
    for (std::size_t i = 0; i < keys; ++i) inputs[i] = float(i) / 30, outputs[i] = std::sin(0.1f * float(i));
    sg::Node* settings = scene.makeNode(L"SceneSettings", L"settings");
    addJoints(scene, count * 3 / 4);
    std::vector<db::Node*> nodes;
    scene.getDescendents(nodes);
    for (int i = 0; i < count / 4; ++i) {
        sg::Node* curve = scene.makeNode(L"Animation", L"curve");
        curve->findAttribute(L"KeyframeInputValues")->asFloatArray()->raw() = inputs;
        curve->findAttribute(L"KeyframeOutputValues")->asFloatArray()->raw() = outputs;
        scene.connect(settings->findAttribute(L"Time"), curve->findAttribute(L"InputValue"));
        scene.connect(curve->findAttribute(L"OutputValue"), nodes[std::size_t(1 + i)]->findAttribute(L"RotationX"));
    }
}

void fill(sg::Scene& scene, benchmark::State const& state) {
    if (state.range(1) == 0)
        addJoints(scene, int(state.range(0)));
    else
        addCurves(scene, int(state.range(0)), std::size_t(state.range(1)));
    scene.commitTransient();
    scene.clearUndoHistory();
}

void save(benchmark::State& state) {
    sg::Scene scene;
    fill(scene, state);
    Sink sink;
    for (auto _ : state) {
        db::SaverXML saver(sink);
        if (!saver.save(scene)) state.SkipWithError("not saved");
    }
    state.SetBytesProcessed(std::int64_t(sink.count));
    state.counters["bytes"] = double(sink.count) / double(state.iterations());
    state.SetComplexityN(state.range(0));
}

void load(benchmark::State& state) {
    db::StringOutputStream document;
    {
        sg::Scene scene;
        fill(scene, state);
        db::SaverXML(document).save(scene);
    }
    sg::Scene scene;
    for (auto _ : state) {
        db::StringInputStream stream(document.text());
        db::LoaderXML loader(stream);
        if (!loader.load(scene)) state.SkipWithError("not loaded");
        scene.commitTransient();
    }
    state.SetBytesProcessed(std::int64_t(document.text().size()) * std::int64_t(state.iterations()));
    state.counters["bytes"] = double(document.text().size());
    state.SetComplexityN(state.range(0));
}

#define SIZES(keys) Args({100, keys})->Args({1'000, keys})->Args({10'000, keys})
BENCHMARK(save)->Name("save/joints")->SIZES(0)->Args({100'000, 0})->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(load)->Name("load/joints")->SIZES(0)->Args({100'000, 0})->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(save)->Name("save/curves")->SIZES(500)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(load)->Name("load/curves")->SIZES(500)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace

BENCHMARK_MAIN();
