#include "qel/sg/polynomial_roots.h"
#include <cmath>

namespace sg {
namespace {

struct Value {
    double value, slope;
};

Value evaluate(std::span<double const> c, double u) {
    Value v{0, 0};
    for (std::size_t i = c.size(); i-- > 0;) v = {v.value * u + c[i], v.slope * u + v.value};
    return v;
}

// The root between two places of different sign. Where Newton's step leaves the bracket, or narrows it too little, the
// bracket is halved.
double refine(std::span<double const> c, double low, double high, bool isLowNegative) {
    double u = 0.5 * (low + high), width = high - low;
    for (int step = 0; step < 100 && high - low > 1e-16; ++step) {
        Value const v = evaluate(c, u);
        if (v.value == 0) return u;
        ((v.value < 0) == isLowNegative ? low : high) = u;
        double const next = u - v.value / v.slope;
        bool const isSlow = step % 3 == 2 && high - low > 0.25 * width;
        if (isSlow) width = high - low;
        double const moved = !isSlow && next > low && next < high ? next : 0.5 * (low + high);
        if (moved == u) return u;
        if (std::abs(moved - u) < 1e-16) return moved;
        u = moved;
    }
    return u;
}

}  // namespace

int findSignChanges(std::span<double const> c, double* roots) {
    if (c.size() < 2 || c.size() > std::size_t(mostPolynomialDegree) + 1) return 0;
    double slope[mostPolynomialDegree], turns[mostPolynomialDegree];
    for (std::size_t i = 1; i < c.size(); ++i) slope[i - 1] = double(i) * c[i];
    int const turnCount = c.size() > 2 ? findSignChanges({slope, c.size() - 1}, turns) : 0;
    int count = 0;
    double from = 0, value = evaluate(c, 0).value;
    for (int i = 0; i <= turnCount; ++i) {
        double const to = i < turnCount ? turns[i] : 1, end = evaluate(c, to).value;
        if ((value < 0 && end > 0) || (value > 0 && end < 0)) roots[count++] = refine(c, from, to, value < 0);
        from = to;
        if (end != 0) value = end;
    }
    return count;
}

}  // namespace sg
