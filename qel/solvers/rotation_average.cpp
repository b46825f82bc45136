#include "qel/solvers/rotation_average.h"
#include <algorithm>
#include <cmath>

namespace sg {
namespace {

using Qelutils::rotation::Quaternion;

struct Symmetric {
    double m[4][4];
    double vectors[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};  // in columns

    double offDiagonal() const {
        double sum = 0;
        for (int p = 0; p < 4; ++p)
            for (int q = p + 1; q < 4; ++q) sum += m[p][q] * m[p][q];
        return sum;
    }
    double diagonal() const {
        double sum = 0;
        for (int p = 0; p < 4; ++p) sum += m[p][p] * m[p][p];
        return sum;
    }
    void rotate(int p, int q);
};

void turnPair(double& a, double& b, double c, double s) {
    double const old = a;
    a = c * a - s * b;
    b = s * old + c * b;
}

// Makes m[p][q] zero; Golub and Van Loan, "Matrix Computations", section 8.5.
void Symmetric::rotate(int p, int q) {
    if (m[p][q] == 0) return;
    double const tau = (m[q][q] - m[p][p]) / (2 * m[p][q]);
    double const t = std::copysign(1 / (std::abs(tau) + std::sqrt(1 + tau * tau)), tau);
    double const c = 1 / std::sqrt(1 + t * t), s = t * c;
    for (auto& row : m) turnPair(row[p], row[q], c, s);
    for (int k = 0; k < 4; ++k) turnPair(m[p][k], m[q][k], c, s);
    for (auto& row : vectors) turnPair(row[p], row[q], c, s);
}

// Jacobi's sweeps end after five or so, converging quadratically.
void diagonalize(Symmetric& a) {
    for (int sweep = 0; sweep < 30 && a.offDiagonal() > 1e-32 * a.diagonal(); ++sweep)
        for (int p = 0; p < 4; ++p)
            for (int q = p + 1; q < 4; ++q) a.rotate(p, q);
}

}  // namespace

void RotationAverage::add(Quaternion const& rotation, double weight) {
    if (!(weight > 0)) return;
    Quaternion const unit = normalized(rotation);
    double const q[4] = {unit.x, unit.y, unit.z, unit.w};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) sum_[i][j] += weight * q[i] * q[j];
    only_ = unit;
    ++count_;
}

Quaternion RotationAverage::get() const {
    if (count_ < 2) return only_;
    // Against the trace, which is the sum of the weights, so that no size of them is too large or too small.
    double const trace = sum_[0][0] + sum_[1][1] + sum_[2][2] + sum_[3][3];
    Symmetric a;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) a.m[i][j] = sum_[i][j] / trace;
    diagonalize(a);
    int largest = 0;
    for (int k = 1; k < 4; ++k)
        if (a.m[k][k] > a.m[largest][largest]) largest = k;
    auto const& v = a.vectors;
    return Qelutils::rotation::normalized({v[0][largest], v[1][largest], v[2][largest], v[3][largest]});
}

}  // namespace sg
