// The geometry of a path: keys in space, the curve through them, and the length along it. Free of the scene.
//
// Coordinates
// - key parameter: the rank of a key in the order of its number, so 0 at the first and n - 1 at the last key, running
//   evenly in the parameter of the curve in between. The numbers of the keys themselves only give the order; of equal
//   ones the lower slot comes first.
// - fraction: of the length, 0 at the start and 1 at the end.
//
// The curve between two keys follows the interpolation of the left one:
// - constant stays at the left key and jumps at the right one; neither takes any length;
// - linear runs straight, evenly in the parameter. Any other number counts as linear;
// - spline is the cubic Bezier curve from the left key over its out handle and the right key's in handle.
// A spline key whose handles both lie at the origin of coordinates, where new keys have theirs, has none, as all keys
// of other kinds. In their place come automatic tangents, the cardinal rule: a key's handles lie at position -+
// coefficient * (next - previous) / 2, at an end key of the path at position -+ coefficient * (the chord beside it).
// They are symmetric about the key, pass on straight evenly spaced keys unchanged at a coefficient of 1/3, and are
// there the curve of Catmull and Rom ("A class of local interpolating splines", Computer Aided Geometric Design, 1974).
//
// Beyond both ends, as the infinities say: constant stays at the end key; linear goes on straight and at the same speed
// along the curve; cyclic repeats; reverseCyclic repeats and turns back each time; offsetCyclic repeats, each turn set
// on from where the one before ended. The maps between parameter and fraction go on accordingly: constant stays at 0
// and 1; the others add a whole range for each turn, linear evenly.
//
// A path without length has its keys spread evenly over the fractions. Without keys every map gives 0. Numbers that are
// not finite count as 0. Finite keys give finite results.
//
// Lengths are those of arc_length.h; they are kept by segment, and only the segments that changed are measured again.
// The same keys give the same bits, by whatever edits they came about. Asking costs the logarithm of the number of
// keys and changes nothing, so a const path may be read by many threads.
#pragma once
#include "qel/sg/arc_length.h"
#include "qel/sg/curve_evaluation.h"
#include "qel/sg/path_ray.h"
#include <cstdint>
#include <span>
#include <vector>

namespace sg {

struct PathKey {
    int number = 0;  // gives the order
    int interpolation = int(CurveInterpolation::linear);
    Qelp::Vector3 inHandle, position, outHandle;  // all absolute, metres
    bool operator==(PathKey const&) const = default;
};

struct PathKeys {
    std::span<PathKey const> keys;              // by slot, in any order; read where they lie until the next update
    double tangentsCoefficient = 0.3333333432;  // the length of automatic handles; a third gives even speed
    CurveExtrapolation pre = CurveExtrapolation::constant;
    CurveExtrapolation post = CurveExtrapolation::constant;
};

class PathGeometry {
public:
    // Any change. Linear in the keys, but for the lengths of what changed.
    void update(PathKeys const& keys);
    struct Slots {
        int from, to;  // to before that one
    };
    // Of the keys only those in these slots changed. Costs what changed, and adding up behind it.
    void keysChanged(PathKeys const& keys, std::span<Slots const> slots);

    int keyCount() const { return int(order_.size()); }
    double length() const { return starts_.empty() ? 0 : starts_.back(); }  // metres
    std::vector<int> const& order() const { return order_; }                // slots by rank
    int findKey(int number) const;                                          // its slot, or -1

    // Where the handle on that side of the key of this number lies, its own or the automatic one, whether the curve
    // uses it or runs straight there. False, and no change, where there is no key, or none beside it on that side.
    bool inputControlPoint(int number, Qelp::Vector3& out) const;
    bool outputControlPoint(int number, Qelp::Vector3& out) const;

    // Neither falls. One undoes the other to 1e-10, but where nothing is travelled: there `parameterAt` gives the first
    // of the parameters that have the fraction, and the last key for 1.
    double fractionAt(double parameter) const;
    double parameterAt(double fraction) const;
    // The same for many: neighbours on the path are found by walking.
    void fractionsAt(std::span<float const> parameters, std::vector<double>& out) const;
    void parametersAt(std::span<float const> fractions, std::vector<float>& out) const;
    // One parameter, brought back between the first and the last key, as what repeats repeats.
    double parameterInside(double fraction) const;

    // False, and no change, without keys.
    bool positionAt(double fraction, Qelp::Vector3& out) const;
    bool positionAtParameter(double parameter, Qelp::Vector3& out) const;

    // The fraction of the place nearest to the ray, of the path between its first and its last key; both ends of a
    // constant key's leap have the same. False, and no change, without keys and where none of it is seen.
    bool nearest(PathRay const& ray, double& fraction) const;

    // How many segments have been measured so far: a figure for tests and benchmarks.
    std::uint64_t measured() const { return measured_; }

private:
    struct Segment {
        CurveInterpolation kind = CurveInterpolation::linear;
        double length = 0;
    };
    struct Folded {
        double at;     // in [0, 1]
        double turns;  // whole ranges away from it
        bool mirrored = false;
    };

    PathKey const& key(int rank) const { return keys_.keys[std::size_t(order_[std::size_t(rank)])]; }
    PathPoint const& position(int rank) const { return points_[std::size_t(rank)]; }
    PathPoint automaticTangent(int rank) const;
    PathPoint handle(int rank, bool isOut) const;
    int rankOf(int number) const;
    bool isInOrder() const;
    void sort();
    inline bool takePoint(int slot);
    bool takePoints(Slots slots);
    bool remeasureRun(Slots slots, int& first);
    bool remeasureEach(std::span<Slots const> slots, int& first);
    inline CurveInterpolation kindOf(int rank) const;
    PathBezier curveOf(int rank) const;
    void makeRoom();
    bool isSame(int rank, int measured) const;
    inline bool replace(int rank);
    bool replaceOther(int rank);
    bool replaceSpline(int rank, bool wasSpline);
    double straightLength(int rank) const;
    void addUp(int from);

    inline double fractionInside(double parameter) const;
    double parameterOf(double fraction) const;
    inline std::size_t findSegment(double distance, std::size_t near) const;
    inline double parameterIn(std::size_t rank, double distance) const;
    PathPoint pointAt(double parameter) const;
    PathPoint endDirection(bool atStart) const;
    Folded fold(double x) const;
    template<class Map> double extend(double x, Map const& inside) const;

    PathKeys keys_;
    std::vector<int> order_, ranks_, numbers_;  // slot by rank, rank by slot, the keys' numbers by rank
    bool isSlotRank_ = true;                    // the slots stand in the order of the keys
    std::vector<PathPoint> points_;             // the keys' positions by rank
    std::vector<Segment> segments_;             // by the rank of the left key, as the next two
    std::vector<PathBezier> curves_;            // of splines; the others follow from their keys
    std::vector<ArcLength> arcs_;
    std::vector<double> starts_;  // the length up to each key, by rank
    std::uint64_t measured_ = 0;
};

}  // namespace sg
