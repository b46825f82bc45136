// The nearest place to a ray, against a dense search.
#include "qel/sg/path_ray.h"
#include "tests/qel/sg/random_path.h"
#include <gtest/gtest.h>

namespace sg {
namespace {

using test::RandomPath;

// The distance on the picture, squared; infinite of what is not seen.
double parallelDistance(PathPoint const& p, PathPoint const& origin, PathPoint const& direction) {
    PathPoint const along = direction * (1 / direction.length()), v = p - origin;
    PathPoint const off = v - along * v.dot(along);
    return off.dot(off);
}
double perspectiveDistance(PathPoint const& p, PathPoint const& eye, PathPoint const& direction) {
    PathPoint const along = direction * (1 / direction.length()), v = p - eye;
    double const depth = v.dot(along);
    if (depth <= 0) return 1e300;
    PathPoint const off = v - along * depth;
    return off.dot(off) / (depth * depth);
}

std::vector<PathBezier> segments(RandomPath& random, int count) {
    std::vector<PathBezier> all;
    for (int i = 0; i < count; ++i) all.push_back(random.curve(random.below(RandomPath::shapes)));
    return all;
}

// No place of a dense search may be nearer; and the place found must have the distance that is claimed.
template<class Distance>
void expectNearest(std::vector<PathBezier> const& all, PathRay const& ray, Distance const& distance) {
    PathRay::Nearest const found = ray.nearest(all);
    double least = 1e300;
    for (PathBezier const& b : all)
        for (int i = 0; i <= 1000; ++i) least = std::min(least, distance(b.at(i / 1000.0)));
    ASSERT_EQ(found.segment < 0, least >= 1e300);
    if (found.segment < 0) return;
    ASSERT_TRUE(found.u >= 0 && found.u <= 1) << found.u;
    EXPECT_LE(std::sqrt(found.distance), std::sqrt(least) * (1 + 1e-9) + 1e-9);
    double const there = distance(all[std::size_t(found.segment)].at(found.u));
    EXPECT_NEAR(std::sqrt(there), std::sqrt(found.distance), 1e-9 * (1 + std::sqrt(there)));
}

TEST(PathRay, ParallelFindsTheGlobalMinimum) {
    RandomPath random(1);
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        auto const all = segments(random, 1 + random.below(6));
        PathPoint const origin = random.place(), direction = random.place(2);
        expectNearest(all, PathRay::parallel(origin, direction),
                      [&](PathPoint const& p) { return parallelDistance(p, origin, direction); });
    }
}

TEST(PathRay, PerspectiveFindsTheGlobalMinimumOfWhatIsSeen) {
    RandomPath random(2);
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        auto const all = segments(random, 1 + random.below(6));
        PathPoint const eye = random.place(round % 2 ? 10 : 40), direction = random.place(2);
        expectNearest(all, PathRay::perspective(eye, eye + direction, direction),
                      [&](PathPoint const& p) { return perspectiveDistance(p, eye, direction); });
    }
}

TEST(PathRay, FindsAPointThatItRunsThrough) {
    RandomPath random(3);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        auto const all = segments(random, 4);
        PathPoint const hit = all[1].at(0.3), eye = random.place(30);
        EXPECT_NEAR(PathRay::parallel(eye, hit - eye).nearest(all).distance, 0, 1e-18);
        EXPECT_NEAR(PathRay::perspective(eye, eye + (hit - eye) * 0.1, hit - eye).nearest(all).distance, 0, 1e-18);
    }
}

TEST(PathRay, AParallelOneHasNoFrontAndAPerspectiveOneHas) {
    PathBezier const behind{{{1, 0, -5}, {2, 0, -5}, {3, 0, -5}, {4, 0, -5}}};
    PathRay::Nearest const found = PathRay::parallel({0, 0, 0}, {0, 0, 1}).nearest({&behind, 1});
    EXPECT_EQ(found.segment, 0);
    EXPECT_EQ(found.u, 0);
    EXPECT_EQ(PathRay::perspective({0, 0, 0}, {0, 0, 1}, {0, 0, 1}).nearest({&behind, 1}).segment, -1);
}

TEST(PathRay, InPerspectiveWhatLooksNearerIsNearer) {
    PathBezier const near{{{1, 0, 1}, {1, 0, 1}, {1, 0, 1}, {1, 0, 1}}};
    PathBezier const far{{{2, 0, 10}, {2, 0, 10}, {2, 0, 10}, {2, 0, 10}}};
    PathBezier const both[] = {near, far};
    EXPECT_EQ(PathRay::perspective({0, 0, 0}, {0, 0, 1}, {0, 0, 1}).nearest(both).segment, 1);
    EXPECT_EQ(PathRay::parallel({0, 0, 0}, {0, 0, 1}).nearest(both).segment, 0);
}

TEST(PathRay, ThroughAnOriginBesideTheEyesDirectionAimsAtTheOrigin) {
    PathBezier const line{{{-5, 0, 10}, {-5.0 / 3, 0, 10}, {5.0 / 3, 0, 10}, {5, 0, 10}}};
    // From the eye over the origin the line is met at x = 2; the direction only says how the picture lies.
    PathRay::Nearest const found = PathRay::perspective({0, 0, 0}, {0.2, 0, 1}, {0, 0, 1}).nearest({&line, 1});
    EXPECT_NEAR(line.at(found.u).x, 2, 1e-12);
}

TEST(PathRay, WithoutADirectionMeansTheNearestPlaceInSpace) {
    PathBezier const line{{{-3, 1, 0}, {-1, 1, 0}, {1, 1, 0}, {3, 1, 0}}};
    PathRay::Nearest const found = PathRay::parallel({1.5, 0, 4}, {}).nearest({&line, 1});
    EXPECT_NEAR(line.at(found.u).x, 1.5, 1e-12);
    EXPECT_NEAR(found.distance, 17, 1e-12);
    PathRay::Nearest const seen = PathRay::perspective({1.5, 0, -4}, {1.5, 0, -3}, {}).nearest({&line, 1});
    EXPECT_NEAR(line.at(seen.u).x, 1.5, 1e-12);
    EXPECT_EQ(PathRay::perspective({1, 0, 0}, {1, 0, 0}, {}).nearest({&line, 1}).segment, -1) << "nothing is before it";
}

TEST(PathRay, OfEquallyNearPlacesTakesTheFirst) {
    PathBezier const line{{{1, 0, 0}, {1, 0, 1}, {1, 0, 2}, {1, 0, 3}}};
    PathBezier const both[] = {line, line};
    PathRay::Nearest const found = PathRay::parallel({0, 0, 0}, {0, 0, 1}).nearest(both);
    EXPECT_EQ(found.segment, 0);
    EXPECT_EQ(found.u, 0);
    EXPECT_EQ(PathRay::parallel({0, 0, 0}, {0, 0, 1}).nearest({}).segment, -1);
}

}  // namespace
}  // namespace sg
