// The base of what offers functions to scripts. It carries no state; the helpers of script calls are free functions of
// the script floor.
#pragma once

namespace Tavo {

class XScriptBase {
public:
    virtual ~XScriptBase() = default;
};

}  // namespace Tavo
