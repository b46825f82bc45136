#include "qel/solvers/ik_linear.h"
#include <algorithm>

namespace sg::ik {

void addProduct(Tasks const& tasks, std::vector<double> const& x, std::vector<double>& out) {
    for (Entry const& e : tasks.entries) {
        double const* j = tasks.jacobian.data() + e.at;
        double const* v = x.data() + 3 * e.block;
        double* o = out.data() + e.firstRow;
        for (int r = 0; r < e.rows; ++r, j += 3) o[r] += j[0] * v[0] + j[1] * v[1] + j[2] * v[2];
    }
}

void addTransposed(Tasks const& tasks, std::vector<double> const& x, std::vector<double>& out) {
    for (Entry const& e : tasks.entries) {
        double const* j = tasks.jacobian.data() + e.at;
        double const* v = x.data() + e.firstRow;
        double* o = out.data() + 3 * e.block;
        for (int r = 0; r < e.rows; ++r, j += 3)
            for (int k = 0; k < 3; ++k) o[k] += j[k] * v[r];
    }
}

void LinearStep::setUp(Tasks const& tasks) {
    makeRoom(tasks, tasks.rowCount() <= tasks.columnCount());
    entriesOfTask_.assign(tasks.effectors.size() + tasks.poles.size(), {});
    for (std::size_t e = 0; e < tasks.entries.size(); ++e)
        entriesOfTask_[std::size_t(tasks.entries[e].task)].push_back(e);
}

void LinearStep::makeRoom(Tasks const& tasks, bool byTasks) {
    byTasks_ = byTasks;
    size_ = std::size_t(byTasks_ ? tasks.rowCount() : tasks.columnCount());
    matrix_.assign(size_ * size_, 0);
    factor_.resize(size_ * size_);
}

void LinearStep::form(Tasks const& tasks, Curvature const* curvature) {
    isCurved_ = curvature;
    makeRoom(tasks, !isCurved_ && tasks.rowCount() <= tasks.columnCount());
    byTasks_ ? formByTasks(tasks) : formByUnknowns(tasks);
    largest_ = 0;
    for (std::size_t i = 0; i < size_; ++i) largest_ = std::max(largest_, matrix_[i * size_ + i]);
    if (isCurved_) curvature->addTo(matrix_);
}

// Tasks share the blocks above the joint where their ways part. Entries of a block stand in the order of their tasks,
// so the first of a pair has the higher rows when the second runs up to it.
void LinearStep::formByTasks(Tasks const& tasks) {
    for (std::size_t b = 0; b < tasks.blocks.size(); ++b)
        for (std::size_t p = tasks.firstEntry[b]; p < tasks.firstEntry[b + 1]; ++p)
            for (std::size_t q = tasks.firstEntry[b]; q <= p; ++q) {
                Entry const &e = tasks.entries[p], &f = tasks.entries[q];
                double const* x = tasks.jacobian.data() + e.at;
                for (int i = 0; i < e.rows; ++i, x += 3) {
                    double* row = matrix_.data() + std::size_t(e.firstRow + i) * size_ + std::size_t(f.firstRow);
                    double const* y = tasks.jacobian.data() + f.at;
                    for (int j = 0; j < f.rows; ++j, y += 3) row[j] += x[0] * y[0] + x[1] * y[1] + x[2] * y[2];
                }
            }
}

void LinearStep::formByUnknowns(Tasks const& tasks) {
    for (std::vector<std::size_t> const& entries : entriesOfTask_)
        for (std::size_t p : entries)
            for (std::size_t q : entries) {
                Entry const &e = tasks.entries[p], &f = tasks.entries[q];
                if (f.block > e.block) continue;
                double const *x = tasks.jacobian.data() + e.at, *y = tasks.jacobian.data() + f.at;
                for (int r = 0; r < e.rows; ++r, x += 3, y += 3)
                    for (int i = 0; i < 3; ++i) {
                        double* row = matrix_.data() + std::size_t(3 * e.block + i) * size_ + std::size_t(3 * f.block);
                        for (int j = 0; j < 3; ++j) row[j] += x[i] * y[j];
                    }
            }
}

bool LinearStep::solve(Tasks const& tasks, std::vector<double> const& residual, double damping,
                       std::vector<double> const& pull, std::vector<double>& step) {
    if (!factor(damping)) return false;
    if (byTasks_) {
        right_ = residual;
        addProduct(tasks, pull, right_);
        substitute(right_);
        for (double& v : right_) v = -v;
        step = pull;
        addTransposed(tasks, right_, step);
    } else {
        step.assign(std::size_t(tasks.columnCount()), 0);
        addTransposed(tasks, residual, step);
        for (std::size_t i = 0; i < step.size(); ++i) step[i] = damping * pull[i] - step[i];
        substitute(step);
    }
    return true;
}

// Without curvature a pivot cannot vanish but by rounding; the floor keeps a system of huge contrasts finite.
bool LinearStep::factor(double damping) {
    double const floor = 1e-15 * (largest_ + damping);
    for (std::size_t i = 0; i < size_; ++i) {
        double* row = factor_.data() + i * size_;
        double const* from = matrix_.data() + i * size_;
        for (std::size_t j = 0; j < i; ++j) {
            double const* other = factor_.data() + j * size_;
            double sum = from[j];
            for (std::size_t k = 0; k < j; ++k) sum -= row[k] * other[k];
            row[j] = sum * other[j];
        }
        double sum = from[i] + damping;
        for (std::size_t k = 0; k < i; ++k) sum -= row[k] * row[k];
        if (isCurved_ && !(sum > floor)) return false;
        row[i] = 1 / std::sqrt(std::max(sum, floor));  // the inverse: only divisions by it follow
    }
    return true;
}

void LinearStep::substitute(std::vector<double>& b) const {
    for (std::size_t i = 0; i < size_; ++i) {
        double const* row = factor_.data() + i * size_;
        for (std::size_t k = 0; k < i; ++k) b[i] -= row[k] * b[k];
        b[i] *= row[i];
    }
    for (std::size_t i = size_; i-- > 0;) {
        b[i] *= factor_[i * size_ + i];
        double const* row = factor_.data() + i * size_;
        for (std::size_t k = 0; k < i; ++k) b[k] -= row[k] * b[i];
    }
}

}  // namespace sg::ik
