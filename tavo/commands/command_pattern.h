// How a command is declared: once, with its class, the name it runs under, what it does, and its parameters.
//
//     class XAlignAxis : public XCommandType<XAlignAxis> {
//     public:
//         static constexpr XWord TypeID = L"AlignAxis";
//         static constexpr wchar_t const* Help = L"Points an axis of each selected transform at its children.";
//         using XTyped::XTyped;
//
//         TAVO_PARAMETER(8, Axis, L"The axis that is turned.", enumeration, axes)
//         TAVO_PARAMETER(9, Direction, L"What it is to point at.", enumeration, directions)
//
//         void onRun() override;
//     };
//     using XAlignAxisDef = XTypedDef<XAlignAxis>;
//
// From that follow the command's node table, its definition, its defaults, its help in the host, and its entry in the
// reference page. Parameters are numbered from XCommand::FirstParameter on; those of a derived command follow on its
// base's. One without parameters is a line: TAVO_COMMAND, or TAVO_DIRECT_COMMAND when a run makes no step of the
// history.
#pragma once
#include "qel/sg/units.h"
#include "tavo/commands/command_node.h"
#include "tavo/objects/colour.h"

namespace Tavo {

template<class Self, class BaseCommand = XCommand> using XCommandType = XTyped<Self, BaseCommand, XCommandNode<Self>>;

// The kinds of a parameter: a row's function of db::row, or one of these.
namespace parameter_kinds {

using namespace db::row;

constexpr db::AttributeDef length(int n, wchar_t const* name, double metres = 0) {
    return real(n, name, metres).unit(sg::Linear);
}
constexpr db::AttributeDef angle(int n, wchar_t const* name, double radians = 0) {
    return real(n, name, radians).unit(sg::Angular);
}
constexpr std::array<db::AttributeDef, 4> colourRows(XColour const& colour) {
    return {real(0, L"Red", double(colour.Red())), real(1, L"Green", double(colour.Green())),
            real(2, L"Blue", double(colour.Blue())), real(3, L"Alpha", double(colour.Alpha()))};
}

}  // namespace parameter_kinds

}  // namespace Tavo

// The accessor and the row of a parameter: what follows the kind goes to it after the number and the name.
#define TAVO_PARAMETER(Number, Name, HelpText, Kind, ...)                                                              \
    XAttribute Name() const { return Attribute(Number); }                                                              \
    static constexpr db::AttributeDef parameter(XParameterNumber<Number>) {                                            \
        using namespace parameter_kinds;                                                                               \
        return Kind(Number, L"" #Name __VA_OPT__(, ) __VA_ARGS__).doc(HelpText);                                       \
    }
// Three in a row: NameX, NameY, NameZ.
#define TAVO_PARAMETER_XYZ(Number, Name, HelpText, Kind, ...)                                                          \
    TAVO_PARAMETER(Number, Name##X, HelpText, Kind __VA_OPT__(, ) __VA_ARGS__)                                         \
    TAVO_PARAMETER((Number) + 1, Name##Y, HelpText, Kind __VA_OPT__(, ) __VA_ARGS__)                                   \
    TAVO_PARAMETER((Number) + 2, Name##Z, HelpText, Kind __VA_OPT__(, ) __VA_ARGS__)
// Another default for a parameter of the base.
#define TAVO_DEFAULT(Number, Value)                                                                                    \
    static constexpr db::AttributeDef parameter(XParameterNumber<Number>) {                                            \
        db::AttributeDef row = Base::parameter(XParameterNumber<Number>{});                                            \
        row.initial[0] = Value;                                                                                        \
        return row;                                                                                                    \
    }

#define TAVO_COMMAND_HEAD(Word, HelpText)                                                                              \
public:                                                                                                                \
    static constexpr XWord TypeID = Word;                                                                              \
    static constexpr wchar_t const* Help = HelpText;                                                                   \
    using XTyped::XTyped;

#define TAVO_COMMAND(Class, Word, HelpText)                                                                            \
    class Class : public XCommandType<Class> {                                                                         \
        TAVO_COMMAND_HEAD(Word, HelpText)                                                                              \
        void onRun() override;                                                                                         \
    };                                                                                                                 \
    using Class##Def = XTypedDef<Class>;

// Moves the history or the time itself, and so must not be a step of the history.
#define TAVO_DIRECT_COMMAND(Class, Word, HelpText)                                                                     \
    class Class : public XCommandType<Class> {                                                                         \
        TAVO_COMMAND_HEAD(Word, HelpText)                                                                              \
        static constexpr bool IsUndoable = false;                                                                      \
        using XCommand::onPreRun;                                                                                      \
        void onRun() override;                                                                                         \
        void onPreRun() override {}                                                                                    \
        void onPostRun() override {}                                                                                   \
    };                                                                                                                 \
    using Class##Def = XTypedDef<Class>;
