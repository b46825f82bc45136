// XSceneObject: an object that lives in a scene: it can be selected, shown and grouped. In another kind of document its
// scene is XScene::Undefined, and those operations do nothing.
#pragma once
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XSceneObject : public XTyped<XSceneObject, XObject> {
public:
    static constexpr XWord TypeID = L"SceneObject";

    constexpr XSceneObject(XUndefined tag) : XTyped(tag) {}
    XSceneObject() = default;
    XSceneObject(XObject const& object) : XTyped(object) { bindScene(); }
    XSceneObject(sg::Node* node) : XTyped(node) { bindScene(); }
    XSceneObject(db::Node* node) : XTyped(node) { bindScene(); }

    XScene& Scene() const;
    // Selection and groups; defined on the interaction floor.
    bool IsSelectable() const;
    bool IsVisible() const;
    bool SupportsSelection() const { return dynamicSupportsSelection(); }
    bool IsSelected() const;
    bool IsParentSelected() const;
    XSceneObject& Select();
    XSceneObject& SelectAppend();
    XSceneObject& Deselect();
    XDisplayGroup DisplayGroup() const;
    Qelutils::Vector<XSelectionGroup>& SelectionGroups(Qelutils::Vector<XSelectionGroup>& out) const;

    XObject FindAncestor(std::wstring const& type, XComparisonMode mode) const override;  // below the scene's root
    bool HasParent() const override;                                                      // other than the scene's root
    bool isValid() const override;
    void onConstruct() override { bindScene(); }
    virtual bool supportsSelection() const { return true; }

protected:
    XScene* scene() const { return _scene; }
    bool dynamicSupportsSelection() const;

private:
    void bindScene();

    XScene* _scene = nullptr;
};
using XSceneObjectDef = XTypedDef<XSceneObject>;

}  // namespace Tavo
