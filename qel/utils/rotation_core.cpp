#include "qel/utils/rotation_core.h"
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <utility>

namespace Qelutils::rotation {
namespace {

// The axes in the sequence of the order; the parity is that of the permutation.
struct Order {
    int i, j, k;
    double parity;
};

constexpr Order orders[] = {{0, 1, 2, 1}, {0, 2, 1, -1}, {1, 0, 2, -1}, {1, 2, 0, 1}, {2, 0, 1, 1}, {2, 1, 0, -1}};

Order const& orderOf(int order) { return orders[order >= 0 && order < 6 ? order : 0]; }

struct SinCos {
    double s = 0, c = 1;
};

// Most joints turn about fewer than three axes, and a frame has thousands of them.
SinCos sinCos(double angle) {
    if (angle == 0 || !std::isfinite(angle)) return {};
    return {std::sin(angle), std::cos(angle)};
}

// What comes in was single precision, whose squares neither overflow nor vanish here: no need of the slower hypot.
double lengthOf(double x, double y, double z = 0, double w = 0) { return std::sqrt(x * x + y * y + z * z + w * w); }

double dot(Triple const& a, Triple const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Triple cross(Triple const& a, Triple const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// False, and nothing done, if there is no direction.
bool normalize(Triple& v) {
    double const length = lengthOf(v.x, v.y, v.z);
    if (!(length > 0 && std::isfinite(length))) return false;
    v = {v.x / length, v.y / length, v.z / length};
    return true;
}

// A unit vector square to the unit vector v: from the unit axis that v is farthest from.
Triple perpendicular(Triple const& v) {
    Triple out = cross(v, std::abs(v.y) < 0.9 ? Triple{0, 1, 0} : Triple{0, 0, 1});
    normalize(out);
    return out;
}

Quaternion twist(double angle) {
    auto const [s, c] = sinCos(angle / 2);
    return {s, 0, 0, c};
}

// Four roundings of a stored sine or cosine: what lies closer to a pole is noise.
constexpr double pole = 4 * FLT_EPSILON;

// q = swing after twist. The twist is q's part about X, the swing what remains.
struct TwistAndSwing {
    double twist;
    double y, z, w;
};

TwistAndSwing decompose(Quaternion const& raw) {
    Quaternion const q = normalized(raw);
    double const n = lengthOf(q.x, q.w);
    if (n < pole / 2) return {0, q.y, q.z, 0};
    double const c = q.w / n, s = q.x / n;
    return {2 * std::atan2(q.x, q.w), q.y * c - q.z * s, q.z * c + q.y * s, n};
}

Triple row(float const* m) { return {m[0], m[1], m[2]}; }

// Unit vectors; within single precision.
bool areParallel(Triple const& a, Triple const& b) { return !(std::abs(dot(a, b)) < 1 - 1e-12); }

// From the first two rows, of which the first holds.
Rotation framed(Triple const& x, Triple y) {
    double const along = dot(x, y);
    y = {y.x - along * x.x, y.y - along * x.y, y.z - along * x.z};
    normalize(y);
    Triple const z = cross(x, y);
    return {{{x.x, x.y, x.z}, {y.x, y.y, y.z}, {z.x, z.y, z.z}}};
}

// The smallest turn from one unit vector to another.
Rotation turning(Triple const& from, Triple const& to) {
    double const cosine = dot(from, to);
    Triple const axis = cosine > -1 ? cross(from, to) : perpendicular(from);
    return fromQuaternion({axis.x, axis.y, axis.z, std::max(0.0, 1 + cosine)});
}

}  // namespace

Rotation orthonormal(float const (&m)[4][4]) {
    Triple x = row(m[0]), y = row(m[1]);
    if (!normalize(x)) x = {1, 0, 0};
    bool const directed = normalize(y);
    // Parallel: what remains of row 1 is noise.
    return framed(x, directed && !areParallel(x, y) ? y : perpendicular(x));
}

Rotation completed(float const (&m)[4][4]) {
    Triple x = row(m[0]), y = row(m[1]), z = row(m[2]);
    bool const hasX = normalize(x), hasY = normalize(y), hasZ = normalize(z);
    if (hasX && hasY && !areParallel(x, y)) return framed(x, y);
    if (hasX && hasZ && !areParallel(x, z)) return framed(x, cross(z, x));
    if (hasY && hasZ && !areParallel(y, z)) {
        Triple across = cross(y, z);
        normalize(across);
        return framed(across, y);
    }
    if (hasX) return turning({1, 0, 0}, x);
    if (hasY) return turning({0, 1, 0}, y);
    return hasZ ? turning({0, 0, 1}, z) : Rotation();
}

void store(Rotation const& r, float (&m)[4][4]) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) m[i][j] = static_cast<float>(r.m[i][j]);
}

Rotation multiply(Rotation const& first, Rotation const& second) {
    Rotation out;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out.m[i][j] =
                first.m[i][0] * second.m[0][j] + first.m[i][1] * second.m[1][j] + first.m[i][2] * second.m[2][j];
    return out;
}

Quaternion normalized(Quaternion const& q) {
    double const length = lengthOf(q.x, q.y, q.z, q.w);
    if (!(length > 0 && std::isfinite(length))) return {};
    double const f = (q.w < 0 ? -1 : 1) / length;
    return {q.x * f, q.y * f, q.z * f, q.w * f};
}

Rotation fromQuaternion(Quaternion const& raw) {
    auto const [x, y, z, w] = normalized(raw);
    return {{{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
             {2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
             {2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)}}};
}

// The largest of the four squared components is taken from the diagonal, the others from it.
Quaternion toQuaternion(Rotation const& rotation) {
    auto const& r = rotation.m;
    double const trace = r[0][0] + r[1][1] + r[2][2];
    int largest = 0;
    for (int i = 1; i < 3; ++i)
        if (r[i][i] > r[largest][largest]) largest = i;
    if (trace > r[largest][largest])
        return normalized({r[1][2] - r[2][1], r[2][0] - r[0][2], r[0][1] - r[1][0], 1 + trace});
    int const i = largest, j = (i + 1) % 3, k = (i + 2) % 3;
    double v[3];
    v[i] = 1 + r[i][i] - r[j][j] - r[k][k];
    v[j] = r[i][j] + r[j][i];
    v[k] = r[i][k] + r[k][i];
    return normalized({v[0], v[1], v[2], r[j][k] - r[k][j]});
}

Quaternion fromAxisAngle(Triple const& axis, double angle) {
    Triple unit = axis;
    if (!normalize(unit)) return {};
    auto const [s, c] = sinCos(angle / 2);
    return normalized({unit.x * s, unit.y * s, unit.z * s, c});
}

AxisAngle toAxisAngle(Quaternion const& raw) {
    Quaternion const q = normalized(raw);
    AxisAngle out{{q.x, q.y, q.z}, 2 * std::atan2(lengthOf(q.x, q.y, q.z), q.w)};
    if (!normalize(out.axis)) return {};
    return out;
}

// An odd order is an even one seen in a mirror: the same terms with the angles negated.
Rotation fromEuler(Triple const& angles, int order) {
    auto const [i, j, k, parity] = orderOf(order);
    double const named[3] = {angles.x, angles.y, angles.z};
    auto [si, ci] = sinCos(named[i]);
    auto [sj, cj] = sinCos(named[j]);
    auto [sk, ck] = sinCos(named[k]);
    si *= parity;
    sj *= parity;
    sk *= parity;
    Rotation out;
    out.m[i][i] = cj * ck;
    out.m[i][j] = cj * sk;
    out.m[i][k] = -sj;
    out.m[j][i] = si * sj * ck - ci * sk;
    out.m[j][j] = si * sj * sk + ci * ck;
    out.m[j][k] = si * cj;
    out.m[k][i] = ci * sj * ck + si * sk;
    out.m[k][j] = ci * sj * sk - si * ck;
    out.m[k][k] = ci * cj;
    return out;
}

Triple toEuler(Rotation const& rotation, int order) {
    auto const& r = rotation.m;
    auto const [i, j, k, parity] = orderOf(order);
    double const cosine = lengthOf(r[i][i], r[i][j]);
    double named[3];
    named[j] = parity * std::atan2(-r[i][k], cosine);
    if (cosine <= pole) {
        named[i] = parity * std::atan2(-r[k][j], r[j][j]);
        named[k] = 0;
    } else {
        double const first = std::atan2(r[j][k], r[k][k]), s = std::sin(first), c = std::cos(first);
        named[i] = parity * first;
        named[k] = parity * std::atan2(s * r[k][i] - c * r[j][i], c * r[j][j] - s * r[k][j]);
    }
    return {named[0] + 0.0, named[1] + 0.0, named[2] + 0.0};  // no angle is minus zero
}

Quaternion fromTwistSwing(Triple const& v) {
    return normalized(multiply(twist(v.x), fromAxisAngle({0, v.y, v.z}, lengthOf(v.y, v.z))));
}

Triple toTwistSwing(Quaternion const& q) {
    TwistAndSwing const parts = decompose(q);
    double const sine = lengthOf(parts.y, parts.z);
    // For small angles the exponential map is twice the vector part.
    double const f = sine < 1e-30 ? 2 : 2 * std::atan2(sine, parts.w) / sine;
    return {parts.twist, parts.y * f, parts.z * f};
}

Quaternion fromTwistSwingAngles(Triple const& v) {
    double const y = std::tan(v.y / 4), z = std::tan(v.z / 4), square = y * y + z * z;
    return normalized(multiply(twist(v.x), normalized({0, 2 * y, 2 * z, 1 - square})));
}

Triple toTwistSwingAngles(Quaternion const& q) {
    TwistAndSwing const parts = decompose(q);
    return {parts.twist, 4 * std::atan2(parts.y, 1 + parts.w), 4 * std::atan2(parts.z, 1 + parts.w)};
}

Quaternion twistOf(Quaternion const& q) { return twist(decompose(q).twist); }

}  // namespace Qelutils::rotation
