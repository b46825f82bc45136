// XJoint: the transform that makes up a skeleton.
#pragma once
#include "tavo/kinematics/transform.h"

namespace Tavo {

class XJointLimit;

class XJoint : public XTyped<XJoint, XTransform, sg::JointNode> {
public:
    static constexpr XWord TypeID = L"Joint", DefaultName = L"joint";
    static constexpr float DefaultBoneRadius = 0.008f, DefaultLocatorRadius = 0.015f;  // metres
    static constexpr int DefaultBoneDisplayStyle = 0, DefaultAxesDisplayStyle = 0, DefaultLocatorDisplayStyle = 2;
    static constexpr XColour DefaultBoneColour{0.3f, 0.3f, 0.7f, 1};
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(BoneRadius, 51)
    TAVO_ATTRIBUTE(LocatorRadius, 52)
    TAVO_ATTRIBUTE(BoneStyle, 53)     // 0 "Wireframe", 1 "Solid", 2 "Hidden"
    TAVO_ATTRIBUTE(LocatorStyle, 54)  // 0 "Solid", 1 "Wireframe", 2 "WireframeAxes"
    TAVO_ATTRIBUTE(AxesStyle, 55)     // 0 "ShowSelected", 1 "Show", 2 "Hide"
    TAVO_ATTRIBUTE(Tags, 56)
    TAVO_ATTRIBUTE(JointLimitReference, 57)

    // Child joints are objects of exactly the type "Joint"; a derived type does not count.
    XJoint ParentJoint() const { return XJoint(Parent()); }
    void ChildJoints(Qelutils::Vector<XObject>& out) const { ChildObjects(out, TypeID, IsObjectType); }
    int ChildJointCount() const;
    // The first joint of a character is none of the other two; every other joint is one of them.
    bool IsCharacterRootJoint() const;
    bool IsTerminatingJoint() const;  // without child joints
    bool IsIntermediateJoint() const;

    // ---- the limit: at most one, beside the joint ----
    XJointLimit JointLimit() const;  // invalid without one
    bool HasJointLimit() const;
    // A new limit where the joint is, below the joint's parent, that follows the joint's translation and points its X
    // axis at the first child. Invalid for a joint that has one already, and for an object of a derived type.
    XJointLimit CreateJointLimit();
    // Makes `limit` the limit of this joint instead of any other; its moving frame keeps its place in the world, as
    // long as the limit's Euler order is "XYZ". An invalid limit only takes the old one away. Gives `limit` back.
    XJointLimit& AssignJointLimit(XJointLimit& limit);
    XJoint& ClearJointLimit();   // lets go of it; the object stays
    XJoint& DeleteJointLimit();  // with the object

    void onDelete() override;  // its limit goes with it
    void onInitialize() override;
};
using XJointDef = XTypedDef<XJoint>;

}  // namespace Tavo
