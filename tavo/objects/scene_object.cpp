#include "tavo/objects/scene_object.h"
#include "tavo/objects/scene.h"

namespace Tavo {

void XSceneObject::bindScene() {
    XDatabase* const owner = database();
    _scene = owner && owner->IsScene() ? static_cast<XScene*>(owner) : nullptr;
}

XScene& XSceneObject::Scene() const { return _scene ? *_scene : XScene::Undefined; }

bool XSceneObject::isValid() const { return XObject::isValid(); }

bool XSceneObject::HasParent() const { return XObject::HasParent() && !Scene().IsRootObject(Parent()); }

// The farthest of the ancestors that match; the scene's root, which everything in space has, does not count.
XObject XSceneObject::FindAncestor(std::wstring const& type, XComparisonMode mode) const {
    XObject found = XObject::Undefined;
    for (XObject above = Parent(); above.IsValid() && !Scene().IsRootObject(above); above = above.Parent())
        if (above.Matches(type, mode)) found = above;
    return found;
}

}  // namespace Tavo
