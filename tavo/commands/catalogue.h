// All commands that the system offers: registering them, giving them their persistent nodes, and telling what they are.
#pragma once
#include "tavo/commands/command_node.h"

namespace Tavo {

// What is known of a command without running it.
struct XCommandInfo {
    std::wstring name, help;
    std::vector<db::AttributeDef const*> parameters;  // their rows: name, kind, default, unit, words, children, help
    bool isUndoable = true;                           // false: a run makes no step of the history
};

class XCommandCatalogue {
public:
    // Registers every command of the core. The list stands in catalogue.cpp, once.
    static void Register(XDatabase& settings);
    // Gives each command that is registered its node, named as the command, unless it has one. A node of another type
    // under that name stays; the command then runs on a node of its own.
    static void CreateNodes(XSettings& settings);
    // By name. What is registered, commands of plug-ins included.
    static std::vector<XCommandInfo> List(XDatabase const& settings);
};

}  // namespace Tavo
