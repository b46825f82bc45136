#include "qel/sg/curve_evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using sg::CurveBounds;
using sg::CurveExtrapolation;
using sg::CurveKeys;
using sg::CurvePoint;
using sg::PreparedCurve;
using Extrapolation = CurveExtrapolation;

constexpr int constant = 0, linear = 1, spline = 2, external = 3;
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float huge = std::numeric_limits<float>::max();

struct Key {
    float x = 0, y = 0;
    int kind = linear;
    float inX = 0, inY = 0, outX = 0, outY = 0;
    Qelp::Quat q = {};
};

// The arrays by slot, as a node holds them.
struct Arrays {
    std::vector<float> x, y, inX, inY, outX, outY;
    std::vector<int> kinds;
    std::vector<Qelp::Quat> q;
    Extrapolation pre{}, post{};

    Arrays(std::vector<Key> const& keys, Extrapolation before = {}, Extrapolation after = {}) :
        pre(before), post(after) {
        for (Key const& key : keys) insert(unsigned(x.size()), key);
    }
    Key key(unsigned slot) const {
        return {x[slot], y[slot], kinds[slot], inX[slot], inY[slot], outX[slot], outY[slot], q[slot]};
    }
    void insert(unsigned slot, Key const& k) {
        x.insert(x.begin() + slot, k.x), y.insert(y.begin() + slot, k.y), kinds.insert(kinds.begin() + slot, k.kind);
        inX.insert(inX.begin() + slot, k.inX), inY.insert(inY.begin() + slot, k.inY);
        outX.insert(outX.begin() + slot, k.outX), outY.insert(outY.begin() + slot, k.outY);
        q.insert(q.begin() + slot, k.q);
    }
    void remove(unsigned slot) {
        for (auto* array : {&x, &y, &inX, &inY, &outX, &outY}) array->erase(array->begin() + slot);
        kinds.erase(kinds.begin() + slot), q.erase(q.begin() + slot);
    }
    CurveKeys keys() const {
        CurveKeys k;
        k.count = unsigned(x.size());
        k.inputs = x.data(), k.outputs = y.data(), k.interpolations = kinds.data();
        k.inTangentsX = inX.data(), k.inTangentsY = inY.data(), k.outTangentsX = outX.data();
        k.outTangentsY = outY.data(), k.rotations = q.data();
        k.pre = pre, k.post = post;
        return k;
    }
};

struct Curve : Arrays {
    PreparedCurve prepared;
    explicit Curve(std::vector<Key> const& keys, Extrapolation before = {}, Extrapolation after = {}) :
        Arrays(keys, before, after) {
        prepared.update(this->keys());
    }
    float operator()(float input, float outer = 0) const {
        unsigned hint = 0;
        return prepared.evaluate(input, hint, outer);
    }
    Qelp::Quat rotation(float input, Qelp::Quat const& outer = {}) const {
        unsigned hint = 0;
        return prepared.evaluateRotation(input, hint, outer);
    }
};

// ---- an independent reading of the rules: sort, drop what is shadowed, walk, bisect

std::vector<Key> sorted(Arrays const& arrays) {
    std::vector<Key> keys;
    for (unsigned slot = 0; slot < arrays.x.size(); ++slot)
        if (std::isfinite(arrays.x[slot])) keys.push_back(arrays.key(slot));
    std::stable_sort(keys.begin(), keys.end(), [](Key const& a, Key const& b) { return a.x < b.x; });
    keys.erase(std::unique(keys.begin(), keys.end(), [](Key const& a, Key const& b) { return a.x == b.x; }),
               keys.end());
    return keys;
}

double bezier(double p0, double p1, double p2, double p3, double u) {
    auto const mix = [u](double a, double b) { return a + (b - a) * u; };  // de Casteljau
    double const a = mix(p0, p1), b = mix(p1, p2), c = mix(p2, p3);
    return mix(mix(a, b), mix(b, c));
}

struct Bezier {
    double x[4], y[4];

    Bezier(Key const& l, Key const& r) : x{l.x, 0, 0, r.x}, y{l.y, 0, 0, r.y} {
        double const width = x[3] - x[0];
        double out[2] = {l.outX, l.outY}, in[2] = {-double(r.inX), r.inY};
        for (double* handle : {out, in}) {
            if (handle[0] == 0 && handle[1] == 0) handle[0] = width / 3;
            if (handle[0] > width) handle[1] *= width / handle[0], handle[0] = width;
            handle[0] = std::max(handle[0], 0.0);
        }
        x[1] = x[0] + out[0], y[1] = y[0] + out[1];
        x[2] = x[3] - in[0], y[2] = y[3] + in[1];
    }
    double xAt(double u) const { return bezier(x[0], x[1], x[2], x[3], u); }
    double at(double t) const {
        double low = 0, high = 1;
        for (int i = 0; i < 60; ++i) {
            double const middle = (low + high) / 2;
            (xAt(middle) <= t ? low : high) = middle;
        }
        return bezier(y[0], y[1], y[2], y[3], low);
    }
    double spread() const { return *std::max_element(y, y + 4) - *std::min_element(y, y + 4); }
};

