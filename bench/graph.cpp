// What the graph itself costs: a long chain of connected nodes against the same sums in plain structs, writes that stop
// early, connecting where thousands read one source, and building a scene. Prints ratios and exponents at the end:
// "growth" is the exponent of cost over size between the smallest and the largest, 0 for the same cost, 1 for linear.
#include "qel/sg/scene.h"
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <map>
#include <memory>
#include <string>

namespace {

using namespace db::row;

// out = in / 2 + 1
class StepNode final : public sg::Node {
public:
    static db::NodeDef const Def;
    explicit StepNode(db::NodeDef const& def) : sg::Node(def, room_, 1) {}
    void compute(std::uint64_t) override {
        at<db::FloatAttribute>(9).raw() = 0.5f * at<db::FloatAttribute>(8).raw() + 1;
    }

private:
    sg::Input room_[1];
};

constexpr db::AttributeDef stepRows[] = {real(8, L"In").affects(1).hot(), real(9, L"Out").output(0).hot()};
db::NodeDef const StepNode::Def(L"bench", L"Step", &sg::Node::Def, stepRows, sizeof(StepNode),
                                [](void* at, db::NodeDef const& def) -> db::Node* { return new (at) StepNode(def); });

struct Chain {
    explicit Chain(int count) {
        scene.setMaxUndoItems(0);
        for (int i = 0; i < count; ++i) {
            nodes.push_back(scene.makeNode(L"Step", L"", L"bench"));
            if (i > 0)
                scene.connect(&nodes[std::size_t(i - 1)]->at<db::Attribute>(9), &nodes.back()->at<db::Attribute>(8));
        }
        scene.commitTransient();
    }
    db::FloatAttribute& head() { return nodes[0]->at<db::FloatAttribute>(8); }
    db::FloatAttribute& tail() { return nodes.back()->at<db::FloatAttribute>(9); }
    sg::Scene scene;
    std::vector<sg::Node*> nodes;
};

// ---- figures for the summary ----

std::map<std::string, std::map<long, double>> figures;  // name, size: seconds a step

double processorSeconds() {  // not those that others take from us
    std::timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

class Stopwatch {
public:
    Stopwatch(std::string name, benchmark::State& state) : name_(std::move(name)), state_(state) {}
    ~Stopwatch() {
        figures[name_][state_.range(0)] = (processorSeconds() - start_ - paused_) / double(state_.iterations());
    }
    template<class Work> void untimed(Work const& work) {
        state_.PauseTiming();
        double const from = processorSeconds();
        work();
        paused_ += processorSeconds() - from;
        state_.ResumeTiming();
    }

private:
    std::string name_;
    benchmark::State& state_;
    double start_ = processorSeconds(), paused_ = 0;
};

// ---- a chain ----

void headChangedTailRead(benchmark::State& state) {
    Chain chain(int(state.range(0)));
    float x = 0;
    Stopwatch watch("chain", state);
    for (auto _ : state) {
        chain.head().setValue(x += 1);
        benchmark::DoNotOptimize(chain.tail().getValue());
    }
}
BENCHMARK(headChangedTailRead)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

void clockChangedTailRead(benchmark::State& state) {
    Chain chain(int(state.range(0)));
    sg::Node* settings = chain.scene.makeNode(L"SceneSettings", L"settings");
    chain.scene.connect(settings->findAttribute(L"Time"), &chain.head());
    auto& time = *settings->findAttribute(L"Time")->asFloat();
    float x = 0;
    Stopwatch watch("chain on the clock", state);
    for (auto _ : state) {
        time.setValue(x += 1);
        benchmark::DoNotOptimize(chain.tail().getValue());
    }
}
BENCHMARK(clockChangedTailRead)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

struct Plain {
    float in = 0, out = 0;
    Plain const* source = nullptr;
    char rest[48] = {};  // a cache line each
};

void headChangedTailReadInPlainStructs(benchmark::State& state) {
    std::vector<Plain> chain(std::size_t(state.range(0)));
    for (std::size_t i = 1; i < chain.size(); ++i) chain[i].source = &chain[i - 1];
    float x = 0;
    Stopwatch watch("plain", state);
    for (auto _ : state) {
        chain[0].in = x += 1;
        for (Plain& p : chain) {
            if (p.source) p.in = p.source->out;
            p.out = 0.5f * p.in + 1;
        }
        benchmark::DoNotOptimize(chain.back().out);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(headChangedTailReadInPlainStructs)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

void writeWhileOutOfDate(benchmark::State& state) {
    Chain chain(int(state.range(0)));
    float x = 0;
    chain.head().setValue(-1);
    Stopwatch watch("write while out of date", state);
    for (auto _ : state) chain.head().setValue(x += 1);
}
BENCHMARK(writeWhileOutOfDate)->RangeMultiplier(100)->Range(10, 100000);

void clockWrittenWhileOutOfDate(benchmark::State& state) {
    Chain chain(int(state.range(0)));
    sg::Node* settings = chain.scene.makeNode(L"SceneSettings", L"settings");
    chain.scene.connect(settings->findAttribute(L"Time"), &chain.head());
    auto& time = *settings->findAttribute(L"Time")->asFloat();
    float x = 0;
    for (int i = 0; i < 3; ++i) time.setValue(x += 1);
    Stopwatch watch("clock written while out of date", state);
    for (auto _ : state) time.setValue(x += 1);
}
BENCHMARK(clockWrittenWhileOutOfDate)->RangeMultiplier(100)->Range(10, 100000);

// ---- connecting ----

void connectAndDisconnectAmongReaders(benchmark::State& state) {
    sg::Scene scene;
    scene.setMaxUndoItems(0);
    db::Attribute* time = scene.makeNode(L"SceneSettings", L"settings")->findAttribute(L"Time");
    std::vector<sg::Node*> readers;
    for (long i = 0; i < state.range(0); ++i) {
        readers.push_back(scene.makeNode(L"Step", L"", L"bench"));
        scene.connect(time, &readers.back()->at<db::Attribute>(8));
    }
    scene.commitTransient();
    std::size_t i = 0;
    Stopwatch watch("connect among readers", state);
    for (auto _ : state) {
        db::Attribute* to = &readers[(i += 7919) % readers.size()]->at<db::Attribute>(8);
        scene.disconnectInput(to);
        scene.connect(time, to);
        scene.commitTransient();
    }
}
BENCHMARK(connectAndDisconnectAmongReaders)->RangeMultiplier(10)->Range(100, 100000);

void buildCurvesOnTheClock(benchmark::State& state) {
    Stopwatch watch("build", state);
    for (auto _ : state) {
        auto scene = std::make_unique<sg::Scene>();
        db::Attribute* time = scene->makeNode(L"SceneSettings", L"settings")->findAttribute(L"Time");
        sg::Node* parent = nullptr;
        for (long i = 0; i < state.range(0); ++i) {
            sg::Node* curve = scene->makeNode(L"Animation", L"curve");
            scene->connect(time, &curve->at<db::Attribute>(sg::AnimationNode::InputValue));
            if (i % 3 == 0) {
                sg::Node* joint = scene->makeNode(L"Joint", L"joint");
                if (parent && i % 60) parent->addChild(*joint);
                parent = joint;
            }
            scene->connect(&curve->at<db::Attribute>(sg::AnimationNode::OutputValue),
                           &parent->at<db::Attribute>(sg::TransformNode::Rotation + int(i % 3)));
        }
        scene->commitTransient();
        watch.untimed([&] { scene.reset(); });
    }
}
BENCHMARK(buildCurvesOnTheClock)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMillisecond);

void summarise() {
    auto growth = [](std::map<long, double> const& sizes) {
        auto const a = *sizes.begin(), b = *sizes.rbegin();
        return std::log(b.second / a.second) / std::log(double(b.first) / double(a.first));
    };
    for (char const* name : {"chain", "chain on the clock"})
        for (auto const& [size, seconds] : figures[name]) {
            if (!figures["plain"].count(size)) continue;
            std::printf("%s of %ld against plain structs: %.1f times (%.1f against %.1f ns a node)\n", name, size,
                        seconds / figures["plain"][size], 1e9 * seconds / double(size),
                        1e9 * figures["plain"][size] / double(size));
        }
    for (char const* name :
         {"write while out of date", "clock written while out of date", "connect among readers", "build"})
        if (figures[name].size() > 1)
            std::printf("%s: growth %.2f, ratio of the largest to the smallest %.1f\n", name, growth(figures[name]),
                        figures[name].rbegin()->second / figures[name].begin()->second);
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    summarise();
}
