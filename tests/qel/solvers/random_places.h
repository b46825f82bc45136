// Random rotations and places for the tests of solvers, and how far apart they are.
#pragma once
#include "qel/solvers/affine.h"
#include <cmath>
#include <random>

namespace sg {

class RandomPlaces {
public:
    double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
    Qelutils::rotation::Quaternion rotation() {
        std::normal_distribution<double> normal;
        return Qelutils::rotation::normalized({normal(engine_), normal(engine_), normal(engine_), normal(engine_)});
    }
    Qelp::Vector3 point(double limit) {
        auto const number = [&] { return float(real(-limit, limit)); };
        return {number(), number(), number()};
    }
    Qelp::Matrix34 place(double limit = 5) {
        Qelp::Vector3 const at = point(limit);
        return toMatrix(toAffine(fromQuaternion(rotation()), {at.x, at.y, at.z}));
    }
    // With scale, shear and mirroring.
    Qelp::Matrix34 squeezedPlace() {
        Qelp::Matrix34 m = place();
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) m.m[i][j] = m.m[i][j] * float(i + 1) + float(real(-0.3, 0.3));
        return m;
    }

private:
    std::mt19937 engine_{23};
};

inline double angleBetween(Qelutils::rotation::Quaternion const& a, Qelutils::rotation::Quaternion const& b) {
    return toAxisAngle(multiply(normalized(a), conjugate(normalized(b)))).angle;
}

}  // namespace sg
