// The node type of a command: its table is what the command's class declares with TAVO_PARAMETER, its name is the
// command's. From it follow storage, defaults, files, and what a host tells about the command.
#pragma once
#include "tavo/commands/command.h"
#include <array>
#include <utility>

namespace Tavo {

template<int number> using XParameterNumber = std::integral_constant<int, number>;

class XCommandNodeDef : public db::NodeDef {
public:
    XCommandNodeDef(XWord const& classID, db::NodeDef const& base, std::span<db::AttributeDef const> rows,
                    std::size_t size, Construct construct, wchar_t const* help, bool isUndoable, bool reachesFiles) :
        db::NodeDef(L"sg", classID.c_str(), &base, rows, size, construct),
        _help(help), _isUndoable(isUndoable), _reachesFiles(reachesFiles) {}

    wchar_t const* Help() const { return _help; }    // one sentence: what the command does
    bool IsUndoable() const { return _isUndoable; }  // whether a run makes a step of the history
    bool ReachesFiles() const { return _reachesFiles; }

private:
    wchar_t const* _help;
    bool _isUndoable, _reachesFiles;
};

namespace detail {

inline constexpr int ParameterLimit = 96;

// By value: whether two arrays are the same one is no constant expression under the sanitizers.
constexpr bool hasSameDefault(db::AttributeDef const& a, db::AttributeDef const& b) {
    if (a.initial[0] != b.initial[0] || a.children.size() != b.children.size()) return false;
    for (std::size_t i = 0; i < a.children.size(); ++i)
        if (!hasSameDefault(a.children[i], b.children[i])) return false;
    return true;
}

// A command sees the parameters of its base as well; its own are those that the base lacks, or gives another default.
template<class Command, int number> constexpr bool ownsParameter() {
    using N = XParameterNumber<number>;
    if constexpr (!requires { Command::parameter(N{}); })
        return false;
    else if constexpr (!requires { Command::Base::parameter(N{}); })
        return true;
    else {
        constexpr db::AttributeDef mine = Command::parameter(N{}), theirs = Command::Base::parameter(N{});
        return !hasSameDefault(mine, theirs);
    }
}

template<class Command> constexpr auto ownParameters() {
    return []<int... number>(std::integer_sequence<int, number...>) {
        std::array<db::AttributeDef, (0 + ... + int(ownsParameter<Command, number>()))> rows;
        [[maybe_unused]] auto row = rows.begin();
        auto const take = [&]<int n>(XParameterNumber<n> parameter) {
            if constexpr (ownsParameter<Command, n>()) *row++ = Command::parameter(parameter);
        };
        (take(XParameterNumber<number>{}), ...);
        return rows;
    }
    (std::make_integer_sequence<int, ParameterLimit>{});
}

// Two types of node cannot share a name: where a command's is taken, its class says another with NodeClassID.
template<class Command> constexpr XWord commandClassID() {
    if constexpr (requires { Command::NodeClassID; })
        return Command::NodeClassID;
    else
        return Command::TypeID;
}

}  // namespace detail

template<class Command> class XCommandNode;

namespace detail {
template<class BaseCommand> struct CommandBase { using Node = XCommandNode<BaseCommand>; };
template<> struct CommandBase<XCommand> { using Node = sg::CommandBaseNode; };
}  // namespace detail

template<class Command> class XCommandNode : public detail::CommandBase<typename Command::Base>::Node {
    using BaseNode = typename detail::CommandBase<typename Command::Base>::Node;

public:
    explicit XCommandNode(db::NodeDef const& def) : BaseNode(def) {}

    static inline std::wstring const ClassID = detail::commandClassID<Command>();
    static XCommandNodeDef const& definition() {
        static constexpr auto rows = detail::ownParameters<Command>();
        static XCommandNodeDef const def(detail::commandClassID<Command>(), baseDefinition(), rows,
                                         sizeof(XCommandNode), &make, Command::Help, Command::IsUndoable,
                                         Command::ReachesFiles);
        return def;
    }
    static inline db::NodeDef const& Def = definition();

private:
    static db::NodeDef const& baseDefinition() {
        if constexpr (requires { BaseNode::definition(); })
            return BaseNode::definition();
        else
            return BaseNode::Def;
    }
    static db::Node* make(void* at, db::NodeDef const& def) { return new (at) XCommandNode(def); }
};

}  // namespace Tavo
