// What the effectors want, as residuals, and how these change when joints turn, as a sparse Jacobian.
//
// An effector gives three rows for its position, in lengths of the body, and three for its orientation, in radians: the
// rotation vector that is left to turn, negated. A pole gives one: the angle about the limb's axis between the planes
// through the reference and through the control. Rows are multiplied by the roots of their weights.
//
// A block is three unknowns: the turn of a joint about its own axes, or the root's translation. Unknowns are scaled, a
// larger scale means that the joint moves more readily. A task depends on the blocks on the way up from its joint, and
// on no others: an entry is that pair.
#pragma once
#include "qel/solvers/ik_skeleton.h"

namespace sg::ik {

struct Effector {
    int joint;
    Vec3 position;
    Mat3 axes;
    double positionWeight, orientationWeight;  // 0: no rows
    bool isSoft;                               // left aside where it would cost the others their accuracy
};

struct Pole {
    int joint, effector;  // joints: where the limb begins and ends
    Vec3 control;         // world
    Vec3 reference;       // in the joint's space, unscaled: it rides with the joint
    double weight;
    double
        certainty;  // filled by Tasks: less than 1 where a pole begins close to the line, where its angle says little
};

struct Block {
    int joint;
    bool isTranslation;
    Vec3 scale;
};

struct Entry {
    int task, block;
    int rows;        // of the task
    int firstRow;    // of the task in the system
    std::size_t at;  // of its rows * 3 numbers
};

class Tasks {
public:
    std::vector<Effector> effectors;
    std::vector<Pole> poles;
    std::vector<Block> blocks;

    std::vector<double> residual;
    std::vector<double> jacobian;         // of the entries, scaled
    std::vector<Entry> entries;           // block by block
    std::vector<std::size_t> firstEntry;  // of each block, and the end
    double cost = 0;                      // half the squared length of the residual
    double positionError = 0;             // the largest of an effector that is not soft, metres
    double orientationError = 0;          // radians
    double softPositionError = 0, softOrientationError = 0;
    double poleError = 0;  // radians

    // After effectors, poles and blocks are filled. `size` is the length that counts as much as a radian.
    void setUp(Skeleton const& skeleton, double size);
    void setSoftness(double weight);  // 1: what is soft pulls by its own weight, 0: not at all
    bool isAnySoft() const;
    void evaluate(Skeleton const& skeleton);
    void linearise(Skeleton const& skeleton);
    int rowCount() const { return int(residual.size()); }
    int columnCount() const { return 3 * int(blocks.size()); }

private:
    struct Task {
        int joint, rows, firstRow;
        int path, pathEnd;  // in path_
    };
    struct Step {  // of a path: a block, and the place of its numbers
        int block;
        std::size_t at;
    };
    void weighPole(Skeleton const& skeleton, Pole& pole);
    void addTask(Skeleton const& skeleton, int joint, int rows);
    void collectEntries();
    void lineariseEffector(Skeleton const& skeleton, Effector const& e, Task const& task);
    void linearisePole(Skeleton const& skeleton, Pole const& pole, Task const& task);
    void evaluateEffector(Skeleton const& skeleton, Effector const& e, double* rows);
    double evaluatePole(Skeleton const& skeleton, Pole const& pole);
    double softened(double weight, bool soft) const { return std::sqrt(soft ? weight * softness_ : weight); }

    std::vector<Task> tasks_;
    std::vector<Step> path_;
    std::vector<int> blockOf_;  // the block that turns a joint; -1
    double size_ = 1, softness_ = 1;
};

}  // namespace sg::ik
