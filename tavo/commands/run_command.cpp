// Running commands by name: what a scene and the application offer.
#include "tavo/app/application.h"
#include "tavo/commands/command.h"
#include "tavo/objects/object_def.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/settings.h"
#include <memory>

namespace Tavo {

XObject XScene::RunCommand(std::wstring const& name) {
    Qelutils::Vector<XObject> results;
    return RunCommand(name, results);
}

// A miss costs two error lines: the lookup of the node tells of its path before the definition is asked for.
XObject XScene::RunCommand(std::wstring const& name, Qelutils::Vector<XObject>& results) {
    XApplication& application = XApplication::Instance();
    if (!application.IsStarted()) return XObject::Undefined;
    XSettings& settings = application.Settings();
    if (XCommand command(settings.Object(name)); command.IsValid()) {
        application.SetLastCommandName(name);
        return command.Run(this, results);
    }
    XObjectDef* const definition = settings.ObjectDefinition(name);
    std::unique_ptr<XObject> const typed(definition ? definition->CreateObject(this, InvalidID) : nullptr);
    if (auto* const command = dynamic_cast<XCommand*>(typed.get())) {
        application.SetLastCommandName(name);
        return command->Run(this, results);
    }
    application.LogError(L"RunCommand could not find command '%s'", name);
    return XObject::Undefined;
}

XCommand XApplication::ActiveCommand() { return XCommand(Settings().Object(ActiveCommandName())); }

XCommand XApplication::LastCommand() { return XCommand(Settings().Object(LastCommandName())); }

void XApplication::runCommand(std::wstring const& name) {
    _commandResults.clear();
    ActiveScene().RunCommand(name, _commandResults);
}

void XApplication::runActiveCommand() { runCommand(std::wstring(ActiveCommandName())); }

void XApplication::runLastCommand() { runCommand(std::wstring(LastCommandName())); }

void XApplication::resetActiveCommand() { ActiveCommand().Initialize(); }

// ---- what scripts call ----

XObject XApplication::Application_Command(std::wstring const& path) { return Settings().Object(path); }
void XApplication::Application_ResetActiveCommand() { resetActiveCommand(); }
Qelutils::Vector<XObject> const& XApplication::Application_RunActiveCommand() {
    runActiveCommand();
    return _commandResults;
}
Qelutils::Vector<XObject> const& XApplication::Application_RunLastCommand() {
    runLastCommand();
    return _commandResults;
}
Qelutils::Vector<XObject> const& XApplication::Application_RunCommand(std::wstring const& name) {
    runCommand(name);
    return _commandResults;
}
XScene* XApplication::Application_Scene() { return &ActiveScene(); }

}  // namespace Tavo
