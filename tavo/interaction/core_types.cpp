#include "tavo/interaction/core_types.h"
#include "tavo/animation/animation.h"
#include "tavo/animation/animation_layers.h"
#include "tavo/animation/keyframe.h"
#include "tavo/interaction/object_group.h"
#include "tavo/interaction/selection.h"
#include "tavo/interaction/tool.h"
#include "tavo/interaction/viewport_settings.h"
#include "tavo/kinematics/camera.h"
#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/light.h"
#include "tavo/kinematics/null.h"
#include "tavo/kinematics/shape.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/settings.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {
namespace {

template<class... Definitions> void registerAll(XDatabase& database) {
    (database.CoreModule().Register(new Definitions), ...);
}

}  // namespace

void XCoreTypes::RegisterSceneTypes(XDatabase& database) {
    // objects
    registerAll<XSceneObjectDef, XSceneSettingsDef>(database);
    // animation
    registerAll<XAnimationDef, XAnimationLayersDef, XKeyframeDef>(database);
    // kinematics
    registerAll<XRenderObjectDef, XTransformDef, XShapeDef, XPrimitiveDef, XGridDef, XCameraDef, XLightDef, XJointDef,
                XNullDef>(database);
    // trajectories
    registerAll<XTrajectoryDef>(database);
    // interaction
    registerAll<XSelectionDef, XObjectGroupDef, XDisplayGroupDef, XCollisionGroupDef, XSelectionGroupDef,
                XViewportSettingsDef>(database);
    registerAll<XToolDef, XSelectToolDef, XMoveToolDef, XRotateToolDef, XScaleToolDef, XTimingToolDef>(database);
}

void XCoreTypes::RegisterSettingsTypes(XDatabase& database) { registerAll<XSceneSettingsDef>(database); }

void XCoreTypes::OnSceneRegistered(XScene& scene) { RegisterSceneTypes(scene); }

void XCoreTypes::OnSettingsRegistered(XSettings& settings) { RegisterSettingsTypes(settings); }

}  // namespace Tavo
