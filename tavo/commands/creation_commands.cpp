#include "tavo/commands/creation_commands.h"
#include "tavo/commands/selected.h"
#include "tavo/kinematics/character.h"

namespace Tavo {

XTransform XCreateTransform::firstSelectedTransform() const {
    return XTransform(Scene().Selection().Object(XTransform::TypeID, SupportsObjectType));
}

void XCreateTransform::finish(XObject const& created) {
    Scene().Selection().Select(created);
    addResult(created);
}

void XCreateTransform::onRun() {
    XObject created = Scene().CreateObject(XTransform::TypeID);
    if (XTransform const parent = firstSelectedTransform(); parent.IsValid()) created.SetParent(parent, false, false);
    CopyParametersTo(created);
    finish(created);
}

void XCreateJoint::onRun() {
    XObject created = Scene().CreateObject(XJoint::TypeID);
    XTransform const parent = firstSelectedTransform();
    if (parent.IsValid())
        created.SetParent(parent, false, false);
    else if (Characterize().Boolean())
        XTransform(created).Characterize().IsEditable().SetBoolean(true);
    else
        created.SetParent(Scene().RootObject(), false, false);
    CopyParametersTo(created);
    created.SetName(XJoint::DefaultName);
    finish(created);
}

void XCreatePrimitive::onRun() {
    forEachSelected<XTransform>(Scene(), [this](XTransform const& transform) {
        XObject const created = Scene().CreateObject(XPrimitive::TypeID, transform);
        CopyParametersTo(created);
        addResult(created);
    });
}

}  // namespace Tavo
