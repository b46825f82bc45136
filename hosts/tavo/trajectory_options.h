// The command line of `tavo trajectory`: options, help and examples of each of its verbs.
#pragma once
#include "hosts/tavo/trajectory_verbs.h"

#include <CLI/App.hpp>

namespace host {

extern char const* const trajectoryExamples;
extern char const* const generateExamples;
extern char const* const fitExamples;
extern char const* const samplePathExamples;
extern char const* const editExamples;
extern char const* const infoPathExamples;

// All but FILE.
void addOptions(CLI::App& app, GenerateTrajectoryVerb& verb);
void addOptions(CLI::App& app, FitTrajectoryVerb& verb);
void addOptions(CLI::App& app, SampleTrajectoryVerb& verb);
void addOptions(CLI::App& app, EditTrajectoryVerb& verb);
void addOptions(CLI::App& app, InfoTrajectoryVerb& verb);

}  // namespace host