double slope(Key const& l, Key const& r, bool atEnd) {
    double const chord = (double(r.y) - l.y) / (double(r.x) - l.x);
    if (l.kind == linear) return chord;
    if (l.kind != spline) return 0;
    Bezier const b(l, r);
    int const i = atEnd ? 2 : 0;
    return b.x[i + 1] > b.x[i] ? (b.y[i + 1] - b.y[i]) / (b.x[i + 1] - b.x[i]) : chord;
}

double referenceInside(std::vector<Key> const& keys, double t, double outer) {
    std::size_t i = 0;
    while (i + 1 < keys.size() && keys[i + 1].x <= t) ++i;
    if (i + 1 == keys.size()) return keys[i].y;
    Key const &l = keys[i], &r = keys[i + 1];
    if (l.kind == constant) return l.y;
    if (l.kind == external) return outer;
    if (l.kind == spline) return Bezier(l, r).at(t);
    double const s = (t - l.x) / (double(r.x) - l.x);
    return l.y * (1 - s) + r.y * s;
}

double reference(Arrays const& arrays, double t, double outer = 0) {
    auto const keys = sorted(arrays);
    if (keys.empty()) return 0;
    double const first = keys.front().x, last = keys.back().x, span = last - first;
    if (t >= first && t <= last) return referenceInside(keys, t, outer);
    Extrapolation const mode = t < first ? arrays.pre : arrays.post;
    Key const& end = t < first ? keys.front() : keys.back();
    if (mode == Extrapolation::constant || span == 0) return end.y;
    std::size_t const n = keys.size();
    if (mode == Extrapolation::linear)
        return end.y +
               (t - end.x) * (t < first ? slope(keys[0], keys[1], false) : slope(keys[n - 2], keys[n - 1], true));
    double cycles = 0;
    while (t < first) t += span, --cycles;
    while (t >= last) t -= span, ++cycles;
    bool const mirrored = mode == Extrapolation::reverseCyclic && int(cycles) % 2 != 0;
    double const offset = mode == Extrapolation::offsetCyclic ? cycles * (double(keys.back().y) - keys.front().y) : 0;
    return referenceInside(keys, mirrored ? first + last - t : t, outer) + offset;
}

// Random keys; inputs are multiples of a quarter, so that some coincide, unless `apart`.
std::vector<Key> randomKeys(std::mt19937& random, unsigned count, bool apart = false) {
    std::uniform_real_distribution<float> value(-3, 3), handle(-2, 2);
    std::uniform_int_distribution<int> kind(0, 3), place(-40, 40);
    std::vector<Key> keys;
    for (unsigned i = 0; i < count; ++i) {
        Key k{apart ? float(i) * 0.5f : float(place(random)) * 0.25f, value(random), kind(random)};
        if (random() % 4) k.outX = handle(random), k.outY = handle(random);
        if (random() % 4) k.inX = handle(random), k.inY = handle(random);
        keys.push_back(k);
    }
    return keys;
}

double angleBetween(Qelp::Quat const& a, Qelp::Quat const& b) {
    double const dot = double(a.x) * b.x + double(a.y) * b.y + double(a.z) * b.z + double(a.w) * b.w;
    double const sign = dot < 0 ? -1 : 1;
    double const chord =
        std::hypot(std::hypot(a.x - sign * b.x, a.y - sign * b.y), std::hypot(a.z - sign * b.z, a.w - sign * b.w));
    return 4 * std::asin(std::min(1.0, chord / 2));
}

Qelp::Quat aboutZ(double angle) { return {0, 0, float(std::sin(angle / 2)), float(std::cos(angle / 2))}; }

constexpr Extrapolation allModes[] = {Extrapolation::constant, Extrapolation::linear, Extrapolation::cyclic,
                                      Extrapolation::reverseCyclic, Extrapolation::offsetCyclic};

// ---- few keys

TEST(CurveEvaluation, NoKeysGiveZero) {
    Curve const curve({});
    EXPECT_EQ(curve(1), 0);
    EXPECT_EQ(curve(nan), 0);
    EXPECT_EQ(curve.rotation(1), Qelp::Quat{});
    EXPECT_EQ(curve.prepared.bounds(), CurveBounds{});
    EXPECT_EQ(curve.prepared.preGradient(), 0);
    PreparedCurve const untold;
    unsigned hint = 5;
    EXPECT_EQ(untold.evaluate(2, hint), 0);
}

TEST(CurveEvaluation, OneKeyGivesItsValueEverywhere) {
    for (Extrapolation mode : allModes)
        for (int kind : {constant, linear, spline, external}) {
            Curve const curve({{2, 7, kind}}, mode, mode);
            for (float t : {-1.f, 2.f, 9.f, nan, infinity, -infinity, huge}) EXPECT_EQ(curve(t), 7);
            EXPECT_EQ(curve.prepared.postGradient(), 0);
        }
}

TEST(CurveEvaluation, KeysAtOneInputGiveTheFirstSlotsValue) {
    for (Extrapolation mode : allModes) {
        Curve const curve({{2, 7}, {2, 8, spline}, {2, 9}}, mode, mode);
        for (float t : {-1.f, 2.f, 9.f, infinity}) EXPECT_EQ(curve(t), 7);
        EXPECT_EQ(curve.prepared.preGradient(), 0);
        EXPECT_EQ(curve.prepared.postGradient(), 0);
    }
}

