#include "qel/sg/arc_length.h"
#include "qel/sg/polynomial_roots.h"

namespace sg {
namespace {

constexpr double tolerance = 1e-9;  // of the control polygon, for each piece
constexpr int mostHalvings = 48;

// The 10-point rule (Abramowitz and Stegun, Handbook of Mathematical Functions, table 25.4).
constexpr int half = 5;
constexpr double places[2 * half] = {
    0.14887433898163122,  0.43339539412924716,  0.6794095682990244,  0.8650633666889845,  0.9739065285171716,
    -0.14887433898163122, -0.43339539412924716, -0.6794095682990244, -0.8650633666889845, -0.9739065285171716};
constexpr double weights[half] = {0.2955242247147529, 0.26926671930999624, 0.21908636251598218, 0.14945134915058053,
                                  0.06667134430868774};

// In two loops, of which the first has no order and is done two places at a time.
double integrate(PathBezier::Derivative const& d, double from, double to) {
    double const middle = 0.5 * (from + to), reach = 0.5 * (to - from);
    double speeds[2 * half];
    for (int i = 0; i < 2 * half; ++i) speeds[i] = d.speed(middle + reach * places[i]);
    double sum = 0;
    for (int i = 0; i < half; ++i) sum += weights[i] * (speeds[i] + speeds[i + half]);
    return sum * reach;
}

}  // namespace

ArcLength::ArcLength(PathBezier const& curve) {
    double const polygon = curve.polygonLength();
    if (!(polygon > 0)) return;
    Derivative const d = curve.derivative();
    // Half the derivative of the squared speed.
    double const turning[] = {d.a.dot(d.b), d.b.dot(d.b) + 2 * d.a.dot(d.c), 3 * d.b.dot(d.c), 2 * d.c.dot(d.c)};
    double cuts[3];
    int const count = findSignChanges(turning, cuts);
    pieces_.reserve(std::size_t(count) + 1);
    double from = 0;
    for (int i = 0; i <= count; ++i) {
        double const to = i < count ? cuts[i] : 1;
        if (to > from) add(d, from, to, tolerance * polygon, mostHalvings);
        from = to;
    }
}

void ArcLength::add(Derivative const& d, double from, double to, double negligible, int depth) {
    double const middle = 0.5 * (from + to);
    double const whole = integrate(d, from, to);
    bool const isDone = depth == 0 || whole <= negligible ||
                        std::abs(integrate(d, from, middle) + integrate(d, middle, to) - whole) <= negligible;
    if (!isDone) {
        add(d, from, middle, negligible, depth - 1);
        return add(d, middle, to, negligible, depth - 1);
    }
    pieces_.push_back({from, to, length_, whole, d.speed(from) <= d.speed(to)});
    length_ += whole;
}

double ArcLength::within(Piece const& p, Derivative const& d, double u) {
    if (p.rises) return std::min(integrate(d, p.from, u), p.length);
    return std::max(p.length - integrate(d, u, p.to), 0.0);
}

double ArcLength::at(PathBezier const& curve, double u) const {
    if (!(u > 0) || pieces_.empty()) return 0;
    if (u >= 1) return length_;
    auto p = pieces_.begin();
    while (p->to < u) ++p;
    return p->start + within(*p, curve.derivative(), u);
}

double ArcLength::parameter(PathBezier const& curve, double distance) const {
    if (!(distance > 0) || pieces_.empty()) return 0;
    if (distance >= length_) return 1;
    auto p = pieces_.begin();
    while (p + 1 != pieces_.end() && (p + 1)->start < distance) ++p;
    return solve(*p, curve.derivative(), std::min(distance - p->start, p->length));
}

// Newton's method inside the piece. It starts where the speed, were it a line between those at the ends, would have
// covered the distance, and has little left to do. As the speed is monotonic the length is convex or concave, so that
// after the first step all others come from one side.
double ArcLength::solve(Piece const& p, Derivative const& d, double distance) {
    double const width = p.to - p.from, v0 = d.speed(p.from), v1 = d.speed(p.to);
    if (!(v0 + v1 > 0)) return p.from;
    double const scale = 2 * p.length / ((v0 + v1) * width);  // so that the line's whole distance is the piece's
    double const target = distance / (scale * width);
    double u = p.from + width * 2 * target / (v0 + std::sqrt(std::max(0.0, v0 * v0 + 2 * (v1 - v0) * target)));
    for (int step = 0; step < 50; ++step) {
        u = std::clamp(u, p.from, p.to);
        double const error = within(p, d, u) - distance, speed = d.speed(u);
        if (error == 0 || !(speed > 0)) break;
        u -= error / speed;
        if (std::abs(error) <= 1e-8 * p.length) break;  // what remains is far smaller yet
    }
    return std::clamp(u, p.from, p.to);
}

}  // namespace sg
