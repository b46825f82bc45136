// A Lua state and its values, for C++ that talks to scripts. LuaState is a view of a state or one of its coroutines;
// LuaStateOwner owns one; LuaObject keeps a value alive.
//
// Lua is linked in its C++ form: its errors are C++ exceptions which are no std::exception, so destructors run when one
// passes. What may fail in Lua (making a text, a reference, more stack) fails as a Lua error where a script or Protect
// is below, and as a LuaException otherwise. The other way round Lua swallows the exceptions of C++ that reach it: what
// a script calls does its work under Guard.
//
// Text is UTF-8 on the side of the scripts and wide on ours. Only source is ever loaded, never binary chunks, which
// could break the state. Single-threaded. Lua reads and writes numbers by the locale: while a chunk, a call or an
// action under Protect runs, the thread's is "C".
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

    // ---- the stack; each push makes room for itself ----
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
    // LUA_ERRFILE; then `error` is the message, with the traceback where the script ran. An error that is no text tells
    // what its __tostring says. `name` is what messages call the chunk; it begins with '=' to be shown as it is, with
    // '@' to be shown as a file. A UTF-8 mark at the beginning and a first line that begins with '#' are passed over.
    // Chunks and calls may nest: a function that a script called may run another ----
    int DoString(std::string_view text, std::string const& name, std::string& error) const;
    int DoFile(std::wstring const& path, std::string& error) const;
    // Calls the function below the arguments on the stack, as lua_pcall does, with a traceback in the error.
    int Call(int arguments, int results, std::string& error) const;
    // Runs an action in which Lua may fail; throws a LuaException when it did, and any std::exception of the action as
    // it was. The action sees an empty stack; afterwards the stack is as before, either way.
    void Protect(std::function<void()> const& action) const;
    // What a function does that scripts call: a std::exception of the work becomes a Lua error of its text, and so a
    // script can catch it. Returns what the work returns, the number of results on the stack.
    int Guard(std::function<int()> const& work) const;

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
    Standard,  // all
    // Without files, processes, modules and debugging: io, package, debug, most of os, dofile, loadfile. Without what
    // would escape a limit of time as well: finalizers, and library functions over millions of elements that are not
    // there.
    Sandboxed,
};

// What a script may take. Zero is no limit. They hold whatever a script in a sandbox tries, with one exception: a
// single call of a library function is not interrupted, and a pattern with many repetitions can take long on a long
// text. With the standard libraries they stop accidents; debug.sethook and __gc get around them.
struct LuaLimits {
    std::size_t bytes = 0;  // of memory, all values together, with some that are garbage and not collected yet
    double seconds = 0;     // from each outermost start of a chunk, a call or an action under Protect
};

class LuaStateOwner {
public:
    explicit LuaStateOwner(LuaLibraries libraries = LuaLibraries::Standard);
    virtual ~LuaStateOwner();  // not while a script of it runs
    LuaStateOwner(LuaStateOwner const&) = delete;
    LuaStateOwner& operator=(LuaStateOwner const&) = delete;

    LuaState* Get() { return &state_; }
    LuaState* operator->() { return &state_; }
    LuaLibraries Libraries() const { return libraries_; }

    // A script that needs more memory gets an error, "not enough memory", which it may catch; the state is as usable as
    // before. One that needs more time ends with a message that it can not keep from coming through. A script that runs
    // has the new time from now on.
    void SetLimits(LuaLimits const& limits);
    std::size_t BytesInUse() const;

private:
    friend struct LuaClock;
    struct Meter;
    LuaStateOwner(LuaLibraries libraries, std::unique_ptr<Meter> meter);

    std::unique_ptr<Meter> meter_;
    LuaLibraries libraries_;
    LuaState state_;
};

}  // namespace LuaPlus
