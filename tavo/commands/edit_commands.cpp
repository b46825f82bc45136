#include "tavo/commands/edit_commands.h"
#include "tavo/commands/selected.h"
#include "tavo/kinematics/shape.h"

namespace Tavo {
namespace {

// A selected shape stands for its transform.
XTransform transformOf(XObject const& object) {
    XTransform const transform(object);
    return transform.IsValid() ? transform : XShape(object).IsValid() ? XShape(object).Transform() : XTransform();
}

template<class Edit> void forEachSelectedTransform(XScene& scene, Edit const& edit) {
    for (XObject const& object : selectedObjects(scene))
        if (XTransform transform = transformOf(object); transform.IsValid()) edit(transform);
}

}  // namespace

void XDelete::onRun() { Scene().DeleteSelection(); }
void XRemove::onRun() { Scene().RemoveSelection(); }
void XParent::onRun() { Scene().ReparentSelection(); }
void XUnparent::onRun() { Scene().UnparentSelection(); }
void XCopy::onRun() {}
void XPaste::onRun() {}

void XGroup::onRun() {
    Qelutils::Vector<XObject> const selected = selectedObjects(Scene());
    XObject group = Scene().CreateObject(XTransform::TypeID);
    group.SetName(L"group");
    for (XObject const& object : selected) {
        if (!object.SupportsReparenting()) continue;
        XObject moved = object.SupportsType(XShape::TypeID) ? object.Parent() : object;
        moved.SetParent(group);
    }
}

void XSetKey::onRun() {
    forEachSelectedTransform(Scene(), [](XTransform& transform) { transform.AutoSetKeyframe(); });
}

void XAlignAxis::onRun() {
    auto const axis = XDirection(Axis().Enumeration());
    auto const mode = XAlignmentMode(Direction().Enumeration());
    forEachSelected<XTransform>(Scene(), [&](XTransform& transform) { transform.AlignAxis(axis, mode); });
}

void XFreezeTransform::onRun() {
    if (FreezeTranslation().Boolean())
        forEachSelectedTransform(Scene(), [](XTransform& transform) { transform.FreezeTranslation(); });
    if (FreezeRotation().Boolean())
        forEachSelectedTransform(Scene(), [](XTransform& transform) { transform.FreezeRotation(); });
}

}  // namespace Tavo
