// repl: a console of Lua on a scene. Each input is a step of the history; one that fails is taken back.
#include "hosts/tavo/line_reader.h"
#include "hosts/tavo/lua_words.h"
#include "hosts/tavo/script_session.h"
#include "tavo/extension/lua/lua_script.h"
#include "tavo/objects/scene_graph.h"

#include <fmt/format.h>
#include <lua.hpp>

namespace host {
namespace {

using namespace Tavo;

constexpr char const* help =
    R"(A line is a chunk of Lua, and the value of an expression is shown. What is not finished goes on in the next line. A
local variable ends with its input; others stay. The scene is app.scene().
  :undo        takes the last input back that changed the scene
  :redo        and does it again
  :save FILE   writes the scene, or a clip if FILE ends in .bvh
  :cancel      forgets an input that is not finished
  :quit        ends, as the end of the input does
  :help        tells this
)";

class Console {
public:
    Console(ReplVerb const& verb, LineReader& reader) : reader_(reader), scripts_(verb) {
        scripts_.lua().SetTakesBackFailures(!verb.keep);
        reader_.completeWith([this](std::string const& line) { return completions(line); });
    }
    ~Console() { reader_.completeWith({}); }
    Console(Console const&) = delete;
    Console& operator=(Console const&) = delete;

    void run() {
        while (!isOver_) {
            std::optional<std::string> const line = reader_.read(input_.empty() ? "tavo> " : "   .. ");
            if (!line) break;
            take(*line);
        }
        if (!input_.empty()) evaluate();  // which tells what it lacks
        if (exitCode_ != 0) throw Failure{ExitCode(exitCode_), ""};
    }

private:
    void take(std::string const& line) {
        bool const isWord = line.size() > 1 && line[0] == ':' && line[1] != ':';  // two begin a label
        if (isWord && (input_.empty() || line == ":cancel")) return obey(line);
        input_ += (input_.empty() ? "" : "\n") + line;
        if (isExpression(scripts_.state(), input_) || !isIncomplete(scripts_.state(), input_)) evaluate();
    }

    void evaluate() {
        std::string const text = std::exchange(input_, {});
        bool const hasValue = isExpression(scripts_.state(), text);
        std::string shown;
        ScriptEnding const ending = scripts_.run({(hasValue ? "return " : "") + text, "=input", {}},
                                                 [&](lua_State* state, int count) { shown = lineOf(state, count); });
        XApplication::Instance().Update();
        writeResult(shown);
        if (!ending.error.empty()) printError(ending.error);
        isOver_ = ending.exitCode.has_value();
        exitCode_ = ending.exitCode.value_or(0);
    }
    static std::string lineOf(lua_State* state, int count) {
        std::string text;
        for (int i = 1; i <= count; ++i) text += (i == 1 ? "" : "\t") + describe(state, i);
        return count > 0 ? text + '\n' : text;
    }

    // The words that begin with a colon.
    void obey(std::string const& line) {
        std::size_t const space = line.find(' ');
        std::string const word = line.substr(1, space - 1);
        std::string const rest = space == std::string::npos ? "" : line.substr(space + 1);
        try {
            if (word == "undo") return step(true);
            if (word == "redo") return step(false);
            if (word == "save") return save(rest);
            if (word == "cancel") return input_.clear();
            if (word == "help") return writeResult(help);
            if (word != "quit") throw wrongCall(fmt::format("there is no :{}; :help tells what there is", word));
            isOver_ = true;
        } catch (Failure const& failure) { printError(failure.message); }
    }
    void step(bool isBack) {
        scripts_.scene().Stop();  // playback is a block that is open
        auto const& graph = *scripts_.scene().SceneGraph();
        if ((isBack ? graph.getUndoCount() : graph.getRedoCount()) == 0)
            throw wrongCall(isBack ? "there is nothing to take back" : "there is nothing to do again");
        isBack ? scripts_.scene().Undo() : scripts_.scene().Redo();
        XApplication::Instance().Update();
    }
    void save(std::string const& file) {
        if (file.empty()) throw wrongCall(":save FILE");
        scripts_.scene().Stop();
        scripts_.session().save(file);
        writeResult(fmt::format("wrote {}\n", file));
    }

    Completions completions(std::string const& line) {
        Completions found;
        try {
            scripts_.lua().State()->Protect([&] { found = completionsOf(scripts_.state(), line); });
        } catch (LuaPlus::LuaException const&) {
            // Without memory there are none.
        }
        return found;
    }

    LineReader& reader_;
    ScriptSession scripts_;
    std::string input_;  // so far
    bool isOver_ = false;
    int exitCode_ = 0;
};

}  // namespace

void runConsole(ReplVerb const& verb, LineReader& reader) { Console(verb, reader).run(); }

}  // namespace host