TEST(CurveEvaluation, AmongKeysAtOneInputTheFirstSlotStandsForAllOnBothSides) {
    Curve const curve({{1, 10}, {2, 5}, {1, 99}, {0, 0}, {2, -5}, {1, 98}});
    EXPECT_EQ(curve(0.5f), 5);
    EXPECT_EQ(curve(1), 10);
    EXPECT_EQ(curve(1.5f), 7.5f);
    EXPECT_EQ(curve(2), 5);
    EXPECT_EQ(curve(3), 5);
}

TEST(CurveEvaluation, KeysWithoutAFiniteInputTakeNoPart) {
    Curve const curve({{nan, 1}, {0, 0}, {infinity, 2}, {2, 4}, {-infinity, 3}});
    EXPECT_EQ(curve(1), 2);
    EXPECT_EQ(curve(-9), 0);
    EXPECT_EQ(curve(9), 4);
    std::vector<unsigned> order;
    for (unsigned rank = 0; rank < curve.prepared.count(); ++rank) order.push_back(curve.prepared.slotOf(rank));
    EXPECT_EQ(order, (std::vector<unsigned>{1, 3, 0, 2, 4}));
    EXPECT_EQ(Curve({{nan, 1}})(1), 0);
}

// ---- interpolation

TEST(CurveEvaluation, EachInterpolationGivesTheKeyExactlyAtTheKey) {
    std::mt19937 random(11);
    for (int kind : {constant, linear, spline}) {
        auto keys = randomKeys(random, 50, true);
        for (Key& k : keys) k.kind = kind, k.y *= 1.1e6f;
        keys[20].y = 1e-20f, keys.back().y = 1e-20f;
        Curve const curve(keys, Extrapolation::cyclic, Extrapolation::cyclic);
        for (Key const& k : keys) EXPECT_EQ(curve(k.x), k.y) << kind << " at " << k.x;
    }
}

TEST(CurveEvaluation, ConstantHoldsTheLeftKey) {
    Curve const curve({{0, 1, constant}, {1, 2, constant}});
    EXPECT_EQ(curve(std::nextafter(1.f, 0.f)), 1);
    EXPECT_EQ(curve(1), 2);
}

TEST(CurveEvaluation, LinearBlends) {
    Curve const curve({{0, 1}, {2, 5}});
    EXPECT_EQ(curve(0.5f), 2);
    EXPECT_EQ(curve(1.5f), 4);
}

TEST(CurveEvaluation, AnUnknownInterpolationIsLinear) {
    for (int kind : {-1, 4, 1000}) EXPECT_EQ(Curve({{0, 1, kind}, {2, 5, kind}})(0.5f), 2);
}

TEST(CurveEvaluation, ExternalGivesTheCallersValueFromTheKeyToTheNext) {
    Curve const curve({{0, 1, external}, {1, 2}, {2, 3}});
    EXPECT_EQ(curve(0, 42), 42);
    EXPECT_EQ(curve(0.5f, 42), 42);
    EXPECT_EQ(curve(0.5f), 0);
    EXPECT_EQ(curve(1, 42), 2);
    EXPECT_EQ(curve(-1, 42), 1);
}

TEST(CurveEvaluation, ASplineWhoseHandlesAreAThirdLongIsItsCubicInTheInput) {
    Curve const curve({{0, 0, spline, 0, 0, 1, 2}, {3, 1, spline, -1, 4, 0, 0}});
    for (float t = 0; t < 3; t += 0.01f) EXPECT_NEAR(curve(t), bezier(0, 2, 5, 1, t / 3.0), 1e-6);
}

TEST(CurveEvaluation, KeysWithoutHandlesEase) {
    Curve const curve({{0, 0, spline}, {1, 1, spline}});
    for (float s = 0; s <= 1; s += 1.f / 64) EXPECT_NEAR(curve(s), s * s * (3 - 2 * s), 1e-7);
}

TEST(CurveEvaluation, AHandleThatReachesPastTheNextKeyIsShortened) {
    Curve const far({{0, 0, spline, 0, 0, 40, 20}, {4, 1, spline, -1, 0, 0, 0}});
    Curve const fitted({{0, 0, spline, 0, 0, 4, 2}, {4, 1, spline, -1, 0, 0, 0}});
    for (float t = 0; t <= 4; t += 0.125f) EXPECT_EQ(far(t), fitted(t));
}

TEST(CurveEvaluation, AHandleThatPointsBackwardsLosesItsInputOnly) {
    Curve const back({{0, 0, spline, 0, 0, -3, 2}, {4, 1, spline, 5, 1, 0, 0}});
    Curve const fitted({{0, 0, spline, 0, 0, 0, 2}, {4, 1, spline, 0, 1, 0, 0}});
    for (float t = 0; t <= 4; t += 0.125f) EXPECT_EQ(back(t), fitted(t));
}

