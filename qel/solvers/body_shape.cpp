// Body parts by the shape of a skeleton.
#include "qel/solvers/body_parts.h"
#include <array>

namespace sg {

using namespace retargeting;

namespace {

// The way out of a joint along which the bones are longest together.
struct Way {
    std::vector<int> joints;
    double length = 0;  // from the joint it leaves
};

class Shape {
public:
    explicit Shape(Skeleton const& s) :
        skeleton(s), at(s.restPositions()), children(s.children()), reach_(s.size(), 0), next_(s.size(), -1),
        below_(s.size(), 0) {
        for (int i = int(s.size()) - 1; i >= 0; --i) {
            int const parent = s.parents[std::size_t(i)];
            if (parent < 0) continue;
            below_[std::size_t(parent)] += below_[std::size_t(i)] + 1;
            double const way = bone(i) + reach_[std::size_t(i)];
            int& next = next_[std::size_t(parent)];
            bool const isBusier = next >= 0 && below_[std::size_t(i)] > below_[std::size_t(next)];
            double& reach = reach_[std::size_t(parent)];
            if (next < 0 || way > reach || (way == reach && isBusier)) next = i, reach = way;
        }
    }
    double bone(int joint) const {  // to its parent
        int const parent = skeleton.parents[std::size_t(joint)];
        return parent < 0 ? 0 : length(at[std::size_t(joint)] - at[std::size_t(parent)]);
    }
    Way wayInto(int child) const {
        Way way{{}, bone(child) + reach_[std::size_t(child)]};
        for (int j = child; j >= 0; j = next_[std::size_t(j)]) way.joints.push_back(j);
        return way;
    }
    Vec3 const& place(int joint) const { return at[std::size_t(joint)]; }

