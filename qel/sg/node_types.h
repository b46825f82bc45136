// The node types of the scene. What a type holds stands in its table (node_tables.cpp); a class of its own has only
// what computes.
#pragma once
#include "qel/sg/animation_node.h"
#include "qel/sg/constraint_nodes.h"
#include "qel/sg/ik_solver_node.h"
#include "qel/sg/joint_limit_node.h"
#include "qel/sg/matrix_conversion_node.h"
#include "qel/sg/retarget_node.h"
#include "qel/sg/rig_nodes.h"
#include "qel/sg/selection_node.h"
#include "qel/sg/trajectory_node.h"
#include "qel/sg/transform_node.h"

namespace sg {

#define SG_NODE_TYPE(Class, Base, Name)                                                                                \
    class Class : public Base {                                                                                        \
    public:                                                                                                            \
        static inline std::wstring const ClassID = Name;                                                               \
        static db::NodeDef const Def;                                                                                  \
        explicit Class(db::NodeDef const& def = Def) : Base(def) {}                                                    \
    };

// Stands in for a type that is not known here, so that a document keeps its nodes.
SG_NODE_TYPE(UnknownNode, Node, L"Unknown")

// hierarchy and skeleton
SG_NODE_TYPE(NullNode, Node, L"Null")
SG_NODE_TYPE(JointNode, TransformNode, L"Joint")
SG_NODE_TYPE(CharacterNode, TransformNode, L"Character")
SG_NODE_TYPE(KinematicsCharacterNode, TransformNode, L"KinematicsCharacter")

// solvers and constraints
SG_NODE_TYPE(IKHandleNode, TransformNode, L"IKHandle")
SG_NODE_TYPE(JointIKParamsNode, Node, L"JointIKParams")
SG_NODE_TYPE(JointRetargetParamsNode, TransformNode, L"JointRetargetParams")
SG_NODE_TYPE(MirrorConstraintNode, Node, L"MirrorConstraint")
SG_NODE_TYPE(FloatProductNode, Node, L"FloatProduct")

// animation
SG_NODE_TYPE(AnimationLayersNode, Node, L"AnimationLayers")

// geometry
SG_NODE_TYPE(ShapeBaseNode, RenderableNode, L"ShapeBase")
SG_NODE_TYPE(PrimitiveNode, ShapeBaseNode, L"Primitive")
SG_NODE_TYPE(MeshNode, Node, L"Mesh")
SG_NODE_TYPE(MeshInstanceNode, ShapeBaseNode, L"MeshInstance")
SG_NODE_TYPE(SkinClusterNode, Node, L"SkinCluster")
SG_NODE_TYPE(SkinnedShapeNode, PrimitiveNode, L"SkinnedShape")
SG_NODE_TYPE(BlendShapeNode, Node, L"BlendShape")
SG_NODE_TYPE(MaterialNode, Node, L"Material")
SG_NODE_TYPE(CameraNode, TransformNode, L"Camera")
SG_NODE_TYPE(LightNode, TransformNode, L"Light")
SG_NODE_TYPE(GridNode, ShapeBaseNode, L"Grid")

// physics
SG_NODE_TYPE(PhysicsBodyNode, PrimitiveNode, L"PhysicsBody")
SG_NODE_TYPE(PhysicsCharacterNode, TransformNode, L"PhysicsCharacter")
SG_NODE_TYPE(PhysicsConstraintNode, TransformNode, L"PhysicsConstraint")
SG_NODE_TYPE(PhysicsJointNode, JointNode, L"PhysicsJoint")
SG_NODE_TYPE(PhysicsJointLimitNode, JointLimitNode, L"PhysicsJointLimit")
SG_NODE_TYPE(PhysicsMeshInstanceNode, MeshInstanceNode, L"PhysicsMeshInstance")

// groups, selection, settings
SG_NODE_TYPE(GroupNode, Node, L"Group")
SG_NODE_TYPE(CollisionGroupNode, GroupNode, L"CollisionGroup")
SG_NODE_TYPE(DisplayGroupNode, GroupNode, L"DisplayGroup")
SG_NODE_TYPE(SelectionGroupNode, GroupNode, L"SelectionGroup")
SG_NODE_TYPE(SceneSettingsNode, Node, L"SceneSettings")
SG_NODE_TYPE(ViewportEditorSettingsNode, Node, L"ViewportEditorSettings")

// tools and controllers
SG_NODE_TYPE(SelectToolNode, Node, L"SelectTool")
SG_NODE_TYPE(MoveToolNode, Node, L"MoveTool")
SG_NODE_TYPE(RotateToolNode, Node, L"RotateTool")
SG_NODE_TYPE(ScaleToolNode, Node, L"ScaleTool")
SG_NODE_TYPE(TimingToolNode, Node, L"TimingTool")
SG_NODE_TYPE(ObjectControllerNode, Node, L"ObjectController")
SG_NODE_TYPE(JointControllerNode, ObjectControllerNode, L"JointController")
SG_NODE_TYPE(JointLimitControllerNode, ObjectControllerNode, L"JointLimitController")
SG_NODE_TYPE(MeshInstanceControllerNode, ObjectControllerNode, L"MeshInstanceController")
SG_NODE_TYPE(PhysicsBodyControllerNode, ObjectControllerNode, L"PhysicsBodyController")
SG_NODE_TYPE(TrajectoryControllerNode, ObjectControllerNode, L"TrajectoryController")

// commands: their parameters
SG_NODE_TYPE(CommandBaseNode, Node, L"CommandBase")

#undef SG_NODE_TYPE

}  // namespace sg
