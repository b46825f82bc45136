// Random paths, with the shapes that are hard to measure among them; the same seed makes the same path.
#pragma once
#include "qel/sg/path_geometry.h"
#include <random>

namespace sg::test {

class RandomPath {
public:
    explicit RandomPath(unsigned seed) : random_(seed) {}

    double real(double from, double to) { return std::uniform_real_distribution<double>(from, to)(random_); }
    int below(int n) { return int(random_() % unsigned(n)); }
    Qelp::Vector3 point(double size = 10) {
        return PathPoint(real(-size, size), real(-size, size), real(-size, size)).toVector();
    }
    PathPoint place(double size = 10) { return PathPoint(point(size)); }

    // A curve of one of the kinds named by `shapes`.
    PathBezier curve(int shape) {
        PathPoint const a = place(), way = place();
        switch (shape) {
        case 1: return {{a, a + way * real(0, 3), a + way * real(-2, 1), a + way}};  // straight, may turn back
        case 2: return {{a, a, a + way, a + way}};                                   // handles of no length
        case 3: return {{a, a, a, a + way}};
        case 4: return {{a, a, a, a}};
        case 5: {  // a cusp in the middle, then one that is only nearly one
            PathPoint const across = place(), off = place(1e-4) * double(below(2));
            return {{a, a + way + across, a + across + off, a + way}};
        }
        case 6: {  // a loop
            PathPoint const across = place();
            return {{a, a + way * 4 + across, a - way * 3 + across, a + way}};
        }
        case 7: return {{a, place(), place(), a}};  // ends meet
        case 8: return {{a, a + place(1e-7), a + way, a + way + place(1e-7)}};
        default: return {{a, place(), place(), place()}};
        }
    }
    static constexpr int shapes = 9;

    PathKey key(int number) {
        PathKey k;
        k.number = number;
        k.interpolation = below(8) == 0 ? 0 : below(3) ? 2 : 1;
        k.position = point();
        if (below(4)) {
            PathPoint const p(k.position), in = place(3), out = below(2) ? in * -1 : place(3);
            k.inHandle = (p + in).toVector();
            k.outHandle = (p + out).toVector();
        }
        return k;
    }
    // In shuffled slots; some keys lie on others.
    std::vector<PathKey> keys(int count) {
        std::vector<PathKey> all;
        for (int i = 0; i < count; ++i) {
            all.push_back(key(i));
            if (i > 0 && below(10) == 0) {
                all.back() = all[std::size_t(i - 1)];
                all.back().number = i;
            }
        }
        std::shuffle(all.begin(), all.end(), random_);
        return all;
    }
    std::mt19937& generator() { return random_; }

private:
    std::mt19937 random_;
};

inline bool isFinite(Qelp::Vector3 const& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

}  // namespace sg::test
