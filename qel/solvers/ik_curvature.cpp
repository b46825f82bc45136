#include "qel/solvers/ik_curvature.h"

namespace sg::ik {

void Curvature::form(Tasks const& tasks, Skeleton const& skeleton) {
    size_ = std::size_t(tasks.columnCount());
    matrix_.assign(size_ * size_, 0);
    for (Entry const& upper : tasks.entries) {
        std::size_t const task = std::size_t(upper.task);
        if (task >= tasks.effectors.size() || !(tasks.effectors[task].positionWeight > 0)) continue;
        if (tasks.blocks[std::size_t(upper.block)].isTranslation) continue;
        for (std::size_t e = tasks.firstEntry[std::size_t(upper.block)]; e < tasks.entries.size(); ++e)
            if (tasks.entries[e].task == upper.task) add(tasks, skeleton, upper, tasks.entries[e]);
    }
}

// A turn about an axis turns along what the effector does by the turns below it, so that the second derivative of the
// effector's place is axis x (its derivative by the lower turn). Of two turns of one joint, the mean of both orders.
void Curvature::add(Tasks const& tasks, Skeleton const& skeleton, Entry const& upper, Entry const& lower) {
    Block const& block = tasks.blocks[std::size_t(upper.block)];
    Joint const& joint = skeleton.joints[std::size_t(block.joint)];
    double const *r = tasks.residual.data() + upper.firstRow, *j = tasks.jacobian.data() + lower.at;
    bool const isSame = upper.block == lower.block;
    for (int i = 0; i < 3; ++i) {
        Vec3 const arm = cross(Vec3{r[0], r[1], r[2]}, joint.axis(i)) * (block.scale[i] / (isSame ? 2 : 1));
        for (int k = 0; k < 3; ++k) {
            double const bend = arm.x * j[k] + arm.y * j[3 + k] + arm.z * j[6 + k];
            std::size_t const row = 3 * std::size_t(upper.block) + std::size_t(i);
            std::size_t const column = 3 * std::size_t(lower.block) + std::size_t(k);
            at(row, column) += bend;
            at(column, row) += bend;
        }
    }
}

void Curvature::addRound(std::size_t block, Vec3 const& bend) {
    for (int k = 0; k < 3; ++k) at(3 * block + std::size_t(k), 3 * block + std::size_t(k)) += bend[k];
}

void Curvature::close(std::size_t block, Vec3 const& direction) {
    std::size_t const b = 3 * block;
    for (std::size_t c = 0; c < size_; ++c) {
        double const down = at(b, c) * direction.x + at(b + 1, c) * direction.y + at(b + 2, c) * direction.z;
        for (int k = 0; k < 3; ++k) at(b + std::size_t(k), c) -= down * direction[k];
    }
    for (std::size_t r = 0; r < size_; ++r) {
        double const across = at(r, b) * direction.x + at(r, b + 1) * direction.y + at(r, b + 2) * direction.z;
        for (int k = 0; k < 3; ++k) at(r, b + std::size_t(k)) -= across * direction[k];
    }
}

void Curvature::addTo(std::vector<double>& matrix) const {
    for (std::size_t i = 0; i < matrix_.size(); ++i) matrix[i] += matrix_[i];
}

void Curvature::addProduct(std::vector<double> const& x, std::vector<double>& out) const {
    for (std::size_t r = 0; r < size_; ++r)
        for (std::size_t c = 0; c < size_; ++c) out[r] += matrix_[r * size_ + c] * x[c];
}

double Curvature::along(std::vector<double> const& x) const {
    double sum = 0;
    for (std::size_t r = 0; r < size_; ++r)
        for (std::size_t c = 0; c < size_; ++c) sum += x[r] * matrix_[r * size_ + c] * x[c];
    return sum;
}

}  // namespace sg::ik