    Skeleton const& skeleton;
    std::vector<Vec3> at;
    std::vector<std::vector<int>> children;

private:
    std::vector<double> reach_;
    std::vector<int> next_, below_;
};

struct Pair {
    int from = -1;
    Way way[2];
    double length() const { return (way[0].length + way[1].length) / 2; }
};

constexpr double mostDifference = 0.2;  // of the lengths of two limbs that are alike, bone by bone
constexpr double leastShare = 0.35;     // of the arms' length in the legs', or the other way

bool areAlike(Shape const& shape, Way const& a, Way const& b) {
    if (a.joints.size() != b.joints.size() || a.joints.size() < 3) return false;
    double difference = 0;
    for (std::size_t i = 0; i < a.joints.size(); ++i)
        difference += std::abs(shape.bone(a.joints[i]) - shape.bone(b.joints[i]));
    return difference <= mostDifference * std::max(a.length, b.length) && a.length > 1e-9;
}

std::vector<Pair> findPairs(Shape const& shape) {
    std::vector<Pair> pairs;
    for (int joint = 0; joint < int(shape.skeleton.size()); ++joint) {
        if (shape.children[std::size_t(joint)].size() < 2) continue;
        std::vector<Way> ways;
        for (int child : shape.children[std::size_t(joint)])
            if (ways.size() < 64) ways.push_back(shape.wayInto(child));
        for (std::size_t i = 0; i < ways.size(); ++i)
            for (std::size_t j = i + 1; j < ways.size(); ++j)
                if (areAlike(shape, ways[i], ways[j])) pairs.push_back({joint, {ways[i], ways[j]}});
    }
    std::stable_sort(pairs.begin(), pairs.end(), [](Pair const& a, Pair const& b) { return a.length() > b.length(); });
    return pairs;
}

bool isBelowWay(Shape const& shape, Pair const& limbs, int joint) {
    return isAncestor(shape.skeleton, limbs.way[0].joints[0], joint) ||
           isAncestor(shape.skeleton, limbs.way[1].joints[0], joint);
}

// Two pairs of limbs, neither a part of the other.
bool areApart(Shape const& shape, Pair const& a, Pair const& b) {
    if (isBelowWay(shape, a, b.from) || isBelowWay(shape, b, a.from)) return false;
    for (Way const& x : a.way)
        for (Way const& y : b.way)
            if (x.joints[0] == y.joints[0]) return false;
    return true;
}

// How far the ends lie from where the pair begins, together: legs far, spread arms near.
double drop(Shape const& shape, Pair const& p) {
    Vec3 const ends = (shape.place(p.way[0].joints.back()) + shape.place(p.way[1].joints.back())) * 0.5;
    return length(ends - shape.place(p.from)) / p.length();
}

// Whether a, and not b, are the legs: arms hang on what stands on the legs.
bool areLegs(Shape const& shape, Pair const& a, Pair const& b) {
    if (a.from != b.from && isAncestor(shape.skeleton, a.from, b.from)) return true;
    if (a.from != b.from && isAncestor(shape.skeleton, b.from, a.from)) return false;
    return drop(shape, a) >= drop(shape, b);
}

// Shoulder, elbow and wrist along the way: two straight bones about as long as each other, and not much after them.
// Joints that are skipped, between the three, count against a choice, and more if it so reaches the very end.
double limbScore(Shape const& shape, std::vector<double> const& along, std::vector<int> const& way,
                 std::array<std::size_t, 3> const& choice) {
    auto const [a, b, c] = choice;
    double const upper = along[b] - along[a], lower = along[c] - along[b];
    double const shorter = std::min(upper, lower), rest = along.back() - along[c];
    double const chords =
        length(shape.place(way[b]) - shape.place(way[a])) + length(shape.place(way[c]) - shape.place(way[b]));
    double const skipped = double(c - a - 2), reach = c + 1 == way.size() && skipped > 0 ? 1 : 0;
    return shorter - 0.5 * std::abs(upper - lower) - (upper + lower - chords) - std::max(0.0, rest - 0.9 * shorter) -
           0.15 * shorter * (skipped + reach);
}

// Of a way of three joints and more. Where lengths are beyond all measure no choice is better than the first.
BodyAnchors::Limb limbOf(Shape const& shape, Way const& whole) {
    std::vector<int> const way(whole.joints.begin(),
                               whole.joints.begin() + long(std::min<std::size_t>(whole.joints.size(), 24)));
    std::vector<double> along{0};
    for (std::size_t i = 1; i < way.size(); ++i) along.push_back(along.back() + shape.bone(way[i]));
    BodyAnchors::Limb best{way[0], way[1], way[2]};
    double bestScore = -1e300;
    for (std::size_t a = 0; a + 2 < way.size(); ++a)
        for (std::size_t b = a + 1; b + 1 < way.size(); ++b)
            for (std::size_t c = b + 1; c < way.size(); ++c) {
                double const score = limbScore(shape, along, way, {a, b, c});
                if (score > bestScore) bestScore = score, best = {way[a], way[b], way[c]};
            }
    return best;
}

// ---- left and right ----

// The axis of the world that `up` points along most.
Vec3 nearestAxis(Vec3 const& up) {
    Vec3 out;
    int axis = 0;
    for (int i = 1; i < 3; ++i)
        if (std::abs(up[i]) > std::abs(up[axis])) axis = i;
    out[axis] = up[axis] < 0 ? -1 : 1;
    return out;
}

// Where the feet point; where they do not tell, the usual: +Z, or -Y where Z is up.
Vec3 forwardOf(Shape const& shape, Pair const& legs, BodyAnchors::Limb const (&limbs)[2], Vec3 const& up) {
    Vec3 forward;
    for (int i = 0; i < 2; ++i) forward += shape.place(legs.way[i].joints.back()) - shape.place(limbs[i].end);
    forward = forward - up * dot(forward, up);
    if (length(forward) > 0.02 * legs.length()) return direction(forward);
    return up.z != 0 ? Vec3{0, -up.z, 0} : Vec3{0, 0, 1};
}

// The first of the two limbs is on the left.
bool isFirstLeft(Shape const& shape, BodyAnchors::Limb const (&limbs)[2], Vec3 const& left) {
    return dot(shape.place(limbs[0].start) - shape.place(limbs[1].start), left) >= 0;
}

// ---- the head ----

// Along the joints that have one child: where they branch is the head, or at the end; a last bone much longer than the
// one before leads from the head to its top.
int headAlong(Shape const& shape, int neck) {
    std::vector<int> way{neck};
    while (shape.children[std::size_t(way.back())].size() == 1)
        way.push_back(shape.children[std::size_t(way.back())][0]);
    if (way.size() > 2 && shape.children[std::size_t(way.back())].empty() &&
        shape.bone(way.back()) > 1.4 * shape.bone(way[way.size() - 2]))
        way.pop_back();
    return way.back();
}

int headOf(Shape const& shape, Pair const& arms, Vec3 const& up) {
    int best = -1;
    double bestHeight = 0;
    for (int child : shape.children[std::size_t(arms.from)]) {
        if (child == arms.way[0].joints[0] || child == arms.way[1].joints[0]) continue;
        Way const way = shape.wayInto(child);
        double const height = dot(shape.place(way.joints.back()) - shape.place(arms.from), up);
        if (height > bestHeight) bestHeight = height, best = child;
    }
    return best < 0 ? -1 : headAlong(shape, best);
}

BodyAnchors anchorsOf(Shape const& shape, Pair const& legs, Pair const& arms) {
    BodyAnchors out;
    out.hips = commonAncestor(shape.skeleton, legs.from, arms.from);
    for (int i = 0; i < 2; ++i) {
        out.legs[i] = limbOf(shape, legs.way[i]);
        out.arms[i] = limbOf(shape, arms.way[i]);
    }
    Vec3 const feet = (shape.place(out.legs[0].end) + shape.place(out.legs[1].end)) * 0.5;
    Vec3 const above =
        legs.from == arms.from ? shape.place(legs.from) - feet : shape.place(arms.from) - shape.place(legs.from);
    Vec3 const up = nearestAxis(above), left = cross(up, forwardOf(shape, legs, out.legs, up));
    if (!isFirstLeft(shape, out.legs, left)) std::swap(out.legs[0], out.legs[1]);
    if (!isFirstLeft(shape, out.arms, left)) std::swap(out.arms[0], out.arms[1]);
    out.head = headOf(shape, arms, up);
    return out;
}

}  // namespace

BodyAnchors anchorsByShape(Skeleton const& skeleton) {
    Shape const shape(skeleton);
    std::vector<Pair> const pairs = findPairs(shape);
    for (std::size_t i = 0; i < std::min<std::size_t>(pairs.size(), 8); ++i)
        for (std::size_t j = i + 1; j < pairs.size() && pairs[j].length() >= leastShare * pairs[i].length(); ++j)
            if (areApart(shape, pairs[i], pairs[j])) {
                bool const firstLegs = areLegs(shape, pairs[i], pairs[j]);
                return anchorsOf(shape, pairs[firstLegs ? i : j], pairs[firstLegs ? j : i]);
            }
    return {};
}

}  // namespace sg
