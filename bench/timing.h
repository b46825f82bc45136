// How the benchmarks take time and print it: against a reference in the same program, or against themselves at another
// size. Figures are medians.
#pragma once
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// Of this thread: other work on the machine does not count.
inline double cpuSeconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

inline double secondsOfALook() {  // at the clock
    double least = 1;
    for (int i = 0; i < 1000; ++i) {
        double const start = cpuSeconds();
        least = std::min(least, cpuSeconds() - start);
    }
    return least;
}

template<class F> double seconds(F const& f) {
    static double const look = secondsOfALook();
    double const start = cpuSeconds();
    f();
    return std::max(1e-9, cpuSeconds() - start - look);
}

inline double median(std::vector<double> v) {
    std::nth_element(v.begin(), v.begin() + long(v.size() / 2), v.end());
    return v[v.size() / 2];
}

// Both do `count` operations; `reset` runs untimed after each round.
template<class F, class G, class R>
void compare(benchmark::State& state, double count, F const& ours, G const& reference, R const& reset) {
    std::vector<double> a, b;
    for (auto _ : state) {
        a.push_back(seconds(ours));
        b.push_back(seconds(reference));
        reset();
        state.SetIterationTime(a.back());
    }
    state.counters["ns"] = median(a) / count * 1e9;
    state.counters["reference_ns"] = median(b) / count * 1e9;
    state.counters["ratio"] = median(a) / median(b);
}

// The slope of log time over log size.
inline double exponent(std::vector<std::pair<double, double>> const& points) {
    double n = double(points.size()), sx = 0, sy = 0, sxx = 0, sxy = 0;
    for (auto [size, time] : points) {
        double const x = std::log(size), y = std::log(time);
        sx += x, sy += y, sxx += x * x, sxy += x * y;
    }
    return (n * sxy - sx * sy) / (n * sxx - sx * sx);
}

inline constexpr std::size_t sizes[] = {1000, 10000, 100000};

// Times run(size) at all sizes: nanoseconds for each of them, and the exponent.
template<class F> void grow(benchmark::State& state, F const& run) {
    std::array<std::vector<double>, std::size(sizes)> times;
    for (auto _ : state) {
        for (std::size_t i = 0; i < std::size(sizes); ++i) times[i].push_back(run(sizes[i]));
        state.SetIterationTime(times.back().back());
    }
    std::vector<std::pair<double, double>> points;
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        points.emplace_back(double(sizes[i]), median(times[i]));
        state.counters["ns_" + std::to_string(sizes[i])] = points.back().second / double(sizes[i]) * 1e9;
    }
    state.counters["exponent"] = exponent(points);
}

}  // namespace bench
