// The node types of commands that other documents and modules know by name, and the nodes that persist in the settings.
#pragma once
#include "tavo/commands/constraint_commands.h"
#include "tavo/commands/creation_commands.h"
#include "tavo/commands/edit_commands.h"
#include "tavo/commands/file_commands.h"
#include "tavo/commands/skeleton_commands.h"
#include "tavo/commands/trajectory_commands.h"

namespace sg {

using CopyNode = Tavo::XCommandNode<Tavo::XCopy>;
using PasteNode = Tavo::XCommandNode<Tavo::XPaste>;
using AlignAxisNode = Tavo::XCommandNode<Tavo::XAlignAxis>;
using AlignJointLimitNode = Tavo::XCommandNode<Tavo::XAlignJointLimit>;
using FreezeTransformNode = Tavo::XCommandNode<Tavo::XFreezeTransform>;
using CreateTransformNode = Tavo::XCommandNode<Tavo::XCreateTransform>;
using CreateJointNode = Tavo::XCommandNode<Tavo::XCreateJoint>;
using CreateJointLimitNode = Tavo::XCommandNode<Tavo::XCreateJointLimit>;
using CreateKinematicsConstraintNode = Tavo::XCommandNode<Tavo::XCreateKinematicsConstraint>;
using CreateAimConstraintNode = Tavo::XCommandNode<Tavo::XCreateAimConstraint>;
using CreateSkeletalConstraintNode = Tavo::XCommandNode<Tavo::XCreateSkeletalConstraint>;
using CreatePoleVectorNode = Tavo::XCommandNode<Tavo::XCreatePoleVector>;
using CreatePrimitiveNode = Tavo::XCommandNode<Tavo::XCreatePrimitive>;
using GenerateTrajectoryNode = Tavo::XCommandNode<Tavo::XGenerateTrajectory>;
using SampleTrajectoryUniformlyNode = Tavo::XCommandNode<Tavo::XSampleTrajectoryUniformly>;
using SampleTrajectoryAdaptivelyNode = Tavo::XCommandNode<Tavo::XSampleTrajectoryAdaptively>;
using FitTrajectoryNode = Tavo::XCommandNode<Tavo::XFitTrajectory>;
using ToSplineTrajectoryNode = Tavo::XCommandNode<Tavo::XToSplineTrajectory>;
using ImportFileNode = Tavo::XCommandNode<Tavo::XImportFile>;
using ExportFileNode = Tavo::XCommandNode<Tavo::XExportFile>;

}  // namespace sg
