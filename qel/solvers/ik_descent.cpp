#include "qel/solvers/ik_descent.h"
#include <algorithm>

namespace sg::ik {
namespace {

constexpr double largestTurn = 1.0;    // radians, of a joint in one step: the model says nothing further away
constexpr int mostRounds = 2;          // of finding out which borders hold a step; the next iteration goes on
constexpr double firstDamping = 0.05;  // of the largest diagonal number
constexpr double leastShare = 1e-6;    // of that number, where the damping has to outdo a curvature
constexpr double leastRadius = 0.05;   // radians, of a border
constexpr int mostCurved = 300;        // unknowns: more would cost too much
constexpr double leastDamping = 1e-12, mostDamping = 1e12;
// An eager run gives up when an iteration leaves more than this of a cost that is still far, or three of one that is
// not.
constexpr double slowFall = 0.9, farCost = 1e-2;
// A patient one when so many in turn come to less than this, in radians or of the cost.
constexpr double idleStep = 2e-4, idleFall = 1e-6;
constexpr int mostIdle = 5;

Vec3 at(std::vector<double> const& v, std::size_t block) { return {v[3 * block], v[3 * block + 1], v[3 * block + 2]}; }
void put(std::vector<double>& v, std::size_t block, Vec3 const& x) {
    for (int k = 0; k < 3; ++k) v[3 * block + std::size_t(k)] = x[k];
}
Vec3 scaled(Vec3 const& a, Vec3 const& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
Vec3 unscaled(Vec3 const& a, Vec3 const& b) {
    return {b.x > 0 ? a.x / b.x : 0, b.y > 0 ? a.y / b.y : 0, b.z > 0 ? a.z / b.z : 0};
}

}  // namespace

void Descent::setUp() {
    std::size_t const n = std::size_t(tasks.columnCount());
    linear_.setUp(tasks);
    closed_.resize(tasks.blocks.size());
    limits_.resize(tasks.blocks.size());
    for (std::vector<double>* v : {&gradient_, &pull_, &tied_, &step_, &change_, &fixed_, &free_}) v->assign(n, 0);
    iterations = 0;
}

void Descent::evaluate() {
    skeleton.place();
    tasks.evaluate(skeleton);
}

void Descent::enterLimits() {
    for (std::size_t j = 0; j < skeleton.joints.size(); ++j)
        if (borders.has(int(j))) borders.clamp(skeleton, int(j));
    evaluate();
}

bool Descent::isReached() const {
    return tasks.positionError <= accuracy.position && tasks.orientationError <= accuracy.orientation;
}

bool Descent::isDone() const {
    return isReached() && tasks.poleError <= accuracy.orientation && tasks.softPositionError <= accuracy.position &&
           tasks.softOrientationError <= accuracy.orientation;
}

// ---- limits ----

void Descent::measureLimits() {
    held_.clear();
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b) {
        Block const& block = tasks.blocks[b];
        if (block.isTranslation || !borders.has(block.joint)) continue;
        limits_[b] = borders.measure(skeleton, block.joint);
        Bound found[3];
        int const count = borders.closed(block.joint, limits_[b], found);
        for (int i = 0; i < count; ++i) held_.push_back({b, found[i], true, {}});
    }
}

// Holds what a step would leave by. False if there is nothing that is not held already.
bool Descent::hold(std::vector<double> const& step) {
    bool any = false;
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b) {
        Block const& block = tasks.blocks[b];
        if (block.isTranslation || !borders.has(block.joint)) continue;
        Bound found[3];
        int const count = borders.bounds(block.joint, limits_[b], scaled(at(step, b), block.scale), found);
        for (int i = 0; i < count; ++i) any |= hold(b, found[i]);
    }
    return any;
}

bool Descent::hold(std::size_t block, Bound const& bound) {
    for (Held& h : held_)
        if (h.block == block && !h.isFixed && h.bound.isTwist == bound.isTwist) {
            bool const isNew = dot(h.bound.normal, bound.normal) < 1 - 1e-3;
            h.bound = bound;
            return isNew;
        }
    held_.push_back({block, bound, false, {}});
    return true;
}

// Lets go of what the tasks would rather have further inside. False if there is nothing.
bool Descent::release() {
    model_ = tasks.residual;
    addProduct(tasks, step_, model_);
    for (std::size_t i = 0; i < gradient_.size(); ++i) gradient_[i] = damping_ * (step_[i] - pull_[i]);
    addTransposed(tasks, model_, gradient_);
    if (isCurved_) curvature_.addProduct(step_, gradient_);
    for (std::size_t i = 0; i < gradient_.size(); ++i) gradient_[i] += tied_[i];
    std::size_t const before = held_.size();
    std::erase_if(held_, [&](Held const& h) { return !h.isFixed && dot(h.across, at(gradient_, h.block)) > 0; });
    return held_.size() < before;
}

