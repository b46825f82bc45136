// A state, and what scripts in it gave.
#pragma once
#include "qel/lua/lua_state.h"
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <lua.hpp>

namespace LuaPlus {

struct WithState : testing::Test {
    explicit WithState(LuaLibraries libraries = LuaLibraries::Sandboxed) : owner(libraries) {}

    int run(std::string_view text) { return owner->DoString(text, "=chunk", error); }
    // Runs it, and expects no error.
    void mustRun(std::string_view text) { EXPECT_EQ(run(text), 0) << error; }
    LuaObject global(char const* name) { return owner->GetGlobal(name); }
    bool isTrue(std::string const& expression) {
        mustRun("result = (" + expression + ") and 'yes' or 'no'");
        return global("result").ToString() == L"yes";
    }
    void bind(char const* name, lua_CFunction function) { lua_register(owner->GetCState(), name, function); }

    LuaStateOwner owner;
    std::string error;
};

struct WithFiles : WithState {
    WithFiles() : WithState(LuaLibraries::Standard) {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
    }
    ~WithFiles() override {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
    }
    void write(std::string const& name, std::string_view text) { std::ofstream(name, std::ios::binary) << text; }

    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::path const folder =
        std::filesystem::temp_directory_path() /
        ("lua_test_" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};

}  // namespace LuaPlus
