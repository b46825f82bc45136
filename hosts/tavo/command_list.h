// The commands of a line of `do`: read and checked as a whole before the first of them runs.
#pragma once
#include "hosts/tavo/values.h"
#include "tavo/commands/catalogue.h"

namespace host {

// One run to come: a command and the values of parameters that it is given.
struct CommandCall {
    std::string name;
    Tavo::XCommand command;  // its node in the settings
    std::vector<Value> values;
};

// By name; throws a wrong call that proposes the nearest.
Tavo::XCommandInfo findCommand(std::vector<Tavo::XCommandInfo> const& all, std::string const& name);

// Of "COMMAND PARAM=VALUE ... -- COMMAND ...". Throws a wrong call that says what would be right: an unknown command or
// parameter, a value that does not fit. `display` as in Value::parse.
std::vector<CommandCall> parseCommands(Tavo::XSettings const& settings, std::vector<std::string> const& words,
                                       Tavo::XScene* display);

}  // namespace host
