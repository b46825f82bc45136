// The handles on a scene's fixed objects and its caches: what XScene holds of classes that stand above it.
#pragma once
#include "tavo/animation/animation_layers.h"
#include "tavo/interaction/object_group.h"
#include "tavo/interaction/selection.h"
#include "tavo/interaction/tool.h"
#include "tavo/interaction/viewport_settings.h"
#include "tavo/kinematics/camera.h"
#include "tavo/kinematics/shape.h"
#include "tavo/objects/scene.h"
#include <array>

namespace Tavo {

struct XSelectionCache {
    XScene::ObjectIDs selected, descendants;  // what is both stands in both
    bool isDue = false;                       // to be loaded before the next look
};

struct XSceneObjects {
    XGrid grid;
    XTransform root;
    XSelection selection, dynamicSelection;
    XAnimationLayers animationLayers;
    XDisplayGroup displayGroups;
    XCollisionGroup collisionGroups;
    XSelectionGroup selectionGroups;
    XCamera perspectiveCamera, topCamera, frontCamera, sideCamera;
    XSelectTool selectTool;
    XMoveTool moveTool;
    XRotateTool rotateTool;
    XScaleTool scaleTool;
    XTimingTool timingTool;
    XViewportSettings viewportSettings;

    std::array<XScene::ObjectIDs, 3> groupSets;  // by XGroupMode
    XSelectionCache selectionCache;
};

}  // namespace Tavo
