// A Lua state and its values, for C++ that talks to scripts. LuaState is a view of a state or one of its coroutines;
// LuaStateOwner owns one; LuaObject keeps a value alive.
//
// Lua is linked in its C++ form: its errors are C++ exceptions which are no std::exception, so destructors run when one
// passes. Whatever may fail in Lua runs under Protect, or inside a function that a script called. Text is UTF-8 on the
// side of the scripts and wide on ours. Only source is ever loaded, never binary chunks, which could break the state.
// Single-threaded. Lua reads and writes numbers by the locale: while a chunk runs, the thread's is "C".
#pragma once
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct lua_State;
struct lua_Debug;

namespace LuaPlus {

// A Lua error that reached C++.
class LuaException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    char const* GetErrorMessage() const { return what(); }
};

class LuaObject;

class LuaState {
public:
    explicit LuaState(lua_State* state) : state_(state) {}
    lua_State* GetCState() const { return state_; }
    explicit operator bool() const { return state_ != nullptr; }

    // ---- the stack ----
    int GetTop() const;
    void Pop(int count = 1) const;
    void PushNil() const;
    void PushBoolean(bool value) const;
    void PushInteger(long long value) const;
    void PushNumber(double value) const;
    void PushString(std::wstring_view text) const;
    void PushUtf8(std::string_view text) const;

    // ---- values; these keep the stack as it was ----
    LuaObject Stack(int index) const;
    LuaObject GetGlobal(char const* name) const;
    void SetGlobal(char const* name, LuaObject const& value) const;
    LuaObject CreateTable() const;

    // ---- running. The result is Lua's own: 0, or one of LUA_ERRRUN, LUA_ERRSYNTAX, LUA_ERRMEM, LUA_ERRERR and
    // LUA_ERRFILE; then `error` is the message with the traceback. `name` is what messages call the chunk; it begins
    // with '=' to be shown as it is, with '@' to be shown as a file ----
    int DoString(std::string_view text, std::string const& name, std::string& error) const;
    int DoFile(std::wstring const& path, std::string& error) const;
    // Calls the function below the arguments on the stack, as lua_pcall does, with a traceback in the error.
    int Call(int arguments, int results, std::string& error) const;
    // Runs an action in which Lua may fail; throws a LuaException when it did. The stack is as before, either way.
    void Protect(std::function<void()> const& action) const;

private:
    lua_State* state_;
};

// A value that stays alive, and the same, while this refers to it. The state must outlive it.
class LuaObject {
public:
    LuaObject() = default;  // nil
    LuaObject(lua_State* state, int index);
    LuaObject(LuaObject const& other);
    LuaObject(LuaObject&& other) noexcept : state_(other.state_), reference_(other.reference_) {
        other.state_ = nullptr;
    }
    LuaObject& operator=(LuaObject other) noexcept;
    ~LuaObject();

    bool IsNil() const;
    bool IsTable() const;
    bool IsFunction() const;
    bool IsString() const;
    bool IsNumber() const;
    double ToNumber(double otherwise = 0) const;
    std::wstring ToString() const;  // of a text or a number; otherwise empty
    LuaObject GetByName(char const* name) const;
    void SetObject(char const* name, LuaObject const& value) const;  // of a table, as the following
    void SetInteger(char const* name, long long value) const;
    void SetNumber(char const* name, double value) const;
    void SetString(char const* name, std::wstring_view value) const;
    void Push(lua_State* state) const;  // of the same Lua state, or a coroutine of it
    // The same value by Lua's raw equality.
    bool operator==(LuaObject const& other) const;

private:
    template<class Read> auto read(Read const& read) const;
    void set(char const* name, std::function<void(lua_State*)> const& push) const;

    lua_State* state_ = nullptr;  // the main thread: a coroutine may end before this
    int reference_ = 0;
};

enum class LuaLibraries {
    Standard,   // all
    Sandboxed,  // without files, processes, modules and debugging: io, package, debug, most of os, dofile, loadfile
};

// What a script may take. Zero is no limit.
struct LuaLimits {
    std::size_t bytes = 0;  // of memory, all values together
    double seconds = 0;     // from each outermost start of a chunk or call
};

class LuaStateOwner {
public:
    explicit LuaStateOwner(LuaLibraries libraries = LuaLibraries::Standard);
    virtual ~LuaStateOwner();
    LuaStateOwner(LuaStateOwner const&) = delete;
    LuaStateOwner& operator=(LuaStateOwner const&) = delete;

    LuaState* Get() { return &state_; }
    LuaState* operator->() { return &state_; }
    LuaLibraries Libraries() const { return libraries_; }

    // A script that needs more fails with a message which it can not keep from coming through.
    void SetLimits(LuaLimits const& limits);
    std::size_t BytesInUse() const;

private:
    friend struct LuaClock;
    struct Meter;
    std::unique_ptr<Meter> meter_;
    LuaLibraries libraries_;
    LuaState state_;
};

}  // namespace LuaPlus
