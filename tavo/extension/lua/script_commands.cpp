#include "tavo/extension/lua/script_commands.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/commands/command_node.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/extension/lua/script_tables.h"
#include "tavo/objects/object_def.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/settings.h"

namespace Tavo {
namespace {

// As XScene::RunCommand finds it: by the settings' node of that name, and else by the definition. Null for none.
XCommandNodeDef const* findCommand(std::wstring const& name) {
    XSettings const& settings = XApplication::Instance().Settings();
    sg::Node const* const node = settings.SceneGraph() ? settings.SceneGraph()->Node(name) : nullptr;
    if (node) return dynamic_cast<XCommandNodeDef const*>(&node->getNodeDef());
    XObjectDef const* const definition = settings.ObjectDefinition(name);
    return definition ? dynamic_cast<XCommandNodeDef const*>(
                            db::Registry::getInstance().getNodeDef(L"sg", definition->NodeType()))
                      : nullptr;
}

}  // namespace

void runAsScript(XScriptCall& call, XScene& scene, std::wstring const& name, std::function<void()> const& run) {
    XCommandNodeDef const* const command = findCommand(name);
    if (command && command->ReachesFiles() && call.Script().IsSandboxed())
        call.Fail(Qelutils::toUtf8(name) + " reaches files, which is not allowed in a sandbox");
    if (command && !command->IsUndoable())
        call.Script().OutsideBlocks(scene, run);
    else
        run();
}

}  // namespace Tavo
