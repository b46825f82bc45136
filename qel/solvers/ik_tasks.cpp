#include "qel/solvers/ik_tasks.h"
#include <algorithm>

namespace sg::ik {
namespace {

// How a point at `u`, in the turned and unscaled space of a joint, moves along `gradient` with turns about its axes.
Vec3 turned(Vec3 const& u, Mat3 const& frame, Vec3 const& gradient) {
    return cross(u, {dot(frame.row[0], gradient), dot(frame.row[1], gradient), dot(frame.row[2], gradient)});
}

void put(double* at, Vec3 const& v, Vec3 const& scale) {
    at[0] = v.x * scale.x, at[1] = v.y * scale.y, at[2] = v.z * scale.z;
}

int rowsOf(Effector const& e) { return (e.positionWeight > 0 ? 3 : 0) + (e.orientationWeight > 0 ? 3 : 0); }

constexpr Vec3 unit[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// A point that is carried up from joint to joint.
struct Carried {
    Vec3 at;  // in the space of the joint that was reached
    Vec3 turnedAt(Joint const& j) const { return at * j.shape; }
    void climb(Joint const& j) { at = at * j.shape * j.turn + j.place; }
};

}  // namespace

// ---- what depends on what ----

void Tasks::setUp(Skeleton const& skeleton, double size) {
    size_ = size;
    softness_ = 1;
    blockOf_.assign(skeleton.joints.size(), -1);
    for (std::size_t b = 0; b < blocks.size(); ++b)
        if (!blocks[b].isTranslation) blockOf_[std::size_t(blocks[b].joint)] = int(b);
    tasks_.clear();
    path_.clear();
    residual.clear();
    for (Effector const& e : effectors) addTask(skeleton, e.joint, rowsOf(e));
    for (Pole const& p : poles) addTask(skeleton, p.effector, 1);
    for (Pole& p : poles) weighPole(skeleton, p);
    collectEntries();
}

void Tasks::addTask(Skeleton const& skeleton, int joint, int rows) {
    Task task{joint, rows, int(residual.size()), int(path_.size()), 0};
    int top = joint;
    for (int j = joint; j >= 0; j = skeleton.joints[std::size_t(j)].parent) {
        top = j;
        if (int const b = blockOf_[std::size_t(j)]; b >= 0) path_.push_back({b, 0});
    }
    for (std::size_t b = 0; b < blocks.size(); ++b)
        if (blocks[b].isTranslation && blocks[b].joint == top) path_.push_back({int(b), 0});
    task.pathEnd = int(path_.size());
    residual.resize(residual.size() + std::size_t(rows));
    tasks_.push_back(task);
}

void Tasks::collectEntries() {
    entries.clear();
    firstEntry.assign(blocks.size() + 1, 0);
    std::size_t at = 0;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        for (std::size_t t = 0; t < tasks_.size(); ++t)
            for (int p = tasks_[t].path; p < tasks_[t].pathEnd; ++p) {
                if (path_[std::size_t(p)].block != int(b)) continue;
                path_[std::size_t(p)].at = at;
                entries.push_back({int(t), int(b), tasks_[t].rows, tasks_[t].firstRow, at});
                at += 3 * std::size_t(tasks_[t].rows);
            }
        firstEntry[b + 1] = entries.size();
    }
    jacobian.assign(at, 0);
}

void Tasks::setSoftness(double weight) { softness_ = weight; }

bool Tasks::isAnySoft() const {
    return !poles.empty() ||
           std::any_of(effectors.begin(), effectors.end(), [](Effector const& e) { return e.isSoft; });
}

// ---- residuals ----

void Tasks::evaluate(Skeleton const& skeleton) {
    positionError = orientationError = softPositionError = softOrientationError = poleError = 0;
    for (std::size_t i = 0; i < effectors.size(); ++i)
        evaluateEffector(skeleton, effectors[i], residual.data() + tasks_[i].firstRow);
    for (std::size_t i = 0; i < poles.size(); ++i) {
        double const angle = evaluatePole(skeleton, poles[i]);
        poleError = std::max(poleError, std::abs(angle));
        residual[std::size_t(tasks_[effectors.size() + i].firstRow)] = softened(poles[i].weight, true) * angle;
    }
    cost = 0;
    for (double r : residual) cost += r * r / 2;
}

void Tasks::evaluateEffector(Skeleton const& skeleton, Effector const& e, double* rows) {
    Joint const& j = skeleton.joints[std::size_t(e.joint)];
    if (e.positionWeight > 0) {
        Vec3 const away = j.origin - e.position;
        double const w = softened(e.positionWeight, e.isSoft) / size_;
        for (int k = 0; k < 3; ++k) *rows++ = w * away[k];
        double& largest = e.isSoft ? softPositionError : positionError;
        largest = std::max(largest, length(away));
    }
    if (e.orientationWeight > 0) {
        Vec3 const left = logarithm(transposed(j.orientation()) * e.axes);
        double const w = softened(e.orientationWeight, e.isSoft);
        for (int k = 0; k < 3; ++k) *rows++ = -w * left[k];
        double& largest = e.isSoft ? softOrientationError : orientationError;
        largest = std::max(largest, length(left));
    }
}

// ---- the Jacobian ----

void Tasks::linearise(Skeleton const& skeleton) {
    for (std::size_t i = 0; i < effectors.size(); ++i) lineariseEffector(skeleton, effectors[i], tasks_[i]);
    for (std::size_t i = 0; i < poles.size(); ++i) linearisePole(skeleton, poles[i], tasks_[effectors.size() + i]);
}

void Tasks::lineariseEffector(Skeleton const& skeleton, Effector const& e, Task const& task) {
    double const p = e.positionWeight > 0 ? softened(e.positionWeight, e.isSoft) / size_ : 0;
    double const o = softened(e.orientationWeight, e.isSoft);
    int step = task.path;
    Carried point{};
    for (int i = e.joint; i >= 0; i = skeleton.joints[std::size_t(i)].parent) {
        Joint const& j = skeleton.joints[std::size_t(i)];
        if (int const b = blockOf_[std::size_t(i)]; b >= 0) {
            double* at = jacobian.data() + path_[std::size_t(step++)].at;
            Vec3 const scale = blocks[std::size_t(b)].scale, u = point.turnedAt(j);
            for (int k = 0; p > 0 && k < 3; ++k, at += 3) put(at, turned(u, j.frame, unit[k]) * p, scale);
            for (int k = 0; o > 0 && k < 3; ++k, at += 3)
                put(at, Vec3{j.axis(0)[k], j.axis(1)[k], j.axis(2)[k]} * o, scale);
        }
        point.climb(j);
    }
    if (step == task.pathEnd) return;
    Step const& s = path_[std::size_t(step)];  // the translation, which turns nothing
    for (int k = 0; p > 0 && k < 3; ++k)
        put(jacobian.data() + s.at + 3 * k, unit[k] * p, blocks[std::size_t(s.block)].scale);
}

// ---- poles ----

namespace {

// The angle from the plane of the reference to that of the control about the limb's axis, and its derivatives by the
// limb's ends and the reference. It is the torsion angle of the four points: Blondel and Karplus, "New formulation for
// derivatives of torsion angles and improper torsion angles in molecular mechanics", Journal of Computational Chemistry
// 17 (1996).
struct Torsion {
    double angle = 0;
    double sharpness = 0;  // the product of the squared sines of reference and control against the axis; 0: no angle
    Vec3 byReference, byStart, byEnd;

