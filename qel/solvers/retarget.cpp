#include "qel/solvers/retarget.h"
#include "qel/utils/rotation.h"

namespace sg {

using namespace retargeting;
using Qelp::Matrix34;
using Qelutils::rotation::Rotation;

namespace {

// Whether the axes have unit length and stand square, within single precision: the usual case, without a root.
bool isRotation(Matrix34 const& m) {
    auto const& r = m.m;
    auto const product = [&](int i, int j) { return r[i][0] * r[j][0] + r[i][1] * r[j][1] + r[i][2] * r[j][2]; };
    float const worst = std::max({std::abs(product(0, 0) - 1), std::abs(product(1, 1) - 1), std::abs(product(2, 2) - 1),
                                  std::abs(product(0, 1)), std::abs(product(0, 2)), std::abs(product(1, 2))});
    float const handed = r[2][0] * (r[0][1] * r[1][2] - r[0][2] * r[1][1]) +
                         r[2][1] * (r[0][2] * r[1][0] - r[0][0] * r[1][2]) +
                         r[2][2] * (r[0][0] * r[1][1] - r[0][1] * r[1][0]);
    return worst < 4e-6F && handed > 0;
}

Rotation rows(Matrix34 const& m) {
    Rotation r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r.m[i][j] = m.m[i][j];
    return r;
}

Rotation transposed(Rotation const& r) {
    Rotation out;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) out.m[i][j] = r.m[j][i];
    return out;
}

// What stands before the rotation in a matrix: its scale and shear.
Rotation stretchOf(Matrix34 const& m, Quaternion const& rotation) {
    return multiply(rows(m), transposed(fromQuaternion(rotation)));
}

// Of a lower triangle, as stretches are; false if it is singular.
bool invertTriangle(Rotation const& t, Rotation& out) {
    auto const& m = t.m;
    if (!(std::abs(m[0][0]) > 1e-9 && std::abs(m[1][1]) > 1e-9 && std::abs(m[2][2]) > 1e-9)) return false;
    double const a = 1 / m[0][0], b = 1 / m[1][1], c = 1 / m[2][2];
    out = {{{a, 0, 0},
            {-m[1][0] * a * b, b, 0},
            {(m[1][0] * m[2][1] - m[1][1] * m[2][0]) * a * b * c, -m[2][1] * b * c, c}}};
    return true;
}

bool areSame(Quaternion const& a, Quaternion const& b) { return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w; }

void setTranslation(Matrix34& m, Vec3 const& v) {
    m.m[3][0] = float(v.x), m.m[3][1] = float(v.y), m.m[3][2] = float(v.z), m.m[3][3] = 0;
}

}  // namespace

bool Retarget::Validate() const {
    return rig && source.size() == rig->sources.size() && target.size() == rig->targets.size();
}

bool Retarget::Run() {
    if (!Validate()) return false;
    readSource();
    readCarriers();
    std::size_t const count = rig->targets.size();
    for (auto* v : {&local_, &world_, &made_, &lack_}) v->resize(count);
    isPlain_.resize(count);
    limited_.assign(count, 0);
    limitHits = 0;
    for (std::size_t i = 0; i < count; ++i) rotate(i);
    for (std::size_t i = 0; i < count; ++i) target[i] = matrixOf(i);
    return true;
}

// ---- the source ----

void Retarget::readSource() {
    std::size_t const count = source.size();
    for (auto* v : {&sourceLocal_, &sourceWorld_, &asked_}) v->resize(count);
    usable_.resize(count);
    isStretched_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        RetargetRig::SourceJoint const& s = rig->sources[i];
        usable_[i] = isUsable(source[i]) ? source[i] : s.origin;
        bool const rigid = isRotation(usable_[i]);
        isStretched_[i] = !rigid || s.isStretched;
        sourceLocal_[i] = toQuaternion(rigid ? rows(usable_[i]) : Qelutils::rotation::orthonormal(usable_[i].m));
        sourceWorld_[i] =
            multiply(sourceLocal_[i], s.parent < 0 ? rig->alignment : sourceWorld_[std::size_t(s.parent)]);
        asked_[i] = multiply(s.inverseRest, sourceWorld_[i]);
    }
}

void Retarget::readCarriers() {
    carriers_.resize(source.size());
    for (std::size_t i = 0; i < source.size(); ++i) {
        int const parent = rig->sources[i].parent;
        if (!rig->sources[i].isCarrier) continue;
        carriers_[i] = parent < 0 ? usable_[i] : Qelutils::multiply(usable_[i], carriers_[std::size_t(parent)]);
    }
}

// ---- rotations ----

