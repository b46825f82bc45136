// What a solve costs: of a chain of 20 joints and of a humanoid of 60 with five effectors, from rest to random poses,
// beside a bare loop of damped least squares without limits, rig or graph in the same program; and the two smallest
// rigs, a limb of two bones and an aim.
#include "bench/timing.h"
#include "tests/qel/solvers/ik_bodies.h"

namespace {

using namespace sg;
using namespace sg::ik;
using Qelp::Matrix34;

struct Task {
    Body body;
    std::vector<IKHandle> handles;
    IKSolver solver;
    std::mt19937 random{1};
    double roam;

    Task(Body b, double r, bool isLimited) : body(std::move(b)), roam(r) {
        for (int e : body.effectors) handles.emplace_back().joint = e;
        solver.geometry = body.rest;
        solver.hierarchy = body.parents;
        solver.joints = body.joints;
        solver.handles = handles;
        solver.rootLocked = roam == 0;
        solver.disableAllLimits = !isLimited;
    }
    void aim() {
        std::vector<Matrix34> const world = worldOf(randomPose(body, random, roam), body.parents);
        for (IKHandle& h : handles) h.target = world[std::size_t(h.joint)];
    }
};

// The textbook: dense Jacobian of world axes, constant damping, until the same accuracies.
class BareLoop {
public:
    explicit BareLoop(Task const& task) : task_(task) {
        std::size_t const n = task.body.rest.size();
        rows_ = 6 * int(task.handles.size());
        columns_ = 3 * int(n) + (task.roam > 0 ? 3 : 0);
        jacobian_.resize(std::size_t(rows_ * columns_));
        matrix_.resize(std::size_t(rows_ * rows_));
        error_.resize(std::size_t(rows_));
        turns_.resize(n), axes_.resize(n), origins_.resize(n);
    }
    bool run() {
        std::fill(turns_.begin(), turns_.end(), Mat3());
        root_ = rowOf(task_.body.rest[0], 3);
        for (int i = 0; i < 100; ++i) {
            place();
            if (measure()) return true;
            linearise();
            solve();
        }
        return false;
    }

private:
    double& jacobian(int r, int c) { return jacobian_[std::size_t(r * columns_ + c)]; }
    double& matrix(int r, int c) { return matrix_[std::size_t(r * rows_ + c)]; }

    void place() {
        for (std::size_t i = 0; i < turns_.size(); ++i) {
            int const p = task_.body.parents[i];
            axes_[i] = p < 0 ? turns_[i] : turns_[i] * axes_[std::size_t(p)];
            origins_[i] =
                p < 0 ? root_ : rowOf(task_.body.rest[i], 3) * axes_[std::size_t(p)] + origins_[std::size_t(p)];
        }
    }
    bool measure() {
        bool reached = true;
        for (std::size_t h = 0; h < task_.handles.size(); ++h) {
            IKHandle const& handle = task_.handles[h];
            std::size_t const j = std::size_t(handle.joint);
            Mat3 const wanted{{rowOf(handle.target, 0), rowOf(handle.target, 1), rowOf(handle.target, 2)}};
            Vec3 const away = rowOf(handle.target, 3) - origins_[j], left = logarithm(transposed(axes_[j]) * wanted);
            for (int k = 0; k < 3; ++k)
                error_[6 * h + std::size_t(k)] = away[k], error_[6 * h + 3 + std::size_t(k)] = left[k];
            reached &= length(away) <= 1e-4 && length(left) <= 1e-3;
        }
        return reached;
    }
    void linearise() {
        std::fill(jacobian_.begin(), jacobian_.end(), 0);
        for (std::size_t h = 0; h < task_.handles.size(); ++h) {
            int const row = 6 * int(h);
            Vec3 const at = origins_[std::size_t(task_.handles[h].joint)];
            for (int j = task_.handles[h].joint; j >= 0; j = task_.body.parents[std::size_t(j)])
                for (int k = 0; k < 3; ++k) {
                    Vec3 const axis = axes_[std::size_t(j)].row[k], moved = cross(axis, at - origins_[std::size_t(j)]);
                    for (int i = 0; i < 3; ++i)
                        jacobian(row + i, 3 * j + k) = moved[i], jacobian(row + 3 + i, 3 * j + k) = axis[i];
                }
            for (int k = 0; task_.roam > 0 && k < 3; ++k) jacobian(row + k, columns_ - 3 + k) = 0.1;
        }
    }
    void solve() {
        for (int i = 0; i < rows_; ++i)
            for (int j = 0; j <= i; ++j) {
                double sum = i == j ? 1e-3 : 0;
                for (int k = 0; k < columns_; ++k) sum += jacobian(i, k) * jacobian(j, k);
                for (int k = 0; k < j; ++k) sum -= matrix(i, k) * matrix(j, k);
                matrix(i, j) = i == j ? std::sqrt(sum) : sum / matrix(j, j);
            }
        for (int i = 0; i < rows_; ++i) {
            for (int k = 0; k < i; ++k) error_[std::size_t(i)] -= matrix(i, k) * error_[std::size_t(k)];
            error_[std::size_t(i)] /= matrix(i, i);
        }
        for (int i = rows_; i-- > 0;) {
            for (int k = i + 1; k < rows_; ++k) error_[std::size_t(i)] -= matrix(k, i) * error_[std::size_t(k)];
            error_[std::size_t(i)] /= matrix(i, i);
        }
        for (std::size_t j = 0; j < turns_.size(); ++j) turns_[j] = exponential(step(int(j))) * turns_[j];
        if (task_.roam > 0) root_ += step(int(turns_.size())) * 0.1;
    }
    Vec3 step(int block) {
        Vec3 v;
        for (int k = 0; k < 3; ++k)
            for (int r = 0; r < rows_; ++r) v[k] += jacobian(r, 3 * block + k) * error_[std::size_t(r)];
        return v;
    }

