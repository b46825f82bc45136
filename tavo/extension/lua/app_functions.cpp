#include "tavo/app/application.h"
#include "tavo/extension/lua/script_commands.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {
namespace {

using Results = Qelutils::Vector<XObject>;

Results runActiveCommand(XScriptCall& call, XApplication& application) {
    Results results;
    runAsScript(call, application.ActiveScene(), application.ActiveCommandName(),
                [&] { results = application.Application_RunActiveCommand(); });
    return results;
}

Results runLastCommand(XScriptCall& call, XApplication& application) {
    Results results;
    runAsScript(call, application.ActiveScene(), application.LastCommandName(),
                [&] { results = application.Application_RunLastCommand(); });
    return results;
}

}  // namespace

XScriptSet const& AppFunctions() {
    static XScriptSet const set{
        "app",
        "The application. Its functions may be called with a dot.",
        {
            {"command",
             &XApplication::Application_Command,
             {"path"},
             "The node of a command, whose attributes are its parameters."},
            {"resetActiveCommand",
             &XApplication::Application_ResetActiveCommand,
             {},
             "Gives the active command's parameters their defaults."},
            {"runActiveCommand", runActiveCommand, {}, "Runs the active command; what it made or changed."},
            {"runLastCommand", runLastCommand, {}, "Runs the last command again; what it made or changed."},
            {"scene", &XApplication::Application_Scene, {}, "The active scene."},
        }};
    return set;
}

}  // namespace Tavo