Quaternion Retarget::turnOf(RetargetRig::TargetJoint const& t) const {
    Quaternion q = asked_[std::size_t(t.source)];
    if (t.blendSource >= 0) q = slerp(q, asked_[std::size_t(t.blendSource)], t.blend);
    if (t.turn) q = multiply(multiply(conjugate(*t.turn), q), *t.turn);
    return q;
}

// A joint whose turn is the one asked for is plain; the others keep what is missing for those that refer to them.
void Retarget::rotate(std::size_t i) {
    RetargetRig::TargetJoint const& t = rig->targets[i];
    Quaternion const above = t.parent < 0 ? Quaternion() : world_[std::size_t(t.parent)];
    Quaternion const asked = t.source < 0 ? Quaternion() : turnOf(t);
    isPlain_[i] = t.isDriven;
    if (t.isDriven)
        follow(i, asked, above);
    else
        setLocal(i, t.local, above);
    if (t.isDriven && t.hasOffset) setLocal(i, multiply(t.offset, local_[i]), above);
    if (t.isDriven && t.limit && !disableLimits) limit(i, above);
    if (!isPlain_[i]) lack_[i] = t.source < 0 ? Quaternion() : multiply(conjugate(asked), made_[i]);
}

void Retarget::follow(std::size_t i, Quaternion const& asked, Quaternion const& above) {
    RetargetRig::TargetJoint const& t = rig->targets[i];
    Quaternion goal = asked;
    if (t.referent >= 0 && !isPlain_[std::size_t(t.referent)]) {
        goal = multiply(asked, lack_[std::size_t(t.referent)]);
        isPlain_[i] = false;
    }
    if (t.rotationWeight < 1) {
        Quaternion const kept = multiply(t.inverseRest, multiply(t.local, above));
        goal = slerp(kept, goal, t.rotationWeight);
        isPlain_[i] = false;
    }
    made_[i] = goal;
    world_[i] = multiply(t.rest, goal);
    local_[i] = multiply(world_[i], conjugate(above));
}

// Not as the source has it.
void Retarget::setLocal(std::size_t i, Quaternion const& local, Quaternion const& above) {
    isPlain_[i] = false;
    local_[i] = local;
    world_[i] = multiply(local, above);
    made_[i] = multiply(rig->targets[i].inverseRest, world_[i]);
}

void Retarget::limit(std::size_t i, Quaternion const& above) {
    Quaternion const limited = clampJointRotation(*rig->targets[i].limit, local_[i]);
    if (areSame(limited, local_[i])) return;
    limited_[i] = 1;
    ++limitHits;
    setLocal(i, limited, above);
}

// ---- matrices ----

Matrix34 Retarget::matrixOf(std::size_t i) const {
    RetargetRig::TargetJoint const& t = rig->targets[i];
    if (!t.isDriven) return t.origin;
    Matrix34 m;
    Qelutils::rotation::store(fromQuaternion(local_[i]), m.m);
    if (t.isStretched || isStretched_[std::size_t(t.source)]) stretch(t, m);
    translate(i, m);
    return isUsable(m) ? m : t.origin;
}

void Retarget::translate(std::size_t i, Matrix34& m) const {
    RetargetRig::TargetJoint const& t = rig->targets[i];
    auto const s = std::size_t(t.source);
    if (t.travels) {
        Vec3 const way = turned(translationOf(carriers_[s]), rig->alignment) - t.from;
        Matrix34 at;
        setTranslation(at, t.to + way * t.translationFactor);
        setTranslation(m, translationOf(t.parent < 0 ? at : Qelutils::multiply(at, t.inverseParentRest)));
        return;
    }
    // A mix of two joints has no translation of its own to follow.
    Vec3 const added = t.blendSource >= 0 ? Vec3() : translationOf(usable_[s]) - translationOf(rig->sources[s].origin);
    Vec3 const own = translationOf(t.origin);
    setTranslation(m, added == Vec3() ? own : own + turned(added, t.carry) * t.translationFactor);
}

// The source's stretch since its origin, told in the target joint's axes, before the target's own.
void Retarget::stretch(RetargetRig::TargetJoint const& t, Matrix34& m) const {
    auto const s = std::size_t(t.source);
    RetargetRig::SourceJoint const& from = rig->sources[s];
    Rotation const now = stretchOf(usable_[s], sourceLocal_[s]), turn = fromQuaternion(t.axes);
    Rotation inverse, added;
    if (t.blendSource < 0 && invertTriangle(stretchOf(from.origin, from.local), inverse))
        added = multiply(multiply(transposed(turn), multiply(now, inverse)), turn);
    Rotation const whole = multiply(multiply(added, stretchOf(t.origin, t.local)), rows(m));
    Qelutils::rotation::store(whole, m.m);
}

}  // namespace sg