// The block moves along the bound by just the room there is: that much is decided, and the direction is taken out of
// its unknowns.
void Descent::close(Held& held) {
    std::size_t const b = held.block;
    Vec3 normal = scaled(held.bound.normal, tasks.blocks[b].scale);
    held.across = {};
    double const whole = length(normal);
    if (!(whole > 0)) return;
    normal = normal * (1 / whole);
    double room = held.bound.room / whole - dot(normal, at(fixed_, b));
    for (Vec3 const& other : closed_[b]) normal = normal - other * dot(other, normal);
    double const rest = length(normal);
    if (rest < 1e-4) return;  // decided already
    held.across = normal = normal * (1 / rest);
    room /= rest;
    closed_[b].push_back(normal);
    if (isCurved_) open_.close(b, normal);
    put(fixed_, b, at(fixed_, b) + normal * room);
    put(free_, b, at(free_, b) - normal * dot(normal, at(free_, b)));
    for (std::size_t e = tasks.firstEntry[b]; e < tasks.firstEntry[b + 1]; ++e) {
        double* j = projected_.data() + tasks.entries[e].at;
        double* r = right_.data() + tasks.entries[e].firstRow;
        for (int i = 0; i < tasks.entries[e].rows; ++i, j += 3) {
            double const along = j[0] * normal.x + j[1] * normal.y + j[2] * normal.z;
            j[0] -= along * normal.x, j[1] -= along * normal.y, j[2] -= along * normal.z;
            r[i] += along * room;
        }
    }
}

void Descent::closeAll() {
    projected_ = tasks.jacobian;
    right_ = tasks.residual;
    free_ = pull_;
    std::fill(fixed_.begin(), fixed_.end(), 0);
    for (std::vector<Vec3>& c : closed_) c.clear();
    if (isCurved_) open_ = curvature_;
    for (Held& h : held_) close(h);
    tasks.jacobian.swap(projected_);
    linear_.form(tasks, isCurved_ ? &open_ : nullptr);
    tasks.jacobian.swap(projected_);
}

// ---- one iteration ----

// In unknowns.
Vec3 Descent::away(Block const& block) const {
    if (block.isTranslation) return {};
    Mat3 const& turn = skeleton.joints[std::size_t(block.joint)].turn;
    return unscaled(logarithm(preferred.turns[std::size_t(block.joint)] * transposed(turn)), block.scale);
}

void Descent::computePull() {
    std::fill(pull_.begin(), pull_.end(), 0);
    if (preference <= 0 || preferred.turns.size() != skeleton.joints.size()) return;
    double const share = preference * std::min(1.0, std::sqrt(2 * tasks.cost));
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b) {
        Block const& block = tasks.blocks[b];
        if (block.isTranslation) continue;
        put(pull_, b, away(block) * share);
    }
}

// What ties the joints to the preferred pose: it decides where far targets leave a choice, such as how a straight arm
// is twisted, which would else depend on the way there.
void Descent::pullTie() {
    std::fill(tied_.begin(), tied_.end(), 0);
    for (std::size_t b = 0; tie_ > 0 && b < tasks.blocks.size(); ++b) {
        put(tied_, b, away(tasks.blocks[b]) * -tie_);
        curvature_.addRound(b, Vec3{tie_, tie_, tie_});
    }
}

double Descent::merit() const {
    double sum = tasks.cost;
    for (std::size_t b = 0; tie_ > 0 && b < tasks.blocks.size(); ++b) {
        Vec3 const v = away(tasks.blocks[b]);
        sum += tie_ / 2 * dot(v, v);
    }
    return sum;
}

// A step along the border of the swings is brought back to it: the more the tasks press outwards there, the more it
// costs. The border is taken as a circle about the middle.
void Descent::bendBorders(double steepness) {
    for (Held const& h : held_) {
        if (h.isFixed || h.bound.isTwist) continue;
        Vec3 const scale = tasks.blocks[h.block].scale;
        double const pressure = dot(unscaled(at(gradient_, h.block), scale), h.bound.normal) * steepness;
        LimitState const& state = limits_[h.block];
        double const radius = std::max(leastRadius, std::hypot(state.at.swing1, state.at.swing2));
        if (pressure > 0) curvature_.addRound(h.block, scaled(scale, scale) * (pressure / radius));
    }
}

void Descent::linearise() {
    tasks.linearise(skeleton);
    if (isCurved_) curvature_.form(tasks, skeleton);
    pullTie();
    gradient_ = tied_;
    addTransposed(tasks, tasks.residual, gradient_);
    computePull();
    measureLimits();
    double largest = 0;
    for (double g : gradient_) largest = std::max(largest, std::abs(g));
    for (double& g : gradient_) g *= largest > 0 ? -1e-6 / largest : 0;
    hold(gradient_);
    if (isCurved_) bendBorders(largest / 1e-6);
    closeAll();
}

