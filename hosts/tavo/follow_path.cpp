#include "hosts/tavo/follow_path.h"

#include "hosts/tavo/console.h"
#include "hosts/tavo/paths.h"
#include "qel/sg/matrix_conversion_node.h"
#include "qel/sg/transform_node.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/objects/scene.h"

#include <fmt/format.h>

namespace host {

using namespace Tavo;

namespace {

using From = sg::TransformNode;
using To = sg::MatrixConversionNode;

// Three channels in a row, by the numbers of the first.
void connect(XObject const& source, int from, XObject const& target, int to) {
    for (int axis = 0; axis < 3; ++axis) target.Attribute(to + axis).ConnectInputTo(source.Attribute(from + axis));
}

}  // namespace

void checkCanFollow(XTransform const& object) {
    XTransform const origin = object.Scene().RootObject();
    if (object.Parent() != origin)
        throw wrongCall(fmt::format("--connect: {} hangs below another object; only those directly below {} can follow "
                                    "a path",
                                    pathOf(object), pathOf(origin)));
    if (!origin.WorldMatrix().Matrix().IsEqual(XMatrix()))
        throw wrongCall(
            fmt::format("--connect: {} is not in its place, so that nothing can follow a path", pathOf(origin)));
}

void followPath(XTransform object, XTrajectory const& path) {
    XMatrixConversion const split(object.Scene().CreateNode(XMatrixConversion::TypeID));
    XObject(split).SetName(object.Name() + L"_onTrajectory");
    object.ClearAnimation();
    object.TransformDataSource().SetEnumeration(XTransform::EulerSource);
    object.RotationEulerOrder().SetEnumeration(L"XYZ");
    split.InputMatrix().ConnectInputTo(path.WorldCurveMatrix());
    connect(object, From::PreTranslation, split, To::PreTranslation);
    connect(object, From::PreRotation, split, To::PreRotation);
    connect(object, From::PostRotation, split, To::PostRotation);
    connect(split, To::Translation, object, From::Translation);
    connect(split, To::Rotation, object, From::Rotation);
}

}  // namespace host
