// Paths against flat loops over plain arrays in the same program: places along a path, edits of its keys, rays.
//
// Promised: a place on a straight path costs at most 1.5 times a flat search and blend at 1,000 keys and more, and one
// on a curved path of 10,000 keys at most twice that on one of 100; after one key of 10,000 moved the lengths are there
// for a tenth (curved keys: a thousandth) of what measuring all of them costs; the nearest place to a ray on 1,000
// segments costs at most 1.5 times looking at 16 places of each. The summary at the end prints these ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

#include "qel/sg/scene.h"

namespace {

using Qelp::Vector3;
using sg::PathKey;

constexpr int linear = 1, spline = 2;

// A walk in space: keys a step apart, handles of about a third of it.
std::vector<PathKey> walk(int count, int kind) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> any(-1, 1);
    std::vector<PathKey> keys;
    Vector3 at;
    for (int i = 0; i < count; ++i) {
        at.x += 0.3f * any(random) + 0.5f, at.y += any(random), at.z += any(random);
        Vector3 const way{0.3f + 0.2f * any(random), 0.3f * any(random), 0.3f * any(random), 0};
        keys.push_back({i,
                        kind,
                        {at.x - way.x, at.y - way.y, at.z - way.z, 0},
                        at,
                        {at.x + way.x, at.y + way.y, at.z + way.z, 0}});
    }
    return keys;
}

struct Path {
    Path(int count, int kind) : keys(walk(count, kind)) { geometry.update({keys}); }
    std::vector<PathKey> keys;
    sg::PathGeometry geometry;
};

