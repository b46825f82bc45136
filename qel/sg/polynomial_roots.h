// Real roots of a polynomial between 0 and 1, for questions about one segment of a path.
#pragma once
#include <span>

namespace sg {

inline constexpr int mostPolynomialDegree = 8;

// The places in (0, 1) where the polynomial changes its sign, rising; `coefficients[i]` belongs to u^i. Their number,
// at most the degree. Roots that it only touches, and the ends, are left out: no extremum of an integral lies there
// that the caller's ends do not cover. Each is found to the last places of a double. `roots` has room for the degree.
//
// Between two neighbouring turning points a polynomial is monotonic and has one root at most; the turning points are
// the roots of its derivative, down to a line. Each root is then found by Newton's method inside a bracket.
int findSignChanges(std::span<double const> coefficients, double* roots);

}  // namespace sg