TEST(CurveEvaluation, OverlappingHandlesStillGiveOneRisingFunction) {
    // Outputs with the shape of the inputs: the curve is the identity whatever the handles are.
    for (float reach : {0.1f, 1.f, 3.f, 4.f, 7.f}) {
        Curve const curve({{0, 0, spline, 0, 0, reach, reach}, {4, 4, spline, -reach, -reach, 0, 0}});
        for (float t = 0; t <= 4; t += 1.f / 256) EXPECT_NEAR(curve(t), t, 4e-6) << reach;
    }
    for (float reach : {2.f, 4.f, 9.f}) {
        Curve const curve({{0, 0, spline, 0, 0, reach, 0}, {4, 4, spline, -reach, 0, 0, 0}});
        float before = 0;
        for (float t = 0; t <= 4; t += 1.f / 256) {
            EXPECT_GE(curve(t), before - 1e-6f);
            before = curve(t);
        }
    }
}

TEST(CurveEvaluation, TheSteepestSplineIsSolvedOnBothSidesOfItsMiddle) {
    // Both handles as long as the segment: x(u) = 1/2 + 4 (u - 1/2)^3, whose slope vanishes in the middle.
    Curve const curve({{0, 0, spline, 0, 0, 1, 0}, {1, 1, spline, -1, 0, 0, 0}});
    for (double s = 1e-7; s < 0.5; s *= 1.7)
        for (float t : {float(0.5 - s), float(0.5 + s)}) {
            double const u = 0.5 + std::cbrt((double(t) - 0.5) / 4);
            EXPECT_NEAR(curve(t), u * u * (3 - 2 * u), 1e-6) << t;
        }
    EXPECT_EQ(curve(0.5f), 0.5f);
}

// ---- against the reference

TEST(CurveEvaluation, RandomCurvesFollowTheReference) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto const keys = randomKeys(random, 1 + random() % 12);
        Curve const curve(keys, allModes[random() % 5], allModes[random() % 5]);
        auto const order = sorted(curve);
        double scale = 10;
        for (std::size_t i = 0; i + 1 < order.size(); ++i) {
            scale = std::max(scale, Bezier(order[i], order[i + 1]).spread());
            scale = std::max({scale, 40 * std::abs(slope(order[i], order[i + 1], false)),
                              40 * std::abs(slope(order[i], order[i + 1], true))});
        }
        std::uniform_real_distribution<float> anywhere(-30, 30);
        for (int i = 0; i < 200; ++i) {
            float const t = anywhere(random);
            ASSERT_NEAR(curve(t, 5), reference(curve, t, 5), 1e-6 * scale) << "at " << t;
        }
    }
}

TEST(CurveEvaluation, AHintNeverChangesTheResult) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto keys = randomKeys(random, 2 + random() % 30, seed % 2);
        if (seed % 4 == 1)
            for (Key& k : keys) k.kind = linear;
        Curve const curve(keys, Extrapolation::cyclic, Extrapolation::offsetCyclic);
        std::uniform_real_distribution<float> anywhere(-30, 30);
        unsigned hint = 0;
        for (int i = 0; i < 300; ++i) {
            float const t = anywhere(random);
            if (random() % 3 == 0) hint = random() % 2 ? unsigned(random()) : unsigned(keys.size() - random() % 3);
            ASSERT_EQ(curve.prepared.evaluate(t, hint), curve(t));
            ASSERT_EQ(curve.prepared.evaluateRotation(t, hint), curve.rotation(t));
        }
        for (float t = -12; t < 12; t += 0.01f) ASSERT_EQ(curve.prepared.evaluate(t, hint), curve(t));
    }
}

TEST(CurveEvaluation, TheOrderOfTheSlotsNeverChangesTheResult) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto keys = randomKeys(random, 2 + random() % 30, true);
        Curve const rising(keys, Extrapolation::linear, Extrapolation::reverseCyclic);
        std::shuffle(keys.begin(), keys.end(), random);
        Curve const mixed(keys, Extrapolation::linear, Extrapolation::reverseCyclic);
        for (float t = -3; t < 20; t += 0.0371f) ASSERT_EQ(rising(t), mixed(t));
    }
}

// ---- extrapolation

struct Extrapolated {
    Extrapolation mode;
    float before, justAfter, later;  // at -0.5, 2.5 and 7
};

TEST(CurveEvaluation, EachExtrapolationContinuesInItsWay) {
    // From (0, 1) up to (1, 3) and on to (2, 2).
    Extrapolated const cases[] = {{Extrapolation::constant, 1, 2, 2},
                                  {Extrapolation::linear, 0, 1.5f, -3},
                                  {Extrapolation::cyclic, 2.5f, 2, 3},
                                  {Extrapolation::reverseCyclic, 2, 2.5f, 3},
                                  {Extrapolation::offsetCyclic, 1.5f, 3, 6}};
    for (Extrapolated const& c : cases) {
        Curve const curve({{0, 1}, {1, 3}, {2, 2}}, c.mode, c.mode);
        EXPECT_FLOAT_EQ(curve(-0.5f), c.before) << int(c.mode);
        EXPECT_FLOAT_EQ(curve(2.5f), c.justAfter) << int(c.mode);
        EXPECT_FLOAT_EQ(curve(7), c.later) << int(c.mode);
        EXPECT_EQ(curve(2), 2) << int(c.mode);
        EXPECT_EQ(curve(0), 1) << int(c.mode);
    }
}

