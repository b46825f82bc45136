// Options that verbs have in common, each stated once.
#pragma once
#include "hosts/tavo/verbs.h"

#include <CLI/App.hpp>

namespace host {

CLI::Option* addInput(CLI::App& app, Input& input);  // gives FILE
CLI::Option* addOutput(CLI::App& app, std::string& output, char const* what);

}  // namespace host
