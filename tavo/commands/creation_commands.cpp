#include "tavo/commands/creation_commands.h"
#include "tavo/interaction/selection.h"
#include "tavo/objects/scene.h"

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
    else if (!Characterize().Boolean())
        created.SetParent(Scene().RootObject(), false, false);
    CopyParametersTo(created);
    created.SetName(XJoint::DefaultName);
    finish(created);
}

void XCreatePrimitive::onRun() {
    Qelutils::Vector<XObject> selected;
    for (XObject const& object : Scene().Selection().Objects(selected)) {
        if (!XTransform(object).IsValid()) continue;
        XObject const created = Scene().CreateObject(XPrimitive::TypeID, object);
        CopyParametersTo(created);
        addResult(created);
    }
}

}  // namespace Tavo