double now() {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// The fastest of several runs, in ns per call of `work`.
template<class Work> double fastest(int calls, Work const& work) {
    double best = 1e300;
    for (int run = 0; run < 9; ++run) {
        double const start = now();
        for (int i = 0; i < calls; ++i) work(i);
        best = std::min(best, (now() - start) / calls);
    }
    return best;
}

std::vector<double> fractions() {
    std::mt19937 random(7);
    std::vector<double> found(4096);
    for (double& f : found) f = std::uniform_real_distribution<double>(0, 1)(random);
    return found;
}

// ---- what is measured ----

void position(benchmark::State& state) {
    Path const path(int(state.range(0)), int(state.range(1)));
    auto const at = fractions();
    Vector3 p;
    for (auto _ : state)
        for (double f : at) benchmark::DoNotOptimize(path.geometry.positionAt(f, p));
    state.counters["place"] = benchmark::Counter(double(at.size()), benchmark::Counter::kIsIterationInvariantRate |
                                                                        benchmark::Counter::kInvert);
}
BENCHMARK(position)
    ->ArgNames({"keys", "kind"})
    ->ArgsProduct({{10, 100, 1000, 10000, 100000}, {linear, spline}})
    ->MinTime(0.05);

void length(benchmark::State& state) {
    Path const path(int(state.range(0)), int(state.range(1)));
    auto const at = fractions();
    double const last = double(path.keys.size()) - 1;
    for (auto _ : state)
        for (double f : at) benchmark::DoNotOptimize(path.geometry.fractionAt(f * last));
    state.counters["length"] = benchmark::Counter(double(at.size()), benchmark::Counter::kIsIterationInvariantRate |
                                                                         benchmark::Counter::kInvert);
}
BENCHMARK(length)
    ->ArgNames({"keys", "kind"})
    ->ArgsProduct({{10, 100, 1000, 10000, 100000}, {linear, spline}})
    ->MinTime(0.05);

// ---- the summary ----

// The same questions to flat arrays: a search among the sums of the lengths, and a straight blend.
double flatPlace(std::vector<double> const& starts, std::vector<PathKey> const& keys, double fraction) {
    double const distance = fraction * starts.back();
    std::size_t const i =
        std::size_t(std::lower_bound(starts.begin() + 1, starts.end() - 1, distance) - starts.begin());
    double const share = (distance - starts[i - 1]) / (starts[i] - starts[i - 1]);
    Vector3 const &a = keys[i - 1].position, &b = keys[i].position;
    return a.x + (b.x - a.x) * share + (a.y + (b.y - a.y) * share) + (a.z + (b.z - a.z) * share);
}

double chord(Vector3 const& a, Vector3 const& b) { return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }

std::vector<double> flatStarts(std::vector<PathKey> const& keys) {
    std::vector<double> starts(keys.size());
    for (std::size_t i = 1; i < keys.size(); ++i)
        starts[i] = starts[i - 1] + chord(keys[i - 1].position, keys[i].position);
    return starts;
}

void comparePlaces() {
    std::printf("\nns a place       position at a fraction         fraction at a parameter\n");
    std::printf("%8s %8s %8s %8s %8s %8s\n", "keys", "flat", "linear", "spline", "linear", "spline");
    auto const at = fractions();
    int const n = int(at.size());
    for (int keys : {10, 100, 1000, 10000, 100000}) {
        std::vector<double> row;
        auto const starts = flatStarts(walk(keys, linear));
        auto const flat = walk(keys, linear);
        row.push_back(
            fastest(n, [&](int i) { benchmark::DoNotOptimize(flatPlace(starts, flat, at[std::size_t(i)])); }));
        Path const straight(keys, linear), curved(keys, spline);
        for (Path const* path : {&straight, &curved})
            row.push_back(fastest(n, [&](int i) {
                Vector3 p;
                path->geometry.positionAt(at[std::size_t(i)], p);
                benchmark::DoNotOptimize(p);
            }));
        for (Path const* path : {&straight, &curved})
            row.push_back(fastest(n, [&](int i) {
                benchmark::DoNotOptimize(path->geometry.fractionAt(at[std::size_t(i)] * (keys - 1)));
            }));
        std::printf("%8d %8.1f %8.1f %8.1f %8.1f %8.1f\n", keys, row[0], row[1], row[2], row[3], row[4]);
    }
}

void compareEdits() {
    std::printf("\none key moved, geometry alone: us, and the share of measuring everything\n");
    for (int kind : {linear, spline})
        for (int count : {100, 1000, 10000}) {
            Path path(count, kind);
            double const all = fastest(3, [&](int) {
                sg::PathGeometry fresh;
                fresh.update({path.keys});
                benchmark::DoNotOptimize(fresh.length());
            });
            double const one = fastest(100, [&](int i) {
                int const slot = (i * 37) % count;
                std::array const slots{sg::PathGeometry::Slots{slot, slot + 1}};
                path.keys[std::size_t(slot)].position.x += i % 2 ? 0.01f : -0.01f;
                path.geometry.keysChanged({path.keys}, slots);
            });
            double const compared = fastest(3, [&](int i) {
                path.keys[std::size_t(count / 2)].position.x += i % 2 ? 0.01f : -0.01f;
                path.geometry.update({path.keys});
            });
            std::printf("%8s %6d keys: all %9.1f us, one %7.2f us (1/%.0f), one found by comparing %8.1f us (1/%.1f)\n",
                        kind == linear ? "linear" : "spline", count, all / 1e3, one / 1e3, all / one, compared / 1e3,
                        all / compared);
        }
}

struct Node {
    Node(int count, int kind) {
        path = static_cast<sg::TrajectoryNode*>(scene.makeNode(L"Trajectory", L"path"));
        auto& array = path->at<db::AttributeArray>(sg::TrajectoryNode::TranslationKeyframesArray);
        array.resize(std::size_t(count));
        int slot = 0;
        for (PathKey const& k : walk(count, kind)) {
            db::CompositeAttribute& key = *array[std::size_t(slot++)]->asComposite();
            key.getAttribute(0)->asInt()->setValue(k.number);
            key.getAttribute(1)->asVector3()->setValue(k.inHandle);
            key.getAttribute(2)->asVector3()->setValue(k.position);
            key.getAttribute(3)->asVector3()->setValue(k.outHandle);
            key.getAttribute(4)->asEnum()->setValue(k.interpolation);
            positions.push_back(key.getAttribute(2)->asVector3());
        }
        scene.commitTransient();
        length();
    }
    float length() { return path->at<db::FloatAttribute>(sg::TrajectoryNode::MaxArcLength).getValue(); }
    void shift(db::Vector3Attribute& a, float by) {
        Vector3 p = a.getValue();
        p.x += by;
        a.setValue(p);
    }
    sg::Scene scene;
    sg::TrajectoryNode* path;
    std::vector<db::Vector3Attribute*> positions;
};

// A drag: in a transient block keys move, then the length is read. Flat: plain points move, polyline lengths are
// summed anew.
void compareDrags() {
    std::printf("\na drag event of a trajectory in its scene, linear keys: us\n");
    double before = 0;
    for (int count : {100, 1000, 10000}) {
        Node node(count, linear);
        auto const event = [&](int i, auto const& move) {
            node.scene.beginChangeBlock(db::ChangeMode::Transient);
            move(i % 2 ? 0.01f : -0.01f);
            benchmark::DoNotOptimize(node.length());
            node.scene.endChangeBlock(L"");
        };
        double const one = fastest(
            20, [&](int i) { event(i, [&](float by) { node.shift(*node.positions[std::size_t(count / 2)], by); }); });
        double const all = fastest(4, [&](int i) {
            event(i, [&](float by) {
                for (db::Vector3Attribute* p : node.positions) node.shift(*p, by);
            });
        });
        std::vector<PathKey> keys = walk(count, linear);
        double const flat = fastest(20, [&](int i) {
            for (PathKey& k : keys) k.position.x += i % 2 ? 0.01f : -0.01f;
            benchmark::DoNotOptimize(flatStarts(keys));
        });
        std::printf("%8d keys: one moved %8.2f, all moved %9.1f, flat loop %8.1f, all to flat %5.2f", count, one / 1e3,
                    all / 1e3, flat / 1e3, all / flat);
        if (before > 0) std::printf(", exponent %.2f", std::log10(all / before));
        std::printf("\n");
        before = all;
    }
}

void compareRays() {
    std::printf("\nthe nearest place to a ray, us; flat: 16 places of each segment\n");
    for (int kind : {linear, spline})
        for (int count : {11, 101, 1001, 10001}) {
            Path const path(count, kind);
            std::vector<sg::PathPoint> samples;
            for (int i = 0; i < (count - 1) * 16; ++i) {
                Vector3 p;
                path.geometry.positionAtParameter(i / 16.0, p);
                samples.push_back(sg::PathPoint(p));
            }
            sg::PathPoint const middle = samples[samples.size() / 2];
            auto const origin = [&](int i) { return middle + sg::PathPoint(0.1 * i, 3, 40); };
            sg::PathPoint const direction(0, -0.1, -1);
            int const calls = count > 5000 ? 4 : 16;
            double fraction = 0;
            double const parallel = fastest(calls, [&](int i) {
                benchmark::DoNotOptimize(path.geometry.nearest(sg::PathRay::parallel(origin(i), direction), fraction));
            });
            double const perspective = fastest(calls, [&](int i) {
                benchmark::DoNotOptimize(path.geometry.nearest(
                    sg::PathRay::perspective(origin(i), origin(i) + direction, direction), fraction));
            });
            sg::PathPoint const along = direction * (1 / direction.length());
            double const flat = fastest(calls, [&](int i) {
                double least = 1e300;
                for (sg::PathPoint const& s : samples) {
                    sg::PathPoint const v = s - origin(i), off = v - along * v.dot(along);
                    least = std::min(least, off.dot(off));
                }
                benchmark::DoNotOptimize(least);
            });
            std::printf("%8s %6d segments: parallel %8.1f, perspective %8.1f, flat %8.1f, ratios %.2f and %.2f\n",
                        kind == linear ? "linear" : "spline", count - 1, parallel / 1e3, perspective / 1e3, flat / 1e3,
                        parallel / flat, perspective / flat);
        }
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    comparePlaces();
    compareEdits();
    compareDrags();
    compareRays();
}
