// A session whose scripts are the user's: their limits, what the command line gives to them, and how they end.
#pragma once
#include "hosts/tavo/lua_verbs.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/watchdog.h"
#include "qel/lua/lua_state.h"

#include <functional>
#include <optional>

struct lua_Debug;

namespace Tavo {
class XLuaScript;
}

namespace host {

struct ScriptChunk {
    std::string text;
    std::string name;  // "@" and a file, or "=" and what messages call it
    std::vector<std::string> arguments;
};

// How a run ended: well, with an error, or by os.exit, which ends the script and no more.
struct ScriptEnding {
    std::string error;  // with the traceback; empty without one
    std::optional<int> exitCode;

    bool isGood() const { return error.empty() && exitCode.value_or(0) == 0; }
};

class ScriptSession {
public:
    // Opens the file, if there is one; the history begins empty. Throws a Failure for options that make no sense, and
    // for a file that cannot be read.
    explicit ScriptSession(ScriptOptions const& options);
    ~ScriptSession();

    Session& session() { return session_; }
    Tavo::XScene& scene() { return session_.scene(); }
    Tavo::XLuaScript& lua() { return *Tavo::XApplication::Instance().LuaScript(); }
    lua_State* state() { return owner_.Get()->GetCState(); }

    // The table `arg`: a script's name at 0, and its arguments.
    void setArguments(std::string const& script, std::vector<std::string> const& arguments);
    // `onResults` is called with what the chunk returned on the stack, as part of the run; it may raise Lua errors, and
    // throws nothing.
    using OnResults = std::function<void(lua_State* state, int count)>;
    ScriptEnding run(ScriptChunk const& chunk, OnResults const& onResults = {});

private:
    struct Running;
    static int runLoaded(lua_State* state);
    static int exitScript(lua_State* state);
    static void keepEnding(lua_State* state, lua_Debug*);
    void replaceExit();
    void assign(std::string const& text);
    bool isTold(std::string const& error) const;

    std::optional<double> maxSeconds_;
    std::optional<Watchdog> closing_;  // over the state's own end, in which scripts may still run
    LuaPlus::LuaStateOwner owner_;
    Session session_;
    std::string error_;  // that is told by the caller of run
    std::optional<int> exitCode_;
};

}  // namespace host
