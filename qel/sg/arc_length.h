// The length of a Bezier curve from its start to any place, and back. Free of the scene.
//
// Method: the curve is cut where its speed has an extremum (the roots of B' . B'', a cubic), so that the speed is
// monotonic in each piece; a cusp becomes the common end of two smooth pieces. A piece over which 10-point Gauss and
// Legendre integration of the speed does not agree with the sum over its halves to 1e-9 of the control polygon is
// halved, until it does or is negligible (adaptive quadrature as in Guenter and Parent, "Computing the arc length of
// parametric curves", IEEE Computer Graphics and Applications 10 (1990), which states the halving).
//
// Inside a piece the length is integrated from the end where the curve is slow. Both factors of the sum, the width and
// each speed, then grow with the distance, so that the result rises with u by construction, not only within a
// tolerance; at both ends of a piece it meets the stored sums. The relative error of the whole is below 1e-8.
#pragma once
#include "qel/sg/path_bezier.h"
#include <vector>

namespace sg {

class ArcLength {
public:
    ArcLength() = default;
    explicit ArcLength(PathBezier const& curve);

    double length() const { return length_; }
    // Between 0 and `length`, from the start of the curve that was measured to u in [0, 1]. Never falls as u grows.
    double at(PathBezier const& curve, double u) const;
    // The u whose length is `distance`, to 1e-10 of the whole; a distance outside is the nearer end.
    double parameter(PathBezier const& curve, double distance) const;

private:
    struct Piece {
        double from, to;  // in u
        double start;     // the length up to `from`
        double length;
        bool rises;  // is it slower at `from` than at `to`?
    };
    using Derivative = PathBezier::Derivative;
    void add(Derivative const& d, double from, double to, double negligible, int depth);
    static double within(Piece const& p, Derivative const& d, double u);
    static double solve(Piece const& p, Derivative const& d, double distance);

    double length_ = 0;
    std::vector<Piece> pieces_;
};

}  // namespace sg
