#include "hosts/tavo/command_list.h"

#include "hosts/tavo/console.h"
#include "hosts/tavo/verbs.h"
#include "qel/utils/text.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/settings.h"

#include <algorithm>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

// Those of a compound's parts follow on it: "Colour", "Colour.Red".
std::vector<std::wstring> parameterNames(XCommandInfo const& info) {
    std::vector<std::wstring> names;
    for (db::AttributeDef const* parameter : info.parameters) {
        names.push_back(parameter->name);
        for (db::AttributeDef const& part : parameter->children)
            names.push_back(std::wstring(parameter->name) + XDatabase::AttributePathSeparator.c_str() + part.name);
    }
    return names;
}

XAttribute findParameter(XCommandInfo const& info, XCommand const& command, std::string const& name) {
    std::vector<std::wstring> const names = parameterNames(info);
    if (names.empty()) throw wrongCall(fmt::format("{} has no parameters", toUtf8(info.name)));
    if (std::find(names.begin(), names.end(), fromUtf8(name)) == names.end())
        throw wrongCall(fmt::format("{} has no parameter \"{}\"", toUtf8(info.name), name), name, names,
                        fmt::format("; `tavo commands {}` lists them", toUtf8(info.name)));
    return command.Attribute(fromUtf8(name));
}

Value parseValue(XCommandInfo const& info, XCommand const& command, std::string const& word, XScene* display) {
    std::size_t const equals = word.find('=');
    if (equals == std::string::npos)
        throw wrongCall(fmt::format("\"{}\" is not PARAM=VALUE; the next command comes after --", word));
    return Value::parse(findParameter(info, command, word.substr(0, equals)), word.substr(equals + 1), display);
}

// The settings' file may hold something else under the command's name.
XCommand nodeOf(XSettings const& settings, XCommandInfo const& info) {
    XCommand const command(settings.SceneGraph()->Node(info.name));
    if (!command.IsValid() || command.ObjectType() != info.name)
        throw Failure{ExitCode::badInput,
                      fmt::format("what the settings hold as {} is not that command", toUtf8(info.name))};
    return command;
}

}  // namespace

XCommandInfo findCommand(std::vector<XCommandInfo> const& all, std::string const& name) {
    std::vector<std::wstring> names;
    for (XCommandInfo const& info : all) {
        if (info.name == fromUtf8(name)) return info;
        names.push_back(info.name);
    }
    throw wrongCall(fmt::format("there is no command \"{}\"", name), name, names, "; `tavo commands` lists them");
}

std::vector<CommandCall> parseCommands(XSettings const& settings, std::vector<std::string> const& words,
                                       XScene* display) {
    std::vector<XCommandInfo> const all = XCommandCatalogue::List(settings);
    std::vector<CommandCall> calls;
    for (auto word = words.begin();; ++word) {
        if (word == words.end() || *word == commandSeparator)
            throw wrongCall("a command is missing: -- stands between two");
        XCommandInfo const info = findCommand(all, *word);
        CommandCall& call = calls.emplace_back(CommandCall{*word, nodeOf(settings, info), {}});
        for (++word; word != words.end() && *word != commandSeparator; ++word)
            call.values.push_back(parseValue(info, call.command, *word, display));
        if (word == words.end()) return calls;
    }
}

}  // namespace host
