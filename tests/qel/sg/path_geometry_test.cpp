// The geometry of whole paths: coordinates, tangents, infinities, and what an edit measures again.
#include "tests/qel/sg/random_path.h"
#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

namespace sg {
namespace {

using Qelp::Vector3;
using test::isFinite;
using test::RandomPath;
using Mode = CurveExtrapolation;

constexpr int constant = 0, linear = 1, spline = 2;

PathKey at(int number, float x, float y = 0, int kind = linear) {
    PathKey k;
    k.number = number;
    k.interpolation = kind;
    k.position = {x, y, 0, 0};
    return k;
}
PathKey handled(int number, Vector3 in, Vector3 position, Vector3 out) { return {number, spline, in, position, out}; }

// A path that owns its keys.
struct Path {
    explicit Path(std::vector<PathKey> k, double coefficient = 1.0 / 3) : keys(std::move(k)), coefficient(coefficient) {
        update();
    }
    PathKeys inputs() const { return {keys, coefficient, pre, post}; }
    void update() { geometry.update(inputs()); }
    void extend(Mode before, Mode after) { pre = before, post = after, update(); }
    Vector3 position(double fraction) const {
        Vector3 p;
        EXPECT_TRUE(geometry.positionAt(fraction, p));
        return p;
    }
    Vector3 place(double parameter) const {
        Vector3 p;
        EXPECT_TRUE(geometry.positionAtParameter(parameter, p));
        return p;
    }
    Vector3 in(int number) const {
        Vector3 p;
        EXPECT_TRUE(geometry.inputControlPoint(number, p));
        return p;
    }
    Vector3 out(int number) const {
        Vector3 p;
        EXPECT_TRUE(geometry.outputControlPoint(number, p));
        return p;
    }
    double map(double parameter) const { return geometry.fractionAt(parameter); }
    double inverse(double fraction) const { return geometry.parameterAt(fraction); }

