// Nodes with a place in space: what is drawn, and what has a local and a world matrix.
#pragma once
#include "qel/sg/node.h"
#include "qel/sg/transform_evaluation.h"

namespace sg {

class RenderableNode : public Node {
public:
    static inline std::wstring const ClassID = L"Renderable";
    static db::NodeDef const Def;
    explicit RenderableNode(db::NodeDef const& def) : Node(def) {}

protected:
    using Node::Node;
    RenderableNode(db::NodeDef const& def, Input* room, std::size_t count) : Node(def, room, count) {}
};

// World is local times the parent's world. The parent's world matrix comes from the primary parent by itself: from the
// nearest place in the hierarchy, without a connection that anyone sees.
class TransformBaseNode : public RenderableNode {
public:
    static inline std::wstring const ClassID = L"TransformBase";
    static db::NodeDef const Def;
    enum Number : int { ParentWorldMatrix = 17, LocalMatrix = 18, WorldMatrix = 19 };
    static constexpr std::uint32_t localBit = 1, worldBit = 2, matrixBits = 3;

    explicit TransformBaseNode(db::NodeDef const& def) : RenderableNode(def, inputRoom_, std::size(inputRoom_)) {}
    void compute(std::uint64_t todo) override;
    void onPlaceChanged(bool linked) override;

protected:
    virtual void computeLocal(Qelp::Matrix34& local);

private:
    alignas(64) Input inputRoom_[8];
};

class TransformNode : public TransformBaseNode {
public:
    static inline std::wstring const ClassID = L"Transform";
    static db::NodeDef const Def;
    enum Number : int {
        DataSource = 20, Translation = 21, Rotation = 24, Scale = 27, ScalePivot = 30, ScalePivotTranslation = 33,
        PreTranslation = 36, PreRotation = 39, PostRotation = 42, RotationQuaternion = 45, RotationInterpolation = 46,
        RotationEulerOrder = 47, LocalMatrixInput = 48,
    };
    explicit TransformNode(db::NodeDef const& def = Def) : TransformBaseNode(def) {}

    // What the local matrix is made of, up to date.
    TransformInputs getInputs();

protected:
    void computeLocal(Qelp::Matrix34& local) override;

private:
    void readInputs(TransformInputs& in) const;
};

}  // namespace sg
