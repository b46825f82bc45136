// Reads the arguments of a function that a script called, by names that the function gives them:
//
//     LuaArgumentProcessor arguments;
//     arguments.addRequired("path");
//     arguments.addOptional("amount");
//     arguments.process(state, true);
//     double amount = 1;  // stays, when the script gives none
//     arguments.getArgAsFloat("amount", amount);
//
// A script gives them by position, in the order in which they were added, or by name in one table alone, as in
// scene:move{amount = 2}: a table is taken so where it is the only argument, is not empty, and all its keys are names
// of arguments. nil is the same as nothing; arguments that nobody asked for are passed over.
//
// What a script did wrong is a Lua error that names function, argument and kinds, as in "bad argument #2 'amount' to
// 'move' (number expected, got boolean)". Therefore use it in a function that a script called, or under Protect, with
// the state of that call. Values are copied: they do not change while the function works, and keep nothing alive.
#pragma once
#include "qel/lua/lua_state.h"
#include <variant>
#include <vector>

namespace wxUtils {

class LuaArgumentProcessor {
public:
    void addOptional(std::string name);
    void addRequired(std::string name);  // an error in `process` when it is missing
    // With `isMethod`, argument 1 is the self table and not counted. Forgets what an earlier call read.
    void process(LuaPlus::LuaState const* state, bool isMethod);

    // Whether the script gave it. Each of the following returns this too, and leaves the value alone when it is
    // missing.
    bool hasArg(std::string_view name) const;

    // Kinds are not turned into each other, with two exceptions: a whole number may be written as 2.0, and a number is
    // taken for a text. An error also is what does not fit: for an int fractions, NaN, infinity and what is out of
    // range; for a float what is finite but too large.
    bool getArgAsBool(std::string_view name, bool& value) const;
    bool getArgAsInt(std::string_view name, int& value) const;
    bool getArgAsFloat(std::string_view name, float& value) const;
    bool getArgAsFloat(std::string_view name, double& value) const;
    bool getArgAsString(std::string_view name, std::wstring& value) const;
    // A list is a table at its positions 1, 2, ... up to the first nil, without metamethods.
    bool getArgAsFloatList(std::string_view name, std::vector<float>& value) const;
    bool getArgAsStringList(std::string_view name, std::vector<std::wstring>& value) const;

private:
    struct Other {
        char const* kind;
    };
    using Item = std::variant<std::monostate, bool, long long, double, std::string, Other>;
    struct Argument {
        std::string name;
        bool isRequired;
        Item value{};
        std::vector<Item> items{};  // of a table
    };

    static Item itemAt(lua_State* state, int index);
    static std::string kindOf(Item const& item);
    static bool convert(Item const& item, bool& value);
    static bool convert(Item const& item, int& value);
    static bool convert(Item const& item, float& value);
    static bool convert(Item const& item, double& value);
    static bool convert(Item const& item, std::wstring& value);
    template<class Value> bool get(std::string_view name, Value& value, char const* wanted) const;
    template<class Value> bool getList(std::string_view name, std::vector<Value>& value, char const* wanted) const;

    void read(Argument& argument, int index) const;
    bool areNamed(int index) const;
    void checkRequired() const;
    Argument const* find(std::string_view name) const;
    Argument const& argumentOf(std::string_view name) const;
    void fail(Argument const& argument, std::string const& wanted, std::string const& got) const;

    std::vector<Argument> arguments_;
    std::string function_;
    lua_State* state_ = nullptr;
    bool isByName_ = false;
};

}  // namespace wxUtils
