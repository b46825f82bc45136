// A frame of playback: set the time, read every world matrix. Characters of 60 joints in chains, three rotation curves
// a joint and three translation curves at the root, 2,752 keys a curve: what an imported clip looks like.
//
// The graph is measured against a flat loop over the same curves, the same local matrices and the same products, which
// knows its order beforehand and has no graph at all. Both run in turn, frame by frame, and the ratio is of the
// medians, so that what else the machine does meets both alike. Promised: one character costs at most 1.8 times the
// loop, a hundred at most 2 times, reading one of a hundred at most 1.2 times having only that one, and a frame in the
// steady state allocates nothing.
#include "bench/allocations.h"
#include "qel/sg/scene.h"
#include "qel/utils/rotation.h"
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <ctime>
#include <memory>

namespace {

constexpr int joints = 60, keys = 2752, limb = 12;
constexpr int timeRow = 12;  // of the settings node
constexpr float keyStep = 1.F / 120;

int parentOf(int joint) { return joint == 0 ? -1 : joint % limb == 0 ? 0 : joint - 1; }

std::vector<float> inputs() {
    std::vector<float> x(keys);
    for (int i = 0; i < keys; ++i) x[std::size_t(i)] = keyStep * float(i);
    return x;
}

std::vector<float> outputs(int seed) {
    std::vector<float> y(keys);
    for (int i = 0; i < keys; ++i) y[std::size_t(i)] = 0.5F * std::sin(0.01F * float(i) + float(seed));
    return y;
}

// One step of the clip a frame, never on a key; it starts anew before the last key.
struct Clock {
    float next() { return keyStep * (0.37F + float(frame++ % (keys - 2))); }
    int frame = 0;
};

struct FlatCurve {
    explicit FlatCurve(int seed) : x(inputs()), y(outputs(seed)) {
        sg::CurveKeys k;
        k.count = keys;
        k.inputs = x.data();
        k.outputs = y.data();
        curve.update(k);
    }
    FlatCurve(FlatCurve const&) = delete;
    std::vector<float> x, y;
    sg::PreparedCurve curve;
    unsigned hint = 0;
};

class FlatCrowd {
public:
    explicit FlatCrowd(int characters) {
        for (int c = 0; c < characters; ++c)
            for (int j = 0; j < joints; ++j) add(c, j);
    }
    float frame(float time) {
        float sum = 0;
        for (Joint& joint : joints_) {
            for (int i = 0; i < 3; ++i) joint.in.rotation[i] = sample(*joint.rotation[i], time);
            for (int i = 0; i < 3 && joint.translation[i]; ++i)
                joint.in.translation[i] = sample(*joint.translation[i], time);
            sg::localMatrix(joint.in, joint.local);
            joint.world = joint.parent ? Qelutils::multiply(joint.local, joint.parent->world) : joint.local;
            sum += joint.world.m[3][0];
        }
        return sum;
    }

private:
    struct Joint {
        std::unique_ptr<FlatCurve> rotation[3], translation[3];
        sg::TransformInputs in;
        Qelp::Matrix34 local, world;
        Joint* parent = nullptr;
    };
    static float sample(FlatCurve& c, float time) { return c.curve.evaluate(time, c.hint); }
    void add(int character, int j) {
        if (joints_.capacity() == joints_.size()) joints_.reserve(joints * 100);
        Joint& joint = joints_.emplace_back();
        for (int i = 0; i < 3; ++i) joint.rotation[i] = std::make_unique<FlatCurve>(j * 3 + i);
        for (int i = 0; i < 3 && j == 0; ++i) joint.translation[i] = std::make_unique<FlatCurve>(1000 + i);
        joint.in.translation[0] = 0.1F;
        if (int const parent = parentOf(j); parent >= 0)
            joint.parent = &joints_[std::size_t(character) * joints + std::size_t(parent)];
    }
    std::vector<Joint> joints_;
};

class GraphCrowd {
public:
    explicit GraphCrowd(int characters) {
        scene_.setMaxUndoItems(0);
        settings_ = scene_.makeNode(L"SceneSettings", L"settings");
        for (int c = 0; c < characters; ++c)
            for (int j = 0; j < joints; ++j) add(c, j);
    }
    void setTime(float time) { settings_->at<db::FloatAttribute>(timeRow).setValue(time); }
    float frame(float time) { return frame(time, worlds_.size()); }
    float frameOfOne(float time) { return frame(time, joints); }
    // As interactive editing and playback do, in a transient block.
    void begin() { scene_.beginChangeBlock(db::ChangeMode::Transient); }

private:
    float frame(float time, std::size_t count) {
        setTime(time);
        float sum = 0;
        for (std::size_t i = 0; i < count; ++i) sum += worlds_[i]->getValue().m[3][0];
        return sum;
    }
    void drive(sg::Node& joint, int row, int seed) {
        sg::Node* curve = scene_.makeNode(L"Animation", L"curve");
        using A = sg::AnimationNode;
        curve->at<db::FloatArrayAttribute>(A::KeyframeInputValues).setValue(inputs());
        curve->at<db::FloatArrayAttribute>(A::KeyframeOutputValues).setValue(outputs(seed));
        scene_.connect(&settings_->at<db::Attribute>(timeRow), &curve->at<db::Attribute>(A::InputValue));
        scene_.connect(&curve->at<db::Attribute>(A::OutputValue), &joint.at<db::Attribute>(row));
    }
    void add(int character, int j) {
        sg::Node* joint = scene_.makeNode(L"Joint", L"joint");
        for (int i = 0; i < 3; ++i) drive(*joint, sg::TransformNode::Rotation + i, j * 3 + i);
        for (int i = 0; i < 3 && j == 0; ++i) drive(*joint, sg::TransformNode::Translation + i, 1000 + i);
        joint->at<db::FloatAttribute>(sg::TransformNode::Translation).setValue(0.1F);
        if (int const parent = parentOf(j); parent >= 0)
            nodes_[std::size_t(character) * joints + std::size_t(parent)]->addChild(*joint);
        nodes_.push_back(joint);
        worlds_.push_back(&joint->at<db::Matrix34Attribute>(sg::TransformBaseNode::WorldMatrix));
    }
    sg::Scene scene_;
    sg::Node* settings_;
    std::vector<sg::Node*> nodes_;
    std::vector<db::Matrix34Attribute*> worlds_;
};

// Of this thread: other work on the machine does not count.
double cpuSeconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

// Of one frame, measured over several where one is short.
template<class Frame> double seconds(Frame const& frame, Clock clock, int batch) {
    double const start = cpuSeconds();
    for (int i = 0; i < batch; ++i) benchmark::DoNotOptimize(frame(clock.next()));
    return (cpuSeconds() - start) / batch;
}

double median(std::vector<double>& v) {
    std::nth_element(v.begin(), v.begin() + long(v.size() / 2), v.end());
    return v[v.size() / 2];
}

// Two ways to do a frame, in turn; both medians and the allocations of the second.
struct Figures {
    double base, subject;
    std::size_t allocations;
};
template<class Base, class Subject> Figures compare(int characters, Base base, Subject subject) {
    int const batch = std::max(1, 20 / characters), samples = 200;
    Clock clock;
    std::vector<double> a, b;
    a.reserve(samples);
    b.reserve(samples);
    seconds(base, clock, 20), seconds(subject, clock, 20);
    std::size_t allocated = 0;
    for (int i = 0; i < samples; ++i, clock.frame += batch) {
        a.push_back(seconds(base, clock, batch));
        std::size_t const before = bench::allocations;
        b.push_back(seconds(subject, clock, batch));
        allocated += bench::allocations - before;
    }
    return {median(a), median(b), allocated};
}

void frame(benchmark::State& state) {
    int const characters = int(state.range(0));
    FlatCrowd flat(characters);
    GraphCrowd graph(characters);
    graph.begin();
    for (auto _ : state) {
        Figures const f = compare(
            characters, [&](float t) { return flat.frame(t); }, [&](float t) { return graph.frame(t); });
        state.SetIterationTime(f.subject);
        state.counters["us_per_joint"] = f.subject * 1e6 / (joints * characters);
        state.counters["flat_us_per_joint"] = f.base * 1e6 / (joints * characters);
        state.counters["ratio"] = f.subject / f.base;
        state.counters["allocations"] = double(f.allocations);
    }
    state.SetComplexityN(characters);
}
BENCHMARK(frame)->Arg(1)->Arg(10)->Arg(100)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The exponent of the cost between 1 and 100 characters, as a power of their number.
void growth(benchmark::State& state) {
    double logs[2] = {};
    for (auto _ : state) {
        for (int k = 0; k < 2; ++k) {
            int const characters = k == 0 ? 1 : 100;
            GraphCrowd graph(characters);
            graph.begin();
            logs[k] = std::log10(compare(
                                     characters, [](float) { return 0.F; }, [&](float t) { return graph.frame(t); })
                                     .subject);
        }
        state.SetIterationTime(std::pow(10, logs[1]));
    }
    state.counters["exponent"] = (logs[1] - logs[0]) / 2;
}
BENCHMARK(growth)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

void oneOfMany(benchmark::State& state) {
    GraphCrowd one(1), many(int(state.range(0)));
    one.begin();
    many.begin();
    for (auto _ : state) {
        Figures const f = compare(
            1, [&](float t) { return one.frameOfOne(t); }, [&](float t) { return many.frameOfOne(t); });
        state.SetIterationTime(f.subject);
        state.counters["ratio"] = f.subject / f.base;
        state.counters["allocations"] = double(f.allocations);
    }
}
BENCHMARK(oneOfMany)->Arg(10)->Arg(100)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
