// XViewportSettings: the state of a scene's four views, saved with it and undoable. Each attribute is an array with one
// entry per view.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/scene_object.h"

namespace Tavo {

enum XColourMode : int { ObjectColour = 0, DisplayGroupColour = 1, SelectionGroupColour = 2, CollisionGroupColour = 3 };

class XViewportSettings : public XTyped<XViewportSettings, XSceneObject, sg::ViewportEditorSettingsNode> {
public:
    static constexpr XWord TypeID = L"ViewportSettings";
    using XTyped::XTyped;

    TAVO_ATTRIBUTE(Camera, 8)      // paths
    TAVO_ATTRIBUTE(ColourMode, 9)  // XColourMode
    TAVO_ATTRIBUTE(DisplayMode, 10)
    TAVO_ATTRIBUTE(HeadsUpMode, 11)
    TAVO_ATTRIBUTE(DisplayFilter, 12)  // per view the object types that are hidden

    void onInitialize() override;  // the scene's four cameras
};
using XViewportSettingsDef = XTypedDef<XViewportSettings>;

}  // namespace Tavo
