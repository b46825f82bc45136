#include "qel/sg/constraint_nodes.h"
#include "qel/sg/raw_values.h"
#include "qel/solvers/aim.h"

namespace sg {

void readTargets(db::AttributeArray const& array, std::vector<BlendTarget>& out) {
    using C = KinematicsConstraintNode;
    out.resize(array.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        db::CompositeAttribute const& target = *array.getElement(i)->asComposite();
        out[i] = {target.getAttribute(C::TargetMatrix)->asMatrix34()->raw(),
                  target.getAttribute(C::TargetOffset)->asMatrix34()->raw(),
                  double(target.getAttribute(C::TargetWeight)->asFloat()->raw())};
    }
}

void KinematicsConstraintNode::compute(std::uint64_t) {
    readTargets(at<db::AttributeArray>(InputMatrices), blend_.targets);
    blend_.parentWorld = at<db::Matrix34Attribute>(ParentWorldIn).raw();
    blend_.normalizeWeights = at<db::BoolAttribute>(NormalizeWeights).raw();
    blend_.Run();
    writeVector(*this, LocalTranslationOut, blend_.translation);
    writeVector(*this, LocalRotationOut, blend_.rotation);
    at<db::Matrix34Attribute>(LocalMatrix).raw() = blend_.local;
}

void AimConstraintNode::compute(std::uint64_t) {
    Aim aim;
    aim.targetWorld = at<db::Matrix34Attribute>(WorldIn).raw();
    aim.upWorld = at<db::Matrix34Attribute>(UpVectorIn).raw();
    aim.parentWorld = at<db::Matrix34Attribute>(ParentWorldIn).raw();
    aim.place = readVector(*this, LocalTranslationIn);
    aim.Run();
    writeVector(*this, LocalEulerOut, aim.rotation);
}

}  // namespace sg
