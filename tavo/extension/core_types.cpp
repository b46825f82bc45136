#include "tavo/extension/core_types.h"
#include "tavo/animation/animation.h"
#include "tavo/animation/animation_layers.h"
#include "tavo/animation/keyframe.h"
#include "tavo/commands/catalogue.h"
#include "tavo/interaction/object_group.h"
#include "tavo/interaction/selection.h"
#include "tavo/interaction/tool.h"
#include "tavo/interaction/viewport_settings.h"
#include "tavo/kinematics/aim_constraint.h"
#include "tavo/kinematics/camera.h"
#include "tavo/kinematics/character.h"
#include "tavo/kinematics/ik_handle.h"
#include "tavo/kinematics/ik_solver.h"
#include "tavo/kinematics/joint.h"
#include "tavo/kinematics/joint_ik_params.h"
#include "tavo/kinematics/joint_limit.h"
#include "tavo/kinematics/kinematics_character.h"
#include "tavo/kinematics/kinematics_constraint.h"
#include "tavo/kinematics/light.h"
#include "tavo/kinematics/matrix_conversion.h"
#include "tavo/kinematics/mesh_instance.h"
#include "tavo/kinematics/null.h"
#include "tavo/kinematics/pole_vector.h"
#include "tavo/kinematics/retarget.h"
#include "tavo/kinematics/shape.h"
#include "tavo/objects/register_all.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/settings.h"
#include "tavo/physics/physics_body.h"
#include "tavo/physics/physics_character.h"
#include "tavo/physics/physics_constraint.h"
#include "tavo/physics/physics_joint.h"
#include "tavo/physics/physics_joint_limit.h"
#include "tavo/physics/physics_mesh_instance.h"
#include "tavo/trajectories/trajectory.h"

namespace Tavo {

void XCoreTypes::RegisterSceneTypes(XDatabase& database) {
    // objects
    registerAll<XSceneObjectDef, XSceneSettingsDef>(database);
    // animation
    registerAll<XAnimationDef, XAnimationLayersDef, XKeyframeDef>(database);
    // kinematics
    registerAll<XRenderObjectDef, XTransformDef, XShapeDef, XPrimitiveDef, XGridDef, XCameraDef, XLightDef, XJointDef,
                XNullDef>(database);
    registerAll<XCharacterDef, XJointLimitDef, XIKSolverDef, XIKHandleDef, XPoleVectorDef, XMeshInstanceDef,
                XMatrixConversionDef>(database);
    registerAll<XJointIKParamsDef, XRetargetDef, XJointRetargetParamsDef>(database);
    registerAll<XKinematicsCharacterDef, XKinematicsConstraintDef, XAimConstraintDef>(database);
    // physics
    registerAll<XPhysicsCharacterDef, XPhysicsJointDef, XPhysicsJointLimitDef, XPhysicsBodyDef, XPhysicsConstraintDef,
                XPhysicsMeshInstanceDef>(database);
    // trajectories
    registerAll<XTrajectoryDef>(database);
    // interaction
    registerAll<XSelectionDef, XObjectGroupDef, XDisplayGroupDef, XCollisionGroupDef, XSelectionGroupDef,
                XViewportSettingsDef>(database);
    registerAll<XToolDef, XSelectToolDef, XMoveToolDef, XRotateToolDef, XScaleToolDef, XTimingToolDef>(database);
}

void XCoreTypes::RegisterSettingsTypes(XDatabase& database) {
    registerAll<XSceneSettingsDef>(database);
    XCommandCatalogue::Register(database);
}

void XCoreTypes::OnSceneRegistered(XScene& scene) { RegisterSceneTypes(scene); }

void XCoreTypes::OnSettingsRegistered(XSettings& settings) { RegisterSettingsTypes(settings); }

void XCoreTypes::OnSettingsCreated(XSettings& settings) { XCommandCatalogue::CreateNodes(settings); }

}  // namespace Tavo