TEST(CurveEvaluation, ACycleStartsAnewAtItsSeam) {
    Curve const curve({{0, 1}, {2, 3}}, Extrapolation::cyclic, Extrapolation::cyclic);
    EXPECT_EQ(curve(2), 3);
    EXPECT_EQ(curve(4), 1);
    EXPECT_EQ(curve(-2), 1);
}

TEST(CurveEvaluation, GradientsFollowTheEndSegments) {
    struct Case {
        Key left, right;
        float pre, post;
    } const cases[] = {
        {{0, 1, constant}, {2, 5, constant}, 0, 0},
        {{0, 1, linear}, {2, 5, linear}, 2, 2},
        {{0, 1, external}, {2, 5, linear}, 0, 0},
        {{0, 1, spline, 0, 0, 0.5f, 2}, {2, 5, spline, -0.25f, 1, 9, 9}, 4, -4},
        {{0, 1, spline}, {2, 5, spline}, 0, 0},                                      // no handles: flat
        {{0, 1, spline, 0, 0, 0, 3}, {2, 5, spline, 0, 3, 0, 0}, 2, 2},              // upright: the chord
        {{0, 1, spline, 0, 0, -1, 3}, {2, 5, spline, 1, 3, 0, 0}, 2, 2},             // backwards: the chord
        {{0, 1, spline, 0, 0, 20, 10}, {2, 5, spline, -20, 10, 0, 0}, 0.5f, -0.5f},  // too long: its direction
        {{0, -huge, linear}, {1e-30f, huge, linear}, huge, huge},                    // the largest there is
    };
    for (Case const& c : cases) {
        Curve const curve({c.left, c.right});
        EXPECT_FLOAT_EQ(curve.prepared.preGradient(), c.pre);
        EXPECT_FLOAT_EQ(curve.prepared.postGradient(), c.post);
    }
}

TEST(CurveEvaluation, LinearExtrapolationLeavesASplineWithoutAKink) {
    Curve const curve({{0, 1, spline, 0, 0, 0.5f, 2}, {2, 5, spline, -0.25f, 1, 0, 0}}, Extrapolation::linear,
                      Extrapolation::linear);
    float const h = 1.f / 1024;
    EXPECT_NEAR(curve(h) - curve(0), curve(0) - curve(-h), 1e-4);
    EXPECT_NEAR(curve(2 + h) - curve(2), curve(2) - curve(2 - h), 1e-4);
}

TEST(CurveEvaluation, NoInputGivesAValueThatIsNotFinite) {
    std::mt19937 random(3);
    float const inputs[] = {nan, infinity, -infinity, huge, -huge, 1e30f, -1e-30f, 0, -0.f};
    for (Extrapolation mode : allModes)
        for (float stretch : {1.f, 1e-38f, 1e38f})
            for (int round = 0; round < 20; ++round) {
                auto keys = randomKeys(random, 1 + round % 5);
                for (Key& k : keys) k.x *= stretch / 16, k.y *= round % 2 ? 1 : 1e38f, k.q = aboutZ(k.y);
                Curve const curve(keys, mode, mode);
                for (float t : inputs) {
                    ASSERT_TRUE(std::isfinite(curve(t))) << t;
                    Qelp::Quat const q = curve.rotation(t);
                    ASSERT_TRUE(std::isfinite(q.x + q.y + q.z + q.w)) << t;
                }
            }
}

TEST(CurveEvaluation, AnInputThatIsNotANumberGivesTheFirstKey) { EXPECT_EQ(Curve({{3, 1}, {1, 4}, {2, 2}})(nan), 4); }

TEST(CurveEvaluation, AMissingArrayMeansItsDefault) {
    std::vector<float> const x{0, 1};
    CurveKeys keys;
    keys.count = 2, keys.inputs = x.data();
    PreparedCurve curve;
    curve.update(keys);
    unsigned hint = 0;
    EXPECT_EQ(curve.evaluate(0.5f, hint), 0);
    EXPECT_EQ(curve.evaluateRotation(0.5f, hint), Qelp::Quat{});
    std::vector<float> const y{0, 2};
    keys.outputs = y.data();
    curve.update(keys);
    EXPECT_EQ(curve.evaluate(0.5f, hint), 1);
    std::vector<int> const kinds{spline, spline};
    keys.interpolations = kinds.data();
    curve.update(keys);
    EXPECT_EQ(curve.evaluate(0.25f, hint), 0.3125f);
}

// ---- order and change

TEST(CurveEvaluation, RisingKeysAreReadInPlace) {
    Curve curve({{0, 1}, {1, 3}, {2, 2}});
    EXPECT_TRUE(curve.prepared.isIdentity());
    curve.y[1] = 9;
    EXPECT_EQ(curve(1), 9);
    EXPECT_EQ(curve(0.5f), 5);
}

