// The small nodes of rigs. Evaluation stays pure and free of cycles: an attribute reference is never followed while the
// graph computes. What writes through one is an edit, made when it is asked for, recorded and undone like any other.
#pragma once
#include "qel/sg/transform_node.h"
#include "qel/solvers/target_blend.h"

namespace sg {

// Where a chain is to bend. All that a solver has to know comes along one matrix: row 3 is the pole's place in the
// space whose world matrix is given; rows 0 to 2 are its axes times its weight (in [0, 1], 0 if it is not enabled), so
// that the length of row 0 is the weight. Joint and effector are named for those who edit; the place does not depend on
// them.
class PoleVectorNode final : public TransformNode {
public:
    static inline std::wstring const ClassID = L"PoleVector";
    static db::NodeDef const Def;
    enum Number : int {
        ControlJoint = 51,
        EndEffector = 52,
        Enabled = 53,
        Weight = 54,
        PoleVector = 55,
        SpaceWorldMatrix = 56,
    };

    explicit PoleVectorNode(db::NodeDef const& def = Def) : TransformNode(def) {}
    void compute(std::uint64_t todo) override;

private:
    Qelp::Matrix34 poleVector() const;
    double weight() const;
};

// Holds a transform at a target. While it is not pinned the target follows, normally along a connection from the
// transform's own world matrix; pinning cuts the connection, so that the target stays as it was last.
//
// The output is where the target is in the transform's parent: who drives the transform by other means, such as a
// solver, reads it. A transform that stands free is put there by `hold`, through the references to its channels.
class PinNode final : public Node {
public:
    static inline std::wstring const ClassID = L"Pin";
    static db::NodeDef const Def;
    enum Number : int {
        InputMatrices = 8,
        ParentWorldIn = 9,
        TranslationReference = 10,
        RotationReference = 13,
        LocalMatrixReference = 16,
        WorldMatrixReference = 17,
        Pinned = 19,
        LocalMatrix = 20,
    };
    static constexpr std::uint32_t placeBit = 1;

    explicit PinNode(db::NodeDef const& def = Def) : Node(def) {}
    void compute(std::uint64_t todo) override;

    // Edits. Pinned, the targets keep their places; released, the first follows the referenced world matrix again.
    void setPinned(bool pinned);
    // Writes the referenced channels so that the transform stands at its target, by the share that the weights add up
    // to, at most 1; what they leave is its present place. Channels that are connected are left alone. The rotation is
    // written as Euler angles of the transform's order. Nothing happens unless it is pinned: false.
    bool hold();

private:
    db::Attribute* reference(int number) const { return at<db::PointerAttribute>(number).getValue(); }
    double share() const;
    Qelp::Matrix34 heldPlace(double share) const;
    void writeChannel(int number, float value);
    TargetBlend blend_;  // kept for its memory
};

class NotNode final : public Node {
public:
    static inline std::wstring const ClassID = L"Not";
    static db::NodeDef const Def;
    enum Number : int { Output = 6, Input = 7 };
    static constexpr std::uint32_t outputBit = 1;

    explicit NotNode(db::NodeDef const& def = Def) : Node(def) {}
    void compute(std::uint64_t) override { at<db::BoolAttribute>(Output).raw() = !at<db::BoolAttribute>(Input).raw(); }
};

// Takes a pose over. A solver starts from matrices of its own, and what it solves drives the joints they are those of:
// connected back, they would close a cycle, and each evaluation would start from the one before. So the joint's matrix
// flows in here and stops; `copy` writes it to the referenced matrix, as an edit.
class CopyMatrixNode final : public Node {
public:
    static inline std::wstring const ClassID = L"CopyMatrix";
    static db::NodeDef const Def;
    enum Number : int { Input = 8, OutputReference = 9 };

    explicit CopyMatrixNode(db::NodeDef const& def = Def) : Node(def) {}
    // False, and nothing changed, if the reference names no matrix, or one that takes its value from elsewhere.
    bool copy() { return write(at<db::Matrix34Attribute>(Input).getValue()); }

private:
    friend std::size_t copyMatrices(Node const& parent);
    bool write(Qelp::Matrix34 const& value);
};

// Copies for all the node's children that copy a matrix: all are read before the first is written, as what is written
// may move what is read. The number of those that did copy.
std::size_t copyMatrices(Node const& parent);

}  // namespace sg
