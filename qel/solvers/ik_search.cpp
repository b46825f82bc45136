#include "qel/solvers/ik_search.h"
#include <algorithm>

namespace sg::ik {
namespace {

constexpr double rootReadiness = 0.1;  // the root moves by this part of the body's length as readily as a joint turns

Vec3 rowOfTarget(Qelp::Matrix34 const& m) { return rowOf(m, 3); }

IKJoint const& settingsOf(IKSolver const& solver, int joint) {
    static IKJoint const plain;
    return std::size_t(joint) < solver.joints.size() ? solver.joints[std::size_t(joint)] : plain;
}

// The part of a handle's weights that pulls; 0 if it does not.
double pull(IKHandle const& h) { return h.mode != SecondaryHandle || h.isPinned ? 1 : h.secondaryWeight; }
bool isSoft(IKHandle const& h) { return h.mode == SecondaryHandle && !h.isPinned; }
double orientationWeight(IKHandle const& h) { return h.mode == PositionHandle ? 0 : h.orientationWeight * pull(h); }
bool pulls(IKHandle const& h) { return h.positionWeight * pull(h) > 0 || orientationWeight(h) > 0; }

}  // namespace

// ---- setting up ----

void Search::setUpJoints(IKSolver const& solver) {
    Skeleton& skeleton = descent_.skeleton;
    skeleton.setUp(solver.geometry, solver.hierarchy);
    skeleton.place();
    double const reach = skeleton.reach();
    size_ = reach > 0 ? reach / 2 : 1;
    limits_.assign(skeleton.joints.size(), nullptr);
    for (std::size_t i = 0; i < limits_.size() && i < solver.joints.size(); ++i)
        if (solver.joints[i].isJoint && solver.joints[i].isLimited && !solver.disableAllLimits)
            limits_[i] = &solver.joints[i].limit;
    descent_.borders.setUp(limits_);
    findDepths();
}

void Search::findDepths() {
    Skeleton const& skeleton = descent_.skeleton;
    depths_.assign(skeleton.joints.size(), 0);
    deepest_ = 0;
    for (int i : skeleton.order) {
        int const parent = skeleton.joints[std::size_t(i)].parent;
        if (parent >= 0) depths_[std::size_t(i)] = depths_[std::size_t(parent)] + 1;
        deepest_ = std::max(deepest_, depths_[std::size_t(i)]);
    }
}

void Search::setUpHandles(IKSolver const& solver) {
    Skeleton const& skeleton = descent_.skeleton;
    descent_.tasks.effectors.clear();
    pulled_.assign(skeleton.joints.size(), 0);
    for (IKHandle const& h : solver.handles) {
        if (!pulls(h)) continue;
        Joint const& j = skeleton.joints[std::size_t(h.joint)];
        // A sheared effector has the orientation of its world matrix in the input pose, and turns from there.
        Qelp::Matrix34 world;
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k) world.m[i][k] = float(j.linear.row[i][k]);
        Mat3 const shown = fromRotation(Qelutils::rotation::orthonormal(world.m));
        Mat3 const wanted = fromRotation(Qelutils::rotation::orthonormal(h.target.m));
        Mat3 const axes = j.orientation() * transposed(shown) * wanted;
        descent_.tasks.effectors.push_back(
            {h.joint, rowOfTarget(h.target), axes, h.positionWeight * pull(h), orientationWeight(h), isSoft(h)});
        for (int i = h.joint; i >= 0; i = skeleton.joints[std::size_t(i)].parent) ++pulled_[std::size_t(i)];
    }
}

Vec3 Search::readiness(IKSolver const& solver, int joint) const {
    IKJoint const& settings = settingsOf(solver, joint);
    double const t = deepest_ > 0 ? double(depths_[std::size_t(joint)]) / deepest_ : 0;
    double const bias = std::clamp(-solver.moreBias * t - solver.reverseBias * (1 - t), -20.0, 20.0);
    double const all = std::exp(bias) / (1 + settings.stiffness);
    return Vec3{settings.readiness[0], settings.readiness[1], settings.readiness[2]} * all;
}

void Search::setUpBlocks(IKSolver const& solver) {
    std::vector<Block>& blocks = descent_.tasks.blocks;
    blocks.clear();
    bool const moves = !solver.rootLocked && settingsOf(solver, 0).isJoint && !pulled_.empty() && pulled_[0];
    auto const along = [&](int i) { return solver.lockRoot[i] ? 0 : rootReadiness * 2 * size_; };
    if (moves) blocks.push_back({0, true, {along(0), along(1), along(2)}});
    for (int i : descent_.skeleton.order)
        if (pulled_[std::size_t(i)] && settingsOf(solver, i).isJoint)
            blocks.push_back({i, false, readiness(solver, i)});
}

