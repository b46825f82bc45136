// Curve evaluation against a flat loop over plain arrays in the same program, and key insertion against a memmove.
//
// The flat side searches with upper_bound (random inputs) or walks on from the last segment (rising inputs) and blends
// or runs the same cubic. Promised: at 10,000 keys random inputs cost at most 1.5 times the flat search, rising ones of
// linear curves 1.3 times the flat walk, and one insertion at most 2 times a memmove of the tail of the two sorted
// arrays. The summary at the end prints these ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "qel/sg/curve_evaluation.h"

namespace {

std::size_t allocations = 0;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const p = std::malloc(size ? size : 1)) return p;
    std::abort();
}
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

using sg::CurveKeys;
using sg::PreparedCurve;

struct Curve {
    std::vector<float> x, y, inX, inY, outX, outY;
    std::vector<int> kinds;
    PreparedCurve prepared;

    CurveKeys keys() const {
        CurveKeys k;
        k.count = unsigned(x.size());
        k.inputs = x.data(), k.outputs = y.data(), k.interpolations = kinds.data();
        k.inTangentsX = inX.data(), k.inTangentsY = inY.data();
        k.outTangentsX = outX.data(), k.outTangentsY = outY.data();
        return k;
    }
    // Keys a 30th apart; `shuffled` stores them in any order.
    Curve(unsigned count, int kind, bool shuffled = false, unsigned seed = 1) : y(count), kinds(count, kind) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> value(-1, 1), handle(0.005f, 0.025f);
        for (unsigned i = 0; i < count; ++i) x.push_back(float(i) / 30);
        for (float& v : y) v = value(random);
        for (unsigned i = 0; i < count; ++i) {
            inX.push_back(-handle(random)), outX.push_back(handle(random));
            inY.push_back(value(random)), outY.push_back(value(random));
        }
        if (shuffled) std::shuffle(x.begin(), x.end(), random);
        prepared.update(keys());
    }
};

float flatCubic(CurveKeys const& k, unsigned i, float t) {
    double const x0 = k.inputs[i], width = k.inputs[i + 1] - x0, s = (t - x0) / width;
    double const x1 = k.outTangentsX[i] / width, x2 = 1 + k.inTangentsX[i + 1] / width;
    double const a = 1 + 3 * (x1 - x2), b = 3 * (x2 - 2 * x1), c = 3 * x1;
    double u = s;
    for (int step = 0; step < 32; ++step) {
        double const moved = (((a * u + b) * u + c) * u - s) / ((3 * a * u + 2 * b) * u + c);
        u = std::clamp(u - moved, 0.0, 1.0);
        if (std::abs(moved) < 1e-9) break;
    }
    double const v = 1 - u, y0 = k.outputs[i], y3 = k.outputs[i + 1];
    double const y1 = y0 + k.outTangentsY[i], y2 = y3 + k.inTangentsY[i + 1];
    return float((y0 * v + 3 * y1 * u) * v * v + (3 * y2 * v + y3 * u) * u * u);
}

float flatLinear(CurveKeys const& k, unsigned i, float t) {
    float const u = (t - k.inputs[i]) / (k.inputs[i + 1] - k.inputs[i]);
    return k.outputs[i] + u * (k.outputs[i + 1] - k.outputs[i]);
}

unsigned flatFind(float const* x, unsigned n, float t, unsigned hint) {
    if (hint + 1 < n && x[hint] <= t) {
        if (t < x[hint + 1]) return hint;
        if (hint + 2 < n && t < x[hint + 2]) return hint + 1;
    }
    return unsigned(std::clamp<long>(std::upper_bound(x, x + n, t) - x - 1, 0, long(n) - 2));
}

float flat(CurveKeys const& k, float t, unsigned& hint, bool isCubic) {
    hint = flatFind(k.inputs, k.count, t, hint);
    return isCubic ? flatCubic(k, hint, t) : flatLinear(k, hint, t);
}

std::vector<float> inputs(unsigned keys, bool rising) {
    std::vector<float> found(4096);
    std::mt19937 random(7);
    float const end = float(keys - 1) / 30;
    std::uniform_real_distribution<float> anywhere(0, end);
    for (std::size_t i = 0; i < found.size(); ++i)
        found[i] = rising ? std::fmod(float(i) * 0.02f, end) : anywhere(random);
    return found;
}

constexpr int linear = 1, spline = 2;

void ours(benchmark::State& state) {
    Curve const curve(unsigned(state.range(0)), int(state.range(1)), state.range(3));
    auto const at = inputs(curve.keys().count, state.range(2));
    unsigned hint = 0;
    for (auto _ : state)
        for (float t : at) benchmark::DoNotOptimize(curve.prepared.evaluate(t, hint));
    state.counters["sample"] = benchmark::Counter(double(at.size()), benchmark::Counter::kIsIterationInvariantRate |
                                                                         benchmark::Counter::kInvert);
}
BENCHMARK(ours)
    ->ArgNames({"keys", "kind", "rising", "shuffled"})
    ->ArgsProduct({{10, 100, 1000, 10000, 100000}, {linear, spline}, {0, 1}, {0, 1}})
    ->MinTime(0.05);

