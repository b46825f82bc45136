#include "tavo/app/application.h"
#include "tavo/extension/lua/script_sets.h"

namespace Tavo {

XScriptSet const& AppFunctions() {
    static XScriptSet const set{"app",
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
                                    {"runActiveCommand",
                                     &XApplication::Application_RunActiveCommand,
                                     {},
                                     "Runs the active command; what it made or changed."},
                                    {"runLastCommand",
                                     &XApplication::Application_RunLastCommand,
                                     {},
                                     "Runs the last command again; what it made or changed."},
                                    {"scene", &XApplication::Application_Scene, {}, "The active scene."},
                                }};
    return set;
}

}  // namespace Tavo
