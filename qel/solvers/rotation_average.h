// The average of rotations: the one whose squared distances from all, weighted, add up to least, where the distance is
// that of the rotation matrices (Frobenius). The sign of a quaternion does not count, nor the order of the rotations.
// Markley, Cheng, Crassidis and Oshman, "Averaging quaternions", Journal of Guidance, Control, and Dynamics 30 (2007):
// the eigenvector of the largest eigenvalue of the sum of w q q^T.
#pragma once
#include "qel/utils/rotation_core.h"

namespace sg {

class RotationAverage {
public:
    // Weights are 0 or more and finite; any quaternion without direction is the identity.
    void add(Qelutils::rotation::Quaternion const& rotation, double weight);
    // Unit length, w >= 0. Without any weight it is the identity. Where several are equally good, such as between two
    // of one weight that are half a turn apart, it is one of them, always the same.
    Qelutils::rotation::Quaternion get() const;

private:
    double sum_[4][4] = {};
    Qelutils::rotation::Quaternion only_;  // while there is one: it comes back as it is
    int count_ = 0;
};

}  // namespace sg
