#include "tavo/commands/catalogue.h"
#include "tavo/commands/constraint_commands.h"
#include "tavo/commands/creation_commands.h"
#include "tavo/commands/edit_commands.h"
#include "tavo/commands/file_commands.h"
#include "tavo/commands/rig_commands.h"
#include "tavo/commands/selection_commands.h"
#include "tavo/commands/skeleton_commands.h"
#include "tavo/commands/tool_commands.h"
#include "tavo/commands/trajectory_commands.h"
#include "tavo/commands/transport.h"
#include "tavo/objects/register_all.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/settings.h"
#include <algorithm>
#include <memory>

namespace Tavo {
namespace {

Qelutils::Vector<XObjectDef*> commandsOf(XDatabase const& settings) {
    Qelutils::Vector<XObjectDef*> definitions;
    settings.ObjectDefinitions(definitions);
    std::erase_if(definitions, [](XObjectDef const* definition) {
        return !definition->SupportsType(XCommand::TypeID) || definition->ObjectType() == XCommand::TypeID;
    });
    return definitions;
}

}  // namespace

void XCommandCatalogue::Register(XDatabase& settings) {
    // playback and history
    registerAll<XPlayDef, XPlayReverseDef, XPlayToggleDef, XStopDef>(settings);
    registerAll<XGoToFirstFrameDef, XGoToPreviousFrameDef, XGoToNextFrameDef, XGoToLastFrameDef>(settings);
    registerAll<XUndoDef, XRedoDef>(settings);
    // tools and views
    registerAll<XActivateSelectToolDef, XActivateMoveToolDef, XActivateRotateToolDef, XActivateScaleToolDef,
                XActivateTimingToolDef, XToggleToolAxisDef>(settings);
    registerAll<XToggleSelectedObjectSubObjectEditMode_1Def, XToggleSelectedObjectSubObjectEditMode_2Def,
                XToggleSelectedObjectSubObjectEditMode_3Def, XToggleSelectedObjectSubObjectEditMode_4Def>(settings);
    registerAll<XZoomToFitDef>(settings);
    // selection
    registerAll<XSelectAllDef, XClearSelectionDef, XSelectParentDef, XSelectChildDef, XSelectPreviousDef,
                XSelectNextDef>(settings);
    // edits of the selected objects
    registerAll<XDeleteDef, XRemoveDef, XParentDef, XUnparentDef, XCopyDef, XPasteDef, XGroupDef, XSetKeyDef,
                XAlignAxisDef, XFreezeTransformDef>(settings);
    // characters, limits and targets
    registerAll<XCharacterizeDef, XAlignJointLimitDef, XAlignHingeOffsetDef, XSetConstraintTargetDef,
                XClearConstraintTargetDef>(settings);
    // new objects
    registerAll<XCreateTransformDef, XCreateJointDef, XCreateJointLimitDef, XCreatePrimitiveDef>(settings);
    registerAll<XCreateKinematicsConstraintDef, XCreateAimConstraintDef, XCreateSkeletalConstraintDef,
                XCreatePoleVectorDef>(settings);
    // trajectories
    registerAll<XGenerateTrajectoryDef, XSampleTrajectoryUniformlyDef, XSampleTrajectoryAdaptivelyDef,
                XFitTrajectoryDef, XToSplineTrajectoryDef>(settings);
    // rigs
    registerAll<XCreateIKRigDef, XSetIKBindPoseDef, XClearLastIKBindPoseDef, XClearAllIKBindPosesDef,
                XSetIKRootJointsDef, XSetIKEndEffectorsDef, XSetIKPoleVectorPairsDef>(settings);
    registerAll<XRetargetAttachDef, XRetargetDetachDef, XRetargetSetJointsToOriginDef, XRetargetSetJointOriginsDef,
                XRetargetSetJointReferentDef, XRetargetSetJointReferentToWorldDef, XRetargetResetJointReferentsDef>(
        settings);
    // files
    registerAll<XImportFileDef, XExportFileDef>(settings);
}

void XCommandCatalogue::CreateNodes(XSettings& settings) {
    for (XObjectDef const* definition : commandsOf(settings)) {
        if (settings.SceneGraph()->Node(definition->ObjectType())) continue;
        settings.CreateNode(definition->NodeType()).SetName(definition->ObjectType(), true);
    }
}

std::vector<XCommandInfo> XCommandCatalogue::List(XDatabase const& settings) {
    std::vector<XCommandInfo> all;
    for (XObjectDef* definition : commandsOf(settings)) {
        db::NodeDef const* const node = db::Registry::getInstance().getNodeDef(L"sg", definition->NodeType());
        if (!node) continue;
        XCommandInfo& info = all.emplace_back();
        info.name = definition->ObjectType();
        auto const* const described = dynamic_cast<XCommandNodeDef const*>(node);
        info.help = described ? described->Help() : L"";
        info.isUndoable = !described || described->IsUndoable();
        for (int i = XCommand::FirstParameter; i < node->layout().topLevelCount; ++i) {
            db::AttributeDef const& row = *node->layout().rows[std::size_t(i)].def;
            if (!row.hasFlag(db::FlagReserved)) info.parameters.push_back(&row);
        }
    }
    return all;
}

}  // namespace Tavo
