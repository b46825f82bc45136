// The command line of `tavo run` and `tavo repl`: options, help and examples.
#pragma once
#include "hosts/tavo/lua_verbs.h"

#include <CLI/App.hpp>

namespace host {

extern char const* const runExamples;
extern char const* const replExamples;

// FILE and the rest; what stands after "--" on the command line of `run` is not for the parser.
void addOptions(CLI::App& app, RunVerb& verb);
void addOptions(CLI::App& app, ReplVerb& verb);

}  // namespace host
