#include "hosts/tavo/lua_options.h"

#include "hosts/tavo/options.h"

namespace host {

char const* const runExamples = R"(Examples:
  tavo run tidy.lua walk.bvh -o tidy.tavo               a script on a clip, and the scene that it leaves
  tavo run -e 'print(app.scene():object("Hips"):translation())' walk.tavo
  tavo run measure.lua walk.tavo --set frames=10 -- left right
  generate.py | tavo run - -o made.tavo                 a script from standard input, on a new scene
  tavo run foreign.lua walk.tavo --sandbox --max-seconds 10 --max-memory 100

SCRIPT is Lua, which finds the scene by app.scene(), the words after -- in the table arg and in ..., and the variables
of --set: numbers, true or false, otherwise text. What it prints goes to standard output.

A script that fails writes nothing and exits with 1; --keep writes what it did before. os.exit(CODE) ends the script: with
0 as if it had come to its end, otherwise as a failure of that code. --max-seconds and --max-memory stop it; --sandbox
keeps it from files and processes, but for FILE and OUT.)";

char const* const replExamples = R"(Examples:
  tavo repl walk.bvh                                    a console on a clip, or a scene
  tavo repl                                             on a new scene
  echo 'app.scene():object("Hips"):translation()' | tavo repl walk.tavo

A line is a chunk of Lua; what is not finished goes on in the next. The value of an expression is shown. Each input is a
step of the history; one that fails is taken back, unless --keep is given. :help lists the console's own words. TAB
completes names; lines are remembered in tavo/repl_history below $XDG_STATE_HOME, or ~/.local/state.)";

namespace {

void addScriptOptions(CLI::App& app, ScriptOptions& options) {
    app.add_option("--set", options.assignments, "a variable that the script finds")
        ->take_all()
        ->expected(1)
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
    app.add_option("--max-seconds", options.maxSeconds, "how long a script may take (any time)")->type_name("N");
    app.add_option("--max-memory", options.maxMemory, "how much its values may take, in megabytes (any)")
        ->type_name("MB");
    app.add_flag("--sandbox", options.sandbox, "scripts reach no files and processes");
}

}  // namespace

void addOptions(CLI::App& app, RunVerb& verb) {
    app.add_option("SCRIPT", verb.script, "a Lua script, or - for standard input; not with -e")->type_name("");
    addInput(app, verb.input)->required(false)->description("a motion clip or a scene (a new scene)");
    CLI::Option* const code = app.add_option("-e", verb.code, "the script itself")->type_name("CODE");
    addScriptOptions(app, verb);
    app.add_flag("--keep", verb.keep, "write OUT also when the script fails");
    app.add_option("-o,--output", verb.output, "the scene to write, or a clip if it ends in .bvh (none)")
        ->type_name("OUT");
    CLI::Option* const reference = app.add_flag("--reference", verb.reference, "print what scripts can call");
    app.add_flag("--annotations", verb.annotations, "print the same for editors, with all attributes of objects")
        ->excludes(reference, code);
    reference->excludes(code);
}

void addOptions(CLI::App& app, ReplVerb& verb) {
    addInput(app, verb.input)->required(false)->description("a motion clip or a scene (a new scene)");
    addScriptOptions(app, verb);
    app.add_flag("--keep", verb.keep, "what a failing input did stays");
}

}  // namespace host
