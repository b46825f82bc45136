// The verbs of scripts: a script that runs on a file, and a console in which one is typed. Like the verbs of verbs.h
// they throw a Failure, and write whole files or none.
#pragma once
#include "hosts/tavo/verbs.h"

namespace host {

struct ScriptOptions {
    Input input;                           // without a file: a new scene
    std::vector<std::string> assignments;  // NAME=VALUE: global variables
    std::optional<double> maxSeconds;      // of each run
    std::optional<double> maxMemory;       // megabytes of Lua's values
    bool sandbox = false;
    bool keep = false;  // what a failing script did before
};

struct RunVerb : ScriptOptions {
    std::string script;                  // a file, or "-" for standard input; with `code` in its place, FILE
    std::optional<std::string> code;     // a script itself
    std::vector<std::string> arguments;  // what scripts find in `arg` and `...`
    std::string output;                  // empty: none
    bool reference = false;              // in place of a script: what scripts can call is printed
    bool annotations = false;            // or the same for editors, with the attributes that FILE's objects have
};

struct ReplVerb : ScriptOptions {};

class LineReader;

void run(RunVerb const& verb);
void run(ReplVerb const& verb);  // lines from a terminal with an editor; part of the executable
void runConsole(ReplVerb const& verb, LineReader& reader);

}  // namespace host