    std::vector<PathKey> keys;
    double coefficient;
    Mode pre = Mode::constant, post = Mode::constant;
    PathGeometry geometry;
};

double distance(Vector3 const& a, Vector3 const& b) { return (PathPoint(a) - PathPoint(b)).length(); }
void expectNear(Vector3 const& a, Vector3 const& b, double tolerance = 1e-6) { EXPECT_LE(distance(a, b), tolerance); }

// Everything that can be asked, as bits.
std::vector<double> answers(PathGeometry const& g) {
    std::vector<double> all{g.length(), double(g.keyCount())};
    auto const add = [&](bool known, Vector3 const& v) { all.insert(all.end(), {double(known), v.x, v.y, v.z}); };
    for (int slot : g.order()) all.push_back(slot);
    for (int i = -3; i <= 63; ++i) {
        double const fraction = i / 60.0;
        Vector3 p, q, in, out;
        add(g.positionAt(fraction, p), p);
        add(g.positionAtParameter(fraction * g.keyCount(), q), q);
        add(g.inputControlPoint(i, in), in);
        add(g.outputControlPoint(i, out), out);
        all.insert(all.end(), {g.fractionAt(fraction * g.keyCount()), g.parameterAt(fraction), double(g.findKey(i))});
    }
    return all;
}

std::vector<int> each(std::vector<PathGeometry::Slots> const& slots) {
    std::vector<int> out;
    for (auto const& some : slots)
        for (int slot = some.from; slot < some.to; ++slot) out.push_back(slot);
    return out;
}

// ---- few keys ----

TEST(PathGeometry, WithoutKeysHasNothing) {
    Path const path({});
    Vector3 p{1, 2, 3, 0};
    double fraction = 7;
    EXPECT_FALSE(path.geometry.positionAt(0.5, p));
    EXPECT_FALSE(path.geometry.positionAtParameter(0, p));
    EXPECT_FALSE(path.geometry.inputControlPoint(0, p));
    EXPECT_FALSE(path.geometry.outputControlPoint(0, p));
    EXPECT_FALSE(path.geometry.nearest(PathRay::parallel({}, {0, 0, 1}), fraction));
    EXPECT_EQ(p, (Vector3{1, 2, 3, 0}));
    EXPECT_EQ(fraction, 7);
    for (double x : {-1.0, 0.0, 0.5, 1.0, 2.0}) {
        EXPECT_EQ(path.map(x), 0);
        EXPECT_EQ(path.inverse(x), 0);
    }
    EXPECT_EQ(path.geometry.length(), 0);
    EXPECT_EQ(path.geometry.findKey(0), -1);
}

TEST(PathGeometry, OfOneKeyIsAPoint) {
    for (int mode = 0; mode < 5; ++mode) {
        Path path({at(0, 3, 4, spline)});
        path.extend(Mode(mode), Mode(mode));
        for (double x : {-1.5, 0.0, 0.5, 1.0, 2.5}) {
            EXPECT_EQ(path.position(x), (Vector3{3, 4, 0, 0}));
            EXPECT_EQ(path.place(x), (Vector3{3, 4, 0, 0}));
            EXPECT_EQ(path.map(x), 0);
            EXPECT_EQ(path.inverse(x), 0);
        }
        Vector3 p;
        EXPECT_FALSE(path.geometry.inputControlPoint(0, p));
        EXPECT_FALSE(path.geometry.outputControlPoint(0, p));
        double fraction = 7;
        EXPECT_TRUE(path.geometry.nearest(PathRay::parallel({}, {0, 0, 1}), fraction));
        EXPECT_EQ(fraction, 0);
    }
}

TEST(PathGeometry, OfTwoKeysIsALineOrACurve) {
    Path const line({at(0, 1), at(1, 4)});
    EXPECT_EQ(line.geometry.length(), 3);
    EXPECT_EQ(line.position(0.5), (Vector3{2.5f, 0, 0, 0}));
    Path const curve({handled(0, {}, {0, 0, 0, 0}, {0, 1, 0, 0}), handled(1, {1, 1, 0, 0}, {1, 0, 0, 0}, {})});
    EXPECT_EQ(curve.place(0.5), (Vector3{0.5f, 0.75f, 0, 0}));
    EXPECT_NEAR(curve.geometry.length(), 2, 1e-6) << "a parabola with this hull is exactly as long as its legs' mean";
}

// ---- straight paths ----

TEST(PathGeometry, MeasuresStraightKeysExactly) {
    Path const path({at(0, 0), at(1, 3, 4), at(2, 3, 0), at(3, 3, 0), at(4, 0, 0)});
    EXPECT_EQ(path.geometry.length(), 5 + 4 + 0 + 3);
    EXPECT_EQ(path.map(0), 0);
    EXPECT_EQ(path.map(1), 5.0 / 12);
    EXPECT_EQ(path.map(1.5), 7.0 / 12);
    EXPECT_EQ(path.map(2), 9.0 / 12);
    EXPECT_EQ(path.map(2.75), 9.0 / 12);
    EXPECT_EQ(path.map(4), 1);
    EXPECT_EQ(path.inverse(7.0 / 12), 1.5);
    EXPECT_EQ(path.position(7.0 / 12), (Vector3{3, 2, 0, 0}));
}

TEST(PathGeometry, PassesThroughItsKeysToTheLastBit) {
    RandomPath random(5);
    for (int round = 0; round < 50; ++round) {
        Path const path(random.keys(30));
        for (int rank = 0; rank < 30; ++rank) {
            PathKey const& key = path.keys[std::size_t(path.geometry.order()[std::size_t(rank)])];
            EXPECT_EQ(path.place(rank), key.position);
        }
        EXPECT_EQ(path.position(0), path.place(0));
        EXPECT_EQ(path.position(1), path.place(29));
    }
}

TEST(PathGeometry, AConstantKeyStaysAndTakesNoLength) {
    Path const path({at(0, 0), at(1, 1, 0, constant), at(2, 5), at(3, 6)});
    EXPECT_EQ(path.geometry.length(), 2);
    EXPECT_EQ(path.place(1.999), (Vector3{1, 0, 0, 0}));
    EXPECT_EQ(path.place(2), (Vector3{5, 0, 0, 0}));
    EXPECT_EQ(path.map(1), 0.5);
    EXPECT_EQ(path.map(2), 0.5);
    EXPECT_EQ(path.inverse(0.5), 1) << "the first of the parameters";
    EXPECT_EQ(path.position(0.75), (Vector3{5.5f, 0, 0, 0}));
}

TEST(PathGeometry, AnyOtherKindRunsStraight) {
    for (int kind : {3, 4, -1, 1000}) EXPECT_EQ(Path({at(0, 0, 0, kind), at(1, 4, 0, kind)}).place(0.25).x, 1);
}

TEST(PathGeometry, WithoutLengthSpreadsItsKeysOverTheFractions) {
    Path const path({at(0, 2, 2), at(1, 2, 2), at(2, 2, 2), at(3, 2, 2), at(4, 2, 2)});
    EXPECT_EQ(path.geometry.length(), 0);
    EXPECT_EQ(path.map(1), 0.25);
    EXPECT_EQ(path.map(4), 1);
    EXPECT_EQ(path.inverse(0.625), 2.5);
    EXPECT_EQ(path.position(0.6), (Vector3{2, 2, 0, 0}));
}

// ---- order ----

TEST(PathGeometry, TheNumbersOfTheKeysAreTheirOrder) {
    Path const path({at(2, 3), at(0, 0), at(3, 4), at(1, 1)});
    EXPECT_EQ(path.geometry.order(), std::vector<int>({1, 3, 0, 2}));
    EXPECT_EQ(path.geometry.length(), 4);
    EXPECT_EQ(path.place(1.5), (Vector3{2, 0, 0, 0}));
    for (int slot = 0; slot < 4; ++slot) EXPECT_EQ(path.geometry.findKey(path.keys[std::size_t(slot)].number), slot);
    for (int none : {-1, 4, 2147483647}) EXPECT_EQ(path.geometry.findKey(none), -1);
}

TEST(PathGeometry, NumbersWithGapsAndTwinsOnlyGiveTheOrder) {
    Path const path({at(7, 2), at(-5, 0), at(7, 3), at(3, 1)});
    EXPECT_EQ(path.geometry.order(), std::vector<int>({1, 3, 0, 2}));
    EXPECT_EQ(path.place(1.5), (Vector3{1.5f, 0, 0, 0})) << "parameters count keys";
    EXPECT_EQ(path.geometry.findKey(7), 0);
    EXPECT_EQ(path.out(3), (Vector3{1 + 1 / 3.f, 0, 0, 0}));
}

// ---- tangents ----

TEST(PathGeometry, AutomaticTangentsFollowTheNeighbours) {
    Path const path({at(0, 0), at(1, 3), at(2, 6, 3)}, 0.5);
    expectNear(path.out(0), {1.5f, 0, 0, 0});
    expectNear(path.in(1), {1.5f, -0.75f, 0, 0});
    expectNear(path.out(1), {4.5f, 0.75f, 0, 0});
    expectNear(path.in(2), {4.5f, 1.5f, 0, 0});
    Vector3 p;
    EXPECT_FALSE(path.geometry.inputControlPoint(0, p)) << "nothing lies before it";
    EXPECT_FALSE(path.geometry.outputControlPoint(2, p));
    EXPECT_FALSE(path.geometry.outputControlPoint(3, p));
}

TEST(PathGeometry, AThirdKeepsEvenStraightKeysEven) {
    Path const path({at(0, 0, 0, spline), at(1, 1, 1, spline), at(2, 2, 2, spline), at(3, 3, 3, spline)});
    for (double u = 0; u <= 3; u += 0.01) expectNear(path.place(u), {float(u), float(u), 0, 0});
}

TEST(PathGeometry, SplineKeysWithoutHandlesHaveAutomaticOnes) {
    std::vector<PathKey> keys{at(0, 0, 0, spline), at(1, 2, 2, spline), at(2, 4, 0, spline)};
    Path const automatic(keys);
    EXPECT_EQ(automatic.out(1), (Vector3{2 + 2 / 3.f, 2, 0, 0}));
    for (int i = 0; i < 3; ++i) {
        if (i > 0) keys[std::size_t(i)].inHandle = automatic.in(i);
        if (i < 2) keys[std::size_t(i)].outHandle = automatic.out(i);
    }
    Path const byHand(keys);
    for (double u = 0; u <= 2; u += 0.1) expectNear(byHand.place(u), automatic.place(u));
    EXPECT_NEAR(byHand.geometry.length(), automatic.geometry.length(), 1e-6);
}

TEST(PathGeometry, HandlesOfSplineKeysAreTheirOwn) {
    Path const path(
        {handled(0, {9, 9, 9, 0}, {1, 0, 0, 0}, {1, 5, 0, 0}), handled(1, {2, 6, 0, 0}, {3, 0, 0, 0}, {}), at(2, 9)});
    EXPECT_EQ(path.out(0), (Vector3{1, 5, 0, 0}));
    EXPECT_EQ(path.in(1), (Vector3{2, 6, 0, 0}));
    EXPECT_EQ(path.out(1), (Vector3{})) << "one of two handles may lie at the origin";
    EXPECT_EQ(path.place(0.5), (Vector3{(1 + 3 + 6 + 3) / 8.f, 33 / 8.f, 0, 0}));
}

TEST(PathGeometry, AStraightKeyBesideASplineHasAutomaticHandles) {
    PathKey stray = at(1, 2, 2);
    stray.inHandle = {50, 50, 50, 0};  // of no meaning
    Path const path({at(0, 0, 0, spline), stray, at(2, 4, 0)});
    expectNear(path.in(1), {2 - 2 / 3.f, 2, 0, 0});
    EXPECT_LT(path.geometry.length(), 10);
}

// ---- maps ----

TEST(PathGeometry, MapsRiseAndUndoEachOther) {
    RandomPath random(6);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        int const count = 2 + random.below(40);
        Path const path(random.keys(count));
        double before = 0, parameterBefore = 0;
        for (int i = 0; i <= 2000; ++i) {
            double const fraction = path.map((count - 1) * (i / 2000.0));
            ASSERT_GE(fraction, before) << i;
            ASSERT_LE(fraction, 1);
            double const parameter = path.inverse(i / 2000.0);
            ASSERT_GE(parameter, parameterBefore) << i;
            ASSERT_NEAR(path.map(parameter), i / 2000.0, 1e-9);
            before = fraction, parameterBefore = parameter;
        }
        EXPECT_EQ(path.map(count - 1), 1);
        EXPECT_EQ(path.inverse(1), count - 1);
    }
}

TEST(PathGeometry, EqualFractionsAreEqualWays) {
    RandomPath random(7);
    std::vector<PathKey> keys;
    for (int i = 0; i < 12; ++i) keys.push_back(handled(i, random.point(), random.point(), random.point()));
    Path const path(keys);
    constexpr int steps = 100'000;
    double whole = 0, worst = 0;
    Vector3 before = path.position(0);
    for (int i = 1; i <= steps; ++i) {
        Vector3 const p = path.position(double(i) / steps);
        whole += distance(p, before);
        worst = std::max(worst, distance(p, before));
        before = p;
    }
    EXPECT_NEAR(whole, path.geometry.length(), 1e-4 * whole) << "positions are floats";
    EXPECT_LE(worst, path.geometry.length() / steps * 1.02);
}

// ---- beyond the ends ----

TEST(PathGeometry, InfinitiesGoOnBeyondTheEnds) {
    struct Case {
        Mode mode;
        double before, after;      // x at the fractions -0.25 and 1.25
        double twoTurns;           // x at 2.25
        double mapBack, mapOn;     // of the parameters -0.5 and 2.5
        double inverseOn, folded;  // of the fraction 1.25; the same inside
    };
    // Two keys' span of 1, then one of 3: parameter 0.5 is the fraction 1/8, parameter 1 is 1/4.
    Case const cases[] = {{Mode::constant, 0, 4, 4, 0, 1, 2, 2},
                          {Mode::linear, -1, 5, 9, -0.25, 1.25, 2.5, 2},
                          {Mode::cyclic, 3, 1, 1, -0.375, 1.125, 3, 1},
                          {Mode::reverseCyclic, 1, 3, 1, -0.125, 1.375, 2 + 1.0 / 3, 2 - 1.0 / 3},
                          {Mode::offsetCyclic, -1, 5, 9, -0.375, 1.125, 3, 1}};
    for (Case const& c : cases) {
        SCOPED_TRACE(int(c.mode));
        Path path({at(0, 0), at(1, 1), at(2, 4)});
        path.extend(c.mode, c.mode);
        EXPECT_NEAR(path.position(-0.25).x, c.before, 1e-6);
        EXPECT_NEAR(path.position(1.25).x, c.after, 1e-6);
        EXPECT_NEAR(path.position(2.25).x, c.twoTurns, 1e-6);
        EXPECT_NEAR(path.map(-0.5), c.mapBack, 1e-12);
        EXPECT_NEAR(path.map(2.5), c.mapOn, 1e-12);
        EXPECT_NEAR(path.inverse(1.25), c.inverseOn, 1e-12);
        EXPECT_NEAR(path.geometry.parameterInside(1.25), c.folded, 1e-12);
        for (double f : {-2.3, -0.7, 1.1, 1.9, 3.4})
            if (c.mode != Mode::constant) {
                EXPECT_NEAR(path.map(path.inverse(f)), f, 1e-12);
                expectNear(path.place(path.inverse(f)), path.position(f), 1e-5);
            }
    }
}

TEST(PathGeometry, EachEndHasItsOwnInfinity) {
    Path path({at(0, 0), at(1, 1)});
    path.extend(Mode::linear, Mode::constant);
    EXPECT_EQ(path.position(-2).x, -2);
    EXPECT_EQ(path.position(2).x, 1);
    path.extend(Mode::constant, Mode(99));
    EXPECT_EQ(path.position(-2).x, 0);
    EXPECT_EQ(path.position(2).x, 1) << "what is unknown stays";
}

TEST(PathGeometry, GoesOnStraightAlongItsEndTangents) {
    Path path({handled(0, {}, {0, 0, 0, 0}, {0, 1, 0, 0}), handled(1, {3, 1, 0, 0}, {3, 0, 0, 0}, {})});
    path.extend(Mode::linear, Mode::linear);
    double const length = path.geometry.length();
    expectNear(path.position(-0.5), {0, float(-0.5 * length), 0, 0}, 1e-5);
    expectNear(path.position(1.5), {3, float(-0.5 * length), 0, 0}, 1e-5);
    // Handles of no length, and a key twice at the end: the direction is the next that there is.
    Path still({handled(0, {1, 0, 0, 0}, {1, 0, 0, 0}, {1, 0, 0, 0}),
                handled(1, {2, 0, 0, 0}, {2, 0, 0, 0}, {2, 0, 0, 0}), at(2, 2), at(3, 2)});
    still.extend(Mode::linear, Mode::linear);
    expectNear(still.position(-1), {0, 0, 0, 0}, 1e-5);
}

// ---- edits ----

TEST(PathGeometry, TenThousandEditsLeaveTheBitsOfAFreshOne) {
    RandomPath random(8);
    Path path(random.keys(40));
    for (int edit = 0; edit < 10'000; ++edit) {
        int const what = random.below(40), count = int(path.keys.size());
        if (what == 0 && count < 60) {
            path.keys.insert(path.keys.begin() + random.below(count + 1), random.key(random.below(60)));
            path.update();
        } else if (what == 1 && count > 0) {
            path.keys.erase(path.keys.begin() + random.below(count));
            path.update();
        } else if (what == 2) {
            path.coefficient = random.real(-0.2, 0.8);
            path.update();
        } else if (count > 0) {
            std::vector<PathGeometry::Slots> slots;
            for (int i = random.below(4); i >= 0; --i) {
                int const from = random.below(count), to = from + 1 + random.below(2) * random.below(count - from);
                slots.push_back({from, to});
            }
            for (int slot : each(slots)) {
                PathKey const fresh = random.key(path.keys[std::size_t(slot)].number);
                PathKey& key = path.keys[std::size_t(slot)];
                if (what < 8)
                    key = fresh;
                else if (what < 25)
                    key.position = fresh.position;
                else if (what < 30)
                    key.inHandle = fresh.inHandle;
                else if (what < 35)
                    key.outHandle = fresh.outHandle;
                else if (what < 38)
                    key.interpolation = fresh.interpolation;
                else
                    key.number = random.below(60);
            }
            path.geometry.keysChanged(path.inputs(), slots);
        }
        Path const fresh(path.keys, path.coefficient);
        ASSERT_EQ(path.geometry.length(), fresh.geometry.length()) << edit;
        if (edit % 50 == 0) { ASSERT_EQ(answers(path.geometry), answers(fresh.geometry)) << edit; }
    }
}

TEST(PathGeometry, ManyPlacesInOneGoAreThoseOfSingleQuestions) {
    RandomPath random(12);
    for (int round = 0; round < 60; ++round) {
        int const count = round % 12;
        Path path(random.keys(count));
        path.extend(Mode(round % 5), Mode(round % 4));
        std::vector<float> asked{0, 1, -0.f, std::numeric_limits<float>::quiet_NaN(), -1e30f, 1e30f};
        for (int i = 0; i < 50; ++i) asked.push_back(float(random.real(-1, 2)));
        for (int i = 0; i <= 50; ++i) asked.push_back(float(i) / 50);
        std::vector<float> parameters;
        std::vector<double> fractions;
        path.geometry.parametersAt(asked, parameters);
        path.geometry.fractionsAt(parameters, fractions);
        ASSERT_EQ(parameters.size(), asked.size());
        ASSERT_EQ(fractions.size(), asked.size());
        for (std::size_t i = 0; i < asked.size(); ++i) {
            ASSERT_EQ(parameters[i], float(path.inverse(double(asked[i])))) << round << " at " << asked[i];
            ASSERT_EQ(fractions[i], path.map(double(parameters[i]))) << round << " at " << asked[i];
        }
    }
}

std::vector<PathKey> longPath(int count, int kind) {
    RandomPath random(9);
    std::vector<PathKey> keys;
    for (int i = 0; i < count; ++i) { keys.push_back(at(i, float(i), float(random.real(0, 1)), kind)); }
    return keys;
}

TEST(PathGeometry, OnlyWhatChangedIsMeasuredAgain) {
    for (int kind : {linear, spline}) {
        SCOPED_TRACE(kind);
        Path path(longPath(10'000, kind));
        auto const measuredBy = [&](auto const& edit) {
            std::uint64_t const before = path.geometry.measured();
            edit();
            return path.geometry.measured() - before;
        };
        std::uint64_t const beside = kind == linear ? 2 : 4;  // automatic tangents reach one key further
        auto const move = [&](int slot) {
            path.keys[std::size_t(slot)].position.y += 0.5f;
            std::array const slots{PathGeometry::Slots{slot, slot + 1}};
            path.geometry.keysChanged(path.inputs(), slots);
        };
        EXPECT_EQ(measuredBy([&] { move(5000); }), beside);
        EXPECT_EQ(measuredBy([&] { move(0); }), beside / 2);
        EXPECT_EQ(measuredBy([&] { path.update(); }), 0u);
        EXPECT_EQ(measuredBy([&] {
                      path.keys[100].position.y += 0.5f;
                      path.keys[9000].position.y += 0.5f;
                      path.update();
                  }),
                  2 * beside);
        EXPECT_EQ(measuredBy([&] {
                      path.keys[7].outHandle = {1, 1, 1, 0};
                      path.update();
                  }),
                  kind == linear ? 0u : 2u);
    }
}

TEST(PathGeometry, AKeyInsertedOrRemovedLeavesTheOthersMeasured) {
    Path path(longPath(1000, linear));
    PathKey fresh = at(500, 499.5f, 3);
    for (PathKey& key : path.keys) key.number += key.number >= 500;
    path.keys.push_back(fresh);
    std::uint64_t before = path.geometry.measured();
    path.update();
    EXPECT_EQ(path.geometry.measured() - before, 2u);
    path.keys.pop_back();
    before = path.geometry.measured();
    path.update();
    EXPECT_EQ(path.geometry.measured() - before, 1u);
    EXPECT_EQ(path.geometry.length(), Path(longPath(1000, linear)).geometry.length());
}

// ---- rays ----

TEST(PathGeometry, TheNearestPlaceIsGivenAsAFraction) {
    Path const path({at(0, 0), at(1, 1), at(2, 4)});
    double fraction = -1;
    EXPECT_TRUE(path.geometry.nearest(PathRay::parallel({3, 5, 0}, {0, 1, 0}), fraction));
    EXPECT_NEAR(fraction, 0.75, 1e-12);
    EXPECT_TRUE(path.geometry.nearest(PathRay::perspective({3, 5, 0}, {3, 4, 0}, {0, -1, 0}), fraction));
    EXPECT_NEAR(fraction, 0.75, 1e-12);
    fraction = 7;
    EXPECT_FALSE(path.geometry.nearest(PathRay::perspective({3, 5, 0}, {3, 6, 0}, {0, 1, 0}), fraction));
    EXPECT_EQ(fraction, 7);
}

TEST(PathGeometry, WhatAConstantKeyLeapsToIsFoundToo) {
    double fraction = -1;
    Path const path({at(0, 0), at(1, 1, 0, constant), at(2, 4, 3)});
    EXPECT_TRUE(path.geometry.nearest(PathRay::parallel({4, 3, 9}, {0, 0, 1}), fraction));
    EXPECT_EQ(fraction, 1);
    EXPECT_TRUE(path.geometry.nearest(PathRay::parallel({2.4, 1.5, 9}, {0, 0, 1}), fraction));
    EXPECT_EQ(fraction, 1) << "nothing lies in between";
}

TEST(PathGeometry, NoPlaceOfADenseSearchIsNearerToARay) {
    RandomPath random(10);
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        Path path(random.keys(1 + random.below(20)));
        for (PathKey& key : path.keys)
            key.interpolation = std::max(key.interpolation, linear);  // no leaps: the fraction
        path.update();                                                // names both their ends
        PathPoint const origin = random.place(), direction = random.place(1);
        auto const off = [&](Vector3 const& p) {
            PathPoint const v = PathPoint(p) - origin, along = direction * (1 / direction.length());
            return (v - along * v.dot(along)).length();
        };
        double fraction = -1, least = 1e300;
        ASSERT_TRUE(path.geometry.nearest(PathRay::parallel(origin, direction), fraction));
        for (int i = 0; i <= 2000; ++i) least = std::min(least, off(path.position(i / 2000.0)));
        EXPECT_LE(off(path.position(fraction)), least + 1e-5);
    }
}

// ---- hostile keys ----

TEST(PathGeometry, FiniteKeysGiveFiniteAnswers) {
    RandomPath random(11);
    float const odd[] = {0, -0.f, 1e-45f, -1e-38f, 3.4e38f, -3.4e38f, 1, 1.0000001f, -7};
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        Path path(random.keys(random.below(12)), round % 7 ? 0.3 : 3e38);
        for (PathKey& key : path.keys)
            for (Vector3* v : {&key.inHandle, &key.position, &key.outHandle})
                for (float* c : {&v->x, &v->y, &v->z})
                    if (random.below(3) == 0) *c = odd[random.below(9)];
        path.extend(Mode(random.below(5)), Mode(random.below(5)));
        for (double answer : answers(path.geometry)) ASSERT_TRUE(std::isfinite(answer));
        for (double x : {-1e300, -1e9, 1e9, 1e300, double(INFINITY), std::nan("")}) {
            Vector3 p, q;
            path.geometry.positionAt(x, p);
            path.geometry.positionAtParameter(x, q);
            ASSERT_TRUE(isFinite(p) && isFinite(q)) << x;
            ASSERT_TRUE(std::isfinite(path.map(x)) && std::isfinite(path.inverse(x))) << x;
            ASSERT_TRUE(std::isfinite(path.geometry.parameterInside(x)));
        }
        double fraction = 0;
        path.geometry.nearest(PathRay::parallel(random.place(), random.place()), fraction);
        ASSERT_TRUE(std::isfinite(fraction));
        path.geometry.nearest(PathRay::perspective(random.place(), random.place(), random.place()), fraction);
        ASSERT_TRUE(std::isfinite(fraction));
    }
}

TEST(PathGeometry, NumbersThatAreNotFiniteCountAsNone) {
    PathKey odd = at(1, INFINITY, NAN, spline);
    odd.outHandle = {NAN, 1, -INFINITY, 0};
    Path const path({at(0, 1), odd, at(2, 3)}, NAN);
    EXPECT_EQ(path.place(1), Vector3());
    for (double answer : answers(path.geometry)) ASSERT_TRUE(std::isfinite(answer));
}

}  // namespace
}  // namespace sg