void Search::setUpPoles(IKSolver const& solver) {
    Skeleton const& skeleton = descent_.skeleton;
    descent_.tasks.poles.clear();
    for (std::size_t i = 0; i < solver.joints.size() && i < skeleton.joints.size(); ++i) {
        IKJoint const& settings = solver.joints[i];
        if (!settings.hasPoles || !settings.isJoint) continue;
        for (Effector const& e : descent_.tasks.effectors) {
            int at = e.joint;
            while (at >= 0 && at != int(i)) at = skeleton.joints[std::size_t(at)].parent;
            if (at < 0 || e.joint == int(i)) continue;
            Joint const& j = skeleton.joints[i];
            Vec3 const reference = rowOfTarget(settings.referencePole) - j.origin;
            // frame may be scaled: what rides with the joint is told in its own unscaled space
            descent_.tasks.poles.push_back(
                {int(i), e.joint, rowOfTarget(settings.controlPole), solved(reference, j.frame), 1, 1});
            break;
        }
    }
}

// Of the bind poses the one closest to where the solve begins.
void Search::setUpPreference(IKSolver const& solver) {
    Skeleton& skeleton = descent_.skeleton;
    Pose start, pose;
    skeleton.keep(start);
    descent_.preferred = start;
    double closest = -1;
    for (std::vector<Qelp::Matrix34> const& bind : solver.bindPoses) {
        if (bind.size() < skeleton.joints.size()) continue;
        skeleton.setPose(bind);
        skeleton.keep(pose);
        double distance = 0;
        for (std::size_t i = 0; i < pose.turns.size(); ++i) {
            Vec3 const v = logarithm(pose.turns[i] * transposed(start.turns[i]));
            distance += dot(v, v);
        }
        if (closest >= 0 && distance >= closest) continue;
        closest = distance;
        descent_.preferred = pose;
    }
    skeleton.restore(start);
    descent_.preference = closest >= 0 ? 0.5 : 0;
}

// ---- the search ----

namespace {

constexpr double relaxedCost = 0.05;                     // targets this far take the joints half way to their middle
constexpr double missMetres = 0.03, missRadians = 0.05;  // an effector this far off sits in the wrong place
constexpr double limbRange = 0.5, bodyRange = 0.8;       // of the room in the limits
constexpr int limbsOnly = 3;  // attempts, before all of the body is stirred every second time
constexpr int mostAttempts = 60;
constexpr double bendRadians = 0.05, muchBetter = 0.9, leapt = 0.5;
constexpr double tieShare = 3e-3;

// A number in [-1, 1). Steele, Lea and Flood, "Fast splittable pseudorandom number generators", OOPSLA (2014).
double next(std::uint64_t& state) {
    std::uint64_t z = state += 0x9e3779b97f4a7c15;
    z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9;
    z = (z ^ z >> 27) * 0x94d049bb133111eb;
    return double((z ^ z >> 31) >> 11) / 4503599627370496.0 - 1;
}

}  // namespace

// A joint on its border hides from the model that it could turn the other way: a straight knee does not shorten the
// leg. So the further the targets are, the further the joints go to the middle of their range first; close ones leave
// them.
void Search::relax() {
    double const cost = descent_.tasks.cost, share = cost / (cost + relaxedCost);
    for (Block const& b : descent_.tasks.blocks)
        if (!b.isTranslation && descent_.borders.has(b.joint))
            descent_.borders.centre(descent_.skeleton, b.joint, share);
    descent_.evaluate();
}

bool Search::misses(Effector const& e) const {
    Joint const& j = descent_.skeleton.joints[std::size_t(e.joint)];
    return (e.positionWeight > 0 && length(j.origin - e.position) > missMetres) ||
           (e.orientationWeight > 0 && length(logarithm(transposed(j.orientation()) * e.axes)) > missRadians);
}

// Only what may turn about all its axes.
void Search::stir(int joint, std::uint64_t& random, double range) {
    Vec3 const at = Vec3{next(random), next(random), next(random)} * range;
    auto const turns = [&](Block const& b) {
        return !b.isTranslation && b.joint == joint && b.scale.x > 0 && b.scale.y > 0 && b.scale.z > 0;
    };
    if (std::none_of(descent_.tasks.blocks.begin(), descent_.tasks.blocks.end(), turns)) return;
    if (descent_.borders.has(joint))
        descent_.borders.goTo(descent_.skeleton, joint, at);
    else
        descent_.skeleton.turnBy(joint, at);
}

// Nothing has moved since the start.
bool Search::isStuck() const {
    for (std::size_t i = 0; i < first_.turns.size(); ++i)
        if (!(first_.turns[i] == descent_.skeleton.joints[i].turn)) return false;
    return true;
}

