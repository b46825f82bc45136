#include "tavo/kinematics/rig_parts.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/kinematics/wiring.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"

namespace Tavo {
namespace {

bool connectQuietly(XAttribute const& source, XAttribute const& target) {
    sg::Scene* const graph = target.Object().Database().SceneGraph();
    return graph && graph->connect(source.getAttribute(), target.getAttribute(), true, true) <= sg::Connected;
}

void takeAnglesXYZ(XTransform joint) {
    if (joint.TransformDataSource().Enumeration() == XTransform::EulerSource &&
        joint.RotationEulerOrder().Enumeration() == 0)
        return;
    XMatrix const pose = joint.LocalMatrix().Matrix();
    joint.TransformDataSource().SetEnumeration(XTransform::EulerSource);
    joint.RotationEulerOrder().SetEnumeration(0);
    joint.SetLocalMatrix(pose);
}

}  // namespace

// ---- lists ----

XObjectList::XObjectList(Qelutils::Vector<XObject> const& objects) {
    for (XObject const& object : objects) add(object);
}

bool XObjectList::add(XObject const& object) {
    if (!_places.emplace(object.ObjectID(), size()).second) return false;
    _objects.push_back(object);
    return true;
}

int XObjectList::indexOf(XObject const& object) const {
    auto const place = _places.find(object.ObjectID());
    return place == _places.end() ? -1 : place->second;
}

void disconnectElements(XAttribute const& array) {
    for (int i = array.ArraySize() - 1; i >= 0; --i) array.Attribute(i).Disconnect();
}

void clearConnected(XAttribute array) {
    disconnectElements(array);
    array.Clear();
}

void deleteAssociated(XAttribute array) {
    Qelutils::Vector<XObject> objects;
    array.ObjectRefs(objects);
    array.Clear();
    for (; !objects.empty(); objects.pop_back())
        if (XObject& object = objects.back(); object.IsValid()) object.DisconnectInputAttributes().Delete();
}

void setReferences(XAttribute array, Qelutils::Vector<XObject> const& objects) {
    array.SetArraySize(int(objects.size()));
    for (std::size_t i = 0; i < objects.size(); ++i) array.SetObjectRef(objects[i], int(i));
}

// ---- what drives a joint ----

void clearJointAnimation(XTransform const& joint, bool translation) {
    using Node = sg::TransformNode;
    for (int first : {Node::Rotation, Node::PreRotation, Node::PostRotation, Node::Scale, Node::Translation})
        for (int axis = 0; axis < 3 && (translation || first != Node::Translation); ++axis)
            joint.Attribute(first + axis).ClearAnimation();
}

void driveJoint(XTransform joint, XAttribute const& matrix, bool translation, XAttribute associated) {
    using Node = sg::TransformNode;
    using Conversion = sg::MatrixConversionNode;
    takeAnglesXYZ(joint);
    XMatrixConversion const conversion(joint.Scene().CreateObject(XMatrixConversion::TypeID));
    associated.AddObjectRef(conversion);
    conversion.InputMatrix().ConnectInputTo(matrix);
    feedThree(conversion, Conversion::PreRotation, joint, Node::PreRotation);
    feedThree(conversion, Conversion::PostRotation, joint, Node::PostRotation);
    feedThree(joint, Node::Rotation, conversion, Conversion::Rotation);
    if (!translation) return;
    feedThree(conversion, Conversion::PreTranslation, joint, Node::PreTranslation);
    feedThree(joint, Node::Translation, conversion, Conversion::Translation);
}

// ---- parameters ----

void feed(XAttribute target, XAttribute const& source) {
    target.CopyValue(source);
    if (connectQuietly(source, target) || !target.IsCompositeAttribute()) return;
    for (int i = 0; i < target.AttributeCount(); ++i) connectQuietly(source.Attribute(i), target.Attribute(i));
}

void feedLimit(XAttribute const& parameters, int firstPart, XJoint const& joint) {
    auto const part = [&](int limitParameter) { return parameters.Attribute(firstPart + limitParameter); };
    if (XJointLimit const limit = joint.JointLimit(); limit.IsValid()) {
        XAttribute const sources[] = {limit.LimitType(),    limit.LocalMatrix(), limit.MovingOffsetMatrix(),
                                      limit.Swing1Active(), limit.Swing1Angle(), limit.Swing2Active(),
                                      limit.Swing2Angle(),  limit.TwistActive(), limit.TwistAngle(),
                                      limit.TwistOffset()};
        for (int i = 0; i < int(std::size(sources)); ++i) feed(part(i), sources[i]);
        return;
    }
    for (int i = LimitTypeParameter; i <= TwistOffsetParameter; ++i) part(i).DisconnectInput();
    for (int i : {Swing1ActiveParameter, Swing2ActiveParameter, TwistActiveParameter}) part(i).SetBoolean(false);
    part(LimitTypeParameter).SetEnumeration(0);
}

}  // namespace Tavo
