// Both curve fitters over 1,000 to 100,000 samples of a path that bends alike everywhere.
//
// Promised: the global fit of a given number of samples a segment, and of a given number of segments, is linear in the
// samples; the simple fit is linear with a given most of samples a segment. The reference of the global fit is the
// dense normal matrix alone, without its inversion, in 20 segments. The summary at the end prints exponents and ratios.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>

#include "tavo/animation/curve_fit_global.h"
#include "tavo/animation/curve_fit_simple.h"

namespace {

using Tavo::SamplesFitter_multiFit;
using Tavo::SamplesFitter_simpleFit;
using Matrix = Qelp::Matrix<double>;
using Vector = Qelp::Vector<double>;

constexpr int window = 5, mostSamples = 200, refinementSteps = 2;
constexpr double tolerance = 0.01;

Matrix path(int count) {
    Matrix out(count, 3);
    for (int i = 0; i < count; ++i) {
        double const t = i * 0.05;
        out(i, 0) = t + std::cos(t), out(i, 1) = std::sin(1.3 * t), out(i, 2) = 0.5 * std::sin(0.7 * t);
    }
    return out;
}

Vector counting(int count) {
    Vector out;
    for (int i = 0; i < count; ++i) out.push_back(i);
    return out;
}

unsigned simple(Matrix const& samples, int most = mostSamples) {
    SamplesFitter_simpleFit fitter;
    fitter.fit(samples, tolerance, 20, most, refinementSteps);
    return fitter.getBreakPointsNum() - 1;
}

bool global(Matrix const& samples, Vector const& parameters, int segments) {
    SamplesFitter_multiFit fitter;
    return fitter.superSegmentFit(samples, parameters, segments, window, 1e-9, 1e-12);
}

// The bare product of a dense basis with itself, as many rows as samples and 42 columns.
double denseProduct(int count) {
    Matrix const basis(count, 42, 0.5);
    Matrix product(42, 42);
    for (int row = 0; row < count; ++row)
        for (int i = 0; i < 42; ++i)
            for (int j = 0; j < 42; ++j) product(i, j) += basis(row, i) * basis(row, j);
    return product(41, 41);
}

void SimpleFit(benchmark::State& state) {
    Matrix const samples = path(int(state.range(0)));
    unsigned segments = 0;
    for (auto _ : state) segments = simple(samples);
    state.counters["segments"] = segments;
}
BENCHMARK(SimpleFit)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->MinTime(0.05);

void GlobalFitOf20Segments(benchmark::State& state) {
    Matrix const samples = path(int(state.range(0)));
    Vector const parameters = counting(samples.rows());
    for (auto _ : state)
        if (!global(samples, parameters, 20)) state.SkipWithError("the fit failed");
}
BENCHMARK(GlobalFitOf20Segments)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->MinTime(0.05);

// Milliseconds, the fastest of some runs.
template<class Work> double fastest(Work work) {
    double best = 1e300;
    for (int run = 0; run < 7; ++run) {
        auto const start = std::chrono::steady_clock::now();
        work();
        best =
            std::min(best, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

template<class Work> void summarize(char const* name, Work work) {
    std::map<int, double> times;
    for (int count : {1000, 10000, 100000}) times[count] = fastest([&] { work(count); });
    std::printf("%-44s %9.3f %9.3f %9.3f %9.2f\n", name, times[1000], times[10000], times[100000],
                std::log10(times[100000] / times[1000]) / 2);
}

void summary() {
    std::map<int, Matrix> samples;
    std::map<int, Vector> parameters;
    for (int count : {1000, 10000, 100000}) samples[count] = path(count), parameters[count] = counting(count);
    std::printf("\n%-44s %9s %9s %9s %9s\n", "ms", "1,000", "10,000", "100,000", "exponent");
    summarize("simple, at most 200 samples a segment", [&](int n) { simple(samples[n]); });
    summarize("global, 20 segments", [&](int n) { global(samples[n], parameters[n], 20); });
    summarize("global, a segment for every 50 samples", [&](int n) { global(samples[n], parameters[n], n / 50); });
    summarize("dense normal matrix alone, 20 segments", [](int n) { benchmark::DoNotOptimize(denseProduct(n)); });
    std::printf("simple fit of 10,000 samples: %u segments; without a most of samples: %u segments in %.1f ms\n",
                simple(samples[10000]), simple(samples[10000], 10000), fastest([&] { simple(samples[10000], 10000); }));
    for (int n : {1000, 10000, 100000})
        if (!global(samples[n], parameters[n], 20) || !global(samples[n], parameters[n], n / 50))
            std::printf("a global fit of %d samples failed\n", n);
}

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    summary();
}