// In continuous mode the pose may not go elsewhere, but a straight limb whose target lies along it has no slope to
// follow at all: what a small bend makes much better is taken.
bool Search::bend(IKSolver const& solver) {
    std::uint64_t random = 0;
    double const before = descent_.tasks.cost;
    descent_.skeleton.keep(first_);
    for (Block const& b : descent_.tasks.blocks) {
        if (b.isTranslation) continue;
        descent_.skeleton.turnBy(b.joint, Vec3{next(random), next(random), next(random)} * bendRadians);
        if (descent_.borders.has(b.joint)) descent_.borders.clamp(descent_.skeleton, b.joint);
    }
    descent_.evaluate();
    bool const reached = descent_.run(solver.maxIterations - descent_.iterations, false);
    if (!reached && descent_.tasks.cost > muchBetter * before) comeBackTo(first_);
    return reached;
}

// The limbs whose effectors are far off: up to the joint that others hang on too.
void Search::stirMissing(std::uint64_t& random) {
    for (Effector const& e : descent_.tasks.effectors) {
        if (e.isSoft || !misses(e)) continue;
        int const alone = pulled_[std::size_t(e.joint)];
        for (int i = e.joint; i >= 0 && pulled_[std::size_t(i)] == alone;
             i = descent_.skeleton.joints[std::size_t(i)].parent)
            stir(i, random, limbRange);
    }
}

void Search::stirAll(std::uint64_t& random) {
    for (Block const& b : descent_.tasks.blocks)
        if (!b.isTranslation) stir(b.joint, random, bodyRange);
}

void Search::comeBackTo(Pose const& pose) {
    descent_.skeleton.restore(pose);
    descent_.evaluate();
}

// What is soft may have kept the others from their targets: now it is left aside, and loses no more than it must.
bool Search::giveWay(int most, bool isEager) {
    if (!descent_.tasks.isAnySoft()) return false;
    descent_.tasks.setSoftness(0);
    descent_.evaluate();
    return descent_.run(most - descent_.iterations, isEager);
}

// From poses near the best one found. What is not reached in the end goes on from where the first attempt stopped, so
// that a target out of reach gives the pose that it would give without all this; only a much better one is taken.
bool Search::searchElsewhere(IKSolver& solver) {
    std::uint64_t random = 0;
    double least = descent_.tasks.cost;
    descent_.skeleton.keep(first_);
    best_ = first_;
    auto const left = [&] { return solver.maxIterations - descent_.iterations; };
    while (solver.attempts < mostAttempts && left() > solver.maxIterations / 4) {
        bool const all = solver.attempts++ >= limbsOnly && solver.attempts % 2 == 0;
        all ? stirAll(random) : stirMissing(random);
        descent_.evaluate();
        if (descent_.run(left(), true)) return true;
        if (descent_.tasks.cost < least) {
            least = descent_.tasks.cost;
            descent_.skeleton.keep(best_);
        }
        comeBackTo(best_);
    }
    comeBackTo(first_);
    if (descent_.run(left(), false)) return true;
    if (least >= muchBetter * descent_.tasks.cost) return false;
    comeBackTo(best_);
    return descent_.run(left(), false);
}

// From the previous pose. Where targets have leapt, the tasks fall far and yet are not met: then the middle of the
// limits may be the better place to begin.
bool Search::goOn(int most) {
    double const before = descent_.tasks.cost;
    if (descent_.run(most, true)) return true;
    if (double const reached = descent_.tasks.cost; reached < leapt * before) {
        descent_.skeleton.keep(best_);
        comeBackTo(first_);
        relax();
        if (descent_.run(most - descent_.iterations, true)) return true;
        if (descent_.tasks.cost > muchBetter * reached) comeBackTo(best_);
    }
    return descent_.run(most - descent_.iterations, false);
}

void Search::run(IKSolver& solver) {
    setUpJoints(solver);
    setUpHandles(solver);
    setUpBlocks(solver);
    setUpPoles(solver);
    setUpPreference(solver);
    bool const goesOn = solver.previous.size() >= solver.geometry.size();
    if (goesOn) descent_.skeleton.setPose(solver.previous);
    if (goesOn && descent_.preference <= 0) descent_.skeleton.keep(descent_.preferred);
    descent_.tie = tieShare;
    descent_.accuracy = {solver.positionAccuracy, solver.orientationAccuracy};
    descent_.tasks.setUp(descent_.skeleton, size_);
    descent_.setUp();
    descent_.enterLimits();
    if (solver.maxIterations > 0 && !goesOn && !descent_.isReached()) relax();
    descent_.skeleton.keep(first_);
    solver.attempts = 1;
    int const most = solver.maxIterations;
    solver.isReached = (goesOn ? goOn(most) : descent_.run(most, true)) || giveWay(most, !goesOn);
    if (!solver.isReached) solver.isReached = goesOn ? isStuck() && bend(solver) : searchElsewhere(solver);
    solver.iterations = descent_.iterations;
    solver.positionError = descent_.tasks.positionError;
    solver.orientationError = descent_.tasks.orientationError;
    for (std::size_t i = 0; i < solver.result.size(); ++i)
        solver.result[i] = descent_.skeleton.local(int(i), solver.geometry[i]);
}

}  // namespace sg::ik
