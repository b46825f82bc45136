// Reads the arguments of one script call after another: each call, from beginArguments to its values, has a
// wxUtils::LuaArgumentProcessor of its own, which replaces that of the call before. All arguments are optional; a
// missing one leaves the value that stands in `out`. Before endArguments nothing is given.
#pragma once
#include "qel/lua/lua_argument_processor.h"
#include <optional>

namespace Tavo {

class TavoLuaArgumentProcessor {
public:
    // With `isMethod`, argument 1 is the self table and not counted.
    void beginArguments(LuaPlus::LuaState* state, bool isMethod);
    void addArgument(std::string name);
    void endArguments(LuaPlus::LuaState* state);

    // Whether the script gave it. A wrong kind is a Lua error, as wxUtils::LuaArgumentProcessor tells.
    bool getValue(std::string_view name, bool& out) const;
    bool getValue(std::string_view name, int& out) const;
    bool getValue(std::string_view name, float& out) const;
    bool getValue(std::string_view name, std::wstring& out) const;
    bool getValue(std::string_view name, std::vector<float>& out) const;
    bool getValue(std::string_view name, std::vector<std::wstring>& out) const;

private:
    std::optional<wxUtils::LuaArgumentProcessor> _processor;
    bool _isMethod = false;
};

}  // namespace Tavo
