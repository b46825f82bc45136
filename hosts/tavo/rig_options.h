// The command line of `tavo ik` and `tavo retarget`: options, help and examples.
#pragma once
#include "hosts/tavo/rig_verbs.h"

#include <CLI/App.hpp>

namespace host {

extern char const* const ikExamples;
extern char const* const retargetExamples;

// All but FILE.
void addOptions(CLI::App& app, IkVerb& verb);
void addOptions(CLI::App& app, RetargetVerb& verb);

}  // namespace host