TEST(CurveEvaluation, TheOrderIsByInputThenSlot) {
    Curve const curve({{5, 0}, {1, 0}, {5, 0}, {3, 0}, {1, 0}});
    std::vector<unsigned> order;
    for (unsigned rank = 0; rank < curve.prepared.count(); ++rank) order.push_back(curve.prepared.slotOf(rank));
    EXPECT_EQ(order, (std::vector<unsigned>{1, 4, 3, 0, 2}));
    EXPECT_FALSE(curve.prepared.isIdentity());
}

TEST(CurveEvaluation, BoundsSpanTheKeys) {
    EXPECT_EQ(Curve({{5, -2}, {1, 7}, {3, 9}}).prepared.bounds(), (CurveBounds{1, 5, -2, 9}));
    EXPECT_EQ(Curve({{5, 4}}).prepared.bounds(), (CurveBounds{5, 5, 4, 4}));
    EXPECT_EQ(Curve({{nan, 99}, {5, 4}, {infinity, -99}}).prepared.bounds(), (CurveBounds{5, 5, 4, 4}));
}

// What incremental changes leave behind answers as what a fresh curve finds.
void expectSame(Curve const& curve) {
    PreparedCurve fresh;
    fresh.update(curve.keys());
    ASSERT_EQ(curve.prepared.count(), fresh.count());
    for (unsigned rank = 0; rank < fresh.count(); ++rank)
        ASSERT_EQ(curve.prepared.slotOf(rank), fresh.slotOf(rank)) << rank;
    for (float t = -13; t < 13; t += 0.31f) {
        unsigned a = 0, b = 0;
        ASSERT_EQ(curve.prepared.evaluate(t, a), fresh.evaluate(t, b)) << t;
    }
    for (float t : curve.x) {
        unsigned a = 0, b = 0;
        ASSERT_EQ(curve.prepared.evaluate(t, a), fresh.evaluate(t, b)) << t;
    }
}

TEST(CurveEvaluation, RandomChangesLeaveWhatAFreshCurveFinds) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Curve curve({}, Extrapolation::cyclic, Extrapolation::linear);
        for (int step = 0; step < 60; ++step) {
            Key key = randomKeys(random, 1)[0];
            if (seed % 3 == 0) key.kind = linear;
            if (random() % 12 == 0) key.x = random() % 2 ? nan : infinity;
            unsigned const n = unsigned(curve.x.size()), slot = n ? unsigned(random() % n) : 0;
            switch (n ? random() % 6 : 0) {
            case 0: curve.insert(n, key), curve.prepared.insertKey(curve.keys(), n); break;
            case 1: curve.insert(slot, key), curve.prepared.insertKey(curve.keys(), slot); break;
            case 2:
                key.x = n ? curve.x.back() + float(random() % 3) : 0;  // at the end, as a recording adds them
                curve.insert(n, key), curve.prepared.insertKey(curve.keys(), n);
                break;
            case 3: curve.remove(slot), curve.prepared.removeKey(curve.keys(), slot); break;
            case 4: curve.x[slot] = key.x, curve.prepared.keyChanged(curve.keys(), slot); break;
            case 5:
                curve.y[slot] = key.y, curve.kinds[slot] = key.kind;
                curve.prepared.keyChanged(curve.keys(), slot);
                break;
            }
            ASSERT_NO_FATAL_FAILURE(expectSame(curve)) << "step " << step;
        }
    }
}

TEST(CurveEvaluation, AChangeThatDoesNotFitIsAnUpdate) {
    Curve curve({{0, 0}, {1, 1}});
    curve.insert(2, {3, 3});
    curve.insert(3, {2, 9});
    curve.prepared.insertKey(curve.keys(), 3);
    expectSame(curve);
    curve.prepared.keyChanged(curve.keys(), 77);
    expectSame(curve);
    curve.remove(0), curve.remove(0);
    curve.prepared.removeKey(curve.keys(), 0);
    expectSame(curve);
}

TEST(CurveEvaluation, ACopyOutlivesItsOriginal) {
    auto* const original = new Curve({{1, 1}, {0, 0}, {2, 3}});
    Arrays const arrays = *original;
    PreparedCurve copy = original->prepared;
    copy.rebind(arrays.keys());
    delete original;
    unsigned hint = 0;
    EXPECT_EQ(copy.evaluate(1.5f, hint), 2);
}

// ---- handles

TEST(CurveEvaluation, ControlPointsAreTheKeyPlusItsTangent) {
    Curve const curve({{4, 2, spline, -0.5f, 3, 0.25f, -1}, {0, 1, spline}, {8, 5, linear, -1, -1, 1, 1}});
    CurvePoint p;
    ASSERT_TRUE(curve.prepared.inputTangentControlPoint(1, p));
    EXPECT_EQ(p, (CurvePoint{3.5f, 5}));
    ASSERT_TRUE(curve.prepared.outputTangentControlPoint(1, p));
    EXPECT_EQ(p, (CurvePoint{4.25f, 1}));
    ASSERT_TRUE(curve.prepared.outputTangentControlPoint(0, p));
    EXPECT_FLOAT_EQ(p.x, 4.f / 3);
    EXPECT_EQ(p.y, 1);
}