// The pull, and what the bending makes of the part of the step that is decided.
std::vector<double> const& Descent::bentFree() {
    if (!isCurved_) return free_;
    gradient_ = tied_;
    curvature_.addProduct(fixed_, gradient_);
    for (std::size_t b = 0; b < closed_.size(); ++b)
        for (Vec3 const& c : closed_[b]) put(gradient_, b, at(gradient_, b) - c * dot(c, at(gradient_, b)));
    for (std::size_t i = 0; i < gradient_.size(); ++i) gradient_[i] = free_[i] - gradient_[i] / damping_;
    return gradient_;
}

void Descent::computeStep() {
    for (int again = 0;; ++again) {
        tasks.jacobian.swap(projected_);
        while (!linear_.solve(tasks, right_, damping_, bentFree(), step_))
            damping_ = std::max(4 * damping_, leastShare * linear_.largestDiagonal());
        tasks.jacobian.swap(projected_);
        for (std::size_t i = 0; i < step_.size(); ++i) step_[i] += fixed_[i];
        if (again == mostRounds) break;
        bool const released = release(), held = hold(step_);
        if (!released && !held) break;
        closeAll();
    }
    double largest = 0;
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b)
        if (!tasks.blocks[b].isTranslation)
            largest = std::max(largest, length(scaled(at(step_, b), tasks.blocks[b].scale)));
    if (largest > largestTurn)
        for (double& s : step_) s *= largestTurn / largest;
}

// Also notes what the joints really did, which is less where a limit was in the way.
void Descent::apply() {
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b) {
        Block const& block = tasks.blocks[b];
        Vec3 const move = scaled(at(step_, b), block.scale);
        put(change_, b, at(step_, b));
        if (block.isTranslation) {
            skeleton.joints[std::size_t(block.joint)].place += move;
            continue;
        }
        skeleton.turnBy(block.joint, move);
        if (!borders.has(block.joint) || !borders.clamp(skeleton, block.joint)) continue;
        Mat3 const& turn = skeleton.joints[std::size_t(block.joint)].turn;
        Vec3 const done = logarithm(turn * transposed(kept_.turns[std::size_t(block.joint)]));
        put(change_, b, unscaled(done, block.scale));
    }
    evaluate();
}

// By how much the model says that the cost falls. The residuals are those from before the step.
double Descent::predicted(double before) {
    addProduct(tasks, change_, residual_);
    double fall = before;
    for (double r : residual_) fall -= r * r / 2;
    for (std::size_t i = 0; i < change_.size(); ++i) fall -= tied_[i] * change_[i];
    return fall - (isCurved_ ? curvature_.along(change_) / 2 : 0);
}

// One linear model and its step, taken if it is for the better.
bool Descent::iterate(double before) {
    linearise();
    if (damping_ <= 0) damping_ = firstDamping * linear_.largestDiagonal() + leastDamping;
    skeleton.keep(kept_);
    residual_ = tasks.residual;
    double const modelled = tasks.cost;
    computeStep();
    apply();
    ++iterations;
    if (double const after = merit(); after < before) {
        double const ratio = (before - after) / std::max(predicted(modelled), 1e-300);
        damping_ = std::max(leastDamping, damping_ * std::max(1.0 / 3, 1 - std::pow(2 * ratio - 1, 3)));
        growth_ = 2;
        return true;
    }
    skeleton.restore(kept_);
    evaluate();
    damping_ *= growth_;
    growth_ *= 2;
    return false;
}

bool Descent::isSlow(double before) {
    slow_ = tasks.cost < slowFall * before ? 0 : slow_ + 1;
    return slow_ >= (tasks.cost > farCost ? 1 : 3);
}

// Where least squares no longer fall fast, what is left is large and its bending counts.
void Descent::bend(double before) {
    if (isCurved_ || tasks.cost < farCost || merit() < slowFall * before || tasks.columnCount() > mostCurved) return;
    isCurved_ = true;
    damping_ = 0;
    growth_ = 2;
}

bool Descent::isIdle(double before) {
    double largest = 0;
    for (double c : change_) largest = std::max(largest, std::abs(c));
    bool const moves = merit() < (1 - idleFall) * before && largest > idleStep;
    idle_ = moves ? 0 : idle_ + 1;
    return idle_ >= mostIdle || damping_ > mostDamping;
}

bool Descent::run(int most, bool isEager) {
    damping_ = 0;
    growth_ = 2;
    slow_ = idle_ = 0;
    isCurved_ = false;
    tie_ = 0;
    for (; !isDone() && most > 0; --most) {
        tie_ = isCurved_ ? tie * std::min(tasks.cost, std::sqrt(tasks.cost)) : 0;
        double const before = merit();
        iterate(before);
        if (isEager && !isReached() ? isSlow(before) : isIdle(before)) break;
        if (!isEager) bend(before);
    }
    return isReached();
}

}  // namespace sg::ik
