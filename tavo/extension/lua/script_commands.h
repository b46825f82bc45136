// Commands that scripts run.
#pragma once
#include "tavo/extension/lua/script_call.h"
#include <functional>

namespace Tavo {

// Has `run` run the command of that name on `scene`. A command that moves the history or the time runs outside the
// blocks of the script, which would hold it up. In a sandbox one that reaches files is refused.
void runAsScript(XScriptCall& call, XScene& scene, std::wstring const& name, std::function<void()> const& run);

}  // namespace Tavo
