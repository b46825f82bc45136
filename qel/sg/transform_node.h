// Nodes with a place in space: what is drawn, and what has a local and a world matrix.
#pragma once
#include "qel/sg/node.h"
#include "qel/sg/transform_evaluation.h"

namespace sg {

class RenderableNode : public Node {
public:
    static inline std::wstring const ClassID = L"Renderable";
    static db::NodeDef const Def;
    enum Number : int { Visible = 8, Colour = 9, ShowHierarchy = 10 };
    explicit RenderableNode(db::NodeDef const& def) : Node(def) {}

protected:
    RenderableNode(db::NodeDef const& def, Input* room, std::size_t count) : Node(def, room, count) {}
};

// World is local times the parent's world. The parent's world matrix comes from the primary parent by itself, without a
// connection that anyone sees; below anything that has no world matrix it is the identity.
class TransformBaseNode : public RenderableNode {
public:
    static inline std::wstring const ClassID = L"TransformBase";
    static db::NodeDef const Def;
    enum Number : int { Prepared = 16, ParentWorldMatrix = 17, LocalMatrix = 18, WorldMatrix = 19 };
    // The last two: what a type of its own makes of its world matrix, and of its Euler order, if it does.
    static constexpr std::uint32_t localBit = 1, worldBit = 2, preparedBit = 4, aboveWorldBit = 8, ofOrderBit = 1 << 10;

    explicit TransformBaseNode(db::NodeDef const& def) : RenderableNode(def, inputRoom_, std::size(inputRoom_)) {}
    void compute(std::uint64_t todo) override;
    void onPlaceChanged(bool linked) override;
    // Not where this world matrix depends on that of the child: evaluation could never end.
    bool canBeParentOf(db::Node const& child) const override;

protected:
    virtual void prepare() {}  // `preparedBit`: what seldom changes
    virtual void computeLocal(Qelp::Matrix34& /*local*/) {}

private:
    alignas(64) Input inputRoom_[8];
};

// The local matrix from translation, rotation and scale, with pivots and pre and post rotation. What seldom moves is
// kept prepared, so that a frame of an animated joint touches its six channels and its matrices.
class TransformNode : public TransformBaseNode {
public:
    static inline std::wstring const ClassID = L"Transform";
    static db::NodeDef const Def;
    enum Number : int {
        DataSource = 20,
        Translation = 21,
        Rotation = 24,
        Scale = 27,
        ScalePivot = 30,
        ScalePivotTranslation = 33,
        PreTranslation = 36,
        PreRotation = 39,
        PostRotation = 42,
        RotationQuaternion = 45,
        RotationInterpolation = 46,
        RotationEulerOrder = 47,
        LocalMatrixInput = 48,
    };
    explicit TransformNode(db::NodeDef const& def = Def) : TransformBaseNode(def) {}

    // What the local matrix is made of, up to date.
    TransformInputs getInputs();

protected:
    void prepare() override;
    void computeLocal(Qelp::Matrix34& local) override;

private:
    void readChannels(TransformInputs& in) const;
    void readRest(TransformInputs& in) const;
    float real(int row) const { return at<db::FloatAttribute>(row).raw(); }

    TransformInputs rest_;  // all but translation and rotation
};

}  // namespace sg
