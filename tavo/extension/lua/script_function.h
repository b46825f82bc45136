// A function that scripts can call, as a row: its name, the C++ member, function or lambda that does the work, its
// arguments with their defaults, and a line of help. How arguments are read and results given back follows from the C++
// signature; so do the reference page and the annotations for editors.
//
// The first parameter of a lambda or function, or the class of a member, is what the function is called on (`self`).
// One without a result, and one that returns `self` again, gives the script its table back, so that calls chain. One
// that needs the call itself takes an XScriptCall& in front; one that pushes its results itself returns XScriptPushed.
#pragma once
#include "tavo/extension/lua/script_value.h"
#include <initializer_list>
#include <new>
#include <tuple>

namespace Tavo {

// The number of values that a function has pushed itself.
struct XScriptPushed {
    int count;
};

class XScriptFunction {
public:
    enum Flags : unsigned { None = 0, ReachesFiles = 1 };  // what reaches files is refused in a sandbox

    template<class Member>
    XScriptFunction(char const* name, Member member, std::initializer_list<XScriptArgument> arguments, char const* help,
                    Flags flags = None);

    char const* Name() const { return _name; }
    char const* Help() const { return _help; }
    bool MayReachFiles() const { return (_flags & ReachesFiles) != 0; }
    std::vector<XScriptArgument> const& Arguments() const { return _arguments; }
    std::vector<XScriptType> const& ArgumentTypes() const { return _types; }  // one an argument
    XScriptType Result() const { return _result; }
    XScriptArgument const& Argument(int index) const { return _arguments[std::size_t(index)]; }
    // The number of results that it pushed. Throws an XScriptError for arguments that it can't take.
    int Invoke(XScriptCall& call) const { return _invoke(*this, call); }

private:
    template<class Member> static int invoke(XScriptFunction const& row, XScriptCall& call) {
        return XScriptShape<Member>::Run(call, *std::launder(reinterpret_cast<Member const*>(row._member)));
    }

    char const* _name;
    char const* _help;
    Flags _flags;
    int (*_invoke)(XScriptFunction const&, XScriptCall&);
    std::vector<XScriptArgument> _arguments;
    std::vector<XScriptType> _types;
    XScriptType _result;
    alignas(void*) unsigned char _member[2 * sizeof(void*)];

    // What a C++ signature says. Specialised below.
    template<class Member> struct XScriptShape;
    template<class Function, bool takesCall, class Result, class Self, class... Arguments> struct Signature;
    template<class Lambda, class Operator> struct LambdaShape;
};

// ---- from signatures to calls ----

template<class Function, bool takesCall, class Return, class Self, class... Parameters>
struct XScriptFunction::Signature {
    static constexpr bool returnsSelf =
        std::is_void_v<Return> ||
        (std::is_same_v<std::decay_t<Return>, std::decay_t<Self>> && std::is_lvalue_reference_v<Return>);

    static XScriptType Result() {
        if constexpr (returnsSelf)
            return {XScriptKind::Self};
        else if constexpr (std::is_same_v<Return, XScriptPushed>)
            return {XScriptKind::Any};
        else
            return XScriptValue<std::decay_t<Return>>::Type();
    }
    static std::vector<XScriptType> Types() { return {XScriptValue<std::decay_t<Parameters>>::Type()...}; }

    static int Run(XScriptCall& call, Function const& function) {
        XScriptSelf<std::decay_t<Self>> self(call);
        // Braces: read from left to right.
        [[maybe_unused]] std::tuple<std::decay_t<Parameters>...> arguments{
            XScriptValue<std::decay_t<Parameters>>::Read(call)...};
        auto const apply = [&]() -> Return {
            return std::apply(
                [&](auto&... values) -> Return {
                    if constexpr (takesCall)
                        return std::invoke(function, call, self.value, values...);
                    else
                        return std::invoke(function, self.value, values...);
                },
                arguments);
        };
        constexpr bool mayChange = !std::is_const_v<std::remove_reference_t<Self>>;
        if constexpr (returnsSelf) {
            apply();
            return self.GiveBack(call, mayChange);
        } else if constexpr (std::is_same_v<Return, XScriptPushed>) {
            return apply().count;
        } else {
            std::decay_t<Return> const result = apply();
            if constexpr (mayChange) self.Store(call);
            XScriptValue<std::decay_t<Return>>::Push(call, result);
            return 1;
        }
    }
};

template<class Lambda, class Return, class Self, class... Parameters>
struct XScriptFunction::LambdaShape<Lambda, Return (Lambda::*)(Self, Parameters...) const>
    : XScriptFunction::Signature<Lambda, false, Return, Self, Parameters...> {};
template<class Lambda, class Return, class Self, class... Parameters>
struct XScriptFunction::LambdaShape<Lambda, Return (Lambda::*)(XScriptCall&, Self, Parameters...) const>
    : XScriptFunction::Signature<Lambda, true, Return, Self, Parameters...> {};

template<class Lambda>
struct XScriptFunction::XScriptShape : XScriptFunction::LambdaShape<Lambda, decltype(&Lambda::operator())> {};
template<class Return, class Self, class... Parameters>
struct XScriptFunction::XScriptShape<Return (*)(Self, Parameters...)>
    : XScriptFunction::Signature<Return (*)(Self, Parameters...), false, Return, Self, Parameters...> {};
template<class Return, class Self, class... Parameters>
struct XScriptFunction::XScriptShape<Return (*)(XScriptCall&, Self, Parameters...)>
    : XScriptFunction::Signature<Return (*)(XScriptCall&, Self, Parameters...), true, Return, Self, Parameters...> {};
template<class Class, class Return, class... Parameters>
struct XScriptFunction::XScriptShape<Return (Class::*)(Parameters...)>
    : XScriptFunction::Signature<Return (Class::*)(Parameters...), false, Return, Class&, Parameters...> {};
template<class Class, class Return, class... Parameters>
struct XScriptFunction::XScriptShape<Return (Class::*)(Parameters...) const>
    : XScriptFunction::Signature<Return (Class::*)(Parameters...) const, false, Return, Class const&, Parameters...> {};
template<class Member>
XScriptFunction::XScriptFunction(char const* name, Member member, std::initializer_list<XScriptArgument> arguments,
                                 char const* help, Flags flags) :
    _name(name),
    _help(help), _flags(flags), _invoke(&invoke<Member>), _arguments(arguments), _types(XScriptShape<Member>::Types()),
    _result(XScriptShape<Member>::Result()) {
    static_assert(sizeof(Member) <= sizeof(_member) && std::is_trivially_copyable_v<Member>);
    new (_member) Member(member);
    _types.resize(_arguments.size(), {XScriptKind::Any});  // what a lambda takes from the call itself
}

// The functions of one table, in their order. `table` is the word of the object type where they are those of one.
struct XScriptSet {
    char const* table;
    char const* help;
    std::vector<XScriptFunction> functions;
};

}  // namespace Tavo