TEST(CurveEvaluation, AControlPointNeedsASplineOnItsSide) {
    Curve const curve({{0, 1, spline, -1, -1, 1, 1}, {1, 2, linear, -1, -1, 1, 1}, {2, 3, spline, -1, -1, 1, 1}});
    CurvePoint p{7, 7};
    EXPECT_FALSE(curve.prepared.inputTangentControlPoint(0, p));
    EXPECT_TRUE(curve.prepared.inputTangentControlPoint(1, p));
    p = {7, 7};
    EXPECT_FALSE(curve.prepared.outputTangentControlPoint(1, p));
    EXPECT_FALSE(curve.prepared.inputTangentControlPoint(2, p));
    EXPECT_FALSE(curve.prepared.outputTangentControlPoint(2, p));
    EXPECT_FALSE(curve.prepared.outputTangentControlPoint(3, p));
    EXPECT_FALSE(Curve({}).prepared.inputTangentControlPoint(0, p));
    EXPECT_EQ(p, (CurvePoint{7, 7}));
}

// ---- polyline

double distance(std::vector<CurvePoint> const& line, double x, double y) {
    double best = infinity;
    for (std::size_t i = 1; i < line.size(); ++i) {
        CurvePoint const &a = line[i - 1], &b = line[i];
        double const dx = b.x - a.x, dy = b.y - a.y;
        double const s = std::clamp(((x - a.x) * dx + (y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        best = std::min(best, std::hypot(x - a.x - s * dx, y - a.y - s * dy));
    }
    return best;
}

TEST(CurveEvaluation, ThePolylineHasEachKeyAndOneCornerAStep) {
    Curve const curve({{0, 1, constant}, {1, 3, linear}, {2, 2, linear}}, Extrapolation::linear);
    std::vector<CurvePoint> line;
    curve.prepared.points(-1, 4, line);
    EXPECT_EQ(line, (std::vector<CurvePoint>{{-1, 1}, {0, 1}, {1, 1}, {1, 3}, {2, 2}, {4, 2}}));
    curve.prepared.points(1.75f, 1.25f, line);
    EXPECT_EQ(line, (std::vector<CurvePoint>{{1.25f, 2.75f}, {1.75f, 2.25f}}));
}

TEST(CurveEvaluation, ThePolylineRepeatsWithTheCurve) {
    std::vector<CurvePoint> line;
    Curve({{0, 0}, {1, 2}}, Extrapolation::cyclic, Extrapolation::reverseCyclic).prepared.points(-1.5f, 2.5f, line);
    EXPECT_EQ(line, (std::vector<CurvePoint>{{-1.5f, 1}, {-1, 2}, {-1, 0}, {0, 2}, {0, 0}, {1, 2}, {2, 0}, {2.5f, 1}}));
    Curve({{0, 0}, {1, 2}}, {}, Extrapolation::offsetCyclic).prepared.points(0.5f, 2.5f, line);
    EXPECT_EQ(line, (std::vector<CurvePoint>{{0.5f, 1}, {1, 2}, {2, 4}, {2.5f, 5}}));
}

TEST(CurveEvaluation, ThePolylineStaysCloseToTheCurve) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto keys = randomKeys(random, 2 + random() % 6);
        for (Key& k : keys) k.kind = k.kind == constant ? linear : spline, k.inX = k.outX = 0;  // no upright slopes
        for (Key& k : keys) k.inX = k.inY != 0 ? -0.1f : 0, k.outX = k.outY != 0 ? 0.1f : 0;
        Curve const curve(keys, Extrapolation::offsetCyclic, Extrapolation::linear);
        std::vector<CurvePoint> line;
        curve.prepared.points(-9, 9, line);
        ASSERT_TRUE(std::is_sorted(line.begin(), line.end(), [](auto const& a, auto const& b) { return a.x < b.x; }));
        for (CurvePoint const& p : line) EXPECT_NEAR(p.y, curve(p.x), 1e-2);
        for (float t = -9; t < 9; t += 0.017f) EXPECT_LT(distance(line, t, curve(t)), 0.03);  // box: 10 by 12
    }
}

TEST(CurveEvaluation, TheSmallerTheToleranceTheMorePoints) {
    Curve const curve({{0, 0, spline}, {1, 1, spline}});
    std::vector<CurvePoint> coarse, fine;
    curve.prepared.points(0, 1, coarse, 0.01);
    curve.prepared.points(0, 1, fine, 0.0001);
    EXPECT_GT(fine.size(), 5 * coarse.size());
}

TEST(CurveEvaluation, ThePolylineOfCountlessRepetitionsIsSampled) {
    std::vector<CurvePoint> line;
    Curve({{0, 0}, {1, 2}}, Extrapolation::cyclic, Extrapolation::cyclic).prepared.points(-1e6f, 1e6f, line);
    EXPECT_GT(line.size(), 1000u);
    EXPECT_LT(line.size(), 10000u);
    EXPECT_EQ(line.front().x, -1e6f);
    EXPECT_EQ(line.back().x, 1e6f);
}

TEST(CurveEvaluation, ThePolylineNeedsKeysAndFiniteBounds) {
    std::vector<CurvePoint> line(3);
    Curve({}).prepared.points(0, 1, line);
    EXPECT_TRUE(line.empty());
    Curve({{0, 0}}).prepared.points(0, infinity, line);
    EXPECT_TRUE(line.empty());
    Curve({{0, 3}}).prepared.points(-1, 1, line);
    EXPECT_EQ(line, (std::vector<CurvePoint>{{-1, 3}, {0, 3}, {1, 3}}));
}

// ---- rotations

Curve turns(int kind, Extrapolation mode) {
    Key a{0, 0, kind}, b{2, 0, kind};
    a.q = aboutZ(0.25), b.q = aboutZ(1.25);
    return Curve({a, b}, mode, mode);
}

TEST(CurveRotation, ConstantHoldsLinearTurnsAndSplineEases) {
    EXPECT_LT(angleBetween(turns(constant, {}).rotation(1), aboutZ(0.25)), 1e-6);
    EXPECT_LT(angleBetween(turns(linear, {}).rotation(0.5f), aboutZ(0.5)), 1e-6);
    EXPECT_LT(angleBetween(turns(spline, {}).rotation(0.5f), aboutZ(0.25 + 0.15625)), 1e-6);
    EXPECT_EQ(turns(external, {}).rotation(0.5f, aboutZ(3)), aboutZ(3));
}

TEST(CurveRotation, KeysAreMetBitForBit) {
    for (int kind : {constant, linear, spline}) {
        EXPECT_EQ(turns(kind, {}).rotation(0), aboutZ(0.25));
        EXPECT_EQ(turns(kind, {}).rotation(2), aboutZ(1.25));
    }
}

TEST(CurveRotation, ItGoesTheShorterWay) {
    Key a{0, 0, linear}, b{1, 0, linear};
    a.q = aboutZ(0), b.q = aboutZ(3.5 * 2);  // 7 radians are 0.717 and a full turn
    EXPECT_LT(angleBetween(Curve({a, b}).rotation(0.5f), aboutZ((7 - 2 * 3.14159265358979) / 2)), 1e-6);
    b.q = {-b.q.x, -b.q.y, -b.q.z, -b.q.w};
    EXPECT_LT(angleBetween(Curve({a, b}).rotation(0.5f), aboutZ((7 - 2 * 3.14159265358979) / 2)), 1e-6);
}

TEST(CurveRotation, EachExtrapolationContinuesInItsWay) {
    struct Case {
        Extrapolation mode;
        double before, after;  // angles at -0.5 and 5
    } const cases[] = {{Extrapolation::constant, 0.25, 1.25},
                       {Extrapolation::linear, 0, 2.75},
                       {Extrapolation::cyclic, 1, 0.75},
                       {Extrapolation::reverseCyclic, 0.5, 0.75},
                       {Extrapolation::offsetCyclic, 0, 2.75}};
    for (auto const& c : cases) {
        Curve const curve = turns(linear, c.mode);
        EXPECT_LT(angleBetween(curve.rotation(-0.5f), aboutZ(c.before)), 1e-6) << int(c.mode);
        EXPECT_LT(angleBetween(curve.rotation(5), aboutZ(c.after)), 1e-6) << int(c.mode);
    }
}

TEST(CurveRotation, TheOffsetOfACycleIsTakenFromOutside) {
    // Both ends lean by the same turn about x; between them the heading about z grows by one.
    auto const leaning = [](double heading) {
        double const s = std::sin(0.3), c = std::cos(0.3), z = std::sin(heading / 2), w = std::cos(heading / 2);
        return Qelp::Quat{float(w * s), float(z * s), float(z * c), float(w * c)};  // heading times lean
    };
    Key a{0, 0, linear}, b{1, 0, linear};
    a.q = leaning(0), b.q = leaning(1);
    Curve const curve({a, b}, Extrapolation::offsetCyclic, Extrapolation::offsetCyclic);
    for (float t : {-3.25f, -1.f, 0.5f, 2.5f, 9.75f}) EXPECT_LT(angleBetween(curve.rotation(t), leaning(t)), 2e-6) << t;
}

TEST(CurveRotation, ResultsHaveUnitLengthAndBrokenKeysAreTheIdentity) {
    std::mt19937 random(9);
    std::normal_distribution<float> any;
    std::vector<Key> keys(20);
    for (unsigned i = 0; i < 20; ++i) {
        keys[i].x = float(i), keys[i].kind = int(i % 3);
        keys[i].q = {any(random), any(random), any(random), any(random)};
    }
    keys[4].q = {0, 0, 0, 0}, keys[5].q = {nan, 0, 0, 1}, keys[6].q = {infinity, 0, 0, 1},
    keys[7].q = {huge, huge, 0, 0};
    Curve const curve(keys, Extrapolation::linear, Extrapolation::offsetCyclic);
    for (float t = -10; t < 60; t += 0.11f) {
        Qelp::Quat const q = curve.rotation(t);
        ASSERT_NEAR(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w, 1, 3e-6) << t;
    }
    EXPECT_EQ(curve.rotation(4), Qelp::Quat{});
    EXPECT_EQ(curve.rotation(5), Qelp::Quat{});
}

}  // namespace