double now() {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// The fastest of several runs, in ns per call of `work`.
template<class Work> double fastest(int calls, Work work) {
    double best = 1e300;
    for (int run = 0; run < 15; ++run) {
        double const start = now();
        for (int i = 0; i < calls; ++i) work(i);
        best = std::min(best, (now() - start) / calls);
    }
    return best;
}

void compareSamples() {
    std::printf("\n%8s %7s %7s %9s %9s %6s %10s\n", "keys", "kind", "inputs", "flat ns", "ours ns", "ratio",
                "shuffled");
    for (unsigned keys : {10u, 100u, 1000u, 10000u, 100000u})
        for (int kind : {linear, spline})
            for (bool rising : {false, true}) {
                Curve const curve(keys, kind), mixed(keys, kind, true);
                auto const at = inputs(keys, rising);
                CurveKeys const k = curve.keys();
                unsigned hint = 0;
                int const n = int(at.size());
                double const f =
                    fastest(n, [&](int i) { benchmark::DoNotOptimize(flat(k, at[i], hint, kind == spline)); });
                double const o =
                    fastest(n, [&](int i) { benchmark::DoNotOptimize(curve.prepared.evaluate(at[i], hint)); });
                double const m =
                    fastest(n, [&](int i) { benchmark::DoNotOptimize(mixed.prepared.evaluate(at[i], hint)); });
                std::printf("%8u %7s %7s %9.2f %9.2f %6.2f %10.2f\n", keys, kind == linear ? "linear" : "spline",
                            rising ? "rising" : "random", f, o, o / f, m / f);
            }
}

// A clip as it plays: three curves for each of 60 joints, one frame after the other.
void compareClip() {
    std::vector<Curve> curves;
    for (unsigned i = 0; i < 180; ++i) curves.emplace_back(2752, linear, false, i);
    std::vector<CurveKeys> keys;
    for (Curve const& c : curves) keys.push_back(c.keys());
    std::vector<unsigned> hints(curves.size());
    auto const frame = [](int i) { return float(i % 5000) * 0.0181f; };
    double const f = fastest(5000, [&](int i) {
        for (std::size_t c = 0; c < keys.size(); ++c)
            benchmark::DoNotOptimize(flat(keys[c], frame(i), hints[c], false));
    });
    double const o = fastest(5000, [&](int i) {
        for (std::size_t c = 0; c < curves.size(); ++c)
            benchmark::DoNotOptimize(curves[c].prepared.evaluate(frame(i), hints[c]));
    });
    std::printf("\nclip of 180 curves, a frame: flat %.0f ns, ours %.0f ns, ratio %.2f\n", f, o, o / f);
}

// 1,000 keys into 10,000 in random order, appended as slots; against moving the same tails of the two sorted arrays.
void compareInsertion() {
    constexpr unsigned start = 10000, added = 1000;
    Curve curve(start + added, linear, true);
    std::vector<float> tails(start + added);
    std::vector<unsigned> slots(start + added);
    CurveKeys keys = curve.keys();
    double best = 1e300, move = 1e300;
    for (int run = 0; run < 15; ++run) {
        keys.count = start;
        curve.prepared.update(keys);
        std::vector<float> sorted(curve.x.begin(), curve.x.begin() + start);
        std::sort(sorted.begin(), sorted.end());
        std::vector<std::size_t> ranks;
        for (unsigned i = start; i < start + added; ++i) {
            auto const at = std::upper_bound(sorted.begin(), sorted.end(), curve.x[i]);
            ranks.push_back(std::size_t(at - sorted.begin()));
            sorted.insert(at, curve.x[i]);
        }
        double const begin = now();
        for (unsigned slot = start; slot < start + added; ++slot) {
            keys.count = slot + 1;
            curve.prepared.insertKey(keys, slot);
        }
        double const middle = now();
        for (unsigned i = 0; i < added; ++i) {
            std::size_t const rank = ranks[i], tail = (start + i - rank) * 4;
            std::memmove(&tails[rank + 1], &tails[rank], tail);
            std::memmove(&slots[rank + 1], &slots[rank], tail);
            benchmark::ClobberMemory();
        }
        double const end = now();
        best = std::min(best, (middle - begin) / added), move = std::min(move, (end - middle) / added);
    }
    std::printf("insertion into 10,000 keys: %.0f ns, memmove %.0f ns, ratio %.2f\n", best, move, best / move);
}

// Reading in place and through an order, and telling it of changes that leave the order: nothing may be allocated.
void countAllocations() {
    Curve rising(1000, spline), mixed(1000, spline, true);
    std::size_t const before = allocations;
    unsigned hint = 0;
    for (Curve* curve : {&rising, &mixed}) {
        curve->prepared.update(curve->keys());
        curve->prepared.keyChanged(curve->keys(), 500);
        for (int i = -5000; i < 5000; ++i) benchmark::DoNotOptimize(curve->prepared.evaluate(float(i) * 0.01f, hint));
    }
    std::printf("allocations while evaluating and updating in known order: %zu\n", allocations - before);
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    compareSamples();
    compareClip();
    compareInsertion();
    countAllocations();
}
