#include "qel/sg/joint_limit_node.h"
#include "qel/sg/raw_values.h"
#include "qel/utils/rotation.h"

namespace sg {

void JointLimitNode::compute(std::uint64_t todo) {
    TransformNode::compute(todo);
    if (todo & movingOffsetBit)
        Qelutils::eulerToMatrix(readVector(*this, MovingOffset), at<db::EnumAttribute>(RotationEulerOrder).raw(),
                                at<db::Matrix34Attribute>(MovingOffsetMatrix).raw());
}

JointLimit JointLimitNode::getLimit() const {
    auto const matrix = [this](int row) { return rotationOfFrame(at<db::Matrix34Attribute>(row).getValue()); };
    auto const flag = [this](int row) { return at<db::BoolAttribute>(row).getValue(); };
    auto const real = [this](int row) { return double(at<db::FloatAttribute>(row).getValue()); };
    JointLimit limit;
    limit.type = at<db::EnumAttribute>(LimitType).getValue();
    limit.fixedFrame = matrix(LocalMatrix);
    limit.movingOffset = matrix(MovingOffsetMatrix);
    limit.swing1Active = flag(Swing1Active), limit.swing1Angle = real(Swing1Angle);
    limit.swing2Active = flag(Swing2Active), limit.swing2Angle = real(Swing2Angle);
    limit.twistActive = flag(TwistActive), limit.twistAngle = real(TwistAngle), limit.twistOffset = real(TwistOffset);
    limit.softSwingActive = flag(SoftSwingActive), limit.softTwistActive = flag(SoftTwistActive);
    limit.softSwing1Ratio = real(SoftSwing1Ratio), limit.softSwing2Ratio = real(SoftSwing2Ratio);
    limit.softTwistRatio = real(SoftTwistRatio);
    return limit;
}

JointLimitAngles JointLimitNode::getAngles() const {
    return measureJointRotation(getLimit(), rotationOfFrame(at<db::Matrix34Attribute>(JointLocalMatrix).getValue()));
}

JointLimit readJointLimit(db::CompositeAttribute const& parameters, std::size_t first) {
    auto const at = [&](std::size_t i) { return parameters.getAttribute(first + i); };
    JointLimit limit;
    limit.type = at(0)->asEnum()->raw();
    limit.fixedFrame = rotationOfFrame(at(1)->asMatrix34()->raw());
    limit.movingOffset = rotationOfFrame(at(2)->asMatrix34()->raw());
    limit.swing1Active = at(3)->asBool()->raw(), limit.swing1Angle = at(4)->asFloat()->raw();
    limit.swing2Active = at(5)->asBool()->raw(), limit.swing2Angle = at(6)->asFloat()->raw();
    limit.twistActive = at(7)->asBool()->raw(), limit.twistAngle = at(8)->asFloat()->raw();
    limit.twistOffset = at(9)->asFloat()->raw();
    return limit;
}

}  // namespace sg
