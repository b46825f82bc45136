#include "tavo/interaction/object_group.h"
#include "tavo/app/application.h"
#include "tavo/objects/scene.h"

namespace Tavo {

XObjectGroup& XObjectGroup::SetIsFolder(bool value) {
    IsGroupFolder().SetBoolean(value);
    return *this;
}

XObjectGroup& XObjectGroup::SetIsSeparator(bool value) {
    IsGroupSeparator().SetBoolean(value);
    return *this;
}

XObjectGroup& XObjectGroup::SetLabel(std::wstring const& label) {
    Label().SetString(label);
    return *this;
}

void XObjectGroup::onInitialize() {
    XSceneObject::onInitialize();
    SetLabel(Name());
    for (XAttribute list : {ChildGroupReferenceArray(), ObjectReferenceArray(), SubObjectArray()}) list.Clear();
    SetIsFolder(false).SetIsSeparator(false);
    SubObjectType().SetInteger(0);
    IsFocused().SetBoolean(false);
    for (XAttribute state : {IsExpanded(), IsActive(), IsEditable(), IsSelectable(), IsVisible()})
        state.SetBoolean(true);
}

bool XObjectGroup::isSystemObjectGroup() const {
    XApplication& application = XApplication::Instance();
    if (!application.IsStarted()) return false;
    XScene const& scene = application.ActiveScene();
    return *this == scene.DisplayGroups() || *this == scene.CollisionGroups() || *this == scene.SelectionGroups();
}

}  // namespace Tavo