    Torsion(Pole const& p, Joint const& from, Joint const& to) {
        Vec3 const f = p.reference * from.frame, g = from.origin - to.origin, h = p.control - to.origin;
        Vec3 const a = cross(f, g), b = cross(h, g);
        double const aa = dot(a, a), bb = dot(b, b), gg = length(g);
        double const span = dot(f, f) * dot(g, g), reach = dot(h, h) * dot(g, g);
        if (!(aa > 1e-8 * span && bb > 1e-8 * reach)) return;
        sharpness = aa / span * (bb / reach);
        angle = std::atan2(dot(cross(b, a), g) / gg, dot(a, b));
        Vec3 const fromA = a * (dot(f, g) / (aa * gg)), fromB = b * (dot(h, g) / (bb * gg));
        byReference = a * (-gg / aa);
        byStart = a * (gg / aa) + fromA - fromB;
        byEnd = fromB - fromA - b * (gg / bb);
    }
};

Joint const& jointOf(Skeleton const& skeleton, int joint) { return skeleton.joints[std::size_t(joint)]; }

}  // namespace

void Tasks::weighPole(Skeleton const& skeleton, Pole& p) {
    double const sharpness = Torsion(p, jointOf(skeleton, p.joint), jointOf(skeleton, p.effector)).sharpness;
    p.certainty = sharpness / (sharpness + 1e-3);
}

double Tasks::evaluatePole(Skeleton const& skeleton, Pole const& p) {
    return Torsion(p, jointOf(skeleton, p.joint), jointOf(skeleton, p.effector)).angle * p.certainty;
}

void Tasks::linearisePole(Skeleton const& skeleton, Pole const& p, Task const& task) {
    Torsion const t(p, jointOf(skeleton, p.joint), jointOf(skeleton, p.effector));
    double const w = softened(p.weight, true) * p.certainty;
    Carried end{}, start{}, reference{};
    bool isAbove = false;
    int step = task.path;
    for (int i = p.effector; i >= 0; i = skeleton.joints[std::size_t(i)].parent) {
        Joint const& j = skeleton.joints[std::size_t(i)];
        bool const isStart = i == p.joint;
        if (int const b = blockOf_[std::size_t(i)]; b >= 0) {
            Vec3 row = turned(end.turnedAt(j), j.frame, t.byEnd);
            if (isStart) row += turned(p.reference, j.frame, t.byReference);
            if (isAbove)
                row += turned(start.turnedAt(j), j.frame, t.byStart) +
                       turned(reference.turnedAt(j), j.frame, t.byReference);
            put(jacobian.data() + path_[std::size_t(step++)].at, row * w, blocks[std::size_t(b)].scale);
        }
        end.climb(j);
        start.climb(j);
        if (isStart) reference.at = p.reference * j.turn + j.place, start.at = j.place;
        if (isAbove) reference.climb(j);
        isAbove |= isStart;
    }
    if (step == task.pathEnd) return;
    Step const& s = path_[std::size_t(step)];
    put(jacobian.data() + s.at, (t.byEnd + t.byStart + t.byReference) * w, blocks[std::size_t(s.block)].scale);
}

}  // namespace sg::ik
