// A matrix that flows through the graph, turned back into what drives a transform's attributes: connect a matrix to the
// input, the transform's pre values to those of the same names, and the outputs to the transform. The splitting is that
// of matrix_split.h; a number that is not finite counts as 0 here, so that a broken input never spreads.
//
// Translation and rotation are computed apart: who reads one does not pay for the other.
#pragma once
#include "qel/sg/node.h"

namespace sg {

class MatrixConversionNode final : public Node {
public:
    static inline std::wstring const ClassID = L"MatrixConversion";
    static db::NodeDef const Def;
    enum Number : int {
        InputMatrix = 8,
        PreTranslation = 9,
        PreRotation = 12,
        PostRotation = 15,
        Translation = 18,
        Rotation = 21,
        RotationQuaternion = 24,
    };
    static constexpr std::uint32_t translationBit = 1, rotationBit = 2;

    explicit MatrixConversionNode(db::NodeDef const& def = Def) : Node(def) {}
    void compute(std::uint64_t todo) override;

private:
    Qelp::Matrix34 readMatrix() const;
    void computeTranslation();
    void computeRotation();
};

}  // namespace sg