    Task const& task_;
    int rows_, columns_;
    std::vector<double> jacobian_, matrix_, error_;
    std::vector<Mat3> turns_, axes_;
    std::vector<Vec3> origins_;
    Vec3 root_;
};

double part(std::vector<double> v, double share) {
    auto const at = v.begin() + long(share * double(v.size() - 1));
    std::nth_element(v.begin(), at, v.end());
    return *at * 1e6;
}

void report(benchmark::State& state, std::vector<double> const& ours, std::vector<double> const& bare) {
    state.counters["p50_us"] = part(ours, 0.5);
    state.counters["p95_us"] = part(ours, 0.95);
    state.counters["p95_to_p50"] = part(ours, 0.95) / part(ours, 0.5);
    if (bare.empty()) return;
    state.counters["bare_us"] = part(bare, 0.5);
    state.counters["ratio"] = part(ours, 0.5) / part(bare, 0.5);
}

void solve(benchmark::State& state, Task task) {
    BareLoop bare(task);
    std::vector<double> ours, theirs;
    int missed = 0;
    for (auto _ : state) {
        task.aim();
        ours.push_back(bench::seconds([&] { task.solver.Run(); }));
        theirs.push_back(bench::seconds([&] { bare.run(); }));
        missed += !task.solver.isReached;
        state.SetIterationTime(ours.back());
    }
    report(state, ours, theirs);
    state.counters["missed"] = missed;
}

void chainOfTwenty(benchmark::State& state) { solve(state, Task(makeChain(20), 0, true)); }
void chainOfTwentyWithoutLimits(benchmark::State& state) { solve(state, Task(makeChain(20), 0, false)); }
void humanoid(benchmark::State& state) { solve(state, Task(makeHumanoid(), 0.3, true)); }
void humanoidWithoutLimits(benchmark::State& state) { solve(state, Task(makeHumanoid(), 0.3, false)); }
BENCHMARK(chainOfTwenty)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(chainOfTwentyWithoutLimits)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(humanoid)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(humanoidWithoutLimits)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);

// One frame of a drag: the last pose is where the next solve begins.
void frameOfADrag(benchmark::State& state) {
    Task task(makeHumanoid(), 0.3, true);
    std::vector<Matrix34> last = task.body.rest;
    Matrix34 const hand = worldOf(task.body.rest, task.body.parents)[std::size_t(task.handles[1].joint)];
    for (IKHandle& h : task.handles) h.target = worldOf(task.body.rest, task.body.parents)[std::size_t(h.joint)];
    std::vector<double> times;
    int frame = 0;
    for (auto _ : state) {
        task.handles[1].target.m[3][1] = hand.m[3][1] - 0.3F + 0.3F * std::cos(0.02F * float(frame++));
        task.solver.previous = last;
        times.push_back(bench::seconds([&] { task.solver.Run(); }));
        last = task.solver.result;
        state.SetIterationTime(times.back());
    }
    report(state, times, {});
}
BENCHMARK(frameOfADrag)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Positions only: two bones to a point, or one that points at it.
void small(benchmark::State& state, int bones) {
    Body body = makeChain(bones + 1);
    for (IKJoint& j : body.joints) j.isLimited = false;
    Task task(std::move(body), 0, false);
    task.handles[0].mode = PositionHandle;
    std::vector<double> times;
    for (auto _ : state) {
        task.aim();
        times.push_back(bench::seconds([&] { task.solver.Run(); }));
        state.SetIterationTime(times.back());
    }
    report(state, times, {});
}
void aim(benchmark::State& state) { small(state, 1); }
void twoBones(benchmark::State& state) { small(state, 2); }
BENCHMARK(aim)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(twoBones)->Iterations(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
